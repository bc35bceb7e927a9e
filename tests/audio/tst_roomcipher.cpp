#include "audio/RoomCipher.h"
#include "audio/SodiumLibrary.h"
#include "support/TestMain.h"

namespace {

QByteArray key(char fill)
{
    return QByteArray(RoomCipher::kKeySize, fill);
}

RoomCipher cipherWith(char fill)
{
    RoomCipher cipher;
    cipher.setKey(key(fill));
    return cipher;
}

} // namespace

class TestRoomCipher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void keyLength_data();
    void keyLength();
    void wrongKeyLeavesEarlierKey();
    void layout();
    void knownPayload();
    void roundTrip_data();
    void roundTrip();
    void tamperedPayloadDoesNotOpen();
    void truncatedPayloadDoesNotOpen();
    void otherKeyDoesNotOpen();
    void noncesDiffer();
};

void TestRoomCipher::initTestCase()
{
    QVERIFY(SodiumLibrary::instance().load());
}

void TestRoomCipher::keyLength_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("taken");
    QTest::addRow("none") << 0 << false;
    QTest::addRow("31 bytes") << 31 << false;
    QTest::addRow("32 bytes") << 32 << true;
    QTest::addRow("33 bytes") << 33 << false;
}

void TestRoomCipher::keyLength()
{
    QFETCH(int, length);
    QFETCH(bool, taken);
    RoomCipher cipher;
    QVERIFY(!cipher.hasKey());
    QCOMPARE(cipher.setKey(QByteArray(length, 'k')), taken);
    QCOMPARE(cipher.hasKey(), taken);
}

void TestRoomCipher::wrongKeyLeavesEarlierKey()
{
    RoomCipher cipher = cipherWith('a');
    const QByteArray payload = cipher.seal("hello");
    QVERIFY(!cipher.setKey("short"));
    QCOMPARE(cipher.open(payload).value_or(QByteArray()), QByteArray("hello"));
}

void TestRoomCipher::layout()
{
    const RoomCipher cipher = cipherWith('a');
    const QByteArray payload = cipher.seal(QByteArray(60, 'p'));
    QCOMPARE(payload.size(), 100); // 24 nonce, 16 authenticator, 60 ciphertext
    QVERIFY(!payload.contains(QByteArray(4, 'p')));
}

// Sealed by another implementation: XSalsa20-Poly1305 of "gateway" under the key 0..31 and the nonce 0..23.
void TestRoomCipher::knownPayload()
{
    QByteArray counting;
    for (int i = 0; i < RoomCipher::kKeySize; ++i)
        counting.append(static_cast<char>(i));
    RoomCipher cipher;
    QVERIFY(cipher.setKey(counting));
    const QByteArray payload =
        counting.left(RoomCipher::kNonceSize) + QByteArray::fromHex("bb93fd25fdfb66688065d26d27afd942399e4c2ab0abdb");
    QCOMPARE(cipher.open(payload).value_or(QByteArray()), QByteArray("gateway"));
}

void TestRoomCipher::roundTrip_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 10, 60, 1275, 4000})
        QTest::addRow("%d bytes", size) << size;
}

void TestRoomCipher::roundTrip()
{
    QFETCH(int, size);
    const RoomCipher cipher = cipherWith('a');
    QByteArray packet(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        packet[i] = static_cast<char>(i * 7);
    const QByteArray payload = cipher.seal(packet);
    QCOMPARE(payload.size(), size + 40);
    const std::optional<QByteArray> opened = cipher.open(payload);
    QVERIFY(opened.has_value());
    QCOMPARE(*opened, packet);
}

void TestRoomCipher::tamperedPayloadDoesNotOpen()
{
    const RoomCipher cipher = cipherWith('a');
    const QByteArray payload = cipher.seal(QByteArray(60, 'p'));
    for (int i = 0; i < payload.size(); ++i) {
        for (const int flip : {0x01, 0x80, 0xff}) {
            QByteArray altered = payload;
            altered[i] = static_cast<char>(altered[i] ^ flip);
            QVERIFY2(!cipher.open(altered), qPrintable(QStringLiteral("byte %1").arg(i)));
        }
    }
    QVERIFY(cipher.open(payload));
}

void TestRoomCipher::truncatedPayloadDoesNotOpen()
{
    const RoomCipher cipher = cipherWith('a');
    const QByteArray payload = cipher.seal(QByteArray(60, 'p'));
    for (int size = 0; size < payload.size(); ++size)
        QVERIFY2(!cipher.open(payload.left(size)), qPrintable(QStringLiteral("%1 bytes").arg(size)));
    QVERIFY(!cipher.open(payload + 'x'));
}

void TestRoomCipher::otherKeyDoesNotOpen()
{
    QVERIFY(!cipherWith('b').open(cipherWith('a').seal("hello")));
}

void TestRoomCipher::noncesDiffer()
{
    const RoomCipher cipher = cipherWith('a');
    QSet<QByteArray> nonces;
    for (int i = 0; i < 1000; ++i)
        nonces.insert(cipher.seal("x").left(RoomCipher::kNonceSize));
    QCOMPARE(nonces.size(), 1000);
}

EVOX_TEST_MAIN(TestRoomCipher, QCoreApplication)
#include "tst_roomcipher.moc"
