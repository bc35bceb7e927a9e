#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVector>

#include <chrono>
#include <memory>

class QProcessEnvironment;
struct SimSerialState;

/// A serial port with modem lines that the test holds the other end of: a pseudo terminal, and a library that answers
/// for its lines in whatever program it is preloaded into. Lives in the thread of an event loop.
class FakeSerial final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FakeSerial)

public:
    enum class Line { Cts, Dcd, Dsr };

    /// The lines that the program drives, from this moment on.
    struct Edge
    {
        std::chrono::nanoseconds time; ///< monotonic clock, as std::chrono::steady_clock
        bool rts = false;
        bool dtr = false;
    };

    /// The port has a name that no other port of this machine has now. Every line is low.
    explicit FakeSerial(QObject *parent = nullptr);
    ~FakeSerial() override;

    [[nodiscard]] QString portName() const { return m_name; }
    /// The path of the pseudo terminal, for a program that does not know the port by its name.
    [[nodiscard]] QString terminal() const;
    /// Lists the port in this process, which runs with the library preloaded, until it is pulled or destroyed. Once.
    void plugIn();
    /// Lists the port, alone, in a child process. Not on Windows.
    void addTo(QProcessEnvironment &environment) const;
    /// The adapter is gone for whoever has it open, and no longer listed.
    void pull();

    /// What the radio does.
    void set(Line line, bool high);
    /// The radio sends data bytes.
    void send(const QByteArray &data);
    /// The line reads inverted the next `reads` times.
    void flip(Line line, int reads);

    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool rts() const;
    [[nodiscard]] bool dtr() const;
    /// Every change since the port was made; the last 1024 of them.
    [[nodiscard]] QVector<Edge> edges() const;
    /// How often the program has read the lines.
    [[nodiscard]] int reads() const;
    /// Data bytes that the program sent.
    [[nodiscard]] QByteArray written() const;
    /// In bit/s, as the program set it.
    [[nodiscard]] int baudRate() const;

    /// Waits while the event loop runs; false when RTS is not so in time.
    [[nodiscard]] bool waitForRts(bool high, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

private:
    class Terminal; // the pseudo terminal, which is another system's on Windows

    std::unique_ptr<Terminal> m_terminal;
    QString m_name;
    SimSerialState *m_state = nullptr;
};
