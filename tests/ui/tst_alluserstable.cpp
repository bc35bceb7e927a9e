// The table of the tab with every user: what it shows, and who stays chosen in it.
#include "AllUsersRig.h"
#include "support/TestMain.h"
#include "ui/admin/EditUserDialog.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>

using namespace AdminUsers;

namespace {

constexpr int kMany = 20000;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class AllUsersTableTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_rig = std::make_unique<AllUsersRig>(); }
    void cleanup() { m_rig.reset(); }

    void rows();
    void rowButtons_data();
    void rowButtons();
    void aPressThatSlipsOffIsNoClick();
    void filters_data();
    void filters();
    void theFilterStaysForTheNextList();
    void aHiddenUserIsChosenNoLonger();
    void refreshKeepsChoiceAndPlace();
    void aVanishedUserIsChosenNoLonger();
    void sortsByTheClickedTitle();
    void manyUsers();
    void saysThatThereIsNobody();
    void findsByIdAndCallsign();

private:
    std::unique_ptr<AllUsersRig> m_rig;
};

void AllUsersTableTest::rows()
{
    m_rig->tab->showUsers({user(12), user(3, {{q("approved"), false}, {q("registered_hwid"), QString()}})});
    QCOMPARE(m_rig->total(), q("Total: 2 users"));
    QStringList first;
    for (int i = 0; i < m_rig->table()->model()->columnCount(); ++i)
        first += m_rig->table()->model()->index(0, i).data().toString();
    QCOMPARE(first, (QStringList{q("3"), q("YH3AB"), q("Bukit 3"), q("active"), q("Not Approved"), q("2031-12-30"),
                                 q("Medan"), q("2026-11-21 08:00"), q("Not Registered"), QString()}));
    QCOMPARE(m_rig->table()->model()->index(1, 4).data().toString(), q("Approved"));
    QCOMPARE(m_rig->table()->model()->index(1, 8).data().toString(), q("Registered"));
}

void AllUsersTableTest::rowButtons_data()
{
    QTest::addColumn<bool>("isDelete");
    QTest::newRow("edit") << false;
    QTest::newRow("delete") << true;
}

void AllUsersTableTest::rowButtons()
{
    QFETCH(bool, isDelete);
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(11);
    using Button = UserActionsDelegate::Button;
    if (isDelete)
        m_rig->prompts.accept();
    QTest::mouseClick(m_rig->table()->viewport(), Qt::LeftButton, {},
                      m_rig->rowButton(2, isDelete ? Button::Delete : Button::Edit));
    if (isDelete) {
        QTRY_COMPARE(m_rig->lines, (QStringList{q("ADMIN_DELETE_USER 13"), q("refresh")}));
    } else {
        QTRY_VERIFY(m_rig->tab->findChild<EditUserDialog *>());
        QCOMPARE(m_rig->tab->findChild<EditUserDialog *>()->windowTitle(), q("Edit User - YH13AB"));
    }
}

void AllUsersTableTest::aPressThatSlipsOffIsNoClick()
{
    m_rig->tab->showUsers(users(11, 13));
    using Button = UserActionsDelegate::Button;
    QTest::mousePress(m_rig->table()->viewport(), Qt::LeftButton, {}, m_rig->rowButton(0, Button::Delete));
    QTest::mouseRelease(m_rig->table()->viewport(), Qt::LeftButton, {}, m_rig->rowButton(1, Button::Delete));
    QTest::mousePress(m_rig->table()->viewport(), Qt::LeftButton, {}, m_rig->rowButton(0, Button::Delete));
    QTest::mouseRelease(m_rig->table()->viewport(), Qt::LeftButton, {}, m_rig->rowButton(0, Button::Edit));
    QCoreApplication::processEvents(); // a box would fail
    QVERIFY(m_rig->prompts.seen().isEmpty());
    QVERIFY(!m_rig->tab->findChild<QDialog *>());
}

void AllUsersTableTest::filters_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("ids");
    QTest::addColumn<QString>("total");
    QTest::newRow("none") << QString() << 0 << 0 << q("1 2 3 4") << q("Total: 4 users");
    QTest::newRow("blanks are none") << q("  ") << 0 << 0 << q("1 2 3 4") << q("Total: 4 users");
    QTest::newRow("search") << q("yh1") << 0 << 0 << q("1") << q("Total: 1 users (filtered)");
    QTest::newRow("search by name") << q("sari") << 0 << 0 << q("1 2 3 4") << q("Total: 4 users (filtered)");
    QTest::newRow("active") << QString() << 1 << 0 << q("1 4") << q("Total: 2 users (filtered)");
    QTest::newRow("pending") << QString() << 2 << 0 << q("2") << q("Total: 1 users (filtered)");
    QTest::newRow("suspended") << QString() << 3 << 0 << q("3") << q("Total: 1 users (filtered)");
    QTest::newRow("banned") << QString() << 4 << 0 << QString() << q("Total: 0 users (filtered)");
    QTest::newRow("gateways") << QString() << 0 << 1 << q("1 2") << q("Total: 2 users (filtered)");
    QTest::newRow("personal") << QString() << 0 << 2 << q("3") << q("Total: 1 users (filtered)");
    QTest::newRow("administrators") << QString() << 0 << 3 << q("4") << q("Total: 1 users (filtered)");
    QTest::newRow("all together") << q("bukit") << 2 << 1 << q("2") << q("Total: 1 users (filtered)");
}

void AllUsersTableTest::filters()
{
    QFETCH(QString, search);
    QFETCH(int, status);
    QFETCH(int, type);
    QFETCH(QString, ids);
    QFETCH(QString, total);
    m_rig->tab->showUsers(
        {user(1), user(2, {{q("status"), q("pending")}}),
         user(3, {{q("status"), q("suspended")}, {q("callsign"), q("YB3AB")}, {q("gateway_name"), {}}}),
         user(4, {{q("is_admin"), true}})});
    QTest::keyClicks(m_rig->find<QLineEdit>("allUsersSearch"), search);
    m_rig->find<QComboBox>("statusFilter")->setCurrentIndex(status);
    m_rig->find<QComboBox>("typeFilter")->setCurrentIndex(type);
    QCOMPARE(m_rig->shownIds().join(QLatin1Char(' ')), ids);
    QCOMPARE(m_rig->total(), total);
    m_rig->find<QLineEdit>("allUsersSearch")->clear();
    m_rig->find<QComboBox>("statusFilter")->setCurrentIndex(0);
    m_rig->find<QComboBox>("typeFilter")->setCurrentIndex(0);
    QCOMPARE(m_rig->total(), q("Total: 4 users"));
    QCOMPARE(m_rig->lines, QStringList()); // the server is not asked again
}

void AllUsersTableTest::theFilterStaysForTheNextList()
{
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("YH12"));
    m_rig->tab->showUsers(users(11, 13));
    QCOMPARE(m_rig->shownIds(), QStringList{q("12")});
    QCOMPARE(m_rig->total(), q("Total: 1 users (filtered)"));
}

void AllUsersTableTest::aHiddenUserIsChosenNoLonger()
{
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(12);
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("YH12"));
    QCOMPARE(m_rig->chosenId(), q("12"));
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("YH13"));
    QCOMPARE(m_rig->chosenId(), q("none"));
    m_rig->prompts.accept();
    m_rig->trigger(q("approveAction"));
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersTableTest::refreshKeepsChoiceAndPlace()
{
    m_rig->tab->resize(500, 480); // scrolls sideways
    QVERIFY2(m_rig->tab->width() < 600, qPrintable(QString::number(m_rig->tab->width())));
    m_rig->tab->showUsers(users(100, 400));
    m_rig->choose(255);
    m_rig->table()->verticalScrollBar()->setValue(150);
    m_rig->table()->horizontalScrollBar()->setValue(m_rig->table()->horizontalScrollBar()->maximum());
    const int left = m_rig->table()->horizontalScrollBar()->value();
    QCOMPARE(m_rig->table()->verticalScrollBar()->value(), 150);
    QVERIFY(left > 0);
    m_rig->tab->showUsers(users(100, 400));
    QCOMPARE(m_rig->chosenId(), q("255"));
    QCOMPARE(m_rig->table()->verticalScrollBar()->value(), 150);
    QCOMPARE(m_rig->table()->horizontalScrollBar()->value(), left);
    m_rig->tab->showUsers(users(90, 400)); // ten more above
    QCOMPARE(m_rig->chosenId(), q("255"));
    QCOMPARE(m_rig->table()->verticalScrollBar()->value(), 160);
}

void AllUsersTableTest::aVanishedUserIsChosenNoLonger()
{
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(12);
    m_rig->tab->showUsers({user(11), user(13)});
    QCOMPARE(m_rig->chosenId(), q("none"));
    QVERIFY(!m_rig->table()->currentIndex().isValid());
}

void AllUsersTableTest::sortsByTheClickedTitle()
{
    m_rig->tab->showUsers(
        {user(9, {{q("callsign"), q("B")}}), user(10, {{q("callsign"), q("C")}}), user(2, {{q("callsign"), q("A")}})});
    QCOMPARE(m_rig->shownIds(), (QStringList{q("2"), q("9"), q("10")}));
    auto *header = m_rig->table()->horizontalHeader();
    const QPoint callsign(header->sectionViewportPosition(1) + 8, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, callsign);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, callsign);
    QCOMPARE(m_rig->shownIds(), (QStringList{q("10"), q("9"), q("2")}));
    m_rig->choose(9);
    m_rig->tab->showUsers({user(9, {{q("callsign"), q("Z")}}), user(10, {{q("callsign"), q("C")}})});
    QCOMPARE(m_rig->shownIds(), (QStringList{q("9"), q("10")})); // the order stays
    QCOMPARE(m_rig->chosenId(), q("9"));
}

void AllUsersTableTest::manyUsers()
{
    const Users list = users(1, kMany);
    const int before = m_rig->tab->findChildren<QObject *>().size();
    m_rig->tab->showUsers(list);
    QCOMPARE(m_rig->total(), q("Total: 20000 users"));
    m_rig->choose(19999);
    m_rig->tab->showUsers(list);
    QCOMPARE(m_rig->chosenId(), q("19999"));
    QVERIFY2(m_rig->tab->findChildren<QObject *>().size() <= before + 20, "no object for a row");
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("yh1999"));
    QCOMPARE(m_rig->total(), q("Total: 11 users (filtered)"));
    m_rig->table()->sortByColumn(2, Qt::DescendingOrder);
    m_rig->find<QLineEdit>("allUsersSearch")->clear();
    QCOMPARE(m_rig->table()->model()->index(0, 2).data().toString(), q("Bukit 9999"));
    QVERIFY(!m_rig->table()->grab().isNull());
}

void AllUsersTableTest::saysThatThereIsNobody()
{
    const auto *empty = m_rig->find<QLabel>("emptyState");
    QVERIFY(empty->isVisible());
    QCOMPARE(empty->text(), q("No users"));
    m_rig->tab->showUsers(users(1, 1));
    QVERIFY(!empty->isVisible());
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("nobody"));
    QVERIFY(empty->isVisible());
    QCOMPARE(empty->text(), q("No user matches the search."));
    m_rig->tab->showUsers({});
    QCOMPARE(empty->text(), q("No users"));
}

void AllUsersTableTest::findsByIdAndCallsign()
{
    m_rig->tab->showUsers({user(11), user(12), {{q("callsign"), q("YH0XX")}}});
    m_rig->find<QLineEdit>("allUsersSearch")->setText(q("hides all"));
    QCOMPARE(m_rig->tab->callsignOf(12), q("YH12AB"));
    QCOMPARE(m_rig->tab->callsignOf(13), QString());
    QCOMPARE(m_rig->tab->callsignOf(0), QString());
    QCOMPARE(m_rig->tab->idOf(q("YH12AB")), 12);
    QCOMPARE(m_rig->tab->idOf(q("yh12ab")), 12);
    QCOMPARE(m_rig->tab->idOf(q("YH12A")), 0);
    QCOMPARE(m_rig->tab->idOf(q("YH0XX")), 0);
    QCOMPARE(m_rig->tab->idOf(QString()), 0);
}

EVOX_TEST_MAIN(AllUsersTableTest, QApplication)
#include "tst_alluserstable.moc"
