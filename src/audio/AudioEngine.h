#pragma once

#include "audio/OpusCodec.h"
#include "audio/PlaybackQueue.h"
#include "audio/RoomCipher.h"
#include "audio/SoundCard.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class QTimer;

/// Radio audio in, payloads out, and the other way round: sound card, gain, meter, codec and cipher. A sound card that
/// is lost or not there yet is looked for every five seconds; no other one takes the place of a lost one that was
/// chosen by name. GUI thread only.
class AudioEngine final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioEngine)

public:
    /// Uses the system's sound cards.
    explicit AudioEngine(QObject *parent = nullptr);
    AudioEngine(std::unique_ptr<SoundCard> soundCard, QObject *parent);
    ~AudioEngine() override;

    /// Between startCapture() and stopCapture(), also while a lost sound card is being waited for.
    [[nodiscard]] bool isCapturing() const { return m_capturing; }
    /// From startPlayback() on, also while a lost sound card is being waited for.
    [[nodiscard]] bool isPlaying() const { return m_playing; }
    [[nodiscard]] bool isMicMuted() const { return m_micMuted; }
    [[nodiscard]] bool isSpeakerMuted() const { return m_speakerMuted; }
    /// The last key that was set had 32 bytes; audio may still travel in the clear when the cipher is not there.
    [[nodiscard]] bool isEncryptionEnabled() const { return m_encryptionEnabled; }
    /// 0..100, of the last captured frame; 0 while nothing is captured or the microphone is muted.
    [[nodiscard]] int inputLevel() const { return m_inputLevel; }
    /// 0..100, of what was last received or played; 0 once half a second was captured since then.
    [[nodiscard]] int outputLevel() const { return m_outputLevel; }
    /// Samples per codec frame, 1..48000.
    [[nodiscard]] int frameSize() const { return m_frameSize; }
    /// Bytes of decoded audio that wait for the sound card.
    [[nodiscard]] int playbackBacklog() const { return m_playback.size(); }
    /// Opens one enciphered payload under the present room key, for diagnostics. Nothing when encryption is off, no
    /// key or cipher is there, the payload is shorter than 40 bytes or it does not open. `attempted` tells whether a
    /// trial was made at all.
    [[nodiscard]] std::optional<QByteArray> tryOpen(const QByteArray &payload, bool *attempted) const;

    /// Loads the codec and makes encoder and decoder. The arguments are ignored: a session always begins with 48 kHz
    /// mono at 32 kbit/s, until the server names another quality. False and error() when the codec cannot be loaded.
    bool init(int sampleRate, int channels, int frameSize, int bitrate, int complexity);
    /// Opens the input device. False without codec or device; true at once when capturing already. Capture without a
    /// device begins when there is one, if stopCapture() does not come before.
    bool startCapture();
    void stopCapture();
    /// Opens the output device, once. False when there is none; playback then begins when there is one.
    bool startPlayback();
    void stopPlayback();
    /// The payload of one packet: enciphered, or as it is while there is no key or no cipher. Empty when the cipher
    /// refuses.
    QByteArray encryptAudio(const QByteArray &raw);
    /// Takes the room's key, Base64 of 32 bytes. Anything else switches encryption off.
    void setEncryptionKey(const QString &roomKey);
    void setMicGain(int percent);     ///< 100 = unity
    void setSpeakerGain(int percent); ///< 100 = unity
    void setMicMuted(bool muted);
    void setSpeakerMuted(bool muted);
    /// The device to use when capture is opened next; empty: the system's default.
    void setInputDevice(const QString &name);
    /// The device to use when playback is opened next; empty: the system's default.
    void setOutputDevice(const QString &name);
    void clearBuffers();
    /// A new decoder of the present quality; a failure keeps the old one.
    void resetDecoder();
    /// Takes the server's quality: rate in Hz, bitrate in bit/s, complexity 0..10, frame duration in ms. Values that
    /// the codec does not accept leave no encoder or decoder until a later call; a rate or duration that is not
    /// positive is replaced by 48000 Hz or 20 ms.
    void applyQuality(int sampleRate, int bitrate, int complexity, int frameDurationMs);

public slots:
    /// One payload without the user id header.
    void onAudioReceived(const QByteArray &data);
    /// Gives the sound card its next chunk; runs every 10 ms while playing.
    void onOutputBufferTimer();
    /// Takes at most one frame from the sound card; runs every 10 ms while capturing.
    void onCaptureTimer();

signals:
    void audioEncoded(const QByteArray &data);
    void audioLevelChanged(int inputLevel, int outputLevel);
    void error(const QString &message);

private slots:
    void checkDevices();

private:
    static constexpr int kOutputRate = 44100; // Hz, whatever the quality

    /// Which device may be opened: what the system has, or the one that was open before, if it was chosen by name.
    enum class Choice { Any, Same };

    [[nodiscard]] bool canEncipher() const;
    [[nodiscard]] bool openCapture(Choice choice);
    [[nodiscard]] bool openPlayback(Choice choice, bool reportChoice);
    void beginCapture();
    void beginPolling();
    void beginPlayback();
    void watchDevices();
    void recoverCapture();
    void recoverPlayback();
    [[nodiscard]] bool readFrame(QByteArray &frame);
    [[nodiscard]] QByteArray encodeFrame(const QByteArray &frame);
    [[nodiscard]] bool hasRoomForPayload();
    [[nodiscard]] std::optional<QByteArray> packetOf(const QByteArray &payload) const;
    [[nodiscard]] bool decodePacket(const QByteArray &packet);
    void meterReceivedPacket(const QByteArray &pcm);
    void setOutputLevel(int level);
    void ageOutputLevel();

    std::unique_ptr<SoundCard> m_soundCard;
    OpusCodec m_codec;
    RoomCipher m_cipher;
    int m_captureRate = 48000; // Hz, of the input device and the encoder
    int m_decodeRate = 48000;  // Hz
    int m_channels = 1;
    int m_frameSize = 960; // samples
    int m_bitrate = 32000; // bit/s
    int m_complexity = 5;
    QString m_inputDeviceName;
    QString m_outputDeviceName;

    std::unique_ptr<SoundStream> m_input; // null while lost
    QTimer *m_captureTimer = nullptr;
    QByteArray m_carry;                    // what the device has delivered of the next frame
    std::unique_ptr<SoundStream> m_output; // null while lost
    QTimer *m_outputTimer = nullptr;
    PlaybackQueue m_playback;
    QByteArray m_decoded; // kept between packets for its memory
    QTimer *m_deviceWatch = nullptr;
    bool m_inputDelivered = false; // since the last look of the watch
    bool m_captureLost = false;
    bool m_playbackLost = false;
    bool m_isInputNamed = false;  // as it is or was open
    bool m_isOutputNamed = false; // as it is or was open

    bool m_wantsCapture = false;
    bool m_wantsPlayback = false;
    bool m_capturing = false;
    bool m_playing = false;
    bool m_encryptionEnabled = false;
    bool m_opusLoaded = false;
    bool m_sodiumLoaded = false;
    bool m_micMuted = false;
    bool m_speakerMuted = false;
    int m_micGain = 100;     // percent
    int m_speakerGain = 100; // percent
    int m_inputLevel = 0;
    int m_outputLevel = 0;
    qint64 m_outputLevelAge = 0; // in samples captured since
    qint64 m_overflows = 0;
    qint64 m_writeFailures = 0; // in a row
};
