#include "server/AccountStore.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <functional>

namespace {

volatile std::sig_atomic_t s_stop = 0;

int complain(const QString &text)
{
    QTextStream(stderr) << "evox-server: " << text << Qt::endl;
    return 1;
}

QString passwordFrom(const QCommandLineParser &parser)
{
    if (parser.isSet(QStringLiteral("password")))
        return parser.value(QStringLiteral("password"));
    QTextStream(stderr) << "Password: " << Qt::flush;
    return QTextStream(stdin).readLine();
}

int addUser(AccountStore *store, const QString &callsign, const QCommandLineParser &parser)
{
    Account account;
    account.callsign = cleanText(callsign).toUpper();
    account.gatewayName = cleanText(parser.value(QStringLiteral("gateway")));
    account.name =
        cleanText(parser.isSet(QStringLiteral("name")) ? parser.value(QStringLiteral("name")) : account.callsign);
    account.approved = true; // whoever runs this has decided
    account.passwordHash = Passwords::hash(passwordFrom(parser));
    if (account.callsign.isEmpty() || account.callsign.contains(QLatin1Char(' ')))
        return complain(QStringLiteral("a callsign is one word"));
    return store->add(&account) ? 0 : complain(account.callsign + QStringLiteral(" is there already"));
}

int edit(AccountStore *store, const QString &callsign, const std::function<void(Account &)> &change)
{
    auto account = store->account(callsign.toUpper());
    if (!account)
        return complain(QStringLiteral("there is no account ") + callsign.toUpper());
    change(*account);
    return store->update(*account) ? 0 : complain(QStringLiteral("the account could not be written"));
}

int listUsers(const AccountStore &store)
{
    QTextStream out(stdout);
    for (const Account &account : store.accounts())
        out << account.id << '\t' << account.callsign << '\t' << account.name << '\t' << account.status << '\t'
            << (account.approved ? "approved" : "not approved") << '\t' << (account.admin ? "admin" : "") << '\n';
    return 0;
}

int runCommand(AccountStore *store, const QCommandLineParser &parser)
{
    const QString word = parser.positionalArguments().value(0);
    const QString callsign = parser.positionalArguments().value(1);
    if (word == QLatin1String("add-user"))
        return addUser(store, callsign, parser);
    if (word == QLatin1String("set-password"))
        return edit(store, callsign, [&](Account &a) { a.passwordHash = Passwords::hash(passwordFrom(parser)); });
    if (word == QLatin1String("make-admin"))
        return edit(store, callsign, [](Account &a) { a.admin = true; });
    if (word == QLatin1String("list-users"))
        return listUsers(*store);
    return complain(QStringLiteral("unknown command ") + word);
}

int serve(AccountStore *store, const QCommandLineParser &parser)
{
    ControlServer::Options options;
    options.address = parser.value(QStringLiteral("listen"));
    options.port = parser.value(QStringLiteral("port")).toUShort();
    options.udpPort = parser.value(QStringLiteral("udp-port")).toUShort();
    options.rooms = parser.values(QStringLiteral("room"));
    options.autoApprove = parser.isSet(QStringLiteral("auto-approve"));
    if (options.rooms.isEmpty() && store->rooms().isEmpty())
        options.rooms.append(QStringLiteral("== LOBBY ==")); // what a new client asks for
    ControlServer server(store);
    QString error;
    if (!server.start(options, &error))
        return complain(error);
    std::printf("evox-server ready: tcp %d udp %d\n", server.port(), server.udpPort());
    std::fflush(stdout);

    std::signal(SIGTERM, [](int) { s_stop = 1; });
    std::signal(SIGINT, [](int) { s_stop = 1; });
    QTimer stopCheck; // a signal handler may do no more than set a flag
    QObject::connect(&stopCheck, &QTimer::timeout, [] {
        if (s_stop)
            QCoreApplication::quit();
    });
    stopCheck.start(100);
    return QCoreApplication::exec();
}

void describe(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "The companion server of e-VOX SINAR.\n\nCommands: add-user CALLSIGN, set-password CALLSIGN, make-admin "
        "CALLSIGN, list-users; without a command it serves.\nPasswords are read from standard input where --password "
        "is not given."));
    parser->addHelpOption();
    parser->addVersionOption();
    const auto option = [parser](const char *name, const char *text, const char *value, const char *fallback = "") {
        parser->addOption({QString::fromLatin1(name), QString::fromLatin1(text), QString::fromLatin1(value),
                           QString::fromLatin1(fallback)});
    };
    option("database", "SQLite file, made on the first start.", "file", "evox-server.sqlite");
    option("listen", "Address to listen on, :: for all.", "address", "::");
    option("port", "TCP port of the control connections, 0 for any.", "port", "8080");
    option("udp-port", "UDP port of the audio, 0 for any. Clients expect 8082.", "port", "8082");
    option("room", "A room that is made where missing; may be repeated.", "name");
    const QString autoApprove =
        QStringLiteral("Gateways that register may transmit at once; without it they wait for an "
                       "administrator.");
    parser->addOption({QStringLiteral("auto-approve"), autoApprove});
    option("password", "add-user, set-password: the password.", "text");
    option("name", "add-user: the name of the person responsible.", "text");
    option("gateway", "add-user: the name of the gateway station.", "text");
    parser->addPositionalArgument(QStringLiteral("command"), QStringLiteral("See above."), QStringLiteral("[command]"));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("evox-server"));
    QCoreApplication::setApplicationVersion(QStringLiteral(EVOX_VERSION));
    qSetMessagePattern(QStringLiteral("%{time yyyy-MM-dd hh:mm:ss.zzz} %{type} %{message}"));
    QCommandLineParser parser;
    describe(&parser);
    parser.process(app);
    if (!Passwords::initialize())
        return complain(QStringLiteral("libsodium cannot start"));
    AccountStore store;
    QString error;
    if (!store.open(parser.value(QStringLiteral("database")), &error))
        return complain(error);
    return parser.positionalArguments().isEmpty() ? serve(&store, parser) : runCommand(&store, parser);
}
