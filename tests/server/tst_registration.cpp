#include "net/protocol/Commands.h"
#include "server/Command.h"
#include "server/Registration.h"
#include "support/TestMain.h"

class RegistrationTest final : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldFindsItsPlace();
    void dashesAndEmptyTexts();
    void textsAreCleaned();
    void fields_data();
    void fields();
    void numberOfFields_data();
    void numberOfFields();
};

namespace {

using Edit = QString Commands::Registration::*;
const QDate kToday(2026, 11, 21);

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

Commands::Registration good()
{
    return {q("RF-GW Bukit"), q("YH0GW"),  q("145.500 MHz"), q("2027-12-31"),   q("Jl. Mawar 1, Bandung"),
            q("Sari Dewi"),   q("YB0ABC"), q("r4hasia"),     q("sari@example"), q("+62 812-3456")};
}

Registration read(const Commands::Registration &sent)
{
    return Registration::read(Command(Commands::registerGateway(sent)), kToday);
}

} // namespace

Q_DECLARE_METATYPE(Edit)

void RegistrationTest::everyFieldFindsItsPlace()
{
    const Registration registration = read(good());
    const Account &account = registration.account;
    QCOMPARE(registration.refusal, QString());
    QCOMPARE(registration.password, q("r4hasia"));
    QCOMPARE(account.gatewayName, q("RF-GW Bukit"));
    QCOMPARE(account.callsign, q("YH0GW"));
    QCOMPARE(account.frequency, q("145.500 MHz"));
    QCOMPARE(account.expiry, q("2027-12-31"));
    QCOMPARE(account.location, q("Jl. Mawar 1, Bandung"));
    QCOMPARE(account.name, q("Sari Dewi"));
    QCOMPARE(account.responsibleCallsign, q("YB0ABC"));
    QCOMPARE(account.email, q("sari@example"));
    QCOMPARE(account.whatsapp, q("+62 812-3456"));
    QVERIFY(!account.approved && !account.admin);
    QVERIFY(account.passwordHash.isEmpty() && account.hwid.isEmpty());
}

void RegistrationTest::dashesAndEmptyTexts()
{
    Commands::Registration sent = good();
    for (Edit edit :
         {&Commands::Registration::frequency, &Commands::Registration::permitExpiry, &Commands::Registration::location,
          &Commands::Registration::responsibleCallsign, &Commands::Registration::email, &Commands::Registration::phone})
        sent.*edit = q("-");
    const Account account = read(sent).account;
    QCOMPARE(account.frequency, q("-"));
    QCOMPARE(account.location, q("-"));
    QCOMPARE(account.whatsapp, q("-"));
    QCOMPARE(account.expiry, QString());
    QCOMPARE(account.responsibleCallsign, QString());
    QCOMPARE(account.email, QString());
}

void RegistrationTest::textsAreCleaned()
{
    Commands::Registration sent = good();
    sent.callsign = q(" yh0gw ");
    sent.responsibleCallsign = q("yb0abc");
    sent.gatewayName = q(" RF|GW;\t1,2 ");
    sent.frequency = q("146,440 | 88,5;\tMHz");
    sent.password = q("p|w;,%1");
    const Registration registration = read(sent);
    QCOMPARE(registration.refusal, QString());
    QCOMPARE(registration.account.callsign, q("YH0GW"));
    QCOMPARE(registration.account.responsibleCallsign, q("YB0ABC"));
    QCOMPARE(registration.account.gatewayName, q("RF GW 1 2"));
    QCOMPARE(registration.account.frequency, q("146,440 88,5; MHz"));
    QVERIFY2(registration.password == sent.password, "a login sends it as it was typed");
}

void RegistrationTest::fields_data()
{
    using R = Commands::Registration;
    QTest::addColumn<Edit>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, Edit field, const QString &text, const char *refusal = "") {
        QTest::newRow(name) << field << text << q(refusal);
    };
    const auto long_ = [](int size) { return QString(size, QLatin1Char('x')); };
    row("gateway name missing", &R::gatewayName, {}, "Nama gateway wajib diisi");
    row("gateway name of separators only", &R::gatewayName, q("|,;"), "Nama gateway wajib diisi");
    row("gateway name at the limit", &R::gatewayName, long_(200));
    row("gateway name too long", &R::gatewayName, long_(201), "Nama gateway terlalu panjang (maksimal 200 karakter)");
    row("gateway name not Latin", &R::gatewayName, q("Гора ⛰"));

    const char *format = "Format callsign harus YH[0-9][A-Z]{2,4}";
    row("callsign missing", &R::callsign, {}, "Callsign wajib diisi");
    row("callsign with two letters", &R::callsign, q("YH1AB"));
    row("callsign with four letters", &R::callsign, q("YH1ABCD"));
    row("callsign with one letter", &R::callsign, q("YH1A"), format);
    row("callsign with five letters", &R::callsign, q("YH1ABCDE"), format);
    row("callsign of a person", &R::callsign, q("YB0ABC"), format);
    row("callsign without a digit", &R::callsign, q("YHXAB"), format);
    row("callsign with a digit of another script", &R::callsign, q("YH٣AB"), format);
    row("callsign with something behind", &R::callsign, q("YH1AB 2"), format);
    row("callsign too long", &R::callsign, long_(41), "Callsign terlalu panjang (maksimal 40 karakter)");

    row("frequency empty", &R::frequency, {});
    row("frequency too long", &R::frequency, long_(41), "Frekuensi terlalu panjang (maksimal 40 karakter)");
    row("location empty", &R::location, {});
    row("location too long", &R::location, long_(201), "Lokasi terlalu panjang (maksimal 200 karakter)");

    const char *date = "Masa berlaku izin harus tanggal yyyy-MM-dd";
    row("expiry empty", &R::permitExpiry, {});
    row("expiry none", &R::permitExpiry, q("-"));
    row("expiry today", &R::permitExpiry, q("2026-11-21"));
    row("expiry yesterday", &R::permitExpiry, q("2026-11-20"), "Masa berlaku izin sudah lewat");
    row("expiry far away", &R::permitExpiry, q("9999-12-31"));
    row("expiry in the other order", &R::permitExpiry, q("31-12-2027"), date);
    row("expiry without zeros", &R::permitExpiry, q("2027-1-5"), date);
    row("expiry on no day", &R::permitExpiry, q("2027-02-29"), date);
    row("expiry with a time", &R::permitExpiry, q("2027-02-28T10:00"), date);

    row("operator missing", &R::operatorName, {}, "Nama operator wajib diisi");
    row("operator too long", &R::operatorName, long_(201), "Nama operator terlalu panjang (maksimal 200 karakter)");

    const char *responsible = "Format callsign penanggung jawab tidak valid";
    row("responsible empty", &R::responsibleCallsign, {});
    row("responsible YB", &R::responsibleCallsign, q("YB1AB"));
    row("responsible YH", &R::responsibleCallsign, q("YH9ABCD"));
    row("responsible YA", &R::responsibleCallsign, q("YA1AB"), responsible);
    row("responsible YI", &R::responsibleCallsign, q("YI1AB"), responsible);
    row("responsible short", &R::responsibleCallsign, q("YB1A"), responsible);

    row("password missing", &R::password, {}, "Password wajib diisi");
    row("password of one character", &R::password, q("x"));
    row("password of separators only", &R::password, q("||"), "Password wajib diisi");
    row("password at the limit", &R::password, long_(128));
    row("password too long", &R::password, long_(129), "Password terlalu panjang (maksimal 128 karakter)");
    row("password with a blank", &R::password, q("dua kata"), "Password tidak boleh berisi spasi atau tanda kutip");
    row("password with a tab", &R::password, q("dua\tkata"), "Password tidak boleh berisi spasi atau tanda kutip");
    row("password with a control character", &R::password, q("dua\x01kata"),
        "Password tidak boleh berisi spasi atau tanda kutip");

    const char *email = "Format email tidak valid";
    row("email empty", &R::email, {});
    row("email without a dot", &R::email, q("yh0gw@localhost"));
    row("email without at", &R::email, q("yh0gw.localhost"), email);
    row("email without a name", &R::email, q("@localhost"), email);
    row("email without a host", &R::email, q("yh0gw@"), email);
    row("email with two ats", &R::email, q("a@b@c"), email);
    row("email with a blank", &R::email, q("a b@c"), email);
    row("two emails", &R::email, q("a@b,c@d"), email);
    row("email too long", &R::email, long_(200) + q("@x"), "Email terlalu panjang (maksimal 200 karakter)");

    const char *phone = "Nomor WhatsApp hanya boleh berisi angka, spasi, + dan -";
    row("phone empty", &R::phone, {});
    row("phone of digits", &R::phone, q("08123456789"));
    row("phone with letters", &R::phone, q("0812x"), phone);
    row("phone without a digit", &R::phone, q("+-"), phone);
    row("phone too long", &R::phone, QString(41, QLatin1Char('1')),
        "Nomor WhatsApp terlalu panjang (maksimal 40 karakter)");
}

void RegistrationTest::fields()
{
    QFETCH(Edit, field);
    QFETCH(QString, text);
    Commands::Registration sent = good();
    sent.*field = text;
    QTEST(read(sent).refusal, "refusal");
}

void RegistrationTest::numberOfFields_data()
{
    QTest::addColumn<QString>("line");
    const QString nine = QStringLiteral("REGISTER_GATEWAY") + QStringLiteral(" \"x\"").repeated(9);
    QTest::newRow("none") << q("REGISTER_GATEWAY");
    QTest::newRow("nine") << nine;
    QTest::newRow("eleven") << nine + q(" \"x\" \"x\"");
    Commands::Registration sent = good();
    sent.gatewayName = q("RF \"Bukit\" GW");
    QTest::newRow("a quote inside a field") << Commands::registerGateway(sent);
}

void RegistrationTest::numberOfFields()
{
    QFETCH(QString, line);
    const Registration registration = Registration::read(Command(line), kToday);
    QCOMPARE(registration.refusal, q("Pendaftaran harus berisi 10 isian tanpa tanda kutip"));
    QCOMPARE(registration.account.callsign, QString());
}

EVOX_TEST_MAIN(RegistrationTest, QCoreApplication)
#include "tst_registration.moc"
