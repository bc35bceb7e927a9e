// The panel whose administrator is none any more, and the panel under hostile lists.
#include "AdminUsers.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/admin/AdminPanel.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <memory>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QStringList kRefresh{q("ONLINE_USERS"), q("ROOMS"), q("ADMIN_GET_ALL_USERS"), q("ADMIN_PENDING")};

} // namespace

class AdminPanelEndTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void staysForItsAdministrator_data();
    void staysForItsAdministrator();
    void closesForAnybodyElse_data();
    void closesForAnybodyElse();
    void sendsNothingFromAnOpenDialog();
    void sendsNothingAfterAnOpenBox();
    void goesUnderABoxOfAMenu_data();
    void goesUnderABoxOfAMenu();
    void goesUnderABoxOfAToolButton();
    void opensDialogsForTheChosen();
    void bearsHostileLists_data();
    void bearsHostileLists();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return m_panel->findChild<Widget *>(QLatin1String(name));
    }
    /// Sends it, and waits until it and all before it were dispatched.
    void tell(const QString &line);
    /// Answers the next box only after the panel's administrator is none any more and the panel is deleted, which it
    /// is when it closes.
    void endUnderTheNextBox(std::function<void()> whileOpen = {});
    [[nodiscard]] QStringList sent() { return AdminUsers::sentBy(m_client.get(), m_server.get()); }

    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<TcpClient> m_client;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<AdminPanel> m_panel;
    QPointer<AdminPanel> m_ending;
};

void AdminPanelEndTest::init()
{
    m_server = std::make_unique<FakeServer>();
    m_client = std::make_unique<TcpClient>();
    m_prompts = std::make_unique<ScriptedPrompts>();
    QVERIFY(AdminUsers::connectToServer(m_client.get(), m_server.get()));
    tell(q("LOGIN_OK|token|YB4D|True|4"));
    m_panel = std::make_unique<AdminPanel>(m_client.get(), *m_prompts);
    m_panel->show();
    tell(q("ROOMS|Lobby,Alpha"));
    tell(q("ADMIN_ALL_USERS|[{\"id\":4,\"callsign\":\"YB4D\",\"is_admin\":true},{\"id\":8,\"callsign\":\"YB2B\"}]"));
    QVERIFY(m_server->waitForLine(q("ADMIN_GET_AUDIO_QUALITY")));
    m_server->clear();
}

void AdminPanelEndTest::cleanup()
{
    m_panel.reset();
    delete m_ending;
    m_client.reset();
    m_server.reset();
    m_prompts.reset();
}

void AdminPanelEndTest::tell(const QString &line)
{
    QSignalSpy errors(m_client.get(), &TcpClient::errorOccurred);
    m_server->send(line);
    m_server->send(q("ERROR|end"));
    QVERIFY(errors.wait());
}

void AdminPanelEndTest::staysForItsAdministrator_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("logged in again") << q("LOGIN_OK|token|YB4D|True|4");
    QTest::newRow("login refused") << q("LOGIN_FAILED|Password salah");
    QTest::newRow("own profile") << q("USER_PROFILE|{\"id\":4,\"is_admin\":true}");
    QTest::newRow("own profile without a word of it") << q("USER_PROFILE|{\"id\":4}");
    QTest::newRow("somebody else's profile") << q("USER_PROFILE|{\"id\":8,\"is_admin\":false}");
}

void AdminPanelEndTest::staysForItsAdministrator()
{
    QFETCH(QString, line);
    tell(line);
    QVERIFY(m_panel->isVisible());
    m_panel->onRefreshAll();
    QCOMPARE(sent(), kRefresh);
}

void AdminPanelEndTest::closesForAnybodyElse_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("administrator no more") << q("LOGIN_OK|token|YB4D|False|4");
    QTest::newRow("another account") << q("LOGIN_OK|token|YB2B|False|8");
    QTest::newRow("another administrator") << q("LOGIN_OK|token|YB5E|True|5");
    QTest::newRow("the right ended meanwhile") << q("USER_PROFILE|{\"id\":4,\"is_admin\":false}");
}

void AdminPanelEndTest::closesForAnybodyElse()
{
    QFETCH(QString, line);
    find<QTableView>("allUsersTable")->selectRow(1);
    m_panel->onApproveUser(); // a refresh is to follow
    QCOMPARE(sent(), QStringList(q("ADMIN_APPROVE_USER 8")));
    tell(line);
    QVERIFY(!m_panel->isVisible());
    m_panel->onRefreshAll();
    m_panel->onApproveUser();
    m_panel->onRevokeUser();
    tell(q("LOGIN_OK|token|YB4D|True|4")); // too late
    tell(q("ADMIN_RESET_HWID_OK|YB2B"));
    const auto timers = m_panel->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QTRY_VERIFY(!timers.first()->isActive()); // a refresh that was to follow
    QCOMPARE(sent(), QStringList());
    QVERIFY(!m_panel->isVisible());
}

void AdminPanelEndTest::sendsNothingFromAnOpenDialog()
{
    find<QTableView>("allUsersTable")->selectRow(1);
    m_panel->onEditUser();
    const QPointer<QDialog> dialog(find<QDialog>("editUserDialog"));
    QVERIFY(dialog && dialog->isVisible());
    tell(q("LOGIN_OK|token|YB4D|False|4"));
    QVERIFY(!dialog || !dialog->isVisible());
    QCOMPARE(sent(), QStringList());
}

void AdminPanelEndTest::sendsNothingAfterAnOpenBox()
{
    find<QTableView>("allUsersTable")->selectRow(1);
    m_prompts->accept([this] { tell(q("LOGIN_OK|token|YB4D|False|4")); });
    m_panel->onDeleteUser();
    QCOMPARE(sent(), QStringList());
}

void AdminPanelEndTest::endUnderTheNextBox(std::function<void()> whileOpen)
{
    m_ending = m_panel.release();
    m_ending->setAttribute(Qt::WA_DeleteOnClose);
    m_prompts->accept([this, whileOpen] {
        if (whileOpen)
            whileOpen();
        tell(q("USER_PROFILE|{\"id\":4,\"is_admin\":false}"));
        QTRY_VERIFY(!m_ending);
    });
}

void AdminPanelEndTest::goesUnderABoxOfAMenu_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("view");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("delete user") << 2 << q("allUsersTable") << q("deleteAction") << QStringList();
    QTest::newRow("reset device") << 2 << q("allUsersTable") << q("resetHwidAction")
                                  << QStringList(q("ADMIN_RESET_HWID 4"));
    QTest::newRow("nobody to approve") << 4 << q("pendingTable") << q("approvePendingAction") << QStringList();
    QTest::newRow("request") << 5 << q("hwidRequestsList") << q("approveHwidAction")
                             << QStringList(q("ADMIN_RESET_HWID 8"));
}

/// The menu is the view's own, and the view goes with the panel.
void AdminPanelEndTest::goesUnderABoxOfAMenu()
{
    QFETCH(int, tab);
    QFETCH(QString, view);
    QFETCH(QString, action);
    QFETCH(QStringList, lines);
    tell(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB2B|8"));
    find<QTabWidget>("adminTabs")->setCurrentIndex(tab);
    auto *list = m_panel->findChild<QAbstractItemView *>(view);
    bool hadMenu = false;
    endUnderTheNextBox([list, &hadMenu] { hadMenu = list->findChild<QMenu *>() != nullptr; });
    QTimer::singleShot(0, list, [list, action] {
        auto *menu = list->findChild<QMenu *>();
        QVERIFY(menu);
        for (QAction *entry : menu->actions()) {
            if (entry->objectName() == action)
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
        }
    });
    const QPoint place(20, 10); // in the first row, where there is one
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, place);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, list->viewport()->mapToGlobal(place));
    QApplication::sendEvent(list->viewport(), &event);
    QTRY_VERIFY(m_prompts->isDone());
    QVERIFY(!m_ending);
    QVERIFY2(!hadMenu, "the menu is gone before a box opens");
    QCOMPARE(sent(), lines);
}

/// The button writes to itself when the click is over.
void AdminPanelEndTest::goesUnderABoxOfAToolButton()
{
    find<QTabWidget>("adminTabs")->setCurrentIndex(2);
    find<QTableView>("allUsersTable")->selectRow(1);
    auto *button = find<QToolButton>("deleteActionButton");
    endUnderTheNextBox();
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY2(m_prompts->seen().isEmpty(), "no box opens inside the click");
    QTRY_VERIFY(m_prompts->isDone());
    QVERIFY(!m_ending);
    QCOMPARE(sent(), QStringList());
}

void AdminPanelEndTest::opensDialogsForTheChosen()
{
    find<QTableView>("allUsersTable")->selectRow(1);
    m_panel->onEditUser();
    QCOMPARE(find<QDialog>("editUserDialog")->windowTitle(), q("Edit User - YB2B"));
    m_prompts->enter(q("Bravo"));
    m_prompts->enterNumber(12);
    m_panel->onAddRoom();
    QCOMPARE(sent(), QStringList(q("ADMIN_CREATE_ROOM \"Bravo\" 12")));
}

void AdminPanelEndTest::bearsHostileLists_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("long") << QString(1000000, QLatin1Char('W'));
    QTest::newRow("several lines") << q("A\\nB\\u2028C\\u0000D");
    QTest::newRow("tags") << q("<b><img src='/x'></b>");
    QTest::newRow("place marks") << q("%1 %2 %%");
    QTest::newRow("right to left") << q("\u202eABC");
}

/// Through the connection into every tab, which then still works.
void AdminPanelEndTest::bearsHostileLists()
{
    QFETCH(QString, text);
    const QString record = q("{\"id\":8,\"callsign\":\"%1\",\"name\":\"%1\",\"gateway_name\":\"%1\",\"status\":\"%1\","
                             "\"location\":\"%1\",\"last_login\":\"%1\",\"license_expiry\":\"%1\",\"email\":\"%1\","
                             "\"registered_hwid\":\"%1\",\"whatsapp\":[\"%1\"],\"is_muted\":{\"a\":1}}")
                               .replace(q("%1"), text);
    m_server->send(q("ONLINE_USERS|7,") + text + q(",") + text + q(",") + text + q(",False;x,,,;,;9"));
    m_server->send(q("ROOMS|") + text + q(",Alpha,") + text);
    m_server->send(q("SERVER_INFO|{\"room_limits\":{\"") + text + q("\":7,\"Alpha\":\"x\"}}"));
    m_server->send(q("ADMIN_ALL_USERS|[7,null,[],") + record + q(",{\"id\":\"") + text + q("\"}]"));
    m_server->send(q("ADMIN_PENDING|[") + record + q("]"));
    m_server->send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|") + text + q("|") + text);
    m_server->send(q("AUDIO_QUALITY|") + text + q("|x|y|z"));
    tell(q("ADMIN_RESET_HWID_OK|nobody"));
    auto *tabs = find<QTabWidget>("adminTabs");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        QVERIFY(!m_panel->grab().isNull());
        QCOMPARE(m_panel->minimumSizeHint().boundedTo(QSize(900, 600)), m_panel->minimumSizeHint());
    }
    for (const char *name : {"onlineUsersTable", "allUsersTable", "pendingTable"}) {
        const QAbstractItemModel *model = find<QTableView>(name)->model();
        QVERIFY2(model->rowCount() > 0, name);
        for (int column = 0; column < model->columnCount(); ++column) {
            const QString shown = model->index(model->rowCount() - 1, column).data().toString();
            QVERIFY2(shown.size() <= 200 && !shown.contains(QLatin1Char('\n')), name);
        }
    }
    QCOMPARE(find<QListWidget>("roomsList")->count(), 3);
    QCOMPARE(find<QListWidget>("hwidRequestsList")->count(), 1);
    for (int i = 0; i < 3; ++i)
        QVERIFY(find<QListWidget>("roomsList")->item(i)->text().size() <= 200);
    QVERIFY(find<QComboBox>("onlineRoomFilter")->itemText(1).size() <= 200);
    QVERIFY(find<QListWidget>("hwidRequestsList")->item(0)->text().size() <= 300);
    m_server->send(q("ROOMS|Lobby"));
    QTRY_COMPARE(find<QListWidget>("roomsList")->count(), 1);
}

EVOX_TEST_MAIN(AdminPanelEndTest, QApplication)
#include "tst_adminpanelend.moc"
