#include "e2e/RoomVoice.h"
#include "support/FakeServer.h"
#include "support/Signals.h"
#include "support/Station.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <memory>

namespace {

constexpr double kOldTone = 600;  // Hz
constexpr double kNewTone = 1000; // Hz
constexpr double kAudible = 2000; // amplitude; the tones are sent at 12000
constexpr double kInaudible = 100;
constexpr int kFrames = 100;  // two seconds
constexpr int kFailures = 50; // whose fiftieth is told
constexpr std::chrono::milliseconds kDrained{1000};

const QString kCall = QStringLiteral("YB0AA");
const QByteArray kOwnHeader("\0\0\0*", 4); // user id 42

} // namespace

// The real gateway in a room whose server does what real servers should not, or not at that moment.
class ScriptedRoomTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void playsOnlyWhatItsKeyOpens();
    void playsNothingOfTheRoomItLeft();
    void relaysWithoutAConfirmedToken();
    void livesWithoutItsSoundServer();

private:
    [[nodiscard]] bool enterRoom();
    void tellWhoTalks(bool otherTalks);
    [[nodiscard]] double heard(const Recorder &recorder, double frequency) const;

    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<RoomVoice> m_voice;
    std::unique_ptr<Station> m_station;
};

void ScriptedRoomTest::init()
{
    m_server = std::make_unique<FakeServer>();
    m_voice = std::make_unique<RoomVoice>();
    m_server->answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_OK|token||false|42||")});
    m_server->answer(QStringLiteral("ROOMS"), {QStringLiteral("ROOMS|Lobby,Alpha")});
    m_server->answer(QStringLiteral("PING"), {QStringLiteral("PONG")});
    m_server->answer(QStringLiteral("JOIN"), {QStringLiteral("JOIN_OK|Lobby|") + m_voice->keyText()});
    m_station = std::make_unique<Station>(Station::Settings{
        kCall, QStringLiteral("secret"), m_server->host(), m_server->port(), QStringLiteral("Lobby"), {}});
}

void ScriptedRoomTest::cleanup()
{
    if (QTest::currentTestFailed())
        m_station->program().printLog();
    m_station.reset();
    m_server.reset();
}

bool ScriptedRoomTest::enterRoom()
{
    return m_station->start() && m_station->waitForRoom();
}

void ScriptedRoomTest::tellWhoTalks(bool otherTalks)
{
    m_server->send(QStringLiteral("USER_LIST|Lobby|42,7|%1,YB0CC|A,C|RX,%2|1,1|0,0")
                       .arg(kCall, otherTalks ? QStringLiteral("TX") : QStringLiteral("RX")));
}

double ScriptedRoomTest::heard(const Recorder &recorder, double frequency) const
{
    return Signals::toneAmplitude(recorder.sound().pcm.right(Recorder::kRate * 2), Recorder::kRate, frequency);
}

void ScriptedRoomTest::playsOnlyWhatItsKeyOpens()
{
    QVERIFY(enterRoom());
    tellWhoTalks(true);
    QVERIFY(m_station->radio().waitForRts(true));
    RoomVoice stranger;
    {
        const std::unique_ptr<Recorder> radio = m_station->sound().recordTransmitter();
        QVERIFY(radio);
        QVERIFY(stranger.speak(*m_server, kOldTone, kFailures));
        QTRY_COMPARE(m_station->decipherFailures(), kFailures);
        QVERIFY(radio->waitForMore(kDrained));
        QCOMPARE(Signals::rms(radio->sound().pcm), 0.0); // not even noise
    }
    const std::unique_ptr<Recorder> radio = m_station->sound().recordTransmitter();
    QVERIFY(radio);
    QVERIFY(m_voice->speak(*m_server, kNewTone, kFrames));
    QVERIFY(radio->waitUntilNow());
    QVERIFY2(heard(*radio, kNewTone) > kAudible, qPrintable(QString::number(heard(*radio, kNewTone))));
    QCOMPARE(m_station->decipherFailures(), kFailures);
    QVERIFY(m_station->program().isRunning());
}

void ScriptedRoomTest::playsNothingOfTheRoomItLeft()
{
    QVERIFY(enterRoom());
    tellWhoTalks(true);
    QVERIFY(m_station->radio().waitForRts(true));
    {
        const std::unique_ptr<Recorder> radio = m_station->sound().recordTransmitter();
        QVERIFY(radio);
        QVERIFY(m_voice->speak(*m_server, kOldTone, kFrames));
        QVERIFY(radio->waitUntilNow());
        QVERIFY2(heard(*radio, kOldTone) > kAudible, qPrintable(QString::number(heard(*radio, kOldTone))));
    }
    RoomVoice newRoom;
    m_server->send(QStringLiteral("JOIN_OK|Alpha|") + newRoom.keyText());
    QVERIFY(m_station->program().waitForLog(QStringLiteral("[MainWindow] Audio buffers cleared and decoder reset"), 2));
    const std::unique_ptr<Recorder> radio = m_station->sound().recordTransmitter();
    QVERIFY(radio);
    QVERIFY(radio->waitForMore(kDrained));                 // what the sound card had already taken
    QVERIFY(m_voice->speak(*m_server, kOldTone, kFrames)); // the over goes on in the old room
    QVERIFY(radio->waitForMore(kDrained));
    QVERIFY2(heard(*radio, kOldTone) < kInaudible, qPrintable(QString::number(heard(*radio, kOldTone))));
    QVERIFY(newRoom.speak(*m_server, kNewTone, kFrames));
    QVERIFY(radio->waitUntilNow());
    QVERIFY2(heard(*radio, kNewTone) > kAudible, qPrintable(QString::number(heard(*radio, kNewTone))));
}

void ScriptedRoomTest::relaysWithoutAConfirmedToken()
{
    m_server->answerToken(false);
    QVERIFY(enterRoom());
    QCOMPARE(m_station->program().count(QStringLiteral("[UDP] No token confirmation, but continuing anyway")), 1);
    QVERIFY(m_station->setCarrier(true));
    QVERIFY(m_server->waitForLine(QStringLiteral("TX_START \"Lobby\"")));
    QVERIFY(m_server->waitForDatagram(kOwnHeader, kFrames));
    QVERIFY(m_station->setCarrier(false));
    QVERIFY(m_server->waitForLine(QStringLiteral("TX_STOP \"Lobby\"")));

    tellWhoTalks(true);
    QVERIFY(m_station->radio().waitForRts(true));
    const std::unique_ptr<Recorder> radio = m_station->sound().recordTransmitter();
    QVERIFY(radio);
    QVERIFY(m_voice->speak(*m_server, kNewTone, kFrames));
    QVERIFY(radio->waitUntilNow());
    QVERIFY2(heard(*radio, kNewTone) > kAudible, qPrintable(QString::number(heard(*radio, kNewTone))));
    tellWhoTalks(false);
    QVERIFY(m_station->radio().waitForRts(false));
}

void ScriptedRoomTest::livesWithoutItsSoundServer()
{
    QVERIFY(enterRoom());
    tellWhoTalks(true);
    QVERIFY(m_station->radio().waitForRts(true));
    QVERIFY(m_station->setCarrier(true));
    QVERIFY(m_server->waitForDatagram(kOwnHeader, 10));
    QVERIFY(m_voice->speak(*m_server, kNewTone, kFrames / 4));

    m_station->sound().kill();
    QVERIFY(m_voice->speak(*m_server, kNewTone, kFrames)); // received, and nowhere to play it
    // Without sound it is still a station of the room.
    tellWhoTalks(false);
    QVERIFY(m_station->radio().waitForRts(false));
    QVERIFY(m_station->setCarrier(false));
    QVERIFY(m_server->waitForLine(QStringLiteral("TX_STOP \"Lobby\"")));
    QVERIFY(m_station->setCarrier(true));
    QVERIFY(m_server->waitForLine(QStringLiteral("TX_START \"Lobby\""), 2));
    QVERIFY(m_station->program().isRunning());
}

EVOX_TEST_MAIN(ScriptedRoomTest, QCoreApplication)
#include "tst_scriptedroom.moc"
