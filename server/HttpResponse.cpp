#include "server/HttpResponse.h"

namespace {

QByteArray statusText(int status)
{
    switch (status) {
    case 200: return QByteArrayLiteral("200 OK");
    case 400: return QByteArrayLiteral("400 Bad Request");
    case 404: return QByteArrayLiteral("404 Not Found");
    case 405: return QByteArrayLiteral("405 Method Not Allowed");
    case 408: return QByteArrayLiteral("408 Request Timeout");
    case 431: return QByteArrayLiteral("431 Request Header Fields Too Large");
    default: return QByteArray::number(status);
    }
}

} // namespace

HttpResponse HttpResponse::plain(int status)
{
    HttpResponse response;
    response.status = status;
    response.body = statusText(status) + '\n';
    return response;
}

QByteArray HttpResponse::bytes(bool withBody) const
{
    QByteArray head = "HTTP/1.1 " + statusText(status) + "\r\nContent-Type: " + contentType +
                      "\r\nContent-Length: " + QByteArray::number(body.size()) +
                      "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\nConnection: close\r\n";
    if (status == 405)
        head += "Allow: GET, HEAD\r\n";
    return head + "\r\n" + (withBody ? body : QByteArray());
}
