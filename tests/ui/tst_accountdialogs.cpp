#include "WidgetChecks.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/account/ChangePasswordDialog.h"
#include "ui/account/EditProfileDialog.h"
#include "ui/account/ProfileDialog.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolTip>

#include <memory>

namespace {

const char *const kRed = "color: #F44336; font-weight: bold;";
const char *const kAmber = "color: #FF9800; font-weight: bold;";

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QVariantMap fullRecord()
{
    return {{q("user_id"), 42},
            {q("callsign"), q("YH0AB")},
            {q("gateway_name"), q("Bukit Tinggi")},
            {q("frequency"), q("145.500 MHz")},
            {q("location"), q("Bukit")},
            {q("name"), q("Sari")},
            {q("responsible_name"), q("Budi")},
            {q("responsible_callsign"), q("YB0ABC")},
            {q("email"), q("yh0ab@example.org")},
            {q("whatsapp"), q("0812")},
            {q("status"), q("active")},
            {q("approved"), true}};
}

template<typename Widget> Widget *child(const QWidget &dialog, const char *name)
{
    return dialog.findChild<Widget *>(q(name));
}

QString typed(const QWidget &dialog, const char *name)
{
    return child<QLineEdit>(dialog, name)->text();
}

void type(const QWidget &dialog, const char *name, const QString &text)
{
    auto *edit = child<QLineEdit>(dialog, name);
    edit->clear();
    QTest::keyClicks(edit, text);
}

QStringList asList(const Commands::OwnProfile &profile)
{
    return {profile.picName,  profile.picCallsign, profile.gatewayName, profile.frequency,
            profile.location, profile.email,       profile.whatsapp};
}

} // namespace

class AccountDialogsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Theme::initResources(); }

    void profileOfAFullRecord();
    void profileOfAnEmptyRecord();
    void profileValues_data();
    void profileValues();
    void profileShowsHostileTextsLiterally();
    void profileByKeyboard();

    void formShowsTheRecord();
    void formOfAnEmptyRecord();
    void formGivesBackWhatWasTyped();
    void formByKeyboard();
    void formTakesNothingThatBreaksALine_data();
    void formTakesNothingThatBreaksALine();
    void formKeepsLongTexts();

    void passwordLooksAsAnnounced();
    void passwordChecks_data();
    void passwordChecks();
    void passwordIsRequested();
    void passwordRefusedByTheServer_data();
    void passwordRefusedByTheServer();
    void passwordTakenByTheServer();
    void passwordVerdictsOfOthersAreIgnored();
    void passwordDialogMayGoWhenTold();
    void passwordByKeyboard();

    void nothingIsCutOff_data();
    void nothingIsCutOff();

private:
    [[nodiscard]] std::unique_ptr<ChangePasswordDialog> passwordDialog(bool connected = true) const;
    static void fillPasswords(const ChangePasswordDialog &dialog, const QString &old, const QString &wanted,
                              const QString &confirmed);
    static void push(const QWidget &dialog, const char *name) { child<QPushButton>(dialog, name)->click(); }
};

void AccountDialogsTest::profileOfAFullRecord()
{
    const ProfileDialog dialog(fullRecord(), {q("hw-1"), true, false});
    QCOMPARE(dialog.windowTitle(), q("My Profile - YH0AB"));
    QCOMPARE(child<QLabel>(dialog, "headingLabel")->text(), q("PROFILE INFO"));
    QCOMPARE(child<QLabel>(dialog, "headingLabel")->styleSheet(),
             q("font-weight: bold; color: #00FF00; font-size: 14px; padding: 4px 0;"));
    QCOMPARE(child<QLabel>(dialog, "infoText")->styleSheet(),
             q("background-color: #0D0D0D; color: #00FF00; border: 1px solid #333; border-radius: 6px; padding: 12px; "
               "font-family: Consolas, monospace; font-size: 12px; line-height: 1.6;"));
    QCOMPARE(child<QLabel>(dialog, "infoText")->text(),
             q("Callsign     : YH0AB\nGateway      : Bukit Tinggi\nFrequency    : 145.500 MHz\nLocation     : Bukit\n"
               "PIC          : Sari (YB0ABC)\nEmail        : yh0ab@example.org\nWhatsApp     : 0812\n"
               "Status       : active\nApproved     : Yes\nHWID         : hw-1\nAuto Login   : Yes\n"
               "Remember Pwd : No"));
}

void AccountDialogsTest::profileOfAnEmptyRecord()
{
    QCOMPARE(ProfileDialog::textFor({}, {}),
             q("Callsign     : -\nGateway      : -\nFrequency    : -\nLocation     : -\nPIC          : - (-)\n"
               "Email        : -\nWhatsApp     : -\nStatus       : -\nApproved     : No\nHWID         : Not set\n"
               "Auto Login   : No\nRemember Pwd : No"));
    QCOMPARE(ProfileDialog({}, {}).windowTitle(), q("My Profile - -"));
}

void AccountDialogsTest::profileValues_data()
{
    QTest::addColumn<QVariantMap>("record");
    QTest::addColumn<bool>("remember");
    QTest::addColumn<QString>("line");
    QTest::newRow("name in charge from the longer key")
        << QVariantMap{{q("responsible_name"), q("Budi")}} << false << q("PIC          : Budi (-)");
    QTest::newRow("name in charge from the shorter key")
        << QVariantMap{{q("name"), q("Sari")}, {q("responsible_name"), q("Budi")}} << false
        << q("PIC          : Sari (-)");
    QTest::newRow("empty name") << QVariantMap{{q("name"), QString()}, {q("responsible_name"), q("Budi")}} << false
                                << q("PIC          : Budi (-)");
    QTest::newRow("approved as a number") << QVariantMap{{q("approved"), 1}} << false << q("Approved     : Yes");
    QTest::newRow("not approved") << QVariantMap{{q("approved"), false}} << false << q("Approved     : No");
    QTest::newRow("not approved as a number") << QVariantMap{{q("approved"), 0}} << false << q("Approved     : No");
    QTest::newRow("remembered") << QVariantMap() << true << q("Remember Pwd : Yes");
    QTest::newRow("a number for a text") << QVariantMap{{q("whatsapp"), 812}} << false << q("WhatsApp     : 812");
}

void AccountDialogsTest::profileValues()
{
    QFETCH(QVariantMap, record);
    QFETCH(bool, remember);
    QFETCH(QString, line);
    const QStringList lines = ProfileDialog::textFor(record, {QString(), false, remember}).split(QLatin1Char('\n'));
    QVERIFY2(lines.contains(line), qPrintable(lines.join(QLatin1Char('|'))));
}

void AccountDialogsTest::profileShowsHostileTextsLiterally()
{
    QVariantMap record = fullRecord();
    record.insert(q("gateway_name"), q("<img src=x>%2"));
    record.insert(q("location"), QString(100000, QLatin1Char('W')));
    const ProfileDialog dialog(record, {});
    const auto *label = child<QLabel>(dialog, "infoText");
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QVERIFY(label->text().contains(q("Gateway      : <img src=x>%2\n")));
    QVERIFY2(dialog.sizeHint().width() < 1024, "a long text scrolls, it does not widen the dialog");
}

void AccountDialogsTest::profileByKeyboard()
{
    ProfileDialog dialog(fullRecord(), {});
    dialog.show();
    QCOMPARE(WidgetChecks::tabOrder(dialog), QStringList({q("closeButton"), q("infoText")}));
    QTest::keyClick(&dialog, Qt::Key_Return);
    QVERIFY(!dialog.isVisible());
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
}

void AccountDialogsTest::formShowsTheRecord()
{
    const EditProfileDialog dialog(fullRecord());
    QCOMPARE(dialog.windowTitle(), q("Edit Profile - YH0AB"));
    QCOMPARE(child<QLabel>(dialog, "callsignLabel")->text(), q("YH0AB"));
    QCOMPARE(child<QLabel>(dialog, "callsignLabel")->styleSheet(),
             q("font-weight: bold; font-size: 14px; color: #2196F3;"));
    QCOMPARE(child<QLabel>(dialog, "gatewayNameLabel")->text(), q("Bukit Tinggi"));
    QCOMPARE(typed(dialog, "frequencyEdit"), q("145.500 MHz"));
    QCOMPARE(typed(dialog, "locationEdit"), q("Bukit"));
    QCOMPARE(typed(dialog, "picNameEdit"), q("Sari"));
    QCOMPARE(typed(dialog, "picCallsignEdit"), q("YB0ABC"));
    QCOMPARE(typed(dialog, "emailEdit"), q("yh0ab@example.org"));
    QCOMPARE(typed(dialog, "whatsappEdit"), q("0812"));
    QCOMPARE(child<QPushButton>(dialog, "saveButton")->text(), q("Simpan"));
    QCOMPARE(child<QPushButton>(dialog, "saveButton")->property("meaning").toString(), q("good"));
    QCOMPARE(child<QPushButton>(dialog, "cancelButton")->text(), q("Batal"));
    QStringList texts;
    for (const QLabel *label : dialog.findChildren<QLabel *>())
        texts.append(label->text());
    for (const char *text : {"Callsign Gateway:", "Nama Gateway:", "Frekuensi:", "Lokasi:", "PENANGGUNG JAWAB (PIC)",
                             "Nama PIC:", "Callsign PIC:", "KONTAK", "Email:", "WhatsApp:"})
        QVERIFY2(texts.contains(q(text)), text);
}

void AccountDialogsTest::formOfAnEmptyRecord()
{
    const EditProfileDialog dialog(QVariantMap{});
    QCOMPARE(dialog.windowTitle(), q("Edit Profile - -"));
    QCOMPARE(child<QLabel>(dialog, "gatewayNameLabel")->text(), q("-"));
    QCOMPARE(asList(dialog.profile()), QStringList({{}, {}, {}, {}, {}, {}, {}}));

    QVariantMap record = fullRecord();
    record.remove(q("name"));
    QCOMPARE(EditProfileDialog(record).profile().picName, q("Budi"));
}

void AccountDialogsTest::formGivesBackWhatWasTyped()
{
    EditProfileDialog dialog(fullRecord());
    type(dialog, "frequencyEdit", q("146.000 %1"));
    type(dialog, "locationEdit", q("Lembah"));
    type(dialog, "picNameEdit", q("Dewi"));
    type(dialog, "picCallsignEdit", q("YC0D"));
    type(dialog, "emailEdit", q("d@example.org"));
    type(dialog, "whatsappEdit", QString());
    push(dialog, "saveButton");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(asList(dialog.profile()), QStringList({q("Dewi"), q("YC0D"), q("Bukit Tinggi"), q("146.000 %1"),
                                                    q("Lembah"), q("d@example.org"), QString()}));
}

void AccountDialogsTest::formByKeyboard()
{
    EditProfileDialog dialog(fullRecord());
    dialog.show();
    QCOMPARE(WidgetChecks::tabOrder(dialog),
             QStringList({q("frequencyEdit"), q("locationEdit"), q("picNameEdit"), q("picCallsignEdit"), q("emailEdit"),
                          q("whatsappEdit"), q("saveButton"), q("cancelButton")}));
    QTest::keyClick(child<QLineEdit>(dialog, "emailEdit"), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    dialog.show();
    QTest::keyClick(child<QLineEdit>(dialog, "emailEdit"), Qt::Key_Escape);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void AccountDialogsTest::formTakesNothingThatBreaksALine_data()
{
    QTest::addColumn<QString>("fromServer");
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("location");
    QTest::newRow("a quote in the record") << q("Puncak \"A\"") << QString() << q("Puncak 'A'");
    QTest::newRow("a line end in the record") << q("A\r\nQUIT") << QString() << q("A  QUIT");
    QTest::newRow("a NUL in the record") << (q("A") + QChar(QChar::Null) + q("B")) << QString() << q("A B");
    QTest::newRow("a quote pasted") << q("A") << q("B\" \"C") << q("A");
    QTest::newRow("a line end pasted") << q("A") << q("B\r\nQUIT\r\n") << q("BQUITA");
}

void AccountDialogsTest::formTakesNothingThatBreaksALine()
{
    QFETCH(QString, fromServer);
    QFETCH(QString, pasted);
    QVariantMap record = fullRecord();
    record.insert(q("location"), fromServer);
    record.insert(q("gateway_name"), fromServer);
    const EditProfileDialog dialog(record);
    if (!pasted.isEmpty()) {
        QGuiApplication::clipboard()->setText(pasted);
        child<QLineEdit>(dialog, "locationEdit")->paste();
        QToolTip::hideText();
    }
    QTEST(dialog.profile().location, "location");
    const QString gateway = dialog.profile().gatewayName;
    QVERIFY(!gateway.contains(QLatin1Char('"')) && !gateway.contains(QLatin1Char('\n')));
}

void AccountDialogsTest::formKeepsLongTexts()
{
    QVariantMap record = fullRecord();
    const QString location(300, QLatin1Char('l'));
    record.insert(q("location"), location);
    record.insert(q("callsign"), QString(100000, QLatin1Char('W')));
    record.insert(q("gateway_name"), QString(100000, QLatin1Char('W')));
    const EditProfileDialog dialog(record);
    QCOMPARE(dialog.profile().location, location);
    QVERIFY(dialog.profile().gatewayName.size() <= 1000);
    QVERIFY2(dialog.sizeHint().width() < 1024, "a long text does not widen the dialog");
}

std::unique_ptr<ChangePasswordDialog> AccountDialogsTest::passwordDialog(bool connected) const
{
    return std::make_unique<ChangePasswordDialog>([connected] { return connected; });
}

void AccountDialogsTest::fillPasswords(const ChangePasswordDialog &dialog, const QString &old, const QString &wanted,
                                       const QString &confirmed)
{
    type(dialog, "oldPasswordEdit", old);
    type(dialog, "newPasswordEdit", wanted);
    type(dialog, "confirmPasswordEdit", confirmed);
}

void AccountDialogsTest::passwordLooksAsAnnounced()
{
    const auto dialog = passwordDialog();
    QCOMPARE(dialog->windowTitle(), q("Change Password"));
    const std::pair<const char *, const char *> fields[] = {{"oldPasswordEdit", "Current password"},
                                                            {"newPasswordEdit", "New password (min. 6 characters)"},
                                                            {"confirmPasswordEdit", "Confirm new password"}};
    for (const auto &[name, placeholder] : fields) {
        QCOMPARE(child<QLineEdit>(*dialog, name)->placeholderText(), q(placeholder));
        QCOMPARE(child<QLineEdit>(*dialog, name)->echoMode(), QLineEdit::Password);
    }
    QCOMPARE(child<QPushButton>(*dialog, "changeButton")->text(), q("Change Password"));
    QVERIFY(child<QPushButton>(*dialog, "changeButton")->styleSheet().contains(q("#FF9800")));
    QCOMPARE(child<QPushButton>(*dialog, "cancelButton")->text(), q("Cancel"));
    QStringList texts;
    for (const QLabel *label : dialog->findChildren<QLabel *>())
        texts.append(label->text());
    for (const char *text : {"Old Password:", "New Password:", "Confirm:"})
        QVERIFY2(texts.contains(q(text)), text);
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->text(), QString());
}

void AccountDialogsTest::passwordChecks_data()
{
    QTest::addColumn<QString>("old");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("confirmed");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("message");
    const QString differ = q("Password baru tidak cocok!");
    const QString tooShort = q("Password minimal 6 karakter!");
    QTest::newRow("everything wrong") << QString() << q("abc") << q("abd") << false << differ;
    QTest::newRow("differ and too short") << q("old") << q("abc") << q("abd") << true << differ;
    QTest::newRow("differ in case") << q("old") << q("abcdef") << q("abcdeF") << true << differ;
    QTest::newRow("not confirmed") << q("old") << q("abcdef") << QString() << true << differ;
    QTest::newRow("five characters") << q("old") << q("abcde") << q("abcde") << true << tooShort;
    QTest::newRow("too short and no old one") << QString() << q("abcde") << q("abcde") << false << tooShort;
    QTest::newRow("nothing typed") << QString() << QString() << QString() << true << tooShort;
    QTest::newRow("no old one") << QString() << q("abcdef") << q("abcdef") << true << q("Masukkan password lama!");
    QTest::newRow("no old one, not connected")
        << QString() << q("abcdef") << q("abcdef") << false << q("Masukkan password lama!");
    QTest::newRow("not connected") << q("old") << q("abcdef") << q("abcdef") << false
                                   << q("Tidak terhubung ke server!");
}

void AccountDialogsTest::passwordChecks()
{
    QFETCH(QString, old);
    QFETCH(QString, wanted);
    QFETCH(QString, confirmed);
    QFETCH(bool, connected);
    const auto dialog = passwordDialog(connected);
    const QSignalSpy requested(dialog.get(), &ChangePasswordDialog::changeRequested);
    dialog->show();
    fillPasswords(*dialog, old, wanted, confirmed);
    push(*dialog, "changeButton");
    QTEST(child<QLabel>(*dialog, "messageLabel")->text(), "message");
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->styleSheet(), q(kRed));
    QVERIFY(requested.isEmpty());
    QVERIFY(dialog->isVisible());
    QVERIFY(child<QPushButton>(*dialog, "changeButton")->isEnabled());
}

void AccountDialogsTest::passwordIsRequested()
{
    const auto dialog = passwordDialog();
    const QSignalSpy requested(dialog.get(), &ChangePasswordDialog::changeRequested);
    fillPasswords(*dialog, q(" old %1 "), q("abc\"def"), q("abcdef")); // the quote is not taken
    QToolTip::hideText();
    push(*dialog, "changeButton");
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.first(), QVariantList({q(" old %1 "), q("abcdef")}));
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->text(), q("Mengirim..."));
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->styleSheet(), q(kAmber));
    QVERIFY(!child<QPushButton>(*dialog, "changeButton")->isEnabled());
    QTest::keyClick(child<QLineEdit>(*dialog, "confirmPasswordEdit"), Qt::Key_Return);
    QCOMPARE(requested.size(), 1);
}

void AccountDialogsTest::passwordRefusedByTheServer_data()
{
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("message");
    QTest::newRow("a reason") << q("Password lama salah") << q("Gagal: Password lama salah");
    QTest::newRow("none") << QString() << q("Gagal: ");
    QTest::newRow("markup") << q("<h1>%1</h1>") << q("Gagal: <h1>%1</h1>");
    QTest::newRow("lines") << q("a\nb") << q("Gagal: a b");
    QTest::newRow("endless") << QString(100000, QLatin1Char('W')) << q("Gagal: ") + QString(300, QLatin1Char('W'));
}

void AccountDialogsTest::passwordRefusedByTheServer()
{
    QFETCH(QString, reason);
    const auto dialog = passwordDialog();
    const QSignalSpy requested(dialog.get(), &ChangePasswordDialog::changeRequested);
    const QSignalSpy changed(dialog.get(), &ChangePasswordDialog::changed);
    dialog->show();
    const int width = dialog->width();
    fillPasswords(*dialog, q("old"), q("abcdef"), q("abcdef"));
    push(*dialog, "changeButton");
    dialog->onPasswordChanged(false, reason);
    QTEST(child<QLabel>(*dialog, "messageLabel")->text(), "message");
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->styleSheet(), q(kRed));
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->textFormat(), Qt::PlainText);
    QCOMPARE(dialog->width(), width);
    QVERIFY(child<QPushButton>(*dialog, "changeButton")->isEnabled());
    QVERIFY(dialog->isVisible());
    QVERIFY(changed.isEmpty());
    push(*dialog, "changeButton");
    QCOMPARE(requested.size(), 2);
}

void AccountDialogsTest::passwordTakenByTheServer()
{
    const auto dialog = passwordDialog();
    const QSignalSpy changed(dialog.get(), &ChangePasswordDialog::changed);
    dialog->show();
    fillPasswords(*dialog, q("old"), q("abcdef"), q("abcdef"));
    push(*dialog, "changeButton");
    dialog->onPasswordChanged(true, q("OK"));
    QCOMPARE(changed.size(), 1);
    QVERIFY2(dialog->isVisible(), "closing it is the window's business");
}

void AccountDialogsTest::passwordVerdictsOfOthersAreIgnored()
{
    const auto dialog = passwordDialog();
    const QSignalSpy changed(dialog.get(), &ChangePasswordDialog::changed);
    dialog->onPasswordChanged(true, q("early"));
    dialog->onPasswordChanged(false, q("early"));
    QCOMPARE(child<QLabel>(*dialog, "messageLabel")->text(), QString());
    fillPasswords(*dialog, q("old"), q("abcdef"), q("abcdef"));
    push(*dialog, "changeButton");
    dialog->onPasswordChanged(true, q("OK"));
    dialog->onPasswordChanged(true, q("again"));
    dialog->onPasswordChanged(false, q("late"));
    QCOMPARE(changed.size(), 1);
    QVERIFY(!child<QLabel>(*dialog, "messageLabel")->text().contains(q("late")));
}

void AccountDialogsTest::passwordDialogMayGoWhenTold()
{
    QPointer<ChangePasswordDialog> dialog = passwordDialog().release();
    connect(dialog, &ChangePasswordDialog::changed, dialog, [dialog] { delete dialog; });
    fillPasswords(*dialog, q("old"), q("abcdef"), q("abcdef"));
    push(*dialog, "changeButton");
    dialog->onPasswordChanged(true, q("OK"));
    QVERIFY(!dialog);
}

void AccountDialogsTest::passwordByKeyboard()
{
    const auto dialog = passwordDialog();
    const QSignalSpy requested(dialog.get(), &ChangePasswordDialog::changeRequested);
    dialog->show();
    QCOMPARE(WidgetChecks::tabOrder(*dialog),
             QStringList({q("oldPasswordEdit"), q("newPasswordEdit"), q("confirmPasswordEdit"), q("changeButton"),
                          q("cancelButton")}));
    fillPasswords(*dialog, q("old"), q("abcdef"), q("abcdef"));
    QTest::keyClick(child<QLineEdit>(*dialog, "confirmPasswordEdit"), Qt::Key_Return);
    QCOMPARE(requested.size(), 1);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
}

void AccountDialogsTest::nothingIsCutOff_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void AccountDialogsTest::nothingIsCutOff()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    const QString theme = QLatin1Char('-') + QLatin1String(QTest::currentDataTag());
    LogCapture log; // a style sheet that cannot be read is a warning
    ProfileDialog profile(fullRecord(), {q("0123456789abcdef0123456789abcdef"), true, true});
    EditProfileDialog form(fullRecord());
    const auto password = passwordDialog();
    fillPasswords(*password, q("old"), q("abcde"), q("abcde"));
    push(*password, "changeButton");
    const std::pair<QDialog *, const char *> dialogs[] = {
        {&profile, "profile"}, {&form, "edit-profile"}, {password.get(), "change-password"}};
    for (const auto &[dialog, name] : dialogs) {
        QVERIFY(!Screenshots::save(*dialog, q(name) + theme).isNull());
        dialog->show();
        QCOMPARE(WidgetChecks::cutOff(*dialog), QStringList());
        dialog->resize(1, 1); // as small as it gets
        QCOMPARE(WidgetChecks::cutOff(*dialog), QStringList());
        QCOMPARE(WidgetChecks::tooBig(*dialog), QString());
    }
}

EVOX_TEST_MAIN(AccountDialogsTest, QApplication)
#include "tst_accountdialogs.moc"
