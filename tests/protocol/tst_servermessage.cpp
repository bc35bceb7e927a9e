#include "net/protocol/ServerMessage.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonObject>

class ServerMessageTest final : public QObject
{
    Q_OBJECT

private slots:
    void fields();
    void json_data();
    void json();
    void roomUsers_data();
    void roomUsers();
    void onlineUsers_data();
    void onlineUsers();
    void audioQuality_data();
    void audioQuality();
    void objects();
};

namespace {

QString text(const QList<QVariantMap> &records)
{
    QJsonArray array;
    for (const QVariantMap &record : records)
        array.append(QJsonObject::fromVariantMap(record));
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QString user(int id, const char *callsign, const char *name, bool tx, bool approved, bool muted)
{
    return QStringLiteral("{\"approved\":%1,\"callsign\":\"%2\",\"is_muted\":%3,\"is_transmitting\":%4,"
                          "\"name\":\"%5\",\"user_id\":%6}")
        .arg(QVariant(approved).toString(), QString::fromLatin1(callsign), QVariant(muted).toString(),
             QVariant(tx).toString(), QString::fromLatin1(name))
        .arg(id);
}

} // namespace

void ServerMessageTest::fields()
{
    const ServerMessage message("kicked|a||b");
    QCOMPARE(message.word(), QStringLiteral("KICKED"));
    QCOMPARE(message.size(), 4);
    QCOMPARE(message.field(0), QStringLiteral("kicked"));
    QCOMPARE(message.field(2), QString());
    QCOMPARE(message.field(9), QString());
    QCOMPARE(message.field(2, QStringLiteral("fallback")), QString());
    QCOMPARE(message.field(9, QStringLiteral("fallback")), QStringLiteral("fallback"));
    QCOMPARE(message.rest(1), QStringLiteral("a||b"));
    QCOMPARE(message.rest(4, QStringLiteral("fallback")), QStringLiteral("fallback"));
    QCOMPARE(ServerMessage("MUTED|1|x|").rest(2), QStringLiteral("x|"));
    QCOMPARE(ServerMessage({}).word(), QString());
    QCOMPARE(ServerMessage("LOGIN_OK|||x|12a").number(4), 0);
}

void ServerMessageTest::json_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("json"); // empty: nothing
    const auto row = [](const char *name, const char *line, const char *json) {
        QTest::newRow(name) << QString::fromUtf8(line) << QString::fromUtf8(json);
    };
    row("object", "SERVER_INFO|{\"a\":1}", "{\"a\":1}");
    row("array", "ADMIN_PENDING|[{\"a\":1}]", "[{\"a\":1}]");
    row("a bar in a text", "SERVER_INFO|{\"a\":\"x|y\"}", "{\"a\":\"x|y\"}");
    row("field 1 alone when it parses", "SERVER_INFO|{\"a\":1}|more", "{\"a\":1}");
    row("broken", "SERVER_INFO|{\"a\":", "");
    row("missing", "SERVER_INFO", "");
    row("a number", "SERVER_INFO|5", "");
}

void ServerMessageTest::json()
{
    QFETCH(QString, line);
    const QJsonDocument document = ServerMessage(line.toUtf8()).json();
    QTEST(document.isNull() ? QString() : QString::fromUtf8(document.toJson(QJsonDocument::Compact)), "json");
}

void ServerMessageTest::roomUsers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("records");
    const auto row = [](const char *name, const char *line, const QString &records) {
        QTest::newRow(name) << QString::fromUtf8(line) << QLatin1Char('[') + records + QLatin1Char(']');
    };
    row("two users", "USER_LIST|Lobby|1,2|YB1A,YB2B|Ani,Budi|TX,RX|1,0|0,1",
        user(1, "YB1A", "Ani", true, true, false) + QLatin1Char(',') + user(2, "YB2B", "Budi", false, false, true));
    row("no lists", "USER_LIST|Lobby", {});
    row("empty lists", "USER_LIST|Lobby||||||", {});
    row("flags missing", "USER_LIST|Lobby|1|YB1A|Ani", user(1, "YB1A", "Ani", false, false, false));
    row("short lists", "USER_LIST|Lobby|1,2|YB1A||TX|1|1",
        user(1, "YB1A", "", true, true, true) + QLatin1Char(',') + user(2, "", "", false, false, false));
    row("an id that is no number goes with its row", "USER_LIST|Lobby|x,2|YB1A,YB2B|Ani,Budi|TX,TX|1,1|0,0",
        user(2, "YB2B", "Budi", true, true, false));
    row("flag in lower case is none", "USER_LIST|Lobby|1|YB1A|Ani|tx|yes|true",
        user(1, "YB1A", "Ani", false, false, false));
}

void ServerMessageTest::roomUsers()
{
    QFETCH(QString, line);
    QTEST(text(ServerRecords::roomUsers(ServerMessage(line.toUtf8()))), "records");
}

void ServerMessageTest::onlineUsers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("records");
    const auto row = [](const char *name, const char *line, const char *records) {
        QTest::newRow(name) << QString::fromUtf8(line) << QString::fromUtf8(records);
    };
    row("two users", "ONLINE_USERS|1,YB1A,Ani,Lobby,True;2,YB2B,Budi,,False;",
        "[{\"callsign\":\"YB1A\",\"id\":1,\"is_admin\":true,\"name\":\"Ani\",\"room\":\"Lobby\"},"
        "{\"callsign\":\"YB2B\",\"id\":2,\"is_admin\":false,\"name\":\"Budi\",\"room\":\"\"}]");
    row("flag in lower case is none", "ONLINE_USERS|1,YB1A,Ani,Lobby,true",
        "[{\"callsign\":\"YB1A\",\"id\":1,\"is_admin\":false,\"name\":\"Ani\",\"room\":\"Lobby\"}]");
    row("short entry", "ONLINE_USERS|;;1,YB1A;",
        "[{\"callsign\":\"YB1A\",\"id\":1,\"is_admin\":false,\"name\":\"\",\"room\":\"\"}]");
    row("an id that is no number", "ONLINE_USERS|x,YB1A,Ani,Lobby,True", "[]");
    row("nobody", "ONLINE_USERS|", "[]");
    row("no field", "ONLINE_USERS", "[]");
}

void ServerMessageTest::onlineUsers()
{
    QFETCH(QString, line);
    QTEST(text(ServerRecords::onlineUsers(ServerMessage(line.toUtf8()))), "records");
}

void ServerMessageTest::audioQuality_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("record");
    const auto row = [](const char *name, const char *line, const char *record) {
        QTest::newRow(name) << QString::fromUtf8(line) << QString::fromUtf8(record);
    };
    row("whole", "AUDIO_QUALITY|low|16000|24000|20|5",
        "[{\"bitrate\":16000,\"complexity\":5,\"frame_duration\":20,\"preset\":\"low\",\"sample_rate\":24000}]");
    row("short", "AUDIO_QUALITY|low|16000",
        "[{\"bitrate\":16000,\"complexity\":0,\"frame_duration\":0,\"preset\":\"low\",\"sample_rate\":0}]");
    row("no numbers", "AUDIO_QUALITY|low|x|99999999999|-|",
        "[{\"bitrate\":0,\"complexity\":0,\"frame_duration\":0,\"preset\":\"low\",\"sample_rate\":0}]");
}

void ServerMessageTest::audioQuality()
{
    QFETCH(QString, line);
    QTEST(text({ServerRecords::audioQuality(ServerMessage(line.toUtf8()))}), "record");
}

void ServerMessageTest::objects()
{
    QCOMPARE(text(ServerRecords::objects(QJsonDocument::fromJson("[{\"a\":1}, 5, null, [2], {\"b\":\"x\"}]"))),
             QStringLiteral("[{\"a\":1},{\"b\":\"x\"}]"));
}

EVOX_TEST_MAIN(ServerMessageTest, QCoreApplication)
#include "tst_servermessage.moc"
