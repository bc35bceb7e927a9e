#include "AllUsersRig.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/EditUserDialog.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolBar>

using namespace AdminUsers;

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class AllUsersTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_rig = std::make_unique<AllUsersRig>(); }
    void cleanup() { m_rig.reset(); }

    void looksAsAnnounced();
    void toolBar_data();
    void toolBar();
    void needsAChosenUser_data();
    void needsAChosenUser();
    void focusAloneChoosesNobody();
    void keyboardChooses_data();
    void keyboardChooses();
    void actsOnTheChosenUser_data();
    void actsOnTheChosenUser();
    void aRecordWithoutIdIsLeftAlone_data();
    void aRecordWithoutIdIsLeftAlone();
    void resetHwidTellsWhose();
    void deletionIsAskedFor_data();
    void deletionIsAskedFor();
    void goneWhileAskedAboutDeletion();
    void theListChangesWhileAskedAboutDeletion();
    void theDeleteKeyWorksInTheTableOnly();
    void edits_data();
    void edits();
    void keyboardReachesEverything();
    void pictures_data();
    void pictures();

private:
    std::unique_ptr<AllUsersRig> m_rig;
};

void AllUsersTabTest::looksAsAnnounced()
{
    QCOMPARE(m_rig->find<QLabel>("allUsersHeading")->text(), q("All Registered Users"));
    QCOMPARE(m_rig->find<QPushButton>("addGatewayButton")->text(), q("Add Gateway"));
    QCOMPARE(m_rig->find<QPushButton>("addGatewayButton")->property("meaning").toString(), q("good"));
    QCOMPARE(m_rig->find<QLineEdit>("allUsersSearch")->placeholderText(), q("Search..."));
    const auto choices = [this](const char *name) {
        QStringList texts;
        for (int i = 0; i < m_rig->find<QComboBox>(name)->count(); ++i)
            texts += m_rig->find<QComboBox>(name)->itemText(i);
        return texts;
    };
    QCOMPARE(choices("statusFilter"),
             (QStringList{q("All Status"), q("Active"), q("Pending"), q("Suspended"), q("Banned")}));
    QCOMPARE(choices("typeFilter"), (QStringList{q("All Types"), q("Gateway"), q("Personal"), q("Admin")}));
    QStringList titles;
    for (int i = 1; i < m_rig->table()->model()->columnCount(); ++i)
        titles += m_rig->table()->model()->headerData(i, Qt::Horizontal).toString();
    QCOMPARE(titles, (QStringList{q("Callsign"), q("Gateway Name"), q("Status"), q("Approved"), q("Expiry"),
                                  q("Location"), q("Last Login"), q("HWID"), q("Actions")}));
    QCOMPARE(m_rig->total(), q("Total: 0 users"));
}

void AllUsersTabTest::toolBar_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("tip");
    QTest::newRow("Approve") << 0 << q("Grant transmit approval");
    QTest::newRow("Revoke") << 1 << q("Revoke transmit approval");
    QTest::newRow("Reset HWID") << 2 << q("Allow login from new device");
    QTest::newRow("Edit") << 3 << q("Edit user details");
    QTest::newRow("Delete") << 4 << q("Delete user");
}

void AllUsersTabTest::toolBar()
{
    QFETCH(int, position);
    QFETCH(QString, tip);
    const QList<QAction *> actions = m_rig->find<QToolBar>("allUsersToolBar")->actions();
    QCOMPARE(actions.size(), 5);
    QCOMPARE(actions.at(position)->text(), q(QTest::currentDataTag()));
    QCOMPARE(actions.at(position)->toolTip(), tip);
    QVERIFY(!actions.at(position)->icon().pixmap(16).isNull());
    QVERIFY2(m_rig->table()->actions().contains(actions.at(position)), "also in the table's context menu");
}

void AllUsersTabTest::needsAChosenUser_data()
{
    QTest::addColumn<QString>("action");
    for (const char *action : {"approveAction", "revokeAction", "resetHwidAction", "editAction", "deleteAction"})
        QTest::newRow(action) << q(action);
}

void AllUsersTabTest::needsAChosenUser()
{
    QFETCH(QString, action);
    m_rig->tab->showUsers(users(1, 3));
    m_rig->prompts.accept();
    m_rig->trigger(action);
    QCOMPARE(m_rig->prompts.seen().size(), 1);
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Error"));
    QCOMPARE(m_rig->prompts.seen().first().text, q("Please select a user first."));
    QCOMPARE(m_rig->lines, QStringList());
    QVERIFY(!m_rig->tab->findChild<QDialog *>());
}

void AllUsersTabTest::focusAloneChoosesNobody()
{
    m_rig->tab->showUsers(users(1, 3));
    m_rig->table()->setFocus(Qt::TabFocusReason);
    m_rig->prompts.accept();
    m_rig->trigger(q("approveAction"));
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersTabTest::keyboardChooses_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("last"); // user of the list, the first is 11
    QTest::addColumn<QString>("chosen");
    const auto row = [](const char *name, Qt::Key key, Qt::KeyboardModifiers modifiers, int last, const char *chosen) {
        QTest::newRow(name) << int(key) << int(modifiers) << last << q(chosen);
    };
    row("Home", Qt::Key_Home, {}, 13, "11");
    row("Ctrl+Home", Qt::Key_Home, Qt::ControlModifier, 13, "11");
    row("Up", Qt::Key_Up, {}, 13, "11");
    row("Page Up", Qt::Key_PageUp, {}, 13, "11");
    row("Down", Qt::Key_Down, {}, 13, "12");
    row("Down, one row", Qt::Key_Down, {}, 11, "11");
    row("Page Down, one row", Qt::Key_PageDown, {}, 11, "11");
    row("Ctrl+End, one row", Qt::Key_End, Qt::ControlModifier, 11, "11");
    row("menu key", Qt::Key_Menu, {}, 13, "11");
    row("Shift+F10", Qt::Key_F10, Qt::ShiftModifier, 13, "11");
    row("F10", Qt::Key_F10, {}, 13, "none");
    row("Tab again", Qt::Key_Tab, {}, 13, "none");
}

/// After Tab into the table the first row is framed, and chosen by the next key that has to do with rows.
void AllUsersTabTest::keyboardChooses()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, last);
    QFETCH(QString, chosen);
    m_rig->tab->showUsers(users(11, last));
    m_rig->tab->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_rig->tab.get()));
    m_rig->table()->setFocus(Qt::TabFocusReason);
    QCOMPARE(m_rig->chosenId(), q("none"));
    QTest::keyClick(m_rig->table(), static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
    QCOMPARE(m_rig->chosenId(), chosen);
    if (chosen == q("none"))
        return;
    m_rig->trigger(q("approveAction")); // a box would fail
    QCOMPARE(m_rig->lines.value(0), q("approve ") + chosen);
}

void AllUsersTabTest::actsOnTheChosenUser_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("boxes"); // that are answered with OK or Yes
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("approve") << q("approveAction") << 0 << QStringList{q("approve 12"), q("refresh")};
    QTest::newRow("revoke") << q("revokeAction") << 0 << QStringList{q("revoke 12"), q("refresh")};
    QTest::newRow("reset HWID") << q("resetHwidAction") << 1 << QStringList{q("ADMIN_RESET_HWID 12")};
    QTest::newRow("delete") << q("deleteAction") << 1 << QStringList{q("ADMIN_DELETE_USER 12"), q("refresh")};
}

void AllUsersTabTest::actsOnTheChosenUser()
{
    QFETCH(QString, action);
    QFETCH(int, boxes);
    QFETCH(QStringList, lines);
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(12);
    for (int i = 0; i < boxes; ++i)
        m_rig->prompts.accept();
    m_rig->trigger(action);
    QCOMPARE(m_rig->lines, lines);
}

void AllUsersTabTest::aRecordWithoutIdIsLeftAlone_data()
{
    needsAChosenUser_data();
}

void AllUsersTabTest::aRecordWithoutIdIsLeftAlone()
{
    QFETCH(QString, action);
    m_rig->tab->showUsers({{{q("callsign"), q("YH0AB")}}});
    m_rig->table()->selectRow(0);
    m_rig->trigger(action); // a box would fail
    QCOMPARE(m_rig->lines, QStringList());
    QVERIFY(!m_rig->tab->findChild<QDialog *>());
}

void AllUsersTabTest::resetHwidTellsWhose()
{
    m_rig->tab->showUsers({user(12, {{q("callsign"), q("YH%1<b>")}})});
    m_rig->choose(12);
    m_rig->prompts.accept([this] { QCOMPARE(m_rig->lines.size(), 1); });
    m_rig->tab->onResetHwid();
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Reset HWID"));
    QCOMPARE(m_rig->prompts.seen().first().text, q("HWID for YH%1<b> has been reset."));
}

void AllUsersTabTest::deletionIsAskedFor_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void AllUsersTabTest::deletionIsAskedFor()
{
    QFETCH(bool, yes);
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(13);
    if (yes)
        m_rig->prompts.accept();
    else
        m_rig->prompts.cancel();
    m_rig->tab->onDeleteUser();
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Question);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Delete User"));
    QCOMPARE(m_rig->prompts.seen().first().text,
             q("Are you sure you want to delete this user?\n\nThis action cannot be undone!"));
    QCOMPARE(m_rig->lines, yes ? (QStringList{q("ADMIN_DELETE_USER 13"), q("refresh")}) : QStringList());
}

void AllUsersTabTest::goneWhileAskedAboutDeletion()
{
    m_rig->tab->showUsers(users(1, 2));
    m_rig->choose(1);
    m_rig->prompts.accept([this] { m_rig->tab.reset(); });
    m_rig->tab->onDeleteUser();
    QVERIFY(!m_rig->tab);
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersTabTest::theListChangesWhileAskedAboutDeletion()
{
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(12);
    m_rig->prompts.accept([this] {
        m_rig->tab->showUsers(users(13, 20));
        m_rig->choose(17);
    });
    m_rig->tab->onDeleteUser();
    QCOMPARE(m_rig->lines.value(0), q("ADMIN_DELETE_USER 12"));
}

void AllUsersTabTest::theDeleteKeyWorksInTheTableOnly()
{
    m_rig->tab->showUsers(users(1, 3));
    m_rig->choose(2);
    m_rig->tab->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_rig->tab.get()));
    auto *search = m_rig->find<QLineEdit>("allUsersSearch");
    search->setFocus();
    QTest::keyClick(search, Qt::Key_Delete);
    QVERIFY(m_rig->prompts.seen().isEmpty());
    m_rig->table()->setFocus();
    m_rig->prompts.accept();
    QTest::keyClick(m_rig->table(), Qt::Key_Delete);
    QTRY_COMPARE(m_rig->lines.value(0), q("ADMIN_DELETE_USER 2"));
}

void AllUsersTabTest::edits_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"tool bar", "Enter", "double click"})
        QTest::newRow(way) << q(way);
}

void AllUsersTabTest::edits()
{
    QFETCH(QString, way);
    m_rig->tab->showUsers(users(11, 13));
    m_rig->choose(12);
    const QPoint cell = m_rig->table()->visualRect(m_rig->table()->model()->index(1, 1)).center();
    if (way == q("tool bar")) {
        m_rig->trigger(q("editAction"));
    } else if (way == q("Enter")) {
        QTest::keyClick(m_rig->table(), Qt::Key_Return);
    } else {
        QTest::mouseClick(m_rig->table()->viewport(), Qt::LeftButton, {}, cell);
        QTest::mouseDClick(m_rig->table()->viewport(), Qt::LeftButton, {}, cell);
    }
    QTRY_VERIFY(m_rig->tab->findChild<EditUserDialog *>());
    const QPointer<EditUserDialog> dialog(m_rig->tab->findChild<EditUserDialog *>());
    QCOMPARE(dialog->windowTitle(), q("Edit User - YH12AB"));
    QCOMPARE(m_rig->tab->findChildren<EditUserDialog *>().size(), 1);
    m_rig->tab->showUsers(users(14, 20)); // an open dialog is for its own user
    m_rig->prompts.accept();
    dialog->findChild<QPushButton *>(q("editSaveButton"))->click();
    QCOMPARE(m_rig->lines,
             (QStringList{q(R"(ADMIN_UPDATE_USER 12 "Budi" "YB0ABC" "active" "Bukit 12" "145.500 MHz" "Medan" )"
                            R"("yh@example.org" "0812" 1 0 "2031-12-30")"),
                          q("refresh")}));
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
    QVERIFY(!dialog);
}

void AllUsersTabTest::keyboardReachesEverything()
{
    m_rig->tab->showUsers(users(1, 3));
    m_rig->tab->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_rig->tab.get()));
    m_rig->find<QPushButton>("addGatewayButton")->setFocus();
    QStringList reached;
    for (int i = 0; i < 12; ++i) {
        QWidget *focus = QApplication::focusWidget();
        QVERIFY(focus);
        if (!reached.contains(focus->objectName()))
            reached += focus->objectName();
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    for (const char *name :
         {"addGatewayButton", "allUsersSearch", "statusFilter", "typeFilter", "approveActionButton",
          "revokeActionButton", "resetHwidActionButton", "editActionButton", "deleteActionButton", "allUsersTable"})
        QVERIFY2(reached.contains(q(name)), name);
    for (const char *name : {"allUsersSearch", "statusFilter", "typeFilter", "allUsersTable"})
        QVERIFY2(!m_rig->find<QWidget>(name)->accessibleName().isEmpty(), name);
}

void AllUsersTabTest::pictures_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void AllUsersTabTest::pictures()
{
    QFETCH(bool, dark);
    useDesktopFont();
    LogCapture log; // a style sheet that does not parse is a warning
    Theme::apply(*qApp, dark);
    const QString suffix = dark ? q("dark") : q("light");
    AllUsersTab tab(m_rig->prompts);
    tab.resize(880, 480);
    QVERIFY(!Screenshots::save(tab, q("admin-allusers-empty-") + suffix).isNull());
    Users list = users(1, 40);
    list[2].insert(q("approved"), false);
    list[4].insert(q("status"), q("suspended"));
    list[5].insert(q("gateway_name"), q("A very long name of a gateway that does not fit into any column"));
    tab.showUsers(list);
    tab.findChild<QTableView *>(q("allUsersTable"))->selectRow(3);
    QVERIFY(!Screenshots::save(tab, q("admin-allusers-") + suffix).isNull());
    QVERIFY2(tab.minimumSizeHint().width() <= 880, qPrintable(QString::number(tab.minimumSizeHint().width())));
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(AllUsersTabTest, QApplication)
#include "tst_alluserstab.moc"
