#include "gateway/VersionNumber.h"
#include "support/TestMain.h"

class VersionNumberTest final : public QObject
{
    Q_OBJECT

private slots:
    void compares_data();
    void compares();
};

void VersionNumberTest::compares_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("order");
    const auto row = [](const char *name, const char *a, const char *b, int order) {
        QTest::newRow(name) << QString::fromUtf8(a) << QString::fromUtf8(b) << order;
    };
    row("the same", "4.0.2", "4.0.2", 0);
    row("a missing part is 0", "4.0.2", "4.0.2.0", 0);
    row("many missing parts are 0", "4", "4.0.0.0.0", 0);
    row("an extra part above 0", "4.0.2.1", "4.0.2", 1);
    row("numbers, not texts", "4.0.10", "4.0.2", 1);
    row("an earlier part decides", "4.1", "4.0.9", 1);
    row("the first part decides", "3.9.9", "4.0.0", -1);
    row("next", "4.0.3", "4.0.2", 1);
    row("leading zeros", "4.00.02", "4.0.2", 0);
    row("none at all", "", "4.0.2", -1);
    row("none at all is 0", "", "0.0", 0);
    row("a letter in front makes the first part 0", "v9.9.9", "4.0.2", -1);
    row("a letter behind makes its part 0", "4.0.3beta", "4.0.2", -1);
    row("a word is 0", "4.x.2", "4.0.2", 0);
    row("empty parts are kept", "4..3", "4.0.2", 1);
    row("an empty part is 0", "4..2", "4.0.2", 0);
    row("a dot in front", ".4.0.2", "4.0.2", -1);
    row("dots only", "....", "0", 0);
    row("not hexadecimal", "0x10", "1", -1);
    row("no comma", "4,1", "4.0.2", -1);
    row("below 0", "4.-1", "4.0", -1);
    row("a date as a part", "20260530", "20260529", 1);
    row("longer than 32 bits", "4.0.202605301200", "4.0.2", 1);
    row("longer than 64 bits is 0", "4.0.99999999999999999999", "4.0.2", -1);
    row("digits of other scripts are no number", "\xD9\xA5.0.0", "4.0.2", -1);
}

void VersionNumberTest::compares()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, order);
    QCOMPARE(VersionNumber::compare(a, b), order);
    QCOMPARE(VersionNumber::compare(b, a), -order);
}

EVOX_TEST_MAIN(VersionNumberTest, QCoreApplication)
#include "tst_versionnumber.moc"
