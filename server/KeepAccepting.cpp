#include "server/KeepAccepting.h"

#include <QDebug>
#include <QTcpServer>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kPause{1000};

} // namespace

void keepAccepting(QTcpServer *server)
{
    QObject::connect(server, &QTcpServer::acceptError, server, [server] {
        qWarning().noquote() << "a connection on port" << server->serverPort()
                             << "could not be accepted:" << server->errorString();
        QTimer::singleShot(kPause, server, &QTcpServer::resumeAccepting);
    });
}
