#include "SetupRig.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>

namespace {

const char *const kRed = "color: #F44336;";
const char *const kAmber = "color: #FF9800;";
const char *const kGreenBold = "color: #4CAF50; font-weight: bold;";

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class PICPageTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void checksTheForm_data();
    void checksTheForm();
    void asksAtOnce();
    void tellsTheAnswer_data();
    void tellsTheAnswer();
    void failsWithoutAnAnswer();
    void anAnswerForAnOlderTextChangesNothing();
    void anEditTakesTheVerdictBack();
    void theNameCannotBeTyped();

private:
    [[nodiscard]] QString status() const { return m_rig->text("picStatusLabel"); }
    [[nodiscard]] QString style() const { return m_rig->find<QLabel>("picStatusLabel")->styleSheet(); }
    [[nodiscard]] QString name() const { return m_rig->text("picNameEdit"); }

    std::unique_ptr<SetupRig> m_rig;
};

void PICPageTest::init()
{
    m_rig = std::make_unique<SetupRig>();
    m_rig->open();
    QVERIFY(m_rig->goTo(SetupWizard::Pic));
}

void PICPageTest::cleanup()
{
    m_rig.reset();
}

void PICPageTest::checksTheForm_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("status");
    const QString format = q("Format: YB/YC/YD...");
    const QString checks = q("Memeriksa...");
    QTest::newRow("three characters") << q("YB0") << q("YB0") << QString();
    QTest::newRow("one letter after the digit") << q("YB0A") << q("YB0A") << format;
    QTest::newRow("two letters") << q("YB0AB") << q("YB0AB") << checks;
    QTest::newRow("three letters") << q("yg9abc") << q("YG9ABC") << checks;
    QTest::newRow("four letters") << q("YB0ABCD") << q("YB0ABCD") << format;
    QTest::newRow("a gateway's") << q("YH0AB") << q("YH0AB") << format;
    QTest::newRow("below the range") << q("YA0AB") << q("YA0AB") << format;
    QTest::newRow("blanks") << q(" yc1xy ") << q("YC1XY") << checks;
}

void PICPageTest::checksTheForm()
{
    QFETCH(QString, typed);
    QFETCH(QString, status);
    m_rig->registry.hold(true);
    m_rig->type("picCallsignEdit", typed);
    QTEST(m_rig->text("picCallsignEdit"), "callsign");
    QCOMPARE(this->status(), status);
    if (!status.isEmpty())
        QCOMPARE(style(), q(status.startsWith(q("Format")) ? kRed : kAmber));
    QVERIFY(!m_rig->next()->isEnabled());
}

void PICPageTest::asksAtOnce()
{
    const int before = m_rig->registry.requestCount();
    m_rig->type("picCallsignEdit", q("YB0AAC")); // two texts of the right form, one after the other
    QTRY_COMPARE(status(), q("Tidak ditemukan"));
    QCOMPARE(m_rig->registry.callsigns().mid(before).last(), q("YB0AAC"));
    const QByteArray request = m_rig->registry.request(m_rig->registry.requestCount() - 1);
    QVERIFY2(request.startsWith("GET /registrant/searchDataIar/?callsign=YB0AAC HTTP/1.1\r\n"), request);
    QVERIFY2(request.contains("\r\nUser-Agent: Mozilla/5.0\r\n"), request);
    QVERIFY2(request.contains("\r\nX-Requested-With: XMLHttpRequest\r\n"), request);
}

void PICPageTest::tellsTheAnswer_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *tag, const QByteArray &answer, const char *status, const QString &name = {}) {
        QTest::newRow(tag) << answer << q(status) << name;
    };
    row("named", FakeRegistry::entry(q(" BUDI <b>SANTOSO</b> "), q("X")), "Terverifikasi", q("BUDI SANTOSO"));
    row("expired", FakeRegistry::entry(q("BUDI"), q("X"), q("MEI 2001"), q("EXPIRED")), "Terverifikasi", q("BUDI"));
    row("without an address", FakeRegistry::entry(q("BUDI"), {}), "Terverifikasi", q("BUDI"));
    row("quotes cannot travel", FakeRegistry::entry(q("\"BUDI\""), q("X")), "Terverifikasi", q("'BUDI'"));
    row("without a name", FakeRegistry::entry({}, q("X")), "Data tidak lengkap");
    row("empty name", FakeRegistry::entry(q("  "), q("X")), "Data tidak lengkap");
    row("not listed", FakeRegistry::notFound(), "Tidak ditemukan");
    row("another page", "<html></html>", "Format tidak dikenal");
}

void PICPageTest::tellsTheAnswer()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, name);
    m_rig->type("picCallsignEdit", q("YB0AA"));
    QTRY_COMPARE(this->name(), q("ANI SITI")); // an earlier callsign's name, which must not stay
    m_rig->registry.list(q("YD9ZZ"), answer);
    m_rig->type("picCallsignEdit", q("YD9ZZ"));
    QTRY_COMPARE(this->name(), name);
    QTEST(status(), "status");
    QCOMPARE(style(), q(name.isEmpty() ? kRed : kGreenBold));
    QCOMPARE(m_rig->next()->isEnabled(), !name.isEmpty());
}

void PICPageTest::failsWithoutAnAnswer()
{
    m_rig->registry.close();
    m_rig->type("picCallsignEdit", q("YB0AA"));
    QTRY_COMPARE(status(), q("Gagal verifikasi"));
    QCOMPARE(style(), q(kRed));
    QVERIFY(!m_rig->next()->isEnabled());
}

void PICPageTest::anAnswerForAnOlderTextChangesNothing()
{
    m_rig->registry.hold(true);
    const int before = m_rig->registry.requestCount();
    m_rig->type("picCallsignEdit", q("YB0AA"));
    QTRY_COMPARE(m_rig->registry.requestCount(), before + 1);
    QTest::keyClick(m_rig->find<QWidget>("picCallsignEdit"), Qt::Key_Backspace);
    m_rig->registry.release();
    QTest::keyClick(m_rig->find<QWidget>("picCallsignEdit"), Qt::Key_Z);
    QTRY_COMPARE(m_rig->registry.requestCount(), before + 2);
    QCOMPARE(status(), q("Memeriksa..."));
    QCOMPARE(name(), QString());
    QVERIFY(!m_rig->next()->isEnabled());
}

void PICPageTest::anEditTakesTheVerdictBack()
{
    m_rig->type("picCallsignEdit", q("YB0AA"));
    QTRY_VERIFY(m_rig->next()->isEnabled());
    QTest::keyClick(m_rig->find<QWidget>("picCallsignEdit"), Qt::Key_Backspace);
    QVERIFY(!m_rig->next()->isEnabled());
}

void PICPageTest::theNameCannotBeTyped()
{
    auto *edit = m_rig->find<QLineEdit>("picNameEdit");
    QVERIFY(edit->isReadOnly());
    QTest::keyClicks(edit, q("X"));
    QCOMPARE(name(), QString());
    QVERIFY(edit->styleSheet().contains(q("#F5F5F5")));
    QCOMPARE(edit->placeholderText(), q("Nama akan terisi otomatis"));
}

EVOX_TEST_MAIN(PICPageTest, QApplication)
#include "tst_picpage.moc"
