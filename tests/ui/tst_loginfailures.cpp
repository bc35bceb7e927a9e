#include "WindowRig.h"
#include "app/Config.h"
#include "net/TcpClient.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QApplication>

namespace {

QString retryText(int attempt)
{
    return QStringLiteral("Password untuk YB0ABC salah.\n\nSilakan masukkan password yang benar.\n"
                          "(Percobaan %1 dari 3)")
        .arg(attempt);
}

QString deviceText()
{
    return QStringLiteral("Perangkat ini tidak terdaftar untuk akun Anda.\n\n"
                          "Kemungkinan Anda baru pindah ke PC/laptop baru.\n\n"
                          "Kirim permintaan Reset HWID ke administrator sekarang?");
}

} // namespace

class LoginFailuresTest final : public QObject
{
    Q_OBJECT

private slots:
    void boxes_data();
    void boxes();
    void deviceResetIsRequested();
    void deviceResetNeedsALiveConnection();
    void retriesWithANewPassword_data();
    void retriesWithANewPassword();
    void emptyPasswordIsNoAttempt();
    void fourthWrongPasswordQuits();
    void cancelledRetryQuits();
    void declinedCancelAsksNothingMore();
    void successResetsTheCount();
};

void LoginFailuresTest::boxes_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<Prompt::Kind>("kind");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    using Kind = Prompt::Kind;
    QTest::newRow("banned") << QStringLiteral("Akun DIBANNED") << Kind::Critical << QStringLiteral("Akun Dibanned")
                            << QStringLiteral("Akun Anda telah dibanned oleh administrator.\n\n"
                                              "Hubungi administrator untuk informasi lebih lanjut.");
    QTest::newRow("suspended") << QStringLiteral("Akun disuspend") << Kind::Warning << QStringLiteral("Akun Disuspend")
                               << QStringLiteral("Akun Anda sedang disuspend.\n\n"
                                                 "Hubungi administrator untuk mengaktifkan kembali.");
    QTest::newRow("unknown device") << QStringLiteral("Perangkat ini tidak terdaftar") << Kind::WarningQuestion
                                    << QStringLiteral("Perangkat Tidak Dikenal") << deviceText();
    QTest::newRow("unknown callsign") << QStringLiteral("Callsign tidak terdaftar") << Kind::Warning
                                      << QStringLiteral("Callsign Tidak Ditemukan")
                                      << QStringLiteral("Callsign tidak terdaftar di server.\n\n"
                                                        "Pastikan callsign sudah benar atau daftarkan\n"
                                                        "gateway Anda terlebih dahulu.");
    QTest::newRow("active elsewhere") << QStringLiteral("Akun dipakai di perangkat lain") << Kind::Warning
                                      << QStringLiteral("Sesi Aktif di Perangkat Lain")
                                      << QStringLiteral("Akun Anda sedang digunakan di perangkat lain.\n\n"
                                                        "Logout dari perangkat tersebut dan coba lagi.");
    QTest::newRow("anything else") << QStringLiteral("Server penuh") << Kind::Warning << QStringLiteral("Login Gagal")
                                   << QStringLiteral("Gagal login ke server.\n\nServer penuh");
    QTest::newRow("banned and a wrong password") << QStringLiteral("dibanned, Password salah") << Kind::Password
                                                 << QStringLiteral("Password Salah") << retryText(1);
    QTest::newRow("wrong password in capitals")
        << QStringLiteral("PASSWORD SALAH") << Kind::Password << QStringLiteral("Password Salah") << retryText(1);
}

void LoginFailuresTest::boxes()
{
    QFETCH(QString, message);
    LogCapture log;
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN YB0ABC secret-word"), {QStringLiteral("LOGIN_FAILED|") + message});
    const bool retried = QByteArray(QTest::currentDataTag()).contains("wrong password");
    if (retried)
        rig.prompts.enter(QStringLiteral("other"));
    else
        rig.prompts.cancel();
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    QTEST(rig.prompts.seen().first().kind, "kind");
    QTEST(rig.prompts.seen().first().title, "title");
    QTEST(rig.prompts.seen().first().text, "text");
    QCOMPARE(rig.prompts.seen().first().yesIsDefault, rig.prompts.seen().first().kind == Prompt::Kind::WarningQuestion);
    QVERIFY(rig.showed(QStringLiteral("Login failed: ") + message));
    QVERIFY(log.contains(QStringLiteral("[MainWindow] Login failed: ") + message));
    rig.service<TcpClient>()->sendCommand(QStringLiteral("MARK"));
    QVERIFY2(rig.server.waitForLine(QStringLiteral("MARK")), "the connection stays open");
    QCOMPARE(rig.server.count(QStringLiteral("USER_REQUEST_HWID_RESET")), 0);
}

void LoginFailuresTest::deviceResetIsRequested()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Perangkat tidak terdaftar")});
    rig.prompts.accept();
    rig.prompts.accept();
    rig.open();
    QVERIFY(rig.server.waitForLine(QStringLiteral("USER_REQUEST_HWID_RESET \"YB0ABC\"")));
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Information);
    QCOMPARE(rig.prompts.seen().last().title, QStringLiteral("Permintaan Terkirim"));
    QCOMPARE(rig.prompts.seen().last().text, QStringLiteral("Permintaan reset HWID telah dikirim.\n"
                                                            "Hubungi administrator untuk mempercepat proses."));
}

void LoginFailuresTest::deviceResetNeedsALiveConnection()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Perangkat tidak terdaftar")});
    rig.prompts.accept([&rig] {
        rig.timer("reconnectArmTimer")->setInterval(60000);
        rig.server.drop();
        QTRY_VERIFY(!rig.service<TcpClient>()->isConnected());
    });
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().size(), 1);
}

void LoginFailuresTest::retriesWithANewPassword_data()
{
    QTest::addColumn<bool>("remember");
    QTest::newRow("to be remembered") << true;
    QTest::newRow("not to be remembered: stored all the same") << false;
}

void LoginFailuresTest::retriesWithANewPassword()
{
    QFETCH(bool, remember);
    WindowRig rig(
        {{QStringLiteral("remember_password"), remember}, {QStringLiteral("callsign"), QStringLiteral("yb0abc")}});
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.server.answer(QStringLiteral("LOGIN YB0ABC correct"), {WindowRig::loginOk()});
    if (!remember)
        rig.prompts.enter(WindowRig::kPassword);
    rig.prompts.enter(QStringLiteral("correct"), [&rig] { rig.server.answer(QStringLiteral("LOGIN"), {}); });
    rig.open();
    QVERIFY2(rig.server.waitForLine(QStringLiteral("LOGIN YB0ABC correct 0123456789abcdef")),
             "the retry sends the callsign in capitals");
    QTRY_VERIFY(rig.showed(QStringLiteral("Login successful")));
    QVERIFY(rig.showed(QStringLiteral("Mencoba login ulang...")));
    QCOMPARE(rig.config.saved().value(QStringLiteral("password")).toString(), QStringLiteral("correct"));
}

void LoginFailuresTest::emptyPasswordIsNoAttempt()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN YB0ABC secret-word"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.prompts.enter(QString());
    rig.prompts.accept();
    rig.prompts.enter(QStringLiteral("other"));
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().at(0).text, retryText(1));
    QCOMPARE(rig.prompts.seen().at(1).kind, Prompt::Kind::Warning);
    QCOMPARE(rig.prompts.seen().at(1).title, QStringLiteral("Error"));
    QCOMPARE(rig.prompts.seen().at(1).text, QStringLiteral("Password tidak boleh kosong."));
    QCOMPARE(rig.prompts.seen().at(2).text, retryText(1));
}

void LoginFailuresTest::fourthWrongPasswordQuits()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    for (int attempt = 1; attempt <= 3; ++attempt)
        rig.prompts.enter(QStringLiteral("wrong%1").arg(attempt));
    rig.prompts.accept();
    rig.open();
    QTimer::singleShot(20000, qApp, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    for (int attempt = 1; attempt <= 3; ++attempt)
        QCOMPARE(rig.prompts.seen().at(attempt - 1).text, retryText(attempt));
    QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Critical);
    QCOMPARE(rig.prompts.seen().last().title, QStringLiteral("Login Gagal"));
    QCOMPARE(rig.prompts.seen().last().text,
             QStringLiteral("Anda telah salah memasukkan password sebanyak 3 kali.\n\nAplikasi akan ditutup."));
    QCOMPARE(rig.server.count(QStringLiteral("LOGIN")), 4);
}

void LoginFailuresTest::cancelledRetryQuits()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.prompts.cancel();
    rig.prompts.accept();
    rig.open();
    QTimer::singleShot(20000, qApp, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(rig.prompts.seen().last().kind, Prompt::Kind::Question);
    QCOMPARE(rig.prompts.seen().last().title, QStringLiteral("Konfirmasi"));
    QCOMPARE(rig.prompts.seen().last().text,
             QStringLiteral("Apakah Anda yakin ingin membatalkan login?\n\nAplikasi akan ditutup."));
    QVERIFY(!rig.prompts.seen().last().yesIsDefault);
}

void LoginFailuresTest::declinedCancelAsksNothingMore()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.prompts.cancel();
    rig.prompts.cancel();
    rig.open();
    QTRY_VERIFY(rig.prompts.isDone());
    rig.server.send(QStringLiteral("LOGIN_FAILED|Password salah lagi"));
    QTRY_VERIFY(rig.showed(QStringLiteral("Login failed: Password salah lagi")));
    QCOMPARE(rig.prompts.seen().size(), 2);
    QVERIFY(rig.service<TcpClient>()->isConnected());
}

void LoginFailuresTest::successResetsTheCount()
{
    WindowRig rig;
    rig.server.answer(QStringLiteral("LOGIN YB0ABC secret-word"), {QStringLiteral("LOGIN_FAILED|Password salah")});
    rig.server.answer(QStringLiteral("LOGIN YB0ABC correct"), {WindowRig::loginOk()});
    rig.prompts.enter(QStringLiteral("correct"));
    rig.open();
    QTRY_VERIFY(rig.showed(QStringLiteral("Login successful")));
    rig.prompts.enter(QStringLiteral("other"));
    rig.server.send(QStringLiteral("LOGIN_FAILED|Password salah"));
    QTRY_VERIFY(rig.prompts.isDone());
    QCOMPARE(rig.prompts.seen().last().text, retryText(1));
}

Q_DECLARE_METATYPE(Prompt::Kind)

EVOX_TEST_MAIN(LoginFailuresTest, QApplication)
#include "tst_loginfailures.moc"
