#include "e2e/AdminUser.h"
#include "e2e/Over.h"
#include "e2e/WizardUser.h"
#include "support/CompanionServer.h"
#include "support/Signals.h"
#include "support/Station.h"
#include "support/TestMain.h"
#include "support/Wait.h"

#include <QJsonDocument>

#include <functional>
#include <memory>

namespace {

const QString kRoom = QStringLiteral("== LOBBY ==");
const QString kAdmin = QStringLiteral("YB0ADM");
const QString kAdminPassword = QStringLiteral("administrator");
const QString kGateway = QStringLiteral("YH0GW");
const QString kGatewayPassword = QStringLiteral("gateway-of-the-club");
const QString kJoined = QStringLiteral("[TCP] JOIN_OK room:");
const QString kTurnedOut = QStringLiteral("Dikeluarkan dari Server");
const QString kTurnedOutBecause = QStringLiteral("Anda telah dikeluarkan oleh administrator.\n\nAlasan: ");
const QString kOk = QStringLiteral("OK");
constexpr double kAudible = 200; // root mean square
constexpr double kTone = 700;    // Hz
constexpr int kRate = 48000;
constexpr int kToneSeconds = 120;
constexpr int kRefusedFrames = 20;
constexpr std::chrono::milliseconds kListening{1000};
constexpr std::chrono::milliseconds kPatience{15000};
constexpr std::chrono::milliseconds kReconnected{30000}; // the next attempt comes 3 to 10 s after the loss

QJsonArray registry()
{
    const auto record = [](const QString &callsign, const QString &name) {
        return QJsonObject{{QStringLiteral("callsign"), callsign},
                           {QStringLiteral("name"), name},
                           {QStringLiteral("address"), QStringLiteral("Jl. Contoh No. 1, Jakarta")},
                           {QStringLiteral("validity"), QStringLiteral("DESEMBER 2099")},
                           {QStringLiteral("status"), QStringLiteral("AKTIF")}};
    };
    return {record(kGateway, QStringLiteral("RF-GW CONTOH")),
            record(QStringLiteral("YB0ABC"), QStringLiteral("SARI CONTOH"))};
}

} // namespace

// A gateway and an administrator, each with the real program, and a real server: the whole life of an account. Each
// test goes on where the one before it stopped.
class AccountLifeTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void registers();
    void mayNotTransmitWhilePending();
    void transmitsOnceApproved();
    void talksOnThroughEveryPreset_data();
    void talksOnThroughEveryPreset();
    void isMutedInMidOver();
    void comesBackAfterAKick();
    void isRefusedWhileBanned();
    void comesBackWhenActiveAgain();
    void asksForAnotherDevice();
    void isRefusedOnceDeleted();

private:
    [[nodiscard]] bool startAdmin();
    [[nodiscard]] bool startGateway(const Station::Settings &settings);
    /// Waits until the program that runs now has joined a room again.
    [[nodiscard]] bool joinsAfter(const std::function<bool()> &step);
    /// Connects by hand once the step has ended the connection: the program's own next attempt would come later.
    [[nodiscard]] bool connectAfter(const std::function<bool()> &step);
    [[nodiscard]] std::function<bool()> disconnect() const
    {
        return [this] { return m_driver->key(QStringLiteral("Ctrl+Shift+D")); };
    }
    /// Steady speech into the gateway's receiver for as long as the result lives.
    [[nodiscard]] std::unique_ptr<ChildProcess> beginOver();
    [[nodiscard]] bool endOver();

    bool m_goesOn = true;
    std::unique_ptr<CompanionServer> m_server;
    std::unique_ptr<AppDriver> m_adminDriver;
    std::unique_ptr<AppDriver> m_driver;
    std::unique_ptr<Station> m_admin;
    std::unique_ptr<Station> m_gateway;
    std::unique_ptr<AdminUser> m_administrator;
};

void AccountLifeTest::initTestCase()
{
    m_server = std::make_unique<CompanionServer>(QStringList{kRoom});
    QVERIFY(m_server->addUser(kAdmin, kAdminPassword, true));
    QVERIFY(m_server->setRegistry(registry()));
    QVERIFY(m_server->start());
    QVERIFY(startAdmin());
}

void AccountLifeTest::cleanupTestCase()
{
    m_gateway.reset();
    m_admin.reset();
    m_driver.reset();
    m_adminDriver.reset();
    m_server.reset();
}

void AccountLifeTest::init()
{
    QVERIFY2(m_goesOn, "the account's life ended with the test before");
}

void AccountLifeTest::cleanup()
{
    if (!QTest::currentTestFailed())
        return;
    m_goesOn = false;
    m_admin->program().printLog();
    if (m_gateway)
        m_gateway->program().printLog();
}

bool AccountLifeTest::startAdmin()
{
    m_adminDriver = std::make_unique<AppDriver>();
    m_admin = std::make_unique<Station>(
        Station::Settings{kAdmin, kAdminPassword, m_server->host(), m_server->port(), kRoom, {}});
    m_admin->setDriver(*m_adminDriver);
    m_administrator = std::make_unique<AdminUser>(*m_adminDriver);
    return m_admin->start() && m_adminDriver->waitForProgram() && m_admin->waitForRoom();
}

bool AccountLifeTest::startGateway(const Station::Settings &settings)
{
    m_gateway.reset();
    m_driver = std::make_unique<AppDriver>();
    m_gateway = std::make_unique<Station>(settings);
    m_gateway->setDriver(*m_driver);
    return m_gateway->start() && m_driver->waitForProgram();
}

bool AccountLifeTest::joinsAfter(const std::function<bool()> &step)
{
    const int joined = m_gateway->program().count(kJoined);
    return step() && m_gateway->program().waitForLog(kJoined, joined + 1, kReconnected);
}

bool AccountLifeTest::connectAfter(const std::function<bool()> &step)
{
    const auto enter = [this](const QString &text) {
        return m_driver->waitForWindow(QStringLiteral("Connect to Server")) &&
               m_driver->key(QStringLiteral("Ctrl+A")) && m_driver->type(text) &&
               m_driver->key(QStringLiteral("Return"));
    };
    const QString ended = QStringLiteral("[TCP] Disconnected!");
    const int before = m_gateway->program().count(ended);
    return step() && m_gateway->program().waitForLog(ended, before + 1) &&
           m_driver->key(QStringLiteral("Ctrl+Shift+C")) && enter(m_server->host()) &&
           enter(QString::number(m_server->port()));
}

std::unique_ptr<ChildProcess> AccountLifeTest::beginOver()
{
    std::unique_ptr<ChildProcess> player =
        m_gateway->sound().playIntoReceiver({Signals::sine(kTone, kRate, kRate * kToneSeconds), kRate});
    const bool begun = player && m_gateway->setCarrier(true) && m_admin->radio().waitForRts(true);
    return begun ? std::move(player) : nullptr;
}

bool AccountLifeTest::endOver()
{
    return m_gateway->setCarrier(false) && m_admin->radio().waitForRts(false);
}

void AccountLifeTest::registers()
{
    Station::Settings settings;
    settings.more = {{QStringLiteral("registry_url"), m_server->webUrl()}};
    settings.isSetUp = false;
    QVERIFY(startGateway(settings));
    WizardUser user(*m_driver, WizardUser::Hand::Mouse);
    QVERIFY(user.fillIn(exampleGateway(*m_server, kRoom, kGateway, kGatewayPassword)));
    QVERIFY(user.submit());
    QVERIFY(m_driver->waitForWindow(QStringLiteral("Registrasi Berhasil")));
    QVERIFY(m_driver->answer(kOk));
    QVERIFY(m_driver->waitForProgram(2));
    QVERIFY(m_gateway->waitForRoom());
}

void AccountLifeTest::mayNotTransmitWhilePending()
{
    const LossyProxy &line = m_server->line();
    const int sent = line.sent();
    const int delivered = line.delivered();
    QVERIFY(m_gateway->setCarrier(true));
    QVERIFY(waitFor([&] { return line.sent() >= sent + kRefusedFrames; }, kPatience));
    QVERIFY(!m_admin->radio().rts());
    QCOMPARE(line.delivered(), delivered);
    QVERIFY(m_gateway->setCarrier(false));
}

void AccountLifeTest::transmitsOnceApproved()
{
    QVERIFY(m_administrator->openPanel());
    QVERIFY(m_administrator->approvePending());
    const Sound words = speech(QStringLiteral("Thank you for the approval. Good evening."));
    QVERIFY(!words.isNull());
    const Over over = relayOver(*m_gateway, *m_admin, m_server->line(), words);
    QVERIFY(over.keyed && over.released);
    QVERIFY2(over.wasHeard(), qPrintable(QStringLiteral("similarity %1").arg(over.similarity)));
}

void AccountLifeTest::talksOnThroughEveryPreset_data()
{
    QTest::addColumn<QString>("preset");
    for (const char *preset : {"high", "low", "minimal", "standard"})
        QTest::addRow("%s", preset) << QString::fromLatin1(preset);
}

void AccountLifeTest::talksOnThroughEveryPreset()
{
    QFETCH(QString, preset);
    const QString applied = QStringLiteral("[Audio] Quality applied, frameSize:");
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(loudness(*m_admin, kListening) > kAudible);
    const int keyings = m_admin->radio().edges().size();
    const int appliedHere = m_admin->program().count(applied);
    const int appliedThere = m_gateway->program().count(applied);
    QVERIFY(m_administrator->setAudioQuality(preset));
    QVERIFY(m_admin->program().waitForLog(applied, appliedHere + 1));
    QVERIFY(m_gateway->program().waitForLog(applied, appliedThere + 1));
    const double after = loudness(*m_admin, kListening);
    QVERIFY2(after > kAudible, qPrintable(QString::number(after)));
    QCOMPARE(m_admin->radio().edges().size(), keyings); // keyed all the while
    QVERIFY(endOver());
}

void AccountLifeTest::isMutedInMidOver()
{
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(m_administrator->actOnLastStation(QStringLiteral("Mute User")));
    QVERIFY(m_gateway->program().waitForLog(QStringLiteral("[AdminMute] Muted by admin - TX/COS blocked")));
    QVERIFY(m_admin->radio().waitForRts(false));
    QVERIFY(m_administrator->actOnLastStation(QStringLiteral("Unmute User")));
    QVERIFY(m_gateway->program().waitForLog(QStringLiteral("[AdminMute] Unmuted by admin")));
    QVERIFY(m_gateway->setCarrier(false));
}

void AccountLifeTest::comesBackAfterAKick()
{
    QVERIFY(m_administrator->actOnLastStation(QStringLiteral("Kick User")));
    QVERIFY(m_driver->waitForBox(kTurnedOut, kTurnedOutBecause + QStringLiteral("Dikeluarkan oleh ") + kAdmin));
    QVERIFY(joinsAfter([this] { return m_driver->answer(kOk); }));
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(endOver());
}

void AccountLifeTest::isRefusedWhileBanned()
{
    const QString title = QStringLiteral("Akun Dibanned");
    const QString banned = QStringLiteral("Akun Anda telah dibanned oleh administrator.\n\n");
    const QString hint = QStringLiteral("Hubungi administrator untuk informasi lebih lanjut.");
    QVERIFY(m_administrator->actOnLastStation(QStringLiteral("Ban User")));
    QVERIFY(m_driver->waitForBox(title, banned + QStringLiteral("Alasan: Dibanned oleh %1\n\n").arg(kAdmin) + hint));
    QVERIFY(connectAfter([this] { return m_driver->answer(kOk); }));
    QVERIFY(m_driver->waitForBox(title, banned + hint));
    QVERIFY(m_driver->answer(kOk));
}

void AccountLifeTest::comesBackWhenActiveAgain()
{
    QVERIFY(m_administrator->setStatus(kGateway, QStringLiteral("active")));
    QVERIFY(joinsAfter([this] { return connectAfter(disconnect()); }));
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(endOver());
}

void AccountLifeTest::asksForAnotherDevice()
{
    const QJsonObject otherComputer{{QStringLiteral("hwid"), QStringLiteral("0123456789abcdef0123456789abcdef")}};
    QVERIFY(startGateway({kGateway, kGatewayPassword, m_server->host(), m_server->port(), kRoom, otherComputer}));
    QVERIFY(m_driver->waitForBox(QStringLiteral("Perangkat Tidak Dikenal"),
                                 QStringLiteral("Perangkat ini tidak terdaftar untuk akun Anda.\n\n"
                                                "Kemungkinan Anda baru pindah ke PC/laptop baru.\n\n"
                                                "Kirim permintaan Reset HWID ke administrator sekarang?")));
    QVERIFY(m_driver->answer(QStringLiteral("Yes")));
    QVERIFY(m_driver->waitForBox(QStringLiteral("Permintaan Terkirim"),
                                 QStringLiteral("Permintaan reset HWID telah dikirim.\n"
                                                "Hubungi administrator untuk mempercepat proses.")));
    QVERIFY(m_driver->answer(kOk));
    QVERIFY(m_administrator->approveDevice(kGateway));
    QVERIFY(joinsAfter([this] { return connectAfter(disconnect()); }));
    const std::unique_ptr<ChildProcess> over = beginOver();
    QVERIFY(over);
    QVERIFY(endOver());
}

void AccountLifeTest::isRefusedOnceDeleted()
{
    QVERIFY(m_administrator->deleteAccount(kGateway));
    QVERIFY(m_driver->waitForBox(kTurnedOut, kTurnedOutBecause + QStringLiteral("Akun dihapus oleh ") + kAdmin));
    QVERIFY(connectAfter([this] { return m_driver->answer(kOk); }));
    QVERIFY(m_driver->waitForBox(QStringLiteral("Callsign Tidak Ditemukan"),
                                 QStringLiteral("Callsign tidak terdaftar di server.\n\n"
                                                "Pastikan callsign sudah benar atau daftarkan\n"
                                                "gateway Anda terlebih dahulu.")));
    QVERIFY(m_driver->answer(kOk));
}

EVOX_TEST_MAIN(AccountLifeTest, QCoreApplication)
#include "tst_accountlife.moc"
