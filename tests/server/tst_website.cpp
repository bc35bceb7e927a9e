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
    void guideText_data();
    void guideText();
    void guidePages_data();
    void guidePages();
    void everyLinkOfTheGuideLeadsSomewhere_data();
    void everyLinkOfTheGuideLeadsSomewhere();
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
    row("guide", "/dokumentasi/", 200, html, "<h2 id=\"menyambungkan-radio\">Menyambungkan radio</h2>");
    row("guide in English", "/dokumentasi/en/", 200, html, "<h2 id=\"wiring-the-radio\">Wiring the radio</h2>");
    row("tutorial", "/tutorial/", 200, html, "<h1 id=");
    row("picture of the guide", "/dokumentasi/images/window-light.png", 200, "image/png",
        QByteArray("\x89PNG\r\n\x1a\n", 8));
    row("picture that there is not", "/dokumentasi/images/nothing.png", 404, text, "404 Not Found");
    row("way out of the pictures", "/dokumentasi/images/../operating.html", 404, text, "404 Not Found");
    row("folder of the pictures", "/dokumentasi/images/", 404, text, "404 Not Found");
    row("guide without its slash", "/dokumentasi", 404, text, "404 Not Found");
    row("unknown language", "/dokumentasi/fr/", 404, text, "404 Not Found");
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

void WebSiteTest::guideText_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("body");
    const auto row = [](const char *name, const char *html, const char *body) {
        QTest::newRow(name) << q(html) << q(body);
    };
    row("plain", "<p>text</p>", "<p>text</p>");
    row("heading", "<h2>Arti tampilan</h2>", "<h2 id=\"arti-tampilan\">Arti tampilan</h2>");
    row("heading with signs", "<h3>Serial/PTT &amp; <code>COS</code>?</h3>",
        "<h3 id=\"serialptt--cos\">Serial/PTT &amp; <code>COS</code>?</h3>");
    row("picture", "<p><img src=\"images/a.png\" alt=\"A\" /></p>\n",
        "<p><img src=\"/dokumentasi/images/a.png\" alt=\"A\" /></p>\n");
    row("missing picture", "<p>x</p>\n<p><img src=\"images/b.png\" alt=\"B\" /></p>\n<p>y</p>\n",
        "<p>x</p>\n<p>y</p>\n");
    row("link to the guide", "<a href=\"operating.md\">", "<a href=\"/dokumentasi/\">");
    row("link to the guide in English", "<a href=\"operating.en.md\">", "<a href=\"/dokumentasi/en/\">");
    row("link to a heading", "<a href=\"operating.md#room\">", "<a href=\"/dokumentasi/#room\">");
    row("link to the tutorial", "<a href=\"tutorial.md\">", "<a href=\"/tutorial/\">");
    row("link elsewhere", "<a href=\"https://example.org/tutorial.md\">",
        "<a href=\"https://example.org/tutorial.md\">");
    row("link in the page", "<a href=\"#room\">", "<a href=\"#room\">");
}

void WebSiteTest::guideText()
{
    QFETCH(QString, html);
    QTEST(GuidePages::body(html, {q("a.png")}), "body");
}

void WebSiteTest::guidePages_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<bool>("hasTables");
    QTest::newRow("guide") << QByteArray("/dokumentasi/") << QByteArray("id")
                           << QByteArray("Panduan Operator e-VOX SINAR - e-VOX SINAR") << true;
    QTest::newRow("guide in English") << QByteArray("/dokumentasi/en/") << QByteArray("en")
                                      << QByteArray("e-VOX SINAR Operator's Guide - e-VOX SINAR") << true;
    QTest::newRow("tutorial") << QByteArray("/tutorial/") << QByteArray("id")
                              << QByteArray("Dari nol sampai QSO pertama - e-VOX SINAR") << false;
}

void WebSiteTest::guidePages()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, language);
    QFETCH(QByteArray, title);
    const QByteArray page = ask(WebSite({CallsignRegistry::sample(), false, kUpdate}), path).body;
    QVERIFY(page.startsWith("<!DOCTYPE html>\n<html lang=\"" + language + "\">"));
    QVERIFY2(page.contains("<title>" + title + "</title>"), page.left(400).constData());
    QVERIFY(page.contains("@media (prefers-color-scheme: dark)"));
    QTEST(page.contains("<table>"), "hasTables");
    for (const char *other : {"/dokumentasi/", "/dokumentasi/en/", "/tutorial/"})
        QVERIFY2(page.contains("<a href=\"" + QByteArray(other) + "\""), other);
    QVERIFY2(!page.contains("@BODY@") && page.trimmed().endsWith("</html>"), "the frame is filled and whole");
    QVERIFY(!page.contains(".md\""));
    QVERIFY(!page.contains("<script"));
}

void WebSiteTest::everyLinkOfTheGuideLeadsSomewhere_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char *path : {"/dokumentasi/", "/dokumentasi/en/", "/tutorial/"})
        QTest::newRow(path) << QByteArray(path);
}

void WebSiteTest::everyLinkOfTheGuideLeadsSomewhere()
{
    QFETCH(QByteArray, path);
    const WebSite site({CallsignRegistry::sample(), false, kUpdate});
    const QString page = QString::fromUtf8(ask(site, path).body);
    const QRegularExpression link(q("(?:href|src)=\"([^\"#]*)(?:#([^\"]*))?\""));
    int found = 0;
    for (auto links = link.globalMatch(page); links.hasNext(); ++found) {
        const QRegularExpressionMatch match = links.next();
        const QByteArray target = match.captured(1).isEmpty() ? path : match.captured(1).toUtf8();
        const HttpResponse response = ask(site, target);
        QVERIFY2(response.status == 200, qPrintable(match.captured()));
        const QByteArray heading = "id=\"" + match.captured(2).toUtf8() + "\"";
        QVERIFY2(match.captured(2).isEmpty() || response.body.contains(heading), qPrintable(match.captured()));
    }
    QVERIFY(found > 3);
}

EVOX_TEST_MAIN(WebSiteTest, QCoreApplication)
#include "tst_website.moc"
