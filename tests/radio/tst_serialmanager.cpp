#include "radio/SerialManager.h"
#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>

#include <memory>

using Line = FakeSerial::Line;

Q_DECLARE_METATYPE(FakeSerial::Line)

namespace {

constexpr int kBaudRate = 9600;
constexpr int kPollsToReport = 4; // the edge's own poll, the debounce, and what a busy machine adds
constexpr std::chrono::milliseconds kTimeout{10000};

} // namespace

// The real serial port code of Qt on simulated lines.
class SerialManagerTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listsOnlySimulatedPorts();
    void opensWithEverythingReleased();
    void refusesPorts_data();
    void refusesPorts();
    void keysItsPin_data();
    void keysItsPin();
    void keyingTwiceReportsTwice();
    void ignoresKeyingWhileClosed();
    void closingReleasesFirst_data();
    void closingReleasesFirst();
    void sendsNoData();
    void keepsNoData();

    void reportsCarrier_data();
    void reportsCarrier();
    void ignoresOtherLines_data();
    void ignoresOtherLines();
    void reportsChangeOnceWithinAFewPolls();
    void doesNotStarveUnderAStandingCarrier();
    void reportsAndRevertsAGlitch();
    void takesLogicAtOnce();
    void pollsOnlyWhileOpen();
    void survivesAPulledAdapter();

private:
    bool open(const QString &pttPin = QStringLiteral("RTS"), const QString &cosPin = QStringLiteral("CTS"),
              bool cosLogicHigh = true);
    /// Until the manager has looked at the lines so often again.
    [[nodiscard]] bool waitForPolls(int polls) const;

    std::unique_ptr<FakeSerial> m_serial;
    std::unique_ptr<SerialManager> m_manager;
};

void SerialManagerTest::init()
{
    m_serial = std::make_unique<FakeSerial>();
    m_serial->plugIn();
    m_manager = std::make_unique<SerialManager>();
}

void SerialManagerTest::cleanup()
{
    m_manager.reset();
    m_serial.reset();
}

bool SerialManagerTest::open(const QString &pttPin, const QString &cosPin, bool cosLogicHigh)
{
    return m_manager->open(m_serial->portName(), kBaudRate, pttPin, cosPin, cosLogicHigh);
}

bool SerialManagerTest::waitForPolls(int polls) const
{
    const int end = m_serial->reads() + polls;
    return waitFor([this, end] { return m_serial->reads() >= end; }, kTimeout);
}

void SerialManagerTest::listsOnlySimulatedPorts()
{
    FakeSerial other;
    other.plugIn();
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        names.append(port.portName());
    QCOMPARE(names, (QStringList{m_serial->portName(), other.portName()}));
}

void SerialManagerTest::opensWithEverythingReleased()
{
    LogCapture log;
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    QVERIFY(!m_manager->isOpen());
    QVERIFY(open(QStringLiteral("BOTH"), QStringLiteral("DSR")));

    QVERIFY(m_manager->isOpen());
    QVERIFY(m_serial->isOpen());
    QCOMPARE(m_serial->baudRate(), kBaudRate);
    QVERIFY(!m_serial->rts());
    QVERIFY(!m_serial->dtr());
    QCOMPARE(ptt.size(), 1);
    QCOMPARE(ptt.first().first().toBool(), false);
    QVERIFY(!m_manager->isPttActive());
    QVERIFY(!m_manager->isCosActive());
    QVERIFY(
        log.contains(QStringLiteral("[Serial] Connected to %1 @ 9600 PTT: BOTH COS: DSR").arg(m_serial->portName())));
    QVERIFY(waitForPolls(kPollsToReport));
    QVERIFY(cos.isEmpty()); // an idle line is no change
}

void SerialManagerTest::refusesPorts_data()
{
    QTest::addColumn<QString>("name"); // empty: the simulated one, which another program has open
    QTest::newRow("missing") << QStringLiteral("ttyNoSuchPort");
    QTest::newRow("no serial port") << QStringLiteral("/dev/null");
    QTest::newRow("busy") << QString();
}

void SerialManagerTest::refusesPorts()
{
    QFETCH(QString, name);
    QSerialPort other(m_serial->portName());
    if (name.isEmpty())
        QVERIFY2(other.open(QIODevice::ReadWrite), qPrintable(other.errorString()));

    LogCapture log;
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);
    QSignalSpy error(m_manager.get(), &SerialManager::error);
    QVERIFY(!m_manager->open(name.isEmpty() ? m_serial->portName() : name, kBaudRate, QStringLiteral("RTS"),
                             QStringLiteral("CTS"), true));
    QVERIFY(!m_manager->isOpen());
    QVERIFY(ptt.isEmpty());
    QVERIFY(error.isEmpty());
    const QString beginning = QStringLiteral("[Serial] Failed to open port: ");
    QCOMPARE(log.count(beginning), 1);
    QVERIFY(log.lines().first().size() > beginning.size()); // says why
}

void SerialManagerTest::keysItsPin_data()
{
    QTest::addColumn<QString>("pin");
    QTest::addColumn<bool>("rts");
    QTest::addColumn<bool>("dtr");
    QTest::newRow("RTS") << QStringLiteral("RTS") << true << false;
    QTest::newRow("DTR") << QStringLiteral("DTR") << false << true;
    QTest::newRow("BOTH") << QStringLiteral("BOTH") << true << true;
    QTest::newRow("lower case drives nothing") << QStringLiteral("rts") << false << false;
    QTest::newRow("mixed case drives nothing") << QStringLiteral("Both") << false << false;
    QTest::newRow("empty drives nothing") << QString() << false << false;
    QTest::newRow("other text drives nothing") << QStringLiteral("RTS ") << false << false;
}

void SerialManagerTest::keysItsPin()
{
    QFETCH(QString, pin);
    QFETCH(bool, rts);
    QFETCH(bool, dtr);
    QVERIFY(open(pin));
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);

    m_manager->setPtt(true);
    QCOMPARE(m_serial->rts(), rts);
    QCOMPARE(m_serial->dtr(), dtr);
    QVERIFY(m_manager->isPttActive());
    m_manager->setPtt(false);
    QVERIFY(!m_serial->rts());
    QVERIFY(!m_serial->dtr());
    QVERIFY(!m_manager->isPttActive());

    QCOMPARE(ptt.size(), 2); // also for a pin that drives nothing
    QCOMPARE(ptt.at(0).first().toBool(), true);
    QCOMPARE(ptt.at(1).first().toBool(), false);
}

void SerialManagerTest::keyingTwiceReportsTwice()
{
    QVERIFY(open());
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);
    const int edges = m_serial->edges().size();
    m_manager->setPtt(true);
    m_manager->setPtt(true);
    QCOMPARE(ptt.size(), 2);
    QCOMPARE(ptt.at(0).first().toBool(), true);
    QCOMPARE(ptt.at(1).first().toBool(), true);
    QCOMPARE(m_serial->edges().size(), edges + 1); // the transmitter is not interrupted
}

void SerialManagerTest::ignoresKeyingWhileClosed()
{
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);
    m_manager->setPtt(true);
    QVERIFY(ptt.isEmpty());
    QVERIFY(!m_manager->isPttActive());
    QVERIFY(open());
    m_manager->close();
    ptt.clear();
    m_manager->setPtt(true);
    m_manager->close();
    QVERIFY(ptt.isEmpty());
    QVERIFY(!m_serial->rts());
}

void SerialManagerTest::closingReleasesFirst_data()
{
    QTest::addColumn<bool>("destroy");
    QTest::newRow("closed") << false;
    QTest::newRow("destroyed") << true;
}

void SerialManagerTest::closingReleasesFirst()
{
    QFETCH(bool, destroy);
    QVERIFY(open(QStringLiteral("BOTH")));
    m_manager->setPtt(true);
    QSignalSpy ptt(m_manager.get(), &SerialManager::pttChanged);
    const int edges = m_serial->edges().size();
    if (destroy)
        m_manager.reset();
    else
        m_manager->close();

    QCOMPARE(ptt.size(), 1);
    QCOMPARE(ptt.first().first().toBool(), false);
    // One line after the other, as keyed: the last close alone would drop both at once.
    const QVector<FakeSerial::Edge> all = m_serial->edges();
    QCOMPARE(all.size(), edges + 2);
    QVERIFY(!all.at(edges).rts);
    QVERIFY(all.at(edges).dtr);
    QVERIFY(!all.at(edges + 1).dtr);
    QVERIFY(!m_serial->isOpen());
}

void SerialManagerTest::sendsNoData()
{
    QVERIFY(open(QStringLiteral("BOTH")));
    m_manager->setPtt(true);
    QVERIFY(waitForPolls(2));
    m_manager->setPtt(false);
    m_manager->close();
    QVERIFY(waitFor([this] { return !m_serial->isOpen(); }, kTimeout));
    QCOMPARE(m_serial->written(), QByteArray());
}

void SerialManagerTest::keepsNoData()
{
    QVERIFY(open());
    auto *port = m_manager->findChild<QSerialPort *>();
    const QSignalSpy arrivals(port, &QSerialPort::readyRead);
    for (int i = 1; i <= 3; ++i) {
        m_serial->send("FA00145000000;");
#ifndef Q_OS_WIN // where Qt has no serial port, ours does not take data in
        QTRY_COMPARE(arrivals.size(), i);
#endif
        QVERIFY(waitForPolls(1));
        QCOMPARE(port->bytesAvailable(), 0);
    }
    QVERIFY(m_manager->isOpen());
}

void SerialManagerTest::reportsCarrier_data()
{
    QTest::addColumn<QString>("pin");
    QTest::addColumn<Line>("line");
    QTest::addColumn<bool>("logicHigh");
    QTest::addColumn<bool>("asserted"); // the line to begin with; the other way afterwards
    const struct
    {
        const char *pin;
        Line line;
    } pins[] = {{"CTS", Line::Cts}, {"DCD", Line::Dcd}, {"DSR", Line::Dsr}};
    for (const auto &[pin, line] : pins) {
        QTest::addRow("%s, high is a carrier", pin) << QString::fromLatin1(pin) << line << true << true;
        QTest::addRow("%s, low is a carrier", pin) << QString::fromLatin1(pin) << line << false << false;
    }
}

void SerialManagerTest::reportsCarrier()
{
    QFETCH(QString, pin);
    QFETCH(Line, line);
    QFETCH(bool, logicHigh);
    QFETCH(bool, asserted);
    LogCapture log;
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    m_serial->set(line, asserted);
    QVERIFY(open(QStringLiteral("RTS"), pin, logicHigh));
    QVERIFY(!m_manager->isCosActive()); // a carrier that stands at opening is a change that is yet to be seen

    QTRY_COMPARE(cos.size(), 1);
    QCOMPARE(cos.first().first().toBool(), true);
    QVERIFY(m_manager->isCosActive());
    QVERIFY(log.contains(QStringLiteral("[Serial] COS changed (debounced): true")));

    m_serial->set(line, !asserted);
    QTRY_COMPARE(cos.size(), 2);
    QCOMPARE(cos.at(1).first().toBool(), false);
    QVERIFY(!m_manager->isCosActive());
    QVERIFY(log.contains(QStringLiteral("[Serial] COS changed (debounced): false")));
}

void SerialManagerTest::ignoresOtherLines_data()
{
    QTest::addColumn<QString>("pin");
    QTest::addColumn<QList<Line>>("lines");
    QTest::newRow("CTS") << QStringLiteral("CTS") << QList<Line>{Line::Dcd, Line::Dsr};
    QTest::newRow("DCD") << QStringLiteral("DCD") << QList<Line>{Line::Cts, Line::Dsr};
    QTest::newRow("DSR") << QStringLiteral("DSR") << QList<Line>{Line::Cts, Line::Dcd};
    QTest::newRow("lower case reads nothing") << QStringLiteral("cts") << QList<Line>{Line::Cts, Line::Dcd, Line::Dsr};
    QTest::newRow("empty reads nothing") << QString() << QList<Line>{Line::Cts, Line::Dcd, Line::Dsr};
}

void SerialManagerTest::ignoresOtherLines()
{
    QFETCH(QString, pin);
    QFETCH(QList<Line>, lines);
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    QVERIFY(open(QStringLiteral("RTS"), pin));
    for (const Line line : qAsConst(lines))
        m_serial->set(line, true);
    QVERIFY(waitForPolls(kPollsToReport));
    QVERIFY(cos.isEmpty());
    // Not asserted, so with the logic inverted it counts as a carrier.
    m_manager->setCosLogicHigh(false);
    QTRY_COMPARE(cos.size(), 1);
    QCOMPARE(cos.first().first().toBool(), true);
}

void SerialManagerTest::reportsChangeOnceWithinAFewPolls()
{
    QVERIFY(open());
    QVERIFY(waitForPolls(1));
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    int readsAtReport = 0;
    connect(m_manager.get(), &SerialManager::cosChanged, this, [&] { readsAtReport = m_serial->reads(); });
    const int readsAtEdge = m_serial->reads();
    m_serial->set(Line::Cts, true);
    QTRY_COMPARE(cos.size(), 1);
    const int polls = readsAtReport - readsAtEdge;
    QVERIFY2(polls >= 1 && polls <= kPollsToReport, qPrintable(QStringLiteral("after %1 polls").arg(polls)));
    QVERIFY(waitForPolls(2 * kPollsToReport));
    QCOMPARE(cos.size(), 1);
}

void SerialManagerTest::doesNotStarveUnderAStandingCarrier()
{
    QVERIFY(open());
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    m_serial->set(Line::Cts, true);
    QVERIFY(waitForPolls(2 * kPollsToReport)); // a debounce restarted by each of them would never end
    QCOMPARE(cos.size(), 1);
}

void SerialManagerTest::reportsAndRevertsAGlitch()
{
    QVERIFY(open());
    QVERIFY(waitForPolls(1));
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    m_serial->flip(Line::Cts, 1); // seen by a single poll
    QTRY_COMPARE(cos.size(), 2);
    QCOMPARE(cos.at(0).first().toBool(), true);
    QCOMPARE(cos.at(1).first().toBool(), false);
    QVERIFY(waitForPolls(kPollsToReport));
    QCOMPARE(cos.size(), 2);
}

void SerialManagerTest::takesLogicAtOnce()
{
    QVERIFY(open());
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    m_manager->setCosLogicHigh(false);
    QTRY_COMPARE(cos.size(), 1);
    QVERIFY(m_manager->isCosActive());
    m_manager->setCosLogicHigh(true);
    QTRY_COMPARE(cos.size(), 2);
    QVERIFY(!m_manager->isCosActive());
}

void SerialManagerTest::pollsOnlyWhileOpen()
{
    QVERIFY(open());
    QVERIFY(waitForPolls(2));
    m_manager->close();
    const int reads = m_serial->reads();
    m_serial->set(Line::Cts, true);
    // A second manager's polls are the clock: the first one would have polled as often.
    FakeSerial otherSerial;
    otherSerial.plugIn();
    SerialManager other;
    QVERIFY(other.open(otherSerial.portName(), kBaudRate, QStringLiteral("RTS"), QStringLiteral("CTS"), true));
    QTRY_VERIFY(otherSerial.reads() >= 2 * kPollsToReport);
    QCOMPARE(m_serial->reads(), reads);
}

void SerialManagerTest::survivesAPulledAdapter()
{
    m_serial->set(Line::Cts, true);
    QVERIFY(open());
    QSignalSpy cos(m_manager.get(), &SerialManager::cosChanged);
    QTRY_COMPARE(cos.size(), 1);
    m_manager->setPtt(true);

    LogCapture log; // a warning would fail the test
    m_serial->pull();
    QTRY_COMPARE(cos.size(), 2); // so that the room is not held by a radio that is gone
    QCOMPARE(cos.at(1).first().toBool(), false);
    m_manager->setPtt(false);
    m_manager->setPtt(true);
    QCOMPARE(log.lines().size(), 1);
    m_manager->close();
    QVERIFY(!m_manager->isOpen());

    FakeSerial replacement;
    replacement.plugIn();
    QVERIFY(m_manager->open(replacement.portName(), kBaudRate, QStringLiteral("RTS"), QStringLiteral("CTS"), true));
    m_manager->setPtt(true);
    QVERIFY(replacement.rts());
}

EVOX_TEST_MAIN(SerialManagerTest, QCoreApplication)
#include "tst_serialmanager.moc"
