#include "e2e/Over.h"

#include "support/Signals.h"

namespace {

constexpr double kSameSpeech = 0.7; // different sentences stay below 0.55
constexpr double kAudible = 200;    // root mean square of 16-bit samples
constexpr int kHiss = 80;           // amplitude of what an open squelch lets through between the words
constexpr std::chrono::milliseconds kLeadIn{300};
constexpr std::chrono::milliseconds kTail{1000}; // what may still be on its way when the speech ends

std::chrono::nanoseconds now()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::chrono::milliseconds inMilliseconds(std::chrono::nanoseconds duration)
{
    return std::chrono::round<std::chrono::milliseconds>(duration);
}

int samplesOf(std::chrono::milliseconds duration, int rate)
{
    return static_cast<int>(duration.count() * rate / 1000);
}

/// The speech as a receiver gives it out. Never quite silent: a packet of perfect silence is too short to be decoded.
Sound asReceived(const Sound &speech)
{
    const int before = samplesOf(kLeadIn, speech.rate);
    const int count = before + speech.pcm.size() / 2 + samplesOf(kTail, speech.rate);
    return {Signals::mixed(Signals::noise(count, kHiss), speech.pcm, before), speech.rate};
}

/// The last time that RTS became so; none is the clock's beginning.
std::chrono::nanoseconds lastEdge(const FakeSerial &radio, bool rts)
{
    const QVector<FakeSerial::Edge> edges = radio.edges();
    for (int i = edges.size() - 1; i > 0; --i) {
        if (edges.at(i).rts == rts && edges.at(i - 1).rts != rts)
            return edges.at(i).time;
    }
    return {};
}

/// When the speech began in a recording.
std::chrono::nanoseconds beginningOf(const Sound &speech, const Recorder &recorder, double *similarity = nullptr)
{
    const Sound heard = recorder.sound();
    const Signals::Likeness likeness = Signals::compare(speech.pcm, speech.rate, heard.pcm, heard.rate);
    if (similarity)
        *similarity = likeness.similarity;
    return recorder.beginning() + likeness.delay;
}

} // namespace

bool Over::wasHeard() const
{
    return similarity >= kSameSpeech && received > 0 && Signals::rms(transmitted.pcm) > kAudible;
}

QJsonObject Over::toJson() const
{
    return {{QStringLiteral("heard"), wasHeard()},
            {QStringLiteral("keyed"), keyed},
            {QStringLiteral("released"), released},
            {QStringLiteral("key_up_ms"), static_cast<int>(keyUp.count())},
            {QStringLiteral("release_ms"), static_cast<int>(release.count())},
            {QStringLiteral("similarity"), similarity},
            {QStringLiteral("mouth_to_ear_ms"), static_cast<int>(mouthToEar.count())},
            {QStringLiteral("datagrams_sent"), sent},
            {QStringLiteral("datagrams_received"), received},
            {QStringLiteral("deciphered"), deciphered},
            {QStringLiteral("transmitted_seconds"), transmitted.seconds()}};
}

double loudness(Station &station, std::chrono::milliseconds duration)
{
    const std::unique_ptr<Recorder> recorder = station.sound().recordTransmitter();
    if (!recorder || !recorder->waitForMore(duration))
        return -1;
    const Sound sound = recorder->sound();
    return Signals::rms(sound.pcm.right(sound.pcm.size() / 2));
}

Over relayOver(Station &from, Station &to, const LossyProxy &line, const Sound &speech)
{
    Over over;
    const std::unique_ptr<Recorder> mouth = from.sound().recordReceiver();
    const std::unique_ptr<Recorder> ear = to.sound().recordTransmitter();
    if (!mouth || !ear)
        return over;
    const int sentBefore = line.sent();
    const int deliveredBefore = line.delivered();
    const int failuresBefore = to.decipherFailures();

    const std::chrono::nanoseconds carrierUp = now();
    over.keyed = from.setCarrier(true) && to.radio().waitForRts(true);
    if (!over.keyed)
        return over;
    const std::chrono::nanoseconds keyed = lastEdge(to.radio(), true);
    over.keyUp = inMilliseconds(keyed - carrierUp);
    if (!from.sound().playAllIntoReceiver(asReceived(speech)))
        return over;

    const std::chrono::nanoseconds carrierDown = now();
    over.released = from.setCarrier(false) && to.radio().waitForRts(false);
    const std::chrono::nanoseconds released = over.released ? lastEdge(to.radio(), false) : now();
    over.release = inMilliseconds(released - carrierDown);
    if (!mouth->waitUntilNow() || !ear->waitUntilNow())
        return over;
    over.transmitted = ear->between(keyed, released);
    const std::chrono::nanoseconds spoken = beginningOf(speech, *mouth);
    over.mouthToEar = inMilliseconds(beginningOf(speech, *ear, &over.similarity) - spoken);
    over.sent = line.sent() - sentBefore;
    over.received = line.delivered() - deliveredBefore;
    over.deciphered = over.received - (to.decipherFailures() - failuresBefore);
    return over;
}
