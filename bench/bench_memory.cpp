// What the gateway holds in memory in a room, with sound, against an empty program with the multimedia library; and
// whether 100,000 received frames add to it.

#include "Bench.h"
#include "BenchProcess.h"
#include "audio/AudioEngine.h"
#include "audio/OpusCodec.h"
#include "support/FakeServer.h"
#include "support/RadioBench.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

namespace {

constexpr int kFrames = 100000;
constexpr int kBurst = 20;
constexpr int kFrameSamples = 960;

[[noreturn]] void fail(const char *text)
{
    std::fprintf(stderr, "%s\n", text);
    std::exit(1);
}

QString roomKey()
{
    return QString::fromLatin1(QByteArray(32, 'k').toBase64());
}

void configure(const QString &home, const FakeServer &server)
{
    const QJsonObject config{{QStringLiteral("server_address"), server.host()},
                             {QStringLiteral("server_port"), server.port()},
                             {QStringLiteral("setup_completed"), true},
                             {QStringLiteral("callsign"), QStringLiteral("YB0ABC")},
                             {QStringLiteral("password"), QStringLiteral("secret")},
                             {QStringLiteral("remember_password"), true},
                             {QStringLiteral("hwid"), QStringLiteral("0123")}};
    const QString folder = home + QStringLiteral("/SINAR/e-VOX SINAR");
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral("/config.json"));
    if (!file.open(QIODevice::WriteOnly))
        fail("no configuration");
    file.write(QJsonDocument(config).toJson());
}

/// A datagram of noise as the room sends it: every frame is deciphered, decoded and played.
QByteArray audioDatagram()
{
    AudioEngine engine;
    OpusCodec codec;
    QByteArray packet;
    QByteArray pcm(2 * kFrameSamples, Qt::Uninitialized);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(pcm.data()), pcm.size() / 4);
    if (!engine.init(0, 0, 0, 0, 0) || codec.createEncoder({}) != 0 || codec.encode(pcm, packet) <= 0)
        fail("no codec");
    engine.setEncryptionKey(roomKey());
    return QByteArray::fromHex("00000007") + engine.encryptAudio(packet);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    RadioBench sound;
    if (!sound.start())
        fail("no sound daemon");
    FakeServer server;
    server.answer(QStringLiteral("LOGIN "), {QStringLiteral("LOGIN_OK|token||False|42||")});
    server.answer(QStringLiteral("JOIN "), {QStringLiteral("JOIN_OK|Lobby|") + roomKey()});
    const QTemporaryDir home;
    configure(home.path(), server);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    sound.addTo(environment);
    BenchProcess gateway(QStringLiteral("start_gateway"), home.path(), environment);
    BenchProcess empty(QStringLiteral("start_empty"), home.path(), environment);
    if (!gateway.waitForPaint() || !empty.waitForPaint() || !server.waitForLine(QStringLiteral("JOIN ")) ||
        !server.waitForDatagram("TOKEN:token"))
        fail("the gateway did not get into the room");

    const QByteArray datagram = audioDatagram();
    const auto play = [&](int frames) {
        for (int i = 0; i < frames; i += kBurst) {
            for (int j = 0; j < kBurst; ++j)
                server.sendDatagram(datagram);
            QTest::qWait(1);
        }
    };
    play(1000);
    const double before = gateway.residentMegabytes();
    Bench::printRow("resident memory in a room", before, empty.residentMegabytes(), "MB", 1.5);
    play(kFrames);
    Bench::printRow("resident memory after 100,000 frames", gateway.residentMegabytes(), before, "MB", 1.01);
    return 0;
}
