#pragma once

#include "ui/settings/StreamEnd.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QAudioDeviceInfo;
class QAudioInput;
class QIODevice;

/// Listens to a capture device for about a second and tells how loud it was. Owns the device meanwhile and gives it
/// back however the test ends. GUI thread only; never waits.
class InputTest final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(InputTest)

public:
    explicit InputTest(QObject *parent = nullptr);
    ~InputTest() override;

    [[nodiscard]] bool isRunning() const { return m_input != nullptr; }

    /// Begins; a test that runs already is broken off. False when the device is gone or does not start.
    [[nodiscard]] bool start(const QAudioDeviceInfo &device);
    /// Breaks the test off; nothing is reported.
    void stop();

signals:
    /// The second is over and the device released. @p level is 0..100; a device that went away in between is judged by
    /// what it had delivered. Whoever is told may delete the test.
    void finished(int level);

private:
    void onTick();

    OwnedStream<QAudioInput> m_input;
    QPointer<QIODevice> m_device; // deleted by Qt when the sound server goes away
    QByteArray m_recording;
    QTimer m_timer;
    int m_reads = 0;
};
