#include "app/Config.h"
#include "app/Endpoints.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"

class EndpointsTest final : public QObject
{
    Q_OBJECT

private slots:
    void registryOfTheConfiguration_data();
    void registryOfTheConfiguration();
    void theOthersStay();
};

void EndpointsTest::registryOfTheConfiguration_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<QString>("registry");
    const QString builtIn = Endpoints::builtIn().registryUrl;
    const auto row = [](const char *name, const char *stored, const QString &registry) {
        QTest::newRow(name) << QJsonValue(QString::fromLatin1(stored)) << registry;
    };
    row("https", "https://registry.example", QStringLiteral("https://registry.example"));
    row("http with a port", "http://127.0.0.1:8088", QStringLiteral("http://127.0.0.1:8088"));
    row("trailing slash", "http://registry.example/", QStringLiteral("http://registry.example"));
    row("a folder", "https://registry.example/mirror//", QStringLiteral("https://registry.example/mirror"));
    row("a query", "https://registry.example/?x=1", builtIn);
    row("a fragment", "https://registry.example#f", builtIn);
    row("a file", "file:///etc/passwd", builtIn);
    row("a script", "javascript:alert(1)", builtIn);
    row("no scheme", "registry.example", builtIn);
    row("no host", "http://", builtIn);
    row("blanks", "http://a b", builtIn);
    row("empty", "", builtIn);
    QTest::newRow("no text") << QJsonValue(42) << builtIn;
    QTest::newRow("none") << QJsonValue(QJsonValue::Undefined) << builtIn;
}

void EndpointsTest::registryOfTheConfiguration()
{
    QFETCH(QJsonValue, stored);
    const TestConfig config({{QStringLiteral("registry_url"), stored}});
    QTEST(Endpoints::configured(Config::instance()).registryUrl, "registry");
}

void EndpointsTest::theOthersStay()
{
    const TestConfig config({{QStringLiteral("registry_url"), QStringLiteral("https://registry.example")}});
    const Endpoints endpoints = Endpoints::configured(Config::instance());
    QCOMPARE(endpoints.serverHost, Endpoints::builtIn().serverHost);
    QCOMPARE(endpoints.webUrl, Endpoints::builtIn().webUrl);
    QCOMPARE(endpoints.mailDomain, Endpoints::builtIn().mailDomain);
}

EVOX_TEST_MAIN(EndpointsTest, QCoreApplication)
#include "tst_endpoints.moc"
