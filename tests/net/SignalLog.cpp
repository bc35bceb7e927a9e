#include "SignalLog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString compact(const QJsonDocument &document)
{
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

QString textOf(const QVariant &value)
{
    if (value.canConvert<QList<QVariantMap>>() && value.userType() == qMetaTypeId<QList<QVariantMap>>()) {
        QJsonArray array;
        const auto records = value.value<QList<QVariantMap>>();
        for (const QVariantMap &record : records)
            array.append(QJsonObject::fromVariantMap(record));
        return compact(QJsonDocument(array));
    }
    switch (value.userType()) {
    case QMetaType::QVariantMap: return compact(QJsonDocument(QJsonObject::fromVariantMap(value.toMap())));
    case QMetaType::QStringList:
        return QLatin1Char('[') + value.toStringList().join(QLatin1Char(',')) + QLatin1Char(']');
    case QMetaType::QByteArray: return QString::fromLatin1(value.toByteArray().toHex());
    default: return value.toString();
    }
}

} // namespace

SignalLog::SignalLog(TcpClient *client)
{
    const auto log = [this](const char *name) {
        return [this, name](const auto &...arguments) {
            add(QString::fromLatin1(name), {QVariant::fromValue(arguments)...});
        };
    };
    using C = TcpClient;
    connect(client, &C::connected, this, log("connected"));
    connect(client, &C::disconnected, this, log("disconnected"));
    connect(client, &C::loginResult, this, log("loginResult"));
    connect(client, &C::registerResult, this, log("registerResult"));
    connect(client, &C::licenseWarning, this, log("licenseWarning"));
    connect(client, &C::roomListReceived, this, log("roomListReceived"));
    connect(client, &C::roomUsersReceived, this, log("roomUsersReceived"));
    connect(client, &C::onlineUsersReceived, this, log("onlineUsersReceived"));
    connect(client, &C::allUsersReceived, this, log("allUsersReceived"));
    connect(client, &C::userInfoReceived, this, log("userInfoReceived"));
    connect(client, &C::joinRoomResult, this, log("joinRoomResult"));
    connect(client, &C::leaveRoomResult, this, log("leaveRoomResult"));
    connect(client, &C::transmitStarted, this, log("transmitStarted"));
    connect(client, &C::transmitStopped, this, log("transmitStopped"));
    connect(client, &C::transmitFailed, this, log("transmitFailed"));
    connect(client, &C::audioReceived, this, log("audioReceived"));
    connect(client, &C::serverInfoReceived, this, log("serverInfoReceived"));
    connect(client, &C::audioQualityReceived, this, log("audioQualityReceived"));
    connect(client, &C::sessionKeyReceived, this, log("sessionKeyReceived"));
    connect(client, &C::roomKeyReceived, this, log("roomKeyReceived"));
    connect(client, &C::gatewayInfoReceived, this, log("gatewayInfoReceived"));
    connect(client, &C::hwidReset, this, log("hwidReset"));
    connect(client, &C::errorOccurred, this, log("errorOccurred"));
    connect(client, &C::kicked, this, log("kicked"));
    connect(client, &C::banned, this, log("banned"));
    connect(client, &C::adminMuted, this, log("adminMuted"));
    connect(client, &C::userPasswordChanged, this, log("userPasswordChanged"));
    connect(client, &C::userProfileReceived, this, log("userProfileReceived"));
    connect(client, &C::adminNotification, this, log("adminNotification"));
    connect(client, &C::pendingUsersReceived, this, log("pendingUsersReceived"));
}

void SignalLog::add(const QString &name, const QVariantList &arguments)
{
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts.append(textOf(argument));
    m_entries.append(name + QLatin1Char('(') + texts.join(QStringLiteral(", ")) + QLatin1Char(')'));
}
