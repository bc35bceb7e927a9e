#include "net/protocol/MessageBuffer.h"

#include <algorithm>
#include <utility>

namespace {

// Consumed bytes are given back in one move when there are this many and they are the larger half.
constexpr int kCompactFrom = 64 * 1024;
const QByteArray kAudioWord = QByteArrayLiteral("AUDIO ");

/// A copy of the bytes between two places, without the white space around them.
QByteArray trimmed(const char *begin, const char *end)
{
    const auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (begin < end && isSpace(*begin))
        ++begin;
    while (begin < end && isSpace(end[-1]))
        --end;
    return {begin, static_cast<int>(end - begin)};
}

struct AudioHeader
{
    uint userId = 0;
    int length = -1; ///< negative: no audio header
};

/// The header without its line end. An id that is no number reads 0: the frame still has to be taken off the stream.
AudioHeader parseAudioHeader(const QByteArray &header)
{
    const int id = kAudioWord.size();
    const int idEnd = header.indexOf(' ', id);
    if (idEnd < 0)
        return {};
    const int lengthEnd = header.indexOf(' ', idEnd + 1);
    bool isNumber = false;
    const qlonglong length = header.mid(idEnd + 1, lengthEnd < 0 ? -1 : lengthEnd - idEnd - 1).toLongLong(&isNumber);
    if (!isNumber || length < 0)
        return {};
    return {header.mid(id, idEnd - id).toUInt(),
            static_cast<int>(std::min<qlonglong>(length, MessageBuffer::kLimit + 1LL))};
}

} // namespace

void MessageBuffer::append(const QByteArray &bytes)
{
    if (m_begin == m_bytes.size())
        clear();
    m_bytes.append(bytes);
    skip();
}

void MessageBuffer::clear()
{
    m_bytes.clear();
    m_begin = 0;
    m_searchedEnd = 0;
}

void MessageBuffer::skip()
{
    const int now = std::min(m_toSkip, m_bytes.size() - m_begin);
    if (now > 0) {
        m_toSkip -= now;
        consume(m_begin + now);
    }
}

void MessageBuffer::consume(int end)
{
    m_begin = end;
    if (m_begin >= kCompactFrom && m_begin > m_bytes.size() / 2) {
        m_bytes.remove(0, m_begin);
        m_begin = 0;
    }
    m_searchedEnd = m_begin;
}

int MessageBuffer::findLineFeed()
{
    const int from = std::max(m_begin, m_searchedEnd);
    const int found = m_bytes.indexOf('\n', from);
    m_searchedEnd = found < 0 ? m_bytes.size() : found;
    m_searchedTotal += m_searchedEnd - from;
    return found;
}

std::optional<MessageBuffer::Message> MessageBuffer::next()
{
    while (m_begin < m_bytes.size() && !m_overflow && m_toSkip == 0) {
        const int available = m_bytes.size() - m_begin;
        if (std::equal(kAudioWord.cbegin(), kAudioWord.cbegin() + std::min(available, kAudioWord.size()),
                       m_bytes.cbegin() + m_begin)) {
            if (available >= kAudioWord.size())
                return nextAudio();
        }
        const int end = findLineFeed();
        m_overflow = (end < 0 ? available : end - m_begin) > kLimit;
        if (end < 0 || m_overflow)
            return std::nullopt;
        Message message;
        message.bytes = takeLine(end);
        if (!message.bytes.isEmpty())
            return message;
    }
    return std::nullopt;
}

/// Takes the line that ends there off the buffer.
QByteArray MessageBuffer::takeLine(int end)
{
    if (m_begin == 0 && end + 1 == m_bytes.size() && end >= kCompactFrom) {
        QByteArray line = std::exchange(m_bytes, QByteArray()); // a long list, and nothing else: not worth a copy
        clear();
        return std::move(line).trimmed();
    }
    QByteArray line = trimmed(m_bytes.constData() + m_begin, m_bytes.constData() + end);
    consume(end + 1);
    return line;
}

std::optional<MessageBuffer::Message> MessageBuffer::nextAudio()
{
    int headerEnd = findLineFeed();
    while (headerEnd >= 0 && m_bytes.at(headerEnd - 1) != '\r') { // the header ends with both
        m_searchedEnd = headerEnd + 1;
        headerEnd = findLineFeed();
    }
    if (headerEnd < 0) {
        m_overflow = m_bytes.size() - m_begin > kLimit;
        return std::nullopt;
    }
    const AudioHeader header = parseAudioHeader(m_bytes.mid(m_begin, headerEnd - 1 - m_begin));
    const int payload = headerEnd + 1;
    Message message;
    if (header.length < 0) {
        message.bytes = trimmed(m_bytes.constData() + m_begin, m_bytes.constData() + headerEnd);
        consume(payload);
        return message;
    }
    if (header.length > kLimit) {
        m_overflow = true;
        return std::nullopt;
    }
    if (m_bytes.size() - payload < header.length)
        return std::nullopt; // the header stays in front until the whole frame is there
    message.kind = Message::Kind::Audio;
    message.bytes = m_bytes.mid(payload, header.length);
    message.userId = header.userId;
    consume(payload + header.length);
    return message;
}

void MessageBuffer::discardPartialAudio()
{
    const QByteArray rest = QByteArray::fromRawData(m_bytes.constData() + m_begin, m_bytes.size() - m_begin);
    const int headerEnd = rest.startsWith(kAudioWord) ? rest.indexOf("\r\n") : -1;
    if (headerEnd < 0)
        return;
    const AudioHeader header = parseAudioHeader(rest.left(headerEnd));
    const int payload = m_begin + headerEnd + 2;
    if (header.length < 0 || header.length > kLimit || m_bytes.size() - payload >= header.length)
        return;
    m_toSkip = header.length;
    consume(payload);
    skip();
}
