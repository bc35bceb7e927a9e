#include "SetupRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/setup/LoginDialog.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class SetupLoginTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void everyFieldIsNeeded_data();
    void everyFieldIsNeeded();
    void storesTheLogin();
    void cancelStoresNothing();
    void anAcceptedLoginAcceptsTheWizard();
    void aCancelledLoginKeepsTheWizard();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(q(name));
    }
    void type(const char *name, const QString &text) const
    {
        find<QLineEdit>(name)->clear();
        QTest::keyClicks(find<QLineEdit>(name), text);
    }

    std::unique_ptr<SetupRig> m_rig;
    std::unique_ptr<LoginDialog> m_dialog;
};

void SetupLoginTest::init()
{
    m_rig = std::make_unique<SetupRig>(QJsonObject{{q("other"), q("kept")}});
    m_rig->open();
    m_dialog = std::make_unique<LoginDialog>(m_rig->endpoints.serverHost, m_rig->prompts);
    m_dialog->show();
}

void SetupLoginTest::cleanup()
{
    m_dialog.reset();
    m_rig.reset();
}

void SetupLoginTest::looksAsAnnounced()
{
    QCOMPARE(m_dialog->windowTitle(), q("Login ke eVOX SINAR"));
    QCOMPARE(find<QLabel>("dialogHeading")->text(), q("Login ke eVOX SINAR"));
    QCOMPARE(find<QLineEdit>("loginServerEdit")->text(), q("radio.example"));
    QCOMPARE(find<QSpinBox>("loginPortSpin")->value(), 8080);
    QCOMPARE(find<QSpinBox>("loginPortSpin")->minimum(), 1);
    QCOMPARE(find<QSpinBox>("loginPortSpin")->maximum(), 65535);
    QCOMPARE(find<QLineEdit>("loginCallsignEdit")->placeholderText(), q("Callsign Anda"));
    QCOMPARE(find<QLineEdit>("loginPasswordEdit")->placeholderText(), q("Password"));
    QCOMPARE(find<QPushButton>("loginCancelButton")->text(), q("Batal"));
    QCOMPARE(find<QPushButton>("loginAcceptButton")->text(), q("Login"));
    auto *show = find<QAbstractButton>("loginShowPasswordCheck");
    QCOMPARE(show->text(), q("Tampilkan password"));
    QCOMPARE(find<QLineEdit>("loginPasswordEdit")->echoMode(), QLineEdit::Password);
    show->click();
    QCOMPARE(find<QLineEdit>("loginPasswordEdit")->echoMode(), QLineEdit::Normal);
}

void SetupLoginTest::everyFieldIsNeeded_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("password");
    QTest::newRow("no server") << q(" ") << q("YH0AB") << q("secret");
    QTest::newRow("no callsign") << q("hill") << QString() << q("secret");
    QTest::newRow("no password") << q("hill") << q("YH0AB") << QString();
    QTest::newRow("nothing") << QString() << QString() << QString();
}

void SetupLoginTest::everyFieldIsNeeded()
{
    QFETCH(QString, server);
    QFETCH(QString, callsign);
    QFETCH(QString, password);
    type("loginServerEdit", server);
    type("loginCallsignEdit", callsign);
    type("loginPasswordEdit", password);
    QTest::keyClick(find<QLineEdit>("loginPasswordEdit"), Qt::Key_Return);
    QCOMPARE(find<QLabel>("loginErrorLabel")->text(), q("Semua field harus diisi!"));
    QCOMPARE(find<QLabel>("loginErrorLabel")->styleSheet(), q("color: #F44336; font-weight: bold;"));
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")}}));
    QVERIFY(m_rig->prompts.seen().isEmpty());
}

void SetupLoginTest::storesTheLogin()
{
    m_rig->prompts.accept();
    type("loginServerEdit", q(" hill.example "));
    find<QSpinBox>("loginPortSpin")->setValue(9000);
    type("loginCallsignEdit", q("yh0ab"));
    QCOMPARE(find<QLineEdit>("loginCallsignEdit")->text(), q("YH0AB"));
    type("loginPasswordEdit", q("x"));
    find<QPushButton>("loginAcceptButton")->click();
    QCOMPARE(m_rig->prompts.seen().size(), 1);
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Sukses"));
    QCOMPARE(m_rig->prompts.seen().first().text, q("Login berhasil!\nSilakan restart aplikasi."));
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")},
                                                 {q("server_address"), q("hill.example")},
                                                 {q("server_port"), 9000},
                                                 {q("callsign"), q("YH0AB")},
                                                 {q("password"), q("x")},
                                                 {q("remember_password"), true},
                                                 {q("setup_completed"), true}}));
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    QVERIFY(!m_dialog->isVisible());
}

void SetupLoginTest::cancelStoresNothing()
{
    type("loginCallsignEdit", q("YH0AB"));
    type("loginPasswordEdit", q("x"));
    find<QPushButton>("loginCancelButton")->click();
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")}}));
}

void SetupLoginTest::anAcceptedLoginAcceptsTheWizard()
{
    m_rig->prompts.accept();
    QTimer::singleShot(0, [] {
        auto *dialog = qobject_cast<LoginDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QCOMPARE(dialog->findChild<QLineEdit *>(q("loginServerEdit"))->text(), q("radio.example"));
        QTest::keyClicks(dialog->findChild<QLineEdit *>(q("loginCallsignEdit")), q("YH0AB"));
        QTest::keyClicks(dialog->findChild<QLineEdit *>(q("loginPasswordEdit")), q("x"));
        dialog->findChild<QPushButton *>(q("loginAcceptButton"))->click();
    });
    m_dialog.reset();
    m_rig->find<QPushButton>("loginButton")->click();
    QCOMPARE(m_rig->wizard().result(), int(QDialog::Accepted));
    QVERIFY(!m_rig->wizard().isVisible());
}

void SetupLoginTest::aCancelledLoginKeepsTheWizard()
{
    QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
    m_dialog.reset();
    m_rig->find<QPushButton>("loginButton")->click();
    QVERIFY(m_rig->wizard().isVisible());
}

EVOX_TEST_MAIN(SetupLoginTest, QApplication)
#include "tst_setuplogin.moc"
