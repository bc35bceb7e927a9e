#include "support/TestMain.h"
#include "ui/status/ControlPanel.h"
#include "ui/status/LevelMeter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTimer>

#include <limits>

class LevelMeterTest final : public QObject
{
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void barColoursBelongToTheScale_data();
    void barColoursBelongToTheScale();
    void meterFallsBack_data();
    void meterFallsBack();
    void eachLevelRestartsTheFallBack();
    void metersFallBackEachOnItsOwn();
};

namespace {

constexpr int kNothing = std::numeric_limits<int>::min();

template<typename Widget = QLabel> Widget *part(const QWidget &panel, const char *name)
{
    auto *found = panel.findChild<Widget *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

struct Meter
{
    QLabel *percent;
    QProgressBar *bar;
    QTimer *fallBack;
};

Meter meter(const ControlPanel &panel, bool input)
{
    const auto *widget = part<LevelMeter>(panel, input ? "inputMeter" : "outputMeter");
    return {part(*widget, "percent"), widget->findChild<QProgressBar *>(), part<QTimer>(*widget, "fallBack")};
}

void setLevel(ControlPanel &panel, bool input, int level)
{
    if (input)
        panel.setInputLevel(level);
    else
        panel.setOutputLevel(level);
}

QString percentStyle(const char *color)
{
    return QStringLiteral("color: %1; font-size: 10px; font-weight: bold;").arg(QLatin1String(color));
}

} // namespace

void LevelMeterTest::levels_data()
{
    QTest::addColumn<bool>("input");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("shown");
    QTest::addColumn<QString>("color");
    for (const bool input : {true, false}) {
        const char *low = input ? "#43A047" : "#1976D2";
        const auto row = [input](int level, int shown, const char *color) {
            QTest::addRow("%s %d", input ? "input" : "output", level)
                << input << level << shown << QString::fromLatin1(color);
        };
        row(0, 0, low);
        row(1, 1, low);
        row(69, 69, low);
        row(70, 70, "#F9A825");
        row(89, 89, "#F9A825");
        row(90, 90, "#E53935");
        row(100, 100, "#E53935");
        row(101, 100, "#E53935");
        row(std::numeric_limits<int>::max(), 100, "#E53935");
        row(-1, 0, low);
        row(kNothing, 0, low);
    }
}

void LevelMeterTest::levels()
{
    QFETCH(bool, input);
    QFETCH(int, level);
    QFETCH(int, shown);
    QFETCH(QString, color);
    ControlPanel panel;
    setLevel(panel, input, level < 50 ? 95 : 10); // so that every row is a change
    setLevel(panel, input, level);
    const Meter tested = meter(panel, input);
    QCOMPARE(tested.percent->text(), QStringLiteral("%1%").arg(shown));
    QCOMPARE(tested.percent->styleSheet(), percentStyle(qPrintable(color)));
    QCOMPARE(tested.bar->value(), shown);
    QCOMPARE(input ? panel.inputLevel() : panel.outputLevel(), shown);
    QCOMPARE(input ? panel.outputLevel() : panel.inputLevel(), 0);
    QVERIFY(tested.fallBack->isActive());
    QVERIFY(tested.fallBack->isSingleShot());
    QCOMPARE(tested.fallBack->interval(), 500);
    QVERIFY(!meter(panel, !input).fallBack->isActive());
}

void LevelMeterTest::barColoursBelongToTheScale_data()
{
    QTest::addColumn<bool>("input");
    QTest::addColumn<int>("percent"); // of the bar's width
    QTest::addColumn<QString>("color");
    for (const bool input : {true, false}) {
        const auto row = [input](int percent, const char *color) {
            QTest::addRow("%s at %d", input ? "input" : "output", percent)
                << input << percent << QString::fromLatin1(color);
        };
        row(0, input ? "#2E7D32" : "#1565C0");
        row(44, input ? "#43A047" : "#1976D2");
        row(69, "#F9A825");
        row(89, "#E53935");
        row(100, "#B71C1C");
    }
}

void LevelMeterTest::barColoursBelongToTheScale()
{
    QFETCH(bool, input);
    QFETCH(int, percent);
    QFETCH(QString, color);
    ControlPanel panel;
    QProgressBar *bar = meter(panel, input).bar;
    bar->setFixedWidth(1002);
    const QColor expected(color);
    const int x = qBound(1, 1 + percent * 10, 1000);
    const auto colorAt = [bar](int column, int line) {
        const QImage picture = bar->grab().toImage();
        return picture.pixelColor(QPoint(column, line) * picture.devicePixelRatio());
    };
    setLevel(panel, input, 100);
    const QColor full = colorAt(x, 7);
    QVERIFY2(qAbs(full.red() - expected.red()) <= 3 && qAbs(full.green() - expected.green()) <= 3 &&
                 qAbs(full.blue() - expected.blue()) <= 3,
             qPrintable(full.name()));
    setLevel(panel, input, 50);
    QCOMPARE(colorAt(x, 7), percent <= 50 ? full : QColor(QStringLiteral("#1A1A1A")));
    QCOMPARE(colorAt(x, 0), QColor(QStringLiteral("#3C3C3C")));
}

void LevelMeterTest::meterFallsBack_data()
{
    QTest::addColumn<bool>("input");
    QTest::newRow("input") << true;
    QTest::newRow("output") << false;
}

void LevelMeterTest::meterFallsBack()
{
    QFETCH(bool, input);
    ControlPanel panel;
    const Meter tested = meter(panel, input);
    QSignalSpy fired(tested.fallBack, &QTimer::timeout);
    QElapsedTimer clock;
    clock.start();
    setLevel(panel, input, 95);
    QVERIFY(fired.wait(10000));
    QVERIFY2(clock.elapsed() >= 450, "it fell before its time"); // a coarse timer may be 5 % early
    QCOMPARE(tested.percent->text(), QStringLiteral("0%"));
    QCOMPARE(tested.percent->styleSheet(), percentStyle(input ? "#43A047" : "#1976D2"));
    QCOMPARE(tested.bar->value(), 0);
    QCOMPARE(input ? panel.inputLevel() : panel.outputLevel(), 0);
    QVERIFY(!tested.fallBack->isActive());
}

void LevelMeterTest::eachLevelRestartsTheFallBack()
{
    ControlPanel panel;
    const Meter tested = meter(panel, true);
    QSignalSpy fired(tested.fallBack, &QTimer::timeout);
    QTimer levels;
    levels.setInterval(20);
    int sent = 0;
    QElapsedTimer sinceLast;
    connect(&levels, &QTimer::timeout, &panel, [&] {
        panel.setInputLevel(60);
        sinceLast.start();
        if (++sent == 40) // 800 ms of audio: longer than the fall-back
            levels.stop();
    });
    levels.start();
    QTRY_COMPARE_WITH_TIMEOUT(sent, 40, 20000);
    QVERIFY(fired.wait(10000) || fired.count() > 0);
    QVERIFY(sinceLast.elapsed() >= 450);
    QCOMPARE(panel.inputLevel(), 0);
}

void LevelMeterTest::metersFallBackEachOnItsOwn()
{
    ControlPanel panel;
    panel.setInputLevel(80);
    panel.setOutputLevel(40);
    panel.resetInputLevel();
    QCOMPARE(panel.inputLevel(), 0);
    QCOMPARE(panel.outputLevel(), 40);
    panel.setInputLevel(80);
    panel.resetOutputLevel();
    QCOMPARE(panel.inputLevel(), 80);
    QCOMPARE(panel.outputLevel(), 0);
}

EVOX_TEST_MAIN(LevelMeterTest, QApplication)
#include "tst_levelmeter.moc"
