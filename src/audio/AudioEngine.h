#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <optional>

/// Radio audio in, payloads out, and the other way round. GUI thread only.
class AudioEngine final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioEngine)

public:
    explicit AudioEngine(QObject *parent = nullptr);
    ~AudioEngine() override;

    [[nodiscard]] bool isCapturing() const;
    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] bool isMicMuted() const;
    [[nodiscard]] bool isSpeakerMuted() const;
    [[nodiscard]] int inputLevel() const;  ///< 0..100
    [[nodiscard]] int outputLevel() const; ///< 0..100
    /// Opens one enciphered payload under the present room key, for diagnostics. Nothing when encryption is off, no
    /// key or cipher is there, the payload is shorter than 40 bytes or it does not open. `attempted` tells whether a
    /// trial was made at all.
    [[nodiscard]] std::optional<QByteArray> tryOpen(const QByteArray &payload, bool *attempted) const;

    bool init(int sampleRate, int channels, int frameSize, int bitrate, int complexity);
    bool startCapture();
    void stopCapture();
    bool startPlayback();
    void stopPlayback();
    QByteArray encryptAudio(const QByteArray &raw);
    void setEncryptionKey(const QString &roomKey);
    void setMicGain(int percent);
    void setSpeakerGain(int percent);
    void setMicMuted(bool muted);
    void setSpeakerMuted(bool muted);
    void setInputDevice(const QString &name);
    void setOutputDevice(const QString &name);
    void clearBuffers();
    void resetDecoder();
    void applyQuality(int sampleRate, int bitrate, int complexity, int frameDurationMs);

public slots:
    void onAudioReceived(const QByteArray &data);
    void onOutputBufferTimer();

signals:
    void audioEncoded(const QByteArray &data);
    void audioLevelChanged(int inputLevel, int outputLevel);
    void error(const QString &message);
};
