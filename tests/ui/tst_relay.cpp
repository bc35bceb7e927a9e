#include "WindowRig.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"
#include "radio/SerialManager.h"
#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserWidget.h"
#include "ui/status/ControlPanel.h"

#include <QApplication>
#include <QLabel>

// The counters of the diagnostics are process-wide and never reset: the first two tests see the first lines.
class RelayTest final : public QObject
{
    Q_OBJECT

private slots:
    void firstSentFramesAreLogged();
    void firstReceivedFramesAreLogged();
    void serialPortAtStart_data();
    void serialPortAtStart();
    void carrierOpensAndClosesAnOver();
    void carrierBeforeAnyRoom();
    void carrierWhileMuted();
    void framesAreSentOnlyWhileTransmitting();
    void overEndsWithoutARoom_data();
    void overEndsWithoutARoom();
    void frameWithoutLinkIsDropped();
    void userListKeysTheRadio();
    void ownTransmissionDoesNotKey();
    void mutedSpeakerBlocksKeying();
    void mutingTheSpeakerReleasesTheRadio();
    void mutingTheMicrophoneStopsTheOver();
    void muteActionsMirrorEachOther();
    void ownRowShowsItsMutesAcrossLists();
    void administratorMuteStopsTheOver();
    void disconnectionLiftsTheMutes();
    void levelsReachThePanel();
    void qualityReachesTheEngine_data();
    void qualityReachesTheEngine();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString userList(const char *ownState, const char *otherState)
{
    return QStringLiteral("USER_LIST|Lobby|42,7|YB0ABC,YB1X|Sari,Budi|%1,%2|1,1|0,0").arg(q(ownState), q(otherState));
}

/// A window in a room with a radio on a simulated serial port.
struct Radio
{
    FakeSerial serial;
    WindowRig rig;

    Radio()
        : rig({{QStringLiteral("serial_port"), (serial.plugIn(), serial.portName())}})
    {
    }
    [[nodiscard]] bool inRoom() { return rig.openInRoom(); }
    [[nodiscard]] bool raiseCarrier()
    {
        serial.set(FakeSerial::Line::Cts, true);
        return rig.server.waitForLine(q("TX_START"));
    }
    [[nodiscard]] SerialManager &manager() const { return *rig.service<SerialManager>(); }
};

QString indicatorText(const WindowRig &rig)
{
    const auto labels = rig.service<ControlPanel>()->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->text() == q("TX") || label->text() == q("RX") || label->text().contains(q("Waiting for COS")))
            return label->text();
    }
    return {};
}

} // namespace

void RelayTest::firstSentFramesAreLogged()
{
    LogCapture log;
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(radio.raiseCarrier());
    const QByteArray frame(50, '\x5a');
    auto *engine = radio.rig.service<AudioEngine>();
    log.clear();
    emit engine->audioEncoded(frame);
    QCOMPARE(log.lines().mid(0, 4),
             QStringList({q("[TX] Packet # 1 size: 50"), q("[TX] Raw hex (first 40): ") + q("5a").repeated(40),
                          q("[TX] Nonce (24): ") + q("5a").repeated(24), q("[TX] Ciphertext size: 26")}));
    emit engine->audioEncoded(QByteArray(23, 'x'));
    QVERIFY2(log.count(q("[TX] Nonce (24):")) == 1, "a frame without a whole nonce");
    for (int i = 3; i <= 12; ++i)
        emit engine->audioEncoded(frame);
    QVERIFY(log.contains(q("[TX] Packet # 10 size: 50")));
    QCOMPARE(log.count(q("[TX] Packet #")), 10);
}

void RelayTest::firstReceivedFramesAreLogged()
{
    LogCapture log;
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    const QByteArray sealed = rig.service<AudioEngine>()->encryptAudio(QByteArray::fromHex("781122"));
    auto *client = rig.service<TcpClient>();
    log.clear();
    emit client->audioReceived(sealed, 7);
    QCOMPARE(log.lines(),
             QStringList({q("[RX] Packet # 1 from user: 7 size: 43"),
                          q("[RX] Raw hex (first 40 bytes): ") + QString::fromLatin1(sealed.left(40).toHex()),
                          q("[RX] Nonce (24 bytes): ") + QString::fromLatin1(sealed.left(24).toHex()),
                          q("[RX] Ciphertext size: 19"), q("[RX] Decrypted OK, size: 3"),
                          q("[RX] Decrypted hex (first 20): 781122"), q("[RX] Opus header byte: 120")}));
    log.clear();
    emit client->audioReceived(QByteArray(30, 'x'), 7);
    QVERIFY(log.contains(q("[RX] Ciphertext size: 6")));
    QVERIFY2(log.count(q("[RX] Decrypt")) == 0, "too short for a trial");
    log.clear();
    emit client->audioReceived(QByteArray(60, 'x'), 7);
    QVERIFY(log.contains(q("[RX] Decrypt FAILED - wrong key or format")));
    emit client->audioReceived(QByteArray(10, 'x'), 7);
    log.clear();
    for (int i = 5; i <= 25; ++i)
        emit client->audioReceived(QByteArray(10, 'x'), 7);
    QCOMPARE(log.count(q("[RX] Packet #")), 16);
    QVERIFY(log.contains(q("[RX] Packet # 20 from user: 7 size: 10")));

    log.clear();
    for (int i = 0; i < 8; ++i)
        emit rig.service<UdpAudio>()->audioReceived(QByteArray(60, 'x'));
    QCOMPARE(log.count(q("[RX] UDP audio received, size: 60")), 5);
}

void RelayTest::serialPortAtStart_data()
{
    QTest::addColumn<QString>("configured"); // "port": the simulated one
    QTest::addColumn<bool>("open");
    QTest::newRow("present") << q("port") << true;
    QTest::newRow("missing") << q("ttyNOWHERE") << false;
    QTest::newRow("none configured") << QString() << false;
}

void RelayTest::serialPortAtStart()
{
    QFETCH(QString, configured);
    QFETCH(bool, open);
    FakeSerial serial;
    serial.plugIn();
    if (configured == q("port"))
        configured = serial.portName();
    WindowRig rig({{QStringLiteral("serial_port"), configured}, {QStringLiteral("setup_completed"), false}});
    rig.open();
    const QAction *indicator = rig.action("serialIndicator");
    QCOMPARE(indicator->isEnabled(), open);
    QCOMPARE(indicator->toolTip(), open ? q("Serial: ") + configured : q("Serial Not Configured"));
    QCOMPARE(rig.service<ControlPanel>()->isSerialReady(), open);
    QVERIFY(!serial.rts());
}

void RelayTest::carrierOpensAndClosesAnOver()
{
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(indicatorText(radio.rig).contains(q("Waiting for COS")));
    QVERIFY(radio.raiseCarrier());
    QCOMPARE(radio.rig.server.lines().last(), q("TX_START \"Lobby\""));
    QCOMPARE(radio.rig.action("pttIndicator")->toolTip(), q("PTT Active - Transmitting"));
    QCOMPARE(indicatorText(radio.rig), q("TX"));
    radio.serial.set(FakeSerial::Line::Cts, false);
    QVERIFY(radio.rig.server.waitForLine(q("TX_STOP \"Lobby\"")));
    QCOMPARE(radio.rig.action("pttIndicator")->toolTip(), q("PTT Inactive"));
    QCOMPARE(indicatorText(radio.rig), q("RX"));
}

void RelayTest::carrierBeforeAnyRoom()
{
    FakeSerial serial;
    serial.plugIn();
    WindowRig rig({{QStringLiteral("serial_port"), serial.portName()}, {QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    serial.set(FakeSerial::Line::Cts, true);
    QTRY_COMPARE(indicatorText(rig), q("TX"));
    serial.set(FakeSerial::Line::Cts, false);
    QTRY_COMPARE(indicatorText(rig), q("RX"));
    rig.service<TcpClient>()->sendCommand(q("MARK"));
    QVERIFY(rig.server.waitForLine(q("MARK")));
    QCOMPARE(rig.server.count(q("TX_")), 0);
}

void RelayTest::carrierWhileMuted()
{
    LogCapture log;
    Radio radio;
    QVERIFY(radio.inRoom());
    radio.rig.action("toolbarMicrophone")->setChecked(true);
    radio.serial.set(FakeSerial::Line::Cts, true);
    QTRY_VERIFY(log.contains(q("[COS] Signal detected but MIC is muted - TX blocked")));
    QCOMPARE(indicatorText(radio.rig), q("TX"));
    radio.serial.set(FakeSerial::Line::Cts, false);
    QVERIFY(radio.rig.server.waitForLine(q("TX_STOP \"Lobby\"")));
    QCOMPARE(radio.rig.server.count(q("TX_START")), 0);
}

void RelayTest::framesAreSentOnlyWhileTransmitting()
{
    Radio radio;
    QVERIFY(radio.inRoom());
    auto *engine = radio.rig.service<AudioEngine>();
    emit engine->audioEncoded("before");
    QVERIFY(radio.raiseCarrier());
    emit engine->audioEncoded("during");
    radio.serial.set(FakeSerial::Line::Cts, false);
    QVERIFY(radio.rig.server.waitForLine(q("TX_STOP")));
    emit engine->audioEncoded("after");
    radio.rig.service<UdpAudio>()->sendKeepalive();
    QVERIFY(radio.rig.server.waitForDatagram("KEEPALIVE"));
    QVERIFY(radio.rig.server.datagrams().contains(QByteArray("\0\0\0\x2a"
                                                             "during",
                                                             10)));
    QCOMPARE(radio.rig.server.datagramCount(QByteArray("\0\0\0", 3)), 1);
}

void RelayTest::overEndsWithoutARoom_data()
{
    QTest::addColumn<bool>("lost");
    QTest::newRow("connection lost") << true;
    QTest::newRow("room left") << false;
}

void RelayTest::overEndsWithoutARoom()
{
    QFETCH(bool, lost);
    Radio radio;
    WindowRig &rig = radio.rig;
    QVERIFY(radio.inRoom());
    QVERIFY(radio.raiseCarrier());
    rig.timer("reconnectArmTimer")->setInterval(60000);
    if (lost)
        rig.server.drop();
    else
        rig.action("leaveRoom")->trigger();
    QTRY_VERIFY(!rig.action("toolbarLeave")->isVisible());
    radio.serial.set(FakeSerial::Line::Cts, false);
    QTRY_COMPARE(indicatorText(rig), q("RX"));
    if (lost)
        rig.timer("reconnectArmTimer")->start(0);
    else
        emit rig.service<RoomPanel>()->joinRoom(q("Lobby"));
    QTRY_VERIFY(rig.action("toolbarLeave")->isVisible());
    auto *udp = rig.service<UdpAudio>();
    QTRY_VERIFY(udp->isReady());
    emit rig.service<AudioEngine>()->audioEncoded("stale");
    udp->sendKeepalive();
    QVERIFY(rig.server.waitForDatagram("KEEPALIVE"));
    QVERIFY2(rig.server.datagramCount(QByteArray("\0\0\0", 3)) == 0, "sent with the squelch closed");
    QCOMPARE(rig.server.count(q("TX_STOP")), 0);
}

void RelayTest::frameWithoutLinkIsDropped()
{
    LogCapture log;
    const QString warning = q("[TCP] sendAudio called but TCP audio not supported - drop frame");
    log.expectWarning(warning);
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(radio.raiseCarrier());
    radio.rig.service<UdpAudio>()->stop();
    emit radio.rig.service<AudioEngine>()->audioEncoded("frame");
    QCOMPARE(log.count(warning), 1);
}

void RelayTest::userListKeysTheRadio()
{
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(!radio.serial.rts());
    radio.rig.server.send(userList("RX", "TX"));
    QVERIFY(radio.serial.waitForRts(true));
    QVERIFY(radio.manager().isPttActive());
    radio.rig.server.send(userList("TX", "RX"));
    QVERIFY(radio.serial.waitForRts(false));
}

void RelayTest::ownTransmissionDoesNotKey()
{
    Radio radio;
    QVERIFY(radio.inRoom());
    radio.rig.server.send(userList("TX", "RX"));
    radio.rig.server.send(q("ROOMS|Lobby"));
    QTRY_VERIFY(radio.rig.showed(q("Rooms loaded: 1")));
    QVERIFY(!radio.serial.rts());
}

void RelayTest::mutedSpeakerBlocksKeying()
{
    LogCapture log;
    const QString blocked = q("[RX] Remote TX detected but SPEAKER is muted - PTT blocked");
    Radio radio;
    QVERIFY(radio.inRoom());
    radio.rig.action("toolbarSpeaker")->setChecked(true);
    radio.rig.server.send(userList("RX", "TX"));
    radio.rig.server.send(userList("RX", "TX"));
    QTRY_COMPARE(log.count(blocked), 2);
    QVERIFY(!radio.serial.rts());
    radio.rig.action("muteSpeaker")->setChecked(false);
    QVERIFY2(!radio.serial.rts(), "lifting the mute keys nothing by itself");
    radio.rig.server.send(userList("RX", "TX"));
    QVERIFY(radio.serial.waitForRts(true));
}

void RelayTest::mutingTheSpeakerReleasesTheRadio()
{
    LogCapture log;
    Radio radio;
    QVERIFY(radio.inRoom());
    radio.rig.server.send(userList("RX", "TX"));
    QVERIFY(radio.serial.waitForRts(true));
    log.clear();
    radio.rig.action("muteSpeaker")->trigger();
    QVERIFY(!radio.serial.rts());
    QCOMPARE(log.lines(), QStringList({q("[Audio] Speaker muted: true"),
                                       q("[Mute] Speaker muted during RX - PTT/RTS deactivated immediately")}));
    radio.rig.server.send(userList("RX", "RX"));
    radio.rig.server.send(q("ROOMS|Lobby"));
    QTRY_VERIFY(radio.rig.showed(q("Rooms loaded: 1")));
    QVERIFY(!radio.manager().isPttActive());
}

void RelayTest::mutingTheMicrophoneStopsTheOver()
{
    LogCapture log;
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(radio.raiseCarrier());
    log.clear();
    radio.rig.action("toolbarMicrophone")->trigger();
    QCOMPARE(log.lines(),
             QStringList({q("[Audio] Mic muted: true"), q("[Mute] Mic muted during TX - TX stopped immediately")}));
    QVERIFY(radio.rig.server.waitForLine(q("TX_STOP \"Lobby\"")));
    QCOMPARE(radio.rig.action("pttIndicator")->toolTip(), q("PTT Inactive (Mic Muted)"));
    QCOMPARE(indicatorText(radio.rig), q("RX"));
    radio.rig.action("toolbarMicrophone")->trigger();
    radio.rig.service<TcpClient>()->sendCommand(q("MARK"));
    QVERIFY(radio.rig.server.waitForLine(q("MARK")));
    QVERIFY2(radio.rig.server.count(q("TX_START")) == 1, "lifting the mute starts nothing by itself");
}

void RelayTest::muteActionsMirrorEachOther()
{
    LogCapture log;
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    log.clear();
    for (const char *name : {"muteMicrophone", "toolbarMicrophone"}) {
        rig.action(name)->trigger();
        QVERIFY(rig.action("muteMicrophone")->isChecked() == rig.action("toolbarMicrophone")->isChecked());
    }
    for (const char *name : {"toolbarSpeaker", "muteSpeaker"}) {
        rig.action(name)->trigger();
        QVERIFY(rig.action("muteSpeaker")->isChecked() == rig.action("toolbarSpeaker")->isChecked());
    }
    QCOMPARE(log.lines(), QStringList({q("[Audio] Mic muted: true"), q("[Audio] Mic muted: false"),
                                       q("[Audio] Speaker muted: true"), q("[Audio] Speaker muted: false")}));
}

void RelayTest::ownRowShowsItsMutesAcrossLists()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.server.send(userList("RX", "RX"));
    QTRY_VERIFY(rig.service<RoomPanel>()->userWidget(WindowRig::kCall));
    const auto own = [&rig] { return rig.service<RoomPanel>()->userWidget(WindowRig::kCall); };
    rig.action("toolbarMicrophone")->trigger();
    rig.action("toolbarSpeaker")->trigger();
    QVERIFY(own()->isMicMuted() && own()->isSpeakerMuted());
    rig.server.send(userList("TX", "RX"));
    QTRY_VERIFY(own()->isTransmitting());
    QVERIFY(own()->isMicMuted() && own()->isSpeakerMuted());
    rig.action("toolbarMicrophone")->trigger();
    rig.action("toolbarSpeaker")->trigger();
    QVERIFY(!own()->isMicMuted() && !own()->isSpeakerMuted());
}

void RelayTest::administratorMuteStopsTheOver()
{
    LogCapture log;
    Radio radio;
    QVERIFY(radio.inRoom());
    QVERIFY(radio.raiseCarrier());
    radio.rig.server.send(q("MUTED|1|terlalu|lama"));
    QTRY_VERIFY(radio.rig.showed(q("Mic di-mute oleh admin: terlalu|lama"), 10000));
    QVERIFY(radio.rig.server.waitForLine(q("TX_STOP \"Lobby\"")));
    QVERIFY(log.contains(q("[AdminMute] Muted by admin - TX/COS blocked")));
    QVERIFY(radio.rig.action("toolbarMicrophone")->isChecked());
    QVERIFY(radio.rig.action("muteMicrophone")->isChecked());
    QCOMPARE(radio.rig.action("pttIndicator")->toolTip(), q("PTT Inactive (Mic Muted)"));
    radio.rig.server.send(q("MUTED|0"));
    QTRY_VERIFY(radio.rig.showed(q("Mic unmute oleh admin"), 5000));
    QVERIFY(log.contains(q("[AdminMute] Unmuted by admin")));
    QVERIFY(!radio.rig.action("muteMicrophone")->isChecked());
    QVERIFY(!radio.rig.service<AudioEngine>()->isMicMuted());
}

void RelayTest::disconnectionLiftsTheMutes()
{
    WindowRig rig;
    QVERIFY(rig.openInRoom());
    rig.action("toolbarMicrophone")->trigger();
    rig.action("toolbarSpeaker")->trigger();
    rig.server.drop();
    QTRY_VERIFY(rig.showed(q("Disconnected")));
    QVERIFY(!rig.service<AudioEngine>()->isMicMuted());
    QVERIFY(!rig.service<AudioEngine>()->isSpeakerMuted());
}

void RelayTest::levelsReachThePanel()
{
    WindowRig rig({{QStringLiteral("setup_completed"), false}});
    rig.open();
    emit rig.service<AudioEngine>()->audioLevelChanged(37, 81);
    QStringList percentages;
    const auto labels = rig.service<ControlPanel>()->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->text().endsWith(QLatin1Char('%')))
            percentages.append(label->text());
    }
    QCOMPARE(percentages, QStringList({q("37%"), q("81%")}));
}

void RelayTest::qualityReachesTheEngine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("frameSize");
    QTest::newRow("low") << q("AUDIO_QUALITY|low|16000|24000|20|5") << 480;
    QTest::newRow("minimal") << q("AUDIO_QUALITY|minimal|8000|12000|20|5") << 240;
    QTest::newRow("short frames") << q("AUDIO_QUALITY|x|32000|48000|10|5") << 480;
    QTest::newRow("no numbers") << q("AUDIO_QUALITY|x") << 960;
    QTest::newRow("negative numbers") << q("AUDIO_QUALITY|x|-1|-1|-1|-1") << 960;
    QTest::newRow("no frame duration") << q("AUDIO_QUALITY|x|32000|24000") << 480;
}

void RelayTest::qualityReachesTheEngine()
{
    QFETCH(QString, line);
    QFETCH(int, frameSize);
    LogCapture log;
    WindowRig rig({{QStringLiteral("default_room"), QString()}});
    QVERIFY(rig.openAndLogIn());
    rig.server.send(line);
    QTRY_VERIFY(log.contains(QStringLiteral("[Audio] Quality applied, frameSize: %1").arg(frameSize)));
}

EVOX_TEST_MAIN(RelayTest, QApplication)
#include "tst_relay.moc"
