#pragma once

#include <QObject>
#include <QString>

class QSerialPort;
class QTimer;

/// The radio's push-to-talk and carrier lines on a serial port's modem lines; no data byte is ever sent or read. The
/// carrier is polled every 50 ms and a change is reported 50 to 100 ms after its edge. GUI thread only.
class SerialManager final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialManager)

public:
    explicit SerialManager(QObject *parent = nullptr);
    ~SerialManager() override;

    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool isPttActive() const;
    [[nodiscard]] bool isCosActive() const;

    /// Opens a port with PTT off; false, after a log line, when it cannot be opened. Does not close an earlier port:
    /// callers do that first. pttPin is "RTS", "DTR" or "BOTH", cosPin "CTS", "DCD" or "DSR", to the letter; any other
    /// text drives or reads no line. baudRate is in bit/s.
    bool open(const QString &portName, int baudRate, const QString &pttPin, const QString &cosPin, bool cosLogicHigh);
    /// Keys or releases the transmitter; nothing without an open port.
    void setPtt(bool active);
    /// Whether the asserted line means a carrier; takes effect at the next poll.
    void setCosLogicHigh(bool high);
    /// PTT off, then the port closed.
    void close();

signals:
    void cosChanged(bool active);
    void pttChanged(bool active);
    /// Declared for listeners; failures are returned and logged, never emitted.
    void error(const QString &message);

private slots:
    void onCosDebounce();
    void checkCos();

private:
    [[nodiscard]] bool isCosLineAsserted() const;

    QSerialPort *m_port = nullptr;
    QTimer *m_pollTimer = nullptr;
    QString m_pttPin = QStringLiteral("RTS");
    QString m_cosPin = QStringLiteral("CTS");
    bool m_cosLogicHigh = true;
    bool m_cosActive = false; ///< as last reported
    bool m_pttActive = false; ///< as last set
    QTimer *m_debounceTimer = nullptr;
    bool m_cosPending = false; ///< what the debounce will report
};
