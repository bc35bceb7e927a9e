#include "WindowRig.h"
#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "radio/SerialManager.h"
#include "support/FakeRegistry.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/AboutDialog.h"
#include "ui/Theme.h"
#include "ui/settings/SerialConfigDialog.h"
#include "ui/settings/SettingsDialog.h"
#include "ui/status/ControlPanel.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QSlider>
#include <QUrl>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QJsonObject offline()
{
    return {{q("setup_completed"), false}};
}

} // namespace

/// Stands for the system's web browser and file manager.
class Browser final : public QObject
{
    Q_OBJECT

public:
    Browser()
    {
        for (const char *scheme : kSchemes)
            QDesktopServices::setUrlHandler(q(scheme), this, "open");
    }
    ~Browser() override
    {
        for (const char *scheme : kSchemes)
            QDesktopServices::unsetUrlHandler(q(scheme));
    }

    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened.append(url); }

private:
    static constexpr const char *kSchemes[] = {"http", "https", "file", "ftp", "javascript"};
};

class WindowDialogsTest final : public QObject
{
    Q_OBJECT

private slots:
    void statusColumnIsWhole_data();
    void statusColumnIsWhole();
    void settingsOpen_data();
    void settingsOpen();
    void settingsApplyAtOnce();
    void gainsAreClamped();
    void settingsFollowTheCarrier();
    void openDialogsFollowTheTheme();
    void serialConfigurationIsShown();
    void aboutOpens();
    void checksForUpdates();
    void opensHelpPages_data();
    void opensHelpPages();
    void opensTheLogFolder();
    void opensOnlyWebPages_data();
    void opensOnlyWebPages();

private:
    template<typename Dialog> [[nodiscard]] static Dialog *openBy(const WindowRig &rig, const char *action)
    {
        rig.action(action)->trigger();
        return rig.window().findChild<Dialog *>();
    }
};

void WindowDialogsTest::statusColumnIsWhole_data()
{
    QTest::addColumn<int>("pixels");
    QTest::newRow("narrow font") << 6;
    QTest::newRow("wide font") << 20;
}

void WindowDialogsTest::statusColumnIsWhole()
{
    QFETCH(int, pixels);
    const QFont usual = QApplication::font();
    const auto restore = qScopeGuard([&usual] { QApplication::setFont(usual); });
    QFont font = usual;
    font.setPixelSize(pixels);
    QApplication::setFont(font);
    WindowRig rig(offline());
    rig.open();
    rig.window().show();
    const auto *panel = rig.service<ControlPanel>();
    QVERIFY(panel && QTest::qWaitForWindowExposed(&rig.window()));
    QVERIFY2(panel->width() <= panel->parentWidget()->width(),
             qPrintable(QStringLiteral("%1 of %2").arg(panel->parentWidget()->width()).arg(panel->width())));
}

void WindowDialogsTest::settingsOpen_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("menu") << QByteArray("settings");
    QTest::newRow("toolbar") << QByteArray("toolbarSettings");
}

void WindowDialogsTest::settingsOpen()
{
    QFETCH(QByteArray, action);
    WindowRig rig(offline());
    rig.open();
    const auto *dialog = openBy<SettingsDialog>(rig, action.constData());
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
}

void WindowDialogsTest::settingsApplyAtOnce()
{
    WindowRig rig(offline());
    rig.open();
    auto *dialog = openBy<SettingsDialog>(rig, "settings");
    const LogCapture log;
    dialog->findChild<QSlider *>(q("micGainSlider"))->setValue(40);
    dialog->findChild<QSlider *>(q("speakerGainSlider"))->setValue(30);
    dialog->findChild<QPushButton *>(q("applyButton"))->click();
    QVERIFY(log.contains(q("[Settings] Gain applied: mic= 40 speaker= 30")));
    QVERIFY(log.contains(q("[Serial] COS logic updated: HIGH")));
    QCOMPARE(rig.config.saved().value(q("mic_gain")).toInt(), 40);
    QCOMPARE(rig.config.saved().value(q("speaker_gain")).toInt(), 30);
    QVERIFY(rig.showed(q("Settings applied"), 3000));
    QVERIFY(dialog->isVisible());
    dialog->findChild<QPushButton *>(q("saveButton"))->click();
    QVERIFY(rig.showed(q("Settings saved"), 3000));
    QTRY_VERIFY(!rig.window().findChild<SettingsDialog *>());
}

void WindowDialogsTest::gainsAreClamped()
{
    WindowRig rig(offline());
    rig.open();
    auto *dialog = openBy<SettingsDialog>(rig, "settings");
    const LogCapture log;
    Settings settings;
    settings.micGain = 250;
    settings.speakerGain = -3;
    settings.cosLogicHigh = false;
    emit dialog->settingsApplied(settings);
    QVERIFY(log.contains(q("[Settings] Gain applied: mic= 100 speaker= 0")));
    QVERIFY(log.contains(q("[Serial] COS logic updated: LOW")));
    QCOMPARE(rig.config.saved().value(q("cos_logic_high")), QJsonValue(false));
}

void WindowDialogsTest::settingsFollowTheCarrier()
{
    WindowRig rig(offline());
    rig.open();
    auto *dialog = openBy<SettingsDialog>(rig, "settings");
    const auto shows = [dialog](const QString &caption) {
        const auto labels = dialog->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&caption](const QLabel *label) { return label->text() == caption; });
    };
    QVERIFY(shows(q("Tekan PTT Radio")));
    emit rig.service<SerialManager>()->cosChanged(true);
    QVERIFY(shows(q("PTT Active")));
    emit rig.service<SerialManager>()->cosChanged(false);
    QVERIFY(shows(q("Tekan PTT Radio")));
}

void WindowDialogsTest::openDialogsFollowTheTheme()
{
    WindowRig rig(offline());
    rig.open();
    auto *dialog = openBy<SettingsDialog>(rig, "settings");
    const auto ground = [dialog] { return dialog->grab().toImage().pixelColor(2, 2); };
    QCOMPARE(ground(), Theme::color(Theme::Role::Ground, false));
    rig.action("darkTheme")->trigger();
    QCOMPARE(ground(), Theme::color(Theme::Role::Ground, true));
    rig.action("darkTheme")->trigger();
    QCOMPARE(ground(), Theme::color(Theme::Role::Ground, false));
}

void WindowDialogsTest::serialConfigurationIsShown()
{
    WindowRig rig(offline());
    rig.open();
    QVERIFY(!rig.action("serialIndicator")->isEnabled());
    auto *dialog = openBy<SerialConfigDialog>(rig, "serialConfiguration");
    QVERIFY(dialog && dialog->isVisible());
    rig.prompts.accept();
    emit dialog->saved(q("ttyUSB7"));
    QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Information);
    QCOMPARE(rig.prompts.seen().last().title, q("Success"));
    QCOMPARE(rig.prompts.seen().last().text, q("Serial configuration saved."));
    QVERIFY(rig.action("serialIndicator")->isEnabled());
    QCOMPARE(rig.action("serialIndicator")->toolTip(), q("Serial Configured: ttyUSB7"));
}

void WindowDialogsTest::checksForUpdates()
{
    WindowRig rig(offline());
    FakeRegistry site; // any web server
    rig.endpoints.webUrl = site.url();
    site.setStatus("500 Internal Server Error");
    rig.open();
    rig.prompts.accept();
    rig.action("checkForUpdates")->trigger();
    QTRY_COMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.prompts.seen().first().title, q("Update Error"));
    QVERIFY(site.request(0).startsWith("GET /update/ HTTP/1.1\r\n"));
}

void WindowDialogsTest::aboutOpens()
{
    WindowRig rig(offline());
    rig.open();
    const auto *dialog = openBy<AboutDialog>(rig, "about");
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), q("About e-VOX SINAR"));
}

void WindowDialogsTest::opensHelpPages_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("url");
    QTest::newRow("documentation") << QByteArray("documentation") << q("https://evox.example/dokumentasi/");
    QTest::newRow("tutorial") << QByteArray("tutorial") << q("https://evox.example/tutorial/");
}

void WindowDialogsTest::opensHelpPages()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, url);
    const Browser browser;
    WindowRig rig(offline());
    rig.endpoints.webUrl = q("https://evox.example");
    rig.open();
    rig.action(action.constData())->trigger();
    QCOMPARE(browser.opened, QList<QUrl>{QUrl(url)});
}

void WindowDialogsTest::opensTheLogFolder()
{
    const Browser browser;
    WindowRig rig(offline());
    rig.open();
    rig.action("openLogFolder")->trigger();
    const QString folder = QFileInfo(Config::filePath()).path() + q("/logs");
    QCOMPARE(browser.opened, QList<QUrl>{QUrl::fromLocalFile(folder)});
    QVERIFY(QFileInfo(folder).isDir());
}

void WindowDialogsTest::opensOnlyWebPages_data()
{
    QTest::addColumn<QString>("webUrl");
    QTest::newRow("files") << q("file:///etc");
    QTest::newRow("ftp") << q("ftp://evox.example");
    QTest::newRow("script") << q("javascript:alert(1)");
    QTest::newRow("nothing") << QString();
    QTest::newRow("no host") << q("http://");
}

void WindowDialogsTest::opensOnlyWebPages()
{
    QFETCH(QString, webUrl);
    const Browser browser;
    WindowRig rig(offline());
    rig.endpoints.webUrl = webUrl;
    rig.open();
    LogCapture log;
    log.expectWarning(q("[MainWindow] Not a web page:"));
    rig.action("documentation")->trigger();
    QVERIFY(browser.opened.isEmpty());
    QCOMPARE(log.count(q("[MainWindow] Not a web page:")), 1);
}

EVOX_TEST_MAIN(WindowDialogsTest, QApplication)
#include "tst_windowdialogs.moc"
