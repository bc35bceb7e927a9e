#include "e2e/AdminLine.h"
#include "e2e/Over.h"
#include "support/CompanionServer.h"
#include "support/Signals.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <QRegularExpression>

#include <memory>

namespace {

const QString kPassword = QStringLiteral("two-gateways");
const QString kCallA = QStringLiteral("YB0AA");
const QString kCallB = QStringLiteral("YB0BB");
const QString kAdmin = QStringLiteral("YB0ADM");
// The queue holds at most half a second, the sound cards on both sides some hundred milliseconds each.
constexpr std::chrono::milliseconds kMaxDelay{1500};
constexpr std::chrono::milliseconds kBackInRoom{16000};
constexpr std::chrono::milliseconds kDrained{1000};
constexpr double kAudible = 200; // root mean square
constexpr double kFaded = 20;
constexpr double kTone = 700; // Hz

const QStringList kMicrophoneItem{QStringLiteral("alt+r"), QStringLiteral("m"), QStringLiteral("Return")};
const QStringList kSpeakerItem{QStringLiteral("alt+r"), QStringLiteral("s")};

/// Tenths of a second in which the tone is heard.
QVector<bool> soundingTenths(const Sound &sound)
{
    QVector<bool> sounding;
    const int tenth = sound.rate / 10 * 2;
    for (int offset = 0; offset + tenth <= sound.pcm.size(); offset += tenth)
        sounding.append(Signals::toneAmplitude(sound.pcm.mid(offset, tenth), sound.rate, kTone) > kAudible);
    return sounding;
}

} // namespace

// Two real gateways and a real server; what one radio hears, the other one transmits.
class TwoGatewaysTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void relaysBothWays_data();
    void relaysBothWays();
    void relaysOverABadLine();
    void microphoneMuteEndsAnOver();
    void speakerMuteReleasesTheRadio();
    void administratorMuteEndsAnOver();
    void changesRoomDuringAnOver();
    void comesBackAfterTheServer();

private:
    /// Steady speech into A's receiver until the result is destroyed, with the far radio already keyed.
    [[nodiscard]] std::unique_ptr<ChildProcess> beginOver();
    [[nodiscard]] bool endOver();
    [[nodiscard]] double loudnessAtB(std::chrono::milliseconds duration) { return loudness(*m_b, duration); }
    [[nodiscard]] bool moveBTo(int place);

    Display m_display;
    Sound m_speech;
    std::unique_ptr<CompanionServer> m_server;
    std::unique_ptr<Station> m_a;
    std::unique_ptr<Station> m_b;
};

void TwoGatewaysTest::initTestCase()
{
    m_speech = speech(QStringLiteral("Radio check from the gateway. How do you copy?"));
    QVERIFY(!m_speech.isNull());
    QVERIFY(m_display.start());
    m_server = std::make_unique<CompanionServer>(QStringList{QStringLiteral("Lobby"), QStringLiteral("Alpha")});
    QVERIFY(m_server->addUser(kCallA, kPassword));
    QVERIFY(m_server->addUser(kCallB, kPassword));
    QVERIFY(m_server->addUser(kAdmin, kPassword, true));
    QVERIFY(m_server->start());
    const auto station = [this](const QString &callsign) {
        return std::make_unique<Station>(
            Station::Settings{callsign, kPassword, m_server->host(), m_server->port(), QStringLiteral("Lobby"), {}},
            &m_display);
    };
    m_a = station(kCallA);
    m_b = station(kCallB);
    QVERIFY(m_a->start());
    QVERIFY(m_b->start());
    QVERIFY(m_a->waitForRoom());
    QVERIFY(m_b->waitForRoom());
}

void TwoGatewaysTest::cleanupTestCase()
{
    m_b.reset();
    m_a.reset();
    m_server.reset();
}

void TwoGatewaysTest::cleanup()
{
    m_server->line().setWeather({});
    m_a->radio().set(FakeSerial::Line::Cts, false);
    m_b->radio().set(FakeSerial::Line::Cts, false);
    QVERIFY(m_a->program().isRunning());
    QVERIFY(m_b->program().isRunning());
    if (QTest::currentTestFailed()) {
        m_a->program().printLog();
        m_b->program().printLog();
    }
}

std::unique_ptr<ChildProcess> TwoGatewaysTest::beginOver()
{
    constexpr int kSeconds = 60;
    const int rate = m_speech.rate;
    std::unique_ptr<ChildProcess> player =
        m_a->sound().playIntoReceiver({Signals::sine(kTone, rate, rate * kSeconds), rate});
    const bool begun = player && m_a->setCarrier(true) && m_b->radio().waitForRts(true);
    return begun ? std::move(player) : nullptr;
}

bool TwoGatewaysTest::endOver()
{
    return m_a->setCarrier(false) && m_b->radio().waitForRts(false);
}

bool TwoGatewaysTest::moveBTo(int place)
{
    // The menu's last item, whose letter is taken: up from the top, and into it.
    QStringList keys{QStringLiteral("alt+r"), QStringLiteral("Up"), QStringLiteral("Right")};
    for (int i = 0; i < place; ++i)
        keys.append(QStringLiteral("Down"));
    const int joined = m_b->program().count(QStringLiteral("[TCP] JOIN_OK room:"));
    return m_b->type(keys + QStringList{QStringLiteral("Return")}) &&
           m_b->program().waitForLog(QStringLiteral("[TCP] JOIN_OK room:"), joined + 1);
}

void TwoGatewaysTest::relaysBothWays_data()
{
    QTest::addColumn<bool>("fromA");
    QTest::newRow("A to B") << true;
    QTest::newRow("B to A") << false;
}

void TwoGatewaysTest::relaysBothWays()
{
    QFETCH(bool, fromA);
    Station &from = fromA ? *m_a : *m_b;
    Station &to = fromA ? *m_b : *m_a;
    const Over over = relayOver(from, to, m_server->line(), m_speech);
    QVERIFY(over.keyed);
    QVERIFY(over.released);
    QVERIFY2(over.wasHeard(), qPrintable(QStringLiteral("similarity %1").arg(over.similarity)));
    QVERIFY(over.mouthToEar > std::chrono::milliseconds(0) && over.mouthToEar < kMaxDelay);
    QVERIFY(over.sent * 20 > m_speech.seconds() * 1000); // a frame is 20 ms
    QVERIFY(over.deciphered > 0);
    QCOMPARE(over.deciphered, over.received);
    QVERIFY(!from.radio().rts()); // the sender's own transmitter stays silent
}

void TwoGatewaysTest::relaysOverABadLine()
{
    LossyProxy &line = m_server->line();
    const int lost = line.counts().lost;
    const int duplicated = line.counts().duplicated;
    const int reordered = line.counts().reordered;
    line.setWeather({0.2, 0.1, 0.1, 3});
    const Sound tone{Signals::sine(kTone, m_speech.rate, m_speech.rate * 4), m_speech.rate};
    const Over over = relayOver(*m_a, *m_b, line, tone);
    QVERIFY(over.keyed && over.released);
    QVERIFY(line.counts().lost > lost && line.counts().duplicated > duplicated);
    QVERIFY(line.counts().reordered > reordered);
    QVERIFY(over.received < over.sent);
    QCOMPARE(over.deciphered, over.received);
    // Torn, but going on to the end; and no queue of late audio goes on after it.
    const QVector<bool> sounding = soundingTenths(over.transmitted);
    const int first = sounding.indexOf(true);
    const int last = sounding.lastIndexOf(true);
    QVERIFY2(sounding.count(true) > 15, qPrintable(QString::number(sounding.count(true))));
    QVERIFY2(last - first >= 30, qPrintable(QStringLiteral("from %1 to %2").arg(first).arg(last)));
    QVERIFY2(last - first <= 40 + kMaxDelay / std::chrono::milliseconds(100),
             qPrintable(QStringLiteral("from %1 to %2").arg(first).arg(last)));
}

void TwoGatewaysTest::microphoneMuteEndsAnOver()
{
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(m_a->type(kMicrophoneItem));
    QVERIFY(m_a->program().waitForLog(QStringLiteral("[Mute] Mic muted during TX - TX stopped immediately")));
    QVERIFY(m_b->radio().waitForRts(false));
    QVERIFY(m_a->type(kMicrophoneItem));
    QVERIFY(m_a->program().waitForLog(QStringLiteral("[Audio] Mic muted: false")));
    QVERIFY(!m_b->radio().rts()); // the carrier still stands; only its next rise begins an over
    QVERIFY(m_a->setCarrier(false));
    QVERIFY(m_a->setCarrier(true));
    QVERIFY(m_b->radio().waitForRts(true));
    QVERIFY(endOver());
}

void TwoGatewaysTest::speakerMuteReleasesTheRadio()
{
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(loudnessAtB(kDrained) > kAudible);
    QVERIFY(m_b->type(kSpeakerItem));
    QVERIFY(
        m_b->program().waitForLog(QStringLiteral("[Mute] Speaker muted during RX - PTT/RTS deactivated immediately")));
    QVERIFY(!m_b->radio().rts());
    const double muted = loudnessAtB(2 * kDrained);
    QVERIFY2(muted >= 0 && muted < kFaded, qPrintable(QString::number(muted)));
    QVERIFY(m_b->type(kSpeakerItem));
    QVERIFY(m_b->program().waitForLog(QStringLiteral("[Audio] Speaker muted: false")));
    QVERIFY(loudnessAtB(2 * kDrained) > kAudible);
    QVERIFY(m_a->setCarrier(false));
    QVERIFY(m_a->setCarrier(true)); // a list with a talker keys the radio again
    QVERIFY(m_b->radio().waitForRts(true));
    QVERIFY(endOver());
}

void TwoGatewaysTest::administratorMuteEndsAnOver()
{
    static const QRegularExpression id(QStringLiteral("user_id: (\\d+)"));
    const QString user = id.match(m_a->program().lastLine(QStringLiteral("[TCP] Login successful"))).captured(1);
    QVERIFY(!user.isEmpty());
    AdminLine admin;
    QVERIFY(admin.logIn(*m_server, kAdmin, kPassword));

    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(admin.ask(QStringLiteral("ADMIN_MUTE %1 1").arg(user)));
    QVERIFY(m_a->program().waitForLog(QStringLiteral("[AdminMute] Muted by admin - TX/COS blocked")));
    QVERIFY(m_b->radio().waitForRts(false));
    QVERIFY(m_a->setCarrier(false));
    QVERIFY(m_a->setCarrier(true));
    QCOMPARE(m_a->program().count(QStringLiteral("[COS] Signal detected but MIC is muted - TX blocked")), 1);
    QVERIFY(m_a->setCarrier(false));
    QVERIFY(admin.ask(QStringLiteral("ADMIN_MUTE %1 0").arg(user)));
    QVERIFY(m_a->program().waitForLog(QStringLiteral("[AdminMute] Unmuted by admin")));
    QVERIFY(m_a->setCarrier(true));
    QVERIFY(m_b->radio().waitForRts(true));
    QVERIFY(endOver());
}

void TwoGatewaysTest::changesRoomDuringAnOver()
{
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(loudnessAtB(kDrained) > kAudible);
    QVERIFY(moveBTo(1));
    QVERIFY(m_b->program().lastLine(QStringLiteral("[TCP] JOIN_OK room:")).contains(QStringLiteral("Alpha")));
    QVERIFY(m_b->radio().waitForRts(false)); // nobody talks in the new room
    const double after = loudnessAtB(2 * kDrained);
    QVERIFY2(after >= 0 && after < kFaded, qPrintable(QString::number(after)));

    QVERIFY(moveBTo(0));
    QVERIFY(m_b->radio().waitForRts(true)); // the over has not ended
    QVERIFY(loudnessAtB(2 * kDrained) > kAudible);
    QVERIFY(endOver());
}

void TwoGatewaysTest::comesBackAfterTheServer()
{
    const auto joined = [](const Station &station) {
        return station.program().count(QStringLiteral("[MainWindow] Auto-joining default room:"));
    };
    const int joinedA = joined(*m_a);
    const int joinedB = joined(*m_b);
    const int keysA = m_a->program().count(QStringLiteral("[MainWindow] Room key received:"));
    const int keysB = m_b->program().count(QStringLiteral("[MainWindow] Room key received:"));
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    m_server->kill();
    QVERIFY(m_server->start());
    const QString joining = QStringLiteral("[MainWindow] Auto-joining default room:");
    QVERIFY(m_a->program().waitForLog(joining, joinedA + 1, kBackInRoom));
    QVERIFY(m_b->program().waitForLog(joining, joinedB + 1));
    const QString key = QStringLiteral("[MainWindow] Room key received:");
    QVERIFY(m_a->program().waitForLog(key, keysA + 1));
    QVERIFY(m_b->program().waitForLog(key, keysB + 1));

    QVERIFY(m_a->setCarrier(false));
    QVERIFY(m_b->radio().waitForRts(false));
    QVERIFY(m_a->setCarrier(true));
    QVERIFY(m_b->radio().waitForRts(true));
    QVERIFY(loudnessAtB(2 * kDrained) > kAudible);
    QVERIFY(endOver());
}

EVOX_TEST_MAIN(TwoGatewaysTest, QCoreApplication)
#include "tst_twogateways.moc"
