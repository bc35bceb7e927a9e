#pragma once

#include <QIODevice>
#include <QString>

/// A serial port's modem lines on Windows: the part of the class of this name in Qt that the program uses. What the
/// program does not use is not there, so that it does not compile instead of doing something else. The port carries no
/// data: reading and writing fail with UnsupportedOperationError.
class QSerialPort : public QIODevice
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QSerialPort)

public:
    enum DataBits { Data8 = 8 };
    Q_ENUM(DataBits)
    enum Parity { NoParity = 0 };
    Q_ENUM(Parity)
    enum StopBits { OneStop = 1 };
    Q_ENUM(StopBits)
    enum FlowControl { NoFlowControl = 0 };
    Q_ENUM(FlowControl)

    /// The lines that the device drives.
    enum PinoutSignal {
        NoSignal = 0x00,
        DataCarrierDetectSignal = 0x08,
        DataSetReadySignal = 0x10,
        RingIndicatorSignal = 0x20,
        ClearToSendSignal = 0x80
    };
    Q_DECLARE_FLAGS(PinoutSignals, PinoutSignal)
    Q_FLAG(PinoutSignals)

    enum SerialPortError {
        NoError,
        DeviceNotFoundError,
        PermissionError, ///< another program has the port open
        OpenError,       ///< it is open already
        NotOpenError,
        ResourceError, ///< the adapter was pulled
        UnsupportedOperationError,
        UnknownError
    };
    Q_ENUM(SerialPortError)

    explicit QSerialPort(QObject *parent = nullptr);
    /// The name is that of the port, "COM3", or its location, "\\.\COM3".
    explicit QSerialPort(const QString &name, QObject *parent = nullptr);
    ~QSerialPort() override;

    void setPortName(const QString &name);
    [[nodiscard]] QString portName() const;
    [[nodiscard]] qint32 baudRate() const { return m_baudRate; }
    [[nodiscard]] SerialPortError error() const { return m_error; }
    [[nodiscard]] bool isSequential() const override { return true; }

    /// Opens the port for this program alone, with RTS and DTR low.
    bool open(OpenMode mode) override;
    void close() override;
    void clearError();

    /// In bit/s; at once on an open port.
    bool setBaudRate(qint32 baudRate);
    bool setDataBits(DataBits dataBits);
    bool setParity(Parity parity);
    bool setStopBits(StopBits stopBits);
    bool setFlowControl(FlowControl flowControl);

    /// The lines are driven and read at once; without an open port, or when it has gone, false and no signal.
    bool setRequestToSend(bool high);
    bool setDataTerminalReady(bool high);
    PinoutSignals pinoutSignals();

signals:
    void errorOccurred(QSerialPort::SerialPortError error);

protected:
    qint64 readData(char *data, qint64 maximum) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    using Handle = void *;

    bool applySettings();
    bool drive(unsigned long function);
    bool requireOpen();
    void failWith(SerialPortError error, const QString &text);
    void failWithSystemError(unsigned long code);

    QString m_location;
    Handle m_handle = nullptr;
    qint32 m_baudRate = 9600;
    SerialPortError m_error = NoError;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QSerialPort::PinoutSignals)
