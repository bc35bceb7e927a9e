#include "app/Product.h"
#include "e2e/AdminLine.h"
#include "e2e/Over.h"
#include "e2e/WizardUser.h"
#include "support/CompanionServer.h"
#include "support/TestMain.h"
#include "support/Wait.h"
#include "windows/SetupUser.h"
#include "windows/WineStation.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <memory>

namespace {

const QString kRoom = QStringLiteral("== LOBBY ==");
const QString kPassword = QStringLiteral("on-windows");
const QString kCallsign = QStringLiteral("YH0GW"); // of the server's sample registry
const QString kLinuxCallsign = QStringLiteral("YB0BB");
const QString kAdmin = QStringLiteral("YB0ADM");
const QString kUninstallKey = QStringLiteral("\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\e-VOX SINAR");
const QString kRunKey = QStringLiteral("HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run");
const QString kStartMenu = QStringLiteral("\\Microsoft\\Windows\\Start Menu\\Programs\\e-VOX SINAR.lnk");
constexpr int kOvers = 3;
constexpr int kWindowsTooOld = 3; // what the setup ends with
constexpr std::chrono::seconds kSlowStart{60};

/// What packaging/windows/check has made, by its environment.
QString given(const char *name)
{
    return qEnvironmentVariable(name);
}

/// In the words of Windows.
QString setupPath()
{
    return WinePrefix::toWindows(QFileInfo(given("EVOX_WINDOWS_SETUP")).absoluteFilePath());
}

QStringList filesIn(const QString &folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(QDir(folder).relativeFilePath(all.next()));
    files.sort();
    return files;
}

QStringList linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)
               : QStringList();
}

} // namespace

// What ships for Windows, on Wine's Windows: installed, used like a gateway's owner would, and removed. The steps build
// on one another. The server and the other gateway are this computer's.
class WindowsProgramTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void refusesAnOldWindows();
    void installsForAllUsers();
    void installsForOneUser();
    void registersANewGateway();
    void identifiesTheComputer();
    void isApproved();
    void relaysBothWays_data();
    void relaysBothWays();
    void startsWithWindows();
    void isReplacedWhileItRuns();
    void opensTheFirewall_data();
    void opensTheFirewall();
    void isRemovedWithoutItsSettings();
    void runsFromTheZip();
    void isInstalledAndRemovedByHand_data();
    void isInstalledAndRemovedByHand();

private:
    [[nodiscard]] WinePrefix &windows() { return m_windows->windows(); }
    [[nodiscard]] int setup(const QStringList &options);
    [[nodiscard]] int uninstall(const QString &hive);
    [[nodiscard]] bool isInstalled(const QString &folder);
    [[nodiscard]] QString installFolder();
    [[nodiscard]] bool setAutoStart(const QString &picture);
    [[nodiscard]] bool closeProgram();
    [[nodiscard]] bool hasEnded();
    [[nodiscard]] bool picture(const QString &name);
    [[nodiscard]] QByteArray settings() const { return m_windows->configuration(); }

    Display m_display;
    Sound m_speech;
    std::unique_ptr<CompanionServer> m_server;
    std::unique_ptr<AppDriver> m_driver;
    std::unique_ptr<Station> m_linux;
    std::unique_ptr<WineStation> m_windows;
    int m_pictures = 0;
    bool m_hasFailed = false;
};

void WindowsProgramTest::initTestCase()
{
    for (const char *name : {"EVOX_WINDOWS_SETUP", "EVOX_WINDOWS_ZIP", "EVOX_WINDOWS_CONTENT", "EVOX_WINDOWS_BUILD",
                             "EVOX_WINDOWS_PICTURES"})
        QVERIFY2(QFileInfo::exists(given(name)), name);
    m_speech = speech(QStringLiteral("Radio check from the gateway. How do you copy?"));
    QVERIFY(!m_speech.isNull());
    QVERIFY(m_display.start());
    m_server = std::make_unique<CompanionServer>(QStringList{kRoom});
    QVERIFY(m_server->addUser(kLinuxCallsign, kPassword));
    QVERIFY(m_server->addUser(kAdmin, kPassword, true));
    QVERIFY(m_server->start());
    Station::Settings other{kLinuxCallsign, kPassword, m_server->host(), m_server->port(), kRoom, {}};
    m_linux = std::make_unique<Station>(other, &m_display);
    QVERIFY(m_linux->start());
    QVERIFY(m_linux->waitForRoom());

    Station::Settings fresh;
    fresh.more = {{QStringLiteral("registry_url"), m_server->webUrl()}};
    fresh.isSetUp = false;
    m_driver = std::make_unique<AppDriver>();
    m_windows = std::make_unique<WineStation>(fresh, m_display);
    m_windows->setDriver(*m_driver);
    const QDir build(given("EVOX_WINDOWS_BUILD"));
    m_windows->setDriverFolders(build.filePath(QStringLiteral("lib/plugins")),
                                build.filePath(QStringLiteral("lib/driver")));
    QVERIFY(windows().start());
}

void WindowsProgramTest::init()
{
    if (m_hasFailed)
        QFAIL("an earlier step failed");
}

void WindowsProgramTest::cleanup()
{
    if (!QTest::currentTestFailed() || m_hasFailed)
        return;
    // No other step builds on what was heard.
    m_hasFailed = qstrcmp(QTest::currentTestFunction(), "relaysBothWays") != 0;
    (void)picture(QStringLiteral("failed-") + QString::fromLatin1(QTest::currentTestFunction()));
    m_windows->program().printLog();
}

void WindowsProgramTest::cleanupTestCase()
{
    m_windows.reset();
    m_driver.reset();
    m_linux.reset();
    m_server.reset();
}

bool WindowsProgramTest::picture(const QString &name)
{
    const QString file = QStringLiteral("%1-%2.png").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(name);
    return m_display.screenshot(QStringLiteral("root"), QDir(given("EVOX_WINDOWS_PICTURES")).absoluteFilePath(file));
}

int WindowsProgramTest::setup(const QStringList &options)
{
    return windows().run(QStringList{setupPath(), QStringLiteral("/S")} + options).exitCode;
}

/// As "Apps and features" does it without asking.
int WindowsProgramTest::uninstall(const QString &hive)
{
    const QString command = windows().registryValue(hive + kUninstallKey, QStringLiteral("QuietUninstallString"));
    const QString program = command.section(QLatin1Char('"'), 1, 1);
    const QStringList options = command.section(QLatin1Char('"'), 2).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return program.isEmpty() ? -1 : windows().run(QStringList{program} + options).exitCode;
}

QString WindowsProgramTest::installFolder()
{
    return windows().registryValue(QStringLiteral("HKCU") + kUninstallKey, QStringLiteral("InstallLocation"));
}

/// Every file that was packed, and the uninstaller.
bool WindowsProgramTest::isInstalled(const QString &folder)
{
    QStringList expected = filesIn(given("EVOX_WINDOWS_CONTENT")) + QStringList{QStringLiteral("uninstall.exe")};
    expected.sort();
    const QStringList found = filesIn(windows().toUnix(folder));
    if (found == expected)
        return true;
    qWarning().noquote() << folder << "holds" << found << "instead of" << expected;
    return false;
}

bool WindowsProgramTest::hasEnded()
{
    return waitFor([this] { return !m_windows->program().isAnythingRunning(); }, std::chrono::seconds(30));
}

bool WindowsProgramTest::closeProgram()
{
    return m_driver->key(QStringLiteral("Alt+F4")) && hasEnded();
}

void WindowsProgramTest::refusesAnOldWindows()
{
    const QString key =
        QStringLiteral("HKCU\\Software\\Wine\\AppDefaults\\") + QFileInfo(given("EVOX_WINDOWS_SETUP")).fileName();
    const QString version = QStringLiteral("Version");
    const auto reg = [this](const QStringList &command) {
        return windows().run(QStringList{QStringLiteral("reg")} + command).exitCode;
    };
    QCOMPARE(reg({QStringLiteral("add"), key, QStringLiteral("/v"), version, QStringLiteral("/d"),
                  QStringLiteral("vista"), QStringLiteral("/f")}),
             0);
    QCOMPARE(setup({}), kWindowsTooOld);
    QCOMPARE(reg({QStringLiteral("delete"), key, QStringLiteral("/f")}), 0);
    QVERIFY(installFolder().isNull());
}

void WindowsProgramTest::installsForAllUsers()
{
    const QString folder = QStringLiteral("C:\\Program Files\\e-VOX SINAR");
    const QString menu = windows().toUnix(QStringLiteral("C:\\ProgramData") + kStartMenu);
    const QString hive = QStringLiteral("HKLM");
    QCOMPARE(setup({QStringLiteral("/ALLUSERS")}), 0);
    QVERIFY(isInstalled(folder));
    QVERIFY(QFile::exists(menu));
    QCOMPARE(windows().registryValue(hive + kUninstallKey, QStringLiteral("InstallLocation")), folder);
    QVERIFY(installFolder().isNull());
    QCOMPARE(uninstall(hive), 0);
    QVERIFY(!QFile::exists(windows().toUnix(folder)));
    QVERIFY(!QFile::exists(menu));
    QVERIFY(windows().registryValue(hive + kUninstallKey, QStringLiteral("DisplayName")).isNull());
}

void WindowsProgramTest::installsForOneUser()
{
    QCOMPARE(setup({QStringLiteral("/CURRENTUSER"), QStringLiteral("/DESKTOPICON")}), 0);
    const QString folder = installFolder();
    QCOMPARE(folder, windows().userFolder() + QStringLiteral("\\AppData\\Local\\Programs\\e-VOX SINAR"));
    QVERIFY(isInstalled(folder));
    QVERIFY(
        QFile::exists(windows().toUnix(windows().userFolder() + QStringLiteral("\\AppData\\Roaming") + kStartMenu)));
    QVERIFY(QFile::exists(windows().toUnix(windows().userFolder() + QStringLiteral("\\Desktop\\e-VOX SINAR.lnk"))));
    const QString key = QStringLiteral("HKCU") + kUninstallKey;
    QCOMPARE(windows().registryValue(key, QStringLiteral("DisplayName")), Product::name());
    QCOMPARE(windows().registryValue(key, QStringLiteral("DisplayVersion")), Product::version());
    qint64 bytes = 0;
    for (const QString &file : filesIn(windows().toUnix(folder)))
        bytes += QFileInfo(QDir(windows().toUnix(folder)).filePath(file)).size();
    const int size = windows().registryValue(key, QStringLiteral("EstimatedSize")).toInt(nullptr, 16); // in KiB
    QVERIFY2(qAbs(size - bytes / 1024) < bytes / 1024 / 20, qPrintable(QString::number(size)));
}

void WindowsProgramTest::registersANewGateway()
{
    const QString program = installFolder() + QStringLiteral("\\evox-sinar.exe");
    m_windows->setProgram(program);
    QVERIFY(m_windows->start());
    QVERIFY(m_driver->waitForProgram(1, kSlowStart));
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    user.onFilled([this](const QString &page) { return picture(page); });
    GatewayEntries entries = exampleGateway(*m_server, kRoom, kCallsign, kPassword);
    entries.gatewayName = QStringLiteral("RF-GW SINAR Windows");
    QVERIFY(user.fillIn(entries));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForWindow(QStringLiteral("Registrasi Berhasil")));
    QVERIFY(picture(QStringLiteral("registered")));
    QVERIFY(m_driver->answer(QStringLiteral("OK")));

    QVERIFY(m_driver->waitForProgram(2, kSlowStart));
    QCOMPARE(m_driver->arguments().value(0), program);
    QCOMPARE(m_driver->arguments().size(), 2);
    QVERIFY(m_windows->program().waitForEnd());
    QCOMPARE(m_windows->program().exitCode(), 0);
    QVERIFY(m_windows->waitForRoom(1, kSlowStart));
    QVERIFY(m_driver->waitForWindow(
        QStringLiteral("%1 v%2 (Build %3)").arg(Product::name(), Product::version(), Product::build())));
    QVERIFY(picture(QStringLiteral("in-the-room")));
    // Wine's netsh says nothing, which counts as a rule that is there.
    QCOMPARE(m_windows->program().count(QStringLiteral("[FIREWALL] Rule already exists: eVOX SINAR")), 2);
    const QString folder = installFolder().replace(QLatin1Char('\\'), QLatin1Char('/')); // not the one of a build
    QCOMPARE(m_windows->program().lastLine(QStringLiteral("[Opus] Loading:")),
             QStringLiteral("[Opus] Loading: %1/libopus-0.dll").arg(folder));
    QCOMPARE(m_windows->program().lastLine(QStringLiteral("[Sodium] Loading:")),
             QStringLiteral("[Sodium] Loading: %1/libsodium.dll").arg(folder));
}

void WindowsProgramTest::identifiesTheComputer()
{
    const QDir build(given("EVOX_WINDOWS_BUILD"));
    QProcessEnvironment environment = windows().environment();
    environment.insert(QStringLiteral("WINEPATH"), installFolder());
    const WinePrefix::Result facts = windows().run(
        {WinePrefix::toWindows(build.absoluteFilePath(QStringLiteral("bin/evox-facts.exe")))}, environment);
    QStringList known =
        QString::fromUtf8(facts.output).split(QRegularExpression(QStringLiteral("\r?\n")), Qt::SkipEmptyParts);
    QCOMPARE(known.size(), 4);
    const QByteArray wmic =
        windows()
            .run({QStringLiteral("wmic"), QStringLiteral("cpu"), QStringLiteral("get"), QStringLiteral("ProcessorId")})
            .output;
    QVERIFY(wmic.startsWith("\xFF\xFE")); // little-endian words, as Wine's prints them
    const QString text =
        QString::fromUtf16(reinterpret_cast<const char16_t *>(wmic.constData() + 2), wmic.size() / 2 - 1);
    const QString processor = text.section(QLatin1Char('\n'), 1, 1).trimmed();
    QVERIFY2(!processor.isEmpty(), qPrintable(text));
    known.insert(2, processor);
    const QByteArray hash =
        QCryptographicHash::hash(known.join(QLatin1Char('|')).toUtf8(), QCryptographicHash::Sha256).toHex().left(32);
    QCOMPARE(QJsonDocument::fromJson(settings()).object().value(QLatin1String("hwid")).toString(),
             QString::fromLatin1(hash));
}

/// By an administrator elsewhere; only then may the new gateway transmit.
void WindowsProgramTest::isApproved()
{
    static const QRegularExpression id(QStringLiteral("user_id: (\\d+)"));
    const QString user = id.match(m_windows->program().lastLine(QStringLiteral("[TCP] Login successful"))).captured(1);
    QVERIFY(!user.isEmpty());
    AdminLine admin;
    QVERIFY(admin.logIn(*m_server, kAdmin, kPassword));
    QVERIFY(admin.ask(QStringLiteral("ADMIN_APPROVE_USER %1").arg(user), "ADMIN_APPROVE_USER_OK"));
    QVERIFY(picture(QStringLiteral("approved")));
}

void WindowsProgramTest::relaysBothWays_data()
{
    QTest::addColumn<bool>("fromWindows");
    QTest::newRow("Windows to Linux") << true;
    QTest::newRow("Linux to Windows") << false;
}

void WindowsProgramTest::relaysBothWays()
{
    QFETCH(bool, fromWindows);
    Station &from = fromWindows ? *m_windows : *m_linux;
    Station &to = fromWindows ? *m_linux : *m_windows;
    Over over;
    // Sound is real time, also for a computer with much else to do: an over may be torn, but not every one.
    for (int attempt = 0; attempt < kOvers && !over.wasHeard(); ++attempt) {
        over = relayOver(from, to, m_server->line(), m_speech);
        qInfo().noquote() << QJsonDocument(over.toJson()).toJson(QJsonDocument::Compact);
        QVERIFY(over.keyed);
        QVERIFY(over.released);
        QVERIFY(over.deciphered > 0);
        QCOMPARE(over.deciphered, over.received);
    }
    QVERIFY2(over.wasHeard(), qPrintable(QStringLiteral("similarity %1").arg(over.similarity)));
    QVERIFY(!from.radio().rts()); // the sender's own transmitter stays silent
}

/// Turns the box over in the settings.
bool WindowsProgramTest::setAutoStart(const QString &picture)
{
    return m_driver->key(QStringLiteral("Ctrl+,")) && m_driver->waitForWindow(QStringLiteral("Settings")) &&
           m_driver->click(QStringLiteral("autoStartCheck")) && this->picture(picture) &&
           m_driver->click(QStringLiteral("saveButton"));
}

void WindowsProgramTest::startsWithWindows()
{
    const QString name = QStringLiteral("eVOX-SINAR");
    const QString program = installFolder() + QStringLiteral("\\evox-sinar.exe");
    const auto isRegistered = [&] { return windows().registryValue(kRunKey, name) == program; };
    const auto isForgotten = [&] { return windows().registryValue(kRunKey, name).isNull(); };
    QVERIFY(isForgotten());
    QVERIFY(setAutoStart(QStringLiteral("settings")));
    QVERIFY(waitFor(isRegistered, AppDriver::kPatience));
    QVERIFY(setAutoStart(QStringLiteral("settings-without")));
    QVERIFY(waitFor(isForgotten, AppDriver::kPatience));
    QVERIFY(setAutoStart(QStringLiteral("settings-again"))); // for what follows
    QVERIFY(waitFor(isRegistered, AppDriver::kPatience));
}

void WindowsProgramTest::isReplacedWhileItRuns()
{
    const QByteArray before = settings();
    QVERIFY(m_driver->key(QStringLiteral("Ctrl+,"))); // the window cannot close before this one has
    QVERIFY(m_driver->waitForWindow(QStringLiteral("Settings")));
    QCOMPARE(setup({QStringLiteral("/CURRENTUSER")}), 0);
    QVERIFY(hasEnded());
    QVERIFY(isInstalled(installFolder()));
    QCOMPARE(settings(), before);
    QVERIFY(!windows().registryValue(kRunKey, QStringLiteral("eVOX-SINAR")).isNull());
    QVERIFY(QFile::exists(windows().toUnix(windows().userFolder() + QStringLiteral("\\Desktop\\e-VOX SINAR.lnk"))));
}

void WindowsProgramTest::opensTheFirewall_data()
{
    QTest::addColumn<bool>("mayAdd");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("allowed") << true << QStringLiteral("[FIREWALL] Rule added: eVOX SINAR %1 %2");
    QTest::newRow("not allowed") << false << QStringLiteral("[FIREWALL] Failed (may need admin): eVOX SINAR %1");
}

void WindowsProgramTest::opensTheFirewall()
{
    QFETCH(bool, mayAdd);
    QFETCH(QString, outcome);
    const QTemporaryDir folder;
    const QString calls = folder.filePath(QStringLiteral("calls"));
    const QString program = installFolder() + QStringLiteral("\\evox-sinar.exe");
    m_windows->setPath({QDir(given("EVOX_WINDOWS_BUILD")).absoluteFilePath(QStringLiteral("bin/fake"))});
    m_windows->setVariable(QStringLiteral("EVOX_NETSH_CALLS"), WinePrefix::toWindows(calls));
    if (!mayAdd)
        m_windows->setVariable(QStringLiteral("EVOX_NETSH_REFUSES"), QStringLiteral("1"));
    QVERIFY(m_windows->startAgain());
    for (const char *direction : {"in", "out"}) {
        const QString line = outcome.contains(QLatin1String("%2")) ? outcome.arg(QLatin1String(direction), program)
                                                                   : outcome.arg(QLatin1String(direction));
        QVERIFY(m_windows->program().waitForLog(line, 1, kSlowStart));
    }
    QVERIFY(m_windows->waitForRoom(1, kSlowStart)); // it starts all the same
    QVERIFY(closeProgram());
    QStringList expected{QStringLiteral("advfirewall firewall show rule name=\"eVOX SINAR\"")};
    for (const char *direction : {"in", "out"}) {
        if (mayAdd)
            expected.append(QStringLiteral("advfirewall firewall add rule name=\"eVOX SINAR\" dir=%1 action=allow "
                                           "program=\"%2\" enable=yes")
                                .arg(QLatin1String(direction), program));
    }
    QStringList called = linesOf(calls);
    std::transform(called.begin(), called.end(), called.begin(),
                   [](const QString &line) { return line.mid(line.indexOf(QLatin1String("advfirewall"))).trimmed(); });
    QCOMPARE(called, expected);
}

void WindowsProgramTest::isRemovedWithoutItsSettings()
{
    const QString folder = installFolder();
    const QByteArray before = settings();
    QVERIFY(!before.isEmpty());
    QCOMPARE(uninstall(QStringLiteral("HKCU")), 0);
    QVERIFY(!QFile::exists(windows().toUnix(folder)));
    for (const char *entry : {"\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs\\e-VOX SINAR.lnk",
                              "\\Desktop\\e-VOX SINAR.lnk"})
        QVERIFY2(!QFile::exists(windows().toUnix(windows().userFolder() + QLatin1String(entry))), entry);
    QVERIFY(installFolder().isNull());
    QVERIFY(windows().registryValue(kRunKey, QStringLiteral("eVOX-SINAR")).isNull());
    QCOMPARE(settings(), before);
}

void WindowsProgramTest::runsFromTheZip()
{
    const QString folder = QStringLiteral("C:\\radio tools");
    const QString unixFolder = windows().toUnix(folder);
    QVERIFY(!ChildProcess::outputOf(QStringLiteral("python3"),
                                    {QStringLiteral("-m"), QStringLiteral("zipfile"), QStringLiteral("-e"),
                                     given("EVOX_WINDOWS_ZIP"), unixFolder})
                 .isNull());
    const QString inZip = QDir(unixFolder).entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
    QCOMPARE(filesIn(unixFolder + QLatin1Char('/') + inZip), filesIn(given("EVOX_WINDOWS_CONTENT")));
    m_windows->setProgram(folder + QLatin1Char('\\') + inZip + QStringLiteral("\\evox-sinar.exe"));
    m_windows->setPath({});
    QVERIFY(m_windows->startAgain());
    QVERIFY(m_windows->waitForRoom(1, kSlowStart)); // with the settings that were left
    QVERIFY(closeProgram());
}

void WindowsProgramTest::isInstalledAndRemovedByHand_data()
{
    QTest::addColumn<bool>("deletesSettings");
    QTest::newRow("settings kept") << false;
    QTest::newRow("settings deleted") << true;
}

void WindowsProgramTest::isInstalledAndRemovedByHand()
{
    QFETCH(bool, deletesSettings);
    SetupUser user(windows(), QDir(given("EVOX_WINDOWS_BUILD")).absoluteFilePath(QStringLiteral("bin/evox-press.exe")));
    user.onShown([this](const QString &page) { return picture(page); });
    const QString menu = windows().toUnix(windows().userFolder() + QStringLiteral("\\AppData\\Roaming") + kStartMenu);
    QVERIFY(!settings().isEmpty());
    QVERIFY(user.install(setupPath()));
    const QString folder = installFolder();
    QVERIFY(isInstalled(folder));
    QVERIFY(QFile::exists(menu));
    QVERIFY(user.uninstall(folder + QStringLiteral("\\uninstall.exe"), deletesSettings));
    QVERIFY(!QFile::exists(windows().toUnix(folder)));
    QVERIFY(!QFile::exists(menu));
    QCOMPARE(settings().isEmpty(), deletesSettings);
}

EVOX_TEST_MAIN(WindowsProgramTest, QCoreApplication)
#include "tst_windowsprogram.moc"
