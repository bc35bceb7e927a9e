#pragma once

#include "ui/settings/StreamEnd.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QAudioOutput;
class QIODevice;

/// Plays half a second of tone on the default playback device. Owns the device meanwhile and gives it back however the
/// test ends. GUI thread only; never waits.
class OutputTest final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OutputTest)

public:
    explicit OutputTest(QObject *parent = nullptr);
    ~OutputTest() override;

    [[nodiscard]] bool isRunning() const { return m_output != nullptr; }

    /// Begins; a test that runs already is broken off. False when there is no device or it does not start.
    [[nodiscard]] bool start();
    /// Breaks the test off; nothing is reported.
    void stop();

signals:
    /// The tone is over and the device released. Whoever is told may delete the test.
    void finished();

private:
    void writeRest();
    void onEnd();

    OwnedStream<QAudioOutput> m_output;
    QPointer<QIODevice> m_device; // deleted by Qt when the sound server goes away
    QByteArray m_rest;            // of the tone, not taken by the device yet
    QTimer m_feed;
    QTimer m_end;
};
