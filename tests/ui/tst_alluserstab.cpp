#include "AdminUsers.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/AllUsersTab.h"
#include "ui/admin/EditUserDialog.h"
#include "ui/admin/UserActionsDelegate.h"

#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>

#include <memory>

using namespace AdminUsers;

namespace {

constexpr int kMany = 20000;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class AllUsersTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void toolBar_data();
    void toolBar();
    void rows();
    void needsAChosenUser_data();
    void needsAChosenUser();
    void focusAloneChoosesNobody();
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
    void addsAGateway_data();
    void addsAGateway();
    void anApprovalWaitsForTheNewList();
    void anApprovedGatewayIsApprovedOnce();
    void refusedGatewayIsReported();
    void otherRegistrationsAreNotItsOwn();
    void keyboardReachesEverything();
    void pictures_data();
    void pictures();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = m_tab->findChild<Widget *>(q(name));
        Q_ASSERT(widget);
        return widget;
    }
    [[nodiscard]] QTableView *table() const { return find<QTableView>("allUsersTable"); }
    [[nodiscard]] QString total() const { return find<QLabel>("allUsersTotal")->text(); }
    [[nodiscard]] QStringList shownIds() const;
    [[nodiscard]] QString chosenId() const;
    void choose(int userId) const;
    void trigger(const QString &name) const { m_tab->findChild<QAction *>(name)->trigger(); }
    [[nodiscard]] QPoint rowButton(int row, UserActionsDelegate::Button button) const;
    void addGateway(const char *callsign, bool approved);

    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<AllUsersTab> m_tab;
    QStringList m_lines; ///< every request, in order
};

void AllUsersTabTest::init()
{
    m_lines.clear();
    m_prompts = std::make_unique<ScriptedPrompts>();
    m_tab = std::make_unique<AllUsersTab>(*m_prompts);
    note(*m_tab, m_lines);
    const auto noteUser = [this](const char *what) {
        return [this, what](int userId) { m_lines += QLatin1String(what) + QString::number(userId); };
    };
    connect(m_tab.get(), &AllUsersTab::approveRequested, m_tab.get(), noteUser("approve "));
    connect(m_tab.get(), &AllUsersTab::revokeRequested, m_tab.get(), noteUser("revoke "));
    connect(m_tab.get(), &AllUsersTab::refreshRequested, m_tab.get(), [this] { m_lines += q("refresh"); });
    m_tab->resize(880, 480);
    m_tab->show();
}

void AllUsersTabTest::cleanup()
{
    m_tab.reset();
    m_prompts.reset();
}

QStringList AllUsersTabTest::shownIds() const
{
    QStringList ids;
    for (int row = 0; row < table()->model()->rowCount(); ++row)
        ids += table()->model()->index(row, 0).data().toString();
    return ids;
}

QString AllUsersTabTest::chosenId() const
{
    const QModelIndexList rows = table()->selectionModel()->selectedRows();
    return rows.isEmpty() ? q("none") : rows.first().data().toString();
}

void AllUsersTabTest::choose(int userId) const
{
    table()->selectRow(shownIds().indexOf(QString::number(userId)));
}

QPoint AllUsersTabTest::rowButton(int row, UserActionsDelegate::Button button) const
{
    const QModelIndex cell = table()->model()->index(row, table()->model()->columnCount() - 1);
    table()->scrollTo(cell);
    return UserActionsDelegate::area(button, table()->visualRect(cell)).center();
}

/// Fills in the form and sends it; its box is answered.
void AllUsersTabTest::addGateway(const char *callsign, bool approved)
{
    find<QPushButton>("addGatewayButton")->click();
    auto *dialog = find<QDialog>("addGatewayDialog");
    const auto enter = [dialog](const char *name, const QString &text) {
        dialog->findChild<QLineEdit *>(q(name))->setText(text);
    };
    enter("addCallsignEdit", q(callsign));
    enter("addGatewayNameEdit", q("Satu"));
    enter("addPicNameEdit", q("Ani"));
    enter("addPasswordEdit", q("pw%2"));
    dialog->findChild<QAbstractButton *>(q("addApprovedCheck"))->setChecked(approved);
    m_prompts->accept();
    dialog->findChild<QPushButton *>(q("addGatewaySubmitButton"))->click();
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
}

void AllUsersTabTest::looksAsAnnounced()
{
    QCOMPARE(find<QLabel>("allUsersHeading")->text(), q("All Registered Users"));
    QCOMPARE(find<QPushButton>("addGatewayButton")->text(), q("Add Gateway"));
    QCOMPARE(find<QPushButton>("addGatewayButton")->property("meaning").toString(), q("good"));
    QCOMPARE(find<QLineEdit>("allUsersSearch")->placeholderText(), q("Search..."));
    const auto choices = [this](const char *name) {
        QStringList texts;
        for (int i = 0; i < find<QComboBox>(name)->count(); ++i)
            texts += find<QComboBox>(name)->itemText(i);
        return texts;
    };
    QCOMPARE(choices("statusFilter"),
             (QStringList{q("All Status"), q("Active"), q("Pending"), q("Suspended"), q("Banned")}));
    QCOMPARE(choices("typeFilter"), (QStringList{q("All Types"), q("Gateway"), q("Personal"), q("Admin")}));
    QStringList titles;
    for (int i = 1; i < table()->model()->columnCount(); ++i)
        titles += table()->model()->headerData(i, Qt::Horizontal).toString();
    QCOMPARE(titles, (QStringList{q("Callsign"), q("Gateway Name"), q("Status"), q("Approved"), q("Expiry"),
                                  q("Location"), q("Last Login"), q("HWID"), q("Actions")}));
    QCOMPARE(total(), q("Total: 0 users"));
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
    const QList<QAction *> actions = find<QToolBar>("allUsersToolBar")->actions();
    QCOMPARE(actions.size(), 5);
    QCOMPARE(actions.at(position)->text(), q(QTest::currentDataTag()));
    QCOMPARE(actions.at(position)->toolTip(), tip);
    QVERIFY(!actions.at(position)->icon().pixmap(16).isNull());
    QVERIFY2(table()->actions().contains(actions.at(position)), "also in the table's context menu");
}

void AllUsersTabTest::rows()
{
    m_tab->showUsers({user(12), user(3, {{q("approved"), false}, {q("registered_hwid"), QString()}})});
    QCOMPARE(total(), q("Total: 2 users"));
    QStringList first;
    for (int i = 0; i < table()->model()->columnCount(); ++i)
        first += table()->model()->index(0, i).data().toString();
    QCOMPARE(first, (QStringList{q("3"), q("YH3AB"), q("Bukit 3"), q("active"), q("Not Approved"), q("2031-12-30"),
                                 q("Medan"), q("2026-11-21 08:00:00"), q("Not Registered"), QString()}));
    QCOMPARE(table()->model()->index(1, 4).data().toString(), q("Approved"));
    QCOMPARE(table()->model()->index(1, 8).data().toString(), q("Registered"));
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
    m_tab->showUsers(users(1, 3));
    m_prompts->accept();
    trigger(action);
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().first().title, q("Error"));
    QCOMPARE(m_prompts->seen().first().text, q("Please select a user first."));
    QCOMPARE(m_lines, QStringList());
    QVERIFY(!m_tab->findChild<QDialog *>());
}

void AllUsersTabTest::focusAloneChoosesNobody()
{
    m_tab->showUsers(users(1, 3));
    table()->setFocus(Qt::TabFocusReason);
    m_prompts->accept();
    trigger(q("approveAction"));
    QCOMPARE(m_lines, QStringList());
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
    m_tab->showUsers(users(11, 13));
    choose(12);
    for (int i = 0; i < boxes; ++i)
        m_prompts->accept();
    trigger(action);
    QCOMPARE(m_lines, lines);
}

void AllUsersTabTest::aRecordWithoutIdIsLeftAlone_data()
{
    needsAChosenUser_data();
}

void AllUsersTabTest::aRecordWithoutIdIsLeftAlone()
{
    QFETCH(QString, action);
    m_tab->showUsers({{{q("callsign"), q("YH0AB")}}});
    table()->selectRow(0);
    trigger(action); // a box would fail
    QCOMPARE(m_lines, QStringList());
    QVERIFY(!m_tab->findChild<QDialog *>());
}

void AllUsersTabTest::resetHwidTellsWhose()
{
    m_tab->showUsers({user(12, {{q("callsign"), q("YH%1<b>")}})});
    choose(12);
    m_prompts->accept([this] { QCOMPARE(m_lines.size(), 1); });
    m_tab->onResetHwid();
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_prompts->seen().first().title, q("Reset HWID"));
    QCOMPARE(m_prompts->seen().first().text, q("HWID for YH%1<b> has been reset."));
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
    m_tab->showUsers(users(11, 13));
    choose(13);
    if (yes)
        m_prompts->accept();
    else
        m_prompts->cancel();
    m_tab->onDeleteUser();
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Question);
    QCOMPARE(m_prompts->seen().first().title, q("Delete User"));
    QCOMPARE(m_prompts->seen().first().text,
             q("Are you sure you want to delete this user?\n\nThis action cannot be undone!"));
    QCOMPARE(m_lines, yes ? (QStringList{q("ADMIN_DELETE_USER 13"), q("refresh")}) : QStringList());
}

void AllUsersTabTest::goneWhileAskedAboutDeletion()
{
    m_tab->showUsers(users(1, 2));
    choose(1);
    m_prompts->accept([this] { m_tab.reset(); });
    m_tab->onDeleteUser();
    QVERIFY(!m_tab);
    QCOMPARE(m_lines, QStringList());
}

void AllUsersTabTest::theListChangesWhileAskedAboutDeletion()
{
    m_tab->showUsers(users(11, 13));
    choose(12);
    m_prompts->accept([this] {
        m_tab->showUsers(users(13, 20));
        choose(17);
    });
    m_tab->onDeleteUser();
    QCOMPARE(m_lines.value(0), q("ADMIN_DELETE_USER 12"));
}

void AllUsersTabTest::theDeleteKeyWorksInTheTableOnly()
{
    m_tab->showUsers(users(1, 3));
    choose(2);
    m_tab->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_tab.get()));
    auto *search = find<QLineEdit>("allUsersSearch");
    search->setFocus();
    QTest::keyClick(search, Qt::Key_Delete);
    QVERIFY(m_prompts->seen().isEmpty());
    table()->setFocus();
    m_prompts->accept();
    QTest::keyClick(table(), Qt::Key_Delete);
    QCOMPARE(m_lines.value(0), q("ADMIN_DELETE_USER 2"));
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
    m_tab->showUsers(users(11, 13));
    choose(12);
    const QPoint cell = table()->visualRect(table()->model()->index(1, 1)).center();
    if (way == q("tool bar")) {
        trigger(q("editAction"));
    } else if (way == q("Enter")) {
        QTest::keyClick(table(), Qt::Key_Return);
    } else {
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, cell);
        QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, cell);
    }
    const QPointer<EditUserDialog> dialog(m_tab->findChild<EditUserDialog *>());
    QVERIFY(dialog);
    QCOMPARE(dialog->windowTitle(), q("Edit User - YH12AB"));
    QCOMPARE(m_tab->findChildren<EditUserDialog *>().size(), 1);
    m_tab->showUsers(users(14, 20)); // an open dialog is for its own user
    m_prompts->accept();
    dialog->findChild<QPushButton *>(q("editSaveButton"))->click();
    QCOMPARE(m_lines,
             (QStringList{q(R"(ADMIN_UPDATE_USER 12 "Budi" "YB0ABC" "active" "Bukit 12" "145.500 MHz" "Medan" )"
                            R"("yh@example.org" "0812" 1 0 "2031-12-30")"),
                          q("refresh")}));
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
    QVERIFY(!dialog);
}

void AllUsersTabTest::rowButtons_data()
{
    QTest::addColumn<bool>("isDelete");
    QTest::newRow("edit") << false;
    QTest::newRow("delete") << true;
}

void AllUsersTabTest::rowButtons()
{
    QFETCH(bool, isDelete);
    m_tab->showUsers(users(11, 13));
    choose(11);
    using Button = UserActionsDelegate::Button;
    if (isDelete)
        m_prompts->accept();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rowButton(2, isDelete ? Button::Delete : Button::Edit));
    if (isDelete) {
        QTRY_COMPARE(m_lines, (QStringList{q("ADMIN_DELETE_USER 13"), q("refresh")}));
    } else {
        QTRY_VERIFY(m_tab->findChild<EditUserDialog *>());
        QCOMPARE(m_tab->findChild<EditUserDialog *>()->windowTitle(), q("Edit User - YH13AB"));
    }
}

void AllUsersTabTest::aPressThatSlipsOffIsNoClick()
{
    m_tab->showUsers(users(11, 13));
    using Button = UserActionsDelegate::Button;
    QTest::mousePress(table()->viewport(), Qt::LeftButton, {}, rowButton(0, Button::Delete));
    QTest::mouseRelease(table()->viewport(), Qt::LeftButton, {}, rowButton(1, Button::Delete));
    QTest::mousePress(table()->viewport(), Qt::LeftButton, {}, rowButton(0, Button::Delete));
    QTest::mouseRelease(table()->viewport(), Qt::LeftButton, {}, rowButton(0, Button::Edit));
    QCoreApplication::processEvents(); // a box would fail
    QVERIFY(m_prompts->seen().isEmpty());
    QVERIFY(!m_tab->findChild<QDialog *>());
}

void AllUsersTabTest::filters_data()
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

void AllUsersTabTest::filters()
{
    QFETCH(QString, search);
    QFETCH(int, status);
    QFETCH(int, type);
    QFETCH(QString, ids);
    QFETCH(QString, total);
    m_tab->showUsers({user(1), user(2, {{q("status"), q("pending")}}),
                      user(3, {{q("status"), q("suspended")}, {q("callsign"), q("YB3AB")}, {q("gateway_name"), {}}}),
                      user(4, {{q("is_admin"), true}})});
    QTest::keyClicks(find<QLineEdit>("allUsersSearch"), search);
    find<QComboBox>("statusFilter")->setCurrentIndex(status);
    find<QComboBox>("typeFilter")->setCurrentIndex(type);
    QCOMPARE(shownIds().join(QLatin1Char(' ')), ids);
    QCOMPARE(this->total(), total);
    find<QLineEdit>("allUsersSearch")->clear();
    find<QComboBox>("statusFilter")->setCurrentIndex(0);
    find<QComboBox>("typeFilter")->setCurrentIndex(0);
    QCOMPARE(this->total(), q("Total: 4 users"));
    QCOMPARE(m_lines, QStringList()); // the server is not asked again
}

void AllUsersTabTest::theFilterStaysForTheNextList()
{
    find<QLineEdit>("allUsersSearch")->setText(q("YH12"));
    m_tab->showUsers(users(11, 13));
    QCOMPARE(shownIds(), QStringList{q("12")});
    QCOMPARE(total(), q("Total: 1 users (filtered)"));
}

void AllUsersTabTest::aHiddenUserIsChosenNoLonger()
{
    m_tab->showUsers(users(11, 13));
    choose(12);
    find<QLineEdit>("allUsersSearch")->setText(q("YH12"));
    QCOMPARE(chosenId(), q("12"));
    find<QLineEdit>("allUsersSearch")->setText(q("YH13"));
    QCOMPARE(chosenId(), q("none"));
    m_prompts->accept();
    trigger(q("approveAction"));
    QCOMPARE(m_lines, QStringList());
}

void AllUsersTabTest::refreshKeepsChoiceAndPlace()
{
    m_tab->showUsers(users(100, 400));
    choose(255);
    table()->verticalScrollBar()->setValue(150);
    table()->horizontalScrollBar()->setValue(table()->horizontalScrollBar()->maximum());
    const int left = table()->horizontalScrollBar()->value();
    QCOMPARE(table()->verticalScrollBar()->value(), 150);
    m_tab->showUsers(users(100, 400));
    QCOMPARE(chosenId(), q("255"));
    QCOMPARE(table()->verticalScrollBar()->value(), 150);
    QCOMPARE(table()->horizontalScrollBar()->value(), left);
    m_tab->showUsers(users(90, 400)); // ten more above
    QCOMPARE(chosenId(), q("255"));
    QCOMPARE(table()->verticalScrollBar()->value(), 160);
}

void AllUsersTabTest::aVanishedUserIsChosenNoLonger()
{
    m_tab->showUsers(users(11, 13));
    choose(12);
    m_tab->showUsers({user(11), user(13)});
    QCOMPARE(chosenId(), q("none"));
    QVERIFY(!table()->currentIndex().isValid());
}

void AllUsersTabTest::sortsByTheClickedTitle()
{
    m_tab->showUsers(
        {user(9, {{q("callsign"), q("B")}}), user(10, {{q("callsign"), q("C")}}), user(2, {{q("callsign"), q("A")}})});
    QCOMPARE(shownIds(), (QStringList{q("2"), q("9"), q("10")}));
    auto *header = table()->horizontalHeader();
    const QPoint callsign(header->sectionViewportPosition(1) + 8, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, callsign);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, callsign);
    QCOMPARE(shownIds(), (QStringList{q("10"), q("9"), q("2")}));
    choose(9);
    m_tab->showUsers({user(9, {{q("callsign"), q("Z")}}), user(10, {{q("callsign"), q("C")}})});
    QCOMPARE(shownIds(), (QStringList{q("9"), q("10")})); // the order stays
    QCOMPARE(chosenId(), q("9"));
}

void AllUsersTabTest::manyUsers()
{
    const Users list = users(1, kMany);
    const int before = m_tab->findChildren<QObject *>().size();
    m_tab->showUsers(list);
    QCOMPARE(total(), q("Total: 20000 users"));
    choose(19999);
    m_tab->showUsers(list);
    QCOMPARE(chosenId(), q("19999"));
    QVERIFY2(m_tab->findChildren<QObject *>().size() <= before + 20, "no object for a row");
    find<QLineEdit>("allUsersSearch")->setText(q("yh1999"));
    QCOMPARE(total(), q("Total: 11 users (filtered)"));
    table()->sortByColumn(2, Qt::DescendingOrder);
    find<QLineEdit>("allUsersSearch")->clear();
    QCOMPARE(table()->model()->index(0, 2).data().toString(), q("Bukit 9999"));
    QVERIFY(!table()->grab().isNull());
}

void AllUsersTabTest::saysThatThereIsNobody()
{
    const auto *empty = find<QLabel>("emptyState");
    QVERIFY(empty->isVisible());
    m_tab->showUsers(users(1, 1));
    QVERIFY(!empty->isVisible());
    find<QLineEdit>("allUsersSearch")->setText(q("nobody"));
    QVERIFY(empty->isVisible());
}

void AllUsersTabTest::findsByIdAndCallsign()
{
    m_tab->showUsers({user(11), user(12), {{q("callsign"), q("YH0XX")}}});
    find<QLineEdit>("allUsersSearch")->setText(q("hides all"));
    QCOMPARE(m_tab->callsignOf(12), q("YH12AB"));
    QCOMPARE(m_tab->callsignOf(13), QString());
    QCOMPARE(m_tab->callsignOf(0), QString());
    QCOMPARE(m_tab->idOf(q("YH12AB")), 12);
    QCOMPARE(m_tab->idOf(q("yh12ab")), 12);
    QCOMPARE(m_tab->idOf(q("YH12A")), 0);
    QCOMPARE(m_tab->idOf(q("YH0XX")), 0);
    QCOMPARE(m_tab->idOf(QString()), 0);
}

void AllUsersTabTest::addsAGateway_data()
{
    QTest::addColumn<bool>("approved");
    QTest::newRow("to be approved later") << false;
    QTest::newRow("approved") << true;
}

void AllUsersTabTest::addsAGateway()
{
    QFETCH(bool, approved);
    addGateway("YH8RXX", approved);
    QCOMPARE(m_lines.size(), 1);
    const QString line = m_lines.takeFirst();
    QVERIFY2(line.startsWith(q(R"(REGISTER_GATEWAY "Satu" "YH8RXX" "-" "20)")), qPrintable(line));
    QVERIFY2(line.endsWith(q(R"(" "-" "Ani" "-" "pw%2" "-" "-")")), qPrintable(line));
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_prompts->seen().first().title, q("Success"));
    QCOMPARE(m_prompts->seen().first().text, q("Gateway YH8RXX berhasil ditambahkan!\nPassword: pw%2"));
    m_tab->onRegisterResult(true, q("Registrasi berhasil"));
    QCOMPARE(m_lines, QStringList{q("refresh")});
    m_lines.clear();
    m_tab->showUsers({user(5), user(6, {{q("callsign"), q("YH8RXX")}, {q("approved"), false}})});
    QCOMPARE(m_lines, approved ? (QStringList{q("approve 6"), q("refresh")}) : QStringList());
}

void AllUsersTabTest::anApprovalWaitsForTheNewList()
{
    const Users with{user(6, {{q("callsign"), q("YH8RXX")}})};
    addGateway("YH8RXX", true);
    m_lines.clear();
    m_tab->showUsers(with); // somebody's of that callsign, before the server said anything
    QCOMPARE(m_lines, QStringList());
    m_tab->onRegisterResult(true, {});
    m_lines.clear();
    m_tab->showUsers(users(1, 3)); // was on its way already
    QCOMPARE(m_lines, QStringList());
    m_tab->showUsers(with);
    QCOMPARE(m_lines.value(0), q("approve 6"));
}

void AllUsersTabTest::anApprovedGatewayIsApprovedOnce()
{
    const Users with{user(6, {{q("callsign"), q("YH8RXX")}})};
    addGateway("YH8RXX", true);
    m_tab->onRegisterResult(true, {});
    m_tab->showUsers(with);
    m_lines.clear();
    m_tab->showUsers(with);
    m_tab->onRegisterResult(true, {});
    m_tab->showUsers(with);
    QCOMPARE(m_lines, QStringList());
}

void AllUsersTabTest::refusedGatewayIsReported()
{
    addGateway("YH8RXX", true);
    m_lines.clear();
    m_prompts->accept();
    m_tab->onRegisterResult(false, q("Callsign sudah terdaftar"));
    QCOMPARE(m_prompts->seen().last().kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().last().title, q("Add Gateway"));
    QCOMPARE(m_prompts->seen().last().text, q("Callsign sudah terdaftar"));
    m_tab->showUsers({user(6, {{q("callsign"), q("YH8RXX")}})});
    QCOMPARE(m_lines, QStringList()); // the one that had the callsign before is not approved
}

void AllUsersTabTest::otherRegistrationsAreNotItsOwn()
{
    m_tab->onRegisterResult(true, {});
    m_tab->onRegisterResult(false, q("no")); // a box would fail
    QCOMPARE(m_lines, QStringList());
}

void AllUsersTabTest::keyboardReachesEverything()
{
    m_tab->showUsers(users(1, 3));
    m_tab->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_tab.get()));
    find<QPushButton>("addGatewayButton")->setFocus();
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
        QVERIFY2(!find<QWidget>(name)->accessibleName().isEmpty(), name);
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
    AllUsersTab tab(*m_prompts);
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
