#include "AdminUsers.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/EditUserDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>

#include <memory>

using namespace AdminUsers;

namespace {

constexpr int kMostTabs = 24;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const char *const kUnchanged = R"(ADMIN_UPDATE_USER 7 "Budi" "YB0ABC" "active" "Bukit 7" "145.500 MHz" "Medan" )"
                               R"("yh@example.org" "0812" 1 0 "2031-12-30")";

} // namespace

class EditUserDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void showsTheRecord();
    void emptyRecordIsBearable();
    void statuses_data();
    void statuses();
    void expiries_data();
    void expiries();
    void savesWhatIsThere();
    void savesWhatWasChanged();
    void recordsCannotSmuggleCommands();
    void longTextsOfTheServerSurvive();
    void passwords_data();
    void passwords();
    void aSentPasswordIsForgotten();
    void deviceReset_data();
    void deviceReset();
    void tabFollowsTheGroups();
    void cancelSendsNothing();
    void deletedWhileABoxIsOpen_data();
    void deletedWhileABoxIsOpen();
    void quotesAreNotTaken();
    void pictures_data();
    void pictures();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = m_dialog->findChild<Widget *>(q(name));
        Q_ASSERT(widget);
        return widget;
    }
    void open(const QVariantMap &record);
    void click(const char *name) const { find<QPushButton>(name)->click(); }
    [[nodiscard]] QString text(const char *name) const { return find<QLineEdit>(name)->text(); }

    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<EditUserDialog> m_dialog;
    QStringList m_lines;
};

void EditUserDialogTest::init()
{
    m_prompts = std::make_unique<ScriptedPrompts>();
    open(user(7));
}

void EditUserDialogTest::cleanup()
{
    m_dialog.reset();
    m_prompts.reset();
}

void EditUserDialogTest::open(const QVariantMap &record)
{
    m_lines.clear();
    m_dialog = std::make_unique<EditUserDialog>(record, *m_prompts);
    note(*m_dialog, m_lines);
    m_dialog->show();
}

void EditUserDialogTest::looksAsAnnounced()
{
    QCOMPARE(m_dialog->windowTitle(), q("Edit User - YH7AB"));
    QStringList groups;
    for (const auto *group : m_dialog->findChildren<QGroupBox *>())
        groups += group->title();
    groups.sort();
    QCOMPARE(groups, (QStringList{q("Device Binding"), q("Information"), q("License Expiry (Ijin DJID)"),
                                  q("Reset Password")}));
    QStringList labels;
    for (const auto *label : m_dialog->findChildren<QLabel *>()) {
        if (label->buddy())
            labels += label->text();
    }
    for (const char *label : {"Name:", "PIC Name:", "PIC Callsign:", "Status:", "Gateway Name:", "Frequency:",
                              "Location:", "Email:", "WhatsApp:", "Expiry Date:"})
        QVERIFY2(labels.contains(q(label)), label);
    QCOMPARE(find<QCheckBox>("editApprovedCheck")->text(), q("Approved for Transmit"));
    QCOMPARE(find<QCheckBox>("editAdminCheck")->text(), q("Administrator"));
    QCOMPARE(find<QDateEdit>("editExpiryDate")->displayFormat(), q("dd/MM/yyyy"));
    QCOMPARE(find<QLabel>("editExpiryNote")->text(),
             q("Tanggal kadaluarsa ijin dari DJID.\nUser otomatis disuspend jika melewati tanggal ini."));
    QCOMPARE(find<QLineEdit>("editPasswordEdit")->placeholderText(), q("Enter new password..."));
    QCOMPARE(find<QPushButton>("editResetPasswordButton")->text(), q("Reset Password"));
    QCOMPARE(find<QPushButton>("editResetHwidButton")->text(), q("Reset HWID (Allow New Device)"));
    QCOMPARE(find<QPushButton>("editSaveButton")->text(), q("Save Changes"));
    QCOMPARE(find<QPushButton>("editSaveButton")->property("meaning").toString(), q("good"));
    QCOMPARE(find<QPushButton>("editCancelButton")->text(), q("Cancel"));
}

void EditUserDialogTest::showsTheRecord()
{
    QCOMPARE(text("editNameEdit"), q("Sari"));
    QVERIFY(find<QLineEdit>("editNameEdit")->isReadOnly());
    QCOMPARE(text("editPicNameEdit"), q("Budi"));
    QCOMPARE(text("editPicCallsignEdit"), q("YB0ABC"));
    QCOMPARE(find<QComboBox>("editStatusCombo")->currentText(), q("active"));
    QVERIFY(find<QCheckBox>("editApprovedCheck")->isChecked());
    QVERIFY(!find<QCheckBox>("editAdminCheck")->isChecked());
    QCOMPARE(text("editGatewayNameEdit"), q("Bukit 7"));
    QCOMPARE(text("editFrequencyEdit"), q("145.500 MHz"));
    QCOMPARE(text("editLocationEdit"), q("Medan"));
    QCOMPARE(text("editEmailEdit"), q("yh@example.org"));
    QCOMPARE(text("editWhatsappEdit"), q("0812"));
    QCOMPARE(find<QDateEdit>("editExpiryDate")->text(), q("30/12/2031"));
    QCOMPARE(find<QLabel>("editDeviceLabel")->text(), q("HWID: Registered"));
}

void EditUserDialogTest::emptyRecordIsBearable()
{
    open({{q("id"), 3}});
    QCOMPARE(m_dialog->windowTitle(), q("Edit User - "));
    QCOMPARE(find<QLabel>("editDeviceLabel")->text(), q("HWID: Not Registered"));
    m_prompts->accept();
    click("editSaveButton");
    QCOMPARE(m_lines, QStringList{q(R"(ADMIN_UPDATE_USER 3 "" "" "active" "" "" "" "" "" 0 0 "")")});
}

void EditUserDialogTest::statuses_data()
{
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("choices");
    for (const char *status : {"active", "pending", "suspended", "banned"})
        QTest::newRow(status) << q(status) << q(status) << 4;
    QTest::newRow("in capitals") << q("BANNED") << q("banned") << 4;
    QTest::newRow("none") << QString() << q("active") << 4;
    QTest::newRow("one of the server's own") << q("expired") << q("expired") << 5;
}

void EditUserDialogTest::statuses()
{
    QFETCH(QString, told);
    QFETCH(QString, shown);
    QFETCH(int, choices);
    open(user(7, {{q("status"), told}}));
    QCOMPARE(find<QComboBox>("editStatusCombo")->currentText(), shown);
    QCOMPARE(find<QComboBox>("editStatusCombo")->count(), choices);
    QCOMPARE(m_dialog->account().status, shown);
}

void EditUserDialogTest::expiries_data()
{
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<bool>("isDate");
    QTest::newRow("a date") << q("2027-02-28") << q("2027-02-28") << true;
    QTest::newRow("a date long past") << q("1999-12-31") << q("1999-12-31") << true;
    QTest::newRow("with the time of day") << q("2027-02-28T10:00:00") << q("2027-02-28") << true;
    QTest::newRow("as the field shows it") << q("31/05/2027") << q("2027-05-31") << true;
    QTest::newRow("as the field shows it, with the time of day") << q("02/01/2027 10:00") << q("2027-01-02") << true;
    QTest::newRow("none stays none") << QString() << QString() << false;
    QTest::newRow("no date at all") << q("soon") << q("soon") << false;
    QTest::newRow("a day that does not exist") << q("2027-02-30") << q("2027-02-30") << false;
    QTest::newRow("month and day in turn") << q("05/31/2027") << q("05/31/2027") << false;
    QTest::newRow("a text that is no field") << q("so\non \"x\"") << q("so on 'x'") << false;
    QTest::newRow("a long text") << QString(300, QLatin1Char('x')) << QString(300, QLatin1Char('x')) << false;
}

void EditUserDialogTest::expiries()
{
    QFETCH(QString, told);
    QFETCH(QString, sent);
    QFETCH(bool, isDate);
    open(user(7, {{q("license_expiry"), told}}));
    QCOMPARE(m_dialog->account().permitExpiry, sent);
    QCOMPARE(find<QDateEdit>("editExpiryDate")->isEnabled(), isDate);
    const auto *hint = m_dialog->findChild<QLabel *>(q("editUnreadableExpiry"));
    QCOMPARE(hint && hint->isVisible(), !isDate && !told.isEmpty());
    QVERIFY(!hint || hint->text().contains(sent.left(200)));
    find<QGroupBox>("editExpiryGroup")->setChecked(true); // one may be given
    find<QDateEdit>("editExpiryDate")->setDate(QDate(2030, 1, 2));
    QCOMPARE(m_dialog->account().permitExpiry, q("2030-01-02"));
    QVERIFY(!hint || !hint->isVisible());
    find<QGroupBox>("editExpiryGroup")->setChecked(false); // and taken away
    QCOMPARE(m_dialog->account().permitExpiry, QString());
}

void EditUserDialogTest::savesWhatIsThere()
{
    QSignalSpy refresh(m_dialog.get(), &EditUserDialog::refreshRequested);
    m_prompts->accept([this] { QCOMPARE(m_lines.size(), 1); }); // sent before the box is answered
    click("editSaveButton");
    QCOMPARE(m_lines, QStringList{q(kUnchanged)});
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_prompts->seen().first().title, q("Success"));
    QCOMPARE(m_prompts->seen().first().text, q("User updated successfully!"));
    QCOMPARE(refresh.count(), 1);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Accepted));
}

void EditUserDialogTest::savesWhatWasChanged()
{
    find<QLineEdit>("editPicNameEdit")->setText(q(" Citra %1 "));
    find<QLineEdit>("editPicCallsignEdit")->setText(q("YC1DEF"));
    find<QComboBox>("editStatusCombo")->setCurrentText(q("suspended"));
    find<QCheckBox>("editApprovedCheck")->setChecked(false);
    find<QCheckBox>("editAdminCheck")->setChecked(true);
    find<QLineEdit>("editGatewayNameEdit")->setText(q("Gunung"));
    find<QLineEdit>("editFrequencyEdit")->clear();
    find<QLineEdit>("editLocationEdit")->setText(q("Padang, é"));
    find<QLineEdit>("editEmailEdit")->setText(q("c@d.id"));
    find<QLineEdit>("editWhatsappEdit")->setText(q("0813"));
    find<QDateEdit>("editExpiryDate")->setDate(QDate(2033, 3, 4));
    m_prompts->accept();
    click("editSaveButton");
    QCOMPARE(m_lines, QStringList{q(R"(ADMIN_UPDATE_USER 7 "Citra %1" "YC1DEF" "suspended" "Gunung" "" "Padang, é" )"
                                    R"("c@d.id" "0813" 0 1 "2033-03-04")")});
}

void EditUserDialogTest::recordsCannotSmuggleCommands()
{
    const QString evil = q("x\"\r\nADMIN_DELETE_USER 1\n\"");
    QVariantMap record = user(7);
    for (const char *key : {"callsign", "name", "responsible_name", "responsible_callsign", "gateway_name", "frequency",
                            "location", "email", "whatsapp", "status"})
        record.insert(q(key), evil);
    open(record);
    find<QLineEdit>("editLocationEdit")->setText(q("two\nlines"));
    find<QLineEdit>("editPasswordEdit")->setText(q("pass\r\nADMIN_DELETE_USER 1"));
    m_prompts->accept();
    click("editResetPasswordButton");
    click("editSaveButton");
    QCOMPARE(m_lines.size(), 2);
    for (const QString &line : qAsConst(m_lines)) {
        QVERIFY2(!line.contains(QLatin1Char('\n')) && !line.contains(QLatin1Char('\r')), qPrintable(line));
        QCOMPARE(line.count(QLatin1Char('"')), line.startsWith(q("ADMIN_UPDATE_USER")) ? 18 : 2);
    }
    QVERIFY2(!m_dialog->windowTitle().contains(QLatin1Char('\n')), "a title is one line");
}

void EditUserDialogTest::longTextsOfTheServerSurvive()
{
    for (const int length : {200, 201, 1000000}) {
        const QString text(length, QLatin1Char('W'));
        open(user(7, {{q("location"), text}, {q("callsign"), text}, {q("status"), text.toLower()}}));
        QCOMPARE(m_dialog->account().location, text);
        QCOMPARE(m_dialog->account().status, text.toLower());
        QVERIFY(m_dialog->windowTitle().size() < 250);
        QVERIFY(m_dialog->width() <= 1024);
    }
    open(user(7, {{q("location"), QString(300, QLatin1Char('W'))}, {q("email"), q(" a@b.id ")}}));
    QCOMPARE(m_dialog->account().email, q(" a@b.id "));
    QTest::keyClick(find<QLineEdit>("editLocationEdit"), Qt::Key_Backspace);
    find<QLineEdit>("editLocationEdit")->end(false);
    QTest::keyClick(find<QLineEdit>("editLocationEdit"), Qt::Key_Backspace);
    QCOMPARE(m_dialog->account().location, QString(299, QLatin1Char('W')));
}

void EditUserDialogTest::passwords_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("color");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const char *password, const char *text, const QStringList &lines) {
        QTest::newRow(name) << q(password) << q(text) << (lines.isEmpty() ? q("#F44336") : q("#4CAF50")) << lines;
    };
    row("empty", "", "Password cannot be empty!", {});
    row("1 character", "a", "Password minimum 4 characters!", {});
    row("3 characters", "abc", "Password minimum 4 characters!", {});
    row("4 characters", "abcd", "Password reset sent!", {q(R"(ADMIN_RESET_PASSWORD 7 "abcd")")});
    row("a placeholder in it", "%1%2x", "Password reset sent!", {q(R"(ADMIN_RESET_PASSWORD 7 "%1%2x")")});
}

void EditUserDialogTest::passwords()
{
    QFETCH(QString, password);
    QFETCH(QString, text);
    QFETCH(QString, color);
    QFETCH(QStringList, lines);
    QTest::keyClicks(find<QLineEdit>("editPasswordEdit"), password);
    click("editResetPasswordButton");
    const auto *status = find<QLabel>("editPasswordStatus");
    QCOMPARE(status->text(), text);
    QVERIFY2(status->styleSheet().contains(color), qPrintable(status->styleSheet()));
    QVERIFY2(status->styleSheet().contains(q("bold")) || !lines.isEmpty(), "a refusal is bold");
    QCOMPARE(m_lines, lines);
    QVERIFY(m_dialog->isVisible());
}

void EditUserDialogTest::aSentPasswordIsForgotten()
{
    find<QLineEdit>("editPasswordEdit")->setText(q("abcd"));
    click("editResetPasswordButton");
    click("editResetPasswordButton");
    QCOMPARE(m_lines.size(), 1);
    QCOMPARE(find<QLabel>("editPasswordStatus")->text(), q("Password cannot be empty!"));
}

void EditUserDialogTest::deviceReset_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void EditUserDialogTest::deviceReset()
{
    QFETCH(bool, yes);
    if (yes)
        m_prompts->accept();
    else
        m_prompts->cancel();
    click("editResetHwidButton");
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Question);
    QCOMPARE(m_prompts->seen().first().title, q("Reset HWID"));
    QCOMPARE(m_prompts->seen().first().text, q("Reset HWID for YH7AB?\nThis will allow login from a new device."));
    QCOMPARE(m_lines, yes ? QStringList{q("ADMIN_RESET_HWID 7")} : QStringList());
    QCOMPARE(find<QLabel>("editDeviceLabel")->text(), yes ? q("HWID: Reset Done") : q("HWID: Registered"));
}

void EditUserDialogTest::tabFollowsTheGroups()
{
    m_dialog->show();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    find<QLineEdit>("editPicNameEdit")->setFocus();
    QStringList reached;
    for (int keys = 0; keys < kMostTabs && QApplication::focusWidget(); ++keys) {
        const QString name = QApplication::focusWidget()->objectName();
        if (reached.isEmpty() || name != reached.last()) // a date takes some keys for its parts
            reached += name;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QStringList order{q("editPicNameEdit"),   q("editPicCallsignEdit"),     q("editStatusCombo"),
                            q("editApprovedCheck"), q("editAdminCheck"),          q("editGatewayNameEdit"),
                            q("editFrequencyEdit"), q("editLocationEdit"),        q("editEmailEdit"),
                            q("editWhatsappEdit"),  q("editExpiryGroup"),         q("editExpiryDate"),
                            q("editPasswordEdit"),  q("editResetPasswordButton"), q("editResetHwidButton"),
                            q("editSaveButton"),    q("editCancelButton")};
    QCOMPARE(reached.mid(0, order.size()), order);
}

void EditUserDialogTest::cancelSendsNothing()
{
    find<QLineEdit>("editLocationEdit")->setText(q("Elsewhere"));
    click("editCancelButton");
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_lines, QStringList());
}

void EditUserDialogTest::deletedWhileABoxIsOpen_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("lines");
    QTest::newRow("success") << q("editSaveButton") << 1;
    QTest::newRow("question") << q("editResetHwidButton") << 0;
}

void EditUserDialogTest::deletedWhileABoxIsOpen()
{
    QFETCH(QString, button);
    QFETCH(int, lines);
    m_prompts->accept([this] { m_dialog.reset(); });
    m_dialog->findChild<QPushButton *>(button)->click();
    QVERIFY(!m_dialog);
    QCOMPARE(m_lines.size(), lines);
}

void EditUserDialogTest::quotesAreNotTaken()
{
    int fields = 0;
    for (auto *edit : m_dialog->findChildren<QLineEdit *>()) {
        if (edit->isReadOnly() || !edit->objectName().startsWith(q("edit")))
            continue; // the date's own field
        edit->clear();
        QTest::keyClicks(edit, q("A\"B"));
        QVERIFY2(edit->text() == q("AB"), qPrintable(edit->objectName()));
        ++fields;
    }
    QCOMPARE(fields, 8);
}

void EditUserDialogTest::pictures_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void EditUserDialogTest::pictures()
{
    QFETCH(bool, dark);
    useDesktopFont();
    LogCapture log; // a style sheet that does not parse is a warning
    Theme::apply(*qApp, dark);
    open(user(7));
    click("editResetPasswordButton");
    const QString suffix = dark ? q("dark") : q("light");
    QVERIFY(!Screenshots::save(*m_dialog, q("admin-edituser-") + suffix).isNull());
    QVERIFY2(m_dialog->height() <= 600 && m_dialog->width() <= 1024, "fits the smallest screen");
    open(user(7, {{q("license_expiry"), QString()}, {q("registered_hwid"), QString()}}));
    QVERIFY(!Screenshots::save(*m_dialog, q("admin-edituser-noexpiry-") + suffix).isNull());
    m_dialog.reset();
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(EditUserDialogTest, QApplication)
#include "tst_edituserdialog.moc"
