#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/status/ControlPanel.h"
#include "ui/status/LevelMeter.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

#include <limits>

namespace {

constexpr int kLeastInt = std::numeric_limits<int>::min();

struct ServerRecord
{
    int bitrate = 32000;
    int sampleRate = 48000;
    int online = 0;
    int gateways = 0;
    int admins = 0;
    int rooms = 0;
};

} // namespace
Q_DECLARE_METATYPE(ServerRecord)

class ControlPanelTest final : public QObject
{
    Q_OBJECT

private slots:
    void startsWithFixedTexts_data();
    void startsWithFixedTexts();
    void structure();
    void serverInfo_data();
    void serverInfo();
    void serverTextsAreNotFilledAgain();
    void gatewayInfo_data();
    void gatewayInfo();
    void ping_data();
    void ping();
    void transmitIndicator();
    void readiness_data();
    void readiness();
    void themeLeavesTextsAlone_data();
    void themeLeavesTextsAlone();
    void headersHaveTheirGround_data();
    void headersHaveTheirGround();
    void hostileTextsDoNotMoveThePanel();
    void pictures_data();
    void pictures();
};

namespace {

template<typename Widget = QLabel> Widget *part(const QWidget &panel, const char *name)
{
    auto *found = panel.findChild<Widget *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

void showServer(ControlPanel &panel, const ServerRecord &record)
{
    panel.updateServerInfo(QStringLiteral("Opus"), QStringLiteral("standard"), record.bitrate, record.sampleRate,
                           QStringLiteral("XSalsa20"), record.online, record.gateways, record.admins, record.rooms);
}

void addDark()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

} // namespace

void ControlPanelTest::startsWithFixedTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *text) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(text);
    };
    row("brand", "SINAR");
    row("serverHeader", "SERVER INFO");
    row("serverInfo", "Name     :  -\n"
                      "Address  :  -:--\n"
                      "Codec    :  Opus\n"
                      "Quality  :  standard (32kbps, 48kHz)\n"
                      "Encrypt  :  -\n"
                      "Users    :  0 online\n"
                      "Rooms    :  0 total");
    row("pingLabel", "PING: -- ms");
    row("gatewayHeader", "RF-GATEWAY INFO");
    row("gatewayInfo", "Name     :  -\n"
                       "Call     :  -\n"
                       "Freq     :  -\n"
                       "Loc      :  -\n"
                       "PIC      :  -");
    row("audioHeader", "AUDIO LEVEL");
    row("transmitIndicator", "-- Waiting for COS Signal --");
    row("readiness", "Gateway -- Not Ready");
}

void ControlPanelTest::startsWithFixedTexts()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    const ControlPanel panel;
    QCOMPARE(part(panel, qPrintable(name))->text(), text);
    QVERIFY(!panel.isSerialReady());
    QVERIFY(!panel.isInRoom());
    QCOMPARE(panel.inputLevel(), 0);
    QCOMPARE(panel.outputLevel(), 0);
}

void ControlPanelTest::structure()
{
    LogCapture log;
    const ControlPanel panel;
    QStringList order;
    for (int i = 0; i < panel.layout()->count(); ++i) {
        const QWidget *widget = panel.layout()->itemAt(i)->widget();
        if (widget && widget->objectName() != QLatin1String("separator"))
            order += widget->objectName();
    }
    QCOMPARE(order, QStringLiteral("logoBlock serverHeader serverInfo pingLabel gatewayHeader gatewayInfo audioHeader "
                                   "inputMeter outputMeter transmitIndicator readiness")
                        .split(QLatin1Char(' ')));
    QCOMPARE(part<QWidget>(panel, "logoBlock")->height(), 90);
    const QPixmap logo = part(panel, "logo")->pixmap(Qt::ReturnByValue);
    QCOMPARE(logo.size() / logo.devicePixelRatio(), QSize(80, 80));
    for (const char *name : {"inputMeter", "outputMeter"}) {
        const auto *widget = part<LevelMeter>(panel, name);
        const QString caption = QString::fromLatin1(name).remove(QStringLiteral("Meter")).toUpper();
        QCOMPARE(part(*widget, "caption")->text(), caption);
        QStringList marks;
        for (const QLabel *mark : widget->findChildren<QLabel *>(QStringLiteral("scaleMark"))) {
            marks += mark->text();
            QCOMPARE(mark->alignment() & Qt::AlignHorizontal_Mask,
                     mark->text() == QLatin1String("100") ? Qt::AlignRight : Qt::AlignLeft);
        }
        QCOMPARE(marks.join(QLatin1Char(' ')), QStringLiteral("0 45 70 90 100"));
    }
    const QList<QProgressBar *> bars = panel.findChildren<QProgressBar *>();
    QCOMPARE(bars.size(), 2);
    for (const QProgressBar *bar : bars) {
        QCOMPARE(bar->minimum(), 0);
        QCOMPARE(bar->maximum(), 100);
        QCOMPARE(bar->minimumHeight(), 14);
        QCOMPARE(bar->maximumHeight(), 14);
        QVERIFY(!bar->isTextVisible());
    }
    for (const QFrame *line : panel.findChildren<QFrame *>(QStringLiteral("separator")))
        QCOMPARE(line->maximumHeight(), 1);
}

void ControlPanelTest::serverInfo_data()
{
    QTest::addColumn<ServerRecord>("record");
    QTest::addColumn<QString>("quality");
    QTest::addColumn<QString>("users");
    QTest::addColumn<QString>("rooms");
    const auto row = [](const char *name, const ServerRecord &record, const char *quality, const char *users,
                        const char *rooms) {
        QTest::newRow(name) << record << QString::fromLatin1(quality) << QString::fromLatin1(users)
                            << QString::fromLatin1(rooms);
    };
    const char *standard = "standard (32kbps, 48kHz)";
    row("all kinds", {32000, 48000, 7, 2, 1, 4}, standard, "7 online (4 User, 2 GW, 1 Admin)", "4 total");
    row("gateways only", {32000, 48000, 3, 3, 0, 1}, standard, "3 online (3 GW)", "1 total");
    row("administrators only", {32000, 48000, 2, 0, 2, 1}, standard, "2 online (2 Admin)", "1 total");
    row("users only", {32000, 48000, 5, 0, 0, 1}, standard, "5 online (5 User)", "1 total");
    row("nobody", {32000, 48000, 0, 0, 0, 0}, standard, "0 online", "0 total");
    row("more gateways than online", {32000, 48000, 1, 3, 0, 0}, standard, "1 online (3 GW)", "0 total");
    row("negative counts", {32000, 48000, -1, -2, 0, -3}, standard, "-1 online (1 User)", "-3 total");
    row("divisions truncate", {31999, 44100, 0, 0, 0, 0}, "standard (31kbps, 44kHz)", "0 online", "0 total");
    row("below one thousand", {999, 1, 0, 0, 0, 0}, "standard (0kbps, 0kHz)", "0 online", "0 total");
    row("negative rates", {-1999, -1, 0, 0, 0, 0}, "standard (-1kbps, 0kHz)", "0 online", "0 total");
    row("counts that overflow", {0, 0, kLeastInt, std::numeric_limits<int>::max(), 1, 0}, "standard (0kbps, 0kHz)",
        "-2147483648 online (2147483647 GW, 1 Admin)", "0 total");
}

void ControlPanelTest::serverInfo()
{
    QFETCH(ServerRecord, record);
    QFETCH(QString, quality);
    QFETCH(QString, users);
    QFETCH(QString, rooms);
    ControlPanel panel;
    showServer(panel, record);
    QCOMPARE(part(panel, "serverInfo")->text(), QStringLiteral("Name     :  e-VOX SINAR\n"
                                                               "Codec    :  Opus\n"
                                                               "Quality  :  %1\n"
                                                               "Encrypt  :  XSalsa20\n"
                                                               "Users    :  %2\n"
                                                               "Rooms    :  %3")
                                                    .arg(quality, users, rooms));
}

void ControlPanelTest::serverTextsAreNotFilledAgain()
{
    ControlPanel panel;
    panel.updateServerInfo(QStringLiteral("%7"), QStringLiteral("%1\n%5"), 1000, 1000, QStringLiteral("<b>%6</b>"), 0,
                           0, 0, 0);
    QCOMPARE(part(panel, "serverInfo")->text(), QStringLiteral("Name     :  e-VOX SINAR\n"
                                                               "Codec    :  %7\n"
                                                               "Quality  :  %1 %5 (1kbps, 1kHz)\n"
                                                               "Encrypt  :  <b>%6</b>\n"
                                                               "Users    :  0 online\n"
                                                               "Rooms    :  0 total"));
    QCOMPARE(part(panel, "serverInfo")->textFormat(), Qt::PlainText);
}

void ControlPanelTest::gatewayInfo_data()
{
    QTest::addColumn<QStringList>("values"); // name, callsign, frequency, location, PIC, its callsign, WhatsApp
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const char *values, const char *lines) {
        QTest::newRow(name) << QString::fromLatin1(values).split(QLatin1Char('|'))
                            << QString::fromLatin1(lines).split(QLatin1Char('|'));
    };
    row("everything", "Gunung|YH0ABC|146.440 MHz|Bogor|Budi|YB0ABC|0812",
        "Name     :  Gunung|Call     :  YH0ABC|Freq     :  146.440 MHz|Loc      :  Bogor|PIC      :  Budi (YB0ABC)|"
        "WA       :  0812");
    row("no WhatsApp number", "Gunung|YH0ABC|146.440 MHz|Bogor|Budi|YB0ABC|",
        "Name     :  Gunung|Call     :  YH0ABC|Freq     :  146.440 MHz|Loc      :  Bogor|PIC      :  Budi (YB0ABC)");
    row("nothing", "||||||", "Name     :  -|Call     :  -|Freq     :  -|Loc      :  -|PIC      :  - (-)");
    row("WhatsApp number only", "||||||0812",
        "Name     :  -|Call     :  -|Freq     :  -|Loc      :  -|PIC      :  - (-)|WA       :  0812");
    row("placeholders and rich text", "%2|%1|<b>|%6|%5|%4|%1",
        "Name     :  %2|Call     :  %1|Freq     :  <b>|Loc      :  %6|PIC      :  %5 (%4)|WA       :  %1");
    row("line breaks", "a\nb|c\r\nd|e|f|g|h|i\nj",
        "Name     :  a b|Call     :  c  d|Freq     :  e|Loc      :  f|PIC      :  g (h)|WA       :  i j");
}

void ControlPanelTest::gatewayInfo()
{
    QFETCH(QStringList, values);
    QFETCH(QStringList, lines);
    ControlPanel panel;
    panel.updateGatewayInfo(QStringLiteral("former"), {}, {}, {}, {}, {}, QStringLiteral("former"));
    panel.updateGatewayInfo(values[0], values[1], values[2], values[3], values[4], values[5], values[6]);
    QCOMPARE(part(panel, "gatewayInfo")->text(), lines.join(QLatin1Char('\n')));
    QCOMPARE(part(panel, "gatewayInfo")->textFormat(), Qt::PlainText);
}

void ControlPanelTest::ping_data()
{
    QTest::addColumn<float>("latency");
    QTest::addColumn<QString>("color");
    QTest::addColumn<QString>("figure");
    const auto row = [](const char *name, float latency, const char *color, const char *figure) {
        QTest::newRow(name) << latency << QString::fromLatin1(color) << QString::fromLatin1(figure);
    };
    row("12.34 ms", 12.34F, "#4CAF50", "12.3");
    row("49.9 ms", 49.9F, "#4CAF50", "49.9");
    row("exactly 50 ms", 50.0F, "#FFC107", "50.0");
    row("99.9 ms", 99.9F, "#FFC107", "99.9");
    row("exactly 100 ms", 100.0F, "#F44336", "100.0");
}

void ControlPanelTest::ping()
{
    QFETCH(float, latency);
    QFETCH(QString, color);
    QFETCH(QString, figure);
    ControlPanel panel;
    panel.setPing(latency);
    QCOMPARE(part(panel, "pingLabel")->text(),
             QStringLiteral("<span style='color:%1;'>PING: %2 ms</span>").arg(color, figure));
    QVERIFY(part(panel, "pingLabel")->textFormat() != Qt::PlainText);
}

void ControlPanelTest::transmitIndicator()
{
    ControlPanel panel;
    const QLabel *indicator = part(panel, "transmitIndicator");
    panel.setTransmitIndicator(true);
    QCOMPARE(indicator->text(), QStringLiteral("TX"));
    QCOMPARE(indicator->styleSheet(),
             QStringLiteral("padding: 8px; color: #F44336; font-size: 12px; font-weight: bold; "
                            "background-color: #FFEBEE; border-radius: 4px; margin-top: 5px;"));
    panel.setTransmitIndicator(false);
    QCOMPARE(indicator->text(), QStringLiteral("RX"));
    QCOMPARE(indicator->styleSheet(),
             QStringLiteral("padding: 8px; color: #666; font-size: 12px; font-weight: bold; "
                            "background-color: #FAFAFA; border-radius: 4px; margin-top: 5px;"));
}

void ControlPanelTest::readiness_data()
{
    QTest::addColumn<bool>("serialReady");
    QTest::addColumn<bool>("inRoom");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("color");
    const auto row = [](bool serialReady, bool inRoom, const char *text, const char *color) {
        QTest::newRow(text) << serialReady << inRoom << QString::fromLatin1(text) << QString::fromLatin1(color);
    };
    row(true, true, "Gateway -- READY", "#4CAF50");
    row(false, true, "Gateway -- Not Ready (No Serial)", "#F44336");
    row(true, false, "Gateway -- Not Ready (No Room)", "#F44336");
    row(false, false, "Gateway -- Not Ready (No Serial + No Room)", "#F44336");
}

void ControlPanelTest::readiness()
{
    QFETCH(bool, serialReady);
    QFETCH(bool, inRoom);
    QFETCH(QString, text);
    QFETCH(QString, color);
    ControlPanel panel;
    panel.setSerialReady(serialReady);
    panel.setInRoom(inRoom);
    const QLabel *label = part(panel, "readiness");
    QCOMPARE(label->text(), QStringLiteral("Gateway -- Not Ready")); // until it is told to look
    panel.updateReadiness();
    QCOMPARE(label->text(), text);
    QCOMPARE(label->styleSheet(), QStringLiteral("color: %1; font-size: 11px; font-weight: bold;").arg(color));
    QCOMPARE(panel.isSerialReady(), serialReady);
    QCOMPARE(panel.isInRoom(), inRoom);
}

void ControlPanelTest::themeLeavesTextsAlone_data()
{
    addDark();
}

void ControlPanelTest::themeLeavesTextsAlone()
{
    QFETCH(bool, dark);
    ControlPanel panel;
    showServer(panel, {32000, 48000, 7, 2, 1, 4});
    panel.setPing(50.0F);
    panel.setInputLevel(95);
    panel.setTransmitIndicator(true);
    const auto texts = [&panel] {
        QStringList all;
        for (const QLabel *label : panel.findChildren<QLabel *>())
            all += label->text();
        return all;
    };
    const QStringList before = texts();
    const QString indicatorStyle = part(panel, "transmitIndicator")->styleSheet();
    const QString figureStyle = part(*part<LevelMeter>(panel, "inputMeter"), "percent")->styleSheet();
    panel.applyTheme(!dark);
    panel.applyTheme(dark);
    QCOMPARE(texts(), before);
    QCOMPARE(part(panel, "transmitIndicator")->styleSheet(), indicatorStyle);
    QCOMPARE(part(*part<LevelMeter>(panel, "inputMeter"), "percent")->styleSheet(), figureStyle);
    QCOMPARE(panel.inputLevel(), 95);
}

void ControlPanelTest::headersHaveTheirGround_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QString>("ground");
    const auto row = [](const char *name, const char *light, const char *dark) {
        QTest::addRow("%s, light", name) << QString::fromLatin1(name) << false << QString::fromLatin1(light);
        QTest::addRow("%s, dark", name) << QString::fromLatin1(name) << true << QString::fromLatin1(dark);
    };
    row("serverHeader", "#E3F2FD", "#0D2137");
    row("gatewayHeader", "#E8F5E9", "#0D3320");
    row("audioHeader", "#FFF3E0", "#3E2723");
    row("gatewayInfo", "#FAFAFA", "#1E1E1E");
}

void ControlPanelTest::headersHaveTheirGround()
{
    QFETCH(QString, name);
    QFETCH(bool, dark);
    QFETCH(QString, ground);
    ControlPanel panel;
    panel.resize(320, 640);
    panel.applyTheme(dark);
    QLabel *label = part(panel, qPrintable(name));
    panel.grab(); // lays out
    const QImage picture = label->grab().toImage();
    QCOMPARE(picture.pixelColor(picture.width() - 6, picture.height() / 2), QColor(ground));
}

void ControlPanelTest::hostileTextsDoNotMoveThePanel()
{
    ControlPanel panel;
    showServer(panel, {});
    panel.updateGatewayInfo({}, {}, {}, {}, {}, {}, QStringLiteral("0812"));
    const QSize hint = panel.sizeHint();
    const QSize least = panel.minimumSizeHint();
    const QString huge = QStringLiteral("<h1>W</h1>\n").repeated(20000);
    panel.updateServerInfo(huge, huge, 1, 1, huge, 1, 1, 1, 1);
    panel.updateGatewayInfo(huge, huge, huge, huge, huge, huge, huge);
    QCOMPARE(panel.sizeHint(), hint);
    QCOMPARE(panel.minimumSizeHint(), least);
    QVERIFY(!panel.grab().isNull());
}

void ControlPanelTest::pictures_data()
{
    addDark();
}

void ControlPanelTest::pictures()
{
    QFETCH(bool, dark);
    QApplication::setFont(QFont(QApplication::font().family(), 9)); // a desktop\'s; this platform\'s own is a large one
    Theme::apply(*qApp, dark);
    const QString suffix = dark ? QStringLiteral("-dark") : QStringLiteral("-light");
    ControlPanel panel;
    panel.applyTheme(dark);
    panel.resize(330, 620);
    QVERIFY(!Screenshots::save(panel, QStringLiteral("control-start") + suffix).isNull());
    showServer(panel, {32000, 48000, 27, 12, 1, 4});
    panel.updateGatewayInfo(QStringLiteral("Gunung Gede Pangrango Repeater Link"), QStringLiteral("YH0ABC"),
                            QStringLiteral("146.440 MHz"), QStringLiteral("Cibodas, Cianjur, Jawa Barat, Indonesia"),
                            QStringLiteral("Budi"), QStringLiteral("YB0ABC"), QStringLiteral("08123456789"));
    panel.setPing(50.0F);
    panel.setInputLevel(95);
    panel.setOutputLevel(55);
    panel.setTransmitIndicator(true);
    panel.setSerialReady(true);
    panel.setInRoom(true);
    panel.updateReadiness();
    QVERIFY(!Screenshots::save(panel, QStringLiteral("control-busy") + suffix).isNull());
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(ControlPanelTest, QApplication)
#include "tst_controlpanel.moc"
