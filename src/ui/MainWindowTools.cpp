// Theme, status bar read-outs, per-user actions, and the records that go on to the panels.

#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "net/protocol/Commands.h"
#include "ui/MainActions.h"
#include "ui/MainWindow.h"
#include "ui/Theme.h"
#include "ui/account/UserInfoDialog.h"
#include "ui/admin/ShownText.h"
#include "ui/room/RoomPanel.h"
#include "ui/status/ControlPanel.h"

#include <QAction>
#include <QApplication>
#include <QDebug>
#include <QLabel>
#include <QStatusBar>

#include <functional>
#include <utility>

namespace {

constexpr int kDefaultBitrate = 32000;
constexpr int kDefaultSampleRate = 48000;
constexpr int kDefaultFrameDuration = 20; // milliseconds
constexpr int kDefaultComplexity = 5;
constexpr int kNoticeTime = 30000; // milliseconds

QString textOf(const QVariantMap &record, const char *key, const char *fallback = "")
{
    const QString text = record.value(QLatin1String(key)).toString();
    return text.isEmpty() ? QString::fromLatin1(fallback) : text;
}

int positiveOr(const QVariantMap &record, const char *key, int fallback)
{
    const int value = record.value(QLatin1String(key)).toInt();
    return value > 0 ? value : fallback;
}

} // namespace

void MainWindow::onToggleTheme()
{
    const bool dark = m_actions->darkTheme->isChecked();
    Config::instance().setValue(QStringLiteral("dark_theme"), dark);
    Config::instance().save();
    Theme::apply(*qApp, dark);
    showTheme(dark);
}

void MainWindow::showTheme(bool dark)
{
    m_actions->showTheme(dark);
    m_roomPanel->applyTheme(dark);
    m_controlPanel->applyTheme(dark);
}

void MainWindow::onPingUpdated(float latencyMs)
{
    m_pingLabel->setText(Theme::pingText(latencyMs));
}

void MainWindow::onLicenseWarning(const QString &message)
{
    m_permitWarned = true;
    showStatus(QStringLiteral("[!] ") + message);
    statusBar()->setStyleSheet(
        QStringLiteral("QStatusBar { background-color: #FFF3E0; color: #E65100; font-weight: bold; padding: 4px; }"));
}

/// The warning of a login comes before its success.
void MainWindow::endOldPermitWarning()
{
    if (!std::exchange(m_permitWarned, false))
        statusBar()->setStyleSheet({});
}

void MainWindow::onUserAction(const QString &action, const QString &callsign, int userId, const QString &room)
{
    qDebug().noquote() << "[RoomPanel] User action:" << action;
    const QHash<QString, std::function<void()>> effects{
        {QStringLiteral("approve"), [&] { m_client->approveUser(userId); }},
        {QStringLiteral("revoke"), [&] { m_client->unapproveUser(userId); }},
        {QStringLiteral("kick"), [&] { m_client->sendCommand(Commands::kick(userId)); }},
        {QStringLiteral("ban"), [&] { m_client->sendCommand(Commands::ban(userId)); }},
        {QStringLiteral("mute"), [&] { muteUser(callsign, userId, true); }},
        {QStringLiteral("unmute"), [&] { muteUser(callsign, userId, false); }},
        {QStringLiteral("move"), [&] { moveUser(callsign, userId, room); }},
        {QStringLiteral("info"), [&] { requestUserInfo(callsign); }},
        {QStringLiteral("self_mute_mic"), [&] { m_actions->toolbarMicrophone->toggle(); }},
        {QStringLiteral("self_mute_speaker"), [&] { m_actions->toolbarSpeaker->toggle(); }},
    };
    if (const auto effect = effects.value(action))
        effect();
}

void MainWindow::muteUser(const QString &callsign, int userId, bool muted)
{
    qDebug().noquote() << (muted ? "[MainWindow] Mute user:" : "[MainWindow] Unmute user:") << callsign;
    m_client->muteUser(userId, muted ? 1 : 0);
    m_roomPanel->setUserMuted(callsign, muted); // keeps showing when the server sends the list again
}

void MainWindow::moveUser(const QString &callsign, int userId, const QString &room)
{
    if (callsign == Config::instance().callsign()) {
        m_client->joinRoom(room);
        showStatus(QStringLiteral("Moving to %1...").arg(room));
    } else {
        m_client->sendCommand(Commands::move(userId, room));
        showStatus(QStringLiteral("Moving %1 to %2...").arg(callsign, room));
    }
}

void MainWindow::requestUserInfo(const QString &callsign)
{
    m_infoRequest = callsign;
    m_client->sendCommand(Commands::userInfo(callsign));
    showStatus(QStringLiteral("Memuat info %1...").arg(callsign));
}

/// A record that does not name its station is taken for the answer.
void MainWindow::onUserInfoReceived(const QVariantMap &info)
{
    const QString key = QStringLiteral("callsign");
    QVariantMap record = info;
    if (record.value(key).toString().isEmpty())
        record.insert(key, m_infoRequest);
    if (m_infoRequest.isEmpty() || record.value(key).toString().compare(m_infoRequest, Qt::CaseInsensitive) != 0)
        return;
    m_infoRequest.clear();
    statusBar()->clearMessage();
    auto *dialog = new UserInfoDialog(record, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainWindow::onServerInfo(const QVariantMap &info)
{
    m_serverInfo = info;
    const auto number = [&info](const char *key) { return info.value(QLatin1String(key)).toInt(); };
    m_controlPanel->updateServerInfo(textOf(info, "audio_codec", "Opus"), textOf(info, "audio_preset", "standard"),
                                     number("audio_bitrate"), number("audio_sample_rate"), textOf(info, "encryption"),
                                     number("online_users"), number("online_gateways"), number("online_admins"),
                                     number("total_rooms"));
}

void MainWindow::onAudioQuality(const QVariantMap &quality)
{
    m_engine->applyQuality(positiveOr(quality, "sample_rate", kDefaultSampleRate),
                           positiveOr(quality, "bitrate", kDefaultBitrate),
                           positiveOr(quality, "complexity", kDefaultComplexity),
                           positiveOr(quality, "frame_duration", kDefaultFrameDuration));
}

void MainWindow::onGatewayInfo(const QVariantMap &info)
{
    m_controlPanel->updateGatewayInfo(textOf(info, "gateway_name"), textOf(info, "callsign"), textOf(info, "frequency"),
                                      textOf(info, "location"), textOf(info, "responsible_name"),
                                      textOf(info, "responsible_callsign"), textOf(info, "whatsapp"));
}

void MainWindow::onAllUsers(const QList<QVariantMap> &users)
{
    qDebug() << "[MainWindow] allUsersReceived:" << users.size();
    const QString own = Config::instance().callsign();
    for (const QVariantMap &user : users) {
        const QString callsign = textOf(user, "callsign");
        qDebug().noquote() << "[MainWindow] Checking:" << callsign;
        if (callsign != own)
            continue;
        qDebug() << "[MainWindow] Found myself!";
        m_ownProfile = user;
        onGatewayInfo(user);
    }
}

/// The account's own record comes with every login, to members who may not see the list of all users as well.
void MainWindow::onUserProfile(const QVariantMap &profile)
{
    if (textOf(profile, "callsign") != Config::instance().callsign())
        return;
    m_ownProfile = profile;
    onGatewayInfo(profile);
    // The right may end while the connection lasts; it begins with a login only.
    if (!profile.value(QStringLiteral("is_admin"), true).toBool()) {
        m_actions->setAdmin(false);
        m_roomPanel->setAdmin(false);
    }
}

void MainWindow::onAdminNotification(const QString &type, const QString &message)
{
    if (type != QLatin1String("HWID_RESET_REQUEST"))
        return;
    const QString callsign = shownText(message.section(QLatin1Char(':'), 0, 0));
    showStatus(QStringLiteral("HWID Reset Request dari: %1 (lihat tab HWID Requests)").arg(callsign), kNoticeTime);
}
