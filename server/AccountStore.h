#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QSqlQuery;

/// One account. Texts are clean (see cleanText()).
struct Account
{
    int id = 0;
    QString callsign; ///< in capitals, unique
    QByteArray passwordHash;
    QString gatewayName;
    QString name; ///< the person responsible
    QString responsibleCallsign;
    QString frequency;
    QString location;
    QString email;
    QString whatsapp;
    QString status = QStringLiteral("active"); ///< active, pending, suspended, banned
    bool approved = false;                     ///< may transmit
    bool admin = false;
    QString expiry; ///< of the radio permit, yyyy-MM-dd; empty: none
    QString hwid;   ///< the device the account is bound to; empty: not yet
    bool resetRequested = false;
    bool muted = false; ///< may not transmit until an administrator lifts it
    QString lastLogin;  ///< ISO 8601, UTC

    [[nodiscard]] bool mayLogIn() const; ///< by its status
};

/// One room as it is stored.
struct StoredRoom
{
    QString name;
    int maximum = 0; ///< members; 0: no limit
};

/// Accounts, rooms and settings in one SQLite file. Every call reads or writes it at once. When it cannot be read to
/// the end *isRead is false, and the log says why.
class AccountStore final
{
public:
    enum class Change { Done, NoAccount, Failed };

    AccountStore();
    ~AccountStore();
    Q_DISABLE_COPY_MOVE(AccountStore)

    /// Opens or creates the file and brings its tables up to date; otherwise says why not.
    [[nodiscard]] bool open(const QString &path, QString *error);

    [[nodiscard]] std::optional<Account> account(const QString &callsign, bool *isRead = nullptr) const;
    [[nodiscard]] std::optional<Account> account(int id, bool *isRead = nullptr) const;
    [[nodiscard]] QList<Account> accounts(bool *isRead = nullptr) const; ///< by id
    /// How many are "pending"; nothing where they cannot be counted.
    [[nodiscard]] std::optional<int> pendingCount() const;
    /// Adds the account and sets its id; false when the callsign is taken.
    [[nodiscard]] bool add(Account *account);
    [[nodiscard]] bool update(const Account &account); ///< by its id
    [[nodiscard]] bool remove(int id);
    /// Reads and writes the account in one step, so that nothing is undone which another program writes at that time.
    [[nodiscard]] Change change(const QString &callsign, const std::function<void(Account &)> &edit);

    [[nodiscard]] QList<StoredRoom> rooms(bool *isRead = nullptr) const; ///< in their order
    [[nodiscard]] bool addRoom(const StoredRoom &room);
    [[nodiscard]] bool editRoom(const QString &oldName, const StoredRoom &room);
    [[nodiscard]] bool removeRoom(const QString &name);
    /// Rooms that are not named keep their order behind the named ones.
    [[nodiscard]] bool setRoomOrder(const QStringList &names);

    [[nodiscard]] QString setting(const QString &key) const;
    [[nodiscard]] bool setSetting(const QString &key, const QString &value);

private:
    [[nodiscard]] bool migrate(QString *error);
    [[nodiscard]] QSqlQuery prepared(const QString &sql) const;

    QString m_connection;
    QSqlDatabase m_database;
};
