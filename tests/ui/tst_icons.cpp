#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QPainter>
#include <QWidget>

class IconsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Theme::initResources(); }
    void loads_data();
    void loads();
    void canBeSeenOnBothGrounds_data() { loads_data(); }
    void canBeSeenOnBothGrounds();
    void statesDiffer_data();
    void statesDiffer();
    void missingIconIsNull();
    void contactSheet_data();
    void contactSheet();

private:
    static QStringList names();
};

namespace {

QImage drawn(const QString &path, int side)
{
    return QIcon(path).pixmap(side, side).toImage().convertToFormat(QImage::Format_ARGB32);
}

int distance(const QColor &a, const QColor &b)
{
    return qAbs(a.red() - b.red()) + qAbs(a.green() - b.green()) + qAbs(a.blue() - b.blue());
}

} // namespace

QStringList IconsTest::names()
{
    QStringList paths;
    for (const char *name : {"app_ico", "app_icon",   "approve",    "connection_off", "connection_on",  "delete",
                             "edit",    "join_room",  "leave_room", "logo_sinar",     "logo_sinar.png", "mic_off",
                             "mic_on",  "move_room",  "ptt_off",    "ptt_on",         "reset",          "revoke",
                             "rx",      "serial_off", "serial_on",  "settings",       "speaker_off",    "speaker_on",
                             "tx"})
        paths += QStringLiteral(":/icons/") + QLatin1String(name);
    return paths;
}

void IconsTest::loads_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("side");
    for (const QString &path : names()) {
        for (const int side : {16, 32, 64})
            QTest::addRow("%s at %d", qPrintable(path), side) << path << side;
    }
}

void IconsTest::loads()
{
    QFETCH(QString, path);
    QFETCH(int, side);
    LogCapture log;
    QVERIFY2(!QPixmap(path).isNull(), "QPixmap cannot read it");
    const QImage icon = drawn(path, side);
    QCOMPARE(icon.size(), QSize(side, side));
    const QPixmap own = Theme::icon(path, side, 2.0);
    QCOMPARE(own.size(), QSize(side, side) * 2);
    QCOMPARE(own.devicePixelRatio(), 2.0);
    QCOMPARE(Theme::icon(path, side, 2.0).cacheKey(), own.cacheKey());
}

/// Enough of the picture stands out from the ground of either theme, also at the toolbar's smallest size.
void IconsTest::canBeSeenOnBothGrounds()
{
    QFETCH(QString, path);
    QFETCH(int, side);
    const QImage icon = drawn(path, side);
    for (const bool dark : {false, true}) {
        const QColor ground = Theme::color(Theme::Role::Ground, dark);
        QImage canvas(icon.size(), QImage::Format_RGB32);
        canvas.fill(ground);
        QPainter(&canvas).drawImage(0, 0, icon);
        int visible = 0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                visible += distance(canvas.pixelColor(x, y), ground) > 150 ? 1 : 0;
        }
        QVERIFY2(visible >= side * side / 20,
                 qPrintable(QStringLiteral("only %1 of %2 pixels are seen on the %3 ground")
                                .arg(visible)
                                .arg(side * side)
                                .arg(ground.name())));
    }
}

void IconsTest::statesDiffer_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    const auto row = [](const char *one, const char *other) {
        QTest::addRow("%s and %s", one, other)
            << QStringLiteral(":/icons/") + QLatin1String(one) << QStringLiteral(":/icons/") + QLatin1String(other);
    };
    row("approve", "revoke");
    row("connection_on", "connection_off");
    row("join_room", "leave_room");
    row("mic_on", "mic_off");
    row("ptt_on", "ptt_off");
    row("serial_on", "serial_off");
    row("speaker_on", "speaker_off");
    row("tx", "rx");
}

/// In shape and not only in colour: one operator in twelve cannot tell red from green.
void IconsTest::statesDiffer()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    const QImage a = drawn(one, 16);
    const QImage b = drawn(other, 16);
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int inkA = qAlpha(a.pixel(x, y)) * (255 - qGray(a.pixel(x, y))) / 255;
            const int inkB = qAlpha(b.pixel(x, y)) * (255 - qGray(b.pixel(x, y))) / 255;
            different += qAbs(inkA - inkB) > 60 ? 1 : 0;
        }
    }
    QVERIFY2(different >= 8, qPrintable(QStringLiteral("only %1 pixels differ").arg(different)));
}

void IconsTest::missingIconIsNull()
{
    QVERIFY(Theme::icon(QStringLiteral(":/icons/no_such_icon"), 16, 1.0).isNull());
}

void IconsTest::contactSheet_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void IconsTest::contactSheet()
{
    QFETCH(bool, dark);
    class Sheet : public QWidget
    {
    public:
        QColor ground;
        QStringList paths;
        void paintEvent(QPaintEvent *) override
        {
            QPainter painter(this);
            painter.fillRect(rect(), ground);
            int y = 4;
            for (const int side : {16, 24, 32, 80}) {
                for (int i = 0; i < paths.size(); ++i)
                    painter.drawPixmap(4 + i * 86, y, Theme::icon(paths.at(i), side, devicePixelRatioF()));
                y += side + 8;
            }
        }
    } canvas;
    canvas.ground = Theme::color(Theme::Role::Ground, dark);
    canvas.paths = names();
    canvas.resize(86 * canvas.paths.size(), 190);
    const QImage picture = Screenshots::save(
        canvas, QStringLiteral("icons-%1").arg(dark ? QStringLiteral("dark") : QStringLiteral("light")));
    QVERIFY(!picture.isNull());
}

EVOX_TEST_MAIN(IconsTest, QApplication)
#include "tst_icons.moc"
