#include "audio/PlaybackQueue.h"

#include "audio/Pcm.h"

namespace {

constexpr int kMillisecondsPerSecond = 1000;
constexpr int kDefaultChunkDuration = 20; // ms

} // namespace

PlaybackQueue::PlaybackQueue(int sampleRate)
    : m_sampleRate(sampleRate)
    , m_hardLimit(sampleRate * Pcm::kBytesPerSample)
    , m_trimThreshold(sampleRate / 2 * 2)
    , m_trimTarget(sampleRate / 5 * Pcm::kBytesPerSample)
{
}

int PlaybackQueue::size() const
{
    return static_cast<int>(m_bytes.size() - m_head);
}

int PlaybackQueue::chunkSize(int frameSize, int frameRate) const
{
    const qint64 duration = qint64(frameSize) * kMillisecondsPerSecond / qMax(frameRate, 1);
    const qint64 samples =
        qint64(m_sampleRate) * (duration > 0 ? duration : kDefaultChunkDuration) / kMillisecondsPerSecond;
    // No codec has frames of a second; the bound only keeps a server's absurd numbers within an int.
    return static_cast<int>(qMin(samples, qint64(m_sampleRate))) * Pcm::kBytesPerSample;
}

void PlaybackQueue::append(const QByteArray &pcm)
{
    // Moved only once more has gone than is left, so that each byte is moved at most once on average.
    if (m_head > 0 && m_head >= m_bytes.size() - m_head) {
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(m_head));
        m_head = 0;
    }
    m_bytes.insert(m_bytes.end(), pcm.cbegin(), pcm.cend());
    if (size() > m_trimThreshold)
        drop(size() - m_trimTarget);
}

void PlaybackQueue::drop(int bytes)
{
    m_head += static_cast<std::size_t>(qBound(0, bytes, size()));
}

void PlaybackQueue::clear()
{
    m_bytes.clear();
    m_head = 0;
}
