#include "windows/WinePrefix.h"

#include "support/Wait.h"

#include <QDebug>
#include <QDir>
#include <QFile>

namespace {

constexpr std::chrono::minutes kMake{3};
constexpr std::chrono::minutes kProgram{2};
constexpr std::chrono::seconds kStart{30};

const QString kFonts = QStringLiteral("fonts.conf");
const QString kDesktop = QStringLiteral("evox");

bool complain(const char *what)
{
    qWarning("Wine: %s", what);
    return false;
}

} // namespace

WinePrefix::WinePrefix(const Display &display, const FakeSerial &radio)
    : m_display(display)
    , m_radio(radio)
{
    writeFonts();
}

/// The same few fonts on every computer: the ones in the place of Windows' own, and the signs on a window's frame.
void WinePrefix::writeFonts() const
{
    const QDir home(m_home.path());
    const QString folder = home.filePath(QStringLiteral("fonts"));
    home.mkpath(folder);
    for (const char *font : {"truetype/dejavu/DejaVuSans", "truetype/dejavu/DejaVuSans-Bold",
                             "truetype/dejavu/DejaVuSansMono", "../wine/fonts/marlett"}) {
        const QFileInfo file(QStringLiteral("/usr/share/fonts/%1.ttf").arg(QLatin1String(font)));
        QFile::link(file.canonicalFilePath(), folder + QLatin1Char('/') + file.fileName());
    }
    QFile list(home.filePath(kFonts));
    if (list.open(QIODevice::WriteOnly))
        list.write(QStringLiteral("<fontconfig><dir>%1</dir></fontconfig>\n").arg(folder).toUtf8());
}

QProcessEnvironment WinePrefix::environment() const
{
    QProcessEnvironment environment = ChildProcess::plainEnvironment();
    m_display.addTo(environment);
    m_radio.addTo(environment);
    environment.remove(QStringLiteral("QT_QPA_PLATFORM")); // it is Windows' there
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
    environment.insert(QStringLiteral("WINEPREFIX"), m_home.filePath(QStringLiteral("prefix")));
    environment.insert(QStringLiteral("FONTCONFIG_FILE"), m_home.filePath(kFonts));
    environment.insert(QStringLiteral("WINEARCH"), QStringLiteral("win64"));
    environment.insert(QStringLiteral("WINEDEBUG"), QStringLiteral("-all"));
    // Neither .NET nor a browser is asked for, and this computer's menus stay as they are.
    environment.insert(QStringLiteral("WINEDLLOVERRIDES"), QStringLiteral("mscoree,mshtml=;winemenubuilder.exe=d"));
    return environment;
}

bool WinePrefix::append(const QString &file, const QString &text) const
{
    QFile registry(m_home.filePath(QStringLiteral("prefix/") + file));
    return registry.open(QIODevice::Append) && registry.write(text.toUtf8()) > 0;
}

/// Before the server reads its registry: the port is made known when Windows starts.
bool WinePrefix::make() const
{
    ChildProcess boot;
    boot.setProcessEnvironment(environment());
    ChildProcess end;
    end.setProcessEnvironment(environment());
    return boot.begin(QStringLiteral("wine"), {QStringLiteral("wineboot"), QStringLiteral("-i")}) &&
           boot.waitForEnd(kMake) && end.begin(QStringLiteral("wineserver"), {QStringLiteral("-w")}) &&
           end.waitForEnd(kMake) &&
           append(QStringLiteral("system.reg"), QStringLiteral("\n[Software\\\\Wine\\\\Ports]\n\"%1\"=\"%2\"\n")
                                                    .arg(serialPort(), m_radio.terminal())) &&
           append(QStringLiteral("user.reg"),
                  QStringLiteral("\n[Software\\\\Wine\\\\Explorer]\n\"Desktop\"=\"%1\"\n"
                                 "\n[Software\\\\Wine\\\\Explorer\\\\Desktops]\n\"%1\"=\"1280x1024\"\n")
                      .arg(kDesktop));
}

/// Whether programs can connect: its socket stands in its working folder.
bool WinePrefix::isServerReady() const
{
    return QFile::exists(QStringLiteral("/proc/%1/cwd/socket").arg(m_server.processId()));
}

bool WinePrefix::start()
{
    if (!make())
        return complain("there is no prefix");
    m_server.setProcessEnvironment(environment());
    m_desktop.setProcessEnvironment(environment());
    if (!m_server.begin(QStringLiteral("wineserver"), {QStringLiteral("-f"), QStringLiteral("-p")}) ||
        !waitFor([this] { return isServerReady(); }, kStart))
        return complain("Wine's server does not start");
    // It carries the services too, which would otherwise be some short program's.
    if (!m_desktop.begin(QStringLiteral("wine"),
                         {QStringLiteral("explorer"), QStringLiteral("/desktop=%1,1280x1024").arg(kDesktop)}))
        return complain("there is no explorer");
    const auto isShown = [this] {
        return !ChildProcess::outputOf(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--name"), QStringLiteral("Wine desktop")},
                                       environment())
                    .isEmpty();
    };
    return waitFor(isShown, kStart) || complain("there is no desktop");
}

QString WinePrefix::userFolder() const
{
    QStringList users = QDir(toUnix(QStringLiteral("C:\\users"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    users.removeAll(QStringLiteral("Public"));
    return QStringLiteral("C:\\users\\") + users.value(0);
}

QString WinePrefix::toUnix(const QString &path) const
{
    return m_home.filePath(QStringLiteral("prefix/drive_c/")) +
           path.mid(3).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString WinePrefix::toWindows(const QString &path)
{
    return QStringLiteral("Z:") + QString(path).replace(QLatin1Char('/'), QLatin1Char('\\'));
}

WinePrefix::Result WinePrefix::run(const QStringList &command, const QProcessEnvironment &environment) const
{
    ChildProcess program;
    program.setProcessEnvironment(environment);
    if (!program.begin(QStringLiteral("wine"), command) ||
        !waitFor([&program] { return !program.isAnythingRunning(); }, kProgram)) {
        qWarning().noquote() << "did not end:" << command;
        return {};
    }
    const bool isNormal = program.exitStatus() == QProcess::NormalExit;
    return {isNormal ? program.exitCode() : -1, program.readAllStandardOutput()};
}

QString WinePrefix::registryValue(const QString &key, const QString &name) const
{
    const Result query =
        run({QStringLiteral("reg"), QStringLiteral("query"), key, QStringLiteral("/v"), name}); // fails without one
    const QString line = QString::fromUtf8(query.output).section(QStringLiteral("    ") + name, 1);
    return query.exitCode == 0 ? line.section(QStringLiteral("    "), 2).trimmed() : QString();
}
