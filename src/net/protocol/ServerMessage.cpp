#include "net/protocol/ServerMessage.h"

#include <QJsonArray>
#include <QJsonObject>

ServerMessage::ServerMessage(const QString &line)
    : m_line(line)
    , m_fields(line.split(QLatin1Char('|')))
    , m_word(m_fields.first().toUpper())
{
}

QString ServerMessage::field(int index) const
{
    return index < m_fields.size() ? m_fields.at(index) : QString();
}

QString ServerMessage::field(int index, const QString &fallback) const
{
    return index < m_fields.size() ? m_fields.at(index) : fallback;
}

QString ServerMessage::rest(int index, const QString &fallback) const
{
    return index < m_fields.size() ? m_line.section(QLatin1Char('|'), index) : fallback;
}

QJsonDocument ServerMessage::json() const
{
    const QJsonDocument document = QJsonDocument::fromJson(field(1).toUtf8());
    return document.isNull() && m_fields.size() > 2 ? wholeJson() : document;
}

QJsonDocument ServerMessage::wholeJson() const
{
    const int bar = m_line.indexOf(QLatin1Char('|'));
    return bar < 0 ? QJsonDocument() : QJsonDocument::fromJson(m_line.midRef(bar + 1).toUtf8());
}

namespace ServerRecords {

QList<QVariantMap> roomUsers(const ServerMessage &message)
{
    const auto list = [&message](int index) { return message.field(index).split(QLatin1Char(',')); };
    const QStringList ids = list(2);
    const QStringList callsigns = list(3);
    const QStringList names = list(4);
    const QStringList transmitting = list(5);
    const QStringList approved = list(6);
    const QStringList muted = list(7);
    QList<QVariantMap> users;
    users.reserve(ids.size());
    for (int i = 0; i < ids.size(); ++i) {
        bool isNumber = false;
        const int id = ids.at(i).toInt(&isNumber);
        if (!isNumber)
            continue;
        users.append({{QStringLiteral("user_id"), id},
                      {QStringLiteral("callsign"), callsigns.value(i)},
                      {QStringLiteral("name"), names.value(i)},
                      {QStringLiteral("is_transmitting"), transmitting.value(i) == QLatin1String("TX")},
                      {QStringLiteral("approved"), approved.value(i) == QLatin1String("1")},
                      {QStringLiteral("is_muted"), muted.value(i) == QLatin1String("1")}});
    }
    return users;
}

QList<QVariantMap> onlineUsers(const ServerMessage &message)
{
    QList<QVariantMap> users;
    const QStringList entries = message.field(1).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &entry : entries) {
        const QStringList items = entry.split(QLatin1Char(','));
        bool isNumber = false;
        const int id = items.first().toInt(&isNumber);
        if (!isNumber)
            continue;
        users.append({{QStringLiteral("id"), id},
                      {QStringLiteral("callsign"), items.value(1)},
                      {QStringLiteral("name"), items.value(2)},
                      {QStringLiteral("room"), items.value(3)},
                      {QStringLiteral("is_admin"), items.value(4) == QLatin1String("True")}});
    }
    return users;
}

QVariantMap audioQuality(const ServerMessage &message)
{
    return {{QStringLiteral("preset"), message.field(1)},
            {QStringLiteral("bitrate"), message.number(2)},
            {QStringLiteral("sample_rate"), message.number(3)},
            {QStringLiteral("frame_duration"), message.number(4)},
            {QStringLiteral("complexity"), message.number(5)}};
}

QList<QVariantMap> objects(const QJsonDocument &array)
{
    QList<QVariantMap> records;
    const QJsonArray values = array.array();
    records.reserve(values.size());
    for (const auto &value : values) {
        if (value.isObject())
            records.append(value.toObject().toVariantMap());
    }
    return records;
}

} // namespace ServerRecords
