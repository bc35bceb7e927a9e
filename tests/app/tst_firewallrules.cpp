#include "app/FirewallRules.h"
#include "support/FakeProgram.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QDir>

namespace {

const QByteArray kNoRule("case \"$2\" in *' show rule '*) echo; echo 'No rules match the specified criteria.'; "
                         "exit 1;; esac\n");

QString shell()
{
    return QStringLiteral("cmd.exe");
}

QString program()
{
    return QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
}

QStringList showCall()
{
    return {QStringLiteral("/c"), QStringLiteral("netsh advfirewall firewall show rule name=\"eVOX SINAR\"")};
}

QStringList addCall(const QString &direction)
{
    return {QStringLiteral("/c"), QStringLiteral("netsh advfirewall firewall add rule name=\"eVOX SINAR\" dir=%1 "
                                                 "action=allow program=\"%2\" enable=yes")
                                      .arg(direction, program())};
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
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("the rule exists") << QByteArray("echo 'Rule Name: eVOX SINAR'\n");
    QTest::newRow("a Windows in another language") << QByteArray("echo 'Tidak ada aturan yang cocok.'; exit 1\n");
    QTest::newRow("other letters") << QByteArray("echo 'NO RULES MATCH'\n");
    QTest::newRow("no output") << QByteArray("exit 1\n");
    QTest::newRow("told on the other stream") << QByteArray("echo 'No rules match' >&2\n");
    QTest::newRow("never ends and says nothing") << QByteArray("exec sleep 60\n");
}

void FirewallRulesTest::addsNothing()
{
    QFETCH(QByteArray, script);
    const FakeProgram cmd(shell(), script);
    const LogCapture log;
    setupFirewallRules();
    QCOMPARE(cmd.calls(), QList<QStringList>{showCall()});
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")});
}

void FirewallRulesTest::addsNothingWithoutAShell()
{
    const LogCapture log;
    setupFirewallRules();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")});
}

void FirewallRulesTest::addsARuleForEachDirection_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("lines");
    const QString in = QStringLiteral("in");
    const QString out = QStringLiteral("out");
    QTest::newRow("both succeed") << kNoRule + "echo Ok.\n" << QStringList{added(in), added(out)};
    QTest::newRow("without the rights") << kNoRule + "exit 1\n" << QStringList{failed(in), failed(out)};
    QTest::newRow("only inwards") << kNoRule + "case \"$2\" in *dir=out*) exit 5;; esac\n"
                                  << QStringList{added(in), failed(out)};
    QTest::newRow("only outwards") << kNoRule + "case \"$2\" in *dir=in*) exit 5;; esac\n"
                                   << QStringList{failed(in), added(out)};
    QTest::newRow("the shell crashes") << kNoRule + "kill -SEGV $$\n" << QStringList{failed(in), failed(out)};
    QTest::newRow("the check answers and hangs")
        << QByteArray("case \"$2\" in *' show rule '*) echo 'No rules match'; exec sleep 60;; esac\n")
        << QStringList{added(in), added(out)};
}

void FirewallRulesTest::addsARuleForEachDirection()
{
    QFETCH(QByteArray, script);
    QFETCH(QStringList, lines);
    const FakeProgram cmd(shell(), script);
    LogCapture log;
    log.expectWarning(QStringLiteral("[FIREWALL] Failed"));
    setupFirewallRules();
    QCOMPARE(cmd.calls(),
             (QList<QStringList>{showCall(), addCall(QStringLiteral("in")), addCall(QStringLiteral("out"))}));
    QCOMPARE(log.lines(), lines);
}

void FirewallRulesTest::aDirectionThatNeverEndsFails()
{
    const FakeProgram cmd(shell(), kNoRule + "case \"$2\" in *dir=in*) exec sleep 60;; esac\n");
    LogCapture log;
    log.expectWarning(QStringLiteral("[FIREWALL] Failed"));
    setupFirewallRules();
    QCOMPARE(log.lines(), (QStringList{failed(QStringLiteral("in")), added(QStringLiteral("out"))}));
}

// After one direction was added, the next start finds the name present.
void FirewallRulesTest::aHalfAddedPairIsLeftAlone()
{
    const QTemporaryDir rules;
    const QByteArray rule = '"' + QFile::encodeName(rules.filePath(QStringLiteral("rule"))) + '"';
    const FakeProgram cmd(shell(), "case \"$2\" in\n*' show rule '*) cat " + rule +
                                       " 2>/dev/null || echo 'No rules match';;\n*dir=in*) echo here > " + rule +
                                       ";;\n*) exit 1;;\nesac\n");
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
