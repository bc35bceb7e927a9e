#pragma once

#include "audio/RuntimeLibrary.h"

#include <QtGlobal>

struct OpusEncoder;
struct OpusDecoder;

/// The codec's entry points under their exported names, with the library's own signatures. Null until loaded.
struct OpusEntryPoints
{
    OpusEncoder *(*opus_encoder_create)(qint32 sampleRate, int channels, int application, int *error) = nullptr;
    void (*opus_encoder_destroy)(OpusEncoder *encoder) = nullptr;
    int (*opus_encoder_ctl)(OpusEncoder *encoder, int request, ...) = nullptr;
    qint32 (*opus_encode)(OpusEncoder *encoder, const qint16 *pcm, int frameSize, unsigned char *data,
                          qint32 maxBytes) = nullptr;
    OpusDecoder *(*opus_decoder_create)(qint32 sampleRate, int channels, int *error) = nullptr;
    void (*opus_decoder_destroy)(OpusDecoder *decoder) = nullptr;
    int (*opus_decode)(OpusDecoder *decoder, const unsigned char *data, qint32 length, qint16 *pcm, int frameSize,
                       int decodeFec) = nullptr;
    const char *(*opus_strerror)(int error) = nullptr;
    bool loaded = false;
};

/// The Opus codec, loaded while the program runs; one table for the whole process. Load on the GUI thread.
class OpusLibrary final : public OpusEntryPoints
{
    Q_DISABLE_COPY_MOVE(OpusLibrary)

public:
    [[nodiscard]] static OpusLibrary &instance();

    /// True when the codec is there; a failure is logged and the next call searches again. Only the four functions
    /// without which there is no audio at all are demanded; the others are used without a further test.
    bool load();
    /// The library's own version text; empty when it is not loaded.
    [[nodiscard]] QString version() const;

private:
    OpusLibrary() = default;

    RuntimeLibrary m_library;
};
