#include "AdminUsers.h"
#include "support/TestMain.h"
#include "ui/admin/UserFilterModel.h"
#include "ui/admin/UserRecord.h"
#include "ui/admin/UserTableModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <ctime>

using namespace AdminUsers;
using Column = UserTableModel::Column;
using Type = UserRecord::Type;

namespace {

constexpr int kMany = 20000;

QVector<Column> everyColumn()
{
    QVector<Column> columns;
    for (int i = 0; i <= static_cast<int>(Column::Actions); ++i)
        columns += static_cast<Column>(i);
    return columns;
}

/// What a row with this record shows in that column.
QString shown(const QVariantMap &record, Column column, int role = Qt::DisplayRole)
{
    UserTableModel model({column});
    model.setUsers({record});
    return model.index(0, 0).data(role).toString();
}

QVariantMap with(const char *key, const QVariant &value)
{
    return {{QLatin1String(key), value}};
}

QStringList idsOf(const QAbstractItemModel &model)
{
    QStringList ids;
    for (int row = 0; row < model.rowCount(); ++row)
        ids += model.index(row, 0).data().toString();
    return ids;
}

} // namespace

class UserTableModelTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void behavesAsAModel();
    void titles_data();
    void titles();
    void texts_data();
    void texts();
    void ids_data();
    void ids();
    void hostileTextsAreShownAsTheyAre();
    void rowsAreFoundById();
    void types_data();
    void types();
    void filters_data();
    void filters();
    void filterFollowsTheNextList();
    void sorts_data();
    void sorts();
    void manyUsersNeedNoItems();
};

/// Somewhere that is not Greenwich.
void UserTableModelTest::initTestCase()
{
    qputenv("TZ", "WIB-7");
    tzset();
}

void UserTableModelTest::behavesAsAModel()
{
    UserTableModel model(everyColumn());
    UserFilterModel filter(&model);
    const QAbstractItemModelTester strict(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QAbstractItemModelTester strictFilter(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setUsers(users(1, 5));
    filter.setFilter({QStringLiteral("YH3AB"), {}, {}});
    QCOMPARE(filter.rowCount(), 1);
    filter.sort(1, Qt::DescendingOrder);
    model.setUsers({});
    QCOMPARE(filter.rowCount(), 0);
    QVERIFY(!model.data(model.index(7, 7)).isValid());
    QVERIFY(!model.headerData(99, Qt::Horizontal).isValid());
}

void UserTableModelTest::titles_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("title");
    const auto row = [](Column column, const char *title) {
        QTest::newRow(title) << static_cast<int>(column) << QString::fromLatin1(title);
    };
    row(Column::Id, "ID");
    row(Column::Callsign, "Callsign");
    row(Column::Name, "Name");
    row(Column::GatewayName, "Gateway Name");
    row(Column::Status, "Status");
    row(Column::Approved, "Approved");
    row(Column::Expiry, "Expiry");
    row(Column::Location, "Location");
    row(Column::LastLogin, "Last Login");
    row(Column::Device, "HWID");
    row(Column::Email, "Email");
    row(Column::WhatsApp, "WhatsApp");
    row(Column::Actions, "Actions");
}

void UserTableModelTest::titles()
{
    QFETCH(int, column);
    QFETCH(QString, title);
    const UserTableModel model({static_cast<Column>(column)});
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), title);
}

void UserTableModelTest::texts_data()
{
    QTest::addColumn<QVariantMap>("record");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QVariantMap &record, Column column, const char *text) {
        QTest::newRow(name) << record << static_cast<int>(column) << QString::fromLatin1(text);
    };
    const QVariantMap full = user(7);
    row("id", full, Column::Id, "7");
    row("callsign", full, Column::Callsign, "YH7AB");
    row("name", full, Column::Name, "Sari");
    row("name: the person in charge", with("responsible_name", QStringLiteral("Budi")), Column::Name, "Budi");
    row("gateway name", full, Column::GatewayName, "Bukit 7");
    row("no gateway: the person in charge", with("responsible_name", QStringLiteral("Budi")), Column::GatewayName,
        "Budi");
    row("status", with("status", QStringLiteral("Suspended")), Column::Status, "suspended");
    row("no status", {}, Column::Status, "active");
    row("approved", full, Column::Approved, "Approved");
    row("not approved", with("approved", false), Column::Approved, "Not Approved");
    row("approved as a number", with("approved", 1), Column::Approved, "Approved");
    row("nothing about approval", {}, Column::Approved, "Not Approved");
    row("expiry", full, Column::Expiry, "2031-12-30");
    row("location", full, Column::Location, "Medan");
    row("last login", full, Column::LastLogin, "2026-11-21 08:00");
    row("last login in UTC", with("last_login", QStringLiteral("2026-11-21T20:30:59Z")), Column::LastLogin,
        "2026-11-22 03:30");
    row("last login with a zone", with("last_login", QStringLiteral("2026-11-21T20:30:59.5+09:00")), Column::LastLogin,
        "2026-11-21 18:30");
    row("last login of no known form", with("last_login", QStringLiteral("kemarin")), Column::LastLogin, "kemarin");
    row("never logged in", with("last_login", QString()), Column::LastLogin, "");
    row("device", full, Column::Device, "Registered");
    row("no device", with("registered_hwid", QString()), Column::Device, "Not Registered");
    row("device false", with("registered_hwid", false), Column::Device, "Not Registered");
    row("device 0", with("registered_hwid", 0.0), Column::Device, "Not Registered");
    row("device 0 as a text", with("registered_hwid", QStringLiteral("0")), Column::Device, "Not Registered");
    row("device of blanks", with("registered_hwid", QStringLiteral("  ")), Column::Device, "Not Registered");
    row("device of an empty list", with("registered_hwid", QVariantList()), Column::Device, "Not Registered");
    row("device true", with("registered_hwid", true), Column::Device, "Registered");
    row("device 1", with("registered_hwid", 1.0), Column::Device, "Registered");
    row("device of null", with("registered_hwid", QVariant()), Column::Device, "Not Registered");
    row("email", full, Column::Email, "yh@example.org");
    row("whatsapp", full, Column::WhatsApp, "0812");
    row("actions", full, Column::Actions, "");
    row("a list for a text", with("callsign", QVariantList{1, 2}), Column::Callsign, "");
}

void UserTableModelTest::texts()
{
    QFETCH(QVariantMap, record);
    QFETCH(int, column);
    QFETCH(QString, text);
    QCOMPARE(shown(record, static_cast<Column>(column)), text);
}

void UserTableModelTest::ids_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("id");
    QTest::newRow("whole number") << QVariant(12) << 12;
    QTest::newRow("JSON number") << QVariant(12.0) << 12;
    QTest::newRow("digits") << QVariant(QStringLiteral("12")) << 12;
    QTest::newRow("largest") << QVariant(2147483647.0) << 2147483647;
    QTest::newRow("larger than any id") << QVariant(2147483648.0) << 0;
    QTest::newRow("far too large") << QVariant(1e300) << 0;
    QTest::newRow("zero") << QVariant(0) << 0;
    QTest::newRow("negative") << QVariant(-4) << 0;
    QTest::newRow("no number") << QVariant(QStringLiteral("x")) << 0;
    QTest::newRow("not a number") << QVariant(qQNaN()) << 0;
    QTest::newRow("null") << QVariant() << 0;
}

void UserTableModelTest::ids()
{
    QFETCH(QVariant, value);
    QFETCH(int, id);
    QCOMPARE(UserRecord::id(with("id", value)), id);
    UserTableModel model({Column::Id});
    model.setUsers({with("id", value)});
    QCOMPARE(model.idAt(0), id);
}

void UserTableModelTest::hostileTextsAreShownAsTheyAre()
{
    const QVariantMap hostile =
        with("callsign", QString(QLatin1String("<b>x</b>\n\t&") + QString(1000000, QLatin1Char('W'))));
    const QString text = shown(hostile, Column::Callsign);
    QVERIFY2(text.startsWith(QLatin1String("<b>x</b>  &W")), qPrintable(text));
    QCOMPARE(text.size(), 200);
    QVERIFY(shown(hostile, Column::Callsign, Qt::ToolTipRole)
                .startsWith(QLatin1String("<qt>&lt;b&gt;x&lt;/b&gt;  &amp;W")));
}

void UserTableModelTest::rowsAreFoundById()
{
    UserTableModel model({Column::Id});
    model.setUsers({user(4), with("callsign", QStringLiteral("nobody")), user(9)});
    QCOMPARE(model.rowOf(9), 2);
    QCOMPARE(model.rowOf(5), -1);
    QCOMPARE(model.rowOf(0), -1);
}

void UserTableModelTest::types_data()
{
    QTest::addColumn<QVariantMap>("record");
    QTest::addColumn<int>("type");
    const auto row = [](const char *name, const QVariantMap &record, Type type) {
        QTest::newRow(name) << record << static_cast<int>(type);
    };
    const QVariantMap person = with("callsign", QStringLiteral("YB0ABC"));
    QVariantMap named = person;
    named.insert(QStringLiteral("gateway_name"), QStringLiteral("Bukit"));
    QVariantMap admin = named;
    admin.insert(QStringLiteral("is_admin"), true);
    row("a gateway's callsign", with("callsign", QStringLiteral("YH0AB")), Type::Gateway);
    row("the same in small letters", with("callsign", QStringLiteral("yh0ab")), Type::Gateway);
    row("a gateway's name", named, Type::Gateway);
    row("neither", person, Type::Personal);
    row("nothing", {}, Type::Personal);
    row("an administrator with a gateway", admin, Type::Admin);
}

void UserTableModelTest::types()
{
    QFETCH(QVariantMap, record);
    QFETCH(int, type);
    QCOMPARE(static_cast<int>(UserRecord::typeOf(record)), type);
}

void UserTableModelTest::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("status");
    QTest::addColumn<int>("type"); // -1: any
    QTest::addColumn<QString>("ids");
    const auto row = [](const char *name, const char *text, const char *status, int type, const char *ids) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromLatin1(status) << type
                            << QString::fromLatin1(ids);
    };
    const int gateway = static_cast<int>(Type::Gateway);
    const int personal = static_cast<int>(Type::Personal);
    const int admin = static_cast<int>(Type::Admin);
    row("everybody", "", "", -1, "1 2 3 4 5");
    row("callsign", "YH1", "", -1, "1");
    row("callsign in small letters", "yh1", "", -1, "1");
    row("gateway name", "GUNUNG", "", -1, "2");
    row("person's name", "dewi", "", -1, "4");
    row("person in charge, who has no name of his own", "agus", "", -1, "5");
    row("letters beyond ASCII", "ÉLAN", "", -1, "3");
    row("location is not looked at", "Medan", "", -1, "");
    row("a pattern is no pattern", ".*", "", -1, "");
    row("nobody", "zzz", "", -1, "");
    row("active", "", "active", -1, "1 4");
    row("pending", "", "pending", -1, "2");
    row("suspended", "", "suspended", -1, "3");
    row("banned", "", "banned", -1, "5");
    row("gateways", "", "", gateway, "1 2");
    row("personal", "", "", personal, "3 5");
    row("administrators", "", "", admin, "4");
    row("status and type", "", "active", gateway, "1");
    row("all three", "gunung", "pending", gateway, "2");
    row("two of three are not enough", "gunung", "active", gateway, "");
}

void UserTableModelTest::filters()
{
    QFETCH(QString, text);
    QFETCH(QString, status);
    QFETCH(int, type);
    QFETCH(QString, ids);
    const auto record = [](int id, const char *callsign, const char *name, const char *gateway, const char *state) {
        return user(id, {{QStringLiteral("callsign"), QString::fromUtf8(callsign)},
                         {QStringLiteral("name"), QString::fromUtf8(name)},
                         {QStringLiteral("gateway_name"), QString::fromUtf8(gateway)},
                         {QStringLiteral("status"), QString::fromUtf8(state)}});
    };
    UserTableModel model({Column::Id});
    Users list{record(1, "YH1AB", "Sari", "Bukit", "active"), record(2, "YH2AB", "Sari", "Gunung Sinabung", "pending"),
               record(3, "YB3AB", "élan", "", "suspended"), record(4, "YH4AB", "Dewi", "Laut", "Active"),
               record(5, "YB5AB", "", "", "banned")};
    list[3].insert(QStringLiteral("is_admin"), true);
    list[3].insert(QStringLiteral("responsible_name"), QStringLiteral("Agus"));
    list[4].insert(QStringLiteral("responsible_name"), QStringLiteral("Agus"));
    model.setUsers(list);
    UserFilterModel filter(&model);
    UserFilterModel::Filter wanted{text, status, {}};
    if (type >= 0)
        wanted.type = static_cast<Type>(type);
    filter.setFilter(wanted);
    QCOMPARE(idsOf(filter).join(QLatin1Char(' ')), ids);
    QCOMPARE(filter.filter().isActive(), idsOf(filter).size() != list.size());
}

void UserTableModelTest::filterFollowsTheNextList()
{
    UserTableModel model({Column::Id});
    UserFilterModel filter(&model);
    filter.setFilter({QStringLiteral("YH2"), {}, {}});
    model.setUsers(users(1, 3));
    QCOMPARE(idsOf(filter), QStringList{QStringLiteral("2")});
    model.setUsers(users(20, 22));
    QCOMPARE(filter.rowCount(), 3);
}

void UserTableModelTest::sorts_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("descending");
    QTest::addColumn<QString>("ids");
    QTest::newRow("ids by number") << 0 << false << QStringLiteral("2 9 10");
    QTest::newRow("ids from the top") << 0 << true << QStringLiteral("10 9 2");
    QTest::newRow("texts in any case") << 1 << false << QStringLiteral("10 2 9");
    QTest::newRow("approval") << 2 << false << QStringLiteral("2 10 9");
}

void UserTableModelTest::sorts()
{
    QFETCH(int, column);
    QFETCH(bool, descending);
    QFETCH(QString, ids);
    UserTableModel model({Column::Id, Column::Callsign, Column::Approved});
    const auto record = [](int id, const char *callsign, bool approved) {
        return user(
            id, {{QStringLiteral("callsign"), QString::fromLatin1(callsign)}, {QStringLiteral("approved"), approved}});
    };
    model.setUsers({record(2, "b", true), record(10, "A", false), record(9, "C", false)});
    UserFilterModel filter(&model);
    filter.sort(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    QCOMPARE(idsOf(filter).join(QLatin1Char(' ')), ids);
}

/// The list is shared with whoever gave it, however long it is, and told about once.
void UserTableModelTest::manyUsersNeedNoItems()
{
    const Users list = users(1, kMany);
    UserTableModel model(everyColumn());
    UserFilterModel filter(&model);
    filter.sort(0);
    QSignalSpy inserted(&filter, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&filter, &QAbstractItemModel::modelReset);
    model.setUsers(list);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(inserted.count(), 0);
    QVERIFY2(model.users().isSharedWith(list), "the records are not copied");
    QCOMPARE(filter.rowCount(), kMany);
    filter.setFilter({QStringLiteral("yh19999"), {}, {}});
    QCOMPARE(idsOf(filter), QStringList{QStringLiteral("19999")});
    filter.setFilter({});
    filter.sort(0, Qt::DescendingOrder);
    QCOMPARE(filter.index(0, 0).data().toInt(), kMany);
    QCOMPARE(filter.index(kMany - 1, 0).data().toInt(), 1);
}

EVOX_TEST_MAIN(UserTableModelTest, QCoreApplication)
#include "tst_usertablemodel.moc"
