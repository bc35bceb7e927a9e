// Two gateways and a server on this machine: what radio A hears goes out over radio B, and the other way round.

#include "e2e/Over.h"
#include "support/CompanionServer.h"
#include "support/Wait.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>

namespace {

const QString kPassword = QStringLiteral("relay-demo");

struct Arguments
{
    QString folder;
    Sound speech;
};

void print(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

bool fail(const QString &reason)
{
    if (!wasInterrupted())
        std::fprintf(stderr, "%s\n", qPrintable(reason));
    return false;
}

bool parse(Arguments &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Relays speech between two gateways with simulated radios, both ways, and measures it."));
    parser.addHelpOption();
    const QCommandLineOption out(QStringLiteral("out"), QStringLiteral("Where recordings and report go."),
                                 QStringLiteral("folder"), QStringLiteral("out"));
    parser.addOption(out);
    parser.addPositionalArgument(QStringLiteral("speech"), QStringLiteral("A 16-bit WAV file to relay."),
                                 QStringLiteral("[SPEECH.wav]"));
    parser.process(*QCoreApplication::instance());
    arguments.folder = parser.value(out);
    const QStringList files = parser.positionalArguments();
    QString error = QStringLiteral("espeak-ng is missing");
    arguments.speech = files.isEmpty()
                           ? speech(QStringLiteral("Radio check from the gateway. One, two, three, four, five. "
                                                   "How do you copy? Over."))
                           : WavFile::read(files.first(), &error);
    if (arguments.speech.isNull())
        return fail(QStringLiteral("No speech: ") + error);
    return QDir().mkpath(arguments.folder) || fail(QStringLiteral("Cannot create ") + arguments.folder);
}

void printTable(const QList<QPair<QString, Over>> &overs)
{
    const auto row = [&overs](const char *title, const auto &value) {
        QString line = QString::fromLatin1(title).leftJustified(28);
        for (const auto &named : overs)
            line += QString(value(named.second)).rightJustified(12);
        print(line);
    };
    const auto yesNo = [](bool yes) { return yes ? QStringLiteral("yes") : QStringLiteral("NO"); };
    QString head = QString().leftJustified(28);
    for (const auto &named : overs)
        head += named.first.rightJustified(12);
    print(head);
    row("heard", [yesNo](const Over &over) { return yesNo(over.wasHeard()); });
    row("similarity to the source", [](const Over &over) { return QString::number(over.similarity, 'f', 3); });
    row("mouth to ear, ms", [](const Over &over) { return QString::number(over.mouthToEar.count()); });
    row("transmitter keyed, ms",
        [](const Over &over) { return over.keyed ? QString::number(over.keyUp.count()) : QStringLiteral("never"); });
    row("transmitter released, ms", [](const Over &over) {
        return over.released ? QString::number(over.release.count()) : QStringLiteral("never");
    });
    row("datagrams sent", [](const Over &over) { return QString::number(over.sent); });
    row("datagrams received", [](const Over &over) { return QString::number(over.received); });
    row("deciphered", [](const Over &over) { return QString::number(over.deciphered); });
}

bool saveReport(const QString &path, const QList<QPair<QString, Over>> &overs)
{
    QJsonObject report;
    for (const auto &named : overs)
        report.insert(named.first, named.second.toJson());
    QFile file(path);
    return (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(report).toJson()) > 0) ||
           fail(QStringLiteral("Cannot write ") + path);
}

Station::Settings settings(const QString &callsign, const CompanionServer &server)
{
    return {callsign, kPassword, server.host(), server.port(), QStringLiteral("Lobby"), {}};
}

bool relay(const Arguments &arguments)
{
    Display display(Display::Choice::RealIfPresent);
    CompanionServer server;
    const QString callA = QStringLiteral("YB0AA");
    const QString callB = QStringLiteral("YB0BB");
    print(QStringLiteral("Starting the server and two gateways ..."));
    if (!display.start() || !server.addUser(callA, kPassword) || !server.addUser(callB, kPassword) || !server.start())
        return fail(QStringLiteral("The server did not start."));
    Station a(settings(callA, server), &display);
    Station b(settings(callB, server), &display);
    if (!a.start() || !b.start() || !a.waitForRoom() || !b.waitForRoom())
        return fail(QStringLiteral("The gateways did not come into the room."));

    print(QStringLiteral("Relaying %1 s of speech, both ways ...").arg(arguments.speech.seconds(), 0, 'f', 1));
    const Over toB = relayOver(a, b, server.line(), arguments.speech);
    const Over toA = wasInterrupted() ? Over() : relayOver(b, a, server.line(), arguments.speech);
    if (wasInterrupted())
        return false;
    const QDir folder(arguments.folder);
    const bool pictured = a.screenshot(folder.filePath(QStringLiteral("gateway-a.png"))) &&
                          b.screenshot(folder.filePath(QStringLiteral("gateway-b.png")));
    const QList<QPair<QString, Over>> overs{{QStringLiteral("A to B"), toB}, {QStringLiteral("B to A"), toA}};
    printTable(overs);
    const bool saved = WavFile::write(folder.filePath(QStringLiteral("radio-b-transmitted.wav")), toB.transmitted) &&
                       WavFile::write(folder.filePath(QStringLiteral("radio-a-transmitted.wav")), toA.transmitted) &&
                       saveReport(folder.filePath(QStringLiteral("report.json")), overs);
    if (!pictured || !saved)
        return fail(QStringLiteral("Not everything could be written to ") + arguments.folder);
    print(QStringLiteral("Recordings, report and pictures are in ") + QDir::toNativeSeparators(folder.path()));
    for (const auto &named : overs) {
        if (!named.second.wasHeard() || !named.second.keyed || !named.second.released)
            return fail(named.first + QStringLiteral(" did not get through."));
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    unwindOnInterrupt();
    Arguments arguments;
    return parse(arguments) && relay(arguments) ? 0 : 1;
}
