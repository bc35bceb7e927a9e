#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <vector>

/// Decoded audio on its way to the sound card, oldest first. Holds the delay near 200 ms by discarding old audio, and
/// gives bytes away from the front without moving the rest. Sizes in bytes of 16-bit mono samples.
class PlaybackQueue final
{
public:
    /// The sample rate of the audio that it will hold, in Hz, above 0.
    explicit PlaybackQueue(int sampleRate);

    [[nodiscard]] int size() const;
    /// More than one second is waiting: nothing may be added.
    [[nodiscard]] bool isOverfull() const { return size() > m_hardLimit; }
    /// The oldest byte; size() bytes stand there until the queue changes.
    [[nodiscard]] const char *front() const { return m_bytes.data() + m_head; }
    /// What the sound card gets at a time: as much as one codec frame lasts in whole milliseconds, 20 ms when
    /// that is none, one second at most. `frameSize` in samples at `frameRate` Hz.
    [[nodiscard]] int chunkSize(int frameSize, int frameRate) const;

    /// Adds to the end. More than half a second then loses its oldest part, down to 200 ms.
    void append(const QByteArray &pcm);
    /// Removes from the front, at most size() bytes.
    void drop(int bytes);
    void clear();

private:
    int m_sampleRate;
    int m_hardLimit;
    int m_trimThreshold;
    int m_trimTarget;
    std::vector<char> m_bytes;
    std::size_t m_head = 0; // bytes before it are gone
};
