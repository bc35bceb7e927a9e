#include "server/HttpRequest.h"
#include "server/HttpResponse.h"
#include "support/TestMain.h"

using State = HttpRequest::State;
Q_DECLARE_METATYPE(State)

class HttpRequestTest final : public QObject
{
    Q_OBJECT

private slots:
    void readsARequest();
    void everyPrefixIsIncomplete();
    void states_data();
    void states();
    void sizeOfTheHead();
    void targets_data();
    void targets();
    void escapedNulIsPartOfThePath();
    void firstArgumentOfANameCounts();
    void answers();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

HttpRequest get(const QByteArray &target)
{
    return HttpRequest::parse("GET " + target + " HTTP/1.0\r\n\r\n");
}

} // namespace

void HttpRequestTest::readsARequest()
{
    const HttpRequest request = HttpRequest::parse("HEAD /registrant/searchDataIar/?callsign=YH0GW HTTP/1.1\r\n"
                                                   "Host: localhost:8088\r\nUser-Agent: Mozilla/5.0\r\n\r\nbody");
    QCOMPARE(request.state, State::Complete);
    QCOMPARE(request.method, QByteArray("HEAD"));
    QCOMPARE(request.path, q("/registrant/searchDataIar/"));
    QCOMPARE(request.arguments.size(), 1);
    QCOMPARE(request.arguments.value(q("callsign")), q("YH0GW"));
}

void HttpRequestTest::everyPrefixIsIncomplete()
{
    const QByteArray whole = "GET /update/ HTTP/1.1\r\nHost: a\r\nX-Empty:\r\n\r\n";
    for (int size = 0; size < whole.size(); ++size)
        QVERIFY2(HttpRequest::parse(whole.left(size)).state == State::Incomplete, whole.left(size).constData());
    QCOMPARE(HttpRequest::parse(whole).state, State::Complete);
}

void HttpRequestTest::states_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<State>("state");
    const auto row = [](const char *name, const QByteArray &bytes, State state) {
        QTest::newRow(name) << bytes << state;
    };
    row("line ends without carriage return", "GET / HTTP/1.0\n\n", State::Complete);
    row("HTTP/1.1 without a host", "GET / HTTP/1.1\r\n\r\n", State::Malformed);
    row("two hosts", "GET / HTTP/1.1\r\nHost: a\r\nhost: b\r\n\r\n", State::Malformed);
    row("empty first line", "\r\n", State::Malformed);
    row("one word", "GET\r\n\r\n", State::Malformed);
    row("two words", "GET /\r\n\r\n", State::Malformed);
    row("four words", "GET / x HTTP/1.0\r\n\r\n", State::Malformed);
    row("two blanks", "GET  / HTTP/1.0\r\n\r\n", State::Malformed);
    row("method in small letters", "get / HTTP/1.0\r\n\r\n", State::Malformed);
    row("other method", "BREW / HTTP/1.0\r\n\r\n", State::Complete);
    row("endless method", QByteArray(21, 'X') + " / HTTP/1.0\r\n\r\n", State::Malformed);
    row("HTTP/2.0", "GET / HTTP/2.0\r\n\r\n", State::Malformed);
    row("HTTP/1.10", "GET / HTTP/1.10\r\n\r\n", State::Malformed);
    row("no path", "GET update HTTP/1.0\r\n\r\n", State::Malformed);
    row("asterisk", "OPTIONS * HTTP/1.0\r\n\r\n", State::Malformed);
    row("NUL in the path", QByteArray("GET /\0 HTTP/1.0\r\n\r\n", 19), State::Malformed);
    row("percent without digits", "GET /%zz HTTP/1.0\r\n\r\n", State::Malformed);
    row("percent at the end", "GET /?a=%4 HTTP/1.0\r\n\r\n", State::Malformed);
    row("byte above ASCII in the path", "GET /\xc3\xa9 HTTP/1.0\r\n\r\n", State::Malformed);
    row("field without a colon", "GET / HTTP/1.0\r\nHost\r\n\r\n", State::Malformed);
    row("field without a name", "GET / HTTP/1.0\r\n: a\r\n\r\n", State::Malformed);
    row("blank before the colon", "GET / HTTP/1.0\r\nHost : a\r\n\r\n", State::Malformed);
    row("folded field", "GET / HTTP/1.0\r\nHost: a\r\n b: c\r\n\r\n", State::Malformed);
    row("NUL in a field", QByteArray("GET / HTTP/1.0\r\nA: \0\r\n\r\n", 24), State::Malformed);
    row("carriage return in a field", "GET / HTTP/1.0\r\nA: b\rc\r\n\r\n", State::Malformed);
    row("bytes above ASCII in a field", "GET / HTTP/1.0\r\nA: \xff\xfe\r\n\r\n", State::Complete);
    row("a handshake of another protocol", QByteArray("\x16\x03\x01\x02\n\n", 6), State::Malformed);
}

void HttpRequestTest::states()
{
    QFETCH(QByteArray, bytes);
    const HttpRequest request = HttpRequest::parse(bytes);
    QTEST(request.state, "state");
    if (request.state != State::Complete)
        QVERIFY(request.method.isEmpty() && request.path.isEmpty() && request.arguments.isEmpty());
}

void HttpRequestTest::sizeOfTheHead()
{
    const QByteArray begin = "GET / HTTP/1.0\r\nA: ";
    const QByteArray end = "\r\n\r\n";
    const auto head = [&](int size) { return begin + QByteArray(size - begin.size() - end.size(), 'x') + end; };
    QCOMPARE(HttpRequest::parse(head(HttpRequest::kLargestHead)).state, State::Complete);
    QCOMPARE(HttpRequest::parse(head(HttpRequest::kLargestHead) + "body").state, State::Complete);
    QCOMPARE(HttpRequest::parse(head(HttpRequest::kLargestHead + 1)).state, State::TooLarge);
    QCOMPARE(HttpRequest::parse(QByteArray(HttpRequest::kLargestHead, 'x')).state, State::Incomplete);
    QCOMPARE(HttpRequest::parse(QByteArray(HttpRequest::kLargestHead + 1, 'x')).state, State::TooLarge);
}

void HttpRequestTest::targets_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("callsign");
    const auto row = [](const char *name, const char *target, const char *path, const char *callsign = "") {
        QTest::newRow(name) << QByteArray(target) << q(path) << q(callsign);
    };
    row("path alone", "/update/", "/update/");
    row("empty query", "/a?", "/a");
    row("argument", "/a?callsign=YH0GW", "/a", "YH0GW");
    row("second argument", "/a?x=1&callsign=YH0GW", "/a", "YH0GW");
    row("argument without a value", "/a?callsign", "/a");
    row("equals sign in a value", "/a?callsign=a=b", "/a", "a=b");
    row("plus and percent", "/a%20b?callsign=+YH%30GW%2B", "/a b", " YH0GW+");
    row("question mark in a value", "/a?callsign=?", "/a", "?");
    row("bytes that are no UTF-8", "/%ff", "/\xef\xbf\xbd");
    row("whole address", "http://localhost:8088/a?callsign=YH0GW", "/a", "YH0GW");
    row("whole address without a path", "HTTP://localhost", "/");
}

void HttpRequestTest::targets()
{
    QFETCH(QByteArray, target);
    const HttpRequest request = get(target);
    QCOMPARE(request.state, State::Complete);
    QTEST(request.path, "path");
    QTEST(request.arguments.value(q("callsign")), "callsign");
}

void HttpRequestTest::escapedNulIsPartOfThePath()
{
    QCOMPARE(get("/a%00b").path, q("/a") + QChar(QChar::Null) + q("b"));
}

void HttpRequestTest::firstArgumentOfANameCounts()
{
    QCOMPARE(get("/?a=1&&=x&a=2").arguments, (QHash<QString, QString>{{q("a"), q("1")}}));
}

void HttpRequestTest::answers()
{
    HttpResponse response;
    response.contentType = "text/html";
    response.body = "hello";
    const QByteArray whole = response.bytes(true);
    QVERIFY(whole.startsWith("HTTP/1.1 200 OK\r\n"));
    QVERIFY(whole.contains("\r\nContent-Type: text/html\r\n"));
    QVERIFY(whole.contains("\r\nContent-Length: 5\r\n"));
    QVERIFY(whole.contains("\r\nConnection: close\r\n"));
    QVERIFY(whole.endsWith("\r\n\r\nhello"));
    QVERIFY2(response.bytes(false) + "hello" == whole, "the length is that of the body that is left out");
    QVERIFY(HttpResponse::plain(405).bytes(true).contains("\r\nAllow: GET, HEAD\r\n"));
    QCOMPARE(HttpResponse::plain(404).body, QByteArray("404 Not Found\n"));
}

EVOX_TEST_MAIN(HttpRequestTest, QCoreApplication)
#include "tst_httprequest.moc"
