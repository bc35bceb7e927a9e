#pragma once

#include <QByteArray>

/// An answer to an HTTP request. The connection ends after it.
struct HttpResponse
{
    int status = 200; ///< 200, 400, 404, 405, 408 or 431
    QByteArray contentType = QByteArrayLiteral("text/plain; charset=utf-8");
    QByteArray body;

    /// The status in words, as plain text.
    [[nodiscard]] static HttpResponse plain(int status);
    /// What goes over the wire; HEAD is answered without the body, with the length it would have.
    [[nodiscard]] QByteArray bytes(bool withBody) const;
};
