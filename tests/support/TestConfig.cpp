#include "support/TestConfig.h"

#include "app/Config.h"
#include "app/Product.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

TestConfig::TestConfig(const QJsonObject &values)
{
    QCoreApplication::setApplicationName(Product::name());
    QCoreApplication::setOrganizationName(Product::organisation());
    if (!values.isEmpty())
        writeFile(QJsonDocument(values).toJson());
    Config::instance().load();
}

QJsonObject TestConfig::saved() const
{
    QFile file(Config::filePath());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject{};
}

void TestConfig::writeFile(const QByteArray &bytes) const
{
    QFile file(Config::filePath());
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}
