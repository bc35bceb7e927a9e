#include "WindowRig.h"
#include "app/Config.h"
#include "net/TcpClient.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/room/RoomPanel.h"

#include <QApplication>
#include <QMenu>

// The room that is joined after a login, and what becomes of it when the server does not have it.
class DefaultRoomTest final : public QObject
{
    Q_OBJECT

private slots:
    void joinsTheDefaultRoom();
    void noDefaultRoomNoJoin();
    void roomListReplacesAMissingDefault();
    void roomListKeepsAPresentDefault();
    void refusedJoinGoesToTheReplacedDefault();
    void refusedJoinIsRepeatedOnce();
    void refusalAfterAJoinByHandChangesNothing();
};

void DefaultRoomTest::joinsTheDefaultRoom()
{
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QStringLiteral("Alpha Room")}});
    QVERIFY(rig.openAndLogIn());
    QCOMPARE(rig.server.count(QStringLiteral("JOIN")), 0);
    QVERIFY(rig.server.waitForLine(QStringLiteral("JOIN Alpha Room")));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] Auto-joining default room: Alpha Room")));
}

void DefaultRoomTest::noDefaultRoomNoJoin()
{
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    bool passed = false;
    QTimer::singleShot(1200, &rig.window(), [&passed] { passed = true; });
    QTRY_VERIFY(passed);
    QCOMPARE(rig.server.count(QStringLiteral("JOIN")), 0);
}

void DefaultRoomTest::roomListReplacesAMissingDefault()
{
    LogCapture log;
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.send(QStringLiteral("ROOMS|Alpha,Beta"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Default room diubah ke: Alpha"), 5000));
    QVERIFY(rig.showed(QStringLiteral("Rooms loaded: 2")));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] Default room 'Lobby' tidak ada di server, diganti ke 'Alpha'")));
    QCOMPARE(Config::instance().defaultRoom(), QStringLiteral("Alpha"));
    QVERIFY2(!rig.config.saved().contains(QStringLiteral("default_room")), "the change is not saved");
    QCOMPARE(rig.service<RoomPanel>()->availableRooms(),
             QStringList({QStringLiteral("Alpha"), QStringLiteral("Beta")}));
    QCOMPARE(rig.window().findChild<QMenu *>(QStringLiteral("moveToRoom"))->actions().size(), 2);
}

void DefaultRoomTest::roomListKeepsAPresentDefault()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.send(QStringLiteral("ROOMS|"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 0")));
    QCOMPARE(Config::instance().defaultRoom(), QStringLiteral("Lobby"));
    rig.server.send(QStringLiteral("ROOMS|Alpha,Lobby"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 2")));
    QCOMPARE(Config::instance().defaultRoom(), QStringLiteral("Lobby"));
}

void DefaultRoomTest::refusedJoinGoesToTheReplacedDefault()
{
    LogCapture log;
    WindowRig rig;
    rig.server.answer(QStringLiteral("ROOMS"), {QStringLiteral("ROOMS|Alpha,Beta")});
    rig.server.answer(QStringLiteral("JOIN Lobby"), {QStringLiteral("JOIN_FAILED|Room tidak ditemukan")});
    rig.server.answer(QStringLiteral("JOIN Alpha"), {QStringLiteral("JOIN_OK|Alpha|") + WindowRig::key()});
    QVERIFY(rig.openAndLogIn());
    QTRY_COMPARE(rig.service<RoomPanel>()->currentRoom(), QStringLiteral("Alpha"));
    QCOMPARE(log.linesStartingWith(QStringLiteral("[MainWindow] Auto-joining")),
             QStringList({QStringLiteral("[MainWindow] Auto-joining default room: Lobby"),
                          QStringLiteral("[MainWindow] Auto-joining default room: Alpha")}));
    QCOMPARE(rig.server.count(QStringLiteral("JOIN")), 2);
}

void DefaultRoomTest::refusedJoinIsRepeatedOnce()
{
    WindowRig rig;
    const QString refusal = QStringLiteral("JOIN_FAILED|Penuh");
    rig.server.answer(QStringLiteral("ROOMS"), {QStringLiteral("ROOMS|Alpha,Beta")});
    rig.server.answer(QStringLiteral("JOIN Lobby"), {refusal});
    // Beside the refusal the server takes the room away, so that the default is another one again.
    rig.server.answer(QStringLiteral("JOIN Alpha"), {QStringLiteral("ROOMS|Beta"), refusal});
    rig.server.answer(QStringLiteral("JOIN Beta"), {refusal, QStringLiteral("ERROR|Beta penuh")});
    QVERIFY(rig.openAndLogIn());
    QTRY_VERIFY(rig.showed(QStringLiteral("Rooms loaded: 1")));
    emit rig.service<RoomPanel>()->joinRoom(QStringLiteral("Beta")); // by hand
    QTRY_VERIFY(rig.showed(QStringLiteral("Error: Beta penuh"), 5000));
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY(rig.server.waitForLine(QStringLiteral("MARK")));
    QCOMPARE(rig.server.count(QStringLiteral("JOIN")), 3);
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QString());
}

void DefaultRoomTest::refusalAfterAJoinByHandChangesNothing()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("ROOMS"), {QStringLiteral("ROOMS|Alpha,Beta")});
    rig.server.answer(QStringLiteral("JOIN Beta"), {QStringLiteral("JOIN_OK|Beta|") + WindowRig::key()});
    rig.server.answer(QStringLiteral("JOIN Lobby"),
                      {QStringLiteral("JOIN_FAILED|Room tidak ditemukan"), QStringLiteral("ERROR|ditolak")});
    QVERIFY(rig.openAndLogIn());
    emit rig.service<RoomPanel>()->joinRoom(QStringLiteral("Beta"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Error: ditolak"), 5000));
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY(rig.server.waitForLine(QStringLiteral("MARK")));
    QCOMPARE(rig.server.count(QStringLiteral("JOIN")), 2);
    QCOMPARE(rig.service<RoomPanel>()->currentRoom(), QStringLiteral("Beta"));
}

EVOX_TEST_MAIN(DefaultRoomTest, QApplication)
#include "tst_defaultroom.moc"
