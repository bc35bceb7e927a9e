#include "app/HardwareId.h"
#include "support/FakeProgram.h"
#include "support/TestMain.h"

#include <QCryptographicHash>
#include <QNetworkInterface>
#include <QRegularExpression>
#include <QSysInfo>

Q_DECLARE_METATYPE(FakeProgram::Reply)
Q_DECLARE_METATYPE(HardwareId::Interface)

namespace {

QString expectedFor(const QString &processor)
{
    QString mac = QStringLiteral("00:00:00:00:00:00");
    const auto interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        if ((flags & QNetworkInterface::IsUp) && (flags & QNetworkInterface::IsRunning) &&
            !(flags & QNetworkInterface::IsLoopBack)) {
            mac = interface.hardwareAddress();
            break;
        }
    }
    const QByteArray facts = (QSysInfo::machineHostName() + QLatin1Char('|') + mac + QLatin1Char('|') + processor +
                              QLatin1Char('|') + QSysInfo::productType() + QLatin1Char('|') + QSysInfo::kernelVersion())
                                 .toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(facts, QCryptographicHash::Sha256).toHex()).left(32);
}

QByteArray utf16WithMark(const QString &text)
{
    const QString marked = QChar(QChar::ByteOrderMark) + text;
    return QByteArray(reinterpret_cast<const char *>(marked.utf16()), marked.size() * int(sizeof(ushort)));
}

} // namespace

class HardwareIdTest final : public QObject
{
    Q_OBJECT

private slots:
    void isAlways32HexDigits();
    void isTheSameTwice();
    void choosesTheInterface_data();
    void choosesTheInterface();
    void digestOfAPcWithLoopbackOnly();
    void readsWmic_data();
    void readsWmic();
    void usesTheProcessorThatWmicNames();
    void fallsBackToTheArchitecture_data();
    void fallsBackToTheArchitecture();
};

void HardwareIdTest::isAlways32HexDigits()
{
    const QRegularExpression form(QStringLiteral("^[0-9a-f]{32}$"));
    QVERIFY(form.match(generateHardwareId()).hasMatch());
}

void HardwareIdTest::isTheSameTwice()
{
    QCOMPARE(generateHardwareId(), generateHardwareId());
}

void HardwareIdTest::choosesTheInterface_data()
{
    using Interfaces = QVector<HardwareId::Interface>;
    QTest::addColumn<Interfaces>("interfaces");
    QTest::addColumn<QString>("address");
    const auto interface = [](const char *address, QNetworkInterface::InterfaceFlags flags) {
        return HardwareId::Interface{flags, QLatin1String(address)};
    };
    const auto inUse = QNetworkInterface::IsUp | QNetworkInterface::IsRunning;
    const auto loopback = interface("00:00:5E:00:00:00", inUse | QNetworkInterface::IsLoopBack);
    const auto cable = interface("02:00:00:00:00:01", inUse);
    const auto radio = interface("02:00:00:00:00:02", inUse | QNetworkInterface::CanBroadcast);
    const QString none = QStringLiteral("00:00:00:00:00:00");
    QTest::newRow("no interface") << Interfaces() << none;
    QTest::newRow("loopback only") << Interfaces{loopback} << none;
    QTest::newRow("cable unplugged") << Interfaces{loopback, interface("02::1", QNetworkInterface::IsUp)} << none;
    QTest::newRow("switched off") << Interfaces{interface("02::1", QNetworkInterface::IsRunning), loopback} << none;
    QTest::newRow("after the loopback") << Interfaces{loopback, cable} << cable.address;
    QTest::newRow("the first of two") << Interfaces{radio, cable} << radio.address;
    QTest::newRow("after one that is off") << Interfaces{interface("02::1", {}), cable, radio} << cable.address;
}

void HardwareIdTest::choosesTheInterface()
{
    QFETCH(QVector<HardwareId::Interface>, interfaces);
    QTEST(HardwareId::macAddress(interfaces), "address");
}

void HardwareIdTest::digestOfAPcWithLoopbackOnly()
{
    // printf 'hill|00:00:00:00:00:00|x86_64|debian|6.1.0' | sha256sum | cut -c1-32
    QCOMPARE(HardwareId::digest({QStringLiteral("hill"), QStringLiteral("00:00:00:00:00:00"), QStringLiteral("x86_64"),
                                 QStringLiteral("debian"), QStringLiteral("6.1.0")}),
             QStringLiteral("082119ed68aca90ea0d8055488b488d3"));
}

void HardwareIdTest::readsWmic_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("id");
    const QString id = QStringLiteral("BFEBFBFF000906EA");
    const QString text = QStringLiteral("ProcessorId       \r\r\n") + id + QStringLiteral("  \r\r\n\r\r\n");
    QTest::newRow("console code page") << text.toLatin1() << id;
    QTest::newRow("UTF-16 with a byte-order mark") << utf16WithMark(text) << id;
    QTest::newRow("blank line between") << QByteArray("ProcessorId\n   \r\nABC\n") << QStringLiteral("ABC");
    QTest::newRow("no line feed at the end") << QByteArray("ProcessorId\nABC") << QStringLiteral("ABC");
    QTest::newRow("heading only") << QByteArray("ProcessorId\r\n") << QString();
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("odd bytes after a byte-order mark") << QByteArray::fromHex("fffe0a") << QString();
}

void HardwareIdTest::readsWmic()
{
    QFETCH(QByteArray, output);
    QTEST(HardwareId::processorIdFromWmic(output), "id");
}

void HardwareIdTest::usesTheProcessorThatWmicNames()
{
    FakeProgram::Reply reply;
    reply.output = "ProcessorId\r\n0123456789ABCDEF  \r\n";
    const FakeProgram wmic(QStringLiteral("wmic"), {reply});
    QCOMPARE(generateHardwareId(), expectedFor(QStringLiteral("0123456789ABCDEF")));
    QCOMPARE(wmic.calls(), QStringList{QStringLiteral("cpu get ProcessorId")});
}

void HardwareIdTest::fallsBackToTheArchitecture_data()
{
    QTest::addColumn<FakeProgram::Reply>("reply");
    const auto row = [](const char *name, const FakeProgram::Reply &reply) { QTest::newRow(name) << reply; };
    row("prints only the heading", {"ProcessorId\n"});
    row("prints nothing", {{}, 1});
    row("does not finish", {"ProcessorId\nLATE\n", 0, FakeProgram::Ending::Hangs});
}

void HardwareIdTest::fallsBackToTheArchitecture()
{
    QFETCH(FakeProgram::Reply, reply);
    const FakeProgram wmic(QStringLiteral("wmic"), {reply});
    QCOMPARE(generateHardwareId(), expectedFor(QSysInfo::currentCpuArchitecture()));
}

EVOX_TEST_MAIN(HardwareIdTest, QCoreApplication)
#include "tst_hardwareid.moc"
