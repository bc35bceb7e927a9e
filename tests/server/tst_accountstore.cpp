#include "server/AccountStore.h"
#include "server/Command.h"
#include "server/Passwords.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <future>
#include <vector>

class AccountStoreTest final : public QObject
{
    Q_OBJECT

private slots:
    void keepsAccounts();
    void changesAnAccountInOneStep();
    void tellsAReadThatFails();
    void makesAFileOnce();
    void bringsAnOlderFileUpToDate();
    void keepsRoomsInOrder();
    void givesCleanNamesBack();
    void keepsSettings();
    void refusesWhatIsNoDatabase();
    void passwords();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// Past the store.
void execute(const QString &path, const QStringList &statements)
{
    {
        QSqlDatabase raw = QSqlDatabase::addDatabase(q("QSQLITE"), q("raw"));
        raw.setDatabaseName(path);
        QVERIFY(raw.open());
        QSqlQuery query(raw);
        for (const QString &statement : statements)
            QVERIFY2(query.exec(statement), qPrintable(statement));
    }
    QSqlDatabase::removeDatabase(q("raw"));
}

} // namespace

void AccountStoreTest::keepsAccounts()
{
    const QTemporaryDir folder;
    QString error;
    Account account;
    account.callsign = q("YB1A");
    account.passwordHash = QByteArray("h\0sh", 4);
    account.gatewayName = q("Bukit O'Hara");
    account.approved = true;
    account.expiry = q("2027-12-31");
    {
        AccountStore store;
        QVERIFY2(store.open(folder.filePath(q("club.sqlite")), &error), qPrintable(error));
        QVERIFY(store.add(&account));
        QVERIFY(account.id > 0);
        QVERIFY2(!store.add(&account), "the callsign is taken");
        account.hwid = q("pc'; DROP TABLE accounts; --");
        QVERIFY(store.update(account));
    }
    AccountStore store;
    QVERIFY2(store.open(folder.filePath(q("club.sqlite")), &error), qPrintable(error));
    const auto read = store.account(q("YB1A"));
    QVERIFY(read);
    QCOMPARE(read->id, account.id);
    QCOMPARE(read->passwordHash, account.passwordHash);
    QCOMPARE(read->gatewayName, account.gatewayName);
    QCOMPARE(read->hwid, account.hwid);
    QCOMPARE(read->expiry, account.expiry);
    QCOMPARE(read->status, q("active"));
    QVERIFY(read->approved && !read->admin && !read->resetRequested);
    QVERIFY(!store.account(q("yb1a")));
    QVERIFY(store.account(account.id));
    QVERIFY(store.remove(account.id));
    QVERIFY(!store.remove(account.id));
    QVERIFY(store.accounts().isEmpty());
}

void AccountStoreTest::changesAnAccountInOneStep()
{
    const QTemporaryDir folder;
    QString error;
    AccountStore store;
    AccountStore other;
    QVERIFY2(store.open(folder.filePath(q("club.sqlite")), &error), qPrintable(error));
    QVERIFY2(other.open(folder.filePath(q("club.sqlite")), &error), qPrintable(error));
    Account account;
    account.callsign = q("YB1A");
    account.passwordHash = "hash";
    QVERIFY(store.add(&account));
    account.status = q("banned");
    QVERIFY(other.update(account));
    const auto promote = [](Account &changed) { changed.admin = true; };
    QCOMPARE(store.change(q("YB1A"), promote), AccountStore::Change::Done);
    const auto read = other.account(q("YB1A"));
    QVERIFY(read && read->admin);
    QCOMPARE(read->status, q("banned"));
    QCOMPARE(store.change(q("YB9Z"), promote), AccountStore::Change::NoAccount);
    QVERIFY2(other.update(account), "the file is free again");
}

/// Also when it fails after some rows.
void AccountStoreTest::tellsAReadThatFails()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(q("club.sqlite"));
    QString error;
    AccountStore store;
    QVERIFY2(store.open(path, &error), qPrintable(error));
    Account account;
    account.passwordHash = "hash";
    for (const char *callsign : {"YB1A", "YB2B", "YB3C"}) {
        account.callsign = q(callsign);
        QVERIFY(store.add(&account));
    }
    execute(path, {q("ALTER TABLE accounts RENAME TO kept"),
                   q("CREATE VIEW accounts AS SELECT id, callsign, password_hash, gateway_name, name, "
                     "responsible_callsign, frequency, location, email, whatsapp, status, approved, admin, expiry, "
                     "CASE id WHEN 2 THEN abs(-9223372036854775806 - id) ELSE hwid END AS hwid, reset_requested, "
                     "last_login, muted FROM kept")});
    LogCapture log;
    log.expectWarning(q("the database could not be read: "));
    bool isRead = true;
    QCOMPARE(store.accounts(&isRead).size(), 1);
    QVERIFY(!isRead);
    QVERIFY(!store.account(2, &isRead) && !isRead);
    QCOMPARE(log.count(q("the database could not be read: ")), 2);
    QVERIFY(store.account(3, &isRead) && isRead);
    QVERIFY2(!store.account(9, &isRead) && isRead, "there is none, and that is no failure");
    QCOMPARE(store.change(q("YB2B"), [](Account &) {}), AccountStore::Change::Failed);
}

void AccountStoreTest::makesAFileOnce()
{
    constexpr int kFiles = 20;
    constexpr int kOpeners = 4;
    const QTemporaryDir folder;
    for (int file = 0; file < kFiles; ++file) {
        const QString path = folder.filePath(QString::number(file));
        std::vector<std::future<QString>> openers;
        for (int i = 0; i < kOpeners; ++i) {
            openers.push_back(std::async(std::launch::async, [path] {
                AccountStore store;
                QString error;
                return store.open(path, &error) ? QString() : error;
            }));
        }
        for (auto &opener : openers)
            QCOMPARE(opener.get(), QString());
    }
}

void AccountStoreTest::bringsAnOlderFileUpToDate()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(q("club.sqlite"));
    QString error;
    Account account;
    account.callsign = q("YB1A");
    account.passwordHash = "hash";
    {
        AccountStore store;
        QVERIFY2(store.open(path, &error), qPrintable(error));
        QVERIFY(store.add(&account));
    }
    execute(path, {q("ALTER TABLE accounts DROP COLUMN muted"), q("PRAGMA user_version = 1")});
    {
        AccountStore store;
        QVERIFY2(store.open(path, &error), qPrintable(error));
        auto read = store.account(q("YB1A"));
        QVERIFY(read && !read->muted);
        read->muted = true;
        QVERIFY(store.update(*read));
    }
    AccountStore store;
    QVERIFY2(store.open(path, &error), qPrintable(error));
    QVERIFY(store.account(q("YB1A"))->muted);
}

void AccountStoreTest::keepsRoomsInOrder()
{
    AccountStore store;
    QString error;
    QVERIFY(store.open(q(":memory:"), &error));
    const auto names = [&store] {
        QStringList list;
        for (const StoredRoom &room : store.rooms())
            list.append(room.name);
        return list;
    };
    for (const char *name : {"Lobby", "Alpha", "Beta"})
        QVERIFY(store.addRoom({q(name), 5}));
    QVERIFY(!store.addRoom({q("Alpha"), 5}));
    QCOMPARE(names(), QStringList({q("Lobby"), q("Alpha"), q("Beta")}));
    QVERIFY(store.setRoomOrder({q("Beta"), q("Nowhere"), q("Lobby")}));
    QCOMPARE(names(), QStringList({q("Beta"), q("Lobby"), q("Alpha")}));
    QVERIFY(store.editRoom(q("Alpha"), {q("Gamma"), 7}));
    QCOMPARE(store.rooms().last().maximum, 7);
    QVERIFY(!store.editRoom(q("Alpha"), {q("Delta"), 7}));
    QVERIFY(store.removeRoom(q("Lobby")));
    QCOMPARE(names(), QStringList({q("Beta"), q("Gamma")}));
}

void AccountStoreTest::givesCleanNamesBack()
{
    AccountStore store;
    QString error;
    QVERIFY(store.open(q(":memory:"), &error));
    const QString cutPair = QString(199, QLatin1Char('x')) + q("\xF0\x9F\x98\x80");
    for (const QString &name : {QString(QChar(0xFEFF)) + q("Utara"), QString(QChar(0xFFFE)) + q("Selatan"),
                                q("Timur") + QChar(0xFFFF), cutPair, QString(QChar(0xDE00)) + q("Barat")}) {
        QVERIFY(store.addRoom({cleanName(name), 0}));
        QCOMPARE(store.rooms().last().name, cleanName(name));
    }
}

void AccountStoreTest::keepsSettings()
{
    AccountStore store;
    QString error;
    QVERIFY(store.open(q(":memory:"), &error));
    QCOMPARE(store.setting(q("audio_preset")), QString());
    QVERIFY(store.setSetting(q("audio_preset"), q("low")));
    QVERIFY(store.setSetting(q("audio_preset"), q("high")));
    QCOMPARE(store.setting(q("audio_preset")), q("high"));
}

void AccountStoreTest::refusesWhatIsNoDatabase()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(q("club.sqlite")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    AccountStore store;
    QString error;
    QVERIFY(!store.open(file.fileName(), &error));
    QVERIFY(!error.isEmpty());
}

void AccountStoreTest::passwords()
{
    QVERIFY(Passwords::initialize());
    const QByteArray hash = Passwords::hash(q("rahasia kafé"));
    QVERIFY(hash.startsWith("$argon2id$"));
    QVERIFY(hash != Passwords::hash(q("rahasia kafé")));
    QVERIFY(Passwords::matches(hash, q("rahasia kafé")));
    QVERIFY(!Passwords::matches(hash, q("rahasia kafe")));
    QVERIFY(!Passwords::matches({}, {}));
    QVERIFY(!Passwords::matches(QByteArray(10000, 'x'), q("x")));
    QCOMPARE(Passwords::randomBytes(32).size(), 32);
}

EVOX_TEST_MAIN(AccountStoreTest, QCoreApplication)
#include "tst_accountstore.moc"
