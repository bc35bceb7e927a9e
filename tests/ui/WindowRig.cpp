#include "WindowRig.h"

#include <QTest>

const QString WindowRig::kCall = QStringLiteral("YB0ABC");
const QString WindowRig::kPassword = QStringLiteral("secret-word");

WindowRig::WindowRig(const QJsonObject &values)
    : config(finished(server, values))
{
}

QJsonObject WindowRig::finished(const FakeServer &server, const QJsonObject &values)
{
    QJsonObject all{{QStringLiteral("server_address"), server.host()},
                    {QStringLiteral("server_port"), server.port()},
                    {QStringLiteral("setup_completed"), true},
                    {QStringLiteral("callsign"), kCall},
                    {QStringLiteral("password"), kPassword},
                    {QStringLiteral("remember_password"), true},
                    {QStringLiteral("hwid"), QStringLiteral("0123456789abcdef")}};
    for (auto it = values.begin(); it != values.end(); ++it) {
        if (it.value().isNull())
            all.remove(it.key());
        else
            all.insert(it.key(), it.value());
    }
    return all;
}

void WindowRig::open()
{
    m_window = std::make_unique<MainWindow>(endpoints, prompts);
    QObject::connect(m_window->statusBar(), &QStatusBar::messageChanged, m_window.get(), [this] { recordStatus(); });
    for (const char *name : {"reconnectTimer", "reconnectArmTimer", "udpRetryTimer"})
        timer(name)->setInterval(20);
    m_window->show();
}

void WindowRig::recordStatus()
{
    QStatusBar *bar = m_window->statusBar();
    if (bar->currentMessage().isEmpty())
        return;
    const auto *timer = bar->findChild<QTimer *>();
    m_statuses.append(QStringLiteral("%1 (%2)").arg(bar->currentMessage()).arg(timer ? timer->interval() : 0));
}

bool WindowRig::showed(const QString &text, int milliseconds) const
{
    return m_statuses.contains(QStringLiteral("%1 (%2)").arg(text).arg(milliseconds));
}

bool WindowRig::openAndLogIn(bool admin)
{
    server.answer(QStringLiteral("LOGIN "), {loginOk(admin)});
    open();
    return server.waitForLine(QStringLiteral("USER_GET_PROFILE"));
}

bool WindowRig::openInRoom(const QString &room, bool admin)
{
    server.answer(QStringLiteral("JOIN "), {QStringLiteral("JOIN_OK|%1|%2").arg(room, key())});
    // The room's key announces the audio link again: the window is at rest when the answer to that has been shown.
    return openAndLogIn(admin) && server.waitForLine(QStringLiteral("JOIN ")) &&
           QTest::qWaitFor([this] { return action("toolbarLeave")->isVisible(); }) &&
           QTest::qWaitFor([this] { return status() == QStringLiteral("UDP audio ready"); });
}

QAction *WindowRig::action(const char *name) const
{
    return m_window->findChild<QAction *>(QLatin1String(name));
}

QTimer *WindowRig::timer(const char *name) const
{
    return m_window->findChild<QTimer *>(QLatin1String(name));
}

QString WindowRig::loginOk(bool admin, int userId)
{
    return QStringLiteral("LOGIN_OK|token-0123456789||%1|%2||")
        .arg(admin ? QStringLiteral("True") : QStringLiteral("False"))
        .arg(userId);
}

QString WindowRig::key(int bytes, char fill)
{
    return QString::fromLatin1(QByteArray(bytes, fill).toBase64());
}
