#include "AdminUsers.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/Screenshots.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/AdminPanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>

#include <memory>

class AdminPanelTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void asksForEverythingInOrder();
    void refreshesWithoutTheQuality();
    void everyMessageReachesItsTab_data();
    void everyMessageReachesItsTab();
    void slotsReachTheirTabs_data();
    void slotsReachTheirTabs();
    void needsASelectedUser_data();
    void needsASelectedUser();
    void refreshFollowsAnApproval_data();
    void refreshFollowsAnApproval();
    void pendingUserIsApproved();
    void requestsShowInTheTitle();
    void earlierRequests();
    void requestIdFromTheUserList();
    void otherNotificationsAreNone();
    void deviceResetSettlesItsRequest();
    void deletedUserAsksForNothing();
    void limitsEndWithTheConnection();
    void connectionLostAndBack();
    void approvalsEndWithTheConnection();
    void enterInAFieldPressesNoButton();
    void closesByKeyboard();
    void worksWithoutAClient();
    void clientMayGoFirst();
    void pictures_data();
    void pictures();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return m_panel->findChild<Widget *>(QLatin1String(name));
    }
    void open();
    void fill();
    /// The lines since the last call.
    [[nodiscard]] QStringList sent() { return AdminUsers::sentBy(m_client.get(), m_server.get()); }
    [[nodiscard]] QString title(int tab) const { return find<QTabWidget>("adminTabs")->tabText(tab); }
    void select(const char *table, int row) const
    {
        auto *view = find<QTableView>(table);
        view->setCurrentIndex(view->model()->index(row, 0));
    }

    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<TcpClient> m_client;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<AdminPanel> m_panel;
};

namespace {

enum Tab { OnlineUsers, Rooms, AllUsers, AudioQuality, Pending, Requests, TabCount };

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QStringList kRefresh{q("ONLINE_USERS"), q("ROOMS"), q("ADMIN_GET_ALL_USERS"), q("ADMIN_PENDING")};
const char *const kUsers = R"([{"id":7,"callsign":"YH1A","gateway_name":"Bukit","status":"active","approved":true},)"
                           R"({"id":8,"callsign":"YB2B","name":"Siti","status":"pending","approved":false}])";

int rowsOf(const QWidget &panel, const char *table)
{
    return panel.findChild<QTableView *>(QLatin1String(table))->model()->rowCount();
}

} // namespace

void AdminPanelTest::init()
{
    m_server = std::make_unique<FakeServer>();
    m_client = std::make_unique<TcpClient>();
    m_prompts = std::make_unique<ScriptedPrompts>();
    QVERIFY(AdminUsers::connectToServer(m_client.get(), m_server.get()));
}

void AdminPanelTest::cleanup()
{
    m_panel.reset();
    m_client.reset();
    m_server.reset();
    m_prompts.reset();
}

void AdminPanelTest::open()
{
    m_panel = std::make_unique<AdminPanel>(m_client.get(), *m_prompts);
    m_panel->show();
    QApplication::setActiveWindow(m_panel.get());
    QVERIFY(m_server->waitForLine(q("ADMIN_GET_AUDIO_QUALITY")));
    m_server->clear();
}

void AdminPanelTest::fill()
{
    open();
    m_server->send(q("ONLINE_USERS|7,YH1A,Ani,Lobby,False;9,YB3C,Budi,Alpha,True"));
    m_server->send(q("ROOMS|Lobby,Alpha,Ruang Dua"));
    m_server->send(q("SERVER_INFO|{\"room_limits\":{\"Lobby\":0,\"Alpha\":25,\"Ruang Dua\":7}}"));
    m_server->send(q("ADMIN_ALL_USERS|") + q(kUsers));
    m_server->send(q("ADMIN_PENDING|[{\"id\":8,\"callsign\":\"YB2B\",\"name\":\"Siti\",\"email\":\"s@example.org\"}]"));
    m_server->send(q("AUDIO_QUALITY|low|16000|24000|20|5"));
    QTRY_VERIFY(find<QRadioButton>("audioQuality_low")->isChecked()); // the last one
}

void AdminPanelTest::looksAsAnnounced()
{
    open();
    QCOMPARE(m_panel->windowTitle(), q("Admin Panel"));
    QCOMPARE(m_panel->minimumSize(), QSize(900, 600));
    QCOMPARE(find<QLabel>("adminHeader")->text(), q("Admin Panel - eVOX SINAR Server"));
    QCOMPARE(find<QLabel>("adminHeader")->font().pixelSize(), 16);
    QVERIFY(find<QLabel>("adminHeader")->font().bold());
    QStringList titles;
    for (int tab = 0; tab < find<QTabWidget>("adminTabs")->count(); ++tab)
        titles.append(title(tab));
    QCOMPARE(titles, QStringList({q("Online Users"), q("Rooms"), q("All Users"), q("Audio Quality"),
                                  q("Pending Approval"), q("HWID Requests (0)")}));
    QCOMPARE(find<QPushButton>("refreshAllButton")->text(), q("Refresh All"));
    QCOMPARE(find<QPushButton>("closeButton")->text(), q("Close"));
    QVERIFY(!find<QLabel>("adminConnectionNotice")->isVisible());
}

void AdminPanelTest::asksForEverythingInOrder()
{
    m_panel = std::make_unique<AdminPanel>(m_client.get(), *m_prompts);
    QCOMPARE(sent(), kRefresh + QStringList(q("ADMIN_GET_AUDIO_QUALITY")));
}

void AdminPanelTest::refreshesWithoutTheQuality()
{
    open();
    m_panel->onRefreshAll();
    QCOMPARE(sent(), kRefresh);
    find<QPushButton>("refreshAllButton")->click();
    QCOMPARE(sent(), kRefresh);
    QTest::keyClick(m_panel.get(), Qt::Key_F5);
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING"))); // a key lets the button be seen pressed first
    QCOMPARE(sent(), kRefresh);
}

void AdminPanelTest::everyMessageReachesItsTab_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("text");
    QTest::newRow("online users") << q("ONLINE_USERS|7,YH1A,Ani,Lobby,False;9,YB3C,Budi,Alpha,True")
                                  << q("onlineTotalLabel") << q("Total: 2 users online");
    QTest::newRow("all users") << q("ADMIN_ALL_USERS|") + q(kUsers) << q("allUsersTotal") << q("Total: 2 users");
    QTest::newRow("pending users") << q("ADMIN_PENDING|[{\"id\":8,\"callsign\":\"YB2B\"}]") << q("pendingTotal")
                                   << q("Total: 1 pending");
}

void AdminPanelTest::everyMessageReachesItsTab()
{
    QFETCH(QString, line);
    QFETCH(QString, label);
    QFETCH(QString, text);
    open();
    m_server->send(line);
    QTRY_COMPARE(m_panel->findChild<QLabel *>(label)->text(), text);
}

void AdminPanelTest::slotsReachTheirTabs_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QString>("line");
    QTest::newRow("approve") << q("onApproveUser") << q("ADMIN_APPROVE_USER 8");
    QTest::newRow("revoke") << q("onRevokeUser") << q("ADMIN_UNAPPROVE_USER 8");
    QTest::newRow("reset device") << q("onResetHwid") << q("ADMIN_RESET_HWID 8");
    QTest::newRow("delete user") << q("onDeleteUser") << q("ADMIN_DELETE_USER 8");
    QTest::newRow("audio quality") << q("onApplyAudioQuality") << q("ADMIN_SET_AUDIO_QUALITY low");
    QTest::newRow("delete room") << q("onDeleteRoom") << q("ADMIN_DELETE_ROOM \"Alpha\"");
    QTest::newRow("edit room") << q("onEditRoom") << q("ADMIN_EDIT_ROOM \"Alpha\" \"Alpha\" 25 \"\"");
    QTest::newRow("refresh") << q("onRefreshAll") << kRefresh.join(QLatin1Char('\n'));
}

void AdminPanelTest::slotsReachTheirTabs()
{
    QFETCH(QString, slot);
    QFETCH(QString, line);
    fill();
    auto *users = find<QTableView>("allUsersTable");
    for (int row = 0; row < users->model()->rowCount(); ++row) {
        if (users->model()->index(row, 0).data().toInt() == 8)
            select("allUsersTable", row);
    }
    find<QListWidget>("roomsList")->setCurrentRow(1);
    const QStringList boxes{q("onResetHwid"), q("onDeleteUser"), q("onApplyAudioQuality"), q("onDeleteRoom")};
    if (boxes.contains(slot))
        m_prompts->accept();
    QVERIFY(QMetaObject::invokeMethod(m_panel.get(), qPrintable(slot)));
    QCOMPARE(sent().join(QLatin1Char('\n')), line);
    QVERIFY(m_prompts->isDone());
}

void AdminPanelTest::needsASelectedUser_data()
{
    QTest::addColumn<QString>("slot");
    for (const char *slot : {"onApproveUser", "onRevokeUser", "onResetHwid", "onEditUser", "onDeleteUser"})
        QTest::newRow(slot) << q(slot);
}

void AdminPanelTest::needsASelectedUser()
{
    QFETCH(QString, slot);
    fill();
    m_prompts->accept();
    QVERIFY(QMetaObject::invokeMethod(m_panel.get(), qPrintable(slot)));
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().first().title, q("Error"));
    QCOMPARE(m_prompts->seen().first().text, q("Please select a user first."));
    QCOMPARE(sent(), QStringList());
}

void AdminPanelTest::refreshFollowsAnApproval_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QString>("line");
    QTest::newRow("approve") << q("onApproveUser") << q("ADMIN_APPROVE_USER 7");
    QTest::newRow("revoke") << q("onRevokeUser") << q("ADMIN_UNAPPROVE_USER 7");
}

void AdminPanelTest::refreshFollowsAnApproval()
{
    QFETCH(QString, slot);
    QFETCH(QString, line);
    fill();
    find<QLineEdit>("allUsersSearch")->setText(q("YH1A"));
    m_panel->onFilterAllUsers();
    select("allUsersTable", 0);
    QVERIFY(QMetaObject::invokeMethod(m_panel.get(), qPrintable(slot)));
    QCOMPARE(sent(), QStringList(line)); // not at once: the server is to have done it
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING")));
    QCOMPARE(sent(), kRefresh);
}

void AdminPanelTest::pendingUserIsApproved()
{
    fill();
    find<QTabWidget>("adminTabs")->setCurrentIndex(Pending);
    select("pendingTable", 0);
    find<QPushButton>("approveSelectedButton")->click();
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING")));
    QCOMPARE(sent(), QStringList(q("ADMIN_APPROVE_USER 8")) + kRefresh);
}

void AdminPanelTest::requestsShowInTheTitle()
{
    fill();
    m_server->send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YH1A|7"));
    QTRY_COMPARE(title(Requests), q("HWID Requests (1) !"));
    m_server->send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB2B|8"));
    QTRY_COMPARE(title(Requests), q("HWID Requests (2) !"));
    auto *list = find<QListWidget>("hwidRequestsList");
    QVERIFY(list->item(1)->text().startsWith(q("YB2B  |  ")));
    list->setCurrentRow(0);
    m_prompts->accept();
    find<QAction>("approveHwidAction")->trigger();
    QTRY_VERIFY(m_prompts->isDone());
    QCOMPARE(sent(), QStringList(q("ADMIN_RESET_HWID 7")));
    QCOMPARE(title(Requests), q("HWID Requests (1) !"));
    list->setCurrentRow(0);
    find<QAction>("dismissHwidAction")->trigger();
    QCOMPARE(title(Requests), q("HWID Requests (0)"));
    QCOMPARE(sent(), QStringList());
}

void AdminPanelTest::earlierRequests()
{
    open();
    const QDateTime when({2025, 3, 9}, {7, 5});
    m_panel->addHwidRequest(q("YH1A:7"), when);
    QCOMPARE(title(Requests), q("HWID Requests (1) !"));
    QCOMPARE(find<QListWidget>("hwidRequestsList")->item(0)->text(),
             q("YH1A  |  09/03/2025 07:05  |  Klik kanan untuk approve"));
    find<QListWidget>("hwidRequestsList")->setCurrentRow(0);
    find<QAction>("dismissHwidAction")->trigger();
    QCOMPARE(title(Requests), q("HWID Requests (0)"));
}

void AdminPanelTest::requestIdFromTheUserList()
{
    fill();
    m_server->send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB2B|ganti komputer"));
    QTRY_COMPARE(find<QListWidget>("hwidRequestsList")->count(), 1);
    find<QListWidget>("hwidRequestsList")->setCurrentRow(0);
    m_prompts->accept();
    find<QAction>("approveHwidAction")->trigger();
    QTRY_VERIFY(m_prompts->isDone());
    QCOMPARE(sent(), QStringList(q("ADMIN_RESET_HWID 8")));
}

void AdminPanelTest::otherNotificationsAreNone()
{
    open();
    emit m_client->adminNotification(q("SERVER_RESTART"), q("YH1A:7"));
    QCOMPARE(title(Requests), q("HWID Requests (0)"));
}

void AdminPanelTest::deviceResetSettlesItsRequest()
{
    fill();
    m_panel->addHwidRequest(q("YH1A:7"), QDateTime::currentDateTime());
    m_panel->addHwidRequest(q("YB2B:8"), QDateTime::currentDateTime());
    m_server->send(q("ADMIN_RESET_HWID_OK|YH1A"));
    QTRY_COMPARE(title(Requests), q("HWID Requests (1) !"));
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING"))); // the table is to show it
    QCOMPARE(sent(), kRefresh);
}

void AdminPanelTest::deletedUserAsksForNothing()
{
    fill();
    m_panel->addHwidRequest(q("YH1A:7"), QDateTime::currentDateTime());
    m_panel->addHwidRequest(q("YB2B:8"), QDateTime::currentDateTime());
    m_server->send(q("ADMIN_ALL_USERS|[{\"id\":8,\"callsign\":\"YB2B\"}]"));
    QTRY_COMPARE(title(Requests), q("HWID Requests (1) !"));
    QVERIFY(find<QListWidget>("hwidRequestsList")->item(0)->text().startsWith(q("YB2B  |  ")));
}

void AdminPanelTest::limitsEndWithTheConnection()
{
    fill();
    find<QListWidget>("roomsList")->setCurrentRow(1);
    const auto *maximum = find<QSpinBox>("roomMaximumSpin");
    QCOMPARE(maximum->text(), q("25"));
    m_server->send(q("SERVER_INFO|{\"total_rooms\":3}")); // says nothing of them
    m_server->send(q("AUDIO_QUALITY|high|64000|48000|20|5"));
    QTRY_VERIFY(find<QRadioButton>("audioQuality_high")->isChecked());
    QCOMPARE(maximum->text(), q("25"));
    find<QTabWidget>("adminTabs")->setCurrentIndex(Rooms);
    QVERIFY(!find<QLabel>("roomLimitHint")->isVisible());
    m_server->drop();
    QTRY_VERIFY(find<QLabel>("roomLimitHint")->isVisible());
    QCOMPARE(maximum->text(), q("25")); // the last one known
}

void AdminPanelTest::connectionLostAndBack()
{
    fill();
    m_server->drop();
    QTRY_VERIFY(find<QLabel>("adminConnectionNotice")->isVisible());
    QCOMPARE(find<QLabel>("adminConnectionNotice")->text(), q("Not connected to the server"));
    QCOMPARE(rowsOf(*m_panel, "allUsersTable"), 2); // still to be looked at
    m_panel->onRefreshAll();                        // dropped, nothing waits for the connection
    m_server->clear();
    QSignalSpy connected(m_client.get(), &TcpClient::connected);
    m_client->connectToServer(m_server->host(), m_server->port());
    QVERIFY(connected.wait());
    QVERIFY(!find<QLabel>("adminConnectionNotice")->isVisible());
    QVERIFY(m_server->waitForClient(2));
    QCOMPARE(sent(), QStringList()); // not before the login
    m_server->send(q("LOGIN_FAILED|Password salah"));
    m_server->send(q("LOGIN_OK|token|YB4D|True|4"));
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING")));
    QCOMPARE(sent(), kRefresh);
}

/// The gateway that was registered may be another one when the connection is back.
void AdminPanelTest::approvalsEndWithTheConnection()
{
    fill();
    find<QPushButton>("addGatewayButton")->click();
    for (const char *field : {"addCallsignEdit", "addGatewayNameEdit", "addPicNameEdit", "addPasswordEdit"})
        find<QLineEdit>(field)->setText(q("YH8RXX"));
    find<QCheckBox>("addApprovedCheck")->setChecked(true);
    m_prompts->accept();
    find<QPushButton>("addGatewaySubmitButton")->click();
    m_server->send(q("REGISTER_OK|Registrasi berhasil"));
    QVERIFY(m_server->waitForLine(q("ADMIN_PENDING"))); // the refresh that follows
    m_server->drop();
    QTRY_VERIFY(find<QLabel>("adminConnectionNotice")->isVisible());
    QSignalSpy connected(m_client.get(), &TcpClient::connected);
    m_client->connectToServer(m_server->host(), m_server->port());
    QVERIFY(connected.wait());
    QVERIFY(m_server->waitForClient(2));
    m_server->clear();
    m_server->send(q("ADMIN_ALL_USERS|[{\"id\":9,\"callsign\":\"YH8RXX\"}]"));
    QTRY_COMPARE(rowsOf(*m_panel, "allUsersTable"), 1);
    QCOMPARE(sent(), QStringList());
}

void AdminPanelTest::enterInAFieldPressesNoButton()
{
    fill();
    for (const char *field : {"onlineSearchEdit", "allUsersSearch"}) {
        find<QLineEdit>(field)->setFocus();
        QTest::keyClick(find<QLineEdit>(field), Qt::Key_Return);
    }
    QCOMPARE(sent(), QStringList());
    QVERIFY(m_panel->isVisible());
}

void AdminPanelTest::closesByKeyboard()
{
    open();
    QTest::keyClick(m_panel.get(), Qt::Key_Escape);
    QVERIFY(!m_panel->isVisible());
    m_panel->show();
    find<QPushButton>("closeButton")->setFocus();
    QTest::keyClick(find<QPushButton>("closeButton"), Qt::Key_Space);
    QVERIFY(!m_panel->isVisible());
}

void AdminPanelTest::worksWithoutAClient()
{
    m_panel = std::make_unique<AdminPanel>(nullptr, *m_prompts);
    m_panel->show();
    QVERIFY(find<QLabel>("adminConnectionNotice")->isVisible());
    m_panel->onRefreshAll();
    m_prompts->accept();
    m_panel->onApplyAudioQuality();
    QCOMPARE(sent(), QStringList());
}

void AdminPanelTest::clientMayGoFirst()
{
    fill();
    select("allUsersTable", 0);
    m_client.reset();
    m_panel->onApproveUser();
    m_panel->onRefreshAll();
    QCOMPARE(rowsOf(*m_panel, "allUsersTable"), 2);
}

void AdminPanelTest::pictures_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void AdminPanelTest::pictures()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    fill();
    m_panel->addHwidRequest(q("YB2B:8"), QDateTime({2025, 3, 9}, {7, 5}));
    find<QListWidget>("roomsList")->setCurrentRow(1);
    m_panel->resize(m_panel->minimumSize());
    const QString theme = q(QTest::currentDataTag());
    for (int tab = 0; tab < TabCount; ++tab) {
        find<QTabWidget>("adminTabs")->setCurrentIndex(tab);
        QCOMPARE(m_panel->size(), QSize(900, 600)); // no tab needs more
        QVERIFY(!Screenshots::save(*m_panel, QStringLiteral("admin-panel-%1-%2").arg(tab).arg(theme)).isNull());
    }
}

EVOX_TEST_MAIN(AdminPanelTest, QApplication)
#include "tst_adminpanel.moc"
