#include "e2e/WizardUser.h"
#include "support/CompanionServer.h"
#include "support/FakeServer.h"
#include "support/Station.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTcpServer>

#include <memory>

namespace {

const QString kWizard = QStringLiteral("eVOX SINAR - Setup Wizard");
const QString kFailed = QStringLiteral("Registrasi Gagal");
const QString kPicName = QStringLiteral("SARI CONTOH");
const QString kAddress = QStringLiteral("Jl. Contoh No. 1, Jakarta");
const QString kRoom = QStringLiteral("== LOBBY ==");
const QString kExisting = QStringLiteral("YH7AA");
const QString kExistingPassword = QStringLiteral("long-known");

QJsonArray registry()
{
    const auto record = [](const QString &callsign, const QString &name, const QString &validity) {
        return QJsonObject{{QStringLiteral("callsign"), callsign},
                           {QStringLiteral("name"), name},
                           {QStringLiteral("address"), kAddress},
                           {QStringLiteral("validity"), validity},
                           {QStringLiteral("status"), QStringLiteral("AKTIF")}};
    };
    const QString farAway = QStringLiteral("DESEMBER 2099");
    return {record(QStringLiteral("YH0GW"), QStringLiteral("RF-GW CONTOH"), farAway),
            record(kExisting, QStringLiteral("RF-GW LAMA"), farAway),
            record(QStringLiteral("YH3XCC"), QStringLiteral("RF-GW USANG"), QStringLiteral("31-12-2020")),
            record(QStringLiteral("YB0ABC"), kPicName, farAway)};
}

/// A web address where nobody listens.
QString deadUrl(const QString &host)
{
    QTcpServer probe;
    return probe.listen(QHostAddress(host)) ? QStringLiteral("http://%1:%2").arg(host).arg(probe.serverPort())
                                            : QString();
}

QString refusal(const QString &reason)
{
    return QStringLiteral("Pendaftaran gateway gagal:\n\n%1\n\nSilakan perbaiki data dan coba lagi.").arg(reason);
}

} // namespace

// The real program on a computer where it has never run, with a person in front of it.
class NewGatewayTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void registersByKeyboardAlone();
    void logsInToAnExistingAccount();
    void keepsWhatWasTypedAfterARefusal();
    void comesBackFromAServerThatFails_data();
    void comesBackFromAServerThatFails();
    void tellsWhatTheRegistrySays_data();
    void tellsWhatTheRegistrySays();

private:
    [[nodiscard]] bool startProgram(const QString &registryUrl);
    [[nodiscard]] GatewayEntries entries() const
    {
        return exampleGateway(*m_server, kRoom, QStringLiteral("YH0GW"), QStringLiteral("Pass100%1word"));
    }
    [[nodiscard]] QJsonObject configured() const
    {
        return QJsonDocument::fromJson(m_station->configuration()).object();
    }
    void checkConfigured(const GatewayEntries &entered) const;

    Display m_display;
    std::unique_ptr<CompanionServer> m_server;
    std::unique_ptr<AppDriver> m_driver;
    std::unique_ptr<Station> m_station;
};

void NewGatewayTest::init()
{
    m_server = std::make_unique<CompanionServer>(QStringList{kRoom, QStringLiteral("Lobby")});
    QVERIFY(m_server->addUser(kExisting, kExistingPassword));
    QVERIFY(m_server->setRegistry(registry()));
    QVERIFY(m_server->start());
    m_driver = std::make_unique<AppDriver>();
}

void NewGatewayTest::cleanup()
{
    if (m_station && QTest::currentTestFailed())
        m_station->program().printLog();
    m_station.reset();
    m_driver.reset();
    m_server.reset();
}

bool NewGatewayTest::startProgram(const QString &registryUrl)
{
    Station::Settings settings;
    settings.more = {{QStringLiteral("registry_url"), registryUrl}};
    settings.isSetUp = false;
    m_station = std::make_unique<Station>(settings);
    m_station->setDriver(*m_driver);
    return m_station->start() && m_driver->waitForProgram() && m_driver->waitForWindow(kWizard);
}

void NewGatewayTest::checkConfigured(const GatewayEntries &entered) const
{
    const QJsonObject config = configured();
    const QJsonObject expected{{QStringLiteral("server_address"), entered.server},
                               {QStringLiteral("server_port"), entered.port},
                               {QStringLiteral("default_room"), entered.room},
                               {QStringLiteral("callsign"), entered.callsign},
                               {QStringLiteral("gateway_name"), entered.gatewayName},
                               {QStringLiteral("frequency"), entered.frequency},
                               {QStringLiteral("location"), kAddress},
                               {QStringLiteral("name"), kPicName},
                               {QStringLiteral("responsible_name"), kPicName},
                               {QStringLiteral("responsible_callsign"), entered.picCallsign},
                               {QStringLiteral("email"), entered.email},
                               {QStringLiteral("whatsapp"), entered.whatsapp},
                               {QStringLiteral("password"), entered.password},
                               {QStringLiteral("remember_password"), true},
                               {QStringLiteral("auto_login"), true},
                               {QStringLiteral("setup_completed"), true}};
    for (auto it = expected.begin(); it != expected.end(); ++it)
        QVERIFY2(config.value(it.key()) == it.value(), qPrintable(it.key()));
    QVERIFY(!config.value(QLatin1String("hwid")).toString().isEmpty());
}

void NewGatewayTest::registersByKeyboardAlone()
{
    QVERIFY(startProgram(m_server->webUrl()));
    const qint64 first = m_driver->pid();
    const GatewayEntries typed = entries();
    WizardUser user(*m_driver, WizardUser::Hand::Keyboard);
    QVERIFY(user.fillIn(typed));
    QVERIFY(m_driver->waitForText(
        QStringLiteral("reviewLabel"),
        QStringLiteral("Server  : %1:%2\nRoom    : == LOBBY ==\nCallsign: YH0GW\nGateway : RF-GW SINAR Utama\n"
                       "Freq    : 145.500 MHz\nLokasi  : %3\nPIC     : %4 (YB0ABC)\nEmail   : gw@club.example\n"
                       "WA      : 08123456789")
            .arg(typed.server)
            .arg(typed.port)
            .arg(kAddress, kPicName)));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForBox(QStringLiteral("Registrasi Berhasil"),
                                 QStringLiteral("RF Gateway berhasil didaftarkan!\n\nCallsign : YH0GW\nPassword : ") +
                                     typed.password + QStringLiteral("\n\nAplikasi akan restart otomatis.")));
    QVERIFY(m_driver->key(QStringLiteral("Return")));

    QVERIFY(m_driver->waitForProgram(2));
    QVERIFY(m_driver->pid() != first);
    const QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/evox-sinar");
    QCOMPARE(m_driver->arguments(), (QStringList{path, path}));
    QVERIFY(m_station->program().waitForEnd());
    QCOMPARE(m_station->program().exitCode(), 0);
    QVERIFY(m_station->waitForRoom());
    checkConfigured(typed);
}

void NewGatewayTest::logsInToAnExistingAccount()
{
    QVERIFY(startProgram(m_server->webUrl()));
    QVERIFY(m_driver->click(QStringLiteral("loginButton")));
    QVERIFY(m_driver->waitForWindow(QStringLiteral("Login ke eVOX SINAR")));
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    QVERIFY(user.enter(QStringLiteral("loginServerEdit"), m_server->host()));
    QVERIFY(user.enter(QStringLiteral("loginPortSpin"), QString::number(m_server->port())));
    QVERIFY(user.enter(QStringLiteral("loginCallsignEdit"), kExisting.toLower()));
    QVERIFY(m_driver->waitForText(QStringLiteral("loginCallsignEdit"), kExisting));
    const QByteArray before = m_station->configuration();
    QVERIFY(m_driver->click(QStringLiteral("loginAcceptButton")));
    QVERIFY(m_driver->waitForText(QStringLiteral("loginErrorLabel"), QStringLiteral("Semua field harus diisi!")));
    QCOMPARE(m_station->configuration(), before);

    QVERIFY(user.enter(QStringLiteral("loginPasswordEdit"), kExistingPassword));
    QVERIFY(m_driver->waitForProperty(QStringLiteral("loginPasswordEdit"), QStringLiteral("echoMode"),
                                      QStringLiteral("Password")));
    QVERIFY(m_driver->click(QStringLiteral("loginAcceptButton")));
    QVERIFY(
        m_driver->waitForBox(QStringLiteral("Sukses"), QStringLiteral("Login berhasil!\nSilakan restart aplikasi.")));
    QVERIFY(m_driver->answer(QStringLiteral("OK")));
    QVERIFY(m_station->program().waitForLog(QStringLiteral("[Main] HWID generated after login:")));
    QVERIFY(m_station->waitForRoom());
    QCOMPARE(m_driver->pid(), m_station->program().processId()); // no restart on this road
    QCOMPARE(configured().value(QLatin1String("callsign")).toString(), kExisting);
    QCOMPARE(configured().value(QLatin1String("setup_completed")).toBool(), true);
    QVERIFY(!configured().value(QLatin1String("hwid")).toString().isEmpty());
}

void NewGatewayTest::keepsWhatWasTypedAfterARefusal()
{
    QVERIFY(startProgram(m_server->webUrl()));
    GatewayEntries typed = entries();
    typed.callsign = kExisting;
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    QVERIFY(user.fillIn(typed));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForBox(kFailed, refusal(QStringLiteral("Callsign sudah terdaftar"))));
    QVERIFY(m_driver->answer(QStringLiteral("OK")));
    QVERIFY(m_driver->waitForWindow(kWizard));
    QVERIFY(m_driver->waitForProperty(QStringLiteral("passwordEdit"), QStringLiteral("visible"), true));
    QVERIFY(user.holds(typed));
    QCOMPARE(configured().value(QLatin1String("setup_completed")).toBool(true), false);

    typed.callsign = QStringLiteral("YH0GW");
    QVERIFY(user.turnTo(WizardButton::kBack, QStringLiteral("emailEdit")));
    QVERIFY(user.turnTo(WizardButton::kBack, QStringLiteral("picCallsignEdit")));
    QVERIFY(user.turnTo(WizardButton::kBack, QStringLiteral("callsignEdit")));
    QVERIFY(user.enterGateway(typed));
    QVERIFY(user.turnTo(WizardButton::kNext, QStringLiteral("emailEdit")));
    QVERIFY(user.turnTo(WizardButton::kNext, QStringLiteral("passwordEdit")));
    QVERIFY(user.holds(typed));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForWindow(QStringLiteral("Registrasi Berhasil")));
    QVERIFY(m_driver->answer(QStringLiteral("OK")));
    QVERIFY(m_driver->waitForProgram(2));
    QVERIFY(m_station->waitForRoom());
    checkConfigured(typed);
}

void NewGatewayTest::comesBackFromAServerThatFails_data()
{
    QTest::addColumn<bool>("listens");
    QTest::addColumn<QString>("text");
    QTest::addRow("connection refused") << false
                                        << QStringLiteral("Gagal terhubung ke server:\n\nConnection refused\n\n"
                                                          "Periksa alamat server dan koneksi internet.");
    QTest::addRow("no answer") << true
                               << QStringLiteral("Tidak ada response dari server.\n\nPeriksa koneksi dan coba lagi.");
}

void NewGatewayTest::comesBackFromAServerThatFails()
{
    QFETCH(bool, listens);
    QFETCH(QString, text);
    FakeServer failing; // answers nothing that it was not told to
    const quint16 port = failing.port();
    if (!listens)
        failing.stopListening();
    QVERIFY(startProgram(m_server->webUrl()));
    GatewayEntries typed = entries();
    typed.server = failing.host();
    typed.port = port;
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    QVERIFY(user.fillIn(typed));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForBox(kFailed, text));
    QCOMPARE(failing.count(QStringLiteral("REGISTER_GATEWAY \"RF-GW SINAR Utama\" \"YH0GW\" \"145.500 MHz\" "
                                          "\"2099-12-31\"")),
             listens ? 1 : 0);
    QVERIFY(m_driver->answer(QStringLiteral("OK")));
    QVERIFY(m_driver->waitForProperty(QStringLiteral("passwordEdit"), QStringLiteral("visible"), true));
    QVERIFY(user.holds(typed));

    const QByteArray before = m_station->configuration();
    const QString leave = QStringLiteral("Apakah Anda yakin ingin keluar?\n\nAnda harus login atau mendaftar untuk "
                                         "menggunakan aplikasi ini.");
    QVERIFY(user.press(WizardButton::kCancel));
    QVERIFY(m_driver->waitForBox(QStringLiteral("Konfirmasi"), leave));
    QVERIFY(m_driver->answer(QStringLiteral("No")));
    QVERIFY(m_driver->waitForProperty(QStringLiteral("passwordEdit"), QStringLiteral("visible"), true));
    QVERIFY(user.holds(typed));
    QVERIFY(user.press(WizardButton::kCancel));
    QVERIFY(m_driver->waitForBox(QStringLiteral("Konfirmasi"), leave));
    QVERIFY(m_driver->answer(QStringLiteral("Yes")));
    QVERIFY(m_station->program().waitForEnd());
    QCOMPARE(m_station->program().exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_station->program().exitCode(), 0);
    QCOMPARE(m_station->configuration(), before);
    QVERIFY(!m_station->program().isAnythingRunning());
}

void NewGatewayTest::tellsWhatTheRegistrySays_data()
{
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<bool>("isUp");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("validity");
    QTest::addRow("unknown callsign") << QStringLiteral("YH9ZZ") << true
                                      << QStringLiteral("Callsign tidak ditemukan di DJID") << QStringLiteral("-");
    QTest::addRow("expired") << QStringLiteral("YH3XCC") << true << QStringLiteral("Callsign EXPIRED sejak 31/12/2020")
                             << QStringLiteral("31-12-2020");
    QTest::addRow("registry down") << QStringLiteral("YH0GW") << false << QStringLiteral("Gagal verifikasi DJID")
                                   << QStringLiteral("-");
    QTest::addRow("not a gateway's callsign")
        << QStringLiteral("YB0ABC") << true << QStringLiteral("Format: YH[0-9][A-Z]{2,4}") << QStringLiteral("-");
}

void NewGatewayTest::tellsWhatTheRegistrySays()
{
    QFETCH(QString, callsign);
    QFETCH(bool, isUp);
    QFETCH(QString, status);
    QFETCH(QString, validity);
    QVERIFY(startProgram(isUp ? m_server->webUrl() : deadUrl(m_server->host())));
    const GatewayEntries typed = entries();
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    QVERIFY(user.passWelcome());
    QVERIFY(user.acceptTerms());
    QVERIFY(user.enterServer(typed));
    QVERIFY(user.enter(QStringLiteral("gatewayNameEdit"), typed.gatewayName));
    QVERIFY(user.enter(QStringLiteral("callsignEdit"), callsign));
    QVERIFY(m_driver->waitForText(QStringLiteral("callsignStatusLabel"), status));
    QVERIFY(m_driver->waitForText(QStringLiteral("validityLabel"), validity));
    QCOMPARE(m_driver->tryClick(WizardButton::kNext), QStringLiteral("\"%1\" is disabled").arg(WizardButton::kNext));

    // The way out is another callsign, where the registry answers at all.
    QVERIFY(!isUp || user.enterGateway(typed));
}

EVOX_TEST_MAIN(NewGatewayTest, QCoreApplication)
#include "tst_newgateway.moc"
