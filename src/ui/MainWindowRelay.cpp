// The radio: carrier, keying, mutes, and audio in both directions.

#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "gateway/RelayRules.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"
#include "net/protocol/Commands.h"
#include "radio/SerialManager.h"
#include "ui/MainActions.h"
#include "ui/MainWindow.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserWidget.h"
#include "ui/status/ControlPanel.h"

#include <QAction>
#include <QDebug>

namespace {

constexpr int kNonceSize = 24;
constexpr int kShownBytes = 40;
constexpr int kShownPlainBytes = 20;
constexpr int kLoggedSentFrames = 10;
constexpr int kLoggedTcpFrames = 20;
constexpr int kLoggedUdpFrames = 5;
constexpr int kReadably = 5000; // milliseconds
constexpr int kLong = 10000;    // milliseconds

// Process-wide, never reset: the lines that they limit describe the first frames after the program's start. A gateway
// runs for years, in which 50 frames a second are too many for an int.
qint64 s_encodedFrames = 0;
qint64 s_tcpFrames = 0;
qint64 s_udpFrames = 0;

QString hex(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

void logSentFrame(const QByteArray &data)
{
    qDebug() << "[TX] Packet #" << s_encodedFrames << "size:" << data.size();
    qDebug().noquote() << "[TX] Raw hex (first 40):" << hex(data.left(kShownBytes));
    if (data.size() < kNonceSize)
        return;
    qDebug().noquote() << "[TX] Nonce (24):" << hex(data.left(kNonceSize));
    qDebug() << "[TX] Ciphertext size:" << data.size() - kNonceSize;
}

void logTcpFrame(const QByteArray &data, uint userId, const AudioEngine &engine)
{
    qDebug() << "[RX] Packet #" << s_tcpFrames << "from user:" << userId << "size:" << data.size();
    qDebug().noquote() << "[RX] Raw hex (first 40 bytes):" << hex(data.left(kShownBytes));
    if (data.size() < kNonceSize)
        return;
    qDebug().noquote() << "[RX] Nonce (24 bytes):" << hex(data.left(kNonceSize));
    qDebug() << "[RX] Ciphertext size:" << data.size() - kNonceSize;
    bool attempted = false;
    const auto plain = engine.tryOpen(data, &attempted);
    if (!attempted)
        return;
    if (!plain) {
        qDebug() << "[RX] Decrypt FAILED - wrong key or format";
        return;
    }
    qDebug() << "[RX] Decrypted OK, size:" << plain->size();
    qDebug().noquote() << "[RX] Decrypted hex (first 20):" << hex(plain->left(kShownPlainBytes));
    if (plain->size() >= 2)
        qDebug() << "[RX] Opus header byte:" << static_cast<quint8>(plain->at(0));
}

} // namespace

void MainWindow::onCosChanged(bool active)
{
    // The indicators show the radio's carrier, also when nothing is sent because of it.
    m_actions->showCarrier(active);
    m_controlPanel->setTransmitIndicator(active);
    const RelayRules::Situation situation{m_engine->isMicMuted(), m_client->isConnected(), m_controlPanel->isInRoom(),
                                          !m_roomPanel->currentRoom().isEmpty()};
    switch (RelayRules::onCarrier(active, situation)) {
    case RelayRules::CarrierStep::StartTransmission: startTransmission(); break;
    case RelayRules::CarrierStep::StopTransmission: stopTransmission(); break;
    case RelayRules::CarrierStep::ForgetTransmission: m_transmitting = false; break;
    case RelayRules::CarrierStep::BlockedByMicMute:
        qDebug() << "[COS] Signal detected but MIC is muted - TX blocked";
        break;
    case RelayRules::CarrierStep::Nothing: break;
    }
}

void MainWindow::startTransmission()
{
    m_client->sendCommand(Commands::startTransmit(m_roomPanel->currentRoom()));
    m_transmitting = true;
}

void MainWindow::stopTransmission()
{
    m_client->stopTransmit(m_roomPanel->currentRoom());
    m_transmitting = false;
}

void MainWindow::onAudioEncoded(const QByteArray &payload)
{
    ++s_encodedFrames; // also the frames that are dropped below
    if (!m_transmitting)
        return;
    if (s_encodedFrames <= kLoggedSentFrames)
        logSentFrame(payload);
    if (m_udp->isReady())
        m_udp->sendAudio(payload);
    else
        qWarning() << "[TCP] sendAudio called but TCP audio not supported - drop frame";
}

void MainWindow::onUdpAudioReceived(const QByteArray &payload)
{
    if (s_udpFrames < kLoggedUdpFrames) {
        ++s_udpFrames;
        qDebug() << "[RX] UDP audio received, size:" << payload.size();
    }
    m_engine->onAudioReceived(payload);
}

void MainWindow::onTcpAudioReceived(const QByteArray &payload, uint userId)
{
    if (s_tcpFrames < kLoggedTcpFrames) {
        ++s_tcpFrames;
        logTcpFrame(payload, userId, *m_engine);
    }
    m_engine->onAudioReceived(payload);
}

void MainWindow::onRoomUsersReceived(const QList<QVariantMap> &users)
{
    const QString own = Config::instance().callsign();
    m_roomPanel->setUsers(users, own);
    markOwnMutes();
    applyKeying(RelayRules::remoteTalks(users, own));
}

void MainWindow::applyKeying(bool remoteTalks)
{
    switch (RelayRules::onUserList(remoteTalks, m_radioKeyed, m_engine->isSpeakerMuted(), m_serial->isOpen())) {
    case RelayRules::KeyStep::Key:
        m_serial->setPtt(true);
        m_radioKeyed = true;
        break;
    case RelayRules::KeyStep::Release:
        m_serial->setPtt(false);
        m_radioKeyed = false;
        break;
    case RelayRules::KeyStep::BlockedBySpeakerMute:
        qDebug() << "[RX] Remote TX detected but SPEAKER is muted - PTT blocked";
        break;
    case RelayRules::KeyStep::Nothing: break;
    }
}

/// Menu and toolbar each have their action; whichever was toggled brings the other along, so that this runs a second
/// time with nothing left to do.
void MainWindow::onMicMuteToggled(bool muted)
{
    if (m_engine->isMicMuted() == muted)
        return;
    m_engine->setMicMuted(muted);
    m_actions->showMicMuted(muted);
    if (UserWidget *own = m_roomPanel->userWidget(Config::instance().callsign()))
        own->setMicMuted(muted);
    if (!muted || !m_transmitting)
        return;
    if (!m_roomPanel->currentRoom().isEmpty())
        m_client->stopTransmit(m_roomPanel->currentRoom());
    m_transmitting = false;
    m_actions->showCarrierStoppedByMute();
    m_controlPanel->setTransmitIndicator(false);
    qDebug() << "[Mute] Mic muted during TX - TX stopped immediately";
}

void MainWindow::onSpeakerMuteToggled(bool muted)
{
    if (m_engine->isSpeakerMuted() == muted)
        return;
    m_engine->setSpeakerMuted(muted);
    m_actions->showSpeakerMuted(muted);
    if (UserWidget *own = m_roomPanel->userWidget(Config::instance().callsign()))
        own->setSpeakerMuted(muted);
    if (!muted || !m_radioKeyed || !m_serial->isOpen())
        return;
    m_serial->setPtt(false);
    m_radioKeyed = false;
    qDebug() << "[Mute] Speaker muted during RX - PTT/RTS deactivated immediately";
}

/// The server's list knows nothing of the mutes of this gateway itself; a rebuilt own row shows them again.
void MainWindow::markOwnMutes()
{
    UserWidget *own = m_roomPanel->userWidget(Config::instance().callsign());
    if (!own)
        return;
    if (m_engine->isMicMuted())
        own->setMicMuted(true);
    if (m_engine->isSpeakerMuted())
        own->setSpeakerMuted(true);
}

void MainWindow::onAdminMuted(bool muted, const QString &reason)
{
    m_actions->toolbarMicrophone->setChecked(muted); // runs the operator's own mute, which stops a transmission
    if (muted) {
        showStatus(QStringLiteral("Mic di-mute oleh admin: ") + reason, kLong);
        qDebug() << "[AdminMute] Muted by admin - TX/COS blocked";
    } else {
        showStatus(QStringLiteral("Mic unmute oleh admin"), kReadably);
        qDebug() << "[AdminMute] Unmuted by admin";
    }
    m_actions->muteMicrophone->setChecked(muted);
}
