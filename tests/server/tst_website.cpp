#include "server/WebSite.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

class WebSiteTest final : public QObject
{
    Q_OBJECT

private slots:
    void pageOfACallsign();
    void whatIsUnknownIsLeftOut();
    void valuesAreEscaped();
    void quotedFormKeepsThePage_data();
    void quotedFormKeepsThePage();
    void badRegistries_data();
    void badRegistries();
    void sampleHasEveryCase_data();
    void sampleHasEveryCase();
    void routes_data();
    void routes();
    void quotedRegistry();
    void updates();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

CallsignRegistry registry(const char *json)
{
    QString error;
    const auto loaded = CallsignRegistry::fromJson(json, &error);
    if (!loaded)
        QTest::qFail(qPrintable(error), __FILE__, __LINE__);
    return loaded.value_or(CallsignRegistry());
}

/// The value that stands under the title; null when the page has no such item.
QString value(const QString &page, const QString &title)
{
    const QRegularExpression item(QStringLiteral("<li>\\s*<div class=\"title-meta\">%1 :</div>\\s*"
                                                 "<div class=\"meta-details\">(.*?)</div>\\s*</li>")
                                      .arg(title),
                                  QRegularExpression::DotMatchesEverythingOption);
    return item.match(page).captured(1);
}

HttpResponse ask(const WebSite &site, const QByteArray &target)
{
    return site.answer(HttpRequest::parse("GET " + target + " HTTP/1.0\r\n\r\n"));
}

const QByteArray kUpdate = QByteArrayLiteral("{\"version\": \"4.1\"}");

} // namespace

void WebSiteTest::pageOfACallsign()
{
    const QString page = registry("[{\"callsign\":\"yh0gw\",\"name\":\"RF-GW\",\"address\":\"Jl. Satu\","
                                  "\"validity\":\"31-12-2030\",\"status\":\"AKTIF\"}]")
                             .page(q(" yh0GW "));
    QVERIFY(page.startsWith(q("<ul class=\"none-style\">")));
    QVERIFY(page.endsWith(q("</ul>\n")));
    QCOMPARE(value(page, q("Nama")), q("RF-GW"));
    QCOMPARE(value(page, q("Callsign")), q("yh0gw"));
    QCOMPARE(value(page, q("Alamat")), q("Jl. Satu"));
    QCOMPARE(value(page, q("Masa Laku")), q("31-12-2030"));
    QCOMPARE(value(page, q("Status")), q("AKTIF"));
}

void WebSiteTest::whatIsUnknownIsLeftOut()
{
    const CallsignRegistry some = registry("[{\"callsign\":\"YH0GW\",\"status\":\"\"}]");
    const QString page = some.page(q("YH0GW"));
    QCOMPARE(page.count(q("<li>")), 2);
    QVERIFY(value(page, q("Nama")).isNull());
    QVERIFY2(!value(page, q("Status")).isNull(), "an empty text is an item");
    QVERIFY(!page.contains(q("not-found.png")));
    for (const char *callsign : {"YH1GW", "", "YH0GW'"}) {
        QVERIFY(some.page(q(callsign)).contains(q("<img src=\"/images/not-found.png\">")));
        QVERIFY(!some.page(q(callsign)).contains(q("none-style")));
    }
}

void WebSiteTest::valuesAreEscaped()
{
    const QString page = registry("[{\"callsign\":\"YH0GW\",\"name\":\"</div></ul><b>\\\"&\\\\n\"}]").page(q("YH0GW"));
    QCOMPARE(value(page, q("Nama")), q("&lt;/div&gt;&lt;/ul&gt;&lt;b&gt;&quot;&amp;&#92;n"));
}

void WebSiteTest::quotedFormKeepsThePage_data()
{
    QTest::addColumn<QString>("callsign");
    for (const char *callsign : {"YH0GW", "YH1XAA", "YH9ZZZ"})
        QTest::newRow(callsign) << q(callsign);
}

void WebSiteTest::quotedFormKeepsThePage()
{
    QFETCH(QString, callsign);
    const QString page = CallsignRegistry::sample().page(callsign);
    QString text = quotedPage(page);
    QVERIFY(text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"')));
    text = text.mid(1, text.size() - 2);
    QVERIFY(!text.contains(QLatin1Char('\n')));
    const QList<QStringList> escapes{{q("\\\""), q("\"")}, {q("\\n"), q("\n")}, {q("\\/"), q("/")}};
    for (const QStringList &escape : escapes) {
        QVERIFY(text.contains(escape.first()));
        text.replace(escape.first(), escape.last());
    }
    QCOMPARE(text, page);
}

void WebSiteTest::badRegistries_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");
    const QByteArray huge = QByteArray(501, 'x');
    QTest::newRow("nothing") << QByteArray() << q("illegal value");
    QTest::newRow("object") << QByteArray("{}") << q("not an array of callsigns");
    QTest::newRow("cut off") << QByteArray("[{\"callsign\":\"YH0") << q("unterminated string");
    QTest::newRow("text entry") << QByteArray("[\"YH0GW\"]") << q("entry 1: no callsign");
    QTest::newRow("no callsign") << QByteArray("[{\"callsign\":\"A\"},{\"name\":\"x\"}]") << q("entry 2: no callsign");
    QTest::newRow("blank callsign") << QByteArray("[{\"callsign\":\" \"}]") << q("entry 1: no callsign");
    QTest::newRow("twice") << QByteArray("[{\"callsign\":\"YH0GW\"},{\"callsign\":\"yh0gw\"}]")
                           << q("entry 2: a second YH0GW");
    QTest::newRow("number") << QByteArray("[{\"callsign\":\"YH0GW\",\"validity\":2030}]")
                            << q("entry 1: \"validity\" is not a text of at most 500 characters");
    QTest::newRow("too long") << "[{\"callsign\":\"YH0GW\",\"name\":\"" + huge + "\"}]"
                              << q("entry 1: \"name\" is not a text of at most 500 characters");
}

void WebSiteTest::badRegistries()
{
    QFETCH(QByteArray, json);
    QString error;
    QVERIFY(!CallsignRegistry::fromJson(json, &error));
    QTEST(error, "error");
}

void WebSiteTest::sampleHasEveryCase_data()
{
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("validity");
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("hasAddress");
    const auto row = [](const char *name, const char *callsign, const QString &validity, const char *status,
                        bool hasAddress = true) {
        QTest::newRow(name) << q(callsign) << validity << q(status) << hasAddress;
    };
    row("valid by month", "YH0GW", q("DESEMBER 2035"), "AKTIF");
    row("valid by date", "YH1XAA", q("31-12-2035"), "AKTIF");
    row("without validity", "YH2XBB", {}, "AKTIF");
    row("expired", "YH3XCC", q("31-12-2020"), "AKTIF");
    row("inactive", "YH4XDD", q("DESEMBER 2035"), "TIDAK AKTIF");
    row("no date in the validity", "YH5XEE", q("SEUMUR HIDUP"), "AKTIF");
    row("without an address", "YH6XFF", q("DESEMBER 2035"), "AKTIF", false);
    row("person", "YB0ABC", q("DESEMBER 2035"), "AKTIF");
}

void WebSiteTest::sampleHasEveryCase()
{
    QFETCH(QString, callsign);
    QFETCH(QString, validity);
    const QString page = CallsignRegistry::sample().page(callsign);
    QCOMPARE(value(page, q("Callsign")), callsign);
    QVERIFY(!value(page, q("Nama")).isEmpty());
    QCOMPARE(value(page, q("Masa Laku")), validity);
    QTEST(value(page, q("Status")), "status");
    QTEST(!value(page, q("Alamat")).isNull(), "hasAddress");
}

void WebSiteTest::routes_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("part");
    const auto row = [](const char *name, const char *target, int status, const char *type, const QByteArray &part) {
        QTest::newRow(name) << QByteArray(target) << status << QByteArray(type) << part;
    };
    const char *html = "text/html; charset=utf-8";
    const char *text = "text/plain; charset=utf-8";
    row("callsign", "/registrant/searchDataIar/?callsign=YH0GW", 200, html, "none-style");
    row("unknown callsign", "/registrant/searchDataIar/?callsign=YH9ZZZ", 200, html, "/images/not-found.png");
    row("no callsign", "/registrant/searchDataIar/", 200, html, "/images/not-found.png");
    row("picture", "/images/not-found.png", 200, "image/png", QByteArray("\x89PNG\r\n\x1a\n", 8));
    row("update", "/update/", 200, "application/json; charset=utf-8", kUpdate);
    row("root", "/", 404, text, "404 Not Found");
    row("update without its slash", "/update", 404, text, "404 Not Found");
    row("way up", "/update/../../etc/passwd", 404, text, "404 Not Found");
    row("NUL behind", "/update/%00", 404, text, "404 Not Found");
}

void WebSiteTest::routes()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, part);
    const HttpResponse response = ask(WebSite({CallsignRegistry::sample(), false, kUpdate}), target);
    QTEST(response.status, "status");
    QTEST(response.contentType, "type");
    QVERIFY2(response.body.contains(part), response.body.constData());
}

void WebSiteTest::quotedRegistry()
{
    const WebSite site({CallsignRegistry::sample(), true, kUpdate});
    const HttpResponse found = ask(site, "/registrant/searchDataIar/?callsign=YH0GW");
    QVERIFY(found.body.startsWith("\"<ul class=\\\"none-style\\\">\\n"));
    QVERIFY(found.body.endsWith("<\\/ul>\\n\""));
    QVERIFY(ask(site, "/registrant/searchDataIar/?callsign=X").body.contains("\\/images\\/not-found.png"));
    QCOMPARE(ask(site, "/update/").body, kUpdate);
}

void WebSiteTest::updates()
{
    const QByteArray plain = WebSite::plainUpdate(q("4.0.2"), q("20260530"));
    QCOMPARE(WebSite::updateProblem(plain), QString());
    const QJsonObject document = QJsonDocument::fromJson(plain).object();
    QCOMPARE(document.value(q("version")).toString(), q("4.0.2"));
    QCOMPARE(document.value(q("build_date")).toString(), q("20260530"));
    QVERIFY(document.value(q("changelog")).isArray());
    QCOMPARE(document.size(), 3);
    QCOMPARE(WebSite::updateProblem("[]"), q("not a JSON object"));
    QCOMPARE(WebSite::updateProblem("{"), q("unterminated object"));
}

EVOX_TEST_MAIN(WebSiteTest, QCoreApplication)
#include "tst_website.moc"
