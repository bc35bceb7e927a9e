#include "net/protocol/MessageBuffer.h"
#include "support/TestMain.h"

#include <QStringList>

using Message = MessageBuffer::Message;

namespace {

/// Every message that is whole, as text: lines as they are, frames as "#<id>:<hex>".
QStringList take(MessageBuffer &buffer)
{
    QStringList messages;
    while (const auto message = buffer.next()) {
        messages.append(
            message->kind == Message::Kind::Line
                ? QString::fromUtf8(message->bytes)
                : QStringLiteral("#%1:%2").arg(message->userId).arg(QString::fromLatin1(message->bytes.toHex())));
    }
    return messages;
}

} // namespace

class MessageBufferTest final : public QObject
{
    Q_OBJECT

private slots:
    void messages_data();
    void messages();
    void messagesSplitAtEveryByte_data() { messages_data(); }
    void messagesSplitAtEveryByte();
    void overflow_data();
    void overflow();
    void limitItselfIsTaken();
    void longLineInPiecesIsSearchedOnce();
    void longLineBetweenOthers();
    void discardsAPartialFrame_data();
    void discardsAPartialFrame();
    void holdsOnToNothingBehindIt();
};

void MessageBufferTest::messages_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &bytes, const QStringList &expected) {
        QTest::newRow(name) << bytes << expected;
    };
    const auto q = [](const char *text) { return QString::fromLatin1(text); };
    row("one line", "PONG\r\n", {q("PONG")});
    row("line feed alone ends a line", "PONG\nROOMS|a\n", {q("PONG"), q("ROOMS|a")});
    row("white space around is dropped", " \t PONG \r\n", {q("PONG")});
    row("empty lines are skipped", "\r\n\n  \r\nPONG\n\n", {q("PONG")});
    row("incomplete", "PON", {});
    row("complete and incomplete", "PONG\r\nROO", {q("PONG")});
    row("frame", QByteArray("AUDIO 7 3\r\n\x01\x02\x03PONG\n", 19), {q("#7:010203"), q("PONG")});
    row("frame with line ends and a header inside", "AUDIO 7 13\r\nAUDIO 1 1\r\nxxPONG\n",
        {q("#7:415544494f20312031") + q("0d0a7878"), q("PONG")});
    row("empty frame", "AUDIO 7 0\r\nPONG\n", {q("#7:"), q("PONG")});
    row("frame header with more parts", "AUDIO 7 1 opus\r\nxPONG\n", {q("#7:78"), q("PONG")});
    row("frame not whole", "AUDIO 7 3\r\nxx", {});
    row("header not whole", "AUDIO 7 3\r", {});
    row("header with a line feed inside", "AUDIO 7\n1\r\nxPONG\n", {q("AUDIO 7\n1"), q("xPONG")});
    row("two parts", "AUDIO 7\r\nPONG\n", {q("AUDIO 7"), q("PONG")});
    row("length no number", "AUDIO 7 x\r\nPONG\n", {q("AUDIO 7 x"), q("PONG")});
    row("length negative", "AUDIO 7 -1\r\nPONG\n", {q("AUDIO 7 -1"), q("PONG")});
    row("id no number reads 0", "AUDIO x 1\r\nyPONG\n", {q("#0:79"), q("PONG")});
    row("id missing", "AUDIO  1\r\nyPONG\n", {q("#0:79"), q("PONG")});
    row("length missing", "AUDIO 7 \r\nPONG\n", {q("AUDIO 7"), q("PONG")});
    row("word without a blank is a line", "AUDIO\r\nAUDIOX 1 2\r\n", {q("AUDIO"), q("AUDIOX 1 2")});
    row("word in lower case is a line", "audio 7 1\r\n", {q("audio 7 1")});
    row("AUDIO_QUALITY is a line", "AUDIO_QUALITY|high|64000\r\n", {q("AUDIO_QUALITY|high|64000")});
    row("bytes that are no text", QByteArray("\xff\x00\xfe|x\n", 6),
        {QString::fromUtf8(QByteArray("\xff\x00\xfe|x", 5))});
}

void MessageBufferTest::messages()
{
    QFETCH(QByteArray, bytes);
    MessageBuffer buffer;
    buffer.append(bytes);
    QTEST(take(buffer), "expected");
    QVERIFY(!buffer.isOverflowing());
}

void MessageBufferTest::messagesSplitAtEveryByte()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, expected);
    for (int split = 0; split <= bytes.size(); ++split) {
        MessageBuffer buffer;
        buffer.append(bytes.left(split));
        QStringList messages = take(buffer);
        buffer.append(bytes.mid(split));
        messages += take(buffer);
        QVERIFY2(messages == expected,
                 qPrintable(QStringLiteral("split at %1: %2").arg(split).arg(messages.join(QStringLiteral(" / ")))));
    }
}

void MessageBufferTest::overflow_data()
{
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<bool>("grows");
    QTest::newRow("line without an end") << QByteArray("USER_LIST|") << true;
    QTest::newRow("header without an end") << QByteArray("AUDIO 7 ") << true;
    QTest::newRow("frame announced") << QByteArray("AUDIO 7 67108865\r\n") << false;
    QTest::newRow("frame announced beyond 32 bits") << QByteArray("AUDIO 7 99999999999999\r\n") << false;
}

void MessageBufferTest::overflow()
{
    QFETCH(QByteArray, begin);
    QFETCH(bool, grows);
    MessageBuffer buffer;
    buffer.append(begin);
    QVERIFY(!buffer.next());
    QCOMPARE(buffer.isOverflowing(), !grows);
    const QByteArray piece(8 * 1024 * 1024, 'x');
    for (int i = 0; grows && i < 8; ++i) {
        QVERIFY(!buffer.isOverflowing());
        buffer.append(piece);
        QVERIFY(!buffer.next());
    }
    QVERIFY(buffer.isOverflowing());
}

void MessageBufferTest::limitItselfIsTaken()
{
    MessageBuffer buffer;
    buffer.append(QByteArray("AUDIO 7 67108864\r\n"));
    QVERIFY(!buffer.next());
    QVERIFY(!buffer.isOverflowing());
    buffer.append(QByteArray(MessageBuffer::kLimit, 'x'));
    const auto message = buffer.next();
    QVERIFY(message);
    QCOMPARE(message->bytes.size(), MessageBuffer::kLimit);
}

void MessageBufferTest::longLineInPiecesIsSearchedOnce()
{
    MessageBuffer buffer;
    const int pieces = 2560; // ten megabytes in pieces of 4 KiB
    for (int i = 0; i < pieces; ++i) {
        buffer.append(QByteArray(4096, 'x'));
        QVERIFY(!buffer.next());
    }
    buffer.append("\r\n");
    const auto message = buffer.next();
    QVERIFY(message);
    QCOMPARE(message->bytes.size(), pieces * 4096);
    QCOMPARE(buffer.searched(), qint64(pieces) * 4096 + 1);
}

void MessageBufferTest::longLineBetweenOthers()
{
    const QByteArray longLine(100000, 'x');
    MessageBuffer buffer;
    buffer.append("  " + longLine + " \r\n"); // alone
    QCOMPARE(buffer.next()->bytes, longLine);
    QVERIFY(buffer.isEmpty());
    buffer.append("PONG\r\n" + longLine + "\r\n"); // last
    QCOMPARE(buffer.next()->bytes, QByteArray("PONG"));
    QCOMPARE(buffer.next()->bytes, longLine);
    buffer.append(longLine + "\r\nPONG\r\nPO"); // first
    QCOMPARE(buffer.next()->bytes, longLine);
    QCOMPARE(buffer.next()->bytes, QByteArray("PONG"));
    buffer.append("NG\n");
    QCOMPARE(buffer.next()->bytes, QByteArray("PONG"));
    QVERIFY(!buffer.next());
}

void MessageBufferTest::discardsAPartialFrame_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QStringList>("expected");
    const QStringList pong{QStringLiteral("PONG")};
    QTest::newRow("some of the payload") << QByteArray("AUDIO 7 5\r\nab") << QByteArray("cdePONG\n") << pong;
    QTest::newRow("none of the payload") << QByteArray("AUDIO 7 5\r\n") << QByteArray("abcdePONG\n") << pong;
    QTest::newRow("a whole frame stays") << QByteArray("AUDIO 7 1\r\na") << QByteArray("PONG\n")
                                         << QStringList{QStringLiteral("#7:61"), QStringLiteral("PONG")};
    QTest::newRow("a line stays") << QByteArray("PO") << QByteArray("NG\n") << pong;
    QTest::newRow("nothing there") << QByteArray() << QByteArray("PONG\n") << pong;
    QTest::newRow("header not whole stays") << QByteArray("AUDIO 7 ") << QByteArray("1\r\nxPONG\n")
                                            << QStringList{QStringLiteral("#7:78"), QStringLiteral("PONG")};
}

void MessageBufferTest::discardsAPartialFrame()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QStringList, expected);
    for (int split = 0; split <= after.size(); ++split) {
        MessageBuffer buffer;
        buffer.append(before);
        buffer.discardPartialAudio();
        QStringList messages;
        buffer.append(after.left(split));
        messages += take(buffer);
        buffer.append(after.mid(split));
        messages += take(buffer);
        QCOMPARE(messages, expected);
    }
}

void MessageBufferTest::holdsOnToNothingBehindIt()
{
    MessageBuffer buffer;
    QByteArray line;
    for (int i = 0; i < 100000; ++i) {
        buffer.append("USER_LIST|Lobby|1,2,3\r\nPO");
        const auto message = buffer.next();
        QVERIFY(message);
        line = message->bytes;
        buffer.append("NG\n");
        QVERIFY(buffer.next());
        QVERIFY(buffer.isEmpty());
    }
    QCOMPARE(line, QByteArray("USER_LIST|Lobby|1,2,3"));
}

EVOX_TEST_MAIN(MessageBufferTest, QCoreApplication)
#include "tst_messagebuffer.moc"
