#include "gateway/RegistryRecord.h"
#include "support/TestMain.h"

namespace {

using Verdict = RegistryRecord::Verdict;

const QDate kToday(2026, 5, 10);

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QByteArray item(const QByteArray &title, const QByteArray &value)
{
    return "<li class=\"x\">\n <div class=\"title-meta\">" + title + "</div>\n <div class=\"meta-details\">" + value +
           "</div></li>\n";
}

QByteArray page(const QByteArray &items)
{
    return "<div><ul class=\"none-style\">\n" + items + "</ul></div>";
}

QByteArray station(const QByteArray &more = {})
{
    return page(item("Nama", "ANI") + item("Alamat :", "JL. MERDEKA 1") + more);
}

QByteArray valid(const QByteArray &validity)
{
    return item("Masa Laku :", validity);
}

QByteArray quoted(QByteArray html)
{
    html.replace('"', "\\\"");
    html.replace("\n", "\\n");
    html.replace("/", "\\/");
    return '"' + html + '"';
}

} // namespace

Q_DECLARE_METATYPE(RegistryRecord::Verdict)

class RegistryRecordTest final : public QObject
{
    Q_OBJECT

private slots:
    void judges_data();
    void judges();
    void permits_data();
    void permits();
    void readsTheDate_data();
    void readsTheDate();
    void countsTheDays_data();
    void countsTheDays();
    void readsAddress_data();
    void readsAddress();
    void readsName_data();
    void readsName();
    void readsValidityAndStatus_data();
    void readsValidityAndStatus();
    void anyPartOfAPageIsReadable();
    void hostilePagesEnd_data();
    void hostilePagesEnd();
};

void RegistryRecordTest::judges_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<Verdict>("verdict");
    QTest::newRow("empty") << QByteArray() << Verdict::UnknownFormat;
    QTest::newRow("one quote") << QByteArray("\"") << Verdict::UnknownFormat;
    QTest::newRow("not found") << QByteArray("<img src=\"/images/not-found.png\">") << Verdict::NotListed;
    QTest::newRow("not found beside a list") << station() + "not-found.png" << Verdict::NotListed;
    QTest::newRow("not found, quoted") << quoted("<img src=\"/images/not-found.png\">") << Verdict::NotListed;
    QTest::newRow("another page") << QByteArray("<html><ul class=\"menu\"><li>Alamat</li></ul></html>")
                                  << Verdict::UnknownFormat;
    QTest::newRow("list that never ends")
        << QByteArray("<ul class=\"none-style\">") + item("Alamat", "x") << Verdict::UnknownFormat;
    QTest::newRow("empty list") << page({}) << Verdict::NoAddress;
    QTest::newRow("no address") << page(item("Nama", "ANI") + valid("DESEMBER 2030")) << Verdict::NoAddress;
    QTest::newRow("address without a value")
        << page("<li><div class=\"title-meta\">Alamat</div></li>") << Verdict::NoAddress;
    QTest::newRow("value without a title")
        << page("<li><div class=\"meta-details\">Alamat</div></li>") << Verdict::NoAddress;
    QTest::newRow("empty address") << page(item("Alamat", "")) << Verdict::NoValidity;
    QTest::newRow("no validity") << station() << Verdict::NoValidity;
    QTest::newRow("no validity, inactive") << station(item("Status", "TIDAK AKTIF")) << Verdict::NoValidity;
    QTest::newRow("empty validity, inactive")
        << station(valid("  ") + item("Status", "EXPIRED")) << Verdict::NoValidity;
    QTest::newRow("inactive") << station(valid("DESEMBER 2030") + item("Status", "Tidak Aktif")) << Verdict::Inactive;
    QTest::newRow("kadaluarsa") << station(valid("DESEMBER 2030") + item("STATUS", "sudah kadaluarsa"))
                                << Verdict::Inactive;
    QTest::newRow("status expired") << station(valid("tanpa tanggal") + item("Status", "Expired")) << Verdict::Inactive;
    QTest::newRow("status inactive") << station(item("Status", "Inactive") + valid("DESEMBER 2030"))
                                     << Verdict::Inactive;
    QTest::newRow("second status inactive")
        << station(valid("DESEMBER 2030") + item("Status", "AKTIF") + item("Status izin", "EXPIRED"))
        << Verdict::Inactive;
    QTest::newRow("inactive and past") << station(valid("01/01/2020") + item("Status", "EXPIRED")) << Verdict::Inactive;
    QTest::newRow("past") << station(valid("01/01/2020") + item("Status", "AKTIF")) << Verdict::Expired;
    QTest::newRow("yesterday") << station(valid("09/05/2026")) << Verdict::Expired;
    QTest::newRow("today") << station(valid("10/05/2026")) << Verdict::ExpiresSoon;
    QTest::newRow("30 days ahead") << station(valid("09/06/2026")) << Verdict::ExpiresSoon;
    QTest::newRow("31 days ahead") << station(valid("10/06/2026")) << Verdict::Valid;
    QTest::newRow("no date") << station(valid("seumur hidup")) << Verdict::UnreadableDate;
    QTest::newRow("quoted") << quoted(station(valid("31/12/2030"))) << Verdict::Valid;
    QTest::newRow("quoted with a line end") << quoted(station(valid("31/12/2030"))) + '\n' << Verdict::Valid;
    QTest::newRow("capital tags, more attributes")
        << QByteArray("<UL id=\"a\" CLASS=\"none-style\" data-x><LI><DIV class=\"title-meta\">ALAMAT</DIV>"
                      "<DIV class=\"meta-details\">X</DIV></LI></UL>")
        << Verdict::NoValidity;
    QTest::newRow("two classes") << QByteArray("<ul class=\"none-style wide\"></ul>") << Verdict::UnknownFormat;
    QTest::newRow("only the first list counts")
        << page(item("Nama", "ANI")) + station(valid("31/12/2030")) << Verdict::NoAddress;
    QTest::newRow("as large as is read")
        << station(valid("31/12/2030")).leftJustified(RegistryRecord::kLargestPage, ' ') << Verdict::Valid;
    QTest::newRow("larger") << station(valid("31/12/2030")).leftJustified(RegistryRecord::kLargestPage + 1, ' ')
                            << Verdict::UnknownFormat;
    QTest::newRow("not text") << QByteArray::fromHex("00ff00fe22") << Verdict::UnknownFormat;
}

void RegistryRecordTest::judges()
{
    QFETCH(QByteArray, body);
    QTEST(RegistryRecord::read(body, kToday).verdict, "verdict");
}

void RegistryRecordTest::permits_data()
{
    QTest::addColumn<Verdict>("verdict");
    QTest::addColumn<bool>("listed");
    QTest::addColumn<bool>("permitted");
    QTest::newRow("not listed") << Verdict::NotListed << false << false;
    QTest::newRow("unknown format") << Verdict::UnknownFormat << false << false;
    QTest::newRow("no address") << Verdict::NoAddress << true << false;
    QTest::newRow("no validity") << Verdict::NoValidity << true << true;
    QTest::newRow("inactive") << Verdict::Inactive << true << false;
    QTest::newRow("expired") << Verdict::Expired << true << false;
    QTest::newRow("expires soon") << Verdict::ExpiresSoon << true << true;
    QTest::newRow("valid") << Verdict::Valid << true << true;
    QTest::newRow("unreadable date") << Verdict::UnreadableDate << true << true;
}

void RegistryRecordTest::permits()
{
    QFETCH(Verdict, verdict);
    RegistryRecord record;
    record.verdict = verdict;
    QTEST(record.isListed(), "listed");
    QTEST(record.isPermitted(), "permitted");
}

void RegistryRecordTest::readsTheDate_data()
{
    QTest::addColumn<QString>("validity");
    QTest::addColumn<QDate>("expiry");
    const QStringList months{q("JANUARI"), q("Februari"), q("maret"),     q("April"),   q("MEI"),      q("Juni"),
                             q("Juli"),    q("Agustus"),  q("SEPTEMBER"), q("Oktober"), q("November"), q("Desember")};
    for (int month = 1; month <= months.size(); ++month)
        QTest::addRow("month %d", month) << months[month - 1] + q(" 2027")
                                         << QDate(2027, month, QDate(2027, month, 1).daysInMonth());
    QTest::newRow("last day of May") << q("MEI 2026") << QDate(2026, 5, 31);
    QTest::newRow("leap year") << q("Februari 2028") << QDate(2028, 2, 29);
    QTest::newRow("a day before the month is not looked at") << q("3 Maret 2027") << QDate(2027, 3, 31);
    QTest::newRow("year before the month") << q("2027, s/d Maret") << QDate(2027, 3, 31);
    QTest::newRow("two months: the first of the year") << q("MEI 2026 - MARET 2027") << QDate(2026, 3, 31);
    QTest::newRow("five digits: their first four") << q("MEI 20261") << QDate(2026, 5, 31);
    QTest::newRow("year nought") << q("MEI 0000") << QDate();
    QTest::newRow("month without a year") << q("MEI") << QDate();
    QTest::newRow("English month") << q("MAY 2026") << QDate();
    QTest::newRow("dd/MM/yyyy") << q("31/12/2026") << QDate(2026, 12, 31);
    QTest::newRow("day before month") << q("01/02/2027") << QDate(2027, 2, 1);
    QTest::newRow("yyyy-MM-dd") << q("2026-12-31") << QDate(2026, 12, 31);
    QTest::newRow("d/M/yyyy") << q("1/2/2027") << QDate(2027, 2, 1);
    QTest::newRow("MM/dd/yyyy where nothing else fits") << q("12/31/2026") << QDate(2026, 12, 31);
    QTest::newRow("dd-MM-yyyy") << q("31-12-2026") << QDate(2026, 12, 31);
    QTest::newRow("yyyy/MM/dd") << q("2026/12/31") << QDate(2026, 12, 31);
    QTest::newRow("MM/yyyy") << q("12/2026") << QDate(2026, 12, 1);
    QTest::newRow("MM-yyyy") << q("12-2026") << QDate(2026, 12, 1);
    QTest::newRow("no such day") << q("31/02/2027") << QDate();
    QTest::newRow("dots") << q("31.12.2026") << QDate();
    QTest::newRow("more than a date") << q("s/d 31/12/2026") << QDate();
    QTest::newRow("other digits") << QString::fromUtf8("MEI ٢٠٢٦") << QDate();
    QTest::newRow("nothing") << QString() << QDate();
}

void RegistryRecordTest::readsTheDate()
{
    QFETCH(QString, validity);
    QTEST(RegistryRecord::expiryFrom(validity), "expiry");
    QFETCH(QDate, expiry);
    if (!validity.isEmpty())
        QCOMPARE(RegistryRecord::read(station(valid(validity.toUtf8())), kToday).expiry, expiry);
}

void RegistryRecordTest::countsTheDays_data()
{
    QTest::addColumn<QByteArray>("validity");
    QTest::addColumn<qint64>("days");
    QTest::newRow("yesterday") << QByteArray("09/05/2026") << qint64(-1);
    QTest::newRow("today") << QByteArray("10/05/2026") << qint64(0);
    QTest::newRow("29") << QByteArray("08/06/2026") << qint64(29);
    QTest::newRow("30") << QByteArray("09/06/2026") << qint64(30);
    QTest::newRow("31") << QByteArray("10/06/2026") << qint64(31);
    QTest::newRow("no date") << QByteArray("selamanya") << qint64(0);
}

void RegistryRecordTest::countsTheDays()
{
    QFETCH(QByteArray, validity);
    QTEST(RegistryRecord::read(station(valid(validity)), kToday).daysLeft, "days");
}

void RegistryRecordTest::readsAddress_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("address");
    QTest::newRow("plain") << page(item("Alamat", "JL. A 1")) << q("JL. A 1");
    QTest::newRow("white space") << page(item("Alamat", "\r\n  JL. A\t\t1,\n\n  BANDUNG \r")) << q("JL. A 1, BANDUNG");
    QTest::newRow("quoted line feeds") << quoted(page(item("Alamat", "JL. A\nBANDUNG 40/1")))
                                       << q("JL. A BANDUNG 40/1");
    QTest::newRow("nested tags") << page(item("<b>Ala</b>mat <i>:</i>", "<p><b>JL.</b> A <br/>1</p>")) << q("JL. A 1");
    QTest::newRow("references stay as they came")
        << page(item("Alamat", "A &amp; B &#39;C&#39;")) << q("A &amp; B &#39;C&#39;");
    QTest::newRow("accents") << page(item("Alamat", "Jl. Café")) << q("Jl. Café");
    QTest::newRow("the first even if it is empty") << page(item("Alamat", "") + item("Alamat Surat", "B")) << QString();
    QTest::newRow("of several the first") << page(item("Alamat", "A") + item("Alamat Surat", "B")) << q("A");
    QTest::newRow("longer title") << page(item("ALAMAT STASIUN:", "A")) << q("A");
    QTest::newRow("a nested div ends the value") << page(item("Alamat", "A<div>B</div>C")) << q("AB");
    QTest::newRow("a nested list item ends the item") << page("<li>" + item("Alamat", "A")) << q("A");
}

void RegistryRecordTest::readsAddress()
{
    QFETCH(QByteArray, body);
    QTEST(RegistryRecord::read(body, kToday).address, "address");
}

void RegistryRecordTest::readsName_data()
{
    QTest::addColumn<QByteArray>("items");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << item("Nama :", " ANI  SITI ") << q("ANI SITI");
    QTest::newRow("longer title") << item("NAMA PEMILIK", "ANI") << q("ANI");
    QTest::newRow("of its use") << item("Nama Penggunaan", "KLUB") << QString();
    QTest::newRow("after its use") << item("Nama Penggunaan", "KLUB") + item("Nama", "ANI") << q("ANI");
    QTest::newRow("empty") << item("Nama", " <b></b> ") << QString();
    QTest::newRow("none") << item("Alamat", "X") << QString();
    QTest::newRow("without an address") << item("Status", "AKTIF") + item("Nama", "ANI") << q("ANI");
}

void RegistryRecordTest::readsName()
{
    QFETCH(QByteArray, items);
    QTEST(RegistryRecord::read(page(items), kToday).name, "name");
}

void RegistryRecordTest::readsValidityAndStatus_data()
{
    QTest::addColumn<QByteArray>("items");
    QTest::addColumn<QString>("validity");
    QTest::addColumn<QString>("status");
    QTest::newRow("masa laku") << item("Masa Laku", "MEI 2030") << q("MEI 2030") << QString();
    QTest::newRow("masa berlaku") << item("MASA BERLAKU:", "MEI 2030") << q("MEI 2030") << QString();
    QTest::newRow("berlaku") << item("Berlaku s/d", "MEI 2030") << q("MEI 2030") << QString();
    QTest::newRow("expiry") << item("Expiry date", "MEI 2030") << q("MEI 2030") << QString();
    QTest::newRow("masa alone") << item("Masa", "MEI 2030") << QString() << QString();
    QTest::newRow("laku alone") << item("Laku", "MEI 2030") << QString() << QString();
    QTest::newRow("status") << item("Status Izin", "AKTIF") << QString() << q("AKTIF");
    QTest::newRow("validity before status") << item("Status Masa Laku", "X") << q("X") << QString();
    QTest::newRow("address before both") << item("Alamat Status Berlaku", "X") << QString() << QString();
}

void RegistryRecordTest::readsValidityAndStatus()
{
    QFETCH(QByteArray, items);
    const RegistryRecord record = RegistryRecord::read(page(items), kToday);
    QTEST(record.validity, "validity");
    QTEST(record.status, "status");
}

// A connection may break anywhere: no part of a page reads as another verdict than the whole or an unknown format.
void RegistryRecordTest::anyPartOfAPageIsReadable()
{
    const QByteArray whole = station(valid("31/12/2030") + item("Status", "AKTIF"));
    for (int length = 0; length < whole.size(); ++length) {
        const Verdict verdict = RegistryRecord::read(whole.left(length), kToday).verdict;
        QVERIFY2(verdict == Verdict::UnknownFormat || (verdict == Verdict::Valid && length >= whole.size() - 6),
                 QByteArray::number(length));
    }
}

void RegistryRecordTest::hostilePagesEnd_data()
{
    QTest::addColumn<QByteArray>("unit");
    QTest::newRow("lists that never end") << QByteArray("<ul class=\"none-style\">");
    QTest::newRow("tags that never end") << QByteArray("<ul");
    QTest::newRow("brackets") << QByteArray("<");
    QTest::newRow("attributes") << QByteArray("<ul class=\"none-style\"");
    QTest::newRow("items that never end") << QByteArray("<ul class=\"none-style\"><li");
    QTest::newRow("open items") << QByteArray("<li>");
    QTest::newRow("empty tags") << QByteArray("<>");
    QTest::newRow("tags") << QByteArray("<a>");
    QTest::newRow("titles") << QByteArray("<li><div class=\"title-meta\">");
    QTest::newRow("backslashes") << QByteArray("\\\"");
}

void RegistryRecordTest::hostilePagesEnd()
{
    QFETCH(QByteArray, unit);
    const int room = RegistryRecord::kLargestPage - 200;
    const QByteArray filling = unit.repeated(room / unit.size());
    QCOMPARE(RegistryRecord::read(filling, kToday).verdict, Verdict::UnknownFormat);
    QCOMPARE(RegistryRecord::read('"' + filling + '"', kToday).verdict, Verdict::UnknownFormat);
    const RegistryRecord record = RegistryRecord::read(page(item("Alamat", filling.left(room - 200))), kToday);
    QVERIFY(record.verdict == Verdict::NoValidity || record.verdict == Verdict::UnknownFormat ||
            record.verdict == Verdict::NoAddress);
}

EVOX_TEST_MAIN(RegistryRecordTest, QCoreApplication)
#include "tst_registryrecord.moc"
