#include "RegistrationPeer.h"
#include "app/Config.h"
#include "support/LogCapture.h"
#include "support/ScriptedPrompts.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"
#include "ui/setup/GatewayData.h"
#include "ui/setup/GatewayRegistration.h"

#include <QApplication>
#include <QTcpServer>

namespace {

using Scripts = QList<RegistrationPeer::Script>;

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

GatewayData fullData(quint16 port)
{
    GatewayData data;
    data.serverAddress = q("127.0.0.1");
    data.serverPort = port;
    data.defaultRoom = q("== LOBBY ==");
    data.callsign = q("YH0AB");
    data.gatewayName = q("Gerbang 1");
    data.frequency = q("145.5 MHz");
    data.location = q("Bandung");
    data.permitExpiry = q("2031-05-31");
    data.picCallsign = q("YB0AA");
    data.picName = q("ANI SITI");
    data.email = q("a@b.id");
    data.whatsapp = q("0812");
    data.password = q("rahasia");
    return data;
}

const char *const kFullLine = "REGISTER_GATEWAY \"Gerbang 1\" \"YH0AB\" \"145.5 MHz\" \"2031-05-31\" \"Bandung\" "
                              "\"ANI SITI\" \"YB0AA\" \"rahasia\" \"a@b.id\" \"0812\"";

} // namespace

class GatewayRegistrationTest final : public QObject
{
    Q_OBJECT

private slots:
    void fillsInWhatMayBeEmpty();
    void sendsOneLine();
    void succeeds_data();
    void succeeds();
    void succeedsWithAFreshIdentifier();
    void tellsWhenItCannotStartAnew();
    void failsAsTheServerSays_data();
    void failsAsTheServerSays();
    void failsWithoutAnAnswer_data();
    void failsWithoutAnAnswer();
    void failsWithoutAServer();

private:
    bool registerAt(quint16 port, bool startsAnew = true);

    ScriptedPrompts *m_prompts = nullptr;
    QList<QStringList> m_started;
};

bool GatewayRegistrationTest::registerAt(quint16 port, bool startsAnew)
{
    m_started.clear();
    return registerGateway(fullData(port), q("mail.example"), *m_prompts,
                           [this, startsAnew](const QString &program, const QStringList &arguments) {
                               m_started.append(QStringList{program} + arguments);
                               return startsAnew;
                           });
}

void GatewayRegistrationTest::fillsInWhatMayBeEmpty()
{
    GatewayData data = fullData(1);
    data.frequency.clear();
    data.location.clear();
    data.permitExpiry.clear();
    data.email.clear();
    data.whatsapp.clear();
    QCOMPARE(Commands::registerGateway(GatewayRegistration::recordOf(data, q("mail.example"))),
             q("REGISTER_GATEWAY \"Gerbang 1\" \"YH0AB\" \"-\" \"2027-12-31\" \"-\" \"ANI SITI\" \"YB0AA\" "
               "\"rahasia\" \"yh0ab@mail.example\" \"-\""));
}

void GatewayRegistrationTest::sendsOneLine()
{
    const TestConfig config;
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    const RegistrationPeer peer(Scripts{{"HALO\r\n", {"REGISTER_OK|Baik\r\n"}}});
    const LogCapture log;
    QVERIFY(registerAt(peer.port()));
    QCOMPARE(peer.received(), QList<QByteArray>{QByteArray(kFullLine) + "\r\n"});
    QVERIFY(log.contains(q("[Register] Sending: ") + q(kFullLine)));
    QCOMPARE(log.count(q("[Register] Response: REGISTER_OK|Baik")), 1);
}

void GatewayRegistrationTest::succeeds_data()
{
    QTest::addColumn<QByteArray>("greeting");
    QTest::addColumn<QList<QByteArray>>("answers");
    using Answers = QList<QByteArray>;
    const QByteArray hello("HALO\r\n");
    QTest::newRow("with a text") << hello << Answers{"REGISTER_OK|Registrasi berhasil\r\n"};
    QTest::newRow("alone") << hello << Answers{"REGISTER_OK\r\n"};
    QTest::newRow("without a line end") << hello << Answers{"REGISTER_OK"};
    QTest::newRow("in pieces") << hello << Answers{"REGI", "STER_", "OK|Ba", "ik\r\n"};
    QTest::newRow("after other lines") << hello << Answers{"SERVER_INFO|{}\r\n", "REGISTER_OK|Baik\r\n"};
    QTest::newRow("after lines that look like it")
        << hello << Answers{"CHAT|ERROR REGISTER_FAILED\r\n", "REGISTER_OK|Baik\r\n"};
    QTest::newRow("within a line") << hello << Answers{"ERROR_CODE 0 REGISTER_OK\r\n"};
    QTest::newRow("no greeting") << QByteArray() << Answers{"REGISTER_OK\r\n"};
    QTest::newRow("a greeting that looks like a refusal")
        << QByteArray("REGISTER_FAILED|x\r\n") << Answers{"REGISTER_OK\r\n"};
}

void GatewayRegistrationTest::succeeds()
{
    QFETCH(QByteArray, greeting);
    QFETCH(QList<QByteArray>, answers);
    const TestConfig config;
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    const RegistrationPeer peer(Scripts{{greeting, answers}});
    QVERIFY(registerAt(peer.port()));
    QCOMPARE(prompts.seen().size(), 1);
    QCOMPARE(prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(prompts.seen().first().title, q("Registrasi Berhasil"));
    QCOMPARE(prompts.seen().first().text, q("RF Gateway berhasil didaftarkan!\n\nCallsign : YH0AB\nPassword : "
                                            "rahasia\n\nAplikasi akan restart otomatis."));
    // The whole argument list, the program's own path first.
    QCOMPARE(m_started,
             QList<QStringList>{QStringList{QCoreApplication::applicationFilePath()} + QCoreApplication::arguments()});
}

void GatewayRegistrationTest::succeedsWithAFreshIdentifier()
{
    const TestConfig config({{q("hwid"), q("old")}, {q("auto_login"), false}, {q("other"), q("kept")}});
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    const RegistrationPeer peer(Scripts{{"HALO\r\n", {"REGISTER_OK\r\n"}}});
    // Saved before the operator, who may be away, is told.
    prompts.accept([&config] { QVERIFY(config.saved().value(q("setup_completed")).toBool()); });
    QVERIFY(registerAt(peer.port()));
    const QJsonObject saved = config.saved();
    QCOMPARE(saved.value(q("setup_completed")), QJsonValue(true));
    QCOMPARE(saved.value(q("remember_password")), QJsonValue(true));
    QCOMPARE(saved.value(q("auto_login")), QJsonValue(true));
    QCOMPARE(saved.value(q("hwid")).toString().size(), 32);
    QCOMPARE(saved.value(q("other")), QJsonValue(q("kept")));
}

void GatewayRegistrationTest::tellsWhenItCannotStartAnew()
{
    const TestConfig config;
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    prompts.accept();
    const RegistrationPeer peer(Scripts{{"HALO\r\n", {"REGISTER_OK\r\n"}}});
    QVERIFY(registerAt(peer.port(), false));
    QCOMPARE(prompts.seen().last().kind, Prompt::Kind::Warning);
    QCOMPARE(prompts.seen().last().text, q("Aplikasi tidak dapat dimulai ulang. Silakan jalankan kembali."));
}

void GatewayRegistrationTest::failsAsTheServerSays_data()
{
    QTest::addColumn<QList<QByteArray>>("answers");
    QTest::addColumn<QString>("reason");
    using Answers = QList<QByteArray>;
    QTest::newRow("with a reason") << Answers{"REGISTER_FAILED|Callsign sudah terdaftar\r\n"}
                                   << q("Callsign sudah terdaftar");
    QTest::newRow("without a reason") << Answers{"REGISTER_FAILED\r\n"} << q("REGISTER_FAILED");
    QTest::newRow("empty reason") << Answers{"REGISTER_FAILED|\r\n"} << QString();
    QTest::newRow("a bar in the reason") << Answers{"REGISTER_FAILED|a|b\r\n"} << q("a|b");
    QTest::newRow("in pieces") << Answers{"REGISTER_FAILED|Call", "sign salah\r\n"} << q("Callsign salah");
    QTest::newRow("after other lines") << Answers{"SERVER_INFO|{}\r\n", "REGISTER_FAILED|Callsign salah\r\n"}
                                       << q("Callsign salah");
    QTest::newRow("error") << Answers{"ERROR|Perintah tidak dikenal\r\n"} << q("Perintah tidak dikenal");
    QTest::newRow("something else") << Answers{"  apa?  "} << q("apa?");
    QTest::newRow("without end") << Answers{QByteArray(100000, 'x')} << QString(4096, QLatin1Char('x'));
    QTest::newRow("not text") << Answers{QByteArray::fromHex("ff4100fe")}
                              << QString::fromUtf8("\xff"
                                                   "A");
}

void GatewayRegistrationTest::failsAsTheServerSays()
{
    QFETCH(QList<QByteArray>, answers);
    QFETCH(QString, reason);
    const TestConfig config({{q("setup_completed"), false}});
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    const RegistrationPeer peer(Scripts{{"HALO\r\n", answers}});
    QVERIFY(!registerAt(peer.port()));
    QCOMPARE(prompts.seen().size(), 1);
    QCOMPARE(prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(prompts.seen().first().title, q("Registrasi Gagal"));
    QCOMPARE(prompts.seen().first().text,
             q("Pendaftaran gateway gagal:\n\n") + reason + q("\n\nSilakan perbaiki data dan coba lagi."));
    QCOMPARE(config.saved(), (QJsonObject{{q("setup_completed"), false}}));
    QVERIFY(m_started.isEmpty());
}

void GatewayRegistrationTest::failsWithoutAnAnswer_data()
{
    QTest::addColumn<bool>("closes");
    QTest::newRow("the server hangs up") << true;
    QTest::newRow("the server is silent") << false;
}

void GatewayRegistrationTest::failsWithoutAnAnswer()
{
    QFETCH(bool, closes);
    const TestConfig config;
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    const RegistrationPeer peer(Scripts{{"HALO\r\n", {}, closes}});
    const LogCapture log;
    QVERIFY(!registerAt(peer.port()));
    QCOMPARE(prompts.seen().size(), 1);
    QCOMPARE(prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(prompts.seen().first().title, q("Registrasi Gagal"));
    QCOMPARE(prompts.seen().first().text, q("Tidak ada response dari server.\n\nPeriksa koneksi dan coba lagi."));
    QCOMPARE(log.count(q("[Register] Response:")), 1);
    QVERIFY(m_started.isEmpty());
}

void GatewayRegistrationTest::failsWithoutAServer()
{
    QTcpServer nobody;
    QVERIFY(nobody.listen(QHostAddress::LocalHost));
    const quint16 port = nobody.serverPort();
    nobody.close();
    const TestConfig config;
    ScriptedPrompts prompts;
    m_prompts = &prompts;
    prompts.accept();
    const LogCapture log;
    QVERIFY(!registerAt(port));
    QCOMPARE(prompts.seen().size(), 1);
    QCOMPARE(prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(prompts.seen().first().title, q("Registrasi Gagal"));
    QCOMPARE(prompts.seen().first().text,
             q("Gagal terhubung ke server:\n\nConnection refused\n\nPeriksa alamat server dan koneksi internet."));
    QCOMPARE(log.count(q("[Register]")), 0);
}

EVOX_TEST_MAIN(GatewayRegistrationTest, QApplication)
#include "tst_gatewayregistration.moc"
