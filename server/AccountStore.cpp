#include "server/AccountStore.h"

#include <QDebug>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

namespace {

// Each step brings the file from one version to the next; user_version counts those that were taken.
const QList<QStringList> &migrations()
{
    static const QList<QStringList> steps{
        {
            QStringLiteral(
                "CREATE TABLE accounts (id INTEGER PRIMARY KEY AUTOINCREMENT, callsign TEXT NOT NULL UNIQUE, "
                "password_hash BLOB NOT NULL, gateway_name TEXT NOT NULL, name TEXT NOT NULL, "
                "responsible_callsign TEXT NOT NULL, frequency TEXT NOT NULL, location TEXT NOT NULL, "
                "email TEXT NOT NULL, whatsapp TEXT NOT NULL, status TEXT NOT NULL, approved INTEGER NOT NULL, "
                "admin INTEGER NOT NULL, expiry TEXT NOT NULL, hwid TEXT NOT NULL, "
                "reset_requested INTEGER NOT NULL, last_login TEXT NOT NULL)"),
            QStringLiteral(
                "CREATE TABLE rooms (name TEXT PRIMARY KEY, maximum INTEGER NOT NULL, position INTEGER NOT NULL)"),
            QStringLiteral("CREATE TABLE settings (key TEXT PRIMARY KEY, value TEXT NOT NULL)"),
        },
        {
            QStringLiteral("ALTER TABLE accounts ADD COLUMN muted INTEGER NOT NULL DEFAULT 0"),
        }};
    return steps;
}

const QString kColumns = QStringLiteral("callsign, password_hash, gateway_name, name, responsible_callsign, frequency, "
                                        "location, email, whatsapp, status, approved, admin, expiry, hwid, "
                                        "reset_requested, last_login, muted");

void bindAll(QSqlQuery *query, const Account &a)
{
    const QVariantList values{a.callsign,  a.passwordHash, a.gatewayName, a.name,     a.responsibleCallsign,
                              a.frequency, a.location,     a.email,       a.whatsapp, a.status,
                              a.approved,  a.admin,        a.expiry,      a.hwid,     a.resetRequested,
                              a.lastLogin, a.muted};
    for (const QVariant &value : values) {
        // An empty text is a null text to Qt, and would be NULL in the table.
        const bool isNullText = value.userType() == QMetaType::QString && value.toString().isNull();
        query->addBindValue(isNullText ? QVariant(QStringLiteral("")) : value);
    }
}

Account fromRow(const QSqlQuery &query)
{
    int column = 0;
    const auto next = [&] { return query.value(column++); };
    Account a;
    a.id = next().toInt();
    a.callsign = next().toString();
    a.passwordHash = next().toByteArray();
    a.gatewayName = next().toString();
    a.name = next().toString();
    a.responsibleCallsign = next().toString();
    a.frequency = next().toString();
    a.location = next().toString();
    a.email = next().toString();
    a.whatsapp = next().toString();
    a.status = next().toString();
    a.approved = next().toBool();
    a.admin = next().toBool();
    a.expiry = next().toString();
    a.hwid = next().toString();
    a.resetRequested = next().toBool();
    a.lastLogin = next().toString();
    a.muted = next().toBool();
    return a;
}

/// Runs a query that reads, and hands each row on.
void readRows(QSqlQuery *query, bool *isRead, const std::function<void()> &take)
{
    const bool isPrepared = !query->lastError().isValid();
    if (isPrepared && query->exec()) {
        while (query->next())
            take();
    }
    const QSqlError error = query->lastError();
    if (error.isValid())
        qWarning().noquote() << "the database could not be read:" << error.text();
    if (isRead)
        *isRead = !error.isValid();
}

std::optional<Account> readAccount(QSqlQuery *query, bool *isRead)
{
    std::optional<Account> account;
    readRows(query, isRead, [&] { account = fromRow(*query); });
    return account;
}

} // namespace

bool Account::mayLogIn() const
{
    return status == QLatin1String("active") || status == QLatin1String("pending");
}

AccountStore::AccountStore()
    : m_connection(QUuid::createUuid().toString())
{
}

AccountStore::~AccountStore()
{
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

bool AccountStore::open(const QString &path, QString *error)
{
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_database.setDatabaseName(path);
    if (!m_database.open()) {
        *error = m_database.lastError().text();
        return false;
    }
    return migrate(error);
}

bool AccountStore::migrate(QString *error)
{
    QSqlQuery query(m_database);
    query.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
    // Locked before the version is read: a command may make the same new file while the server does.
    bool isGood = query.exec(QStringLiteral("BEGIN IMMEDIATE")) && query.exec(QStringLiteral("PRAGMA user_version")) &&
                  query.next();
    const int version = query.value(0).toInt();
    query.finish();
    if (isGood && version > migrations().size()) {
        *error = QStringLiteral("the database was made by a newer version of this server");
        query.exec(QStringLiteral("ROLLBACK"));
        return false;
    }
    for (int step = version; isGood && step < migrations().size(); ++step) {
        for (const QString &sql : migrations().at(step))
            isGood = isGood && query.exec(sql);
    }
    isGood = isGood && query.exec(QStringLiteral("PRAGMA user_version = %1").arg(migrations().size())) &&
             query.exec(QStringLiteral("COMMIT"));
    if (isGood)
        return true;
    *error = query.lastError().text();
    query.exec(QStringLiteral("ROLLBACK"));
    return false;
}

QSqlQuery AccountStore::prepared(const QString &sql) const
{
    QSqlQuery query(m_database);
    query.prepare(sql);
    return query;
}

std::optional<Account> AccountStore::account(const QString &callsign, bool *isRead) const
{
    QSqlQuery query = prepared(QStringLiteral("SELECT id, %1 FROM accounts WHERE callsign = ?").arg(kColumns));
    query.addBindValue(callsign);
    return readAccount(&query, isRead);
}

std::optional<Account> AccountStore::account(int id, bool *isRead) const
{
    QSqlQuery query = prepared(QStringLiteral("SELECT id, %1 FROM accounts WHERE id = ?").arg(kColumns));
    query.addBindValue(id);
    return readAccount(&query, isRead);
}

QList<Account> AccountStore::accounts(bool *isRead) const
{
    QList<Account> all;
    QSqlQuery query = prepared(QStringLiteral("SELECT id, %1 FROM accounts ORDER BY id").arg(kColumns));
    readRows(&query, isRead, [&] { all.append(fromRow(query)); });
    return all;
}

std::optional<int> AccountStore::pendingCount() const
{
    std::optional<int> count;
    QSqlQuery query = prepared(QStringLiteral("SELECT COUNT(*) FROM accounts WHERE status = 'pending'"));
    readRows(&query, nullptr, [&] { count = query.value(0).toInt(); });
    return count;
}

bool AccountStore::add(Account *account)
{
    QSqlQuery query =
        prepared(QStringLiteral("INSERT INTO accounts (%1) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)").arg(kColumns));
    bindAll(&query, *account);
    if (!query.exec())
        return false;
    account->id = query.lastInsertId().toInt();
    return true;
}

bool AccountStore::update(const Account &account)
{
    QString assignments = kColumns;
    assignments.replace(QLatin1String(","), QLatin1String(" = ?,"));
    QSqlQuery query = prepared(QStringLiteral("UPDATE accounts SET %1 = ? WHERE id = ?").arg(assignments));
    bindAll(&query, account);
    query.addBindValue(account.id);
    return query.exec() && query.numRowsAffected() == 1;
}

AccountStore::Change AccountStore::change(const QString &callsign, const std::function<void(Account &)> &edit)
{
    QSqlQuery query(m_database);
    if (!query.exec(QStringLiteral("BEGIN IMMEDIATE")))
        return Change::Failed;
    bool isRead = false;
    auto found = account(callsign, &isRead);
    if (found)
        edit(*found);
    if (found && update(*found) && query.exec(QStringLiteral("COMMIT")))
        return Change::Done;
    query.exec(QStringLiteral("ROLLBACK"));
    return found || !isRead ? Change::Failed : Change::NoAccount;
}

bool AccountStore::remove(int id)
{
    QSqlQuery query = prepared(QStringLiteral("DELETE FROM accounts WHERE id = ?"));
    query.addBindValue(id);
    return query.exec() && query.numRowsAffected() == 1;
}

QList<StoredRoom> AccountStore::rooms(bool *isRead) const
{
    QList<StoredRoom> all;
    QSqlQuery query = prepared(QStringLiteral("SELECT name, maximum FROM rooms ORDER BY position, name"));
    readRows(&query, isRead, [&] { all.append({query.value(0).toString(), query.value(1).toInt()}); });
    return all;
}

bool AccountStore::addRoom(const StoredRoom &room)
{
    QSqlQuery query = prepared(QStringLiteral(
        "INSERT INTO rooms (name, maximum, position) VALUES (?, ?, (SELECT IFNULL(MAX(position), 0) + 1 FROM rooms))"));
    query.addBindValue(room.name);
    query.addBindValue(room.maximum);
    return query.exec();
}

bool AccountStore::editRoom(const QString &oldName, const StoredRoom &room)
{
    QSqlQuery query = prepared(QStringLiteral("UPDATE rooms SET name = ?, maximum = ? WHERE name = ?"));
    query.addBindValue(room.name);
    query.addBindValue(room.maximum);
    query.addBindValue(oldName);
    return query.exec() && query.numRowsAffected() == 1;
}

bool AccountStore::removeRoom(const QString &name)
{
    QSqlQuery query = prepared(QStringLiteral("DELETE FROM rooms WHERE name = ?"));
    query.addBindValue(name);
    return query.exec() && query.numRowsAffected() == 1;
}

bool AccountStore::setRoomOrder(const QStringList &names)
{
    QStringList order = names;
    bool isRead = false;
    for (const StoredRoom &room : rooms(&isRead)) {
        if (!order.contains(room.name))
            order.append(room.name);
    }
    if (!isRead)
        return false;
    m_database.transaction();
    for (int position = 0; position < order.size(); ++position) {
        QSqlQuery query = prepared(QStringLiteral("UPDATE rooms SET position = ? WHERE name = ?"));
        query.addBindValue(position + 1);
        query.addBindValue(order.at(position));
        if (!query.exec()) {
            m_database.rollback();
            return false;
        }
    }
    return m_database.commit();
}

QString AccountStore::setting(const QString &key) const
{
    QSqlQuery query = prepared(QStringLiteral("SELECT value FROM settings WHERE key = ?"));
    query.addBindValue(key);
    QString value;
    readRows(&query, nullptr, [&] { value = query.value(0).toString(); });
    return value;
}

bool AccountStore::setSetting(const QString &key, const QString &value)
{
    QSqlQuery query = prepared(QStringLiteral("INSERT OR REPLACE INTO settings (key, value) VALUES (?, ?)"));
    query.addBindValue(key);
    query.addBindValue(value);
    return query.exec();
}
