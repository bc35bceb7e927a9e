#include "app/FirewallRules.h"
#include "support/FakeProgram.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QDir>

namespace {

using Reply = FakeProgram::Reply;
using Replies = QList<Reply>;

constexpr auto kExits = FakeProgram::Ending::Exits;
constexpr auto kHangs = FakeProgram::Ending::Hangs;
constexpr auto kCrashes = FakeProgram::Ending::Crashes;
const char kShow[] = " show rule ";
const char kIn[] = "dir=in";
const char kOut[] = "dir=out";

Reply noRule()
{
    return {"\nNo rules match the specified criteria.\n", 1, kExits, kShow};
}

QString shell()
{
    return QStringLiteral("cmd.exe");
}

QString program()
{
    return QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
}

QString showCall()
{
    return QStringLiteral("/c netsh advfirewall firewall show rule name=\"eVOX SINAR\"");
}

QString addCall(const QString &direction)
{
    return QStringLiteral("/c netsh advfirewall firewall add rule name=\"eVOX SINAR\" dir=%1 action=allow "
                          "program=\"%2\" enable=yes")
        .arg(direction, program());
}

QString added(const QString &direction)
{
    return QStringLiteral("[FIREWALL] Rule added: eVOX SINAR %1 %2").arg(direction, program());
}

QString failed(const QString &direction)
{
    return QStringLiteral("[FIREWALL] Failed (may need admin): eVOX SINAR ") + direction;
}

} // namespace

Q_DECLARE_METATYPE(Reply)

class FirewallRulesTest final : public QObject
{
    Q_OBJECT

private slots:
    void addsNothing_data();
    void addsNothing();
    void addsNothingWithoutAShell();
    void addsARuleForEachDirection_data();
    void addsARuleForEachDirection();
    void aDirectionThatNeverEndsFails();
    void aHalfAddedPairIsLeftAlone();
};

void FirewallRulesTest::addsNothing_data()
{
    QTest::addColumn<Reply>("reply");
    const auto row = [](const char *name, const Reply &reply) { QTest::newRow(name) << reply; };
    row("the rule exists", {"Rule Name: eVOX SINAR\n"});
    row("a Windows in another language", {"Tidak ada aturan yang cocok.\n", 1});
    row("other letters", {"NO RULES MATCH\n"});
    row("no output", {{}, 1});
    row("told on the other stream", {{}, 0, kExits, {}, {}, "No rules match\n"});
    row("never ends and says nothing", {{}, 0, kHangs});
}

void FirewallRulesTest::addsNothing()
{
    QFETCH(Reply, reply);
    const FakeProgram cmd(shell(), {reply});
    const LogCapture log;
    setupFirewallRules();
    QCOMPARE(cmd.calls(), QStringList{showCall()});
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")});
}

void FirewallRulesTest::addsNothingWithoutAShell()
{
#ifdef Q_OS_WIN
    QSKIP("Windows always has its shell");
#endif
    const LogCapture log;
    setupFirewallRules();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")});
}

void FirewallRulesTest::addsARuleForEachDirection_data()
{
    QTest::addColumn<Replies>("replies");
    QTest::addColumn<QStringList>("lines");
    const QString in = QStringLiteral("in");
    const QString out = QStringLiteral("out");
    const auto row = [](const char *name, const Replies &replies, const QStringList &lines) {
        QTest::newRow(name) << replies << lines;
    };
    row("both succeed", {noRule(), {"Ok.\n"}}, {added(in), added(out)});
    row("without the rights", {noRule(), {{}, 1}}, {failed(in), failed(out)});
    row("only inwards", {noRule(), {{}, 5, kExits, kOut}}, {added(in), failed(out)});
    row("only outwards", {noRule(), {{}, 5, kExits, kIn}}, {failed(in), added(out)});
    row("the shell crashes", {noRule(), {{}, 0, kCrashes}}, {failed(in), failed(out)});
    row("the check answers and hangs", {{"No rules match\n", 0, kHangs, kShow}}, {added(in), added(out)});
}

void FirewallRulesTest::addsARuleForEachDirection()
{
    QFETCH(Replies, replies);
    QFETCH(QStringList, lines);
    const FakeProgram cmd(shell(), replies);
    LogCapture log;
    log.expectWarning(QStringLiteral("[FIREWALL] Failed"));
    setupFirewallRules();
    QCOMPARE(cmd.calls(), (QStringList{showCall(), addCall(QStringLiteral("in")), addCall(QStringLiteral("out"))}));
    QCOMPARE(log.lines(), lines);
}

void FirewallRulesTest::aDirectionThatNeverEndsFails()
{
    const FakeProgram cmd(shell(), {noRule(), {{}, 0, kHangs, kIn}});
    LogCapture log;
    log.expectWarning(QStringLiteral("[FIREWALL] Failed"));
    setupFirewallRules();
    QCOMPARE(log.lines(), (QStringList{failed(QStringLiteral("in")), added(QStringLiteral("out"))}));
}

// After one direction was added, the next start finds the name present.
void FirewallRulesTest::aHalfAddedPairIsLeftAlone()
{
    const FakeProgram cmd(
        shell(), {{"Rule Name: eVOX SINAR\n", 0, kExits, kShow, kIn}, noRule(), {"Ok.\n", 0, kExits, kIn}, {{}, 1}});
    LogCapture log;
    log.expectWarning(QStringLiteral("[FIREWALL] Failed"));
    setupFirewallRules();
    QCOMPARE(log.lines(), (QStringList{added(QStringLiteral("in")), failed(QStringLiteral("out"))}));
    log.clear();
    setupFirewallRules();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")});
    QCOMPARE(cmd.calls().size(), 4);
}

EVOX_TEST_MAIN(FirewallRulesTest, QCoreApplication)
#include "tst_firewallrules.moc"
