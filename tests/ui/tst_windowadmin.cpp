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

} // namespace

class WindowAdminTest final : public QObject
{
    Q_OBJECT

private slots:
    void opensForAdministratorsOnly_data();
    void opensForAdministratorsOnly();
    void opensOnce();
    void knowsLimitsFromBeforeItWasOpened();
    void listsRequestsFromBeforeItWasOpened();
    void forgetsWhatWasSettled();
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
    QTRY_COMPARE(rig.status(), q("Error: end"));
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
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AB|7"));
    emit rig.service<TcpClient>()->adminNotification(q("OTHER"), q("YH0AC|8"));
    rig.action("adminPanel")->trigger();
    QCOMPARE(requestsTitle(rig.window().findChild<AdminPanel *>()), q("HWID Requests (1) !"));
    // One that comes now is listed once.
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AD|9"));
    QCOMPARE(requestsTitle(rig.window().findChild<AdminPanel *>()), q("HWID Requests (2) !"));
}

void WindowAdminTest::forgetsWhatWasSettled()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AB|7"));
    rig.action("adminPanel")->trigger();
    auto *panel = rig.window().findChild<AdminPanel *>();
    emit rig.service<TcpClient>()->adminNotification(q("HWID_RESET_REQUEST"), q("YH0AD|9"));
    // The panel has a time of its own for what came while it was open.
    emit panel->hwidRequestSettled(q("YH0AD|9"), QDateTime::currentDateTime().addSecs(3));
    panel->close();
    QTRY_VERIFY(!rig.window().findChild<AdminPanel *>());
    rig.action("adminPanel")->trigger();
    QCOMPARE(requestsTitle(rig.window().findChild<AdminPanel *>()), q("HWID Requests (1) !"));
}

EVOX_TEST_MAIN(WindowAdminTest, QApplication)
#include "tst_windowadmin.moc"
