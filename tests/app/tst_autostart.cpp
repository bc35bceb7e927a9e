// The desktop entry that starts the program with the session.
#include "app/AutoStart.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"

#include <QFile>

namespace {

QByteArray entry(const TestConfig &test)
{
    QFile file(test.folder() + QStringLiteral("/autostart/eVOX-SINAR.desktop"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class AutoStartTest final : public QObject
{
    Q_OBJECT

private slots:
    void quotesTheProgram_data();
    void quotesTheProgram();
    void removesTheEntry();
};

void AutoStartTest::quotesTheProgram_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("exec");
    const auto row = [](const char *name, const char *path, const char *exec) {
        QTest::newRow(name) << QString::fromUtf8(path) << QByteArray(exec);
    };
    row("plain", "/opt/evox/evox-sinar", R"("/opt/evox/evox-sinar")");
    row("blank", "/opt/e vox/evox", R"("/opt/e vox/evox")");
    row("backslash", R"(/opt/a\b)", R"("/opt/a\\\\b")");
    row("double quote", R"(/opt/a"b)", R"("/opt/a\\"b")");
    row("back quote", "/opt/a`b", R"("/opt/a\\`b")");
    row("dollar sign", "/opt/$HOME", R"("/opt/\\$HOME")");
    row("percent sign", "/opt/100%f", R"("/opt/100%%f")");
    row("place mark", "/opt/%1", R"("/opt/%%1")");
    row("all of them", R"(/opt/\"`$%)", R"("/opt/\\\\\\"\\`\\$%%")");
    row("beyond ASCII", "/opt/é", R"("/opt/é")");
}

void AutoStartTest::quotesTheProgram()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, exec);
    const TestConfig test;
    AutoStart::set(true, path);
    QCOMPARE(entry(test), "[Desktop Entry]\nType=Application\nName=e-VOX SINAR\nExec=" + exec + '\n');
}

void AutoStartTest::removesTheEntry()
{
    const TestConfig test;
    AutoStart::set(true, QStringLiteral("/opt/evox"));
    QVERIFY(!entry(test).isEmpty());
    AutoStart::set(false, QStringLiteral("/opt/evox"));
    QVERIFY(entry(test).isNull());
}

EVOX_TEST_MAIN(AutoStartTest, QCoreApplication)
#include "tst_autostart.moc"
