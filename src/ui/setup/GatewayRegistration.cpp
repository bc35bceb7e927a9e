#include "ui/setup/GatewayRegistration.h"

#include "app/Config.h"
#include "app/HardwareId.h"
#include "ui/Prompts.h"
#include "ui/setup/BusyNotice.h"
#include "ui/setup/GatewayData.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDebug>
#include <QRegularExpression>
#include <QTcpSocket>

#include <chrono>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kConnectTimeout{5000};
constexpr milliseconds kGreetingTimeout{3000};
constexpr milliseconds kWriteTimeout{3000};
constexpr milliseconds kAnswerTimeout{5000};
constexpr int kLongestAnswer = 4096; ///< bytes; an answer is one short line

const char *const kLastingPermit = "2027-12-31"; ///< stands in for a permit whose end the registry does not tell

QString orDash(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

int toInt(milliseconds time)
{
    return static_cast<int>(time.count());
}

/// Whether the answer is there: a whole line that says what became of the registration. What the server tells everybody
/// may come before it.
bool isWhole(const QByteArray &received)
{
    int start = 0;
    for (int end = received.indexOf('\n'); end >= 0; end = received.indexOf('\n', start)) {
        const QByteArray line = received.mid(start, end - start);
        if (line.contains("REGISTER_OK") || line.startsWith("REGISTER_FAILED") || line.startsWith("ERROR|"))
            return true;
        start = end + 1;
    }
    return false;
}

QByteArray readAnswer(QTcpSocket &socket)
{
    QByteArray answer;
    const QDeadlineTimer deadline(kAnswerTimeout);
    while (!isWhole(answer) && answer.size() < kLongestAnswer) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            break;
        answer += socket.read(kLongestAnswer - answer.size());
    }
    return answer + socket.read(kLongestAnswer - answer.size()); // what came with the goodbye
}

struct Exchange
{
    QString answer;  ///< what the server said; empty when it said nothing
    QString failure; ///< for the operator, when there is no answer
};

Exchange exchange(const GatewayData &data, const QString &mailDomain)
{
    QTcpSocket socket;
    socket.connectToHost(data.serverAddress, static_cast<quint16>(data.serverPort));
    if (!socket.waitForConnected(toInt(kConnectTimeout)))
        return {{},
                QStringLiteral("Gagal terhubung ke server:\n\n") + socket.errorString() +
                    QStringLiteral("\n\nPeriksa alamat server dan koneksi internet.")};
    socket.waitForReadyRead(toInt(kGreetingTimeout));
    socket.readAll();

    const QString line = Commands::registerGateway(GatewayRegistration::recordOf(data, mailDomain));
    qDebug().noquote() << "[Register] Sending:" << line;
    socket.write(line.toUtf8() + "\r\n");
    socket.waitForBytesWritten(toInt(kWriteTimeout));
    const QString answer = QString::fromUtf8(readAnswer(socket));
    qDebug().noquote() << "[Register] Response:" << answer;
    if (answer.isEmpty())
        return {{}, QStringLiteral("Tidak ada response dari server.\n\nPeriksa koneksi dan coba lagi.")};
    return {answer, {}};
}

/// The exchange, with a notice on the screen while nothing else can be.
Exchange watchedExchange(const GatewayData &data, const QString &mailDomain)
{
    const BusyNotice notice(QStringLiteral("Mendaftarkan %1 ke server...").arg(data.callsign));
    return exchange(data, mailDomain);
}

void completeSetup()
{
    Config &config = Config::instance();
    config.setSetupCompleted(true);
    config.setRememberPassword(true);
    config.setAutoLogin(true);
    config.setHwid(generateHardwareId()); // a fresh one, whatever was stored
    config.save();
}

} // namespace

Commands::Registration GatewayRegistration::recordOf(const GatewayData &data, const QString &mailDomain)
{
    Commands::Registration record;
    record.gatewayName = data.gatewayName;
    record.callsign = data.callsign;
    record.frequency = orDash(data.frequency);
    record.permitExpiry = data.permitExpiry.isEmpty() ? QLatin1String(kLastingPermit) : data.permitExpiry;
    record.location = orDash(data.location);
    record.operatorName = data.picName;
    record.responsibleCallsign = data.picCallsign;
    record.password = data.password;
    record.email = data.email.isEmpty() ? data.callsign.toLower() + QLatin1Char('@') + mailDomain : data.email;
    record.phone = orDash(data.whatsapp);
    return record;
}

QString GatewayRegistration::reasonIn(const QString &answer)
{
    static const QRegularExpression refusal(QStringLiteral("^(?:REGISTER_FAILED|ERROR)\\|.*$"),
                                            QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = refusal.match(answer);
    const QString text = (match.hasMatch() ? match.captured() : answer).trimmed();
    return text.mid(text.indexOf(QLatin1Char('|')) + 1);
}

bool registerGateway(const GatewayData &data, const QString &mailDomain, Prompts &prompts,
                     const GatewayRegistration::Start &start)
{
    Exchange result = watchedExchange(data, mailDomain);
    if (result.failure.isEmpty() && !result.answer.contains(QLatin1String("REGISTER_OK")))
        result.failure = QStringLiteral("Pendaftaran gateway gagal:\n\n") +
                         GatewayRegistration::reasonIn(result.answer) +
                         QStringLiteral("\n\nSilakan perbaiki data dan coba lagi.");
    if (!result.failure.isEmpty()) {
        prompts.warning(QStringLiteral("Registrasi Gagal"), result.failure);
        return false;
    }
    completeSetup();
    prompts.information(QStringLiteral("Registrasi Berhasil"),
                        QStringLiteral("RF Gateway berhasil didaftarkan!\n\nCallsign : ") + data.callsign +
                            QStringLiteral("\nPassword : ") + data.password +
                            QStringLiteral("\n\nAplikasi akan restart otomatis."));
    // The whole list, so the new instance gets the program's path as a first argument: it is known by that.
    if (!start(QCoreApplication::applicationFilePath(), QCoreApplication::arguments()))
        prompts.warning(QStringLiteral("Registrasi Berhasil"),
                        QStringLiteral("Aplikasi tidak dapat dimulai ulang. Silakan jalankan kembali."));
    return true;
}
