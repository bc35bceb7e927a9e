#pragma once

#include "server/HttpRequest.h"
#include "server/HttpResponse.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

class QTcpSocket;

/// One connection of the web server: one request, one answer, the end. Deletes itself when the connection is closed,
/// and sees to it that it is, whatever the other side does.
class WebConnection final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WebConnection)

public:
    using Handler = std::function<HttpResponse(const HttpRequest &)>;

    /// Takes the socket over. The handler answers what is well-formed and no other method than GET or HEAD. The request
    /// has to come within the time, and the answer to be taken within as much again.
    WebConnection(QTcpSocket *socket, Handler handler, std::chrono::milliseconds patience, QObject *parent);

private:
    enum class Phase { Reading, Draining, Closing };

    void onReadyRead();
    void onTimeout();
    void answer(const HttpRequest &request);
    void refuse(int status);
    void close();

    QTcpSocket *m_socket;
    Handler m_handler;
    std::chrono::milliseconds m_patience;
    QTimer m_timer;
    QByteArray m_head;
    Phase m_phase = Phase::Reading;
};
