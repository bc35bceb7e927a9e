#pragma once

#include "audio/AudioEngine.h"
#include "audio/FakeSoundCard.h"
#include "audio/OpusCodec.h"

#include <QList>
#include <QPair>

/// An engine on a simulated sound card, and everything that it has emitted.
class EngineRig
{
public:
    static constexpr int kFrameBytes = 1920; ///< 20 ms at 48 kHz
    static constexpr int kChunkBytes = 1764; ///< 20 ms at 44.1 kHz

    EngineRig()
    {
        QObject::connect(&engine, &AudioEngine::audioEncoded, &engine,
                         [this](const QByteArray &payload) { payloads.append(payload); });
        QObject::connect(&engine, &AudioEngine::audioLevelChanged, &engine, [this](int input, int output) {
            levels.append({input, output});
        });
    }

    bool init() { return engine.init(0, 0, 0, 0, 0); }
    bool startBoth() { return init() && engine.startCapture() && engine.startPlayback(); }
    /// Puts the samples into the input and polls until nothing more comes out.
    void capture(const QByteArray &pcm)
    {
        card->input->pending.append(pcm);
        do
            engine.onCaptureTimer();
        while (card->input && !card->input->pending.isEmpty() && engine.isCapturing() && !engine.isMicMuted());
    }
    void feedOutput(int times)
    {
        for (int i = 0; i < times; ++i)
            engine.onOutputBufferTimer();
    }

    FakeSoundCard *card = new FakeSoundCard;
    QList<QByteArray> payloads;
    QList<QPair<int, int>> levels; ///< input, output
    AudioEngine engine{std::unique_ptr<SoundCard>(card), nullptr};
};

/// A room key as the server gives it.
inline QString roomKey(char fill = 'k')
{
    return QString::fromLatin1(QByteArray(32, fill).toBase64());
}

/// What an encoder of its own makes of the same samples. `settings` tells the frame rate, `frameSize` the frames.
inline QList<QByteArray> encodedApart(const QByteArray &pcm, const OpusEncoderSettings &settings, int frameSize)
{
    OpusCodec codec;
    QList<QByteArray> packets;
    if (codec.createEncoder(settings) != 0)
        return packets;
    const int frameBytes = frameSize * 2;
    for (int i = 0; i + frameBytes <= pcm.size(); i += frameBytes) {
        QByteArray packet;
        if (codec.encode(pcm.mid(i, frameBytes), packet) > 0)
            packets.append(packet);
    }
    return packets;
}

/// The quality that every session begins with.
inline OpusEncoderSettings firstQuality()
{
    return {OpusApplication::Voip, 48000, 1, 32000, 5};
}
