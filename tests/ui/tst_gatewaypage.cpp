#include "SetupRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/setup/GatewayPage.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTimer>

namespace {

const char *const kRed = "color: #F44336;";
const char *const kRedBold = "color: #F44336; font-weight: bold;";
const char *const kAmber = "color: #FF9800;";
const char *const kAmberBold = "color: #FF9800; font-weight: bold;";
const char *const kGreen = "color: #4CAF50;";
const char *const kGreenBold = "color: #4CAF50; font-weight: bold;";

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString dateText(int daysFromToday)
{
    return QDate::currentDate().addDays(daysFromToday).toString(q("dd/MM/yyyy"));
}

QByteArray station(const QString &validity, const QString &status = {})
{
    return FakeRegistry::entry(q("KLUB"), q("JL. MERDEKA 1"), validity, status);
}

} // namespace

class GatewayPageTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void checksTheForm_data();
    void checksTheForm();
    void waits800Milliseconds();
    void asksOnlyForTheLastText();
    void asksAsABrowserDoes();
    void tellsThatItChecks();
    void tellsTheVerdict_data();
    void tellsTheVerdict();
    void writesTheAddress();
    void keepsATypedLocationWithoutAnAddress();
    void clearsTheAddressOfAnEarlierCallsign_data();
    void clearsTheAddressOfAnEarlierCallsign();
    void failsWithoutAnAnswer_data();
    void failsWithoutAnAnswer();
    void anAnswerForAnOlderTextChangesNothing();
    void anAnswerAfterThePageIsGoneChangesNothing();
    void everyEditTakesTheVerdictBack();
    void needsAGatewayName();
    void refusesToGoOnUnverified();
    void keepsTheCursor();
    void checksAgainWhenEnteredAgain();
    void longAddressesAreShownWhole();

private:
    void enter();
    void ask(const QByteArray &page, const QString &callsign = q("YH0AB"));
    [[nodiscard]] QString status() const { return m_rig->text("callsignStatusLabel"); }
    [[nodiscard]] QString style(const char *label) const { return m_rig->find<QLabel>(label)->styleSheet(); }
    [[nodiscard]] GatewayPage *page() const { return m_rig->wizard().findChild<GatewayPage *>(); }

    std::unique_ptr<SetupRig> m_rig;
};

void GatewayPageTest::init()
{
    m_rig = std::make_unique<SetupRig>();
}

void GatewayPageTest::cleanup()
{
    m_rig.reset();
}

void GatewayPageTest::enter()
{
    m_rig->open();
    QVERIFY(m_rig->goTo(SetupWizard::Gateway));
}

/// Types a callsign that has this page and waits for its answer.
void GatewayPageTest::ask(const QByteArray &page, const QString &callsign)
{
    m_rig->registry.list(callsign, page);
    enter();
    m_rig->type("gatewayNameEdit", q("Gerbang"));
    m_rig->type("callsignEdit", callsign);
    QTRY_VERIFY(!status().isEmpty() && status() != q("Menunggu...") && status() != q("Memeriksa ke DJID..."));
}

void GatewayPageTest::checksTheForm_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("waits");
    const QString format = q("Format: YH[0-9][A-Z]{2,4}");
    QTest::newRow("three characters") << q("YH1") << q("YH1") << QString() << false;
    QTest::newRow("one letter after the digit") << q("YH1A") << q("YH1A") << format << false;
    QTest::newRow("two letters") << q("YH1AB") << q("YH1AB") << q("Menunggu...") << true;
    QTest::newRow("four letters") << q("YH1ABCD") << q("YH1ABCD") << q("Menunggu...") << true;
    QTest::newRow("five letters") << q("YH1ABCDE") << q("YH1ABCDE") << format << false;
    QTest::newRow("small letters") << q("yh1ab") << q("YH1AB") << q("Menunggu...") << true;
    QTest::newRow("blanks") << q(" yh1ab ") << q("YH1AB") << q("Menunggu...") << true;
    QTest::newRow("a person's") << q("YB1AB") << q("YB1AB") << format << false;
    QTest::newRow("no digit") << q("YHAAB") << q("YHAAB") << format << false;
    QTest::newRow("other digits") << q("YH١AB") << q("YH١AB") << format << false;
    QTest::newRow("more than ten") << q("YH1ABCDEFGHIJ") << q("YH1ABCDEFG") << format << false;
}

void GatewayPageTest::checksTheForm()
{
    QFETCH(QString, typed);
    QFETCH(bool, waits);
    enter();
    auto *timer = m_rig->find<QTimer>("debounceTimer");
    timer->setInterval(60000);
    m_rig->type("callsignEdit", typed);
    QTEST(m_rig->text("callsignEdit"), "callsign");
    QTEST(status(), "status");
    QCOMPARE(timer->isActive(), waits);
    if (!status().isEmpty())
        QCOMPARE(style("callsignStatusLabel"), waits ? q("color: #999;") : q(kRed));
    QVERIFY(!page()->djidVerified());
}

void GatewayPageTest::waits800Milliseconds()
{
    const SetupWizard wizard(m_rig->endpoints, m_rig->prompts);
    const auto *timer = wizard.findChild<QTimer *>(q("debounceTimer"));
    QVERIFY(timer->isSingleShot());
    QCOMPARE(timer->interval(), 800);
}

void GatewayPageTest::asksOnlyForTheLastText()
{
    enter();
    m_rig->find<QTimer>("debounceTimer")->setInterval(20);
    m_rig->type("callsignEdit", q("YH0ABCD")); // three texts of the right form, one after the other
    QTRY_COMPARE(status(), q("Callsign tidak ditemukan di DJID"));
    QCOMPARE(m_rig->registry.callsigns(), QStringList{q("YH0ABCD")});
}

void GatewayPageTest::asksAsABrowserDoes()
{
    ask(station({}));
    QCOMPARE(m_rig->registry.requestCount(), 1);
    const QByteArray request = m_rig->registry.request(0);
    QVERIFY2(request.startsWith("GET /registrant/searchDataIar/?callsign=YH0AB HTTP/1.1\r\n"), request);
    QVERIFY2(request.contains("\r\nUser-Agent: Mozilla/5.0\r\n"), request);
    QVERIFY2(request.contains("\r\nX-Requested-With: XMLHttpRequest\r\n"), request);
    QVERIFY2(request.contains("\r\nAccept-Encoding: identity\r\n"), request); // a packed page may unfold without end
}

void GatewayPageTest::tellsThatItChecks()
{
    m_rig->registry.hold(true);
    enter();
    m_rig->type("callsignEdit", q("YH0AB"));
    QTRY_COMPARE(m_rig->registry.requestCount(), 1);
    QCOMPARE(status(), q("Memeriksa ke DJID..."));
    QCOMPARE(style("callsignStatusLabel"), q(kAmber));
    QCOMPARE(m_rig->text("validityLabel"), q("-"));
    QCOMPARE(style("validityLabel"), QString());
    QVERIFY(!m_rig->next()->isEnabled());
}

void GatewayPageTest::tellsTheVerdict_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("validity");
    QTest::addColumn<QString>("validityStyle");
    QTest::addColumn<bool>("verified");
    QTest::addColumn<QString>("expiry");
    const auto row = [](const char *name, const QByteArray &answer, const QString &status, const char *style,
                        const QString &validity, const char *validityStyle, bool verified, const QString &expiry = {}) {
        QTest::newRow(name) << answer << status << q(style) << validity << q(validityStyle) << verified << expiry;
    };
    const auto iso = [](int days) { return QDate::currentDate().addDays(days).toString(Qt::ISODate); };
    const QString far = q("DESEMBER 2099");
    row("not listed", FakeRegistry::notFound(), q("Callsign tidak ditemukan di DJID"), kRed, q("-"), "", false);
    row("another page", "<html>maintenance</html>", q("Format DJID tidak dikenal"), kRed, q("-"), "", false);
    row("no address", FakeRegistry::entry(q("KLUB"), {}, far), q("Data tidak lengkap di DJID"), kRed, q("-"), "", false,
        q("2099-12-31"));
    row("no validity", station({}, q("EXPIRED")), q("Terverifikasi DJID"), kGreenBold, q("Tidak tersedia"), "", true);
    row("inactive", station(far, q("Tidak Aktif")), q("Callsign TIDAK AKTIF/KADALUARSA: Tidak Aktif"), kRedBold, far,
        kRedBold, false, q("2099-12-31"));
    row("expired yesterday", station(dateText(-1)), q("Callsign EXPIRED sejak ") + dateText(-1), kRedBold, dateText(-1),
        kRedBold, false, iso(-1));
    row("expires today", station(dateText(0)), q("Terverifikasi DJID (berlaku 0 hari lagi)"), kAmberBold, dateText(0),
        kAmberBold, true, iso(0));
    row("in 30 days", station(dateText(30)), q("Terverifikasi DJID (berlaku 30 hari lagi)"), kAmberBold, dateText(30),
        kAmberBold, true, iso(30));
    row("in 31 days", station(dateText(31)), q("Terverifikasi DJID"), kGreen, dateText(31), kGreen, true, iso(31));
    row("without a date", station(q("seumur hidup")), q("Terverifikasi DJID (cek masa berlaku manual)"), kAmber,
        q("seumur hidup"), kAmber, true);
    row("tags are text", station(q("&lt;b&gt; 2099")), q("Terverifikasi DJID (cek masa berlaku manual)"), kAmber,
        q("&lt;b&gt; 2099"), kAmber, true);
}

void GatewayPageTest::tellsTheVerdict()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, verified);
    ask(answer);
    QTEST(status(), "status");
    QTEST(style("callsignStatusLabel"), "style");
    QTEST(m_rig->text("validityLabel"), "validity");
    QTEST(style("validityLabel"), "validityStyle");
    QCOMPARE(page()->djidVerified(), verified);
    QCOMPARE(m_rig->next()->isEnabled(), verified);
    QTEST(page()->permitExpiry(), "expiry");
    QCOMPARE(m_rig->find<QLabel>("callsignStatusLabel")->textFormat(), Qt::PlainText);
    QCOMPARE(m_rig->find<QLabel>("validityLabel")->textFormat(), Qt::PlainText);
}

void GatewayPageTest::writesTheAddress()
{
    enter();
    m_rig->registry.list(q("YH0AC"), FakeRegistry::entry({}, q(" JL.\r\n \"MERDEKA\"\t 1,  <b>BANDUNG</b> "),
                                                         q("MEI 2001"), q("EXPIRED")));
    m_rig->type("locationEdit", q("di bukit"));
    m_rig->type("callsignEdit", q("YH0AC"));
    // Also of a station that may not transmit. Quotes cannot travel to the server.
    QTRY_COMPARE(m_rig->text("locationEdit"), q("JL. 'MERDEKA' 1, BANDUNG"));
}

void GatewayPageTest::keepsATypedLocationWithoutAnAddress()
{
    enter();
    m_rig->registry.list(q("YH0AC"), FakeRegistry::entry({}, q(""), {}, {}));
    m_rig->type("locationEdit", q("di bukit"));
    m_rig->type("callsignEdit", q("YH0AC"));
    QTRY_COMPARE(status(), q("Terverifikasi DJID"));
    QCOMPARE(m_rig->text("locationEdit"), q("di bukit"));
}

void GatewayPageTest::clearsTheAddressOfAnEarlierCallsign_data()
{
    QTest::addColumn<QString>("typed"); // empty: the registry's address is left as it is
    QTest::addColumn<QString>("location");
    QTest::newRow("the registry's") << QString() << QString();
    QTest::newRow("typed over it") << q("di bukit") << q("di bukit");
}

void GatewayPageTest::clearsTheAddressOfAnEarlierCallsign()
{
    QFETCH(QString, typed);
    QFETCH(QString, location);
    enter();
    m_rig->registry.list(q("YH0AC"), FakeRegistry::entry({}, q("JL.  MERDEKA 1"), {}, {}));
    for (const char *callsign : {"YH0AD", "YH0AE"})
        m_rig->registry.list(q(callsign), FakeRegistry::entry({}, q(""), {}, {}));
    m_rig->type("callsignEdit", q("YH0AC"));
    QTRY_COMPARE(m_rig->text("locationEdit"), q("JL. MERDEKA 1"));
    if (!typed.isEmpty())
        m_rig->type("locationEdit", typed);
    for (const char *callsign : {"YH0AD", "YH0AE"}) {
        m_rig->type("callsignEdit", q(callsign));
        QTRY_COMPARE(status(), q("Terverifikasi DJID"));
        QCOMPARE(m_rig->text("locationEdit"), location);
    }
}

void GatewayPageTest::failsWithoutAnAnswer_data()
{
    QTest::addColumn<QByteArray>("httpStatus");
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<bool>("cut");
    QTest::newRow("server error") << QByteArray("500 Internal Server Error") << station({}) << false;
    QTest::newRow("moved away") << QByteArray("404 Not Found") << FakeRegistry::notFound() << false;
    QTest::newRow("cut off") << QByteArray("200 OK") << station(q("MEI 2099")) << true;
    QTest::newRow("a page without end") << QByteArray("200 OK") << station({}).leftJustified(4 * 1024 * 1024, ' ')
                                        << false;
}

void GatewayPageTest::failsWithoutAnAnswer()
{
    QFETCH(QByteArray, httpStatus);
    QFETCH(QByteArray, page);
    QFETCH(bool, cut);
    m_rig->registry.setStatus(httpStatus);
    m_rig->registry.list(q("YH0AB"), page);
    m_rig->registry.hold(cut);
    enter();
    m_rig->type("callsignEdit", q("YH0AB"));
    if (cut) {
        QTRY_COMPARE(m_rig->registry.requestCount(), 1);
        m_rig->registry.cutOff();
    }
    QTRY_COMPARE(status(), q("Gagal verifikasi DJID"));
    QCOMPARE(style("callsignStatusLabel"), q(kRed));
    QVERIFY(!this->page()->djidVerified());
}

void GatewayPageTest::anAnswerForAnOlderTextChangesNothing()
{
    m_rig->registry.hold(true);
    enter();
    m_rig->type("gatewayNameEdit", q("Gerbang"));
    m_rig->type("callsignEdit", q("YH0AB"));
    QTRY_COMPARE(m_rig->registry.requestCount(), 1);
    QTest::keyClick(m_rig->find<QWidget>("callsignEdit"), Qt::Key_Backspace);
    QCOMPARE(status(), q("Format: YH[0-9][A-Z]{2,4}"));
    m_rig->registry.release();
    // The next question is answered after the old one was.
    QTest::keyClick(m_rig->find<QWidget>("callsignEdit"), Qt::Key_C);
    QTRY_COMPARE(m_rig->registry.requestCount(), 2);
    QCOMPARE(status(), q("Memeriksa ke DJID..."));
    QVERIFY(!page()->djidVerified());
    QCOMPARE(m_rig->text("locationEdit"), QString());
    m_rig->registry.release();
    QTRY_COMPARE(status(), q("Callsign tidak ditemukan di DJID"));
}

void GatewayPageTest::anAnswerAfterThePageIsGoneChangesNothing()
{
    const LogCapture log;
    m_rig->registry.hold(true);
    enter();
    m_rig->type("callsignEdit", q("YH0AB"));
    QTRY_COMPARE(m_rig->registry.requestCount(), 1);
    m_rig->close();
    m_rig->registry.release();
    enter();
    m_rig->type("callsignEdit", q("YH0AB"));
    QTRY_COMPARE(m_rig->registry.requestCount(), 2);
    QVERIFY(!page()->djidVerified());
}

void GatewayPageTest::everyEditTakesTheVerdictBack()
{
    ask(station(q("MEI 2099")));
    QVERIFY(m_rig->next()->isEnabled());
    QCOMPARE(page()->permitExpiry(), q("2099-05-31"));
    const QSignalSpy complete(page(), &QWizardPage::completeChanged);
    QTest::keyClick(m_rig->find<QWidget>("callsignEdit"), Qt::Key_D);
    QCOMPARE(complete.count(), 1);
    QVERIFY(!page()->djidVerified());
    QVERIFY(!m_rig->next()->isEnabled());
    QCOMPARE(page()->permitExpiry(), QString());
}

void GatewayPageTest::needsAGatewayName()
{
    ask(station(q("MEI 2099")));
    QVERIFY(m_rig->next()->isEnabled());
    m_rig->type("gatewayNameEdit", QString());
    QVERIFY(!m_rig->next()->isEnabled());
    m_rig->type("gatewayNameEdit", q("   "));
    QVERIFY(!m_rig->next()->isEnabled());
    m_rig->type("gatewayNameEdit", q("G"));
    QVERIFY(m_rig->next()->isEnabled());
}

void GatewayPageTest::refusesToGoOnUnverified()
{
    enter();
    m_rig->prompts.accept();
    QVERIFY(!page()->validatePage());
    QCOMPARE(m_rig->prompts.seen().size(), 1);
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Validasi"));
    QCOMPARE(m_rig->prompts.seen().first().text, q("Callsign harus terverifikasi DJID!"));
}

void GatewayPageTest::keepsTheCursor()
{
    enter();
    auto *edit = m_rig->find<QLineEdit>("callsignEdit");
    m_rig->type("callsignEdit", q("YH0B"));
    edit->setCursorPosition(3);
    QTest::keyClicks(edit, q("xa"));
    QCOMPARE(edit->text(), q("YH0XAB"));
    QCOMPARE(edit->cursorPosition(), 5);
}

void GatewayPageTest::checksAgainWhenEnteredAgain()
{
    m_rig->registry.setStatus("503 Busy");
    enter();
    m_rig->type("gatewayNameEdit", q("Gerbang"));
    m_rig->type("callsignEdit", q("YH0AB"));
    QTRY_COMPARE(status(), q("Gagal verifikasi DJID"));
    m_rig->registry.setStatus("200 OK");
    m_rig->wizard().back();
    m_rig->wizard().next();
    QTRY_COMPARE(status(), q("Terverifikasi DJID"));
    QVERIFY(m_rig->next()->isEnabled());
    // A verified one is not asked for again.
    m_rig->wizard().back();
    m_rig->wizard().next();
    QVERIFY(m_rig->next()->isEnabled());
    QCOMPARE(m_rig->registry.requestCount(), 2);
}

void GatewayPageTest::longAddressesAreShownWhole()
{
    const QString address = q("JALAN RAYA KEBAYORAN LAMA NOMOR 123 RT 004 RW 005 KELURAHAN SUKABUMI SELATAN KECAMATAN "
                              "KEBON JERUK KOTA JAKARTA BARAT");
    ask(FakeRegistry::entry(q("KLUB"), address, {}, {}));
    auto *edit = m_rig->find<QPlainTextEdit>("locationEdit");
    QCOMPARE(edit->toPlainText(), address);
    QVERIFY(edit->document()->documentLayout()->documentSize().height() >= 2); // in lines: wrapped
    QVERIFY(edit->viewport()->height() >= 2 * edit->fontMetrics().lineSpacing());
}

EVOX_TEST_MAIN(GatewayPageTest, QApplication)
#include "tst_gatewaypage.moc"
