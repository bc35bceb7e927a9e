#include "WidgetChecks.h"
#include "support/FakeRegistry.h"
#include "support/Screenshots.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/UpdateCheck.h"
#include "ui/WidgetPrompts.h"

#include <QApplication>
#include <QImage>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSysInfo>
#include <QTemporaryFile>
#include <QTimer>

#include <memory>

namespace {

const char *const kNewer = R"({"version": "4.0.3", "build_date": "20260701", "changelog": ["Satu", "Dua"],
    "download_url_x64": "/get/x64.exe", "download_url_x86": "/get/x86.exe"})";

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

/// The web site answers every path with the page that the test gives it.
class UpdateCheckTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void asksForTheDocument();
    void nothingNewer_data();
    void nothingNewer();
    void offersANewerVersion();
    void anExtraPartIsNewer();
    void opensTheDownload_data();
    void opensTheDownload();
    void showsTheSitesTextsLiterally();
    void failures_data();
    void failures();
    void nobodyIsThere();
    void theAnswerBreaksOff();
    void theSiteKeepsSilent();
    void aDocumentWithoutEndIsNotRead();
    void followsARedirection();
    void oneCheckAtATime();
    void oneNetworkManagerIsKept();
    void opensWebAddressesOnly();
    void mayGoWhileItWaits();
    void mayGoUnderItsBox_data();
    void mayGoUnderItsBox();
    void offersInARealBox_data();
    void offersInARealBox();

private:
    void publish(const QByteArray &document) { m_site->list(QString(), document); }
    /// Checks once and waits for the end.
    void check();
    void expectError(const QString &reason) const;

    std::unique_ptr<FakeRegistry> m_site;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<UpdateCheck> m_check;
    QList<QUrl> m_opened;
};

void UpdateCheckTest::init()
{
    m_site = std::make_unique<FakeRegistry>();
    m_prompts = std::make_unique<ScriptedPrompts>();
    m_opened.clear();
    m_check = std::make_unique<UpdateCheck>(m_site->url(), *m_prompts,
                                            [this](const QUrl &address) { m_opened.append(address); });
}

void UpdateCheckTest::cleanup()
{
    m_check.reset();
    m_prompts.reset();
    m_site.reset();
}

void UpdateCheckTest::check()
{
    m_check->check();
    QVERIFY(m_check->isRunning());
    QVERIFY2(m_prompts->seen().isEmpty(), "nothing is shown while the request runs");
    QTRY_VERIFY(!m_check->isRunning());
}

void UpdateCheckTest::expectError(const QString &reason) const
{
    QCOMPARE(m_prompts->seen().size(), 1);
    const Prompt prompt = m_prompts->seen().first();
    QCOMPARE(prompt.kind, Prompt::Kind::Warning);
    QCOMPARE(prompt.title, q("Update Error"));
    QVERIFY2(prompt.text.startsWith(q("Gagal memeriksa update.\n")), qPrintable(prompt.text));
    QVERIFY2(prompt.text.size() > q("Gagal memeriksa update.\n").size() && prompt.text.size() < 1000,
             qPrintable(prompt.text));
    QVERIFY2(prompt.text.contains(reason), qPrintable(prompt.text));
    QVERIFY(m_opened.isEmpty());
}

void UpdateCheckTest::asksForTheDocument()
{
    publish(kNewer);
    m_prompts->cancel();
    QVERIFY(!m_check->isRunning());
    QCOMPARE(m_site->requestCount(), 0);
    check();
    QCOMPARE(m_site->requestCount(), 1);
    QVERIFY2(m_site->request(0).startsWith("GET /update/ HTTP/1.1\r\n"), m_site->request(0).constData());
}

void UpdateCheckTest::nothingNewer_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("the same") << QByteArray(R"({"version": "4.0.2"})");
    QTest::newRow("the same with a part of 0") << QByteArray(R"({"version": "4.0.2.0"})");
    QTest::newRow("older") << QByteArray(R"({"version": "4.0.1", "changelog": ["Satu"]})");
    QTest::newRow("begins with a letter") << QByteArray(R"({"version": "v9.0.0"})");
    QTest::newRow("without a version") << QByteArray(R"({"changelog": ["Satu"]})");
    QTest::newRow("broken") << QByteArray(R"({"version": "9.0.0")");
    QTest::newRow("a page") << QByteArray("<html><body>4.0.3</body></html>");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("binary") << QByteArray("\x00\xff\xfe{}", 5);
}

void UpdateCheckTest::nothingNewer()
{
    QFETCH(QByteArray, document);
    publish(document);
    m_prompts->accept();
    check();
    QCOMPARE(m_prompts->seen().size(), 1);
    const Prompt prompt = m_prompts->seen().first();
    QCOMPARE(prompt.kind, Prompt::Kind::Information);
    QCOMPARE(prompt.title, q("Up to Date"));
    QCOMPARE(prompt.text, q("Anda sudah menggunakan versi terbaru!\n\nVersi: 4.0.2\nBuild: 20260530"));
    QVERIFY(m_opened.isEmpty());
}

void UpdateCheckTest::offersANewerVersion()
{
    publish(kNewer);
    m_prompts->cancel();
    check();
    QCOMPARE(m_prompts->seen().size(), 1);
    const Prompt prompt = m_prompts->seen().first();
    QCOMPARE(prompt.kind, Prompt::Kind::Proposal);
    QCOMPARE(prompt.title, q("Update Tersedia!"));
    QCOMPARE(prompt.text, q("<h3>e-VOX SINAR v4.0.3 tersedia!</h3>"));
    QCOMPARE(prompt.informativeText, q("<b>Build:</b> 20260701\n\n<b>Perubahan:</b>\n\uFFFD Satu\n\uFFFD Dua\n"
                                       "\n\nDownload update sekarang?"));
    QCOMPARE(prompt.acceptLabel, q("Download"));
    QCOMPARE(prompt.rejectLabel, q("Nanti"));
    QVERIFY2(m_opened.isEmpty(), "later is not now");
}

void UpdateCheckTest::anExtraPartIsNewer()
{
    publish(R"({"version": "4.0.2.1"})");
    m_prompts->cancel();
    check();
    QCOMPARE(m_prompts->seen().first().text, q("<h3>e-VOX SINAR v4.0.2.1 tersedia!</h3>"));
    QCOMPARE(m_prompts->seen().first().informativeText,
             q("<b>Build:</b> \n\n<b>Perubahan:</b>\n\n\nDownload update sekarang?"));
}

void UpdateCheckTest::opensTheDownload_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("path");
    const bool is64 = QSysInfo::currentCpuArchitecture().contains(q("64"));
    QTest::newRow("of this processor") << QByteArray(kNewer) << (is64 ? q("/get/x64.exe") : q("/get/x86.exe"));
    QTest::newRow("without a path") << QByteArray(R"({"version": "4.0.3"})") << QString();
    QTest::newRow("another host") << QByteArray(R"({"version": "4.0.3", "download_url_x64": "@evil.example/",
        "download_url_x86": "@evil.example/"})")
                                  << QString();
}

void UpdateCheckTest::opensTheDownload()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, path);
    publish(document);
    m_prompts->accept();
    check();
    QCOMPARE(m_opened, QList<QUrl>{QUrl(m_site->url() + path)});
}

void UpdateCheckTest::showsTheSitesTextsLiterally()
{
    m_prompts->cancel();
    publish(R"({"version": "5.1<img src=x>%2", "build_date": "%2<b>", "changelog": ["</div>&amp;%1", "a\nb"]})");
    check();
    QCOMPARE(m_prompts->seen().first().text, q("<h3>e-VOX SINAR v5.1&lt;img src=x&gt;%2 tersedia!</h3>"));
    QCOMPARE(m_prompts->seen().first().informativeText,
             q("<b>Build:</b> %2&lt;b&gt;\n\n<b>Perubahan:</b>\n\uFFFD &lt;/div&gt;&amp;amp;%1\n\uFFFD a b\n"
               "\n\nDownload update sekarang?"));
}

void UpdateCheckTest::failures_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QString>("reason");
    QTest::newRow("not found") << QByteArray("404 Not Found") << q("Not Found");
    QTest::newRow("forbidden") << QByteArray("403 Forbidden") << q("Forbidden");
    QTest::newRow("server error") << QByteArray("500 Internal Server Error") << q("Internal Server Error");
    QTest::newRow("out of service") << QByteArray("503 Busy") << q("Busy");
    QTest::newRow("endless reason") << "500 " + QByteArray(4000, 'x') << q("xxx");
}

void UpdateCheckTest::failures()
{
    QFETCH(QByteArray, status);
    QFETCH(QString, reason);
    publish(kNewer);
    m_site->setStatus(status);
    m_prompts->accept();
    check();
    expectError(reason);
}

void UpdateCheckTest::nobodyIsThere()
{
    m_site->close();
    m_prompts->accept();
    check();
    expectError(q("refused"));
}

void UpdateCheckTest::theAnswerBreaksOff()
{
    publish(kNewer);
    m_site->hold(true);
    m_prompts->accept();
    m_check->check();
    QTRY_COMPARE(m_site->requestCount(), 1);
    m_site->cutOff();
    QTRY_VERIFY(!m_check->isRunning());
    expectError(q("closed"));
}

void UpdateCheckTest::theSiteKeepsSilent()
{
    publish(kNewer);
    m_site->hold(true);
    m_prompts->accept();
    m_check->setPatience(std::chrono::milliseconds(50));
    check();
    expectError(QString());
    m_prompts->cancel();
    m_check->setPatience(std::chrono::milliseconds(30000));
    m_site->hold(false);
    m_check->check();
    QTRY_VERIFY(!m_check->isRunning());
    QCOMPARE(m_prompts->seen().last().title, q("Update Tersedia!"));
}

void UpdateCheckTest::aDocumentWithoutEndIsNotRead()
{
    publish(R"({"version": "4.0.3", "x": ")" + QByteArray(8 * 1024 * 1024, 'x') + "\"}");
    m_prompts->accept();
    check();
    expectError(QString());
}

void UpdateCheckTest::followsARedirection()
{
    FakeRegistry other;
    other.list(QString(), kNewer);
    m_site->setStatus("302 Found\r\nLocation: " + other.url().toLatin1() + "/elsewhere/");
    m_prompts->accept();
    check();
    QCOMPARE(m_prompts->seen().first().title, q("Update Tersedia!"));
    QCOMPARE(m_opened.size(), 1);
    QVERIFY2(m_opened.first().toString().startsWith(m_site->url() + q("/get/")), "the download is the site's own");
}

void UpdateCheckTest::oneCheckAtATime()
{
    publish(kNewer);
    m_site->hold(true);
    m_check->check();
    m_check->check();
    QTRY_COMPARE(m_site->requestCount(), 1);
    m_prompts->accept([this] { m_check->check(); }); // while its box is open, too
    m_site->hold(false);
    m_site->release();
    QTRY_VERIFY(!m_check->isRunning());
    QCOMPARE(m_site->requestCount(), 1);
    QCOMPARE(m_prompts->seen().size(), 1);

    m_prompts->cancel();
    m_check->check();
    QTRY_VERIFY(!m_check->isRunning());
    QCOMPARE(m_site->requestCount(), 2);
}

void UpdateCheckTest::oneNetworkManagerIsKept()
{
    QVERIFY(m_check->findChildren<QNetworkAccessManager *>().isEmpty());
    publish(kNewer);
    m_prompts->cancel();
    check();
    const auto managers = m_check->findChildren<QNetworkAccessManager *>();
    QCOMPARE(managers.size(), 1);
    m_prompts->cancel();
    m_check->check();
    QTRY_VERIFY(!m_check->isRunning());
    QCOMPARE(m_check->findChildren<QNetworkAccessManager *>(), managers);
    QTRY_VERIFY2(m_check->findChildren<QNetworkReply *>().isEmpty(), "replies are deleted");
}

void UpdateCheckTest::opensWebAddressesOnly()
{
    // A site of another kind that answers all the same.
    QTemporaryFile document;
    QVERIFY(document.open());
    document.write(kNewer);
    document.close();
    UpdateCheck check(QUrl::fromLocalFile(document.fileName()).toString() + QLatin1Char('?'), *m_prompts,
                      [this](const QUrl &address) { m_opened.append(address); });
    m_prompts->accept();
    check.check();
    QTRY_VERIFY(!check.isRunning());
    QCOMPARE(m_prompts->seen().first().title, q("Update Tersedia!"));
    QCOMPARE(m_opened, QList<QUrl>());
}

void UpdateCheckTest::mayGoWhileItWaits()
{
    publish(kNewer);
    m_site->hold(true);
    m_check->check();
    QTRY_COMPARE(m_site->requestCount(), 1);
    m_check.reset();
    m_site->release();
    QVERIFY(m_prompts->seen().isEmpty());
}

void UpdateCheckTest::mayGoUnderItsBox_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("the offer") << QByteArray(kNewer) << QByteArray("200 OK");
    QTest::newRow("up to date") << QByteArray("{}") << QByteArray("200 OK");
    QTest::newRow("an error") << QByteArray("{}") << QByteArray("404 Not Found");
}

void UpdateCheckTest::mayGoUnderItsBox()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, status);
    publish(document);
    m_site->setStatus(status);
    m_prompts->cancel([this] { m_check.reset(); });
    m_check->check();
    QTRY_VERIFY(!m_check);
    QVERIFY(m_opened.isEmpty());
}

void UpdateCheckTest::offersInARealBox_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void UpdateCheckTest::offersInARealBox()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    publish(kNewer);
    WidgetPrompts prompts;
    UpdateCheck check(m_site->url(), prompts, [this](const QUrl &address) { m_opened.append(address); });
    QStringList problems{q("no box")};
    QTimer poll; // the box runs an event loop of its own
    connect(&poll, &QTimer::timeout, this, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        poll.stop();
        problems = WidgetChecks::cutOff(*box);
        if (Screenshots::save(*box, q("update-offer-") + QLatin1String(QTest::currentDataTag())).isNull())
            problems.append(q("no picture"));
        QTest::keyClick(box, Qt::Key_Return);
    });
    poll.start(1);
    check.check();
    QTRY_VERIFY(!check.isRunning());
    QCOMPARE(problems, QStringList());
    QCOMPARE(m_opened.size(), 1);
}

EVOX_TEST_MAIN(UpdateCheckTest, QApplication)
#include "tst_updatecheck.moc"
