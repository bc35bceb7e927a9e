#include "server/HttpRequest.h"

#include <QList>

#include <algorithm>
#include <cctype>

namespace {

constexpr int kLongestMethod = 20; // bytes

QByteArray upTo(char mark, const QByteArray &text)
{
    const int position = text.indexOf(mark);
    return position < 0 ? text : text.left(position);
}

QByteArray behind(char mark, const QByteArray &text)
{
    const int position = text.indexOf(mark);
    return position < 0 ? QByteArray() : text.mid(position + 1);
}

/// The lines of the head without their ends; false while the empty line that ends it is missing.
bool headLines(const QByteArray &bytes, QList<QByteArray> *lines, int *size)
{
    int begin = 0;
    for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', begin)) {
        const int length = end - begin - (end > begin && bytes.at(end - 1) == '\r' ? 1 : 0);
        const QByteArray line = bytes.mid(begin, length);
        begin = end + 1;
        if (line.isEmpty()) {
            *size = begin;
            return true;
        }
        lines->append(line);
    }
    return false;
}

bool isMethod(const QByteArray &word)
{
    return !word.isEmpty() && word.size() <= kLongestMethod &&
           std::all_of(word.cbegin(), word.cend(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool isVersion(const QByteArray &word)
{
    return word == "HTTP/1.0" || word == "HTTP/1.1";
}

/// A name without blanks, a colon, and a value without control characters.
bool isHeaderField(const QByteArray &line)
{
    const int colon = line.indexOf(':');
    return colon > 0 &&
           std::all_of(line.cbegin(), line.cbegin() + colon, [](char c) { return c > ' ' && c < '\x7f'; }) &&
           std::none_of(line.cbegin() + colon, line.cend(), [](char c) {
               const auto byte = static_cast<unsigned char>(c);
               return (byte < ' ' && byte != '\t') || byte == 0x7f;
           });
}

bool areHeaderFields(const QList<QByteArray> &lines, bool hostIsDue)
{
    int hosts = 0;
    for (const QByteArray &line : lines) {
        if (!isHeaderField(line))
            return false;
        if (upTo(':', line).toLower() == "host")
            ++hosts;
    }
    return hosts == 1 || (hosts == 0 && !hostIsDue);
}

QString decoded(const QByteArray &text)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(text);
    return QString::fromUtf8(bytes.constData(), bytes.size()); // with the size, or it would end at a NUL
}

QHash<QString, QString> queryArguments(QByteArray query)
{
    QHash<QString, QString> arguments;
    for (const QByteArray &pair : query.replace('+', ' ').split('&')) {
        const QString name = decoded(upTo('=', pair));
        if (!name.isEmpty() && !arguments.contains(name))
            arguments.insert(name, decoded(behind('=', pair)));
    }
    return arguments;
}

bool areEscapesWhole(const QByteArray &target)
{
    const auto isHex = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
    for (int i = target.indexOf('%'); i >= 0; i = target.indexOf('%', i + 1)) {
        if (i + 2 >= target.size() || !isHex(target.at(i + 1)) || !isHex(target.at(i + 2)))
            return false;
    }
    return true;
}

/// "/path?query", or the same behind "http://host", as clients of a proxy write it.
bool readTarget(QByteArray target, HttpRequest *request)
{
    constexpr int kSchemeSize = 7;
    if (target.left(kSchemeSize).toLower() == "http://") {
        const int slash = target.indexOf('/', kSchemeSize);
        target = slash < 0 ? QByteArrayLiteral("/") : target.mid(slash);
    }
    const bool isPlain = std::all_of(target.cbegin(), target.cend(), [](char c) { return c > ' ' && c < '\x7f'; });
    if (!target.startsWith('/') || !isPlain || !areEscapesWhole(target))
        return false;
    request->path = decoded(upTo('?', target));
    request->arguments = queryArguments(behind('?', target));
    return true;
}

HttpRequest inState(HttpRequest::State state)
{
    HttpRequest request;
    request.state = state;
    return request;
}

} // namespace

HttpRequest HttpRequest::parse(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    int size = bytes.size();
    const bool isWhole = headLines(bytes, &lines, &size);
    if (size > kLargestHead)
        return inState(State::TooLarge);
    if (!isWhole)
        return inState(State::Incomplete);
    const QList<QByteArray> words = lines.isEmpty() ? QList<QByteArray>() : lines.takeFirst().split(' ');
    HttpRequest request = inState(State::Complete);
    if (words.size() != 3 || !isMethod(words.at(0)) || !isVersion(words.at(2)) || !readTarget(words.at(1), &request) ||
        !areHeaderFields(lines, words.at(2) == "HTTP/1.1"))
        return inState(State::Malformed);
    request.method = words.at(0);
    return request;
}
