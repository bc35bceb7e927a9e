#include "RegistrationPeer.h"
#include "SetupRig.h"
#include "app/Config.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/setup/FirstStart.h"
#include "ui/setup/LoginDialog.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

namespace {

using Scripts = QList<RegistrationPeer::Script>;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class FirstStartTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void cancelThenYesEnds();
    void cancelThenNoGoesOn();
    void aLoginGoesOnToTheMainWindow();
    void aLoginKeepsAnIdentifier();
    void incompleteDataIsTold();
    void aRegistrationEnds();
    void aRefusalShowsTheWizardAgain();

private:
    /// Runs the first start; each step is one showing of the wizard.
    FirstStart::Outcome run(const QList<std::function<void()>> &passes);
    void fillIn(quint16 port);

    std::unique_ptr<SetupRig> m_rig;
    QList<QStringList> m_started;
    int m_shown = 0;
};

void FirstStartTest::init()
{
    m_rig = std::make_unique<SetupRig>(QJsonObject{{q("other"), q("kept")}});
    m_started.clear();
    m_shown = 0;
}

void FirstStartTest::cleanup()
{
    m_rig.reset();
}

FirstStart::Outcome FirstStartTest::run(const QList<std::function<void()>> &passes)
{
    FirstStart start(m_rig->endpoints, m_rig->prompts, [this](const QString &program, const QStringList &arguments) {
        m_started.append(QStringList{program} + arguments);
        return true;
    });
    auto *wizard = qobject_cast<SetupWizard *>(start.window());
    m_rig->drive(wizard);
    QTimer watch; // acts whenever the wizard has come up
    bool wasVisible = false;
    QObject::connect(&watch, &QTimer::timeout, wizard, [&] {
        if (wizard->isVisible() == wasVisible)
            return;
        wasVisible = wizard->isVisible();
        if (!wasVisible)
            return;
        if (m_shown < passes.size())
            passes.at(m_shown++)();
        else
            QTest::qFail("the wizard came up once more", __FILE__, __LINE__), wizard->accept();
        wasVisible = wizard->isVisible();
    });
    watch.start(1);
    const auto outcome = start.run();
    [&] { QCOMPARE(m_shown, passes.size()); }();
    return outcome;
}

void FirstStartTest::fillIn(quint16 port)
{
    m_rig->type("serverAddressEdit", q("127.0.0.1"));
    m_rig->find<QSpinBox>("serverPortSpin")->setValue(port);
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    m_rig->type("passwordEdit", q("rahasia"));
    m_rig->wizard().button(QWizard::FinishButton)->click();
}

void FirstStartTest::cancelThenYesEnds()
{
    m_rig->prompts.accept();
    QCOMPARE(run({[this] { m_rig->wizard().button(QWizard::CancelButton)->click(); }}), FirstStart::Outcome::Ended);
    QCOMPARE(m_rig->prompts.seen().size(), 1);
    const Prompt &prompt = m_rig->prompts.seen().first();
    QCOMPARE(prompt.kind, Prompt::Kind::Question);
    QCOMPARE(prompt.title, q("Konfirmasi"));
    QCOMPARE(prompt.text,
             q("Apakah Anda yakin ingin keluar?\n\nAnda harus login atau mendaftar untuk menggunakan aplikasi ini."));
    QVERIFY(!prompt.yesIsDefault);
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")}}));
}

void FirstStartTest::cancelThenNoGoesOn()
{
    m_rig->prompts.cancel();
    m_rig->prompts.accept();
    const auto outcome = run({[this] {
                                  QVERIFY(m_rig->goTo(SetupWizard::Pic));
                                  m_rig->wizard().button(QWizard::CancelButton)->click();
                              },
                              [this] {
                                  QCOMPARE(m_rig->wizard().currentId(), int(SetupWizard::Pic));
                                  QCOMPARE(m_rig->text("callsignEdit"), q("YH0AB"));
                                  QTest::keyClick(&m_rig->wizard(), Qt::Key_Escape);
                              }});
    QCOMPARE(outcome, FirstStart::Outcome::Ended);
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")}}));
}

void FirstStartTest::aLoginGoesOnToTheMainWindow()
{
    const LogCapture log;
    m_rig->prompts.accept();
    const auto outcome = run({[this] {
        QTimer::singleShot(0, [] {
            auto *dialog = qobject_cast<LoginDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            QTest::keyClicks(dialog->findChild<QLineEdit *>(q("loginCallsignEdit")), q("YH0AB"));
            QTest::keyClicks(dialog->findChild<QLineEdit *>(q("loginPasswordEdit")), q("x"));
            dialog->findChild<QPushButton *>(q("loginAcceptButton"))->click();
        });
        m_rig->find<QPushButton>("loginButton")->click();
    }});
    QCOMPARE(outcome, FirstStart::Outcome::SetUp);
    const QString hwid = m_rig->config.saved().value(q("hwid")).toString();
    QCOMPARE(hwid.size(), 32);
    QVERIFY(log.contains(q("[Main] HWID generated after login: ") + hwid.left(16) + q("...")));
    QVERIFY(m_started.isEmpty());
}

void FirstStartTest::aLoginKeepsAnIdentifier()
{
    Config::instance().setHwid(q("bound"));
    const LogCapture log;
    // As the login dialog leaves it.
    const auto outcome = run({[this] {
        Config::instance().setSetupCompleted(true);
        m_rig->wizard().accept();
    }});
    QCOMPARE(outcome, FirstStart::Outcome::SetUp);
    QCOMPARE(Config::instance().hwid(), q("bound"));
    QCOMPARE(log.count(q("[Main]")), 0);
}

void FirstStartTest::incompleteDataIsTold()
{
    m_rig->prompts.accept();
    m_rig->prompts.accept();
    const auto outcome = run({[this] {
                                  QVERIFY(m_rig->goTo(SetupWizard::Password));
                                  m_rig->wizard().accept(); // round the button, without a password
                              },
                              [this] {
                                  QCOMPARE(m_rig->wizard().currentId(), int(SetupWizard::Password));
                                  m_rig->wizard().reject();
                              }});
    QCOMPARE(outcome, FirstStart::Outcome::Ended);
    QCOMPARE(m_rig->prompts.seen().size(), 2);
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Data Tidak Lengkap"));
    QCOMPARE(m_rig->prompts.seen().first().text,
             q("Semua field wajib harus diisi.\nSilakan lengkapi data pendaftaran."));
    QCOMPARE(m_rig->config.saved(), (QJsonObject{{q("other"), q("kept")}}));
}

void FirstStartTest::aRegistrationEnds()
{
    const RegistrationPeer peer(Scripts{{"HALO\r\n", {"REGISTER_OK\r\n"}}});
    m_rig->prompts.accept();
    QCOMPARE(run({[this, &peer] { fillIn(peer.port()); }}), FirstStart::Outcome::Ended);
    QCOMPARE(m_started.size(), 1);
    QCOMPARE(peer.received().first(),
             QByteArray("REGISTER_GATEWAY \"RF-GW SINAR Bandung\" \"YH0AB\" \"-\" \"2099-12-31\" "
                        "\"JL. MERDEKA 1, BANDUNG\" \"ANI SITI\" \"YB0AA\" \"rahasia\" \"yh0ab@mail.example\" "
                        "\"-\"\r\n"));
    QJsonObject saved = m_rig->config.saved();
    QCOMPARE(saved.take(q("hwid")).toString().size(), 32);
    QCOMPARE(saved, (QJsonObject{{q("other"), q("kept")},
                                 {q("server_address"), q("127.0.0.1")},
                                 {q("server_port"), peer.port()},
                                 {q("default_room"), q("== LOBBY ==")},
                                 {q("callsign"), q("YH0AB")},
                                 {q("gateway_name"), q("RF-GW SINAR Bandung")},
                                 {q("frequency"), q("")},
                                 {q("location"), q("JL. MERDEKA 1, BANDUNG")},
                                 {q("name"), q("ANI SITI")},
                                 {q("responsible_name"), q("ANI SITI")},
                                 {q("responsible_callsign"), q("YB0AA")},
                                 {q("email"), q("")},
                                 {q("whatsapp"), q("")},
                                 {q("password"), q("rahasia")},
                                 {q("remember_password"), true},
                                 {q("auto_login"), true},
                                 {q("setup_completed"), true}}));
}

void FirstStartTest::aRefusalShowsTheWizardAgain()
{
    const RegistrationPeer peer(
        Scripts{{"HALO\r\n", {"REGISTER_FAILED|Password terlalu pendek\r\n"}}, {"HALO\r\n", {"REGISTER_OK\r\n"}}});
    m_rig->prompts.accept([this] {
        // What was entered is kept on disk, as a setup that is not completed.
        QCOMPARE(m_rig->config.saved().value(q("callsign")), QJsonValue(q("YH0AB")));
        QCOMPARE(m_rig->config.saved().value(q("setup_completed")), QJsonValue(false));
    });
    m_rig->prompts.accept();
    const auto outcome = run({[this, &peer] { fillIn(peer.port()); },
                              [this] {
                                  QCOMPARE(m_rig->wizard().currentId(), int(SetupWizard::Password));
                                  QCOMPARE(m_rig->text("passwordEdit"), q("rahasia"));
                                  m_rig->type("passwordEdit", q("lebih rahasia"));
                                  m_rig->wizard().button(QWizard::FinishButton)->click();
                              }});
    QCOMPARE(outcome, FirstStart::Outcome::Ended);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Registrasi Gagal"));
    QCOMPARE(m_rig->prompts.seen().last().title, q("Registrasi Berhasil"));
    QVERIFY(peer.received().last().contains("\"lebih rahasia\""));
}

EVOX_TEST_MAIN(FirstStartTest, QApplication)
#include "tst_firststart.moc"
