#pragma once

#include <QString>

#include <limits>
#include <memory>

class QIODevice;

/// One open direction of a sound card; closes it when destroyed.
class SoundStream
{
public:
    virtual ~SoundStream() = default;
    SoundStream(const SoundStream &) = delete;
    SoundStream &operator=(const SoundStream &) = delete;

    /// Where to read or write 16-bit samples. Null once the system has taken it away, which may happen at any time.
    [[nodiscard]] virtual QIODevice *device() const = 0;
    /// Bytes that an output takes without cutting them off.
    [[nodiscard]] virtual int bytesFree() const { return std::numeric_limits<int>::max(); }
    /// Whether this is the device that the request named, not the system's default.
    [[nodiscard]] virtual bool isOfNamedDevice() const = 0;

protected:
    SoundStream() = default;
};

/// Opens sound card inputs and outputs. What the engine knows of the system's audio goes through here.
class SoundCard
{
public:
    struct Request
    {
        QString deviceName; ///< empty, or of no such device: the system's default device
        int sampleRate = 0; ///< Hz
        int channels = 1;
        bool reportChoice = true; ///< whether to log an output that is not the plain default
        bool onlyNamed = false;   ///< whether no other device may take the place of the named one
    };

    virtual ~SoundCard() = default;
    SoundCard(const SoundCard &) = delete;
    SoundCard &operator=(const SoundCard &) = delete;

    /// Null when the device cannot be opened.
    [[nodiscard]] virtual std::unique_ptr<SoundStream> openInput(const Request &request) = 0;
    /// Null when the device cannot be opened.
    [[nodiscard]] virtual std::unique_ptr<SoundStream> openOutput(const Request &request) = 0;

protected:
    SoundCard() = default;
};
