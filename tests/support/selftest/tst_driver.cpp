#include "support/AppDriver.h"
#include "support/ChildProcess.h"
#include "support/Display.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace {

constexpr std::chrono::milliseconds kTimeout{20000};
constexpr char kHoldARestarted[] = "--hold-a-restarted-program";
constexpr char kSuccessorIs[] = "successor is ";

QString samplePath()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/evox-driven-sample");
}

/// Neither gone nor a mere entry in the process table.
bool isAlive(qint64 process)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(process));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = stat.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) != "Z";
}

/// The sample with its driver, on one of the two platforms.
class Sample final
{
public:
    explicit Sample(const Display *display = nullptr)
    {
        QProcessEnvironment environment = ChildProcess::plainEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        if (display)
            display->addTo(environment);
        driver.addTo(environment);
        m_program.setProcessEnvironment(environment);
        m_program.setLogFile(m_folder.filePath(QStringLiteral("log")));
    }
    [[nodiscard]] bool start()
    {
        return m_program.begin(samplePath()) && driver.waitForProgram() &&
               driver.waitForWindow(QStringLiteral("Driven sample"));
    }
    [[nodiscard]] bool restart()
    {
        return driver.click(QStringLiteral("restartButton")) && driver.waitForProgram(2) &&
               driver.waitForWindow(QStringLiteral("Driven sample"));
    }
    [[nodiscard]] const ChildProcess &program() const { return m_program; }
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    AppDriver driver;

private:
    QTemporaryDir m_folder;
    ChildProcess m_program;
};

int holdARestarted()
{
    Sample sample;
    if (!sample.start() || !sample.restart())
        return 1;
    std::fprintf(stderr, "%s%lld\n", kSuccessorIs, sample.driver.pid());
    return waitFor([] { return false; }, std::chrono::hours(1)) ? 0 : 1;
}

} // namespace

// A driver that refuses what a user could not do, and does what a user can, on both kinds of screen.
class DriverTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void readsProperties_data();
    void readsProperties();
    void refusesWhatAUserCannotDo_data();
    void refusesWhatAUserCannotDo();
    void clicks_data();
    void clicks();
    void typesAndUsesKeys();
    void choosesFromAMenu();
    void worksInsideBoxes();
    void worksInsideNestedDialogs();
    void takesPictures();
    void followsARestart();
    void leavesNothingBehind();
    void endsTheProgramOfAKilledTest();

private:
    Display m_display;
    std::unique_ptr<Sample> m_sample;
};

void DriverTest::initTestCase_data()
{
    QTest::addColumn<bool>("onScreen");
    QTest::addRow("offscreen") << false;
    QTest::addRow("xcb") << true;
}

void DriverTest::initTestCase()
{
    QVERIFY(m_display.start());
}

void DriverTest::init()
{
    QFETCH_GLOBAL(bool, onScreen);
    m_sample = std::make_unique<Sample>(onScreen ? &m_display : nullptr);
    QVERIFY(m_sample->start());
}

void DriverTest::cleanup()
{
    if (m_sample && QTest::currentTestFailed())
        m_sample->program().printLog();
    m_sample.reset();
}

void DriverTest::readsProperties_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QJsonValue>("expected");
    const auto row = [](const char *widget, const char *property, const QJsonValue &expected) {
        QTest::addRow("%s %s", widget, property)
            << QString::fromLatin1(widget) << QString::fromLatin1(property) << expected;
    };
    row("plainButton", "text", QStringLiteral("&Plain"));
    row("plainButton", "enabled", true);
    row("disabledButton", "enabled", false);
    row("hiddenButton", "visible", false);
    row("checkBox", "checked", false);
    row("numberSpin", "value", 1);
    row("secretEdit", "echoMode", QStringLiteral("Password"));
    row("richLabel", "text", QStringLiteral("<b>bold</b> words"));
    row("richLabel", "plainText", QStringLiteral("bold words"));
    row("richLabel", "noSuchProperty", QJsonValue::Undefined);
    row("noSuchWidget", "text", QJsonValue::Undefined);
}

void DriverTest::readsProperties()
{
    QFETCH(QString, widget);
    QFETCH(QString, property);
    QFETCH(QJsonValue, expected);
    QCOMPARE(m_sample->driver.property(widget, property), expected);
}

void DriverTest::refusesWhatAUserCannotDo_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, const char *action, const QString &argument, const QString &refusal) {
        QTest::addRow("%s", name) << QString::fromLatin1(action) << argument << refusal;
    };
    row("hidden", "click", QStringLiteral("hiddenButton"), QStringLiteral("\"hiddenButton\" is hidden"));
    row("disabled", "click", QStringLiteral("disabledButton"), QStringLiteral("\"disabledButton\" is disabled"));
    row("missing", "click", QStringLiteral("noButton"), QStringLiteral("there is no widget \"noButton\""));
    row("no such key", "key", QStringLiteral("Nonsense"), QStringLiteral("there is no key \"Nonsense\""));
    row("two keys", "key", QStringLiteral("A,B"), QStringLiteral("there is no key \"A,B\""));
    row("untypeable", "type", QStringLiteral("\u00e9"), QStringLiteral("only printable ASCII can be typed"));
}

void DriverTest::refusesWhatAUserCannotDo()
{
    QFETCH(QString, action);
    QFETCH(QString, argument);
    QFETCH(QString, refusal);
    AppDriver &driver = m_sample->driver;
    const QString answer = action == QLatin1String("click") ? driver.tryClick(argument)
                           : action == QLatin1String("key") ? driver.tryKey(argument)
                                                            : driver.tryType(argument);
    QCOMPARE(answer, refusal);
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("-")));
}

void DriverTest::clicks_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("changed");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QJsonValue>("expected");
    const QString plain = QStringLiteral("plainButton");
    QTest::addRow("button") << plain << QStringLiteral("logLabel") << QStringLiteral("text") << QJsonValue(plain);
    for (const char *wide : {"checkBox", "radioButton"}) {
        const QString name = QString::fromLatin1(wide);
        QTest::addRow("%s", wide) << name << name << QStringLiteral("checked") << QJsonValue(true);
    }
}

void DriverTest::clicks()
{
    QFETCH(QString, widget);
    QFETCH(QString, changed);
    QFETCH(QString, property);
    QFETCH(QJsonValue, expected);
    QVERIFY(m_sample->driver.click(widget));
    QVERIFY(m_sample->driver.waitForProperty(changed, property, expected));
}

void DriverTest::typesAndUsesKeys()
{
    AppDriver &driver = m_sample->driver;
    const QString line = QStringLiteral("lineEdit");
    const QString number = QStringLiteral("numberSpin");
    QVERIFY(driver.click(line));
    QCOMPARE(driver.focus(), line);
    QVERIFY(driver.type(QStringLiteral("wrong")));
    QVERIFY(driver.key(QStringLiteral("Ctrl+A")));
    QVERIFY(driver.type(QStringLiteral("Mixed case, 1@2!")));
    QVERIFY(driver.waitForText(line, QStringLiteral("Mixed case, 1@2!")));
    QVERIFY(driver.key(QStringLiteral("Return")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("Mixed case, 1@2!")));

    QVERIFY(driver.tabTo(number));
    QVERIFY(driver.key(QStringLiteral("Ctrl+A")));
    QVERIFY(driver.type(QStringLiteral("8099")));
    QVERIFY(driver.waitForProperty(number, QStringLiteral("value"), 8099));
    QVERIFY(driver.key(QStringLiteral("Shift+Tab")));
    QCOMPARE(driver.focus(), QStringLiteral("secretEdit"));
    QVERIFY(driver.tabTo(QStringLiteral("checkBox")));
    QVERIFY(driver.key(QStringLiteral("Space")));
    QVERIFY(driver.waitForProperty(QStringLiteral("checkBox"), QStringLiteral("checked"), true));
    QVERIFY(driver.key(QStringLiteral("Alt+P"))); // the button's mnemonic
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("plainButton")));
}

void DriverTest::choosesFromAMenu()
{
    AppDriver &driver = m_sample->driver;
    QVERIFY(driver.tabTo(QStringLiteral("menuButton")));
    QCOMPARE(driver.tryChoose(QStringLiteral("First")), QStringLiteral("no menu is open"));
    QVERIFY(driver.openMenu());
    QVERIFY(
        waitFor([&] { return driver.tryChoose(QStringLiteral("Off")) != QLatin1String("no menu is open"); }, kTimeout));
    QCOMPARE(driver.tryChoose(QStringLiteral("Off")),
             QStringLiteral("the menu has no entry \"Off\" that can be chosen"));
    QVERIFY(driver.choose(QStringLiteral("First")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("&First")));
}

void DriverTest::worksInsideBoxes()
{
    AppDriver &driver = m_sample->driver;
    const QString title = QStringLiteral("Question");
    const QString text = QStringLiteral("Are you\nsure?");
    QVERIFY(driver.click(QStringLiteral("askButton")));
    QVERIFY(driver.waitForBox(title, text));
    QCOMPARE(driver.tryClick(QStringLiteral("plainButton")),
             QStringLiteral("\"plainButton\" is behind the window \"Question\""));
    QVERIFY(driver.answer(QStringLiteral("Yes")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("yes")));

    QVERIFY(driver.click(QStringLiteral("askButton")));
    QVERIFY(driver.waitForBox(title, text));
    QVERIFY(driver.key(QStringLiteral("Return"))); // the default is No
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("no")));
    QVERIFY(driver.click(QStringLiteral("plainButton")));
}

void DriverTest::worksInsideNestedDialogs()
{
    AppDriver &driver = m_sample->driver;
    QVERIFY(driver.click(QStringLiteral("dialogButton")));
    QVERIFY(driver.waitForWindow(QStringLiteral("Nested")));
    QVERIFY(driver.click(QStringLiteral("nestedEdit")));
    QVERIFY(driver.type(QStringLiteral("within")));
    QVERIFY(driver.click(QStringLiteral("nestedAskButton")));
    QVERIFY(driver.waitForBox(QStringLiteral("Question"), QStringLiteral("Are you\nsure?")));
    QVERIFY(driver.key(QStringLiteral("Escape")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("no")));
    QVERIFY(driver.key(QStringLiteral("Escape")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("within")));
}

void DriverTest::takesPictures()
{
    const QString path = m_sample->path(QStringLiteral("sample.png"));
    QVERIFY(m_sample->driver.screenshot(path));
    const QImage picture(path);
    QVERIFY(picture.width() >= 500 && picture.height() >= 400);
}

void DriverTest::followsARestart()
{
    AppDriver &driver = m_sample->driver;
    QCOMPARE(driver.arguments(), QStringList{samplePath()});
    const qint64 first = driver.pid();
    QCOMPARE(first, m_sample->program().processId());
    QVERIFY(m_sample->program().waitForLog(QStringLiteral("sample is first")));

    QVERIFY(m_sample->restart());
    QVERIFY(driver.pid() != first);
    QCOMPARE(driver.arguments(), (QStringList{samplePath(), QStringLiteral("again")}));
    QVERIFY(m_sample->program().waitForEnd());
    QCOMPARE(m_sample->program().exitCode(), 0);
    QVERIFY(m_sample->program().waitForLog(QStringLiteral("sample is again")));
    QVERIFY(driver.click(QStringLiteral("plainButton")));
    QVERIFY(driver.waitForText(QStringLiteral("logLabel"), QStringLiteral("plainButton")));
}

void DriverTest::leavesNothingBehind()
{
    QVERIFY(m_sample->restart());
    const qint64 successor = m_sample->driver.pid();
    QVERIFY(isAlive(successor));
    m_sample.reset();
    QVERIFY(!QFile::exists(QStringLiteral("/proc/%1").arg(successor)));
}

void DriverTest::endsTheProgramOfAKilledTest()
{
    ChildProcess test;
    QVERIFY(test.begin(QCoreApplication::applicationFilePath(), {QString::fromLatin1(kHoldARestarted)}));
    const QString line = QString::fromLatin1(kSuccessorIs);
    QVERIFY(test.waitForLog(line));
    const qint64 successor = test.lastLine(line).mid(line.size()).toLongLong();
    QVERIFY(isAlive(successor));
    test.killNow();
    QVERIFY(waitFor([successor] { return !isAlive(successor); }, kTimeout));
}

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], kHoldARestarted) == 0)
        return holdARestarted();
    DriverTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_driver.moc"
