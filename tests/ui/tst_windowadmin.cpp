#include "WindowRig.h"
#include "net/TcpClient.h"
#include "support/TestMain.h"
#include "ui/admin/AdminPanel.h"

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString requestsTitle(const AdminPanel *panel)
{
    const auto *tabs = panel->findChild<QTabWidget *>();
    return tabs->tabText(tabs->count() - 1);
}

AdminPanel *openPanel(const WindowRig &rig)
{
    rig.action("adminPanel")->trigger();
    return rig.window().findChild<AdminPanel *>();
}

void closePanel(const WindowRig &rig)
{
    if (auto *panel = rig.window().findChild<AdminPanel *>())
        panel->close();
    QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
}

} // namespace

class WindowAdminTest final : public QObject
{
    Q_OBJECT

private slots:
    void opensForAdministratorsOnly_data();
    void opensForAdministratorsOnly();
    void closesWhenTheRightEnds();
    void opensOnce();
    void knowsLimitsFromBeforeItWasOpened();
    void listsRequestsFromBeforeItWasOpened();
    void forgetsWhatWasSettled_data();
    void forgetsWhatWasSettled();
    void requestsOverAReconnect_data();
    void requestsOverAReconnect();
};

void WindowAdminTest::opensForAdministratorsOnly_data()
{
    QTest::addColumn<bool>("admin");
    QTest::newRow("administrator") << true;
    QTest::newRow("member") << false;
}

void WindowAdminTest::opensForAdministratorsOnly()
{
    QFETCH(bool, admin);
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(admin));
    QCOMPARE(rig.action("adminPanel")->isEnabled(), admin);
    rig.window().showAdminPanel();
    QCOMPARE(rig.window().findChild<AdminPanel *>() != nullptr, admin);
}

void WindowAdminTest::closesWhenTheRightEnds()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    QVERIFY(openPanel(rig));
    rig.server.send(q("USER_PROFILE|{\"id\":42,\"callsign\":\"") + WindowRig::kCall + q("\",\"is_admin\":false}"));
    QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
    QVERIFY(!rig.action("adminPanel")->isEnabled());
    rig.server.clear();
    rig.server.answer(q("LOGIN "), {WindowRig::loginOk(true)});
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(q("USER_GET_PROFILE")));
    QVERIFY(openPanel(rig));
    rig.server.clear();
    rig.server.answer(q("LOGIN "), {WindowRig::loginOk(false)});
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(q("USER_GET_PROFILE")));
    QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
    QCOMPARE(rig.server.count(q("ADMIN_")), 0);
}

void WindowAdminTest::opensOnce()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    rig.action("adminPanel")->trigger();
    rig.action("adminPanel")->trigger();
    QCOMPARE(rig.window().findChildren<AdminPanel *>().size(), 1);
    rig.window().findChild<AdminPanel *>()->close();
    QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
}

void WindowAdminTest::knowsLimitsFromBeforeItWasOpened()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    rig.server.send(q("ROOMS|Lobby,Alpha"));
    rig.server.send(q("SERVER_INFO|{\"total_rooms\":2,\"room_limits\":{\"Lobby\":0,\"Alpha\":25}}"));
    rig.server.send(q("ERROR|end"));
    QTRY_VERIFY(rig.showed(q("Error: end"), 5000));
    rig.server.clear();
    for (int opened = 0; opened < 2; ++opened) {
        rig.action("adminPanel")->trigger();
        auto *panel = rig.window().findChild<AdminPanel *>();
        auto *rooms = panel->findChild<QListWidget *>(q("roomsList"));
        rig.server.send(q("ROOMS|Lobby,Alpha"));
        QTRY_COMPARE(rooms->count(), 2);
        rooms->setCurrentRow(1);
        panel->findChild<QLineEdit *>(q("roomNameEdit"))->setText(q("Beta"));
        panel->onEditRoom();
        QVERIFY(rig.server.waitForLine(q("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 25 \"\"")));
        rig.server.clear();
        panel->close();
        QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
    }
}

void WindowAdminTest::listsRequestsFromBeforeItWasOpened()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AB:7"));
    emit rig.service<TcpClient>()->adminNotification(q("OTHER"), q("YH0AC:8"));
    rig.action("adminPanel")->trigger();
    QCOMPARE(requestsTitle(rig.window().findChild<AdminPanel *>()), q("HWID Requests (1) !"));
    // One that comes now is listed once.
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AD:9"));
    QCOMPARE(requestsTitle(rig.window().findChild<AdminPanel *>()), q("HWID Requests (2) !"));
}

void WindowAdminTest::forgetsWhatWasSettled_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"approved", "dismissed", "reset elsewhere", "reset elsewhere, panel closed"})
        QTest::newRow(way) << q(way);
}

/// In a panel, which is then closed and opened again.
void WindowAdminTest::forgetsWhatWasSettled()
{
    QFETCH(QString, way);
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    rig.server.send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YH0AB|7"));
    rig.server.send(q("ERROR|end"));
    QTRY_VERIFY(rig.showed(q("Error: end"), 5000));
    AdminPanel *panel = openPanel(rig);
    rig.server.send(q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YH0AD|9"));
    QTRY_COMPARE(requestsTitle(panel), q("HWID Requests (2) !"));
    if (way == q("reset elsewhere, panel closed"))
        closePanel(rig);
    if (way.startsWith(q("reset elsewhere"))) {
        rig.server.send(q("ADMIN_RESET_HWID_OK|YH0AD"));
    } else {
        auto *list = panel->findChild<QListWidget *>(q("hwidRequestsList"));
        list->setCurrentRow(1);
        if (way == q("approved"))
            rig.prompts.accept();
        panel->findChild<QAction *>(way == q("approved") ? q("approveHwidAction") : q("dismissHwidAction"))->trigger();
    }
    rig.server.send(q("ERROR|settled"));
    QTRY_VERIFY(rig.showed(q("Error: settled"), 5000));
    closePanel(rig);
    panel = openPanel(rig);
    QCOMPARE(requestsTitle(panel), q("HWID Requests (1) !"));
    QVERIFY(panel->findChild<QListWidget *>(q("hwidRequestsList"))->item(0)->text().startsWith(q("YH0AB  |  ")));
}

void WindowAdminTest::requestsOverAReconnect_data()
{
    QTest::addColumn<bool>("isOpen"); // the panel, meanwhile
    QTest::newRow("panel open") << true;
    QTest::newRow("panel closed") << false;
}

/// The server tells everything that is open at every login.
void WindowAdminTest::requestsOverAReconnect()
{
    QFETCH(bool, isOpen);
    WindowRig rig;
    rig.server.answer(q("LOGIN "), {WindowRig::loginOk(true), q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YH0AB|7"),
                                    q("ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YH0AD|9")});
    rig.server.answer(q("ROOMS"), {q("ROOMS|Lobby")});
    rig.open();
    QTRY_VERIFY(rig.showed(q("Rooms loaded: 1")));
    AdminPanel *panel = openPanel(rig);
    QCOMPARE(requestsTitle(panel), q("HWID Requests (2) !"));
    auto *list = panel->findChild<QListWidget *>(q("hwidRequestsList"));
    list->setCurrentRow(0);
    panel->findChild<QAction *>(q("dismissHwidAction"))->trigger();
    if (!isOpen)
        closePanel(rig);
    rig.server.clear();
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(q("USER_GET_PROFILE")));
    rig.server.send(q("ERROR|end"));
    QTRY_VERIFY(rig.showed(q("Error: end"), 5000));
    panel = openPanel(rig);
    QCOMPARE(requestsTitle(panel), q("HWID Requests (1) !"));
    QVERIFY(panel->findChild<QListWidget *>(q("hwidRequestsList"))->item(0)->text().startsWith(q("YH0AD  |  ")));
}

EVOX_TEST_MAIN(WindowAdminTest, QApplication)
#include "tst_windowadmin.moc"
