#include "HostileInput.h"

#include "SignalLog.h"
#include "net/TcpClient.h"
#include "net/UdpAudio.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace {

QString s_strangeWarning;
qint64 s_signalsRaised = 0;

void swallow(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if ((type == QtWarningMsg || type == QtCriticalMsg) && !text.startsWith(QLatin1Char('[')))
        s_strangeWarning = text;
}

QString strangeWarning()
{
    const QString text = s_strangeWarning;
    s_strangeWarning.clear();
    return text.isEmpty() ? QString() : QStringLiteral("a warning: ") + text;
}

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

/// One client, fed in pieces of that size with a turn of the event loop after each.
struct Reading
{
    QStringList signals_;
    QString brokenRecord;
};

Reading read(const QByteArray &bytes, int piece)
{
    static const QString overlong = q("errorOccurred(Server message too long)");
    TcpClient client;
    SignalLog log(&client);
    Reading reading;
    const auto check = [&](const QStringList &keys) {
        return [&reading, keys](const QList<QVariantMap> &records) {
            for (const QVariantMap &record : records) {
                if (QStringList(record.keys()) != keys)
                    reading.brokenRecord = q("a record of ") + QStringList(record.keys()).join(QLatin1Char(','));
            }
        };
    };
    QObject::connect(
        &client, &TcpClient::roomUsersReceived, &client,
        check({q("approved"), q("callsign"), q("is_muted"), q("is_transmitting"), q("name"), q("user_id")}));
    QObject::connect(&client, &TcpClient::onlineUsersReceived, &client,
                     check({q("callsign"), q("id"), q("is_admin"), q("name"), q("room")}));
    // What follows an overlong message is lost with the connection, so that nothing more is fed then.
    for (int from = 0; from < bytes.size() && !log.entries().contains(overlong); from += piece) {
        QMetaObject::invokeMethod(&client, "receive", Qt::DirectConnection, Q_ARG(QByteArray, bytes.mid(from, piece)));
        QCoreApplication::sendPostedEvents();
    }
    reading.signals_ = log.entries();
    return reading;
}

bool isControlWord(const QByteArray &datagram)
{
    static const QSet<QString> words{q("PONG"), q("OK"), q("TOKEN_OK"), q("KEEPALIVE_OK")};
    const QString text = QString::fromUtf8(datagram.constData(), datagram.size()).trimmed();
    return words.contains(text) || text.startsWith(q("REGISTERED:"));
}

} // namespace

void HostileInput::watchDiagnostics()
{
    qInstallMessageHandler(swallow);
}

QString HostileInput::feedControlConnection(const QByteArray &bytes, int piece)
{
    const Reading whole = read(bytes, std::max(bytes.size(), 1));
    const Reading pieces = read(bytes, piece);
    s_signalsRaised += whole.signals_.size() + pieces.signals_.size();
    if (whole.signals_ != pieces.signals_)
        return QStringLiteral("in pieces of %1: %2, as a whole: %3")
            .arg(QString::number(piece), pieces.signals_.join(QLatin1Char(' ')), whole.signals_.join(QLatin1Char(' ')));
    if (!whole.brokenRecord.isEmpty())
        return whole.brokenRecord;
    return strangeWarning();
}

qint64 HostileInput::signalsRaised()
{
    return s_signalsRaised;
}

QString HostileInput::feedAudioLink(const QList<QByteArray> &datagrams)
{
    constexpr quint16 kDiscardPort = 9;
    UdpAudio link;
    QList<QByteArray> heard;
    QObject::connect(&link, &UdpAudio::audioReceived, &link, [&heard](const QByteArray &data) { heard.append(data); });
    if (!link.enableUdp(q("127.0.0.1"), kDiscardPort, q("token")))
        return q("the link could not be opened");
    QList<QByteArray> expected;
    for (const QByteArray &datagram : datagrams) {
        if (link.isReady() && datagram.size() > 4 && !isControlWord(datagram))
            expected.append(datagram.mid(4));
        QMetaObject::invokeMethod(&link, "handleDatagram", Qt::DirectConnection, Q_ARG(QByteArray, datagram));
    }
    if (heard != expected)
        return QStringLiteral("%1 payloads heard, %2 expected").arg(heard.size()).arg(expected.size());
    return strangeWarning();
}
