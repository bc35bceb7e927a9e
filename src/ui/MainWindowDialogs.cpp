// The dialogs of the menus: settings, serial port, profile and account, help.

#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/LogFile.h"
#include "audio/AudioEngine.h"
#include "audio/OpusLibrary.h"
#include "audio/SodiumLibrary.h"
#include "net/TcpClient.h"
#include "net/protocol/Commands.h"
#include "radio/SerialManager.h"
#include "ui/AboutDialog.h"
#include "ui/MainActions.h"
#include "ui/MainWindow.h"
#include "ui/Prompts.h"
#include "ui/UpdateCheck.h"
#include "ui/account/ChangePasswordDialog.h"
#include "ui/account/EditProfileDialog.h"
#include "ui/account/ProfileDialog.h"
#include "ui/admin/AdminPanel.h"
#include "ui/settings/SerialConfigDialog.h"
#include "ui/settings/SettingsDialog.h"

#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QPointer>
#include <QUrl>

#include <utility>

namespace {

constexpr int kFullGain = 100; // percent
constexpr int kBriefly = 3000; // milliseconds of a status text

/// Shows a dialog that deletes itself; the event loop goes on.
void open(QDialog *dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

int userIdOf(const QVariantMap &record)
{
    const QString key = QStringLiteral("user_id");
    return (record.contains(key) ? record.value(key) : record.value(QStringLiteral("id"))).toInt();
}

/// What the configuration knows of the account, for as long as the server has told nothing: an empty form would wipe
/// it out.
QVariantMap configuredProfile()
{
    QVariantMap profile;
    for (const char *key :
         {"callsign", "gateway_name", "frequency", "location", "name", "responsible_callsign", "email", "whatsapp"})
        profile.insert(QLatin1String(key), Config::instance().value(QLatin1String(key)).toString());
    return profile;
}

} // namespace

void MainWindow::onSettings()
{
    auto *dialog = new SettingsDialog(m_prompts, this);
    connect(dialog, &SettingsDialog::settingsApplied, this, &MainWindow::applySettings);
    connect(m_serial, &SerialManager::cosChanged, dialog, &SettingsDialog::setCosActive);
    dialog->setCosActive(m_serial->isCosActive());
    open(dialog);
}

/// Beside the window, not over it: an administrator watches both.
void MainWindow::showAdminPanel()
{
    if (!m_client->isAdmin())
        return;
    if (!m_adminPanel) {
        m_adminPanel = new AdminPanel(m_client, m_prompts, this, m_hwidRequests);
        m_adminPanel->setAttribute(Qt::WA_DeleteOnClose);
        m_adminPanel->showServerInfo(m_serverInfo);
    }
    m_adminPanel->show();
    m_adminPanel->raise();
    m_adminPanel->activateWindow();
}

/// Gains and COS logic change at once; devices, port and pins when streams and port are opened next.
void MainWindow::applySettings(const Settings &settings)
{
    const int micGain = qBound(0, settings.micGain, kFullGain);
    const int speakerGain = qBound(0, settings.speakerGain, kFullGain);
    m_engine->setMicGain(micGain);
    m_engine->setSpeakerGain(speakerGain);
    qDebug() << "[Settings] Gain applied: mic=" << micGain << "speaker=" << speakerGain;
    StoredSettings::write(settings);
    chooseSoundDevices();
    m_serial->setCosLogicHigh(settings.cosLogicHigh);
    qDebug() << "[Serial] COS logic updated:" << (settings.cosLogicHigh ? "HIGH" : "LOW");
    showStatus(QStringLiteral("Settings applied"), kBriefly);
}

/// Empty when the server has not told it yet, or told that of another callsign.
QVariantMap MainWindow::ownProfile() const
{
    const bool isOwn = m_ownProfile.value(QStringLiteral("callsign")).toString() == Config::instance().callsign();
    return isOwn ? m_ownProfile : QVariantMap();
}

void MainWindow::onViewProfile()
{
    if (const QVariantMap profile = ownProfile(); !profile.isEmpty()) {
        const Config &config = Config::instance();
        open(new ProfileDialog(profile, {config.hwid(), config.autoLogin(), config.rememberPassword()}, this));
    } else if (m_client->isConnected()) {
        m_client->sendCommand(Commands::profile());
        showStatus(QStringLiteral("Memuat profil..."), kBriefly);
    } else {
        m_prompts.warning(QStringLiteral("Profile"),
                          QStringLiteral("Data profil tidak tersedia.\nPastikan Anda terhubung ke server."));
    }
}

void MainWindow::onEditProfile()
{
    const QVariantMap profile = ownProfile();
    auto *dialog = new EditProfileDialog(profile.isEmpty() ? configuredProfile() : profile, this);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { updateProfile(dialog->profile()); });
    open(dialog);
}

/// The server's answer is not awaited; e-mail and the person's callsign are not kept here.
void MainWindow::updateProfile(const Commands::OwnProfile &profile)
{
    Config &config = Config::instance();
    config.setValue(QStringLiteral("name"), profile.picName);
    config.setValue(QStringLiteral("frequency"), profile.frequency);
    config.setValue(QStringLiteral("location"), profile.location);
    config.setValue(QStringLiteral("whatsapp"), profile.whatsapp);
    config.save();
    if (const int id = userIdOf(ownProfile()); id > 0)
        m_client->sendCommand(Commands::updateOwnProfile(id, profile));
    m_prompts.information(QStringLiteral("Sukses"), QStringLiteral("Profil berhasil diperbarui!"));
}

void MainWindow::onChangePassword()
{
    auto *dialog = new ChangePasswordDialog([this] { return m_client->isConnected(); }, this);
    connect(dialog, &ChangePasswordDialog::changeRequested, this, &MainWindow::requestPasswordChange);
    connect(m_client, &TcpClient::userPasswordChanged, dialog, &ChangePasswordDialog::onPasswordChanged);
    connect(dialog, &ChangePasswordDialog::changed, this, [this, dialog] {
        const QPointer<QDialog> self(dialog);
        m_prompts.information(QStringLiteral("Sukses"), QStringLiteral("Password berhasil diubah!"));
        if (self)
            self->accept();
    });
    m_passwordDialog = dialog;
    open(dialog);
}

/// The window keeps the new password, as the dialog may be closed before the server answers.
void MainWindow::requestPasswordChange(const QString &oldPassword, const QString &newPassword)
{
    m_requestedPassword = newPassword;
    m_client->sendCommand(Commands::changePassword(oldPassword, newPassword));
}

/// Told of every change, also of one that the dialog has asked for and tells of itself: the operator sees two boxes.
void MainWindow::onPasswordChanged(bool success, const QString &message)
{
    const QString requested = std::exchange(m_requestedPassword, {});
    if (success && !requested.isEmpty()) {
        // Before the box, which may stand for hours: a reconnect under it logs in with what is stored.
        Config::instance().setPassword(requested);
        Config::instance().save();
    }
    if (success)
        m_prompts.information(QStringLiteral("Password"), message);
    else
        m_prompts.warning(QStringLiteral("Gagal Ubah Password"), message);
}

/// Without a connection there will be no answer. One that has come is left to its box: the dialog is told after it.
void MainWindow::forgetPasswordRequest()
{
    if (m_requestedPassword.isEmpty())
        return;
    m_requestedPassword.clear();
    if (m_passwordDialog)
        m_passwordDialog->onPasswordChanged(false, QStringLiteral("Tidak terhubung ke server!"));
}

void MainWindow::onSerialConfig()
{
    auto *dialog = new SerialConfigDialog(this);
    connect(dialog, &SerialConfigDialog::saved, this, &MainWindow::onSerialConfigured);
    open(dialog);
}

void MainWindow::onSerialConfigured(const QString &port)
{
    m_actions->showSerialConfigured(port);
    refreshReadiness();
    m_prompts.information(QStringLiteral("Success"), QStringLiteral("Serial configuration saved."));
}

void MainWindow::onResetHwid()
{
    const QPointer<MainWindow> self(this);
    const bool wanted = m_prompts.confirm(QStringLiteral("Reset HWID"),
                                          QStringLiteral("Kirim permintaan Reset Hardware ID ke administrator?\n\n"
                                                         "Administrator perlu menyetujui permintaan ini sebelum\n"
                                                         "Anda bisa login dari perangkat baru."));
    if (!self || !wanted)
        return;
    if (!m_client->isConnected()) {
        m_prompts.warning(QStringLiteral("Tidak Terhubung"),
                          QStringLiteral("Anda harus terhubung ke server untuk mengirim permintaan reset HWID."));
        return;
    }
    m_client->sendCommand(Commands::requestDeviceReset(Config::instance().callsign()));
    m_prompts.information(QStringLiteral("Permintaan Terkirim"),
                          QStringLiteral("Permintaan reset HWID telah dikirim ke administrator.\n\n"
                                         "Hubungi administrator untuk mempercepat proses.\n"
                                         "Setelah disetujui, restart aplikasi dan login ulang."));
}

void MainWindow::onAbout()
{
    open(new AboutDialog(
        {QString::fromLatin1(qVersion()), OpusLibrary::instance().version(), SodiumLibrary::instance().version()},
        this));
}

void MainWindow::onCheckUpdate()
{
    m_updateCheck->check();
}

void MainWindow::onDocumentation()
{
    openWebPage(QStringLiteral("/dokumentasi/"));
}

void MainWindow::onTutorial()
{
    openWebPage(QStringLiteral("/tutorial/"));
}

void MainWindow::onOpenLogFolder()
{
    QDir().mkpath(LogFile::folder());
    QDesktopServices::openUrl(QUrl::fromLocalFile(LogFile::folder()));
}

/// A page of the project's web site, and nothing that is not one.
void MainWindow::openWebPage(const QString &path)
{
    const QUrl url(m_endpoints.webUrl + path, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (isWeb && !url.host().isEmpty())
        QDesktopServices::openUrl(url);
    else
        qWarning().noquote() << "[MainWindow] Not a web page:" << url.toString();
}
