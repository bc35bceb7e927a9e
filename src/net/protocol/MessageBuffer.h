#pragma once

#include <QByteArray>

#include <optional>

/// Cuts the bytes of the control connection into messages: lines, and binary audio frames announced by an
/// "AUDIO <user id> <length>" header. Bytes are searched for a line end once, and taking a message copies at most the
/// message.
class MessageBuffer final
{
public:
    /// The longest line, and the longest audio frame, that is waited for.
    static constexpr int kLimit = 64 * 1024 * 1024;

    struct Message
    {
        enum class Kind { Line, Audio };
        Kind kind = Kind::Line;
        QByteArray bytes; ///< the line without white space around it, never empty; or the audio payload
        uint userId = 0;  ///< Kind::Audio: the talker
    };

    void append(const QByteArray &bytes);
    /// The next whole message; nothing while it is incomplete. An audio header that makes no sense comes as a line.
    [[nodiscard]] std::optional<Message> next();
    /// The announced or waiting message is longer than kLimit: nothing more can be made of this connection.
    [[nodiscard]] bool isOverflowing() const { return m_overflow; }
    [[nodiscard]] bool isEmpty() const { return m_begin == m_bytes.size(); }
    /// Drops an audio frame of which only a part is there: what is still to come of it is skipped.
    void discardPartialAudio();
    void clear();
    /// Bytes looked at for a line end so far; for the tests of the promise above.
    [[nodiscard]] qint64 searched() const { return m_searchedTotal; }

private:
    [[nodiscard]] int findLineFeed();
    [[nodiscard]] QByteArray takeLine(int end);
    [[nodiscard]] std::optional<Message> nextAudio();
    void consume(int end);
    void skip();

    QByteArray m_bytes;
    int m_begin = 0;       ///< first byte not yet consumed
    int m_searchedEnd = 0; ///< no line end between m_begin and here
    int m_toSkip = 0;      ///< bytes of a discarded frame that are still to come
    bool m_overflow = false;
    qint64 m_searchedTotal = 0;
};
