#pragma once

#include <QJsonDocument>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// One line of the server: its fields, split at "|", empty ones kept. Missing fields read as empty texts.
class ServerMessage final
{
public:
    explicit ServerMessage(const QString &line);

    /// The message word, in capitals.
    [[nodiscard]] QString word() const { return m_word; }
    [[nodiscard]] QString field(int index) const;
    /// The field, or the fallback where the line has no such field.
    [[nodiscard]] QString field(int index, const QString &fallback) const;
    [[nodiscard]] int number(int index) const { return field(index).toInt(); }
    [[nodiscard]] int size() const { return m_fields.size(); }
    /// This field and all that follow, with the "|" between them; the fallback where the line has no such field.
    [[nodiscard]] QString rest(int index, const QString &fallback = {}) const;
    /// The JSON text of field 1; where that does not parse, of everything after the first "|".
    [[nodiscard]] QJsonDocument json() const;
    /// The JSON text of everything after the first "|".
    [[nodiscard]] QJsonDocument wholeJson() const;

private:
    QString m_line;
    QStringList m_fields;
    QString m_word;
};

/// The records that the server's messages carry; the keys of the maps are written here only.
namespace ServerRecords {

/// "USER_LIST": user_id, callsign, name, is_transmitting, approved, is_muted.
[[nodiscard]] QList<QVariantMap> roomUsers(const ServerMessage &message);
/// "ONLINE_USERS": id, callsign, name, room, is_admin.
[[nodiscard]] QList<QVariantMap> onlineUsers(const ServerMessage &message);
/// "AUDIO_QUALITY": preset, bitrate, sample_rate, frame_duration, complexity; numbers that are missing read 0.
[[nodiscard]] QVariantMap audioQuality(const ServerMessage &message);
/// The objects of a JSON array, key by key; what is no object is left out.
[[nodiscard]] QList<QVariantMap> objects(const QJsonDocument &array);

} // namespace ServerRecords
