#include "net/protocol/ServerMessage.h"

#include <QJsonArray>
#include <QJsonObject>

#include <charconv>
#include <optional>

namespace {

QString textOf(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

std::optional<int> numberIn(std::string_view bytes)
{
    const auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!bytes.empty() && isSpace(bytes.front()))
        bytes.remove_prefix(1);
    while (!bytes.empty() && isSpace(bytes.back()))
        bytes.remove_suffix(1);
    int number = 0;
    const char *end = bytes.data() + bytes.size();
    const auto [stop, error] = std::from_chars(bytes.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

QJsonDocument parse(std::string_view bytes)
{
    QJsonParseError error;
    const auto raw = QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
    QJsonDocument document = QJsonDocument::fromJson(raw, &error);
    if (error.error != QJsonParseError::IllegalUTF8String)
        return document;
    return QJsonDocument::fromJson(textOf(bytes).toUtf8()); // with a replacement character for what is no UTF-8
}

/// The items of one list, one after the other and without a copy of the list; empty ones are items too.
class Items final
{
public:
    Items(std::string_view list, char separator)
        : m_rest(list)
        , m_separator(separator)
    {
    }
    [[nodiscard]] bool atEnd() const { return m_atEnd; }
    /// Empty once the items are used up.
    std::string_view next()
    {
        const std::size_t end = m_rest.find(m_separator);
        const std::string_view item = m_rest.substr(0, end);
        m_atEnd = end == std::string_view::npos;
        m_rest = m_atEnd ? std::string_view() : m_rest.substr(end + 1);
        return item;
    }

private:
    std::string_view m_rest;
    char m_separator;
    bool m_atEnd = false;
};

/// Adds a value under a key that sorts behind every key of the record: no search.
template<typename Value> void append(QVariantMap &record, const QString &key, const Value &value)
{
    record.insert(record.cend(), key, value);
}

} // namespace

ServerMessage::ServerMessage(const QByteArray &line)
    : m_line(line)
{
    m_begins.append(0);
    for (int bar = line.indexOf('|'); bar >= 0; bar = line.indexOf('|', bar + 1))
        m_begins.append(bar + 1);
}

std::string_view ServerMessage::bytesFrom(int index) const
{
    if (index >= size())
        return {};
    const int begin = m_begins.at(index);
    return {m_line.constData() + begin, static_cast<std::size_t>(m_line.size() - begin)};
}

std::string_view ServerMessage::bytes(int index) const
{
    if (index + 1 >= size())
        return bytesFrom(index);
    return bytesFrom(index).substr(0, static_cast<std::size_t>(m_begins.at(index + 1) - 1 - m_begins.at(index)));
}

QString ServerMessage::field(int index) const
{
    return textOf(bytes(index));
}

QString ServerMessage::field(int index, const QString &fallback) const
{
    return index < size() ? field(index) : fallback;
}

int ServerMessage::number(int index) const
{
    return numberIn(bytes(index)).value_or(0);
}

QString ServerMessage::rest(int index, const QString &fallback) const
{
    return index < size() ? textOf(bytesFrom(index)) : fallback;
}

QJsonDocument ServerMessage::json() const
{
    const QJsonDocument document = parse(bytes(1));
    return document.isNull() && size() > 2 ? wholeJson() : document;
}

QJsonDocument ServerMessage::wholeJson() const
{
    return parse(bytesFrom(1));
}

namespace ServerRecords {

QList<QVariantMap> roomUsers(const ServerMessage &message)
{
    const auto list = [&message](int index) { return Items(message.bytes(index), ','); };
    Items ids = list(2);
    Items callsigns = list(3);
    Items names = list(4);
    Items transmitting = list(5);
    Items approved = list(6);
    Items muted = list(7);
    QList<QVariantMap> users;
    while (!ids.atEnd()) {
        const std::optional<int> id = numberIn(ids.next());
        QVariantMap user;
        append(user, QStringLiteral("approved"), approved.next() == "1");
        append(user, QStringLiteral("callsign"), textOf(callsigns.next()));
        append(user, QStringLiteral("is_muted"), muted.next() == "1");
        append(user, QStringLiteral("is_transmitting"), transmitting.next() == "TX");
        append(user, QStringLiteral("name"), textOf(names.next()));
        if (!id)
            continue;
        append(user, QStringLiteral("user_id"), *id);
        users.append(user);
    }
    return users;
}

QList<QVariantMap> onlineUsers(const ServerMessage &message)
{
    QList<QVariantMap> users;
    Items entries(message.bytes(1), ';');
    while (!entries.atEnd()) {
        Items items(entries.next(), ',');
        const std::optional<int> id = numberIn(items.next());
        if (!id) // an empty entry has none either
            continue;
        QVariantMap user;
        user.insert(QStringLiteral("id"), *id);
        user.insert(QStringLiteral("callsign"), textOf(items.next()));
        user.insert(QStringLiteral("name"), textOf(items.next()));
        user.insert(QStringLiteral("room"), textOf(items.next()));
        user.insert(QStringLiteral("is_admin"), items.next() == "True");
        users.append(user);
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
