#include "server/Command.h"
#include "server/ServerRig.h"
#include "support/TestMain.h"

#include <QDate>
#include <QRandomGenerator>
#include <QSet>

/// An administrator's connection that sends whatever it likes: the server goes on, and the database stays one that
/// every client can read.
class ServerHostileTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();
    void wrongValues_data();
    void wrongValues();
    void randomAndMutatedLines_data();
    void randomAndMutatedLines();

private:
    void stop();
    [[nodiscard]] QString line();
    [[nodiscard]] QString token();
    [[nodiscard]] QString mutated(QString text);

    std::unique_ptr<ServerRig> m_rig;
    std::unique_ptr<RawClient> m_admin;
    std::unique_ptr<RawClient> m_member;
    QRandomGenerator m_random;
};

namespace {

constexpr int kRounds = 8;
constexpr int kLinesPerRound = 150; ///< with the questions between them less than a connection may send at once
constexpr int kLinesAtOnce = 5;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// One of each; %1 is something else every time.
constexpr const char *kForms[] = {
    "ADMIN_GET_ALL_USERS",
    "ADMIN_PENDING",
    "ADMIN_APPROVE_USER %1",
    "ADMIN_UNAPPROVE_USER %1",
    "ADMIN_KICK %1",
    "ADMIN_BAN %1",
    "ADMIN_MUTE %1 %1",
    "ADMIN_MOVE %1 %1",
    "ADMIN_RESET_HWID %1",
    "ADMIN_RESET_PASSWORD %1 \"%1\"",
    "ADMIN_DELETE_USER %1",
    "ADMIN_SET_AUDIO_QUALITY %1",
    "ADMIN_CREATE_ROOM \"%1\" %1",
    "ADMIN_EDIT_ROOM \"%1\" \"%1\" %1 \"\"",
    "ADMIN_DELETE_ROOM \"%1\"",
    "ADMIN_SET_ROOM_ORDER %1|%1|%1",
    "ADMIN_UPDATE_USER %1 \"%1\" \"%1\" \"active\" 1 0 \"%1\" \"%1\" \"%1\" \"%1\" \"%1\"",
    "ADMIN_UPDATE_USER %1 \"%1\" \"%1\" \"%1\" \"%1\" \"%1\" \"%1\" \"%1\" \"%1\" %1 %1 \"%1\"",
    "ADMIN_UPDATE_USER %1 \"%1\" \"%1\" \"pending\" \"%1\" \"%1\" \"%1\" \"%1\" \"%1\" 1 1 \"2030-01-01\"",
    "REGISTER_GATEWAY \"%1\" \"YH1AB\" \"%1\" \"\" \"%1\" \"%1\" \"\" \"%1\" \"\" \"\"",
    "JOIN %1",
    "TX_START \"%1\"",
};

constexpr const char *kTokens[] = {
    "1",
    "2",
    "3",
    "4",
    "1",
    "2",
    "3",
    "5",
    "0",
    "-1",
    "1.5",
    "2147483648",
    "99999999999999999999",
    "x",
    "",
    " ",
    "\"",
    "|",
    ",",
    ";",
    "%1",
    "%s%n",
    "NULL",
    "'; DROP TABLE accounts; --",
    "Lobby",
    "Alpha",
    "Lobby",
    "Alpha",
    "== LOBBY ==",
    "active",
    "pending",
    "suspended",
    "banned",
    "high",
    "low",
    "2030-01-01",
    "2001-01-01",
    "2030-02-30",
    "yyyy-MM-dd",
    "a,b;c",
    "\\",
    "\t",
    "\x01",
    "\u2028",
    "\u202e",
    "⛰",
    "{\"id\":1}",
    "KICKED|x",
    "true",
};

bool isOneField(const QString &text, const char *separators)
{
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control || QString::fromLatin1(separators).contains(character))
            return false;
    }
    return text.size() <= 200;
}

/// Empty, or what is wrong with the record.
QString faultOf(const Account &account)
{
    static const QSet<QString> statuses{q("active"), q("pending"), q("suspended"), q("banned")};
    if (account.id <= 0 || account.callsign.isEmpty() || account.passwordHash.isEmpty())
        return q("incomplete");
    for (const QString &name : {account.callsign, account.name, account.gatewayName, account.responsibleCallsign}) {
        if (!isOneField(name, "|,;\""))
            return q("name: ") + name;
    }
    for (const QString &text : {account.frequency, account.location, account.email, account.whatsapp, account.expiry}) {
        if (!isOneField(text, "|\""))
            return q("text: ") + text;
    }
    if (!account.expiry.isEmpty() && !QDate::fromString(account.expiry, Qt::ISODate).isValid())
        return q("expiry: ") + account.expiry;
    if (account.status == QLatin1String("pending") && account.approved)
        return q("pending and approved");
    return statuses.contains(account.status) ? QString() : q("status: ") + account.status;
}

QString faultOf(AccountStore &store)
{
    const auto admin = store.account(4);
    if (!admin || !admin->admin || !admin->mayLogIn())
        return q("the administrator lost himself");
    for (const Account &account : store.accounts()) {
        const QString fault = faultOf(account);
        if (!fault.isEmpty())
            return account.callsign + QLatin1Char(' ') + fault;
    }
    for (const StoredRoom &room : store.rooms()) {
        if (room.name.isEmpty() || !isOneField(room.name, "|,;\"") || room.maximum < 0 || room.maximum > 10000)
            return q("room: ") + room.name;
    }
    return {};
}

} // namespace

void ServerHostileTest::init()
{
    if (m_rig)
        return; // nothing changed it
    m_rig = std::make_unique<ServerRig>();
    m_admin = m_rig->client();
    QVERIFY(m_admin->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    m_member = m_rig->client();
    QVERIFY(m_member->enter(q("YB1A")));
    m_rig->change(q("YB1A"), [](Account &account) { account.muted = true; });
}

void ServerHostileTest::cleanupTestCase()
{
    stop();
}

void ServerHostileTest::stop()
{
    m_member.reset();
    m_admin.reset();
    m_rig.reset();
}

void ServerHostileTest::wrongValues_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("refusal");
    const QString edit = q("ADMIN_UPDATE_USER 1 \"a\" \"b\" \"active\" \"c\" \"d\" \"e\" \"f\" \"g\" %1 %2 \"\"");
    const QString user = q("ERROR|Data user tidak valid");
    const QString mute = q("ERROR|Nilai mute harus 0 atau 1");
    const QString maximum = q("ERROR|Jumlah maksimum harus 0 sampai 10000");
    QTest::newRow("mute: word") << q("ADMIN_MUTE 1 x") << mute;
    QTest::newRow("mute: nothing") << q("ADMIN_MUTE 1") << mute;
    QTest::newRow("mute: two") << q("ADMIN_MUTE 1 2") << mute;
    QTest::newRow("approved: word") << edit.arg(q("x"), q("0")) << user;
    QTest::newRow("approved: two") << edit.arg(q("2"), q("0")) << user;
    QTest::newRow("administrator: word") << edit.arg(q("1"), q("yes")) << user;
    QTest::newRow("administrator: empty") << edit.arg(q("1"), q("\"\"")) << user;
    for (const char *value : {"", "abc", "-5", "10001", "99999999999", "5x", "1.5"}) {
        QTest::addRow("create: %s", value) << q("ADMIN_CREATE_ROOM \"Bravo\" ") + q(value) << maximum;
        QTest::addRow("edit: %s", value)
            << QStringLiteral("ADMIN_EDIT_ROOM \"Lobby\" \"Aula\" \"%1\" \"\"").arg(QLatin1String(value)) << maximum;
    }
    QTest::newRow("kick: word") << q("ADMIN_KICK all") << q("ERROR|User tidak online");
    QTest::newRow("kick: huge") << q("ADMIN_KICK 4294967297") << q("ERROR|User tidak online");
    QTest::newRow("move: no room") << q("ADMIN_MOVE 1") << q("ERROR|Room tidak ditemukan");
    QTest::newRow("move: no user") << q("ADMIN_MOVE Alpha") << q("ERROR|User tidak online");
}

/// Refused, and nothing changes.
void ServerHostileTest::wrongValues()
{
    QFETCH(QString, command);
    QFETCH(QString, refusal);
    static_cast<void>(m_admin->answer(q("PING"), q("PONG")));
    const QString before = m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL"));
    m_admin->send(command);
    m_admin->send(q("PING"));
    QCOMPARE(m_admin->until(q("PONG")), QStringList({refusal, q("PONG")}));
    QCOMPARE(m_admin->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL")), before);
    QCOMPARE(m_rig->store().rooms().size(), 2);
    for (const StoredRoom &room : m_rig->store().rooms())
        QCOMPARE(room.maximum, 0);
}

QString ServerHostileTest::token()
{
    const int choice = m_random.bounded(40);
    if (choice == 0)
        return QString(m_random.bounded(2000), QLatin1Char('x'));
    if (choice == 1) {
        QByteArray bytes;
        for (int i = 0; i < 20; ++i)
            bytes += char(m_random.bounded(256));
        return QString::fromUtf8(bytes);
    }
    return q(kTokens[m_random.bounded(int(std::size(kTokens)))]);
}

QString ServerHostileTest::mutated(QString text)
{
    for (int i = m_random.bounded(3); i > 0 && !text.isEmpty(); --i) {
        const int at = m_random.bounded(text.size());
        switch (m_random.bounded(4)) {
        case 0: text.remove(at, 1 + m_random.bounded(4)); break;
        case 1: text.insert(at, token()); break;
        case 2: text[at] = QChar(m_random.bounded(0x3000)); break;
        default: text += QLatin1Char(' ') + token(); break;
        }
    }
    return text;
}

QString ServerHostileTest::line()
{
    QString text;
    for (const QString &part : q(kForms[m_random.bounded(int(std::size(kForms)))]).split(q("%1")))
        text += (text.isEmpty() ? QString() : token()) + part;
    if (m_random.bounded(3) == 0)
        text = mutated(text);
    // Whoever kicks himself is a stranger from then on, and the rest is refused unread.
    return Command(text).word() == QLatin1String("ADMIN_KICK") && Command(text).number(0) == 4 ? QString() : text;
}

void ServerHostileTest::randomAndMutatedLines_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= kRounds; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void ServerHostileTest::randomAndMutatedLines()
{
    QFETCH(int, seed);
    m_random.seed(static_cast<quint32>(seed));
    for (int i = 0; i < kLinesPerRound; i += kLinesAtOnce) {
        QByteArray lines;
        while (lines.count('\n') < kLinesAtOnce)
            lines += line().toUtf8() + "\r\n";
        m_admin->sendRaw(lines);
        QVERIFY2(!m_admin->answer(q("PING"), q("PONG")).isEmpty(), "the server does not answer");
        QVERIFY(m_admin->isConnected());
    }
    QVERIFY2(m_admin->answer(q("ADMIN_PENDING"), q("ADMIN_PENDING")).startsWith(q("ADMIN_PENDING|[")),
             "the administrator is one no more");
    const QString fault = faultOf(m_rig->store());
    QVERIFY2(fault.isEmpty(), qPrintable(fault));

    m_rig->change(q("YB4D"), [this](Account &account) { account.passwordHash = m_rig->passwordHash(); });
    m_rig->restart();
    auto again = m_rig->client();
    QVERIFY(again->login(q("YB4D")).startsWith(q("LOGIN_OK")));
    QVERIFY(again->answer(q("ADMIN_GET_ALL_USERS"), q("ADMIN_ALL")).startsWith(q("ADMIN_ALL_USERS|[")));
    for (const StoredRoom &room : m_rig->store().rooms()) {
        if (room.maximum == 0)
            QVERIFY(again->answer(q("JOIN ") + room.name, q("JOIN_")).startsWith(q("JOIN_OK|") + room.name));
    }
    again.reset();
    stop();
}

EVOX_TEST_MAIN(ServerHostileTest, QCoreApplication)
#include "tst_serverhostile.moc"
