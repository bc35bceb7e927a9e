#include "WindowRig.h"
#include "app/Config.h"
#include "audio/AudioEngine.h"
#include "net/TcpClient.h"
#include "radio/SerialManager.h"
#include "support/FakeRegistry.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/AboutDialog.h"
#include "ui/Theme.h"
#include "ui/account/ChangePasswordDialog.h"
#include "ui/account/EditProfileDialog.h"
#include "ui/account/ProfileDialog.h"
#include "ui/settings/SerialConfigDialog.h"
#include "ui/settings/SettingsDialog.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
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
    void settingsOpen_data();
    void settingsOpen();
    void settingsApplyAtOnce();
    void gainsAreClamped();
    void settingsFollowTheCarrier();
    void openDialogsFollowTheTheme();
    void serialConfigurationIsShown();
    void profileOfTheOwnAccount_data();
    void profileOfTheOwnAccount();
    void profileThatIsNotThere_data();
    void profileThatIsNotThere();
    void profileOfAnotherCallsignIsNotShown();
    void editsTheProfile();
    void editsWithoutAnId();
    void changesThePassword();
    void passwordThatIsRefused();
    void passwordNeedsAConnection();
    void aboutOpens();
    void checksForUpdates();
    void asksForADeviceReset_data();
    void asksForADeviceReset();
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

namespace {

QVariantMap ownRecord()
{
    return {{q("user_id"), 42},
            {q("callsign"), WindowRig::kCall},
            {q("gateway_name"), q("Gerbang")},
            {q("frequency"), q("145.5")},
            {q("location"), q("Bandung")},
            {q("name"), q("Ani")},
            {q("responsible_callsign"), q("YB0AA")},
            {q("email"), q("a@b.id")},
            {q("whatsapp"), q("0812")},
            {q("status"), q("active")},
            {q("approved"), true}};
}

void setText(const QWidget *dialog, const char *name, const QString &text)
{
    dialog->findChild<QLineEdit *>(q(name))->setText(text);
}

QPushButton *button(const QWidget *dialog, const QString &text)
{
    for (auto *candidate : dialog->findChildren<QPushButton *>()) {
        if (candidate->text() == text)
            return candidate;
    }
    return nullptr;
}

} // namespace

void WindowDialogsTest::profileOfTheOwnAccount_data()
{
    QTest::addColumn<bool>("fromList");
    QTest::newRow("from the profile reply") << false;
    QTest::newRow("from the list of all users") << true;
}

void WindowDialogsTest::profileOfTheOwnAccount()
{
    QFETCH(bool, fromList);
    WindowRig rig(offline());
    rig.open();
    QVariantMap other = ownRecord();
    other.insert(q("callsign"), WindowRig::kCall.toLower()); // compared exactly
    if (fromList)
        emit rig.service<TcpClient>()->allUsersReceived({other, ownRecord()});
    else
        emit rig.service<TcpClient>()->userProfileReceived(ownRecord());
    emit rig.service<TcpClient>()->allUsersReceived({other}); // a list without the own entry changes nothing
    const auto *dialog = openBy<ProfileDialog>(rig, "viewProfile");
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), q("My Profile - ") + WindowRig::kCall);
}

void WindowDialogsTest::profileThatIsNotThere_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("connected") << true;
    QTest::newRow("not connected") << false;
}

void WindowDialogsTest::profileThatIsNotThere()
{
    QFETCH(bool, connected);
    WindowRig rig(connected ? QJsonObject() : offline());
    if (connected)
        QVERIFY(rig.openAndLogIn());
    else
        rig.open();
    rig.server.clear();
    if (!connected)
        rig.prompts.accept();
    QVERIFY(!openBy<ProfileDialog>(rig, "viewProfile"));
    if (connected) {
        QVERIFY(rig.server.waitForLine(q("USER_GET_PROFILE")));
        QVERIFY(rig.showed(q("Memuat profil..."), 3000));
    } else {
        QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Warning);
        QCOMPARE(rig.prompts.seen().last().title, q("Profile"));
        QCOMPARE(rig.prompts.seen().last().text, q("Data profil tidak tersedia.\nPastikan Anda terhubung ke server."));
    }
}

void WindowDialogsTest::profileOfAnotherCallsignIsNotShown()
{
    WindowRig rig(offline());
    rig.open();
    emit rig.service<TcpClient>()->userProfileReceived(ownRecord());
    Config::instance().setCallsign(q("YH9ZZ"));
    rig.prompts.accept();
    QVERIFY(!openBy<ProfileDialog>(rig, "viewProfile"));
    QCOMPARE(rig.prompts.seen().last().title, q("Profile"));
}

void WindowDialogsTest::editsTheProfile()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    emit rig.service<TcpClient>()->userProfileReceived(ownRecord());
    const auto *dialog = openBy<EditProfileDialog>(rig, "editProfile");
    QVERIFY(dialog);
    setText(dialog, "picNameEdit", q("Budi"));
    setText(dialog, "frequencyEdit", q("146.0"));
    rig.prompts.accept();
    button(dialog, q("Simpan"))->click();
    QVERIFY(rig.server.waitForLine(q("ADMIN_UPDATE_USER")));
    QCOMPARE(rig.server.lines().last(), q("ADMIN_UPDATE_USER 42 \"Budi\" \"YB0AA\" \"active\" 1 0 \"Gerbang\" "
                                          "\"146.0\" \"Bandung\" \"a@b.id\" \"0812\""));
    QCOMPARE(rig.prompts.seen().last().title, q("Sukses"));
    QCOMPARE(rig.prompts.seen().last().text, q("Profil berhasil diperbarui!"));
    const QJsonObject saved = rig.config.saved();
    QCOMPARE(saved.value(q("name")), QJsonValue(q("Budi")));
    QCOMPARE(saved.value(q("frequency")), QJsonValue(q("146.0")));
    QCOMPARE(saved.value(q("location")), QJsonValue(q("Bandung")));
    QCOMPARE(saved.value(q("whatsapp")), QJsonValue(q("0812")));
    QVERIFY(!saved.contains(q("email")));
    QVERIFY(!saved.contains(q("responsible_callsign")));
}

void WindowDialogsTest::editsWithoutAnId()
{
    WindowRig rig({{q("name"), q("Ani")}, {q("location"), q("di bukit")}});
    QVERIFY(rig.openAndLogIn());
    const auto *dialog = openBy<EditProfileDialog>(rig, "editProfile");
    QVERIFY(dialog);
    QCOMPARE(dialog->windowTitle(), q("Edit Profile - ") + WindowRig::kCall);
    setText(dialog, "whatsappEdit", q("0813"));
    rig.prompts.accept();
    button(dialog, q("Simpan"))->click();
    QCOMPARE(rig.prompts.seen().last().text, q("Profil berhasil diperbarui!"));
    QCOMPARE(rig.config.saved().value(q("whatsapp")), QJsonValue(q("0813")));
    QCOMPARE(rig.config.saved().value(q("location")), QJsonValue(q("di bukit"))); // nothing is wiped out
    rig.service<TcpClient>()->sendCommand(q("LAST"));
    QVERIFY(rig.server.waitForLine(q("LAST")));
    QCOMPARE(rig.server.count(q("ADMIN_UPDATE_USER")), 0);
}

void WindowDialogsTest::changesThePassword()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.answer(q("USER_CHANGE_PASSWORD"), {q("USER_CHANGE_PASSWORD_OK")});
    auto *dialog = openBy<ChangePasswordDialog>(rig, "changePassword");
    QVERIFY(dialog);
    setText(dialog, "oldPasswordEdit", q("secret-word"));
    setText(dialog, "newPasswordEdit", q("geheim1"));
    setText(dialog, "confirmPasswordEdit", q("geheim1"));
    rig.prompts.accept();
    rig.prompts.accept();
    button(dialog, q("Change Password"))->click();
    QTRY_COMPARE(rig.prompts.seen().size(), 2); // of every change, and of this one
    QCOMPARE(rig.prompts.seen().at(0).title, q("Password"));
    QCOMPARE(rig.prompts.seen().at(0).text, q("Password berhasil diubah"));
    QCOMPARE(rig.prompts.seen().at(1).title, q("Sukses"));
    QCOMPARE(rig.prompts.seen().at(1).text, q("Password berhasil diubah!"));
    QVERIFY(rig.server.lines().contains(q("USER_CHANGE_PASSWORD \"secret-word\" \"geheim1\"")));
    QCOMPARE(rig.config.saved().value(q("password")), QJsonValue(q("geheim1")));
    QTRY_VERIFY(!rig.window().findChild<ChangePasswordDialog *>());
}

void WindowDialogsTest::passwordThatIsRefused()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.answer(q("USER_CHANGE_PASSWORD"), {q("USER_CHANGE_PASSWORD_FAIL|Password lama salah")});
    auto *dialog = openBy<ChangePasswordDialog>(rig, "changePassword");
    setText(dialog, "oldPasswordEdit", q("wrong"));
    setText(dialog, "newPasswordEdit", q("geheim1"));
    setText(dialog, "confirmPasswordEdit", q("geheim1"));
    rig.prompts.accept();
    button(dialog, q("Change Password"))->click();
    QTRY_COMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(rig.prompts.seen().first().title, q("Gagal Ubah Password"));
    QCOMPARE(rig.prompts.seen().first().text, q("Password lama salah"));
    QTRY_VERIFY(button(dialog, q("Change Password"))->isEnabled());
    QVERIFY(dialog->isVisible());
    QCOMPARE(rig.config.saved().value(q("password")), QJsonValue(WindowRig::kPassword));
}

void WindowDialogsTest::passwordNeedsAConnection()
{
    WindowRig rig(offline());
    rig.open();
    auto *dialog = openBy<ChangePasswordDialog>(rig, "changePassword");
    setText(dialog, "oldPasswordEdit", q("secret-word"));
    setText(dialog, "newPasswordEdit", q("geheim1"));
    setText(dialog, "confirmPasswordEdit", q("geheim1"));
    button(dialog, q("Change Password"))->click();
    const auto labels = dialog->findChildren<QLabel *>();
    QVERIFY(std::any_of(labels.begin(), labels.end(),
                        [](const QLabel *label) { return label->text() == q("Tidak terhubung ke server!"); }));
}

void WindowDialogsTest::aboutOpens()
{
    WindowRig rig(offline());
    rig.open();
    const auto *dialog = openBy<AboutDialog>(rig, "about");
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), q("About e-VOX SINAR"));
}

void WindowDialogsTest::asksForADeviceReset_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::newRow("not wanted") << true << false << QString() << QString();
    QTest::newRow("connected") << true << true << q("Permintaan Terkirim")
                               << q("Permintaan reset HWID telah dikirim ke administrator.\n\nHubungi administrator "
                                    "untuk mempercepat proses.\nSetelah disetujui, restart aplikasi dan login ulang.");
    QTest::newRow("not connected") << false << true << q("Tidak Terhubung")
                                   << q("Anda harus terhubung ke server untuk mengirim permintaan reset HWID.");
}

void WindowDialogsTest::asksForADeviceReset()
{
    QFETCH(bool, connected);
    QFETCH(bool, wanted);
    QFETCH(QString, title);
    WindowRig rig(connected ? QJsonObject() : offline());
    if (connected)
        QVERIFY(rig.openAndLogIn());
    else
        rig.open();
    if (wanted) {
        rig.prompts.accept();
        rig.prompts.accept();
    } else {
        rig.prompts.cancel();
    }
    rig.action("resetDevice")->trigger();
    const Prompt &question = rig.prompts.seen().first();
    QCOMPARE(question.kind, Prompt::Kind::Question);
    QCOMPARE(question.title, q("Reset HWID"));
    QCOMPARE(question.text, q("Kirim permintaan Reset Hardware ID ke administrator?\n\nAdministrator perlu menyetujui "
                              "permintaan ini sebelum\nAnda bisa login dari perangkat baru."));
    QVERIFY(!question.yesIsDefault);
    if (wanted) {
        QCOMPARE(rig.prompts.seen().last().title, title);
        QTEST(rig.prompts.seen().last().text, "text");
        QCOMPARE(rig.prompts.seen().last().kind, connected ? Prompt::Kind::Information : Prompt::Kind::Warning);
    }
    if (connected && wanted)
        QVERIFY(rig.server.waitForLine(q("USER_REQUEST_HWID_RESET \"") + WindowRig::kCall + QLatin1Char('"')));
    else
        QCOMPARE(rig.server.count(q("USER_REQUEST_HWID_RESET")), 0);
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
