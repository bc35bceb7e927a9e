#include "WindowRig.h"
#include "app/Config.h"
#include "net/TcpClient.h"
#include "support/TestMain.h"
#include "ui/account/ChangePasswordDialog.h"
#include "ui/account/EditProfileDialog.h"
#include "ui/account/ProfileDialog.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QJsonObject offline()
{
    return {{q("setup_completed"), false}};
}

template<typename Dialog> Dialog *openBy(const WindowRig &rig, const char *action)
{
    rig.action(action)->trigger();
    return rig.window().findChild<Dialog *>();
}

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

const QString kNewPassword = q("geheim1");
const QString kNextLogin = q("LOGIN YB0ABC geheim1 0123456789abcdef");

/// Opens the dialog and asks for the new password.
ChangePasswordDialog *requestPassword(const WindowRig &rig)
{
    auto *dialog = openBy<ChangePasswordDialog>(rig, "changePassword");
    setText(dialog, "oldPasswordEdit", WindowRig::kPassword);
    setText(dialog, "newPasswordEdit", kNewPassword);
    setText(dialog, "confirmPasswordEdit", kNewPassword);
    button(dialog, q("Change Password"))->click();
    return dialog;
}

QString savedPassword(const WindowRig &rig)
{
    return rig.config.saved().value(q("password")).toString();
}

} // namespace

class WindowAccountTest final : public QObject
{
    Q_OBJECT

private slots:
    void profileOfTheOwnAccount_data();
    void profileOfTheOwnAccount();
    void profileThatIsNotThere_data();
    void profileThatIsNotThere();
    void profileOfAnotherCallsignIsNotShown();
    void editsTheProfile();
    void editsWithoutAnId();
    void changesThePassword();
    void passwordIsStoredBeforeTheBox();
    void passwordIsStoredWithoutTheDialog();
    void passwordOfALostConnectionIsForgotten();
    void passwordThatIsRefused();
    void passwordNeedsAConnection();
    void asksForADeviceReset_data();
    void asksForADeviceReset();
};

void WindowAccountTest::profileOfTheOwnAccount_data()
{
    QTest::addColumn<bool>("fromList");
    QTest::newRow("from the profile reply") << false;
    QTest::newRow("from the list of all users") << true;
}

void WindowAccountTest::profileOfTheOwnAccount()
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

void WindowAccountTest::profileThatIsNotThere_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("connected") << true;
    QTest::newRow("not connected") << false;
}

void WindowAccountTest::profileThatIsNotThere()
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

void WindowAccountTest::profileOfAnotherCallsignIsNotShown()
{
    WindowRig rig(offline());
    rig.open();
    emit rig.service<TcpClient>()->userProfileReceived(ownRecord());
    Config::instance().setCallsign(q("YH9ZZ"));
    rig.prompts.accept();
    QVERIFY(!openBy<ProfileDialog>(rig, "viewProfile"));
    QCOMPARE(rig.prompts.seen().last().title, q("Profile"));
}

void WindowAccountTest::editsTheProfile()
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

void WindowAccountTest::editsWithoutAnId()
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

void WindowAccountTest::changesThePassword()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.prompts.accept();
    rig.prompts.accept();
    auto *dialog = requestPassword(rig);
    setText(dialog, "newPasswordEdit", q("edited meanwhile"));
    QVERIFY(rig.server.waitForLine(q("USER_CHANGE_PASSWORD \"secret-word\" \"geheim1\"")));
    rig.server.send(q("USER_CHANGE_PASSWORD_OK"));
    QTRY_COMPARE(rig.prompts.seen().size(), 2); // of every change, and of this one
    QCOMPARE(rig.prompts.seen().at(0).title, q("Password"));
    QCOMPARE(rig.prompts.seen().at(0).text, q("Password berhasil diubah"));
    QCOMPARE(rig.prompts.seen().at(1).title, q("Sukses"));
    QCOMPARE(rig.prompts.seen().at(1).text, q("Password berhasil diubah!"));
    QCOMPARE(savedPassword(rig), kNewPassword);
    QTRY_VERIFY(!rig.window().findChild<ChangePasswordDialog *>());
}

void WindowAccountTest::passwordIsStoredBeforeTheBox()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.answer(q("USER_CHANGE_PASSWORD"), {q("USER_CHANGE_PASSWORD_OK")});
    QString savedUnderTheBox;
    rig.prompts.accept([&] {
        savedUnderTheBox = savedPassword(rig);
        rig.server.drop();
        QVERIFY(rig.server.waitForLine(q("LOGIN "), 2));
    });
    rig.prompts.accept();
    requestPassword(rig);
    QTRY_COMPARE(rig.prompts.seen().size(), 2);
    QCOMPARE(savedUnderTheBox, kNewPassword);
    QVERIFY2(rig.server.lines().contains(kNextLogin), qPrintable(rig.server.lines().join(QLatin1Char('\n'))));
    QCOMPARE(rig.prompts.seen().last().title, q("Sukses"));
    QTRY_VERIFY(!rig.window().findChild<ChangePasswordDialog *>());
}

void WindowAccountTest::passwordIsStoredWithoutTheDialog()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    const auto *dialog = requestPassword(rig);
    QVERIFY(rig.server.waitForLine(q("USER_CHANGE_PASSWORD")));
    button(dialog, q("Cancel"))->click();
    QTRY_VERIFY(!rig.window().findChild<ChangePasswordDialog *>());
    QCOMPARE(savedPassword(rig), WindowRig::kPassword);
    rig.prompts.accept();
    rig.server.send(q("USER_CHANGE_PASSWORD_OK"));
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().first().title, q("Password"));
    QCOMPARE(savedPassword(rig), kNewPassword);
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(kNextLogin));
}

void WindowAccountTest::passwordOfALostConnectionIsForgotten()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    const auto *dialog = requestPassword(rig);
    QVERIFY(rig.server.waitForLine(q("USER_CHANGE_PASSWORD")));
    rig.server.drop();
    QVERIFY(rig.server.waitForLine(q("LOGIN "), 2));
    QCOMPARE(dialog->findChild<QLabel *>(q("messageLabel"))->text(), q("Gagal: Tidak terhubung ke server!"));
    QVERIFY(button(dialog, q("Change Password"))->isEnabled());
    rig.prompts.accept();
    rig.server.send(q("USER_CHANGE_PASSWORD_OK")); // nobody here has asked
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(savedPassword(rig), WindowRig::kPassword);
    QCOMPARE(rig.server.count(kNextLogin), 0);
}

void WindowAccountTest::passwordThatIsRefused()
{
    WindowRig rig;
    QVERIFY(rig.openAndLogIn());
    rig.server.answer(q("USER_CHANGE_PASSWORD"), {q("USER_CHANGE_PASSWORD_FAIL|Password lama salah")});
    rig.prompts.accept();
    const auto *dialog = requestPassword(rig);
    QTRY_COMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(rig.prompts.seen().first().title, q("Gagal Ubah Password"));
    QCOMPARE(rig.prompts.seen().first().text, q("Password lama salah"));
    QTRY_VERIFY(button(dialog, q("Change Password"))->isEnabled());
    QVERIFY(dialog->isVisible());
    QCOMPARE(savedPassword(rig), WindowRig::kPassword);
}

void WindowAccountTest::passwordNeedsAConnection()
{
    WindowRig rig(offline());
    rig.open();
    const auto *dialog = requestPassword(rig);
    const auto labels = dialog->findChildren<QLabel *>();
    QVERIFY(std::any_of(labels.begin(), labels.end(),
                        [](const QLabel *label) { return label->text() == q("Tidak terhubung ke server!"); }));
}

void WindowAccountTest::asksForADeviceReset_data()
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

void WindowAccountTest::asksForADeviceReset()
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

EVOX_TEST_MAIN(WindowAccountTest, QApplication)
#include "tst_windowaccount.moc"
