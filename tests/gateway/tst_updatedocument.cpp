#include "gateway/UpdateDocument.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString kWeb = QStringLiteral("https://sinar.example");

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

} // namespace

class UpdateDocumentTest final : public QObject
{
    Q_OBJECT

private slots:
    void readsEveryKey();
    void unreadableDocumentsAreEmpty_data();
    void unreadableDocumentsAreEmpty();
    void wrongTypesReadAsNothing();
    void textsAreBounded();
    void textsAreOneLine();
    void newer_data();
    void newer();
    void changeText_data();
    void changeText();
    void downloadByProcessor_data();
    void downloadByProcessor();
    void downloadStaysUnderTheSite_data();
    void downloadStaysUnderTheSite();
    void downloadStaysUnderASiteInAFolder();
};

void UpdateDocumentTest::readsEveryKey()
{
    const UpdateDocument document = UpdateDocument::read(R"({"version": "4.1.0", "build_date": "20261101",
        "changelog": ["Satu", "Dua"], "download_url_x64": "/a/x64.exe", "download_url_x86": "/a/x86.exe", "more": 1})");
    QCOMPARE(document.version, q("4.1.0"));
    QCOMPARE(document.buildDate, q("20261101"));
    QCOMPARE(document.changelog, QStringList({q("Satu"), q("Dua")}));
    QCOMPARE(document.pathX64, q("/a/x64.exe"));
    QCOMPARE(document.pathX86, q("/a/x86.exe"));
}

void UpdateDocumentTest::unreadableDocumentsAreEmpty_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a page") << QByteArray("<html>4.9.9</html>");
    QTest::newRow("an array") << QByteArray(R"([{"version": "4.9.9"}])");
    QTest::newRow("a text") << QByteArray(R"("4.9.9")");
    QTest::newRow("an empty object") << QByteArray("{}");
    QTest::newRow("cut off") << QByteArray(R"({"version": "4.9.9", "build_date)");
    QTest::newRow("two documents") << QByteArray(R"({"version": "4.9.9"}{"version": "4.9.9"})");
    QTest::newRow("no text encoding") << QByteArray("{\"version\": \"4.9.9\xff\"}");
    QTest::newRow("too deep") << QByteArray("{\"version\": \"4.9.9\", \"x\": ") + QByteArray(20000, '[');
    QTest::newRow("too long") << R"({"version": "4.9.9", "x": ")" + QByteArray(UpdateDocument::kLargest, 'x') + "\"}";
}

void UpdateDocumentTest::unreadableDocumentsAreEmpty()
{
    QFETCH(QByteArray, body);
    const UpdateDocument document = UpdateDocument::read(body);
    QCOMPARE(document.version, QString());
    QVERIFY(document.changelog.isEmpty());
    QVERIFY(!document.isNewerThan(q("4.0.2")));
    QCOMPARE(document.downloadAddress(kWeb, q("x86_64")), QUrl(kWeb));
}

void UpdateDocumentTest::wrongTypesReadAsNothing()
{
    const UpdateDocument document = UpdateDocument::read(R"({"version": 5, "build_date": [], "changelog": "Satu",
        "download_url_x64": {"a": 1}, "download_url_x86": true})");
    QCOMPARE(document.version, QString());
    QCOMPARE(document.buildDate, QString());
    QCOMPARE(document.changelog, QStringList());
    QCOMPARE(document.pathX64, QString());
    QCOMPARE(document.pathX86, QString());
}

void UpdateDocumentTest::textsAreBounded()
{
    QJsonArray changes;
    for (int i = 0; i < UpdateDocument::kMostChanges + 1; ++i)
        changes.append(QString::number(i));
    changes.replace(0, QString(UpdateDocument::kLongestChange + 1, QLatin1Char('c')));
    const UpdateDocument document = UpdateDocument::read(
        json({{q("version"), q("9.") + QString(UpdateDocument::kLongestVersion, QLatin1Char('1'))},
              {q("build_date"), QString(UpdateDocument::kLongestBuild + 1, QLatin1Char('2'))},
              {q("changelog"), changes},
              {q("download_url_x64"), QString(UpdateDocument::kLongestPath + 1, QLatin1Char('/'))}}));
    QCOMPARE(document.version, QString());
    QCOMPARE(document.buildDate.size(), UpdateDocument::kLongestBuild);
    QCOMPARE(document.changelog.size(), UpdateDocument::kMostChanges);
    QCOMPARE(document.changelog.first().size(), UpdateDocument::kLongestChange);
    QCOMPARE(document.pathX64, QString());
}

void UpdateDocumentTest::textsAreOneLine()
{
    const UpdateDocument document = UpdateDocument::read(R"({"version": "4.1\n.0", "build_date": "2026\u0000",
        "changelog": ["a\r\nb\tc", "\u202egnp.exe", "\u2028", "<b>"]})");
    QCOMPARE(document.version, q("4.1 .0"));
    QCOMPARE(document.buildDate, q("2026 "));
    QCOMPARE(document.changelog, QStringList({q("a  b c"), q(" gnp.exe"), q(" "), q("<b>")}));
}

void UpdateDocumentTest::newer_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("newer");
    QTest::newRow("the same") << q("4.0.2") << false;
    QTest::newRow("older") << q("4.0.1") << false;
    QTest::newRow("newer") << q("4.0.3") << true;
    QTest::newRow("an extra part") << q("4.0.2.1") << true;
    QTest::newRow("an extra part of 0") << q("4.0.2.0") << false;
    QTest::newRow("begins with a letter") << q("v5.0.0") << false;
    QTest::newRow("missing") << QString() << false;
    QTest::newRow("a word") << q("latest") << false;
}

void UpdateDocumentTest::newer()
{
    QFETCH(QString, version);
    QTEST(UpdateDocument::read(json({{q("version"), version}})).isNewerThan(q("4.0.2")), "newer");
}

void UpdateDocumentTest::changeText_data()
{
    QTest::addColumn<QJsonArray>("changelog");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QJsonArray() << QString();
    QTest::newRow("two") << QJsonArray{q("Satu"), q("Dua")} << q("\uFFFD Satu\n\uFFFD Dua\n");
    QTest::newRow("an empty one") << QJsonArray{q("Satu"), QString()} << q("\uFFFD Satu\n\uFFFD \n");
    QTest::newRow("one that is no text") << QJsonArray{7, q("Dua")} << q("\uFFFD \n\uFFFD Dua\n");
    QTest::newRow("a place marker") << QJsonArray{q("%1 %2")} << q("\uFFFD %1 %2\n");
}

void UpdateDocumentTest::changeText()
{
    QFETCH(QJsonArray, changelog);
    QTEST(UpdateDocument::read(json({{q("changelog"), changelog}})).changeText(), "text");
}

void UpdateDocumentTest::downloadByProcessor_data()
{
    QTest::addColumn<QString>("architecture");
    QTest::addColumn<QString>("address");
    QTest::newRow("x86_64") << q("x86_64") << q("https://sinar.example/get/x64.exe");
    QTest::newRow("arm64") << q("arm64") << q("https://sinar.example/get/x64.exe");
    QTest::newRow("i386") << q("i386") << q("https://sinar.example/get/x86.exe");
    QTest::newRow("arm") << q("arm") << q("https://sinar.example/get/x86.exe");
    QTest::newRow("unknown") << QString() << q("https://sinar.example/get/x86.exe");
}

void UpdateDocumentTest::downloadByProcessor()
{
    QFETCH(QString, architecture);
    const UpdateDocument document = UpdateDocument::read(
        json({{q("download_url_x64"), q("/get/x64.exe")}, {q("download_url_x86"), q("/get/x86.exe")}}));
    QTEST(document.downloadAddress(kWeb, architecture).toString(), "address");
}

void UpdateDocumentTest::downloadStaysUnderTheSite_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("address");
    const auto row = [](const char *name, const QString &path, const char *address = "https://sinar.example") {
        QTest::newRow(name) << path << q(address);
    };
    row("a file", q("/get/x64.exe"), "https://sinar.example/get/x64.exe");
    row("the top", q("/"), "https://sinar.example/");
    row("a query", q("/get?file=x64&from=gateway"), "https://sinar.example/get?file=x64&from=gateway");
    row("dots within a name", q("/get/v4..1/x64...exe"), "https://sinar.example/get/v4..1/x64...exe");
    row("an address within the query", q("/get?next=https://evil.example/"),
        "https://sinar.example/get?next=https://evil.example/");
    row("a place marker", q("/get/%1"), "https://sinar.example/get/%251");
    row("missing", QString());
    row("another address", q("https://evil.example/x64.exe"));
    row("another scheme", q("javascript:alert(1)"));
    row("a host after a user", q("@evil.example/x64.exe"));
    row("a host after a password", q(":pass@evil.example/x64.exe"));
    row("another host", q("//evil.example/x64.exe"));
    row("a longer host name", q(".evil.example/x64.exe"));
    row("a longer host name without a dot", q("evil/x64.exe"));
    row("a port", q(":8080/x64.exe"));
    row("a query at once", q("?x64.exe"));
    row("a fragment at once", q("#x64.exe"));
    row("backslashes", q("\\\\evil.example\\x64.exe"));
    row("a slash and a backslash", q("/\\evil.example/x64.exe"));
    row("a backslash further on", q("/get\\..\\x64.exe"));
    row("an encoded backslash", q("/get/%5c%5Cevil.example"));
    row("up", q("/../x64.exe"));
    row("up from a folder", q("/get/../../x64.exe"));
    row("up at the end", q("/get/.."));
    row("up, encoded", q("/get/%2e%2E/x64.exe"));
    row("up, with an encoded slash", q("/get/..%2fx64.exe"));
    row("a line end", q("/get/x64.exe\r\nHost: evil.example"));
    row("a tabulator", q("/\t/evil.example"));
    row("a NUL", QString(QLatin1Char('/')) + QChar(QChar::Null) + q("x64.exe"));
    row("text that turns round", q("/get/\u202Eexe.46x"));
    row("a blank in front", q(" /get/x64.exe"));
}

void UpdateDocumentTest::downloadStaysUnderTheSite()
{
    QFETCH(QString, path);
    QFETCH(QString, address);
    const UpdateDocument document = UpdateDocument::read(json({{q("download_url_x64"), path}}));
    QCOMPARE(document.downloadAddress(kWeb, q("x86_64")).toString(QUrl::FullyEncoded), address);
}

void UpdateDocumentTest::downloadStaysUnderASiteInAFolder()
{
    const QString web = q("http://club.example:8088/sinar");
    const auto addressOf = [&web](const char *path) {
        return UpdateDocument::read(json({{q("download_url_x86"), q(path)}}))
            .downloadAddress(web, q("i386"))
            .toString();
    };
    QCOMPARE(addressOf("/x86.exe"), q("http://club.example:8088/sinar/x86.exe"));
    QCOMPARE(addressOf("/../x86.exe"), web);
    QCOMPARE(addressOf("-evil/x86.exe"), web);
}

EVOX_TEST_MAIN(UpdateDocumentTest, QCoreApplication)
#include "tst_updatedocument.moc"
