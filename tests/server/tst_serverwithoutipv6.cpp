#include "server/ServerRig.h"
#include "support/TestMain.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

// Stands before the system's own in this process: what a kernel that was started without IPv6 answers.
extern "C" Q_DECL_EXPORT int socket(int domain, int type, int protocol) noexcept
{
    if (domain != AF_INET6)
        return static_cast<int>(::syscall(SYS_socket, domain, type, protocol));
    errno = EAFNOSUPPORT;
    return -1;
}

class ServerWithoutIpv6Test final : public QObject
{
    Q_OBJECT

private slots:
    void everyAddressIsThoseOfIpv4();
    void namedAddressIsAnError();
};

void ServerWithoutIpv6Test::everyAddressIsThoseOfIpv4()
{
    ServerRig rig;
    ControlServer server(&rig.store());
    ControlServer::Options options;
    options.port = 0;
    options.udpPort = 0;
    QCOMPARE(options.address, QStringLiteral("::"));
    QString error;
    QVERIFY2(server.start(options, &error), qPrintable(error));
    RawClient client(server);
    QVERIFY(client.enter(QStringLiteral("YB1A")));
    QCOMPARE(client.sendUdp("PING"), QByteArray("PONG"));
}

void ServerWithoutIpv6Test::namedAddressIsAnError()
{
    DatagramSocket socket;
    QString error;
    QVERIFY(!socket.bind(QStringLiteral("::1"), 0, &error));
    QCOMPARE(error, QString::fromLocal8Bit(std::strerror(EAFNOSUPPORT)));
}

EVOX_TEST_MAIN(ServerWithoutIpv6Test, QCoreApplication)
#include "tst_serverwithoutipv6.moc"
