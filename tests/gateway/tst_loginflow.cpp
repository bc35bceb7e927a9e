#include "gateway/LoginFlow.h"
#include "support/TestMain.h"

Q_DECLARE_METATYPE(LoginFlow::Step)
Q_DECLARE_METATYPE(LoginFlow::Failure)

class LoginFlowTest final : public QObject
{
    Q_OBJECT

private slots:
    void firstStep_data();
    void firstStep();
    void classifyFailure_data();
    void classifyFailure();
    void attempts();
    void replacementRoom_data();
    void replacementRoom();
};

void LoginFlowTest::firstStep_data()
{
    using LoginFlow::Step;
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("remember");
    QTest::addColumn<Step>("step");
    const QString call = QStringLiteral("YB0ABC");
    const QString pass = QStringLiteral("secret");
    QTest::newRow("all stored") << call << pass << true << Step::LogIn;
    QTest::newRow("all stored, not to be remembered") << call << pass << false << Step::ConfirmPassword;
    QTest::newRow("password missing") << call << QString() << true << Step::AskMissingPassword;
    QTest::newRow("password missing, not to be remembered") << call << QString() << false << Step::AskMissingPassword;
    QTest::newRow("nothing") << QString() << QString() << true << Step::AskCallsign;
    QTest::newRow("password without a callsign") << QString() << pass << true << Step::AskCallsign;
}

void LoginFlowTest::firstStep()
{
    QFETCH(QString, callsign);
    QFETCH(QString, password);
    QFETCH(bool, remember);
    QTEST(LoginFlow::firstStep({callsign, password, remember}), "step");
}

void LoginFlowTest::classifyFailure_data()
{
    using LoginFlow::Failure;
    QTest::addColumn<QString>("message");
    QTest::addColumn<Failure>("failure");
    const auto row = [](const char *message, Failure failure) {
        QTest::newRow(message) << QString::fromLatin1(message) << failure;
    };
    row("Password salah", Failure::WrongPassword);
    row("PASSWORD SALAH!", Failure::WrongPassword);
    row("Akun dibanned; Password salah", Failure::WrongPassword);
    row("Akun Anda DIBANNED", Failure::Banned);
    row("akun disuspend sampai besok", Failure::Suspended);
    row("dibanned dan disuspend", Failure::Banned);
    row("Perangkat tidak terdaftar", Failure::UnknownDevice);
    row("perangkat ini TIDAK TERDAFTAR untuk akun", Failure::UnknownDevice);
    row("Perangkat lain: tidak terdaftar", Failure::UnknownDevice);
    row("Perangkat salah", Failure::Other);
    row("Callsign tidak terdaftar", Failure::UnknownCallsign);
    row("Sedang dipakai di perangkat lain", Failure::ActiveElsewhere);
    row("Login gagal", Failure::Other);
    row("", Failure::Other);
}

void LoginFlowTest::classifyFailure()
{
    QFETCH(QString, message);
    QTEST(LoginFlow::classifyFailure(message), "failure");
}

void LoginFlowTest::attempts()
{
    QVERIFY(LoginFlow::mayTryAgain(1));
    QVERIFY(LoginFlow::mayTryAgain(3));
    QVERIFY(!LoginFlow::mayTryAgain(4));
}

void LoginFlowTest::replacementRoom_data()
{
    QTest::addColumn<QString>("defaultRoom");
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<QString>("replacement"); // null: none
    const QString lobby = QStringLiteral("Lobby");
    const QStringList others{QStringLiteral("Alpha"), QStringLiteral("Beta")};
    QTest::newRow("default missing on the server") << lobby << others << QStringLiteral("Alpha");
    QTest::newRow("default present") << lobby << QStringList{QStringLiteral("Alpha"), lobby} << QString();
    QTest::newRow("other case is another room")
        << lobby << QStringList{QStringLiteral("lobby")} << QStringLiteral("lobby");
    QTest::newRow("no rooms") << lobby << QStringList() << QString();
    QTest::newRow("no default") << QString() << others << QString();
}

void LoginFlowTest::replacementRoom()
{
    QFETCH(QString, defaultRoom);
    QFETCH(QStringList, rooms);
    QFETCH(QString, replacement);
    const auto result = LoginFlow::replacementRoom(defaultRoom, rooms);
    QCOMPARE(result.has_value(), !replacement.isNull());
    QCOMPARE(result.value_or(QString()), replacement);
}

EVOX_TEST_MAIN(LoginFlowTest, QCoreApplication)
#include "tst_loginflow.moc"
