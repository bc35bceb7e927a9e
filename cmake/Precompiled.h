#pragma once

#include <QHostAddress>
#include <QJsonObject>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <QWidget>

#include <chrono>
#include <functional>
#include <memory>
