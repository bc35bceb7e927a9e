#include "PortNames.h"
#include "qserialport.h"

#include <windows.h>

namespace {

QSerialPort::SerialPortError classified(DWORD code)
{
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME: return QSerialPort::DeviceNotFoundError;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY: return QSerialPort::PermissionError;
    case ERROR_INVALID_FUNCTION:
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_PARAMETER: return QSerialPort::UnsupportedOperationError;
    case ERROR_BAD_COMMAND:
    case ERROR_GEN_FAILURE:
    case ERROR_IO_DEVICE:
    case ERROR_INVALID_HANDLE:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_DEVICE_REMOVED: return QSerialPort::ResourceError;
    default: return QSerialPort::UnknownError;
    }
}

} // namespace

QSerialPort::QSerialPort(QObject *parent)
    : QIODevice(parent)
{
}

QSerialPort::QSerialPort(const QString &name, QObject *parent)
    : QIODevice(parent)
{
    setPortName(name);
}

QSerialPort::~QSerialPort()
{
    close();
}

void QSerialPort::setPortName(const QString &name)
{
    m_location = PortNames::location(name);
}

QString QSerialPort::portName() const
{
    return PortNames::name(m_location);
}

bool QSerialPort::open(OpenMode mode)
{
    if (isOpen()) {
        failWith(OpenError, tr("The port is open already"));
        return false;
    }
    clearError();
    const HANDLE handle =
        CreateFileW(reinterpret_cast<const wchar_t *>(m_location.utf16()), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        failWithSystemError(GetLastError());
        return false;
    }
    m_handle = handle;
    if (!applySettings()) {
        CloseHandle(m_handle);
        m_handle = nullptr;
        return false;
    }
    return QIODevice::open(mode | Unbuffered);
}

void QSerialPort::close()
{
    if (!m_handle)
        return;
    QIODevice::close();
    CloseHandle(m_handle);
    m_handle = nullptr;
}

void QSerialPort::clearError()
{
    m_error = NoError;
    setErrorString(QString());
}

bool QSerialPort::setBaudRate(qint32 baudRate)
{
    const qint32 before = m_baudRate;
    m_baudRate = baudRate;
    if (m_handle && !applySettings()) {
        m_baudRate = before;
        return false;
    }
    return true;
}

// There is one value of each, and every port is opened with it.
bool QSerialPort::setDataBits(DataBits)
{
    return true;
}

bool QSerialPort::setParity(Parity)
{
    return true;
}

bool QSerialPort::setStopBits(StopBits)
{
    return true;
}

bool QSerialPort::setFlowControl(FlowControl)
{
    return true;
}

bool QSerialPort::setRequestToSend(bool high)
{
    return drive(high ? SETRTS : CLRRTS);
}

bool QSerialPort::setDataTerminalReady(bool high)
{
    return drive(high ? SETDTR : CLRDTR);
}

QSerialPort::PinoutSignals QSerialPort::pinoutSignals()
{
    if (!requireOpen())
        return NoSignal;
    DWORD status = 0;
    if (!GetCommModemStatus(m_handle, &status)) {
        failWithSystemError(GetLastError());
        return NoSignal;
    }
    PinoutSignals lines = NoSignal;
    lines.setFlag(ClearToSendSignal, status & MS_CTS_ON);
    lines.setFlag(DataSetReadySignal, status & MS_DSR_ON);
    lines.setFlag(RingIndicatorSignal, status & MS_RING_ON);
    lines.setFlag(DataCarrierDetectSignal, status & MS_RLSD_ON);
    return lines;
}

qint64 QSerialPort::readData(char *, qint64)
{
    failWith(UnsupportedOperationError, tr("The port carries no data"));
    return -1;
}

qint64 QSerialPort::writeData(const char *, qint64)
{
    failWith(UnsupportedOperationError, tr("The port carries no data"));
    return -1;
}

/// 8 data bits, no parity, one stop bit; the lines are driven by hand, so that nothing keys a transmitter by itself.
bool QSerialPort::applySettings()
{
    DCB settings{};
    settings.DCBlength = sizeof settings;
    if (!GetCommState(m_handle, &settings)) {
        failWithSystemError(GetLastError());
        return false;
    }
    settings.BaudRate = static_cast<DWORD>(m_baudRate);
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    settings.fBinary = TRUE;
    settings.fParity = FALSE;
    settings.fOutxCtsFlow = FALSE;
    settings.fOutxDsrFlow = FALSE;
    settings.fDsrSensitivity = FALSE;
    settings.fOutX = FALSE;
    settings.fInX = FALSE;
    settings.fAbortOnError = FALSE;
    // An open port keeps its lines when its speed is changed.
    if (!isOpen()) {
        settings.fRtsControl = RTS_CONTROL_DISABLE;
        settings.fDtrControl = DTR_CONTROL_DISABLE;
    }
    if (!SetCommState(m_handle, &settings)) {
        failWithSystemError(GetLastError());
        return false;
    }
    return true;
}

bool QSerialPort::drive(unsigned long function)
{
    if (!requireOpen())
        return false;
    if (!EscapeCommFunction(m_handle, function)) {
        failWithSystemError(GetLastError());
        return false;
    }
    return true;
}

bool QSerialPort::requireOpen()
{
    if (!isOpen())
        failWith(NotOpenError, tr("The port is not open"));
    return isOpen();
}

void QSerialPort::failWith(SerialPortError error, const QString &text)
{
    m_error = error;
    setErrorString(text);
    emit errorOccurred(error);
}

void QSerialPort::failWithSystemError(unsigned long code)
{
    failWith(classified(code), qt_error_string(static_cast<int>(code)));
}
