#include "support/ChildProcess.h"
#include "support/LossyProxy.h"
#include "support/RadioBench.h"
#include "support/Signals.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <QFile>
#include <QNetworkDatagram>
#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <utility>

namespace {

constexpr int kDatagrams = 400;
constexpr int kBatch = 50;
constexpr std::chrono::milliseconds kTimeout{20000};

constexpr char kHoldAChild[] = "--hold-a-child";
constexpr char kChildIs[] = "child is ";

int holdAChild()
{
    ChildProcess child;
    if (!child.begin(QStringLiteral("sleep"), {QStringLiteral("1000")}))
        return 1;
    std::fprintf(stderr, "%s%lld\n", kChildIs, child.processId());
    return child.waitForEnd(std::chrono::hours(1)) ? 0 : 1;
}

QByteArray audio(quint32 user, int number)
{
    QByteArray datagram(4, '\0');
    qToBigEndian(user, datagram.data());
    return datagram + QByteArray::number(number + kDatagrams); // as many digits, so that sorting them is counting
}

/// A client and a server with the proxy between them.
struct Line
{
    Line()
    {
        const QHostAddress local(QHostAddress::LocalHost);
        if (!server.bind(local) || !client.bind(local) || !proxy.listen(local, 0))
            qFatal("no sockets");
        proxy.setServer(local, server.localPort());
    }
    void sendUp(const QByteArray &datagram)
    {
        client.writeDatagram(datagram, QHostAddress(QHostAddress::LocalHost), proxy.port());
    }
    /// To the address that the server heard last.
    void sendDown(const QByteArray &datagram) { server.writeDatagram(datagram, peer, peerPort); }
    QList<QByteArray> arrivedUp(int count)
    {
        return waitFor([&] { return takeUp() >= count; }, kTimeout) ? std::exchange(up, {}) : up;
    }
    QList<QByteArray> arrivedUntil(const QByteArray &last)
    {
        (void)waitFor([&] { return takeUp() > 0 && up.last() == last; }, kTimeout);
        return up.mid(0, up.size() - 1);
    }
    QList<QByteArray> arrivedDown(int count)
    {
        QList<QByteArray> down;
        const auto take = [&] {
            while (client.hasPendingDatagrams())
                down.append(client.receiveDatagram().data());
            return down.size() >= count;
        };
        (void)waitFor(take, kTimeout);
        return down;
    }
    int takeUp()
    {
        while (server.hasPendingDatagrams()) {
            const QNetworkDatagram datagram = server.receiveDatagram();
            peer = datagram.senderAddress();
            peerPort = static_cast<quint16>(datagram.senderPort());
            up.append(datagram.data());
        }
        return up.size();
    }

    QUdpSocket server;
    QUdpSocket client;
    LossyProxy proxy;
    QHostAddress peer;
    quint16 peerPort = 0;
    QList<QByteArray> up;
};

bool isAlive(qint64 process)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(process));
    return status.open(QIODevice::ReadOnly) && !status.readAll().contains(") Z ");
}

} // namespace

// The stations' surroundings: child processes, sound servers and the line between.
class BenchTest final : public QObject
{
    Q_OBJECT

private slots:
    void keepsTheLogOfAChild();
    void noticesAChildThatEnds();
    void endsAChildWithItsOwnChildren_data();
    void endsAChildWithItsOwnChildren();
    void endsChildrenWithTheTest();

    void playsIntoTheReceiver();
    void comesBackAfterACrash();

    void passesControlWords();
    void spoilsAudio_data();
    void spoilsAudio();
};

void BenchTest::keepsTheLogOfAChild()
{
    ChildProcess child;
    QVERIFY(child.begin(QStringLiteral("sh"),
                        {QStringLiteral("-c"), QStringLiteral("echo one >&2; echo two >&2; echo one more >&2; cat")}));
    QVERIFY(child.waitForLog(QStringLiteral("one"), 2));
    QCOMPARE(child.log(), (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("one more")}));
    QCOMPARE(child.count(QStringLiteral("t")), 1);
    QCOMPARE(child.lastLine(QStringLiteral("one")), QStringLiteral("one more"));
    QVERIFY(child.isRunning());
}

void BenchTest::noticesAChildThatEnds()
{
    ChildProcess child;
    QVERIFY(child.begin(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("echo bye >&2")}));
    QTest::ignoreMessage(QtWarningMsg, "sh did not write 1 times hello");
    QTest::ignoreMessage(QtInfoMsg, "   | bye");
    QVERIFY(!child.waitForLog(QStringLiteral("hello")));
    QVERIFY(child.waitForEnd());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^cannot start /no/such/program ")));
    QVERIFY(!child.begin(QStringLiteral("/no/such/program")));
}

void BenchTest::endsAChildWithItsOwnChildren_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("polite") << QStringLiteral("sleep 1000 & echo $! >&2; wait");
    QTest::newRow("deaf") << QStringLiteral("trap '' TERM; sleep 1000 & echo $! >&2; wait; wait");
}

void BenchTest::endsAChildWithItsOwnChildren()
{
    QFETCH(QString, script);
    ChildProcess child;
    QVERIFY(child.begin(QStringLiteral("sh"), {QStringLiteral("-c"), script}));
    QVERIFY(child.waitForLog(QString()));
    const qint64 grandchild = child.log().first().toLongLong();
    QVERIFY(isAlive(grandchild));
    child.end();
    QVERIFY(!child.isRunning());
    QTRY_VERIFY(!isAlive(grandchild));
}

void BenchTest::endsChildrenWithTheTest()
{
    // This program again, as a test that is killed while it has a child.
    ChildProcess test;
    QVERIFY(test.begin(QCoreApplication::applicationFilePath(), {QLatin1String(kHoldAChild)}));
    QVERIFY(test.waitForLog(QLatin1String(kChildIs)));
    const qint64 child = test.lastLine(QLatin1String(kChildIs)).mid(qstrlen(kChildIs)).toLongLong();
    QVERIFY(isAlive(child));
    QCOMPARE(::kill(static_cast<pid_t>(test.processId()), SIGKILL), 0);
    QTRY_VERIFY(!isAlive(child));
}

void BenchTest::playsIntoTheReceiver()
{
    RadioBench bench;
    QVERIFY(bench.start());
    const std::unique_ptr<Recorder> recorder = bench.recordReceiver();
    QVERIFY(recorder);
    const std::unique_ptr<Recorder> other = bench.recordTransmitter();
    QVERIFY(other);
    QVERIFY(bench.playAllIntoReceiver({Signals::sine(1000, 48000, 48000), 48000}));
    QVERIFY(recorder->waitUntilNow());
    QVERIFY(other->waitUntilNow());
    const Sound heard = recorder->sound();
    const Signals::Likeness likeness =
        Signals::compare(Signals::sine(1000, 48000, 48000), 48000, heard.pcm, heard.rate);
    const int begin = static_cast<int>(heard.rate * likeness.delay.count() / 1000) * 2;
    QVERIFY(Signals::toneAmplitude(heard.pcm.mid(begin, heard.rate), heard.rate, 1000) > 6000);
    QCOMPARE(Signals::rms(other->sound().pcm), 0.0);
    // Cut by time, the recording has the length of that time.
    const std::chrono::nanoseconds middle = recorder->beginning() + std::chrono::milliseconds(200);
    QCOMPARE(recorder->between(middle, middle + std::chrono::milliseconds(100)).pcm.size(), 8820);
    QCOMPARE(recorder->between(middle, middle - std::chrono::milliseconds(1)).pcm.size(), 0);
}

void BenchTest::comesBackAfterACrash()
{
    RadioBench bench;
    QVERIFY(bench.start());
    bench.kill();
    QVERIFY(!bench.playAllIntoReceiver({Signals::silence(4800), 48000}));
    QVERIFY(bench.start());
    QVERIFY(bench.playAllIntoReceiver({Signals::silence(4800), 48000}));
}

void BenchTest::passesControlWords()
{
    Line line;
    line.proxy.setWeather({1, 0, 0, 1}); // loses all audio
    for (const char *word : {"PING", "TOKEN:abc:42", "KEEPALIVE"}) {
        line.sendUp(word);
        QCOMPARE(line.arrivedUp(1), QList<QByteArray>{word});
    }
    line.sendUp(audio(7, 1));
    line.sendUp("KEEPALIVE");
    QCOMPARE(line.arrivedUp(1), QList<QByteArray>{"KEEPALIVE"});
    line.sendDown("REGISTERED:42");
    QCOMPARE(line.arrivedDown(1), QList<QByteArray>{"REGISTERED:42"});
    QCOMPARE(line.proxy.sent(), 1);
    QCOMPARE(line.proxy.counts().lost, 1);
    QCOMPARE(line.proxy.delivered(), 0);
}

void BenchTest::spoilsAudio_data()
{
    QTest::addColumn<double>("loss");
    QTest::addColumn<double>("duplication");
    QTest::addColumn<double>("reordering");
    QTest::newRow("clear line") << 0.0 << 0.0 << 0.0;
    QTest::newRow("loss") << 0.2 << 0.0 << 0.0;
    QTest::newRow("duplication") << 0.0 << 0.2 << 0.0;
    QTest::newRow("reordering") << 0.0 << 0.0 << 0.2;
    QTest::newRow("everything") << 0.2 << 0.2 << 0.2;
}

void BenchTest::spoilsAudio()
{
    QFETCH(double, loss);
    QFETCH(double, duplication);
    QFETCH(double, reordering);
    Line line;
    line.proxy.setWeather({loss, duplication, reordering, 5});
    QList<QByteArray> said;
    for (int i = 0; i < kDatagrams; ++i) {
        said.append(audio(7, i));
        line.sendUp(said.last());
        // A socket's buffer holds only some hundred.
        QVERIFY(i % kBatch != 0 || waitFor([&] { return line.takeUp() >= 0 && line.proxy.sent() > i; }, kTimeout));
    }
    line.sendUp("END"); // control words keep their place
    const QList<QByteArray> heard = line.arrivedUntil("END");

    const LossyProxy::Counts &counts = line.proxy.counts();
    QCOMPARE(counts.sent.value(7), kDatagrams);
    const int held = heard.size() - (kDatagrams - counts.lost + counts.duplicated);
    QVERIFY(held == 0 || (held == -1 && counts.reordered > 0)); // one may still wait for its successor
    for (const auto &[share, count] : {std::pair(loss, counts.lost), std::pair(duplication, counts.duplicated),
                                       std::pair(reordering, counts.reordered)}) {
        if (share > 0)
            QVERIFY2(count > kDatagrams / 20 && count < kDatagrams / 3, qPrintable(QString::number(count)));
        else
            QCOMPARE(count, 0);
    }
    QList<QByteArray> sorted = heard;
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(sorted == heard, counts.reordered == 0);
    for (const QByteArray &datagram : heard)
        QVERIFY(said.contains(datagram));
}

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], kHoldAChild) == 0)
        return holdAChild();
    BenchTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_bench.moc"
