#include "WindowRig.h"
#include "net/TcpClient.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/WidgetPrompts.h"
#include "ui/room/RoomPanel.h"

#include <QApplication>
#include <QMessageBox>

// What the server says while a box waits for an operator who may not be there.
class ReentranceTest final : public QObject
{
    Q_OBJECT

private slots:
    void kickFollowedByLines();
    void banFollowedByLines();
    void wrongPasswordFollowedByLines();
    void sameRefusalTwiceOpensOneBox();
    void sameKickTwiceOpensOneBox();
    void reconnectUnderAKickBoxKeepsTheNewConnection();
    void windowGoesUnderAKick();
    void windowGoesUnderALoginPrompt();
    void windowGoesUnderARetryPrompt();
    void windowGoesUnderAnOffer();
    void windowClosedUnderARealBox();
    void loginPromptDoesNotPileUpOverReconnects();
};

void ReentranceTest::kickFollowedByLines()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    QString shownUnderTheBox;
    rig.prompts.accept([&] {
        QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 3")));
        shownUnderTheBox = rig.service<RoomPanel>()->availableRooms().join(QLatin1Char(','));
        rig.timer("reconnectArmTimer")->setInterval(60000);
    });
    rig.server.sendRaw("KICKED|ganggu|frekuensi\r\nROOMS|A\r\nROOMS|A,B\r\nROOMS|A,B,C\r\n");
    QTRY_VERIFY(rig.showed(QStringLiteral("Kicked: ganggu|frekuensi"), 10000));
    QCOMPARE(shownUnderTheBox, QStringLiteral("A,B,C"));
    QStringList loaded;
    for (const QString &status : rig.statuses())
        if (status.startsWith(QLatin1String("Rooms loaded")))
            loaded.append(status);
    QCOMPARE(loaded, QStringList({QStringLiteral("Rooms loaded: 1 (0)"), QStringLiteral("Rooms loaded: 2 (0)"),
                                  QStringLiteral("Rooms loaded: 3 (0)")}));
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(rig.prompts.seen().first().title, QStringLiteral("Dikeluarkan dari Server"));
    QCOMPARE(rig.prompts.seen().first().text,
             QStringLiteral("Anda telah dikeluarkan oleh administrator.\n\nAlasan: ganggu|frekuensi"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Error: KICKED: ganggu|frekuensi"), 5000));
    QVERIFY(rig.server.waitForLine(QStringLiteral("QUIT")));
    QTRY_VERIFY(rig.showed(QStringLiteral("Disconnected")));
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QString());
    QVERIFY(!rig.action("toolbarLeave")->isVisible());
}

void ReentranceTest::banFollowedByLines()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.prompts.accept([&] {
        QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 1")));
        QVERIFY(rig.action("toolbarJoin")->isVisible());
        QVERIFY(rig.action("toolbarJoin")->isEnabled());
        QVERIFY(!rig.action("toolbarLeave")->isEnabled());
        rig.timer("reconnectArmTimer")->setInterval(60000);
    });
    rig.server.sendRaw("BANNED|spam\r\nROOMS|A\r\n");
    QTRY_VERIFY(rig.showed(QStringLiteral("Banned - Hubungi admin")));
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Critical);
    QCOMPARE(rig.prompts.seen().first().title, QStringLiteral("Akun Dibanned"));
    QCOMPARE(rig.prompts.seen().first().text,
             QStringLiteral("Akun Anda telah dibanned oleh administrator.\n\nAlasan: spam"
                            "\n\nHubungi administrator untuk informasi lebih lanjut."));
    QVERIFY(rig.server.waitForLine(QStringLiteral("QUIT")));
}

void ReentranceTest::wrongPasswordFollowedByLines()
{
    WindowRig rig;
    rig.prompts.enter(QStringLiteral("correct"), [&] {
        // A second refusal under the open prompt asks nothing.
        QTRY_VERIFY(rig.showed(QStringLiteral("Login failed: Password salah (2)")));
        QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 1")));
    });
    rig.open();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN ")));
    rig.server.sendRaw("LOGIN_FAILED|Password salah\r\nLOGIN_FAILED|Password salah (2)\r\nROOMS|Lobby\r\n");
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN YB0ABC correct")));
    QCOMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.server.count(QStringLiteral("LOGIN")), 2);
}

void ReentranceTest::sameRefusalTwiceOpensOneBox()
{
    WindowRig rig;
    rig.prompts.accept([&] { QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 1"))); });
    rig.open();
    QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN ")));
    rig.server.sendRaw("LOGIN_FAILED|Akun disuspend\r\nLOGIN_FAILED|Akun disuspend\r\nROOMS|Lobby\r\n");
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().size(), 1);
}

void ReentranceTest::sameKickTwiceOpensOneBox()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.timer("reconnectArmTimer")->setInterval(60000);
    // The second kick disconnects at once, as its box is already there; the first one finds nothing left to do.
    rig.prompts.accept([&] { QTRY_VERIFY(rig.showed(QStringLiteral("Disconnected"))); });
    rig.server.sendRaw("KICKED|x\r\nKICKED|x\r\n");
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().size(), 1);
    QVERIFY(rig.server.waitForLine(QStringLiteral("QUIT")));
    QTRY_VERIFY(!rig.server.isClientConnected());
    QCOMPARE(rig.server.count(QStringLiteral("QUIT")), 1);
}

void ReentranceTest::reconnectUnderAKickBoxKeepsTheNewConnection()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.prompts.accept([&] {
        rig.server.drop();
        QVERIFY(rig.server.waitForLine(QStringLiteral("LOGIN "), 2));
    });
    rig.server.send(QStringLiteral("KICKED|x"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Kicked: x"), 10000));
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY(rig.server.waitForLine(QStringLiteral("MARK")));
    QCOMPARE(rig.server.count(QStringLiteral("QUIT")), 0);
}

void ReentranceTest::windowGoesUnderAKick()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.prompts.accept([&rig] { rig.closeWindow(); });
    rig.server.sendRaw("KICKED|x\r\nROOMS|A\r\nLOGIN_FAILED|Password salah\r\n");
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().size(), 1);
}

void ReentranceTest::windowGoesUnderALoginPrompt()
{
    WindowRig rig({{QStringLiteral("callsign"), QJsonValue::Null}});
    rig.prompts.enter(QStringLiteral("yb0abc"), [&rig] { rig.closeWindow(); });
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().size(), 1);
}

void ReentranceTest::windowGoesUnderARetryPrompt()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.prompts.enter(QStringLiteral("other"), [&rig] { rig.closeWindow(); });
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
}

void ReentranceTest::windowGoesUnderAnOffer()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Perangkat tidak terdaftar")});
    rig.prompts.accept([&rig] { rig.closeWindow(); });
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
}

void ReentranceTest::windowClosedUnderARealBox()
{
    FakeServer server;
    const TestConfig config({{QStringLiteral("server_address"), server.host()},
                             {QStringLiteral("server_port"), server.port()},
                             {QStringLiteral("setup_completed"), true},
                             {QStringLiteral("callsign"), WindowRig::kCall},
                             {QStringLiteral("password"), WindowRig::kPassword},
                             {QStringLiteral("remember_password"), true},
                             {QStringLiteral("hwid"), QStringLiteral("0123")}});
    server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Akun disuspend")});
    WidgetPrompts prompts;
    const Endpoints endpoints;
    auto window = std::make_unique<MainWindow>(endpoints, prompts);
    prompts.setWindow(window.get());
    window->show();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, window.get(), [&] {
        if (qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            window->close();
    });
    poll.start(5);
    QTimer::singleShot(20000, qApp, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QVERIFY(!QApplication::activeModalWidget());
}

void ReentranceTest::loginPromptDoesNotPileUpOverReconnects()
{
    WindowRig rig({{QStringLiteral("remember_password"), false}});
    rig.prompts.enter(WindowRig::kPassword, [&] {
        rig.server.drop();
        QVERIFY(rig.server.waitForClient(2));
        rig.server.drop();
        QVERIFY(rig.server.waitForClient(3));
        QTRY_VERIFY(rig.service<TcpClient>()->isConnected());
    });
    rig.open();
    QVERIFY2(rig.server.waitForLine(QStringLiteral("LOGIN YB0ABC secret-word")), "the late answer is still of use");
    QCOMPARE(rig.prompts.seen().size(), 1);
}

EVOX_TEST_MAIN(ReentranceTest, QApplication)
#include "tst_reentrance.moc"
