#include "support/WavFile.h"

#include "support/ChildProcess.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

constexpr int kHeader = 12;      // "RIFF", size, "WAVE"
constexpr int kChunkHeader = 8;  // name, size
constexpr int kFormatChunk = 16; // bytes
constexpr quint16 kPcm = 1;
constexpr quint16 kExtensible = 0xfffe;
constexpr int kSampleBits = 16;
constexpr int kMaxRate = 192000;
constexpr int kMaxChannels = 8;
constexpr int kMaxSeconds = 600;
constexpr qint64 kMaxFile = 256 * 1024 * 1024;

quint16 word(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint16>(bytes.constData() + offset);
}

quint32 doubleWord(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

template<typename Number> void append(QByteArray &bytes, Number number)
{
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

QByteArray mixed(const QByteArray &frames, int channels)
{
    if (channels == 1)
        return frames.left(frames.size() / 2 * 2);
    QByteArray mono;
    const int frameSize = channels * 2;
    for (int offset = 0; offset + frameSize <= frames.size(); offset += frameSize) {
        int sum = 0;
        for (int channel = 0; channel < channels; ++channel)
            sum += static_cast<qint16>(word(frames, offset + channel * 2));
        append(mono, static_cast<qint16>(sum / channels));
    }
    return mono;
}

} // namespace

Sound WavFile::parse(const QByteArray &bytes, QString *error)
{
    const auto fail = [error](const char *reason) {
        if (error)
            *error = QString::fromLatin1(reason);
        return Sound();
    };
    if (bytes.size() < kHeader || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE")
        return fail("no WAV file");
    int rate = 0;
    int channels = 0;
    for (int offset = kHeader; offset + kChunkHeader <= bytes.size();) {
        const QByteArray name = bytes.mid(offset, 4);
        const int left = bytes.size() - offset - kChunkHeader;
        // A program that wrote into a pipe could not fill in the size.
        const int size = static_cast<int>(qMin<quint32>(doubleWord(bytes, offset + 4), static_cast<quint32>(left)));
        const QByteArray chunk = bytes.mid(offset + kChunkHeader, size);
        if (name == "fmt ") {
            if (size < kFormatChunk || (word(chunk, 0) != kPcm && word(chunk, 0) != kExtensible) ||
                word(chunk, 14) != kSampleBits)
                return fail("not 16-bit PCM");
            channels = word(chunk, 2);
            rate = static_cast<int>(qMin<quint32>(doubleWord(chunk, 4), kMaxRate + 1));
            if (channels < 1 || channels > kMaxChannels || rate < 1 || rate > kMaxRate)
                return fail("an impossible number of channels or rate");
        } else if (name == "data") {
            if (rate == 0)
                return fail("samples before their format");
            const Sound sound{mixed(chunk, channels), rate};
            return sound.seconds() > kMaxSeconds ? fail("longer than ten minutes") : sound;
        }
        offset += kChunkHeader + size + size % 2;
    }
    return fail("no samples");
}

Sound WavFile::read(const QString &path, QString *error)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return parse(file.read(kMaxFile), error);
    if (error)
        *error = file.errorString();
    return {};
}

bool WavFile::write(const QString &path, const Sound &sound)
{
    QByteArray bytes("RIFF");
    append(bytes, static_cast<quint32>(4 + kChunkHeader + kFormatChunk + kChunkHeader + sound.pcm.size()));
    bytes += "WAVEfmt ";
    append(bytes, quint32{kFormatChunk});
    append(bytes, kPcm);
    append(bytes, quint16{1}); // channel
    append(bytes, static_cast<quint32>(sound.rate));
    append(bytes, static_cast<quint32>(sound.rate * 2)); // bytes per second
    append(bytes, quint16{2});                           // bytes per frame
    append(bytes, quint16{kSampleBits});
    bytes += "data";
    append(bytes, static_cast<quint32>(sound.pcm.size()));
    bytes += sound.pcm;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

Sound speech(const QString &text)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("speech.wav"));
    if (ChildProcess::outputOf(QStringLiteral("espeak-ng"), {QStringLiteral("-w"), path, text}).isNull())
        return {};
    return WavFile::read(path);
}
