#include "WindowRig.h"
#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/room/RoomPanel.h"
#include "ui/status/ControlPanel.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>

namespace {

const QString kLoginLine = QStringLiteral("LOGIN YB0ABC secret-word 0123456789abcdef");

} // namespace

class SessionTest final : public QObject
{
    Q_OBJECT

private slots:
    void startsDisconnected();
    void connectsByItself();
    void waitsForTheUser_data();
    void waitsForTheUser();
    void connectsByHand_data();
    void connectsByHand();
    void disconnectsByHand();
    void makesAHardwareIdentifier();
    void logsInWithTheStoredPassword();
    void asksForCallsignAndPassword();
    void asksForAMissingPassword_data();
    void asksForAMissingPassword();
    void asksForThePasswordEachTime();
    void cancelledLoginStaysConnected_data();
    void cancelledLoginStaysConnected();
    void actsOnALogin();
    void administratorsGetMore();
    void joinsByHand();
    void joinedRoomShows();
    void failedJoinChangesNothing();
    void roomKeySwitchesEncryption_data();
    void roomKeySwitchesEncryption();
    void secondLoginHandlesEveryKeyTwice();
    void leavesByMenuWithTwoCommands();
    void leavesByPanelWithOneCommand();
    void disconnectionClearsEverything();
};

void SessionTest::startsDisconnected()
{
    WindowRig rig({{QStringLiteral("setup_completed"), false}});
    rig.open();
    QCOMPARE(rig.window().windowTitle(), QStringLiteral("e-VOX SINAR v4.0.2 (Build 20260530)"));
    QVERIFY(!rig.window().windowIcon().isNull());
    QCOMPARE(rig.status(), QStringLiteral("Ready"));
    QVERIFY(rig.action("connectToServer")->isEnabled());
    for (const char *name : {"disconnectFromServer", "joinRoom", "toolbarJoin", "leaveRoom", "toolbarLeave",
                             "muteMicrophone", "muteSpeaker", "toolbarMicrophone", "toolbarSpeaker", "adminPanel"})
        QVERIFY2(!rig.action(name)->isEnabled(), name);
    QVERIFY(rig.action("toolbarJoin")->isVisible());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
    QVERIFY(!rig.window().findChild<QMenu *>(QStringLiteral("moveToRoom"))->menuAction()->isEnabled());
}

void SessionTest::connectsByItself()
{
    LogCapture log;
    WindowRig rig;
    rig.open();
    QVERIFY(rig.server.waitForClient());
    QTRY_VERIFY(rig.showed(QStringLiteral("Connected to server"), 3000));
    QVERIFY(rig.showed(QStringLiteral("Connecting to %1...").arg(rig.server.host())));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] onNetworkConnected - Server from config: %1 %2")
                             .arg(rig.server.host())
                             .arg(rig.server.port())));
    QVERIFY(!rig.action("connectToServer")->isEnabled());
    QVERIFY(rig.action("disconnectFromServer")->isEnabled());
    QVERIFY(rig.action("joinRoom")->isEnabled());
    QVERIFY(!rig.action("leaveRoom")->isEnabled());
    QCOMPARE(rig.action("connectionIndicator")->toolTip(), QStringLiteral("Connected"));
}

void SessionTest::waitsForTheUser_data()
{
    QTest::addColumn<QJsonObject>("values");
    QTest::newRow("setup not completed") << QJsonObject{{QStringLiteral("setup_completed"), false}};
    QTest::newRow("setup never heard of") << QJsonObject{{QStringLiteral("setup_completed"), QJsonValue::Null}};
    QTest::newRow("empty address") << QJsonObject{{QStringLiteral("server_address"), QString()}};
}

void SessionTest::waitsForTheUser()
{
    QFETCH(QJsonObject, values);
    WindowRig rig(values);
    rig.open();
    // The automatic connect is due 500 ms after the start; a later timer of the same kind shows that it has passed.
    bool passed = false;
    QTimer::singleShot(600, &rig.window(), [&passed] { passed = true; });
    QTRY_VERIFY(passed);
    QCOMPARE(rig.service<TcpClient>()->socketState(), QAbstractSocket::UnconnectedState);
    QCOMPARE(rig.status(), QStringLiteral("Ready"));
}

void SessionTest::connectsByHand_data()
{
    QTest::addColumn<QString>("address"); // null: cancelled, "server": the test's server
    QTest::addColumn<bool>("portAccepted");
    QTest::addColumn<bool>("connects");
    QTest::newRow("both entered") << QStringLiteral("server") << true << true;
    QTest::newRow("address cancelled") << QString() << false << false;
    QTest::newRow("address empty") << QStringLiteral("") << false << false;
    QTest::newRow("port cancelled") << QStringLiteral("server") << false << false;
}

void SessionTest::connectsByHand()
{
    QFETCH(QString, address);
    QFETCH(bool, portAccepted);
    QFETCH(bool, connects);
    WindowRig rig({{QStringLiteral("setup_completed"), false}});
    const QJsonObject before = Config::instance().values();
    rig.open();
    if (address.isNull())
        rig.prompts.cancel();
    else
        rig.prompts.enter(address.isEmpty() ? address : rig.server.host());
    if (portAccepted)
        rig.prompts.enterNumber(rig.server.port());
    else if (!address.isEmpty())
        rig.prompts.cancel();
    rig.action("connectToServer")->trigger();
    QCOMPARE(rig.prompts.seen().first().title, QStringLiteral("Connect to Server"));
    QCOMPARE(rig.prompts.seen().first().text, QStringLiteral("Server Address:"));
    QCOMPARE(rig.prompts.seen().first().initialText, QStringLiteral("radio.example"));
    if (rig.prompts.seen().size() > 1) {
        const Prompt port = rig.prompts.seen().at(1);
        QCOMPARE(port.title, QStringLiteral("Connect to Server"));
        QCOMPARE(port.text, QStringLiteral("Port:"));
        QCOMPARE(port.value, 8080);
        QCOMPARE(port.minimum, 1);
        QCOMPARE(port.maximum, 65535);
    }
    if (connects)
        QVERIFY(rig.server.waitForClient());
    else
        QCOMPARE(rig.service<TcpClient>()->socketState(), QAbstractSocket::UnconnectedState);
    QCOMPARE(Config::instance().values(), before);
}

void SessionTest::disconnectsByHand()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.action("disconnectFromServer")->trigger();
    QVERIFY(rig.server.waitForLine(QStringLiteral("QUIT")));
    QTRY_VERIFY(rig.showed(QStringLiteral("Disconnected")));
}

void SessionTest::makesAHardwareIdentifier()
{
    WindowRig rig({{QStringLiteral("hwid"), QJsonValue::Null}});
    rig.open();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN ")));
    const QString saved = rig.config.saved().value(QStringLiteral("hwid")).toString();
    QVERIFY2(QRegularExpression(QStringLiteral("^[0-9a-f]{32}$")).match(saved).hasMatch(), qPrintable(saved));
    QCOMPARE(rig.server.lines().first(), QStringLiteral("LOGIN YB0ABC secret-word ") + saved);
}

void SessionTest::logsInWithTheStoredPassword()
{
    WindowRig rig({{QStringLiteral("callsign"), QStringLiteral("yb0abc")}});
    rig.open();
    QVERIFY(rig.server.waitForLine(kLoginLine));
    QVERIFY(rig.showed(QStringLiteral("Auto-login as YB0ABC")));
    QVERIFY(rig.prompts.seen().isEmpty());
}

void SessionTest::asksForCallsignAndPassword()
{
    WindowRig rig({{QStringLiteral("callsign"), QJsonValue::Null}, {QStringLiteral("password"), QJsonValue::Null}});
    rig.prompts.enter(QStringLiteral("yb0abc"));
    rig.prompts.enter(WindowRig::kPassword);
    rig.open();
    QVERIFY(rig.server.waitForLine(kLoginLine));
    QCOMPARE(rig.prompts.seen().at(0).title, QStringLiteral("Login"));
    QCOMPARE(rig.prompts.seen().at(0).text, QStringLiteral("Callsign:"));
    QCOMPARE(rig.prompts.seen().at(1).kind, Prompt::Kind::Password);
    QCOMPARE(rig.prompts.seen().at(1).text, QStringLiteral("Password for YB0ABC:"));
    QCOMPARE(rig.config.saved().value(QStringLiteral("callsign")).toString(), WindowRig::kCall);
    QCOMPARE(rig.config.saved().value(QStringLiteral("password")).toString(), WindowRig::kPassword);
}

void SessionTest::asksForAMissingPassword_data()
{
    QTest::addColumn<bool>("remember");
    QTest::newRow("to be remembered") << true;
    QTest::newRow("not to be remembered") << false;
}

void SessionTest::asksForAMissingPassword()
{
    QFETCH(bool, remember);
    WindowRig rig({{QStringLiteral("password"), QJsonValue::Null}, {QStringLiteral("remember_password"), remember}});
    rig.prompts.enter(WindowRig::kPassword);
    rig.open();
    QVERIFY(rig.server.waitForLine(kLoginLine));
    QCOMPARE(rig.prompts.seen().at(0).title, QStringLiteral("Login"));
    QCOMPARE(rig.prompts.seen().at(0).text, QStringLiteral("Password for YB0ABC:"));
    QVERIFY(rig.showed(QStringLiteral("Logging in as YB0ABC")));
    QCOMPARE(rig.config.saved().contains(QStringLiteral("password")), remember);
}

void SessionTest::asksForThePasswordEachTime()
{
    WindowRig rig(
        {{QStringLiteral("remember_password"), false}, {QStringLiteral("callsign"), QStringLiteral("yb0abc")}});
    rig.prompts.enter(QStringLiteral("typed"));
    rig.open();
    QVERIFY2(rig.server.waitForLine(QStringLiteral("LOGIN yb0abc typed 0123456789abcdef")),
             "the callsign goes out as it is stored");
    QCOMPARE(rig.prompts.seen().at(0).text, QStringLiteral("Password for yb0abc:"));
    QCOMPARE(rig.config.saved().value(QStringLiteral("password")), QJsonValue(QString()));
}

void SessionTest::cancelledLoginStaysConnected_data()
{
    QTest::addColumn<QJsonObject>("values");
    QTest::addColumn<QString>("entered"); // null: cancelled
    const QJsonObject noCall{{QStringLiteral("callsign"), QJsonValue::Null}};
    const QJsonObject noPassword{{QStringLiteral("password"), QJsonValue::Null}};
    const QJsonObject notRemembered{{QStringLiteral("remember_password"), false}};
    QTest::newRow("callsign cancelled") << noCall << QString();
    QTest::newRow("callsign empty") << noCall << QStringLiteral("");
    QTest::newRow("missing password cancelled") << noPassword << QString();
    QTest::newRow("missing password empty") << noPassword << QStringLiteral("");
    QTest::newRow("confirmation cancelled") << notRemembered << QString();
}

void SessionTest::cancelledLoginStaysConnected()
{
    QFETCH(QJsonObject, values);
    QFETCH(QString, entered);
    WindowRig rig(values);
    const QJsonObject before = Config::instance().values();
    if (entered.isNull())
        rig.prompts.cancel();
    else
        rig.prompts.enter(entered);
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY(rig.server.waitForLine(QStringLiteral("MARK")));
    QCOMPARE(rig.server.count(QStringLiteral("LOGIN")), 0);
    QCOMPARE(Config::instance().values(), before);
}

void SessionTest::actsOnALogin()
{
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    const QStringList requests = rig.server.lines().mid(1, 3);
    QCOMPARE(requests, QStringList({QStringLiteral("GET_AUDIO_QUALITY"), QStringLiteral("ROOMS"),
                                    QStringLiteral("USER_GET_PROFILE")}));
    QVERIFY(rig.showed(QStringLiteral("Login successful")));
    QVERIFY2(rig.server.waitForDatagram("TOKEN:token-0123456789:42"), "the id is set before the token is built");
    QTRY_VERIFY(rig.showed(QStringLiteral("UDP audio ready"), 3000));
    for (const char *line : {"[MainWindow] Login successful, userId: 42", "[MainWindow] m_client: OK",
                             "[MainWindow] m_client->isAdmin(): false", "[MainWindow] m_adminPanelAction: OK",
                             "[MainWindow] UDP user ID set to: 42", "[MainWindow] UDP re-enabled for new room",
                             "[MainWindow] Requested audio quality from server", "[MainWindow] Admin access: false",
                             "[MainWindow] UDP is ready!", "[MainWindow] UDP keepalive timer started (25s interval)"})
        QVERIFY2(log.contains(QLatin1String(line)), line);
    QVERIFY(!rig.action("adminPanel")->isEnabled());
    QVERIFY(rig.action("toolbarJoin")->isEnabled());
}

void SessionTest::administratorsGetMore()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn(true));
    QVERIFY(rig.action("adminPanel")->isEnabled());
    QVERIFY(rig.service<RoomPanel>()->isAdmin());
}

void SessionTest::joinsByHand()
{
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    rig.prompts.accept();
    rig.action("joinRoom")->trigger();
    QCOMPARE(rig.prompts.seen().last().title, QStringLiteral("Join Room"));
    QCOMPARE(rig.prompts.seen().last().text, QStringLiteral("No rooms available"));

    rig.server.send(QStringLiteral("ROOMS|Alpha,Beta"));
    QTRY_COMPARE(rig.service<RoomPanel>()->availableRooms().size(), 2);
    rig.prompts.enter(QStringLiteral("Beta"));
    rig.action("toolbarJoin")->trigger();
    QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Choice);
    QCOMPARE(rig.prompts.seen().last().text, QStringLiteral("Select room:"));
    QCOMPARE(rig.prompts.seen().last().choices, QStringList({QStringLiteral("Alpha"), QStringLiteral("Beta")}));
    QVERIFY(rig.server.waitForLine(QStringLiteral("JOIN Beta")));

    rig.server.drop();
    QTRY_VERIFY(rig.showed(QStringLiteral("Disconnected")));
    const int seen = rig.prompts.seen().size();
    rig.window().onJoinRoom();
    QVERIFY2(rig.prompts.seen().size() == seen, "nothing is asked without a connection");
}

void SessionTest::joinedRoomShows()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    QVERIFY(rig.showed(QStringLiteral("Joined room: Lobby")));
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QStringLiteral("Lobby"));
    QVERIFY(rig.service<ControlPanel>()->isInRoom());
    QVERIFY(!rig.action("toolbarJoin")->isVisible());
    QVERIFY(!rig.action("toolbarJoin")->isEnabled());
    for (const char *name :
         {"toolbarLeave", "leaveRoom", "muteMicrophone", "muteSpeaker", "toolbarMicrophone", "toolbarSpeaker"})
        QVERIFY2(rig.action(name)->isEnabled(), name);
    QVERIFY(rig.window().findChild<QMenu *>(QStringLiteral("moveToRoom"))->menuAction()->isEnabled());
}

void SessionTest::failedJoinChangesNothing()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.answer(QStringLiteral("JOIN "), {QStringLiteral("JOIN_FAILED|Penuh"), QStringLiteral("ROOMS|Lobby")});
    QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 1")));
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QString());
    QVERIFY(rig.action("toolbarJoin")->isEnabled());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
}

void SessionTest::roomKeySwitchesEncryption_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("payloadSize"); // of a packet of ten bytes
    QTest::newRow("31 bytes: in the clear") << 31 << 10;
    QTest::newRow("32 bytes: enciphered") << 32 << 50;
    QTest::newRow("33 bytes: in the clear") << 33 << 10;
}

void SessionTest::roomKeySwitchesEncryption()
{
    QFETCH(int, bytes);
    LogCapture log;
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    const QString key = WindowRig::key(bytes, 'x');
    rig.server.send(QStringLiteral("MOVED|Alpha||") + key);
    QTRY_COMPARE(rig.service<RoomPanel>()->currentRoom(), QStringLiteral("Alpha"));
    QTEST(rig.service<AudioEngine>()->encryptAudio(QByteArray(10, 'p')).size(), "payloadSize");
    QVERIFY(log.contains(QStringLiteral("[MainWindow] Room key received: %1...").arg(key.left(16))));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] Audio buffers cleared and decoder reset")));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] UDP healthy, resending token for new room...")));
    QVERIFY(rig.showed(QStringLiteral("Encryption key updated and buffers cleared"), 2000));
    for (const QString &line : log.lines())
        QVERIFY2(!line.contains(key) && !line.contains(WindowRig::kPassword), qPrintable(line));
}

void SessionTest::secondLoginHandlesEveryKeyTwice()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 2));
    QVERIFY(rig.server.waitForLine(QStringLiteral("JOIN "), 2));
    LogCapture log;
    rig.server.send(QStringLiteral("MOVED|Alpha||") + WindowRig::key(32, 'x'));
    QTRY_COMPARE(rig.service<RoomPanel>()->currentRoom(), QStringLiteral("Alpha"));
    QCOMPARE(log.count(QStringLiteral("[MainWindow] Room key received: eHh4")), 2);
}

void SessionTest::leavesByMenuWithTwoCommands()
{
    LogCapture log;
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.action("toolbarMicrophone")->setChecked(true);
    rig.action("leaveRoom")->trigger();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LEAVE"), 2));
    QVERIFY(rig.showed(QStringLiteral("Left room")));
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QString());
    QVERIFY(!rig.service<ControlPanel>()->isInRoom());
    QVERIFY(rig.action("toolbarJoin")->isVisible());
    QVERIFY(rig.action("toolbarJoin")->isEnabled());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
    QVERIFY(!rig.action("toolbarMicrophone")->isChecked());
    QVERIFY(!rig.action("toolbarMicrophone")->isEnabled());
    QVERIFY(!rig.service<AudioEngine>()->isMicMuted());
    QVERIFY(!rig.service<AudioEngine>()->isCapturing());
}

void SessionTest::leavesByPanelWithOneCommand()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.action("toolbarSpeaker")->setChecked(true);
    emit rig.service<RoomPanel>()->leaveRoom();
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY(rig.server.waitForLine(QStringLiteral("MARK")));
    QCOMPARE(rig.server.count(QStringLiteral("LEAVE")), 1);
    QVERIFY(rig.showed(QStringLiteral("Left room")));
    QVERIFY(rig.action("toolbarJoin")->isEnabled());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
    QVERIFY(!rig.action("toolbarSpeaker")->isChecked());
    QVERIFY(!rig.action("muteSpeaker")->isEnabled());
}

void SessionTest::disconnectionClearsEverything()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.send(QStringLiteral("ROOMS|Lobby"));
    rig.server.send(QStringLiteral("USER_LIST|Lobby|42|YB0ABC|Sari|RX|1|0"));
    QTRY_VERIFY(rig.service<RoomPanel>()->userWidget(WindowRig::kCall));
    rig.action("toolbarMicrophone")->setChecked(true);
    rig.timer("reconnectArmTimer")->setInterval(60000);
    rig.server.drop();
    QTRY_VERIFY(rig.showed(QStringLiteral("Disconnected")));
    QVERIFY(rig.timer("reconnectArmTimer")->isActive());
    QVERIFY(rig.action("connectToServer")->isEnabled());
    for (const char *name : {"disconnectFromServer", "joinRoom", "toolbarJoin", "leaveRoom", "toolbarLeave",
                             "muteMicrophone", "muteSpeaker", "toolbarMicrophone", "toolbarSpeaker"})
        QVERIFY2(!rig.action(name)->isEnabled(), name);
    QVERIFY(rig.action("toolbarJoin")->isVisible());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
    QVERIFY(!rig.service<AudioEngine>()->isMicMuted());
    QCOMPARE(rig.action("connectionIndicator")->toolTip(), QStringLiteral("Disconnected"));
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QString());
    QVERIFY(rig.service<RoomPanel>()->availableRooms().isEmpty());
    QVERIFY(!rig.service<RoomPanel>()->userWidget(WindowRig::kCall));
    QVERIFY(!rig.service<ControlPanel>()->isInRoom());
    QVERIFY(!rig.service<ControlPanel>()->isSerialReady());
}

EVOX_TEST_MAIN(SessionTest, QApplication)
#include "tst_session.moc"
