#include "audio/PlaybackQueue.h"
#include "support/TestMain.h"

#include <limits>

namespace {

constexpr int kRate = 44100;

// Bytes that differ from their neighbours, so that a lost or doubled one shows.
QByteArray pattern(int begin, int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<char>((begin + i) % 251);
    return bytes;
}

QByteArray content(const PlaybackQueue &queue)
{
    return QByteArray(queue.front(), queue.size());
}

} // namespace

class TestPlaybackQueue : public QObject
{
    Q_OBJECT

private slots:
    void firstInFirstOut();
    void trim_data();
    void trim();
    void oddRate();
    void overfull();
    void dropIsBounded();
    void chunk_data();
    void chunk();
    void longRunKeepsEveryByte();
};

void TestPlaybackQueue::firstInFirstOut()
{
    PlaybackQueue queue(kRate);
    QCOMPARE(queue.size(), 0);
    queue.append(pattern(0, 1764));
    queue.append(pattern(1764, 100));
    queue.drop(1764);
    QCOMPARE(content(queue), pattern(1764, 100));
    queue.append(pattern(1864, 1000));
    QCOMPARE(content(queue), pattern(1764, 1100));
    queue.clear();
    QCOMPARE(queue.size(), 0);
    queue.append(pattern(7, 10));
    QCOMPARE(content(queue), pattern(7, 10));
}

void TestPlaybackQueue::trim_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("kept");
    QTest::addRow("half a second exactly") << 44100 << 44100;
    QTest::addRow("one sample more") << 44102 << 17640;
    QTest::addRow("one byte more") << 44101 << 17640;
    QTest::addRow("much more") << 200000 << 17640;
    QTest::addRow("less") << 1764 << 1764;
}

void TestPlaybackQueue::trim()
{
    QFETCH(int, size);
    QFETCH(int, kept);
    PlaybackQueue queue(kRate);
    queue.append(pattern(0, size));
    QCOMPARE(queue.size(), kept);
    QCOMPARE(content(queue), pattern(size - kept, kept)); // the newest stays
}

void TestPlaybackQueue::oddRate()
{
    // Half a second in bytes is the rate, rounded down to whole samples.
    PlaybackQueue queue(11025);
    queue.append(pattern(0, 11024));
    QCOMPARE(queue.size(), 11024);
    queue.append(pattern(0, 1));
    QCOMPARE(queue.size(), 4410);
}

void TestPlaybackQueue::overfull()
{
    PlaybackQueue queue(kRate);
    QVERIFY(!queue.isOverfull());
    queue.append(pattern(0, 44100));
    QVERIFY(!queue.isOverfull());
    queue.append(pattern(0, 500000)); // trimming keeps it from ever passing one second
    QVERIFY(!queue.isOverfull());
}

void TestPlaybackQueue::dropIsBounded()
{
    PlaybackQueue queue(kRate);
    queue.append(pattern(0, 10));
    queue.drop(-5);
    QCOMPARE(queue.size(), 10);
    queue.drop(std::numeric_limits<int>::max());
    QCOMPARE(queue.size(), 0);
    queue.drop(1);
    QCOMPARE(queue.size(), 0);
}

void TestPlaybackQueue::chunk_data()
{
    QTest::addColumn<int>("frameSize");
    QTest::addColumn<int>("frameRate");
    QTest::addColumn<int>("bytes");
    QTest::addRow("20 ms at 48 kHz") << 960 << 48000 << 1764;
    QTest::addRow("20 ms at 24 kHz") << 480 << 24000 << 1764;
    QTest::addRow("20 ms at 12 kHz") << 240 << 12000 << 1764;
    QTest::addRow("10 ms at 48 kHz") << 480 << 48000 << 882;
    QTest::addRow("2.5 ms counts as 2 ms") << 120 << 48000 << 176;
    QTest::addRow("60 ms") << 2880 << 48000 << 5292;
    QTest::addRow("120 ms") << 5760 << 48000 << 10584;
    QTest::addRow("less than a millisecond counts as 20 ms") << 47 << 48000 << 1764;
    QTest::addRow("no rate") << 1 << 0 << 88200;
    QTest::addRow("absurd numbers") << std::numeric_limits<int>::max() << 1 << 88200;
}

void TestPlaybackQueue::chunk()
{
    QFETCH(int, frameSize);
    QFETCH(int, frameRate);
    QFETCH(int, bytes);
    QCOMPARE(PlaybackQueue(kRate).chunkSize(frameSize, frameRate), bytes);
}

void TestPlaybackQueue::longRunKeepsEveryByte()
{
    PlaybackQueue queue(kRate);
    int in = 0;
    int out = 0;
    for (int i = 0; i < 20000; ++i) {
        const int adding = 1 + (i * 37) % 1764;
        queue.append(pattern(in, adding));
        in += adding;
        const int taking = qMin(queue.size(), 1 + (i * 53) % 1764);
        QCOMPARE(QByteArray(queue.front(), taking), pattern(out, taking));
        queue.drop(taking);
        out += taking;
    }
    QCOMPARE(queue.size(), in - out);
}

EVOX_TEST_MAIN(TestPlaybackQueue, QCoreApplication)
#include "tst_playbackqueue.moc"
