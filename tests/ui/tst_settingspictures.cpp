#include "SettingsRig.h"
#include "WidgetChecks.h"
#include "support/FakeSerial.h"
#include "support/RadioBench.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/settings/SerialConfigDialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFont>
#include <QImage>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>

namespace {

constexpr int kPointSize = 10; // of an ordinary desktop; this platform's own is larger
constexpr QSize kSmallScreen{1024, 600};

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// What Tab reaches, from the first control of the page on and once round.
QStringList reached(QWidget &window, QWidget *first)
{
    QStringList names;
    first->setFocus();
    for (QWidget *focus = first; focus && names.size() < 100;) {
        names.append(focus->objectName());
        QTest::keyClick(focus, Qt::Key_Tab);
        focus = window.focusWidget();
        if (focus == first)
            break;
    }
    return names;
}

} // namespace

// How the settings dialogs look, and how the keyboard goes through them.
class SettingsPicturesTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void keyboardReaches_data();
    void keyboardReaches();
    void everyControlSaysWhatItIs();
    void enterPressesWhatHasTheFocus();

private:
    RadioBench m_bench;
};

void SettingsPicturesTest::initTestCase()
{
    Theme::initResources();
    QFont font = QApplication::font();
    font.setPointSize(kPointSize);
    QApplication::setFont(font);
    m_bench.useHere();
    QVERIFY(m_bench.start());
}

void SettingsPicturesTest::nothingIsCutOff_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void SettingsPicturesTest::nothingIsCutOff()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    const QString theme = QLatin1String(QTest::currentDataTag());
    FakeSerial port;
    port.plugIn();
    const SettingsRig rig({{q("serial_port"), port.portName()}});
    auto *tabs = rig.find<QTabWidget>("settingsTabs");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        QVERIFY(!Screenshots::save(*rig.dialog, QStringLiteral("settings-%1-%2").arg(tab).arg(theme)).isNull());
        QCOMPARE(WidgetChecks::cutOff(*rig.dialog), QStringList());
        const auto *area = qobject_cast<QScrollArea *>(tabs->currentWidget());
        QVERIFY2(!area->horizontalScrollBar()->isVisible() && !area->verticalScrollBar()->isVisible(),
                 "the dialog opens too small for its page");
    }
    QVERIFY(rig.dialog->width() <= kSmallScreen.width() && rig.dialog->height() <= kSmallScreen.height());
    rig.dialog->resize(rig.dialog->minimumSizeHint());
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(WidgetChecks::cutOff(*rig.dialog), QStringList());
    }
    SerialConfigDialog serial;
    QVERIFY(!Screenshots::save(serial, QStringLiteral("serial-config-") + theme).isNull());
    serial.show();
    QVERIFY(serial.width() <= kSmallScreen.width() && serial.height() <= kSmallScreen.height());
    serial.resize(serial.minimumSizeHint());
    QCOMPARE(WidgetChecks::cutOff(serial), QStringList());
}

void SettingsPicturesTest::keyboardReaches_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QStringList>("page");
    QTest::newRow("General") << 0 << q("autoStartCheck") << QStringList{q("autoStartCheck"), q("autoLoginCheck")};
    QTest::newRow("Server") << 1 << q("serverAddressEdit")
                            << QStringList{q("serverAddressEdit"), q("serverPortSpin"), q("defaultRoomCombo"),
                                           q("rememberPasswordCheck")};
    QTest::newRow("Audio") << 2 << q("inputDeviceCombo")
                           << QStringList{q("inputDeviceCombo"),  q("outputDeviceCombo"), q("micGainSlider"),
                                          q("speakerGainSlider"), q("testInputButton"),   q("testOutputButton")};
    QTest::newRow("Serial/PTT") << 3 << q("serialPortCombo")
                                << QStringList{q("serialPortCombo"), q("baudrateCombo"), q("pttPinCombo"),
                                               q("cosPinCombo"), q("cosHighRadio")};
}

void SettingsPicturesTest::keyboardReaches()
{
    QFETCH(int, tab);
    QFETCH(QString, first);
    QFETCH(QStringList, page);
    const SettingsRig rig;
    rig.find<QTabWidget>("settingsTabs")->setCurrentIndex(tab);
    QApplication::setActiveWindow(rig.dialog);
    const QStringList buttons{q("refreshDevicesButton"), q("applyButton"), q("saveButton"), q("cancelButton"),
                              q("qt_tabwidget_tabbar")};
    QCOMPARE(reached(*rig.dialog, rig.find<QWidget>(first)), page + buttons);
}

void SettingsPicturesTest::everyControlSaysWhatItIs()
{
    const SettingsRig rig;
    const SerialConfigDialog serial;
    const QList<const QWidget *> dialogs{rig.dialog, &serial};
    int controls = 0;
    for (const QWidget *dialog : dialogs) {
        QList<const QWidget *> named;
        for (const auto *label : dialog->findChildren<QLabel *>()) {
            if (label->buddy())
                named.append(label->buddy());
        }
        for (const auto *control : dialog->findChildren<QWidget *>()) {
            // Parts of a control, and what only holds others, are not reached by themselves.
            if (!(control->focusPolicy() & Qt::TabFocus) || control->focusProxy() || control->objectName().isEmpty() ||
                qobject_cast<QTabBar *>(control->parent()) || control->objectName().startsWith(q("qt_")))
                continue;
            ++controls;
            const auto *button = qobject_cast<const QAbstractButton *>(control);
            QVERIFY2((button && !button->text().isEmpty()) || named.contains(control),
                     qPrintable(control->objectName()));
        }
    }
    QVERIFY(controls > 20);
}

void SettingsPicturesTest::enterPressesWhatHasTheFocus()
{
    const SettingsRig rig;
    rig.find<QTabWidget>("settingsTabs")->setCurrentIndex(1);
    QSignalSpy applied(rig.dialog, &SettingsDialog::settingsApplied);
    const auto press = [&rig](const char *name) {
        rig.dialog->show();
        QApplication::setActiveWindow(rig.dialog);
        rig.find<QWidget>(name)->setFocus();
        QTest::keyClick(rig.find<QWidget>(name), Qt::Key_Return);
    };
    press("cancelButton");
    QVERIFY(!rig.dialog->isVisible());
    QCOMPARE(applied.size(), 0);
    press("applyButton");
    QVERIFY(rig.dialog->isVisible());
    QCOMPARE(applied.size(), 1);
    press("serverAddressEdit");
    QVERIFY(!rig.dialog->isVisible());
    QCOMPARE(applied.size(), 2);
}

EVOX_TEST_MAIN(SettingsPicturesTest, QApplication)
#include "tst_settingspictures.moc"
