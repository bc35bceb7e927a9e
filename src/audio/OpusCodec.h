#pragma once

#include "audio/OpusLibrary.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>

/// What an encoder tunes for; the library's own numbers.
enum class OpusApplication { Voip = 2048, Audio = 2049 };

struct OpusEncoderSettings
{
    OpusApplication application = OpusApplication::Voip;
    int sampleRate = 48000; ///< Hz; the codec takes 8000, 12000, 16000, 24000 and 48000
    int channels = 1;
    int bitrate = 32000; ///< bit/s
    int complexity = 5;  ///< 0..10
};

/// One encoder and one decoder of the loaded Opus library, each there or not. Errors are the library's negative codes.
class OpusCodec final
{
public:
    static constexpr int kMaxPacketSize = 4000; ///< bytes

    [[nodiscard]] bool hasEncoder() const { return m_encoder != nullptr; }
    [[nodiscard]] bool hasDecoder() const { return m_decoder != nullptr; }
    /// The library's text for one of its error codes.
    [[nodiscard]] static QString errorText(int error);

    /// Returns 0, or an error code and leaves the earlier encoder. The library has to be loaded.
    int createEncoder(const OpusEncoderSettings &settings);
    /// Returns 0, or an error code and leaves the earlier decoder. The library has to be loaded.
    int createDecoder(int sampleRate, int channels);
    void destroyEncoder() { m_encoder.reset(); }
    void destroyDecoder() { m_decoder.reset(); }

    /// Encodes 16-bit mono samples; `packet` gets the result. Returns its size or a negative error; an encoder has to
    /// be there.
    int encode(const QByteArray &pcm, QByteArray &packet);
    /// Decodes one packet into at most `frameSize` samples; `pcm` gets them. Returns their number or a negative error;
    /// a decoder has to be there.
    int decode(const QByteArray &packet, int frameSize, QByteArray &pcm);

private:
    struct EncoderDeleter
    {
        void operator()(OpusEncoder *encoder) const { OpusLibrary::instance().opus_encoder_destroy(encoder); }
    };
    struct DecoderDeleter
    {
        void operator()(OpusDecoder *decoder) const { OpusLibrary::instance().opus_decoder_destroy(decoder); }
    };

    std::unique_ptr<OpusEncoder, EncoderDeleter> m_encoder;
    std::unique_ptr<OpusDecoder, DecoderDeleter> m_decoder;
    std::array<unsigned char, kMaxPacketSize> m_encoded{}; // packets are much smaller: cut to size from here
};
