#include "radio/SerialManager.h"

#include <QDebug>
#include <QSerialPort>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kPollInterval{50};
constexpr std::chrono::milliseconds kDebounce{50};

} // namespace

SerialManager::SerialManager(QObject *parent)
    : QObject(parent)
    , m_pollTimer(new QTimer(this))
    , m_debounceTimer(new QTimer(this))
{
    m_pollTimer->setInterval(kPollInterval);
    m_debounceTimer->setInterval(kDebounce);
    m_debounceTimer->setSingleShot(true);
    connect(m_pollTimer, &QTimer::timeout, this, &SerialManager::checkCos);
    connect(m_debounceTimer, &QTimer::timeout, this, &SerialManager::onCosDebounce);
}

SerialManager::~SerialManager()
{
    close();
}

bool SerialManager::isOpen() const
{
    return m_port && m_port->isOpen();
}

bool SerialManager::isPttActive() const
{
    return m_pttActive;
}

bool SerialManager::isCosActive() const
{
    return m_cosActive;
}

bool SerialManager::open(const QString &portName, int baudRate, const QString &pttPin, const QString &cosPin,
                         bool cosLogicHigh)
{
    m_port = new QSerialPort(portName, this);
    m_port->setBaudRate(baudRate);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    // What a radio sends on the same cable is of no use, but kept until somebody takes it.
    connect(m_port, &QSerialPort::readyRead, m_port, [port = m_port] { port->readAll(); });
    if (!m_port->open(QIODevice::ReadWrite)) {
        qDebug().noquote() << "[Serial] Failed to open port:" << m_port->errorString();
        delete m_port;
        m_port = nullptr;
        return false;
    }
    m_pttPin = pttPin;
    m_cosPin = cosPin;
    m_cosLogicHigh = cosLogicHigh;
    m_port->setRequestToSend(false); // the system raises both at open
    m_port->setDataTerminalReady(false);
    setPtt(false);
    m_pollTimer->start();
    qDebug().noquote() << "[Serial] Connected to" << portName << "@" << baudRate << "PTT:" << pttPin
                       << "COS:" << cosPin;
    return true;
}

void SerialManager::close()
{
    m_pollTimer->stop();
    setPtt(false);
    delete m_port;
    m_port = nullptr;
}

void SerialManager::setPtt(bool active)
{
    if (!isOpen())
        return;
    m_pttActive = active;
    const bool both = m_pttPin == QLatin1String("BOTH");
    if (both || m_pttPin == QLatin1String("RTS"))
        m_port->setRequestToSend(active);
    if (both || m_pttPin == QLatin1String("DTR"))
        m_port->setDataTerminalReady(active);
    emit pttChanged(active);
}

void SerialManager::setCosLogicHigh(bool high)
{
    m_cosLogicHigh = high;
}

bool SerialManager::isCosLineAsserted() const
{
    const QSerialPort::PinoutSignals lines = m_port->pinoutSignals();
    if (m_cosPin == QLatin1String("CTS"))
        return lines.testFlag(QSerialPort::ClearToSendSignal);
    if (m_cosPin == QLatin1String("DCD"))
        return lines.testFlag(QSerialPort::DataCarrierDetectSignal);
    if (m_cosPin == QLatin1String("DSR"))
        return lines.testFlag(QSerialPort::DataSetReadySignal);
    return false;
}

void SerialManager::checkCos()
{
    if (!isOpen())
        return;
    const bool active = isCosLineAsserted() == m_cosLogicHigh;
    if (active == m_cosActive)
        return; // a debounce that waits goes on: a change that one poll saw is still reported
    m_cosPending = active;
    // Restarting it at every poll would starve it for ever: the poll is as fast as the debounce.
    if (!m_debounceTimer->isActive())
        m_debounceTimer->start();
}

void SerialManager::onCosDebounce()
{
    if (m_cosPending == m_cosActive)
        return;
    m_cosActive = m_cosPending;
    emit cosChanged(m_cosActive);
    qDebug() << "[Serial] COS changed (debounced):" << m_cosActive;
}
