#include "net/protocol/MessageBuffer.h"

#include <QList>

#include <algorithm>

namespace {

// Consumed bytes are given back in one move when there are this many and they are the larger half.
constexpr int kCompactFrom = 64 * 1024;
const QByteArray kAudioWord = QByteArrayLiteral("AUDIO ");

struct AudioHeader
{
    uint userId = 0;
    int length = -1; ///< negative: no audio header
};

AudioHeader parseAudioHeader(const QByteArray &text)
{
    const QList<QByteArray> parts = text.split(' ');
    if (parts.size() < 3)
        return {};
    bool idOk = false;
    bool lengthOk = false;
    const uint id = parts.at(1).toUInt(&idOk);
    const qlonglong length = parts.at(2).toLongLong(&lengthOk);
    if (!idOk || !lengthOk || length < 0)
        return {};
    return {id, static_cast<int>(std::min<qlonglong>(length, MessageBuffer::kLimit + 1LL))};
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
        if (end < 0) {
            m_overflow = available > kLimit;
            return std::nullopt;
        }
        // Named, so that the trimming copies: a temporary would be trimmed in place, in this buffer.
        const QByteArray raw = QByteArray::fromRawData(m_bytes.constData() + m_begin, end - m_begin);
        Message message{Message::Kind::Line, raw.trimmed(), 0};
        message.bytes.detach(); // where nothing was trimmed it still points into this buffer
        consume(end + 1);
        if (!message.bytes.isEmpty())
            return message;
    }
    return std::nullopt;
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
    const QByteArray text = m_bytes.mid(m_begin, headerEnd - 1 - m_begin);
    const AudioHeader header = parseAudioHeader(text);
    const int payload = headerEnd + 1;
    if (header.length < 0) {
        consume(payload);
        return Message{Message::Kind::Line, text.trimmed(), 0};
    }
    if (header.length > kLimit) {
        m_overflow = true;
        return std::nullopt;
    }
    if (m_bytes.size() - payload < header.length)
        return std::nullopt; // the header stays in front until the whole frame is there
    Message message{Message::Kind::Audio, m_bytes.mid(payload, header.length), header.userId};
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
