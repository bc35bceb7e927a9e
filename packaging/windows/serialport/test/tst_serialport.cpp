#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>

#include <memory>

using Line = FakeSerial::Line;

Q_DECLARE_METATYPE(FakeSerial::Line)
Q_DECLARE_METATYPE(QSerialPort::PinoutSignal)

// The stand-in for Qt's serial port, on simulated lines.
class SerialPortTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listsPortsByNumber();
    void knowsItsName_data();
    void knowsItsName();
    void opensWithLowLines();
    void setsTheSpeed();
    void changingTheSpeedLeavesTheLines();
    void drivesItsLines();
    void readsTheLines_data();
    void readsTheLines();
    void refusesToOpen_data();
    void refusesToOpen();
    void refusesASecondOpen();
    void anOpenPortIsNobodyElses();
    void closingLetsOthersHaveIt();
    void needsAnOpenPort();
    void vanishes();
    void carriesNoData();

private:
    [[nodiscard]] bool open();

    std::unique_ptr<FakeSerial> m_line;
    std::unique_ptr<QSerialPort> m_port;
};

void SerialPortTest::init()
{
    m_line = std::make_unique<FakeSerial>();
    m_line->plugIn();
    m_port = std::make_unique<QSerialPort>(m_line->portName());
}

void SerialPortTest::cleanup()
{
    m_port.reset();
    m_line.reset();
}

bool SerialPortTest::open()
{
    return m_port->open(QIODevice::ReadWrite);
}

void SerialPortTest::listsPortsByNumber()
{
    FakeSerial second;
    FakeSerial third;
    third.plugIn(); // announced out of order
    second.plugIn();
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports) {
        names.append(port.portName());
        QCOMPARE(port.systemLocation(), QStringLiteral("\\\\.\\") + port.portName());
    }
    QCOMPARE(names, (QStringList{m_line->portName(), second.portName(), third.portName()}));
    third.pull();
    QCOMPARE(QSerialPortInfo::availablePorts().size(), 2);
}

void SerialPortTest::knowsItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("name") << QStringLiteral("COM12");
    QTest::addRow("location") << QStringLiteral("\\\\.\\COM12");
}

void SerialPortTest::knowsItsName()
{
    QFETCH(QString, name);
    QCOMPARE(QSerialPort(name).portName(), QStringLiteral("COM12"));
}

// The system raises both at open: a transmitter must not stay keyed by that.
void SerialPortTest::opensWithLowLines()
{
    QVERIFY2(open(), qPrintable(m_port->errorString()));
    QVERIFY(m_port->isOpen());
    QVERIFY(m_line->isOpen());
    QVERIFY(!m_line->rts());
    QVERIFY(!m_line->dtr());
    QCOMPARE(m_port->error(), QSerialPort::NoError);
}

void SerialPortTest::setsTheSpeed()
{
    QVERIFY(m_port->setBaudRate(57600));
    QVERIFY(open());
    QCOMPARE(m_port->baudRate(), 57600);
    QCOMPARE(m_line->baudRate(), 57600);
    QVERIFY(m_port->setBaudRate(115200));
    QCOMPARE(m_line->baudRate(), 115200);
}

void SerialPortTest::changingTheSpeedLeavesTheLines()
{
    QVERIFY(open());
    QVERIFY(m_port->setRequestToSend(true));
    QVERIFY(m_port->setBaudRate(57600));
    QVERIFY(m_line->rts());
}

void SerialPortTest::drivesItsLines()
{
    QVERIFY(open());
    QVERIFY(m_port->setRequestToSend(true));
    QVERIFY(m_line->rts());
    QVERIFY(!m_line->dtr());
    QVERIFY(m_port->setDataTerminalReady(true));
    QVERIFY(m_line->dtr());
    QVERIFY(m_port->setRequestToSend(false));
    QVERIFY(!m_line->rts());
    QVERIFY(m_line->dtr());
    QVERIFY(m_port->setDataTerminalReady(false));
    QVERIFY(!m_line->dtr());
}

void SerialPortTest::readsTheLines_data()
{
    QTest::addColumn<Line>("line");
    QTest::addColumn<QSerialPort::PinoutSignal>("signal");
    QTest::addRow("CTS") << Line::Cts << QSerialPort::ClearToSendSignal;
    QTest::addRow("DSR") << Line::Dsr << QSerialPort::DataSetReadySignal;
    QTest::addRow("DCD") << Line::Dcd << QSerialPort::DataCarrierDetectSignal;
}

void SerialPortTest::readsTheLines()
{
    QFETCH(Line, line);
    QFETCH(QSerialPort::PinoutSignal, signal);
    QVERIFY(open());
    QCOMPARE(m_port->pinoutSignals(), QSerialPort::PinoutSignals());
    m_line->set(line, true);
    QCOMPARE(m_port->pinoutSignals(), QSerialPort::PinoutSignals(signal));
    m_line->set(line, false);
    QCOMPARE(m_port->pinoutSignals(), QSerialPort::PinoutSignals());
}

void SerialPortTest::refusesToOpen_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("absent") << QStringLiteral("COM99");
    QTest::addRow("no name") << QString();
    QTest::addRow("no port") << QStringLiteral("NUL");
}

void SerialPortTest::refusesToOpen()
{
    QFETCH(QString, name);
    QSerialPort port(name);
    QSignalSpy errors(&port, &QSerialPort::errorOccurred);
    QVERIFY(!port.open(QIODevice::ReadWrite));
    QVERIFY(!port.isOpen());
    QVERIFY(port.error() != QSerialPort::NoError);
    QVERIFY(!port.errorString().isEmpty());
    QCOMPARE(errors.size(), 1);
    if (name == QLatin1String("COM99"))
        QCOMPARE(port.error(), QSerialPort::DeviceNotFoundError);
}

void SerialPortTest::refusesASecondOpen()
{
    QVERIFY(open());
    LogCapture log; // Qt would warn of it
    QVERIFY(!open());
    QCOMPARE(m_port->error(), QSerialPort::OpenError);
    QVERIFY2(m_port->isOpen(), "the first one holds");
}

void SerialPortTest::anOpenPortIsNobodyElses()
{
    QVERIFY(open());
    QSerialPort other(m_line->portName());
    QVERIFY(!other.open(QIODevice::ReadWrite));
    QCOMPARE(other.error(), QSerialPort::PermissionError);
}

void SerialPortTest::closingLetsOthersHaveIt()
{
    QVERIFY(open());
    QVERIFY(m_port->setRequestToSend(true));
    m_port->close();
    QVERIFY(!m_port->isOpen());
    QVERIFY(!m_line->isOpen());
    QVERIFY(!m_line->rts());
    QSerialPort other(m_line->portName());
    QVERIFY2(other.open(QIODevice::ReadWrite), qPrintable(other.errorString()));
}

void SerialPortTest::needsAnOpenPort()
{
    QVERIFY(!m_port->setRequestToSend(true));
    QCOMPARE(m_port->error(), QSerialPort::NotOpenError);
    m_port->clearError();
    QCOMPARE(m_port->error(), QSerialPort::NoError);
    QCOMPARE(m_port->pinoutSignals(), QSerialPort::PinoutSignals());
    QCOMPARE(m_port->error(), QSerialPort::NotOpenError);
}

void SerialPortTest::vanishes()
{
    QVERIFY(open());
    m_line->set(Line::Cts, true);
    QVERIFY(m_port->pinoutSignals() != QSerialPort::PinoutSignals());
    LogCapture log; // a warning would fail the test
    m_line->pull();
    QCOMPARE(m_port->pinoutSignals(), QSerialPort::PinoutSignals());
    QVERIFY(m_port->error() != QSerialPort::NoError);
    QVERIFY(!m_port->setRequestToSend(true));
    m_port->close();
    QVERIFY(!open());
    QCOMPARE(m_port->error(), QSerialPort::DeviceNotFoundError);
}

void SerialPortTest::carriesNoData()
{
    QVERIFY(open());
    QCOMPARE(m_port->write("x"), -1);
    QCOMPARE(m_port->error(), QSerialPort::UnsupportedOperationError);
    QVERIFY(m_port->readAll().isEmpty());
    QCOMPARE(m_line->written(), QByteArray());
}

EVOX_TEST_MAIN(SerialPortTest, QCoreApplication)
#include "tst_serialport.moc"
