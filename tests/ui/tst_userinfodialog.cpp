#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/account/UserInfoDialog.h"

#include <QApplication>
#include <QLabel>

class UserInfoDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void fullRecord();
    void emptyRecord();
    void nameWithoutAGateway();
    void lastLogin_data();
    void lastLogin();
    void showsHostileTextsLiterally();
};

void UserInfoDialogTest::fullRecord()
{
    const QVariantMap record{{QStringLiteral("gateway_name"), QStringLiteral("Bukit Tinggi")},
                             {QStringLiteral("name"), QStringLiteral("Sari")},
                             {QStringLiteral("callsign"), QStringLiteral("YH0AB")},
                             {QStringLiteral("id"), 42},
                             {QStringLiteral("frequency"), QStringLiteral("145.500 MHz")},
                             {QStringLiteral("location"), QStringLiteral("Bukit")},
                             {QStringLiteral("responsible_name"), QStringLiteral("Sari")},
                             {QStringLiteral("responsible_callsign"), QStringLiteral("YB0ABC")},
                             {QStringLiteral("email"), QStringLiteral("yh0ab@example.org")},
                             {QStringLiteral("whatsapp"), QStringLiteral("0812")},
                             {QStringLiteral("status"), QStringLiteral("suspended")},
                             {QStringLiteral("approved"), true},
                             {QStringLiteral("license_expiry"), QStringLiteral("2027-12-31")},
                             {QStringLiteral("last_login"), QStringLiteral("2026-11-21T08:00:00")},
                             {QStringLiteral("registered_hwid"), QStringLiteral("abc")}};
    UserInfoDialog dialog(record);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("RF-Gateway Info - YH0AB"));
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("infoText"))->text(),
             QStringLiteral("Name        : Bukit Tinggi\nCallsign    : YH0AB\nID          : 42\n"
                            "Freq        : 145.500 MHz\nLoc         : Bukit\nPIC         : Sari (YB0ABC)\n"
                            "Email       : yh0ab@example.org\nWA          : 0812\nStatus      : suspended\n"
                            "Approved    : Yes\nExpiry      : 2027-12-31\nLast Login  : 2026-11-21 08:00:00\n"
                            "HWID        : abc\nPING        : -- ms\nVersion     : -"));
    Screenshots::save(dialog, QStringLiteral("user-info"));
}

void UserInfoDialogTest::emptyRecord()
{
    QCOMPARE(UserInfoDialog::textFor({}),
             QStringLiteral("Name        : -\nCallsign    : -\nID          : -\nFreq        : -\nLoc         : -\n"
                            "PIC         : - (-)\nEmail       : -\nWA          : -\nStatus      : active\n"
                            "Approved    : No\nExpiry      : -\nLast Login  : -\nHWID        : -\n"
                            "PING        : -- ms\nVersion     : -"));
}

void UserInfoDialogTest::nameWithoutAGateway()
{
    QVERIFY(UserInfoDialog::textFor({{QStringLiteral("name"), QStringLiteral("Sari")}})
                .startsWith(QStringLiteral("Name        : Sari\n")));
}

void UserInfoDialogTest::lastLogin_data()
{
    QTest::addColumn<QString>("fromServer");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, const char *fromServer, const char *shown) {
        QTest::newRow(name) << QString::fromLatin1(fromServer) << QString::fromLatin1(shown);
    };
    row("date and time", "2026-05-30T10:00:00", "2026-05-30 10:00:00");
    row("with a zone", "2026-05-30T10:00:00 WIT", "2026-05-30 10:00:00 WIT");
    row("separated by a blank", "2026-05-30 10:00:00 WIT", "2026-05-30 10:00:00 WIT");
    row("never", "Tidak pernah", "Tidak pernah");
    row("a lone letter", "T", "T");
}

void UserInfoDialogTest::lastLogin()
{
    QFETCH(QString, fromServer);
    QFETCH(QString, shown);
    const QString text = UserInfoDialog::textFor({{QStringLiteral("last_login"), fromServer}});
    QVERIFY2(text.split(QLatin1Char('\n')).contains(QStringLiteral("Last Login  : ") + shown), qPrintable(text));
}

void UserInfoDialogTest::showsHostileTextsLiterally()
{
    const QVariantMap record{{QStringLiteral("gateway_name"), QStringLiteral("<img src=x>%2")},
                             {QStringLiteral("location"), QString(100000, QLatin1Char('W'))}};
    UserInfoDialog dialog(record);
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("infoText"));
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QVERIFY(label->text().contains(QStringLiteral("<img src=x>%2")));
    QVERIFY2(dialog.sizeHint().width() < 2000, "a long text scrolls, it does not widen the dialog");
}

EVOX_TEST_MAIN(UserInfoDialogTest, QApplication)
#include "tst_userinfodialog.moc"
