#pragma once

#include "net/TcpClient.h"
#include "support/FakeServer.h"

#include <QAction>
#include <QApplication>
#include <QFont>
#include <QList>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>
#include <QVariantMap>
#include <QWidget>

/// Records of registered users as the server tells them, and what the tests of the administrator's tabs share.
namespace AdminUsers {

using Users = QList<QVariantMap>;

/// A gateway in use. More keys, or other values, by the second argument.
inline QVariantMap user(int id, const QVariantMap &more = {})
{
    QVariantMap record{{QStringLiteral("id"), id},
                       {QStringLiteral("callsign"), QStringLiteral("YH%1AB").arg(id)},
                       {QStringLiteral("name"), QStringLiteral("Sari")},
                       {QStringLiteral("gateway_name"), QStringLiteral("Bukit %1").arg(id)},
                       {QStringLiteral("responsible_name"), QStringLiteral("Budi")},
                       {QStringLiteral("responsible_callsign"), QStringLiteral("YB0ABC")},
                       {QStringLiteral("frequency"), QStringLiteral("145.500 MHz")},
                       {QStringLiteral("location"), QStringLiteral("Medan")},
                       {QStringLiteral("email"), QStringLiteral("yh@example.org")},
                       {QStringLiteral("whatsapp"), QStringLiteral("0812")},
                       {QStringLiteral("status"), QStringLiteral("active")},
                       {QStringLiteral("approved"), true},
                       {QStringLiteral("is_admin"), false},
                       {QStringLiteral("license_expiry"), QStringLiteral("2031-12-30")},
                       {QStringLiteral("registered_hwid"), QStringLiteral("ABC-1")},
                       {QStringLiteral("last_login"), QStringLiteral("2026-11-21T08:00:00")}};
    for (auto it = more.cbegin(); it != more.cend(); ++it)
        record.insert(it.key(), it.value());
    return record;
}

inline Users users(int first, int last)
{
    Users result;
    for (int id = first; id <= last; ++id)
        result += user(id);
    return result;
}

/// Notes every line that the widget asks for.
template<typename Widget> void note(Widget &widget, QStringList &lines)
{
    QObject::connect(&widget, &Widget::commandRequested, &widget, [&lines](const QString &line) { lines += line; });
}

inline QAction *action(const QWidget &widget, const char *name)
{
    return widget.findChild<QAction *>(QLatin1String(name));
}

/// A desktop's font; the offscreen platform's own is a large one.
inline void useDesktopFont()
{
    QApplication::setFont(QFont(QApplication::font().family(), 9));
}

/// Connects them; false when they did not come together.
[[nodiscard]] inline bool connectToServer(TcpClient *client, FakeServer *server)
{
    const QSignalSpy connected(client, &TcpClient::connected);
    client->connectToServer(server->host(), server->port());
    return QTest::qWaitFor([&connected] { return !connected.isEmpty(); }) && server->waitForClient();
}

/// What the client has sent so far, up to a line of the test's own that marks the end; without its heart-beats.
inline QStringList sentBy(TcpClient *client, FakeServer *server)
{
    const QString end = QStringLiteral("END");
    client->sendCommand(end);
    if (!server->waitForLine(end))
        return {QStringLiteral("the end did not arrive")};
    QStringList lines = server->lines();
    lines.removeAll(end);
    lines.removeAll(QStringLiteral("PING"));
    server->clear();
    return lines;
}

} // namespace AdminUsers
