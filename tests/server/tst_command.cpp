#include "server/Command.h"
#include "support/TestMain.h"

class CommandTest final : public QObject
{
    Q_OBJECT

private slots:
    void words_data();
    void words();
    void rest();
    void cleanTexts_data();
    void cleanTexts();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void CommandTest::words_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("parts"); // the word, then the arguments
    const auto row = [](const char *name, const char *line, const QStringList &parts) {
        QTest::newRow(name) << q(line) << parts;
    };
    row("word alone", "rooms", {q("ROOMS")});
    row("bare arguments", "LOGIN YB1A pw id", {q("LOGIN"), q("YB1A"), q("pw"), q("id")});
    row("quoted text with blanks", "TX_START \"Ruang Dua\"", {q("TX_START"), q("Ruang Dua")});
    row("empty quoted text", "ADMIN_EDIT_ROOM \"a\" \"b\" 5 \"\"",
        {q("ADMIN_EDIT_ROOM"), q("a"), q("b"), q("5"), q("")});
    row("quote without an end", "TX_START \"Ruang", {q("TX_START"), q("Ruang")});
    row("quote inside a word stays", "LOGIN a\"b c", {q("LOGIN"), q("a\"b"), q("c")});
    row("many blanks", "  JOIN   Lobby  ", {q("JOIN"), q("Lobby")});
    row("nothing", "   ", {QString()});
}

void CommandTest::words()
{
    QFETCH(QString, line);
    const Command command(line);
    QStringList parts{command.word()};
    for (int i = 0; i < command.count(); ++i)
        parts.append(command.argument(i));
    QTEST(parts, "parts");
    QCOMPARE(command.argument(99), QString());
    QCOMPARE(command.number(99), 0);
}

void CommandTest::rest()
{
    QCOMPARE(Command(q("JOIN Ruang  Dua")).rest(0), q("Ruang  Dua"));
    QCOMPARE(Command(q("ADMIN_MOVE 7 Ruang Dua")).rest(1), q("Ruang Dua"));
    QCOMPARE(Command(q("ADMIN_SET_ROOM_ORDER A|B C|D")).rest(0), q("A|B C|D"));
    QCOMPARE(Command(q("JOIN")).rest(0), QString());
}

void CommandTest::cleanTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("clean");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << q("Bukit Tinggi") << q("Bukit Tinggi") << q("Bukit Tinggi");
    QTest::newRow("separators") << q("a|b,c;d\"e") << q("a b,c;d e") << q("a b c d e");
    QTest::newRow("line ends") << q("a\r\nKICKED|x\tb") << q("a KICKED x b") << q("a KICKED x b");
    QTest::newRow("blanks") << q("  a   b ") << q("a b") << q("a b");
    const QString limit(200, QLatin1Char('x'));
    QTest::newRow("too long") << QString(500, QLatin1Char('x')) << limit << limit;
    const QString smile = q("\xF0\x9F\x98\x80");
    QTest::newRow("a pair at the limit") << limit.left(199) + smile << limit.left(199) << limit.left(199);
    QTest::newRow("a pair before the limit")
        << limit.left(198) + smile << limit.left(198) + smile << limit.left(198) + smile;
    QTest::newRow("half a pair") << QChar(0xD83D) + q("a") << QChar(0xFFFD) + q("a") << QChar(0xFFFD) + q("a");
    QTest::newRow("no characters") << q("a\xEF\xBF\xBE\xEF\xBF\xBF z") + QChar(0xFDD0) << q("a z") << q("a z");
    QTest::newRow("byte order mark") << QChar(0xFEFF) + q("a") << q("a") << q("a");
}

void CommandTest::cleanTexts()
{
    QFETCH(QString, text);
    QTEST(cleanText(text), "clean");
    QTEST(cleanName(text), "name");
}

EVOX_TEST_MAIN(CommandTest, QCoreApplication)
#include "tst_command.moc"
