// The control connection's receive path: a million mixed lines, and one very long one that comes in small pieces.

#include "Bench.h"
#include "net/TcpClient.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdlib>

namespace {

constexpr int kLines = 1000000;
constexpr int kArrival = 64 * 1024; // what one notification of a busy socket brings
constexpr int kPiece = 4 * 1024;
constexpr int kLongLine = 10 * 1000 * 1000;
constexpr int kDoublingPairs = 15; // its limit is a few percent above what the parsing itself takes

/// A client whose signals are all received, as in the program.
class Receiver final
{
public:
    Receiver()
    {
        const auto count = [this] { ++m_received; };
        using C = TcpClient;
        QObject::connect(&m_client, &C::loginResult, &m_client, count);
        QObject::connect(&m_client, &C::roomListReceived, &m_client, count);
        QObject::connect(&m_client, &C::roomUsersReceived, &m_client, count);
        QObject::connect(&m_client, &C::onlineUsersReceived, &m_client, count);
        QObject::connect(&m_client, &C::allUsersReceived, &m_client, count);
        QObject::connect(&m_client, &C::joinRoomResult, &m_client, count);
        QObject::connect(&m_client, &C::leaveRoomResult, &m_client, count);
        QObject::connect(&m_client, &C::transmitStarted, &m_client, count);
        QObject::connect(&m_client, &C::transmitStopped, &m_client, count);
        QObject::connect(&m_client, &C::transmitFailed, &m_client, count);
        QObject::connect(&m_client, &C::serverInfoReceived, &m_client, count);
        QObject::connect(&m_client, &C::audioQualityReceived, &m_client, count);
        QObject::connect(&m_client, &C::errorOccurred, &m_client, count);
        QObject::connect(&m_client, &C::adminMuted, &m_client, count);
        QObject::connect(&m_client, &C::adminNotification, &m_client, count);
    }

    /// Hands the bytes over in arrivals of that size, each followed by a turn of the event loop.
    void take(const QByteArray &bytes, int arrival)
    {
        for (int from = 0; from < bytes.size(); from += arrival) {
            const QByteArray part = bytes.mid(from, arrival);
            QMetaObject::invokeMethod(&m_client, "receive", Qt::DirectConnection, Q_ARG(QByteArray, part));
            QCoreApplication::sendPostedEvents();
        }
    }
    [[nodiscard]] int received() const { return m_received; }

private:
    TcpClient m_client;
    int m_received = 0;
};

void require(bool condition, const char *text)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", text);
    std::exit(1);
}

// What a room on a busy evening brings; each of these lines raises one signal.
QByteArray mixedLines()
{
    const QByteArray lines =
        "USER_LIST|Lobby|12,31,7|YB1ABC,YH2XYZ,YC3DEF|Ani,Gateway Dua,Budi|RX,TX,RX|1,1,1|0,0,1\r\n"
        "TX_START_OK\r\n"
        "TX_STOP_OK\r\n"
        "ROOMS|Lobby,Alpha,Bravo,Darurat\r\n"
        "MUTED|0|\r\n"
        "TX_START_FAILED|Kanal sedang dipakai oleh YH2XYZ\r\n"
        "AUDIO_QUALITY|standard|24000|24000|20|5\r\n"
        "ERROR|Perintah tidak dikenal\r\n"
        "LEAVE_OK\r\n"
        "MOVED|Alpha|YB1ABC|\r\n";
    QByteArray all;
    all.reserve(kLines / 10 * lines.size());
    for (int i = 0; i < kLines / 10; ++i)
        all += lines;
    return all;
}

void benchMixedLines()
{
    const QByteArray bytes = mixedLines();
    const auto ours = [&bytes] {
        Receiver receiver;
        receiver.take(bytes, kArrival);
        require(receiver.received() == kLines, "a line has raised no signal");
    };
    const auto baseline = [&bytes] {
        int lines = 0;
        int fields = 0;
        int from = 0;
        for (int end = bytes.indexOf('\n'); end >= 0; from = end + 1, end = bytes.indexOf('\n', from)) {
            fields += QString::fromUtf8(bytes.constData() + from, end - from).split(QLatin1Char('|')).size();
            ++lines;
        }
        require(lines == kLines && fields > kLines, "the lines were not split");
    };
    const auto times = Bench::compareTimes(ours, baseline);
    Bench::printRow("dispatch of 1,000,000 mixed server lines", 1000 * times.ours, 1000 * times.baseline, "ms", 2.5);
}

/// The JSON array of as many accounts as fit into so many bytes.
QByteArray accounts(int size)
{
    QByteArray json = "[";
    for (int id = 1; json.size() < size - 400; ++id) {
        const QJsonObject account{{QStringLiteral("id"), id},
                                  {QStringLiteral("callsign"), QStringLiteral("YB%1ABC").arg(id)},
                                  {QStringLiteral("name"), QStringLiteral("Operator Nomor %1").arg(id)},
                                  {QStringLiteral("email"), QStringLiteral("yb%1abc@example.org").arg(id)},
                                  {QStringLiteral("status"), QStringLiteral("active")},
                                  {QStringLiteral("approved"), true},
                                  {QStringLiteral("is_admin"), false},
                                  {QStringLiteral("location"), QStringLiteral("Kota Bandung, Jawa Barat")},
                                  {QStringLiteral("expiry"), QStringLiteral("2031-05-30")}};
        json += (id > 1 ? "," : "") + QJsonDocument(account).toJson(QJsonDocument::Compact);
    }
    return json + "]";
}

void takeLongLine(const QByteArray &line)
{
    Receiver receiver;
    receiver.take(line, kPiece);
    require(receiver.received() == 1, "the long line has raised no signal");
}

void benchLongLine()
{
    const QByteArray json = accounts(kLongLine);
    const QByteArray line = "ADMIN_ALL_USERS|" + json + "\r\n";
    const auto times = Bench::compareTimes([&line] { takeLongLine(line); },
                                           [&json] {
                                               const QJsonArray users = QJsonDocument::fromJson(json).array();
                                               QList<QVariantMap> records;
                                               for (const auto &user : users)
                                                   records.append(user.toObject().toVariantMap());
                                               require(!records.isEmpty(), "the accounts were not parsed");
                                           });
    Bench::printRow("one 10 MB ADMIN_ALL_USERS line in 4 KiB pieces", 1000 * times.ours, 1000 * times.baseline, "ms",
                    1.3);

    const QByteArray twice = "ADMIN_ALL_USERS|" + accounts(2 * kLongLine) + "\r\n";
    const auto doubled =
        Bench::compareTimes([&twice] { takeLongLine(twice); }, [&line] { takeLongLine(line); }, kDoublingPairs);
    Bench::printRow("the same line at 20 MB against 10 MB", 1000 * doubled.ours, 1000 * doubled.baseline, "ms", 2.1);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    benchMixedLines();
    benchLongLine();
    return 0;
}
