#include "WindowRig.h"
#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/account/UserInfoDialog.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserWidget.h"
#include "ui/status/ControlPanel.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>

class ToolsTest final : public QObject
{
    Q_OBJECT

private slots:
    void everyActionIsReachableByKeyboard();
    void pingReadOut_data();
    void pingReadOut();
    void togglesTheTheme();
    void startsDark();
    void permitWarning();
    void permitWarningEndsWithALoginWithout();
    void userActions_data();
    void userActions();
    void muteKeepsShowing();
    void selfMuteToggles();
    void moveMenuJoins();
    void infoDialogOpensForItsOwnRequest();
    void infoAnswersThatFit_data();
    void infoAnswersThatFit();
    void serverFactsReachThePanel();
    void ownFactsReachThePanel_data();
    void ownFactsReachThePanel();
    void administratorNotice();
    void clientErrors();
    void missingCodecIsShown();
};

namespace {

QString serverText(const WindowRig &rig)
{
    const auto labels = rig.service<ControlPanel>()->findChildren<QLabel *>();
    for (const QLabel *label : labels)
        if (label->text().contains(QStringLiteral("Codec    :")))
            return label->text();
    return {};
}

QString gatewayText(const WindowRig &rig)
{
    const auto labels = rig.service<ControlPanel>()->findChildren<QLabel *>();
    for (const QLabel *label : labels)
        if (label->text().contains(QStringLiteral("PIC      :")))
            return label->text();
    return {};
}

QJsonObject offline()
{
    return {{QStringLiteral("setup_completed"), false}};
}

} // namespace

void ToolsTest::everyActionIsReachableByKeyboard()
{
    WindowRig rig(offline());
    rig.open();
    for (const QAction *menu : rig.window().menuWidget()->actions()) {
        QVERIFY2(menu->text().contains(QLatin1Char('&')), qPrintable(menu->text()));
        QStringList keys;
        for (const QAction *item : menu->menu()->actions()) {
            if (item->isSeparator())
                continue;
            const int mark = item->text().indexOf(QLatin1Char('&'));
            QVERIFY2(mark >= 0, qPrintable(item->text()));
            keys.append(item->text().mid(mark + 1, 1).toLower());
        }
        if (menu->text() != QLatin1String("&Room")) // its two M items are told apart by pressing the key again
            QVERIFY2(keys.removeDuplicates() == 0, qPrintable(menu->text()));
    }
}

void ToolsTest::pingReadOut_data()
{
    QTest::addColumn<float>("latency");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, float latency, const char *text) {
        QTest::newRow(name) << latency << QString::fromLatin1(text);
    };
    row("fast", 0.0F, "<span style='color:#4CAF50;'>PING: 0.0 ms</span>");
    row("just green", 49.94F, "<span style='color:#4CAF50;'>PING: 49.9 ms</span>");
    row("exactly 50", 50.0F, "<span style='color:#FFC107;'>PING: 50.0 ms</span>");
    row("just amber", 99.9F, "<span style='color:#FFC107;'>PING: 99.9 ms</span>");
    row("exactly 100", 100.0F, "<span style='color:#F44336;'>PING: 100.0 ms</span>");
}

void ToolsTest::pingReadOut()
{
    QFETCH(float, latency);
    WindowRig rig(offline());
    rig.open();
    emit rig.service<TcpClient>()->pingUpdated(latency);
    QTEST(rig.window().findChild<QLabel *>(QStringLiteral("ping"))->text(), "text");
}

void ToolsTest::togglesTheTheme()
{
    WindowRig rig(offline());
    rig.open();
    const QString light = qApp->styleSheet();
    QVERIFY(!light.isEmpty());
    rig.action("darkTheme")->trigger();
    QCOMPARE(rig.action("darkTheme")->text(), QStringLiteral("&Light Theme"));
    QVERIFY(qApp->styleSheet() != light);
    QCOMPARE(rig.config.saved().value(QStringLiteral("dark_theme")), QJsonValue(true));
    rig.action("darkTheme")->trigger();
    QCOMPARE(rig.action("darkTheme")->text(), QStringLiteral("&Dark Theme"));
    QCOMPARE(qApp->styleSheet(), light);
    QCOMPARE(rig.config.saved().value(QStringLiteral("dark_theme")), QJsonValue(false));
}

void ToolsTest::startsDark()
{
    WindowRig rig({{QStringLiteral("setup_completed"), false}, {QStringLiteral("dark_theme"), true}});
    rig.open();
    QVERIFY(rig.action("darkTheme")->isChecked());
    QCOMPARE(rig.action("darkTheme")->text(), QStringLiteral("&Light Theme"));
}

void ToolsTest::permitWarning()
{
    WindowRig rig(offline());
    rig.open();
    emit rig.service<TcpClient>()->licenseWarning(QStringLiteral("Izin habis 30 hari lagi"));
    QVERIFY(rig.showed(QStringLiteral("[!] Izin habis 30 hari lagi")));
    QCOMPARE(
        rig.window().statusBar()->styleSheet(),
        QStringLiteral("QStatusBar { background-color: #FFF3E0; color: #E65100; font-weight: bold; padding: 4px; }"));
}

void ToolsTest::permitWarningEndsWithALoginWithout()
{
    LogCapture log;
    log.expectWarning(QStringLiteral("[TCP] License warning:"));
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    const QString warning = QStringLiteral("Izin habis 3 hari lagi");
    rig.server.answer(QStringLiteral("LOGIN "), {QStringLiteral("LOGIN_OK|token||False|42||") + warning});
    const auto styles = [&rig] { return rig.window().statusBar()->styleSheet(); };
    rig.open();
    QVERIFY(rig.server.waitForLine(QStringLiteral("USER_GET_PROFILE")));
    QVERIFY(styles().contains(QStringLiteral("#FFF3E0")));
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(QStringLiteral("USER_GET_PROFILE"), 2));
    QVERIFY2(styles().contains(QStringLiteral("#FFF3E0")), "warned again");
    rig.server.answer(QStringLiteral("LOGIN "), {});
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 3));
    QVERIFY2(styles().contains(QStringLiteral("#FFF3E0")), "stands until the login has succeeded");
    rig.server.send(WindowRig::loginOk());
    QVERIFY(rig.server.waitForLine(QStringLiteral("USER_GET_PROFILE"), 3));
    QCOMPARE(styles(), QString());
}

void ToolsTest::userActions_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("room");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("status"); // empty: none
    const auto row = [](const char *action, const char *callsign, const char *room, const char *line,
                        const char *status) {
        QTest::addRow("%s %s", action, callsign)
            << QString::fromLatin1(action) << QString::fromLatin1(callsign) << QString::fromLatin1(room)
            << QString::fromLatin1(line) << QString::fromLatin1(status);
    };
    row("approve", "YB1X", "", "ADMIN_APPROVE_USER 7", "");
    row("revoke", "YB1X", "", "ADMIN_UNAPPROVE_USER 7", "");
    row("kick", "YB1X", "", "ADMIN_KICK 7", "");
    row("ban", "YB1X", "", "ADMIN_BAN 7", "");
    row("mute", "YB1X", "", "ADMIN_MUTE 7 1", "");
    row("unmute", "YB1X", "", "ADMIN_MUTE 7 0", "");
    row("move", "YB1X", "Ruang Dua", "ADMIN_MOVE 7 Ruang Dua", "Moving YB1X to Ruang Dua...");
    row("move", "YB0ABC", "Beta", "JOIN Beta", "Moving to Beta...");
    row("info", "YB1X", "", "USER_GET_INFO YB1X", "Memuat info YB1X...");
}

void ToolsTest::userActions()
{
    QFETCH(QString, action);
    QFETCH(QString, callsign);
    QFETCH(QString, room);
    QFETCH(QString, line);
    QFETCH(QString, status);
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn(true));
    emit rig.service<RoomPanel>()->userAction(action, callsign, action == QLatin1String("info") ? 0 : 7, room);
    QVERIFY2(rig.server.waitForLine(line), qPrintable(rig.server.lines().join(QLatin1Char('\n'))));
    QCOMPARE(rig.server.lines().last(), line);
    QVERIFY(log.contains(QStringLiteral("[RoomPanel] User action: ") + action));
    if (!status.isEmpty())
        QVERIFY(rig.showed(status));
    if (action.endsWith(QLatin1String("mute")))
        QCOMPARE(log.count(action == QLatin1String("mute") ? QStringLiteral("[MainWindow] Mute user:")
                                                           : QStringLiteral("[MainWindow] Unmute user:")),
                 1);
}

void ToolsTest::muteKeepsShowing()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom(QStringLiteral("Lobby"), true));
    const QString list = QStringLiteral("USER_LIST|Lobby|42,7|YB0ABC,YB1X|Sari,Budi|RX,RX|1,1|0,0");
    rig.server.send(list);
    QTRY_VERIFY(rig.service<RoomPanel>()->userWidget(QStringLiteral("YB1X")));
    emit rig.service<RoomPanel>()->userAction(QStringLiteral("mute"), QStringLiteral("YB1X"), 7);
    rig.server.send(list);
    rig.server.send(QStringLiteral("ROOMS|Lobby,Beta"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 2")));
    QVERIFY(rig.service<RoomPanel>()->userWidget(QStringLiteral("YB1X"))->isMicMuted());
}

void ToolsTest::selfMuteToggles()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    auto *panel = rig.service<RoomPanel>();
    emit panel->userAction(QStringLiteral("self_mute_mic"), WindowRig::kCall, 42);
    QVERIFY(rig.action("toolbarMicrophone")->isChecked());
    QVERIFY(rig.action("muteMicrophone")->isChecked());
    emit panel->userAction(QStringLiteral("self_mute_mic"), WindowRig::kCall, 42);
    QVERIFY(!rig.action("muteMicrophone")->isChecked());
    emit panel->userAction(QStringLiteral("self_mute_speaker"), WindowRig::kCall, 42);
    QVERIFY(rig.action("muteSpeaker")->isChecked());
    emit panel->userAction(QStringLiteral("unheard_of"), WindowRig::kCall, 42);
}

void ToolsTest::moveMenuJoins()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.send(QStringLiteral("ROOMS|Lobby,R&D"));
    auto *menu = rig.window().findChild<QMenu *>(QStringLiteral("moveToRoom"));
    QTRY_COMPARE(menu->actions().size(), 2);
    QCOMPARE(menu->actions().last()->text(), QStringLiteral("R&&D"));
    menu->actions().last()->trigger();
    QVERIFY(rig.server.waitForLine(QStringLiteral("JOIN R&D")));
    rig.server.send(QStringLiteral("ROOMS|Lobby"));
    QTRY_COMPARE(menu->actions().size(), 1);
}

void ToolsTest::infoDialogOpensForItsOwnRequest()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    auto *client = rig.service<TcpClient>();
    emit client->userInfoReceived({{QStringLiteral("callsign"), QStringLiteral("YB1X")}});
    QVERIFY2(!rig.service<UserInfoDialog>(), "nobody asked");
    emit rig.service<RoomPanel>()->userAction(QStringLiteral("info"), QStringLiteral("YB1X"), 0);
    emit client->userInfoReceived({{QStringLiteral("callsign"), QStringLiteral("YB2Z")}});
    QVERIFY2(!rig.service<UserInfoDialog>(), "another station's record");
    rig.server.send(QStringLiteral("USER_INFO_RESULT|{\"callsign\":\"YB1X\",\"name\":\"Budi\"}"));
    QTRY_VERIFY(rig.service<UserInfoDialog>());
    auto *dialog = rig.service<UserInfoDialog>();
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), QStringLiteral("RF-Gateway Info - YB1X"));
    QCOMPARE(rig.status(), QString());
    QTest::keyClick(dialog, Qt::Key_Escape);
    QTRY_VERIFY(!rig.service<UserInfoDialog>());
}

void ToolsTest::infoAnswersThatFit_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<QString>("callsign");
    const auto row = [](const char *name, const char *record, const char *callsign) {
        QTest::newRow(name) << QString::fromLatin1(record) << QString::fromLatin1(callsign);
    };
    row("in another case", R"({"callsign":"yb1x","name":"Budi"})", "yb1x");
    row("without a callsign", R"({"name":"Budi"})", "YB1X");
    row("with an empty one", R"({"callsign":"","name":"Budi"})", "YB1X");
    row("with no value", R"({"callsign":null,"name":"Budi"})", "YB1X");
}

void ToolsTest::infoAnswersThatFit()
{
    QFETCH(QString, record);
    QFETCH(QString, callsign);
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.answer(QStringLiteral("USER_GET_INFO"), {QStringLiteral("USER_INFO_RESULT|") + record});
    emit rig.service<RoomPanel>()->userAction(QStringLiteral("info"), QStringLiteral("YB1X"), 0);
    QTRY_VERIFY(rig.service<UserInfoDialog>());
    QCOMPARE(rig.service<UserInfoDialog>()->windowTitle(), QStringLiteral("RF-Gateway Info - ") + callsign);
    QCOMPARE(rig.status(), QString());
    delete rig.service<UserInfoDialog>();
    emit rig.service<TcpClient>()->userInfoReceived({{QStringLiteral("name"), QStringLiteral("Budi")}});
    QVERIFY2(!rig.service<UserInfoDialog>(), "nobody has asked again");
}

void ToolsTest::serverFactsReachThePanel()
{
    WindowRig rig(offline());
    rig.open();
    auto *client = rig.service<TcpClient>();
    emit client->serverInfoReceived({{QStringLiteral("audio_bitrate"), 64000},
                                     {QStringLiteral("audio_sample_rate"), 48000},
                                     {QStringLiteral("encryption"), QStringLiteral("XSalsa20")},
                                     {QStringLiteral("online_users"), 7},
                                     {QStringLiteral("online_gateways"), 2},
                                     {QStringLiteral("online_admins"), 1},
                                     {QStringLiteral("total_rooms"), 3}});
    QCOMPARE(serverText(rig), QStringLiteral("Name     :  e-VOX SINAR\nCodec    :  Opus\n"
                                             "Quality  :  standard (64kbps, 48kHz)\nEncrypt  :  XSalsa20\n"
                                             "Users    :  7 online (4 User, 2 GW, 1 Admin)\nRooms    :  3 total"));
}

void ToolsTest::ownFactsReachThePanel_data()
{
    QTest::addColumn<QString>("source");
    for (const char *source : {"gateway information", "all users", "profile"})
        QTest::newRow(source) << QString::fromLatin1(source);
}

void ToolsTest::ownFactsReachThePanel()
{
    QFETCH(QString, source);
    LogCapture log;
    WindowRig rig(offline());
    rig.open();
    auto *client = rig.service<TcpClient>();
    const QVariantMap own{{QStringLiteral("callsign"), WindowRig::kCall},
                          {QStringLiteral("gateway_name"), QStringLiteral("Bukit")},
                          {QStringLiteral("frequency"), QStringLiteral("145.5")},
                          {QStringLiteral("responsible_name"), QStringLiteral("Sari")},
                          {QStringLiteral("responsible_callsign"), QStringLiteral("YB0S")},
                          {QStringLiteral("whatsapp"), QStringLiteral("0812")}};
    QVariantMap other = own;
    other.insert(QStringLiteral("callsign"), QStringLiteral("YB1X"));
    other.insert(QStringLiteral("gateway_name"), QStringLiteral("Lembah"));
    if (source == QLatin1String("profile")) {
        emit client->userProfileReceived(own);
        emit client->userProfileReceived(other);
    } else if (source == QLatin1String("all users")) {
        log.clear();
        emit client->allUsersReceived({other, own, other});
        QCOMPARE(
            log.linesStartingWith(QStringLiteral("[MainWindow]")),
            QStringList({QStringLiteral("[MainWindow] allUsersReceived: 3"),
                         QStringLiteral("[MainWindow] Checking: YB1X"), QStringLiteral("[MainWindow] Checking: YB0ABC"),
                         QStringLiteral("[MainWindow] Found myself!"), QStringLiteral("[MainWindow] Checking: YB1X")}));
        emit client->allUsersReceived({other});
    } else {
        emit client->gatewayInfoReceived(own);
    }
    QCOMPARE(gatewayText(rig), QStringLiteral("Name     :  Bukit\nCall     :  YB0ABC\nFreq     :  145.5\n"
                                              "Loc      :  -\nPIC      :  Sari (YB0S)\nWA       :  0812"));
}

void ToolsTest::administratorNotice()
{
    WindowRig rig(offline());
    rig.open();
    auto *client = rig.service<TcpClient>();
    emit client->adminNotification(QStringLiteral("OTHER"), QStringLiteral("YB1X:7"));
    QCOMPARE(rig.status(), QStringLiteral("Ready"));
    emit client->adminNotification(QStringLiteral("HWID_RESET_REQUEST"), QStringLiteral("YB1X:7"));
    QVERIFY(rig.showed(QStringLiteral("HWID Reset Request dari: YB1X (lihat tab HWID Requests)"), 30000));
}

void ToolsTest::clientErrors()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.send(QStringLiteral("ERROR|Kanal penuh"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Error: Kanal penuh"), 5000));
    QVERIFY2(!rig.timer("reconnectArmTimer")->isActive(), "an error that the server reports is no loss");
}

void ToolsTest::missingCodecIsShown()
{
    WindowRig rig(offline());
    rig.open();
    auto *label = rig.window().findChild<QLabel *>(QStringLiteral("audioError"));
    QVERIFY(!label->isVisible());
    emit rig.service<AudioEngine>()->error(QStringLiteral("Failed to load Opus DLL"));
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), QStringLiteral("Failed to load Opus DLL"));
}

EVOX_TEST_MAIN(ToolsTest, QApplication)
#include "tst_tools.moc"
