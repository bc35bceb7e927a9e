#pragma once

#include <QCoreApplication>

#include <memory>

/// Ends a QAudioInput or QAudioOutput: it stops and gives the device back at once, and is deleted from the event loop,
/// as on PulseAudio its destructor handles waiting events.
struct StreamEnd
{
    template<typename Audio> void operator()(Audio *audio) const
    {
        audio->stop();
        audio->setParent(QCoreApplication::instance()); // owns what still waits for its deletion at the end
        audio->deleteLater();
    }
};

template<typename Audio> using OwnedStream = std::unique_ptr<Audio, StreamEnd>;
