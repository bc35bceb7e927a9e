#pragma once

#include "app/Endpoints.h"
#include "support/FakeServer.h"
#include "support/ScriptedPrompts.h"
#include "support/TestConfig.h"
#include "ui/MainWindow.h"

#include <QAction>
#include <QJsonObject>
#include <QStatusBar>
#include <QStringList>
#include <QTimer>

#include <memory>

/// A main window against a scripted server, with an answering operator and a configuration of its own. The window's
/// slow timers are made fast unless a test asks for the real ones.
class WindowRig final
{
public:
    static const QString kCall;
    static const QString kPassword;

    /// Values override a finished configuration; a null value removes a key.
    explicit WindowRig(const QJsonObject &values = {});
    WindowRig(const WindowRig &) = delete;
    WindowRig &operator=(const WindowRig &) = delete;

    /// Makes the window, which connects by itself.
    void open();
    /// open(), and the server has seen the login.
    [[nodiscard]] bool openAndLogIn(bool admin = false);
    /// openAndLogIn(), and the window is in the room, with UDP ready.
    [[nodiscard]] bool openInRoom(const QString &room = QStringLiteral("Lobby"), bool admin = false);

    [[nodiscard]] MainWindow &window() const { return *m_window; }
    void closeWindow() { m_window.reset(); }
    [[nodiscard]] QAction *action(const char *name) const;
    [[nodiscard]] QTimer *timer(const char *name) const;
    template<typename Service> [[nodiscard]] Service *service() const { return m_window->findChild<Service *>(); }

    [[nodiscard]] QString status() const { return m_window->statusBar()->currentMessage(); }
    /// Every status text so far, each with its display time: "text (ms)".
    [[nodiscard]] const QStringList &statuses() const { return m_statuses; }
    [[nodiscard]] bool showed(const QString &text, int milliseconds = 0) const;

    [[nodiscard]] static QString loginOk(bool admin = false, int userId = 42);
    /// A room key of this many bytes, as the server writes it.
    [[nodiscard]] static QString key(int bytes = 32, char fill = 'k');

    FakeServer server;
    TestConfig config;
    ScriptedPrompts prompts;
    Endpoints endpoints{QStringLiteral("radio.example"), {}, {}, {}};

private:
    [[nodiscard]] static QJsonObject finished(const FakeServer &server, const QJsonObject &values);
    void recordStatus();

    std::unique_ptr<MainWindow> m_window;
    QStringList m_statuses;
};
