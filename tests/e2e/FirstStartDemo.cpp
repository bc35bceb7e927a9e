// A computer on which the program has never run: somebody registers a gateway with the keyboard alone, the program
// starts itself anew and is in the room.

#include "e2e/WizardUser.h"
#include "support/CompanionServer.h"
#include "support/Station.h"
#include "support/Wait.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <cstdio>

namespace {

using std::chrono::milliseconds;

// For whoever watches; nobody does on a virtual screen.
constexpr milliseconds kPace{70};
constexpr milliseconds kLook{1500};

const QString kRoom = QStringLiteral("== LOBBY ==");

bool fail(const QString &reason)
{
    if (!wasInterrupted())
        std::fprintf(stderr, "%s\n", qPrintable(reason));
    return false;
}

void print(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

/// What is in front, as numbered pictures in the order in which it was seen.
class Album final
{
public:
    Album(const QString &folder, AppDriver &driver, milliseconds look)
        : m_folder(folder)
        , m_driver(driver)
        , m_look(look)
    {
    }
    [[nodiscard]] bool take(const QString &name)
    {
        (void)waitFor([] { return false; }, m_look);
        const QString file = QStringLiteral("%1-%2.png").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(name);
        print(QStringLiteral("  ") + file);
        return m_driver.screenshot(QDir::current().absoluteFilePath(m_folder.filePath(file)));
    }

private:
    QDir m_folder;
    AppDriver &m_driver;
    milliseconds m_look;
    int m_pictures = 0;
};

GatewayEntries entries(const CompanionServer &server)
{
    GatewayEntries entries;
    entries.server = server.host();
    entries.port = server.port();
    entries.room = kRoom;
    entries.callsign = QStringLiteral("YH0GW"); // of the server's sample registry
    entries.gatewayName = QStringLiteral("RF-GW SINAR Contoh");
    entries.frequency = QStringLiteral("145.500 MHz");
    entries.picCallsign = QStringLiteral("YB0ABC");
    entries.email = QStringLiteral("gateway@club.example");
    entries.whatsapp = QStringLiteral("08123456789");
    entries.password = QStringLiteral("first-start");
    return entries;
}

bool lookAtLogin(AppDriver &driver, WizardUser &user, Album &album)
{
    return user.press(QStringLiteral("loginButton")) && driver.waitForWindow(QStringLiteral("Login ke eVOX SINAR")) &&
           album.take(QStringLiteral("login")) && user.press(QStringLiteral("loginCancelButton"));
}

bool watch(const QString &folder)
{
    Display display(Display::Choice::RealIfPresent);
    CompanionServer server({kRoom});
    print(QStringLiteral("Starting the server and a program that has never run ..."));
    if (!display.start() || !server.start())
        return fail(QStringLiteral("The server did not start."));
    Station::Settings settings;
    settings.more = {{QStringLiteral("registry_url"), server.webUrl()}};
    settings.isSetUp = false;
    AppDriver driver;
    Station station(settings, &display);
    station.setDriver(driver);
    Album album(folder, driver, display.isReal() ? kLook : milliseconds(0));
    WizardUser user(driver, WizardUser::Hand::Keyboard);
    user.setPace(display.isReal() ? kPace : milliseconds(0));
    user.onFilled([&album](const QString &page) { return album.take(page); });
    if (!station.start() || !driver.waitForProgram() ||
        !driver.waitForWindow(QStringLiteral("eVOX SINAR - Setup Wizard")))
        return fail(QStringLiteral("The setup wizard did not come."));
    if (!lookAtLogin(driver, user, album) || !user.fillIn(entries(server)) || !user.submit() ||
        !driver.waitForWindow(QStringLiteral("Registrasi Berhasil")) || !album.take(QStringLiteral("registered")))
        return fail(QStringLiteral("The gateway was not registered."));
    if (!driver.key(QStringLiteral("Return")) || !driver.waitForProgram(2) || !station.waitForRoom() ||
        !album.take(QStringLiteral("in-the-room")))
        return fail(QStringLiteral("The new gateway did not come into the room."));
    print(QStringLiteral("YH0GW is registered and in the room. The pictures are in ") +
          QDir::toNativeSeparators(folder));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    unwindOnInterrupt();
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Registers a new gateway with the keyboard alone, and watches."));
    parser.addHelpOption();
    const QCommandLineOption out(QStringLiteral("out"), QStringLiteral("Where the pictures go."),
                                 QStringLiteral("folder"), QStringLiteral("out"));
    parser.addOption(out);
    parser.process(app);
    const QString folder = parser.value(out);
    const bool isShown = QDir().mkpath(folder) ? watch(folder) : fail(QStringLiteral("Cannot create ") + folder);
    return isShown ? 0 : 1;
}
