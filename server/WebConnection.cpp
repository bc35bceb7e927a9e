#include "server/WebConnection.h"

#include <QTcpSocket>

namespace {

constexpr std::chrono::milliseconds kDrain{500};

} // namespace

WebConnection::WebConnection(QTcpSocket *socket, Handler handler, std::chrono::milliseconds patience, QObject *parent)
    : QObject(parent)
    , m_socket(socket)
    , m_handler(std::move(handler))
    , m_patience(patience)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(HttpRequest::kLargestHead + 1);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &WebConnection::onTimeout);
    connect(m_socket, &QTcpSocket::readyRead, this, &WebConnection::onReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &WebConnection::deleteLater);
    m_timer.start(m_patience);
}

void WebConnection::onReadyRead()
{
    const QByteArray arrived = m_socket->readAll();
    if (m_phase != Phase::Reading)
        return;
    m_head += arrived;
    const HttpRequest request = HttpRequest::parse(m_head);
    switch (request.state) {
    case HttpRequest::State::Incomplete: break;
    case HttpRequest::State::Complete: answer(request); break;
    case HttpRequest::State::Malformed: refuse(400); break;
    case HttpRequest::State::TooLarge: refuse(431); break;
    }
}

void WebConnection::onTimeout()
{
    switch (m_phase) {
    case Phase::Reading: refuse(408); break;
    case Phase::Draining: close(); break;
    case Phase::Closing: m_socket->abort(); break;
    }
}

void WebConnection::answer(const HttpRequest &request)
{
    const bool isHead = request.method == "HEAD";
    if (!isHead && request.method != "GET") {
        refuse(405);
        return;
    }
    m_socket->write(m_handler(request).bytes(!isHead));
    close();
}

/// What is refused may still be on its way in: closed with bytes unread, a connection is reset, and the other side may
/// lose the answer with it.
void WebConnection::refuse(int status)
{
    m_phase = Phase::Draining;
    m_timer.start(kDrain);
    m_socket->write(HttpResponse::plain(status).bytes(true));
}

void WebConnection::close()
{
    m_phase = Phase::Closing;
    m_timer.start(m_patience);
    m_socket->disconnectFromHost();
}
