#include "server/ControlServer.h"

#include "server/Answers.h"
#include "server/AudioPresets.h"
#include "server/Command.h"
#include "server/KeepAccepting.h"
#include "server/ListenAddress.h"
#include "server/Session.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kTalkCheck{1000};
constexpr std::chrono::milliseconds kPermitCheck{60000};
constexpr std::chrono::milliseconds kSilenceCheck{10000};
constexpr int kMostConnections = 2000;

qint64 steadyMilliseconds()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return clock.elapsed();
}

} // namespace

ControlServer::ControlServer(AccountStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_clock(steadyMilliseconds)
    , m_today(QDate::currentDate)
{
    connect(&m_tcp, &QTcpServer::newConnection, this, &ControlServer::onNewConnection);
    keepAccepting(&m_tcp);
    connect(&m_talkTimer, &QTimer::timeout, this, &ControlServer::enforceTalkLimit);
    m_talkTimer.start(kTalkCheck);
    connect(&m_permitTimer, &QTimer::timeout, this, &ControlServer::watchPermits);
    m_permitTimer.start(kPermitCheck);
    connect(&m_silenceTimer, &QTimer::timeout, this, &ControlServer::endSilentSessions);
    m_silenceTimer.start(kSilenceCheck);
}

ControlServer::~ControlServer()
{
    for (Session *session : qAsConst(m_sessions))
        session->disconnect(this);
}

bool ControlServer::start(const Options &options, QString *error)
{
    if (!loadRooms()) {
        *error = QStringLiteral("the rooms could not be read from the database");
        return false;
    }
    if (m_rooms.empty() && !makeRooms(options.rooms)) {
        *error = QStringLiteral("the rooms could not be written to the database");
        return false;
    }
    m_autoApprove = options.autoApprove;
    watchPermits(); // days may have passed
    if (!m_tcp.listen(listenAddress(options.address), options.port)) {
        *error = m_tcp.errorString();
        return false;
    }
    return m_relay.open(options.address, options.udpPort, error);
}

/// Only the first time: what administrators make of the rooms afterwards outlives a restart.
bool ControlServer::makeRooms(const QStringList &names)
{
    for (const QString &name : names) {
        const QString clean = cleanName(name);
        if (!clean.isEmpty() && !findRoom(clean) && !addRoom({clean, 0}))
            return false;
    }
    return true;
}

void ControlServer::onNewConnection()
{
    while (QTcpSocket *socket = m_tcp.nextPendingConnection()) {
        if (m_sessions.size() >= kMostConnections) {
            delete socket;
            continue;
        }
        auto *session = new Session(socket, this);
        m_sessions.append(session);
        connect(session, &Session::lineReceived, this,
                [this, session](const QString &line) { onLine(*session, line); });
        connect(session, &Session::closed, this, [this, session] { onClosed(session); });
        session->send(QStringLiteral("ROIP SERVER READY"));
    }
}

void ControlServer::onLine(Session &session, const QString &line)
{
    session.setHeardAt(m_clock());
    const Command command(line);
    const Row row = commandTable().value(command.word());
    if (!row.handler)
        session.send(QStringLiteral("ERROR|Perintah tidak dikenal: ") + cleanText(command.word(), 40));
    else if (row.access != Access::Anyone && !session.isLoggedIn())
        session.send(QStringLiteral("ERROR|Belum login"));
    else if (row.access == Access::Admin && !session.account().admin)
        session.send(Answers::kAdminsOnly);
    else
        (this->*row.handler)(session, command);
}

void ControlServer::onClosed(Session *session)
{
    m_sessions.removeOne(session);
    session->disconnect(this);
    signOff(*session);
    session->deleteLater();
}

void ControlServer::endSilentSessions()
{
    const QList<Session *> sessions = m_sessions; // whoever is ended leaves the list
    for (Session *session : sessions) {
        if (session->countSilence() <= kSilentLooks)
            continue;
        audit(*session, QStringLiteral("lost, nothing came any more"));
        session->abort();
    }
}

/// A password takes some frames of audio to check, on the thread that relays them: what waits goes out first.
bool ControlServer::mayTryPassword(const Session &session)
{
    m_relay.relayWaiting();
    const bool may =
        m_guard.mayTry(session.address(), m_clock()) && m_passwordGuard.mayTry(session.address(), m_clock());
    if (may)
        m_passwordGuard.count(session.address(), m_clock());
    return may;
}

Session *ControlServer::sessionOf(int userId) const
{
    for (Session *session : m_sessions) {
        if (session->isLoggedIn() && session->account().id == userId)
            return session;
    }
    return nullptr;
}

Session *ControlServer::sessionOf(const QString &callsign) const
{
    for (Session *session : m_sessions) {
        if (session->isLoggedIn() && session->account().callsign == callsign)
            return session;
    }
    return nullptr;
}

void ControlServer::signOff(Session &session)
{
    if (!session.isLoggedIn())
        return;
    audit(session, QStringLiteral("signed off"));
    leaveRoom(session);
    m_relay.removeMember(session.account().id);
    session.logOut();
    sendServerInfo();
}

void ControlServer::sendToAll(const QString &line)
{
    for (Session *session : qAsConst(m_sessions)) {
        if (session->isLoggedIn())
            session->send(line);
    }
}

void ControlServer::sendToAdmins(const QString &line)
{
    for (Session *session : qAsConst(m_sessions)) {
        if (session->isLoggedIn() && session->account().admin)
            session->send(line);
    }
}

void ControlServer::sendServerInfo()
{
    int online = 0;
    int admins = 0;
    int gateways = 0;
    for (const Session *session : qAsConst(m_sessions)) {
        if (!session->isLoggedIn())
            continue;
        ++online;
        if (session->account().admin)
            ++admins;
        else if (!session->account().gatewayName.isEmpty())
            ++gateways;
    }
    const AudioPreset &preset = AudioPresets::find(m_store->setting(QStringLiteral("audio_preset")));
    QJsonObject info{{QStringLiteral("total_rooms"), int(m_rooms.size())},
                     {QStringLiteral("online_users"), online},
                     {QStringLiteral("online_admins"), admins},
                     {QStringLiteral("online_gateways"), gateways},
                     {QStringLiteral("encryption"), QStringLiteral("XSalsa20-Poly1305")},
                     {QStringLiteral("audio_codec"), QStringLiteral("Opus")},
                     {QStringLiteral("audio_preset"), preset.name},
                     {QStringLiteral("audio_bitrate"), preset.bitrate},
                     {QStringLiteral("audio_sample_rate"), preset.sampleRate}};
    const auto line = [](const QJsonObject &facts) {
        return QStringLiteral("SERVER_INFO|") + QString::fromUtf8(QJsonDocument(facts).toJson(QJsonDocument::Compact));
    };
    const QString forMembers = line(info);
    info.insert(QStringLiteral("room_limits"), roomLimits()); // no other message carries them
    const QString forAdmins = line(info);
    for (Session *session : qAsConst(m_sessions)) {
        if (session->isLoggedIn())
            session->send(session->account().admin ? forAdmins : forMembers);
    }
}

void ControlServer::sendQuality(Session &session)
{
    const AudioPreset &preset = AudioPresets::find(m_store->setting(QStringLiteral("audio_preset")));
    session.send(QStringLiteral("AUDIO_QUALITY|%1|%2|%3|%4|%5")
                     .arg(preset.name)
                     .arg(preset.bitrate)
                     .arg(preset.sampleRate)
                     .arg(preset.frameDuration)
                     .arg(preset.complexity));
}

void ControlServer::audit(const Session &session, const QString &text) const
{
    const QString who = session.isLoggedIn() ? session.account().callsign : QStringLiteral("-");
    qInfo().noquote() << who << session.address() << text;
}
