#include "support/Display.h"

#include "support/Wait.h"

#include <QFile>

namespace {

constexpr std::chrono::milliseconds kStart{20000};

} // namespace

Display::Display(Choice choice)
    : m_choice(choice)
{
}

bool Display::start()
{
    if (m_choice == Choice::RealIfPresent && qEnvironmentVariableIsSet("DISPLAY")) {
        m_name = qEnvironmentVariable("DISPLAY");
        return true;
    }
    if (!m_server.begin(QStringLiteral("Xvfb"),
                        {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                         QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"),
                         QStringLiteral("tcp"), QStringLiteral("-noreset")}))
        return false;
    QByteArray number;
    const auto ready = [this, &number] {
        number += m_server.readAllStandardOutput();
        return number.endsWith('\n') || !m_server.isRunning();
    };
    if (!waitFor(ready, kStart) || !number.endsWith('\n')) {
        m_server.printLog();
        return false;
    }
    m_name = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return true;
}

void Display::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("DISPLAY"), m_name);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
}

QProcessEnvironment Display::environment() const
{
    QProcessEnvironment environment = ChildProcess::plainEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_name);
    return environment;
}

QString Display::windowOf(qint64 process, const QString &title) const
{
    const QByteArray windows =
        ChildProcess::outputOf(QStringLiteral("xdotool"),
                               {QStringLiteral("search"), QStringLiteral("--all"), QStringLiteral("--onlyvisible"),
                                QStringLiteral("--pid"), QString::number(process), QStringLiteral("--name"), title},
                               environment());
    return QString::fromLatin1(windows).section(QLatin1Char('\n'), 0, 0).trimmed();
}

bool Display::type(const QString &window, const QStringList &keys) const
{
    // Without a window manager nobody else gives the window the keyboard.
    return !ChildProcess::outputOf(QStringLiteral("xdotool"),
                                   QStringList{QStringLiteral("windowfocus"), QStringLiteral("--sync"), window,
                                               QStringLiteral("key"), QStringLiteral("--delay"),
                                               QStringLiteral("150")} +
                                       keys,
                                   environment())
                .isNull();
}

bool Display::screenshot(const QString &window, const QString &path) const
{
    return !ChildProcess::outputOf(QStringLiteral("import"), {QStringLiteral("-window"), window, path}, environment())
                .isNull() &&
           QFile::exists(path);
}
