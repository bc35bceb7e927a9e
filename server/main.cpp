#include "server/AccountStore.h"
#include "server/Command.h"
#include "server/ControlServer.h"
#include "server/Passwords.h"
#include "server/WebServer.h"
#include "server/WebSite.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QHostAddress>
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

/// The hash of a password with which somebody can log in; empty, after a complaint, of any other.
QByteArray hashFrom(const QCommandLineParser &parser)
{
    const QString password = passwordFrom(parser);
    if (password.isEmpty() || !Passwords::fitsLogin(password)) {
        complain(password.isEmpty()
                     ? QStringLiteral("a password has at least one character")
                     : QStringLiteral("a password has no blanks and no quotes: nobody could log in with it"));
        return {};
    }
    const QByteArray hash = Passwords::hash(password);
    if (hash.isEmpty())
        complain(QStringLiteral("not enough memory for the password"));
    return hash;
}

int addUser(AccountStore *store, const QString &callsign, const QCommandLineParser &parser)
{
    Account account;
    account.callsign = cleanName(callsign).toUpper();
    account.gatewayName = cleanName(parser.value(QStringLiteral("gateway")));
    account.name =
        cleanName(parser.isSet(QStringLiteral("name")) ? parser.value(QStringLiteral("name")) : account.callsign);
    account.approved = true; // whoever runs this has decided
    if (account.callsign.isEmpty() || account.callsign.contains(QLatin1Char(' ')))
        return complain(QStringLiteral("a callsign is one word"));
    account.passwordHash = hashFrom(parser);
    if (account.passwordHash.isEmpty())
        return 1;
    return store->add(&account) ? 0 : complain(account.callsign + QStringLiteral(" is there already"));
}

int edit(AccountStore *store, const QString &callsign, const std::function<void(Account &)> &change)
{
    switch (store->change(callsign.toUpper(), change)) {
    case AccountStore::Change::Done: return 0;
    case AccountStore::Change::NoAccount: return complain(QStringLiteral("there is no account ") + callsign.toUpper());
    case AccountStore::Change::Failed: break;
    }
    return complain(QStringLiteral("the account could not be changed"));
}

int setPassword(AccountStore *store, const QString &callsign, const QCommandLineParser &parser)
{
    const QByteArray hash = hashFrom(parser); // whoever is asked takes his time
    if (hash.isEmpty())
        return 1;
    return edit(store, callsign, [&hash](Account &account) { account.passwordHash = hash; });
}

int listUsers(const AccountStore &store)
{
    bool isRead = false;
    const QList<Account> accounts = store.accounts(&isRead);
    if (!isRead)
        return complain(QStringLiteral("the accounts could not be read"));
    QTextStream out(stdout);
    for (const Account &account : accounts)
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
        return setPassword(store, callsign, parser);
    if (word == QLatin1String("make-admin"))
        return edit(store, callsign, [](Account &a) { a.admin = true; });
    if (word == QLatin1String("list-users"))
        return listUsers(*store);
    return complain(QStringLiteral("unknown command ") + word);
}

bool readFile(const QString &path, qint64 largest, QByteArray *bytes, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = path + QStringLiteral(": ") + file.errorString();
        return false;
    }
    *bytes = file.read(largest + 1);
    const bool fits = bytes->size() <= largest;
    if (!fits)
        *error = path + QStringLiteral(": longer than %1 bytes").arg(largest);
    return fits;
}

bool loadRegistry(const QString &path, CallsignRegistry *registry, QString *error)
{
    if (path.isEmpty()) {
        *registry = CallsignRegistry::sample();
        return true;
    }
    QByteArray bytes;
    if (!readFile(path, CallsignRegistry::kLargestFile, &bytes, error))
        return false;
    const auto loaded = CallsignRegistry::fromJson(bytes, error);
    if (loaded)
        *registry = *loaded;
    else
        error->prepend(path + QStringLiteral(": "));
    return loaded.has_value();
}

bool loadUpdate(const QString &path, QByteArray *update, QString *error)
{
    if (path.isEmpty()) {
        *update = WebSite::plainUpdate(QStringLiteral(EVOX_VERSION), QStringLiteral(EVOX_BUILD_DATE));
        return true;
    }
    if (!readFile(path, WebSite::kLargestUpdate, update, error))
        return false;
    const QString problem = WebSite::updateProblem(*update);
    if (!problem.isEmpty())
        *error = path + QStringLiteral(": ") + problem;
    return problem.isEmpty();
}

bool readPort(const QCommandLineParser &parser, const char *option, quint16 *port, QString *error)
{
    bool isNumber = false;
    *port = parser.value(QLatin1String(option)).toUShort(&isNumber);
    if (!isNumber)
        *error = QStringLiteral("--%1: not a port").arg(QLatin1String(option));
    return isNumber;
}

/// A name is none: what it stands for may change.
bool readAddress(const QCommandLineParser &parser, QString *address, QString *error)
{
    *address = parser.value(QStringLiteral("listen"));
    const bool isLiteral = !QHostAddress(*address).isNull();
    if (!isLiteral)
        *error = QStringLiteral("--listen: not an IP address");
    return isLiteral;
}

/// False, with the reason, when the web server was asked for and cannot be had. The default port may be taken: clubs
/// run without it.
bool openWebServer(WebServer *web, const QCommandLineParser &parser, QString *error)
{
    const QString option = QStringLiteral("http-port");
    quint16 port = 0;
    if (!readPort(parser, "http-port", &port, error))
        return false;
    if (port == 0 || web->listen(parser.value(QStringLiteral("listen")), port, error))
        return true;
    *error = QStringLiteral("HTTP port %1: %2").arg(QString::number(port), *error);
    if (parser.isSet(option))
        return false;
    qWarning().noquote() << *error << "- serving without";
    return true;
}

int runUntilStopped()
{
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

int serve(AccountStore *store, const QCommandLineParser &parser)
{
    ControlServer::Options options;
    QString error;
    if (!readAddress(parser, &options.address, &error) || !readPort(parser, "port", &options.port, &error) ||
        !readPort(parser, "udp-port", &options.udpPort, &error))
        return complain(error);
    options.rooms = parser.values(QStringLiteral("room"));
    options.autoApprove = parser.isSet(QStringLiteral("auto-approve"));
    if (options.rooms.isEmpty())
        options.rooms.append(QStringLiteral("== LOBBY ==")); // what a new client asks for
    WebSite::Content content;
    content.quotedRegistry = parser.isSet(QStringLiteral("registry-quoted"));
    if (!loadRegistry(parser.value(QStringLiteral("registry")), &content.registry, &error) ||
        !loadUpdate(parser.value(QStringLiteral("update")), &content.update, &error))
        return complain(error);
    const WebSite site(content);
    ControlServer server(store);
    WebServer web([&site](const HttpRequest &request) { return site.answer(request); });
    if (!server.start(options, &error) || !openWebServer(&web, parser, &error))
        return complain(error);
    std::printf("evox-server ready: tcp %d udp %d http %d\n", server.port(), server.udpPort(), web.port());
    std::fflush(stdout);
    return runUntilStopped();
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
    const auto flag = [parser](const char *name, const char *text) {
        parser->addOption({QString::fromLatin1(name), QString::fromLatin1(text)});
    };
    option("database", "SQLite file, made on the first start; by default evox-server.sqlite.", "file",
           "evox-server.sqlite");
    option("listen", "IP address to listen on; by default ::, for all.", "address", "::");
    option("port", "TCP port of the control connections, by default 8080; 0 for any.", "port", "8080");
    option("udp-port", "UDP port of the audio, by default 8082, which clients expect; 0 for any.", "port", "8082");
    option("http-port",
           "TCP port of the registry and update pages and of the operator's guide, by default 8088; 0 for none. Unless "
           "it is given here, the server also runs when the port is taken.",
           "port", "8088");
    option("registry",
           "JSON file of callsigns for new gateways: an array of objects with callsign, name, address, validity, "
           "status; without it a sample of invented ones.",
           "file");
    option("update",
           "JSON file of the update document, with version, build_date, changelog, download_url_x64, "
           "download_url_x86; without it this server's version and no downloads.",
           "file");
    flag("registry-quoted", "Answers registry requests with one quoted text, escapes and all.");
    flag("auto-approve", "Gateways that register may transmit at once; without it they wait for an administrator.");
    option("room",
           "A room of a new database, by default \"== LOBBY ==\"; may be repeated. One that has rooms keeps them.",
           "name");
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
