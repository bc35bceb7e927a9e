#include "net/protocol/AudioDatagram.h"
#include "support/TestMain.h"

class AudioDatagramTest final : public QObject
{
    Q_OBJECT

private slots:
    void header_data();
    void header();
    void decode_data();
    void decode();
};

void AudioDatagramTest::header_data()
{
    QTest::addColumn<int>("userId");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("1") << 1 << QByteArray::fromHex("00000001");
    QTest::newRow("16909060") << 16909060 << QByteArray::fromHex("01020304");
    QTest::newRow("negative: two's complement") << -2 << QByteArray::fromHex("fffffffe");
    QTest::newRow("0") << 0 << QByteArray::fromHex("00000000");
}

void AudioDatagramTest::header()
{
    QFETCH(int, userId);
    QFETCH(QByteArray, bytes);
    QCOMPARE((AudioDatagram{static_cast<quint32>(userId), "payload"}.encode()), bytes + "payload");
}

void AudioDatagramTest::decode_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<quint32>("userId");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("empty") << QByteArray() << false << 0U << QByteArray();
    QTest::newRow("header only") << QByteArray::fromHex("01020304") << false << 0U << QByteArray();
    QTest::newRow("one byte of payload") << QByteArray::fromHex("0102030405") << true << 16909060U << QByteArray("\5");
    QTest::newRow("highest id") << QByteArray::fromHex("ffffffff00") << true << 4294967295U << QByteArray(1, '\0');
}

void AudioDatagramTest::decode()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, valid);
    const auto datagram = AudioDatagram::decode(bytes);
    QCOMPARE(datagram.has_value(), valid);
    if (datagram) {
        QTEST(datagram->userId, "userId");
        QTEST(datagram->payload, "payload");
    }
}

EVOX_TEST_MAIN(AudioDatagramTest, QCoreApplication)
#include "tst_audiodatagram.moc"
