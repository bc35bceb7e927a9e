#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QList>
#include <QString>
#include <QVarLengthArray>
#include <QVariantMap>

#include <string_view>

/// One line of the server, UTF-8: its fields, split at "|", empty ones kept. Missing fields read as empty texts. Only
/// the places of the fields are noted; a text is made of the fields that are asked for.
class ServerMessage final
{
public:
    explicit ServerMessage(const QByteArray &line);

    /// The message word, in capitals.
    [[nodiscard]] QString word() const { return field(0).toUpper(); }
    [[nodiscard]] QString field(int index) const;
    /// The field, or the fallback where the line has no such field.
    [[nodiscard]] QString field(int index, const QString &fallback) const;
    /// The bytes of the field; valid as long as this message.
    [[nodiscard]] std::string_view bytes(int index) const;
    /// The field as a decimal number; 0 where it is none.
    [[nodiscard]] int number(int index) const;
    [[nodiscard]] int size() const { return m_begins.size(); }
    /// This field and all that follow, with the "|" between them; the fallback where the line has no such field.
    [[nodiscard]] QString rest(int index, const QString &fallback = {}) const;
    /// The JSON text of field 1; where that does not parse, of everything after the first "|".
    [[nodiscard]] QJsonDocument json() const;
    /// The JSON text of everything after the first "|".
    [[nodiscard]] QJsonDocument wholeJson() const;

private:
    [[nodiscard]] std::string_view bytesFrom(int index) const;

    QByteArray m_line;
    QVarLengthArray<int, 24> m_begins; ///< where each field begins
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
