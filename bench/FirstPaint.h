#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>

#include <cstdio>

/// Reports on standard output that a window has been painted for the first time, once the paint is done.
class FirstPaint final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, this, [] {
                std::puts("painted");
                std::fflush(stdout);
            });
        }
        return false;
    }
};
