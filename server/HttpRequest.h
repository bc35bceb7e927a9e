#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

/// The head of one HTTP request, as far as it has come. What follows the head is not looked at.
struct HttpRequest
{
    enum class State {
        Incomplete, ///< more bytes may still make it a request
        Complete,
        Malformed,
        TooLarge ///< longer than kLargestHead
    };
    static constexpr int kLargestHead = 8 * 1024; ///< bytes

    State state = State::Incomplete;
    QByteArray method;                 ///< in capitals, as it was sent
    QString path;                      ///< decoded, begins with "/"
    QHash<QString, QString> arguments; ///< of the query, decoded; the first of a name counts

    /// Takes HTTP/1.0 and 1.1. Everything but the state is empty unless that is Complete.
    [[nodiscard]] static HttpRequest parse(const QByteArray &bytes);
};
