#include "support/Station.h"

#include "app/Product.h"
#include "support/AppDriver.h"
#include "support/Wait.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

namespace {

constexpr std::chrono::milliseconds kWindow{20000};
constexpr QLatin1String kConfiguration("/config.json");

} // namespace

Station::Station(const Settings &settings, const Display *display)
    : m_settings(settings)
    , m_display(display)
{
}

QString Station::configurationFolder() const
{
    return m_home.filePath(QStringLiteral("share/%1/%2").arg(Product::organisation(), Product::name()));
}

QJsonObject Station::configuredAccount() const
{
    if (!m_settings.isSetUp)
        return {};
    return {{QStringLiteral("server_address"), m_settings.server},
            {QStringLiteral("server_port"), m_settings.port},
            {QStringLiteral("default_room"), m_settings.room},
            {QStringLiteral("callsign"), m_settings.callsign},
            {QStringLiteral("password"), m_settings.password},
            {QStringLiteral("remember_password"), true},
            {QStringLiteral("setup_completed"), true},
            {QStringLiteral("hwid"), QStringLiteral("hwid-of-") + m_settings.callsign}};
}

bool Station::writeConfiguration() const
{
    QJsonObject values = configuredAccount();
    values.insert(QStringLiteral("serial_port"), serialPort());
    values.insert(QStringLiteral("speaker_gain"), 100);
    for (auto it = m_settings.more.begin(); it != m_settings.more.end(); ++it)
        values.insert(it.key(), it.value());
    const QString folder = configurationFolder();
    QFile file(folder + kConfiguration);
    return QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(values).toJson()) > 0;
}

QByteArray Station::configuration() const
{
    QFile file(configurationFolder() + kConfiguration);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QProcessEnvironment Station::environment() const
{
    QProcessEnvironment environment = ChildProcess::plainEnvironment();
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home.filePath(QStringLiteral("share")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_home.filePath(QStringLiteral("cache")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
    environment.insert(QStringLiteral("QT_LOGGING_TO_CONSOLE"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("default.debug=true"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    if (m_display)
        m_display->addTo(environment);
    m_sound.addTo(environment);
    m_radio.addTo(environment);
    if (m_driver)
        m_driver->addTo(environment);
    return environment;
}

bool Station::start()
{
    return writeConfiguration() && m_sound.start() && startProgram(m_program);
}

bool Station::startProgram(ChildProcess &program) const
{
    program.setProcessEnvironment(environment());
    program.setStandardOutputFile(QProcess::nullDevice());
    if (m_driver)
        program.setLogFile(m_home.filePath(QStringLiteral("program.log")));
    return program.begin(QCoreApplication::applicationDirPath() + QLatin1String("/evox-sinar"));
}

bool Station::waitForRoom(int times, std::chrono::milliseconds timeout) const
{
    return m_program.waitForLog(QStringLiteral("[MainWindow] Room key received:"), times, timeout) &&
           m_program.waitForLog(QStringLiteral("[MainWindow] UDP is ready!"), times, timeout);
}

bool Station::setCarrier(bool present)
{
    const QString line =
        QStringLiteral("[Serial] COS changed (debounced): ") + QLatin1String(present ? "true" : "false");
    const int before = m_program.count(line);
    m_radio.set(FakeSerial::Line::Cts, present);
    return m_program.waitForLog(line, before + 1);
}

int Station::decipherFailures() const
{
    const QString beginning = QStringLiteral("[Audio] Decrypt FAILED #");
    return m_program.lastLine(beginning).mid(beginning.size()).trimmed().section(QLatin1Char(' '), 0, 0).toInt();
}

QString Station::window() const
{
    QString window;
    const auto find = [this, &window] {
        window = m_display->windowOf(m_program.processId(), Product::name() + QLatin1String(" v"));
        return !window.isEmpty();
    };
    return m_display && waitFor(find, kWindow) ? window : QString();
}

bool Station::type(const QStringList &keys) const
{
    const QString target = window();
    return !target.isEmpty() && m_display->type(target, keys);
}

bool Station::screenshot(const QString &path) const
{
    const QString target = window();
    return !target.isEmpty() && m_display->screenshot(target, path);
}
