#pragma once

#include "audio/SoundCard.h"

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QPointer>

#include <limits>

/// A sound card input that delivers what the test puts in, in portions as small as the test wants.
class FakeInput final : public QIODevice
{
    Q_OBJECT

public:
    FakeInput() { open(ReadOnly | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

    QByteArray pending;
    int portion = std::numeric_limits<int>::max(); ///< the most bytes that one read returns
    int reads = 0;

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *, qint64) override { return -1; }
};

/// A sound card output that keeps what it accepts.
class FakeOutput final : public QIODevice
{
    Q_OBJECT

public:
    FakeOutput() { open(WriteOnly | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

    QByteArray played;
    QList<qint64> answers; ///< what the next writes return; -1 is an error. Then everything is accepted
    int room = std::numeric_limits<int>::max(); ///< bytes that it takes at the moment
    int writes = 0;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override;
};

/// Stands in for the system's sound cards. The engine owns it; the test keeps a pointer.
class FakeSoundCard final : public SoundCard
{
public:
    [[nodiscard]] std::unique_ptr<SoundStream> openInput(const Request &request) override;
    [[nodiscard]] std::unique_ptr<SoundStream> openOutput(const Request &request) override;

    /// What the system does when a card is pulled out: the devices are deleted under their users.
    void unplug();

    bool present = true; ///< false: nothing can be opened
    QString named;       ///< the one device that is found by its name; the others are the default
    QList<Request> inputRequests;
    QList<Request> outputRequests;
    QPointer<FakeInput> input;
    QPointer<FakeOutput> output;
};
