#include "support/TestMain.h"
#include "ui/admin/OnlineUserModel.h"
#include "ui/admin/OnlineUsersTab.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QVariantAnimation>

class OnlineUsersTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();
    void startsEmpty();
    void columns();
    void mutedAsFarAsTold_data();
    void mutedAsFarAsTold();
    void mutedByTheAccounts();
    void longTextsAreCut();
    void refreshKeepsThePlaceOfNobody();
    void filters_data();
    void filters();
    void sortsByEveryColumn_data();
    void sortsByEveryColumn();
    void refreshKeepsSelectionAndPlace();
    void selectedUserWhoLeft();
    void roomFilterSurvivesTheNextList_data();
    void roomFilterSurvivesTheNextList();
    void emptyTexts();
    void thousandsOfUsers();
    void modelKeepsItsPromises();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QVariantMap user(int id, const char *callsign, const char *name, const char *room)
{
    return {{q("id"), id}, {q("callsign"), q(callsign)}, {q("name"), q(name)}, {q("room"), q(room)}};
}

QList<QVariantMap> threeUsers()
{
    return {user(1, "YB1A", "Siti", "Lobby"), user(2, "YH2B", "ani", "Alpha"), user(3, "YB3C", "Budi", "Lobby")};
}

QList<QVariantMap> manyUsers(int count)
{
    QList<QVariantMap> users;
    for (int id = 1; id <= count; ++id)
        users.append({{q("id"), id},
                      {q("callsign"), QStringLiteral("YB%1").arg(id, 5, 10, QLatin1Char('0'))},
                      {q("name"), QStringLiteral("Operator %1").arg(id)},
                      {q("room"), q(id % 2 ? "Lobby" : "Alpha")}});
    return users;
}

struct Rig
{
    Rig()
    {
        tab.resize(880, 480);
        tab.show();
    }
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return tab.findChild<Widget *>(q(name));
    }
    [[nodiscard]] QTableView *table() const { return find<QTableView>("onlineUsersTable"); }
    [[nodiscard]] QStringList column(int column) const
    {
        QStringList texts;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            texts.append(table()->model()->index(row, column).data().toString());
        return texts;
    }
    [[nodiscard]] QString callsigns() const { return column(0).join(QLatin1Char(' ')); }
    [[nodiscard]] QString total() const { return find<QLabel>("onlineTotalLabel")->text(); }
    [[nodiscard]] QString emptyText() const
    {
        const auto *label = find<QLabel>("emptyState");
        return label->isVisible() ? label->text() : QString();
    }
    void select(int row) const { table()->setCurrentIndex(table()->model()->index(row, 0)); }
    [[nodiscard]] QString selected() const
    {
        const QModelIndexList rows = table()->selectionModel()->selectedRows();
        return rows.isEmpty() ? QString() : rows.first().data().toString();
    }

    OnlineUsersTab tab;
};

} // namespace

/// The button that clears the search fades in and out. A fade outlives its button and ends itself, given a turn.
void OnlineUsersTabTest::cleanupTestCase()
{
    constexpr int kLongerThanAFade = 300; // milliseconds
    QVariantAnimation last;
    last.setStartValue(0);
    last.setEndValue(1);
    last.setDuration(kLongerThanAFade);
    QSignalSpy finished(&last, &QVariantAnimation::finished);
    last.start();
    QVERIFY(finished.wait());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void OnlineUsersTabTest::startsEmpty()
{
    const Rig rig;
    QCOMPARE(rig.total(), q("Total: 0 users online"));
    QCOMPARE(rig.find<QLineEdit>("onlineSearchEdit")->placeholderText(), q("Search callsign or name..."));
    const auto *rooms = rig.find<QComboBox>("onlineRoomFilter");
    QCOMPARE(rooms->count(), 1);
    QCOMPARE(rooms->itemText(0), q("All Rooms"));
    QVERIFY(!rig.table()->accessibleName().isEmpty());
}

void OnlineUsersTabTest::columns()
{
    Rig rig;
    rig.tab.showUsers({user(7, "YB1A", "<b>Siti</b>", "Lobby")});
    const QAbstractItemModel *model = rig.table()->model();
    QStringList headers;
    QStringList texts;
    for (int column = 0; column < model->columnCount(); ++column) {
        headers.append(model->headerData(column, Qt::Horizontal).toString());
        texts.append(model->index(0, column).data().toString());
    }
    QCOMPARE(headers, QStringList({q("Callsign"), q("Name"), q("Room"), q("Status"), q("Muted")}));
    QCOMPARE(texts, QStringList({q("YB1A"), q("<b>Siti</b>"), q("Lobby"), q("Online"), q("-")}));
    QCOMPARE(rig.total(), q("Total: 1 users online"));
}

void OnlineUsersTabTest::mutedAsFarAsTold_data()
{
    QTest::addColumn<QVariant>("muted");
    QTest::addColumn<QString>("text");
    QTest::newRow("not told") << QVariant() << q("-");
    QTest::newRow("muted") << QVariant(true) << q("Yes");
    QTest::newRow("not muted") << QVariant(false) << q("-");
    QTest::newRow("muted, as a number") << QVariant(1.0) << q("Yes");
    QTest::newRow("null") << QVariant(QMetaType::Nullptr, nullptr) << q("-");
}

void OnlineUsersTabTest::mutedAsFarAsTold()
{
    QFETCH(QVariant, muted);
    QFETCH(QString, text);
    Rig rig;
    QVariantMap record = user(1, "YB1A", "Siti", "Lobby");
    if (muted.isValid())
        record.insert(q("is_muted"), muted);
    rig.tab.showUsers({record});
    QCOMPARE(rig.column(OnlineUserModel::Muted), QStringList(text));
}

/// The list of who is online does not say who is muted; that of the accounts does.
void OnlineUsersTabTest::mutedByTheAccounts()
{
    Rig rig;
    QList<QVariantMap> online = threeUsers(); // ids 1, 2 and 3
    online[2].insert(q("is_muted"), false);
    online.append({{q("callsign"), q("YB4D")}});
    QList<QVariantMap> accounts{{{q("id"), 1.0}, {q("is_muted"), true}},
                                {{q("id"), 2.0}, {q("is_muted"), false}},
                                {{q("id"), 3.0}, {q("is_muted"), true}},
                                {{q("is_muted"), true}}};
    const QStringList muted{q("Yes"), q("-"), q("-"), q("-")}; // YB1A, YB3C by its own record, YB4D, YH2B
    rig.tab.showUsers(online);
    QCOMPARE(rig.column(OnlineUserModel::Muted), QStringList({q("-"), q("-"), q("-"), q("-")}));
    rig.tab.showAccounts(accounts);
    QCOMPARE(rig.column(OnlineUserModel::Muted), muted);
    rig.tab.showUsers(online);
    QCOMPARE(rig.column(OnlineUserModel::Muted), muted);
    accounts[0].insert(q("is_muted"), false);
    rig.tab.showAccounts(accounts);
    QCOMPARE(rig.column(OnlineUserModel::Muted).first(), q("-"));
}

void OnlineUsersTabTest::longTextsAreCut()
{
    Rig rig;
    const QString longText = q("<b>A\nB\u2028C</b>") + QString(1000000, QLatin1Char('W'));
    QVariantMap record = user(1, "", "", "");
    for (const char *key : {"callsign", "name", "room"})
        record.insert(q(key), longText);
    QVariantMap other = record;
    other.insert(q("id"), 2);
    other.insert(q("room"), QString(longText + QLatin1Char('X'))); // the same as far as it is shown
    rig.tab.showUsers({record, other});
    for (const int column : {OnlineUserModel::Callsign, OnlineUserModel::Name, OnlineUserModel::Room}) {
        QCOMPARE(rig.column(column).first().size(), 200);
        QVERIFY(rig.column(column).first().startsWith(q("<b>A B C</b>WW")));
    }
    rig.tab.showRooms({longText, longText + QLatin1Char('X')});
    auto *rooms = rig.find<QComboBox>("onlineRoomFilter");
    QCOMPARE(rooms->itemText(1).size(), 200);
    rooms->setCurrentIndex(2);
    QCOMPARE(rig.column(0).size(), 1);
    QVERIFY(!rig.tab.grab().isNull());
}

void OnlineUsersTabTest::refreshKeepsThePlaceOfNobody()
{
    Rig rig;
    rig.tab.showUsers(manyUsers(200));
    rig.table()->verticalScrollBar()->setValue(90);
    QCOMPARE(rig.table()->verticalScrollBar()->value(), 90);
    rig.tab.showUsers(manyUsers(200));
    QCOMPARE(rig.selected(), QString());
    QCOMPARE(rig.table()->verticalScrollBar()->value(), 90);
}

void OnlineUsersTabTest::filters_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<int>("room"); // entry of the filter
    QTest::addColumn<QString>("shown");
    QTest::newRow("none") << q("") << 0 << q("YB1A YB3C YH2B");
    QTest::newRow("callsign") << q("YH") << 0 << q("YH2B");
    QTest::newRow("callsign in small letters") << q("yb") << 0 << q("YB1A YB3C");
    QTest::newRow("name in capitals") << q("ANI") << 0 << q("YH2B");
    QTest::newRow("blanks around it") << q("  budi ") << 0 << q("YB3C");
    QTest::newRow("marks are no pattern") << q(".*") << 0 << q("");
    QTest::newRow("not in the room's name") << q("Lobby") << 0 << q("");
    QTest::newRow("room") << q("") << 1 << q("YB1A YB3C");
    QTest::newRow("other room") << q("") << 2 << q("YH2B");
    QTest::newRow("empty room") << q("") << 3 << q("");
    QTest::newRow("room and text") << q("siti") << 1 << q("YB1A");
    QTest::newRow("room against text") << q("siti") << 2 << q("");
}

void OnlineUsersTabTest::filters()
{
    QFETCH(QString, search);
    QFETCH(int, room);
    QFETCH(QString, shown);
    Rig rig;
    rig.tab.showRooms({q("Lobby"), q("Alpha"), q("All Rooms")});
    rig.tab.showUsers(threeUsers());
    QTest::keyClicks(rig.find<QLineEdit>("onlineSearchEdit"), search);
    rig.find<QComboBox>("onlineRoomFilter")->setCurrentIndex(room);
    QCOMPARE(rig.callsigns(), shown);
    QCOMPARE(rig.total(), q("Total: 3 users online"));
    rig.tab.showUsers(threeUsers());
    QCOMPARE(rig.callsigns(), shown);
}

void OnlineUsersTabTest::sortsByEveryColumn_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("shown");
    QTest::newRow("callsign") << 0 << q("YB1A YB3C YH2B");
    QTest::newRow("name, in any case") << 1 << q("YH2B YB3C YB1A");
    QTest::newRow("room") << 2 << q("YH2B YB1A YB3C");
}

void OnlineUsersTabTest::sortsByEveryColumn()
{
    QFETCH(int, column);
    QFETCH(QString, shown);
    Rig rig;
    rig.tab.showUsers(threeUsers());
    rig.table()->sortByColumn(column, Qt::AscendingOrder);
    QCOMPARE(rig.callsigns(), shown);
    rig.tab.showUsers(threeUsers());
    QCOMPARE(rig.callsigns(), shown);
}

void OnlineUsersTabTest::refreshKeepsSelectionAndPlace()
{
    Rig rig;
    rig.tab.showUsers(manyUsers(200));
    rig.select(120);
    rig.table()->verticalScrollBar()->setValue(90);
    QList<QVariantMap> next = manyUsers(200);
    std::reverse(next.begin(), next.end());
    next.removeLast(); // somebody above went
    rig.tab.showUsers(next);
    QCOMPARE(rig.selected(), q("YB00121"));
    QCOMPARE(rig.table()->verticalScrollBar()->value(), 90);
}

void OnlineUsersTabTest::selectedUserWhoLeft()
{
    Rig rig;
    rig.tab.showUsers(threeUsers());
    rig.select(0);
    QCOMPARE(rig.selected(), q("YB1A"));
    rig.tab.showUsers(threeUsers().mid(1));
    QCOMPARE(rig.selected(), QString());
}

void OnlineUsersTabTest::roomFilterSurvivesTheNextList_data()
{
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("shown");
    QTest::newRow("same") << QStringList({q("Lobby"), q("Alpha")}) << q("Alpha") << q("YH2B");
    QTest::newRow("another order") << QStringList({q("Alpha"), q("Lobby")}) << q("Alpha") << q("YH2B");
    QTest::newRow("room is gone") << QStringList({q("Lobby")}) << q("All Rooms") << q("YB1A YB3C YH2B");
    QTest::newRow("no rooms") << QStringList() << q("All Rooms") << q("YB1A YB3C YH2B");
}

void OnlineUsersTabTest::roomFilterSurvivesTheNextList()
{
    QFETCH(QStringList, rooms);
    QFETCH(QString, chosen);
    QFETCH(QString, shown);
    Rig rig;
    rig.tab.showUsers(threeUsers());
    rig.tab.showRooms({q("Lobby"), q("Alpha")});
    rig.find<QComboBox>("onlineRoomFilter")->setCurrentIndex(2);
    QCOMPARE(rig.callsigns(), q("YH2B"));
    rig.tab.showRooms(rooms);
    QCOMPARE(rig.find<QComboBox>("onlineRoomFilter")->currentText(), chosen);
    QCOMPARE(rig.find<QComboBox>("onlineRoomFilter")->count(), rooms.size() + 1);
    QCOMPARE(rig.callsigns(), shown);
}

void OnlineUsersTabTest::emptyTexts()
{
    Rig rig;
    QCOMPARE(rig.emptyText(), q("No users online."));
    rig.tab.showUsers(threeUsers());
    QCOMPARE(rig.emptyText(), QString());
    rig.find<QLineEdit>("onlineSearchEdit")->setText(q("zzz"));
    QCOMPARE(rig.emptyText(), q("No user matches the search."));
    rig.find<QLineEdit>("onlineSearchEdit")->clear();
    QCOMPARE(rig.emptyText(), QString());
    rig.tab.showUsers({});
    QCOMPARE(rig.emptyText(), q("No users online."));
    QCOMPARE(rig.total(), q("Total: 0 users online"));
}

void OnlineUsersTabTest::thousandsOfUsers()
{
    constexpr int kUsers = 20000;
    Rig rig;
    rig.tab.showUsers(manyUsers(kUsers));
    QCOMPARE(rig.total(), q("Total: 20000 users online"));
    QCOMPARE(rig.table()->model()->rowCount(), kUsers);
    rig.table()->sortByColumn(0, Qt::DescendingOrder);
    QCOMPARE(rig.table()->model()->index(0, 0).data().toString(), q("YB20000"));
    rig.find<QLineEdit>("onlineSearchEdit")->setText(q("yb1999"));
    QCOMPARE(rig.table()->model()->rowCount(), 10);
    // Rows are no objects of their own, whatever their number.
    QVERIFY(rig.tab.findChildren<QObject *>().size() < 200);
}

void OnlineUsersTabTest::modelKeepsItsPromises()
{
    OnlineUserModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setUsers(threeUsers());
    QCOMPARE(model.rowOf(2), 1);
    QCOMPARE(model.rowOf(9), -1);
    QCOMPARE(model.userId(1), 2);
    QCOMPARE(model.userId(-1), 0);
    QCOMPARE(model.userId(3), 0);
    model.setUsers({});
    QCOMPARE(model.rowCount(), 0);
}

EVOX_TEST_MAIN(OnlineUsersTabTest, QApplication)
#include "tst_onlineuserstab.moc"
