// The way to a login: prompts, refusals and their answers.

#include "app/Config.h"
#include "gateway/LoginFlow.h"
#include "net/TcpClient.h"
#include "net/protocol/Commands.h"
#include "ui/MainWindow.h"
#include "ui/Prompts.h"

#include <QCoreApplication>
#include <QDebug>
#include <QPointer>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kQuitDelay{100};

} // namespace

void MainWindow::promptForLogin()
{
    const Config &config = Config::instance();
    switch (LoginFlow::firstStep({config.callsign(), config.password(), config.rememberPassword()})) {
    case LoginFlow::Step::LogIn:
        sendLogin(config.callsign().toUpper(), config.password());
        showStatus(QStringLiteral("Auto-login as ") + config.callsign().toUpper());
        break;
    case LoginFlow::Step::AskCallsign:
        if (askCallsign())
            askPassword();
        break;
    case LoginFlow::Step::AskMissingPassword: askMissingPassword(); break;
    case LoginFlow::Step::ConfirmPassword: askPassword(); break;
    }
}

/// True when a callsign was entered and this window is still there.
bool MainWindow::askCallsign()
{
    const QPointer<MainWindow> self(this);
    const auto callsign = m_prompts.text(QStringLiteral("Login"), QStringLiteral("Callsign:"));
    if (!self || !callsign || callsign->isEmpty())
        return false;
    Config::instance().setCallsign(callsign->toUpper());
    return true;
}

void MainWindow::askMissingPassword()
{
    Config &config = Config::instance();
    const QString callsign = config.callsign();
    const QPointer<MainWindow> self(this);
    const auto password = m_prompts.password(QStringLiteral("Login"), QStringLiteral("Password for %1:").arg(callsign));
    if (!self || !password || password->isEmpty())
        return;
    if (config.rememberPassword())
        config.setPassword(*password);
    config.save();
    if (!m_client->isConnected())
        return;
    sendLogin(callsign.toUpper(), *password);
    showStatus(QStringLiteral("Logging in as ") + callsign.toUpper());
}

void MainWindow::askPassword()
{
    Config &config = Config::instance();
    const QString callsign = config.callsign();
    const QPointer<MainWindow> self(this);
    const auto password = m_prompts.password(QStringLiteral("Login"), QStringLiteral("Password for %1:").arg(callsign));
    if (!self || !password)
        return;
    config.setPassword(config.rememberPassword() ? *password : QString());
    if (config.rememberPassword())
        config.setCallsign(callsign);
    config.save();
    sendLogin(callsign, *password);
    refreshReadiness();
}

void MainWindow::sendLogin(const QString &callsign, const QString &password)
{
    m_client->login(callsign, password, Config::instance().hwid());
}

void MainWindow::onLoginResult(bool success, const QString &message)
{
    if (success)
        onLoginSucceeded();
    else
        reportLoginFailure(message);
}

void MainWindow::reportLoginFailure(const QString &message)
{
    showStatus(QStringLiteral("Login failed: ") + message);
    qDebug().noquote() << "[MainWindow] Login failed:" << message;
    switch (LoginFlow::classifyFailure(message)) {
    case LoginFlow::Failure::WrongPassword: askPasswordAgain(); break;
    case LoginFlow::Failure::Banned:
        m_prompts.critical(QStringLiteral("Akun Dibanned"),
                           QStringLiteral("Akun Anda telah dibanned oleh administrator.\n\n"
                                          "Hubungi administrator untuk informasi lebih lanjut."));
        break;
    case LoginFlow::Failure::Suspended:
        m_prompts.warning(QStringLiteral("Akun Disuspend"),
                          QStringLiteral("Akun Anda sedang disuspend.\n\n"
                                         "Hubungi administrator untuk mengaktifkan kembali."));
        break;
    case LoginFlow::Failure::UnknownDevice: offerDeviceReset(); break;
    case LoginFlow::Failure::UnknownCallsign:
        m_prompts.warning(QStringLiteral("Callsign Tidak Ditemukan"),
                          QStringLiteral("Callsign tidak terdaftar di server.\n\n"
                                         "Pastikan callsign sudah benar atau daftarkan\n"
                                         "gateway Anda terlebih dahulu."));
        break;
    case LoginFlow::Failure::ActiveElsewhere:
        m_prompts.warning(QStringLiteral("Sesi Aktif di Perangkat Lain"),
                          QStringLiteral("Akun Anda sedang digunakan di perangkat lain.\n\n"
                                         "Logout dari perangkat tersebut dan coba lagi."));
        break;
    case LoginFlow::Failure::Other:
        m_prompts.warning(QStringLiteral("Login Gagal"), QStringLiteral("Gagal login ke server.\n\n") + message);
        break;
    }
}

void MainWindow::offerDeviceReset()
{
    const QPointer<MainWindow> self(this);
    const bool wanted = m_prompts.offer(QStringLiteral("Perangkat Tidak Dikenal"),
                                        QStringLiteral("Perangkat ini tidak terdaftar untuk akun Anda.\n\n"
                                                       "Kemungkinan Anda baru pindah ke PC/laptop baru.\n\n"
                                                       "Kirim permintaan Reset HWID ke administrator sekarang?"));
    if (!self || !wanted)
        return;
    const QString callsign = Config::instance().callsign();
    if (callsign.isEmpty() || !m_client->isConnected())
        return;
    m_client->sendCommand(Commands::requestDeviceReset(callsign));
    m_prompts.information(QStringLiteral("Permintaan Terkirim"),
                          QStringLiteral("Permintaan reset HWID telah dikirim.\n"
                                         "Hubungi administrator untuk mempercepat proses."));
}

void MainWindow::askPasswordAgain()
{
    const QPointer<MainWindow> self(this);
    while (!m_retryPromptOpen) {
        m_retryPromptOpen = true;
        const QString callsign = Config::instance().callsign();
        if (!LoginFlow::mayTryAgain(++m_wrongPasswords)) {
            giveUpLogin();
            return;
        }
        const QString text =
            QStringLiteral("Password untuk %1 salah.\n\n"
                           "Silakan masukkan password yang benar.\n"
                           "(Percobaan %2 dari %3)")
                .arg(callsign, QString::number(m_wrongPasswords), QString::number(LoginFlow::kPasswordAttempts));
        const auto password = m_prompts.password(QStringLiteral("Password Salah"), text);
        if (!self)
            return;
        if (!password) {
            cancelRetry();
            return;
        }
        if (!password->isEmpty()) {
            Config::instance().setPassword(*password); // even where it is not to be remembered
            Config::instance().save();
            showStatus(QStringLiteral("Mencoba login ulang..."));
            m_retryPromptOpen = false;
            sendLogin(callsign.toUpper(), *password);
            return;
        }
        m_prompts.warning(QStringLiteral("Error"), QStringLiteral("Password tidak boleh kosong."));
        if (!self)
            return;
        --m_wrongPasswords; // an empty entry is no attempt
        m_retryPromptOpen = false;
    }
}

void MainWindow::cancelRetry()
{
    const QPointer<MainWindow> self(this);
    const bool quits =
        m_prompts.confirm(QStringLiteral("Konfirmasi"), QStringLiteral("Apakah Anda yakin ingin membatalkan login?\n\n"
                                                                       "Aplikasi akan ditutup."));
    // On No the guard stays set on purpose: whoever declines is not asked again.
    if (!self || !quits)
        return;
    m_retryPromptOpen = false;
    QCoreApplication::quit();
}

void MainWindow::giveUpLogin()
{
    const QPointer<MainWindow> self(this);
    m_prompts.critical(QStringLiteral("Login Gagal"),
                       QStringLiteral("Anda telah salah memasukkan password sebanyak %1 kali.\n\n"
                                      "Aplikasi akan ditutup.")
                           .arg(LoginFlow::kPasswordAttempts));
    if (!self)
        return;
    m_wrongPasswords = 0;
    m_retryPromptOpen = false;
    QTimer::singleShot(kQuitDelay, qApp, &QCoreApplication::quit);
}
