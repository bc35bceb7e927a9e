#include "SetupRig.h"
#include "support/TestMain.h"
#include "ui/setup/EULAPage.h"
#include "ui/setup/PasswordPage.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QSpinBox>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QString placeholder(const QWidget *widget)
{
    return widget ? widget->property("placeholderText").toString() : q("no widget");
}

/// The texts of the labels that name the fields of the page.
QStringList captions(const QWidget *page)
{
    QStringList texts;
    for (const auto *label : page->findChildren<QLabel *>()) {
        if (label->text().endsWith(QLatin1Char(':')))
            texts.append(label->text());
    }
    return texts;
}

} // namespace

class SetupWizardTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void pagesComeInOrder_data();
    void pagesComeInOrder();
    void welcomeTells();
    void termsMustBeAccepted();
    void showsTheTermsOfTheProgram();
    void termsThatAreMissingCanBeAccepted();
    void proposesTheServer();
    void fieldsHaveTheirBounds_data();
    void fieldsHaveTheirBounds();
    void takesNoQuotes_data();
    void takesNoQuotes();
    void passwordIsMandatoryOnly();
    void passwordCanBeSeen();
    void generatesPasswords();
    void reviewsEverything();
    void reviewIsRefreshed();
    void reviewOfTheLongestValues();
    void goingBackKeepsWhatWasTyped();
    void handsOverTheData();
    void fallsBackForWhatIsLeftEmpty();
    void keyboardAloneIsEnough();
    void beginsWithAnEarlierAttempt();
    void goesOnWhereItWasLeft();
    void neverEmitsTheUnusedSignal();

private:
    std::unique_ptr<SetupRig> m_rig;
};

void SetupWizardTest::init()
{
    m_rig = std::make_unique<SetupRig>();
    m_rig->open();
}

void SetupWizardTest::cleanup()
{
    m_rig.reset();
}

void SetupWizardTest::looksAsAnnounced()
{
    const SetupWizard &wizard = m_rig->wizard();
    QCOMPARE(wizard.windowTitle(), q("eVOX SINAR - Setup Wizard"));
    QCOMPARE(wizard.minimumSize(), QSize(550, 500));
    QCOMPARE(wizard.wizardStyle(), QWizard::ModernStyle);
    QVERIFY(wizard.isModal());
    QCOMPARE(wizard.buttonText(QWizard::BackButton), q("Kembali"));
    QCOMPARE(wizard.buttonText(QWizard::NextButton), q("Lanjut"));
    QCOMPARE(wizard.buttonText(QWizard::CancelButton), q("Batal"));
    QCOMPARE(wizard.buttonText(QWizard::FinishButton), q("Daftar"));
}

void SetupWizardTest::pagesComeInOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("subTitle");
    QTest::addColumn<QStringList>("fields");
    const auto row = [](int index, const char *name, const char *title, const char *subTitle,
                        const QStringList &fields) {
        QTest::newRow(name) << index << QByteArray(name) << q(title) << q(subTitle) << fields;
    };
    row(0, "WelcomePage", "Selamat Datang di eVOX SINAR", "Pendaftaran RF-Gateway Baru", {});
    row(1, "EULAPage", "Persyaratan Lisensi (EULA)", "Silakan baca dan setujui persyaratan berikut", {});
    row(2, "ServerPage", "Konfigurasi Server", "Masukkan informasi koneksi ke server eVOX SINAR",
        {q("Alamat Server:"), q("Port:"), q("Default Room:")});
    row(3, "GatewayPage", "Konfigurasi RF Gateway", "Informasi identitas gateway Anda",
        {q("Callsign Gateway:"), q("Nama Gateway:"), q("Frekuensi:"), q("Lokasi:"), q("Masa Laku:")});
    row(4, "PICPage", "Informasi Penanggungjawab", "Data penanggungjawab RF Gateway",
        {q("Callsign PIC:"), q("Nama PIC:")});
    row(5, "ContactPage", "Informasi Kontak", "Data kontak (opsional)", {q("Email:"), q("WhatsApp:")});
    row(6, "PasswordPage", "Password & Review", "Buat password dan periksa kembali data Anda", {q("Password:")});
}

void SetupWizardTest::pagesComeInOrder()
{
    QFETCH(int, index);
    QCOMPARE(m_rig->wizard().pageIds().size(), 7);
    const QWizardPage *page = m_rig->wizard().page(index);
    QVERIFY(page);
    QTEST(QByteArray(page->metaObject()->className()), "className");
    QTEST(page->title(), "title");
    QTEST(page->subTitle(), "subTitle");
    QTEST(captions(page), "fields");
    QVERIFY(m_rig->goTo(static_cast<SetupWizard::Page>(index)));
    QCOMPARE(m_rig->wizard().currentPage(), page);
}

void SetupWizardTest::welcomeTells()
{
    const QStringList lines = m_rig->text("welcomeText").split(QLatin1Char('\n'));
    QVERIFY(lines.first().contains(q("e-VOX SINAR")));
    QCOMPARE(lines.mid(1), (QStringList{{},
                                        q("Wizard ini akan membantu Anda mendaftarkan"),
                                        q("RF Gateway Anda ke server eVOX SINAR."),
                                        {},
                                        q("Klik Lanjut untuk mendaftarkan gateway baru."),
                                        {},
                                        q("Sudah punya akun? Klik tombol di bawah untuk login.")}));
    QCOMPARE(m_rig->text("brandTitle"), q("SINAR"));
    QCOMPARE(m_rig->text("loginButton"), q("Sudah Punya Akun? Login"));
}

void SetupWizardTest::termsMustBeAccepted()
{
    QVERIFY(m_rig->goTo(SetupWizard::Eula));
    auto *accept = m_rig->find<QRadioButton>("acceptRadio");
    auto *reject = m_rig->find<QRadioButton>("rejectRadio");
    QCOMPARE(accept->text(), q("Terima"));
    QCOMPARE(reject->text(), q("Tolak"));
    QVERIFY(!m_rig->next()->isEnabled());
    accept->click();
    QVERIFY(m_rig->next()->isEnabled());
    reject->click();
    QVERIFY(!m_rig->next()->isEnabled());
}

void SetupWizardTest::showsTheTermsOfTheProgram()
{
    QFile file(QCoreApplication::applicationDirPath() + q("/eula.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto *terms = m_rig->find<QPlainTextEdit>("eulaText");
    QCOMPARE(terms->toPlainText(), QString::fromUtf8(file.readAll()));
    QVERIFY(terms->isReadOnly());
    QCOMPARE(terms->lineWrapMode(), QPlainTextEdit::WidgetWidth);
    QCOMPARE(terms->minimumHeight(), 250);
}

void SetupWizardTest::termsThatAreMissingCanBeAccepted()
{
    QWizard wizard;
    wizard.addPage(new EULAPage(q("/nonexistent/eula.txt")));
    wizard.addPage(new QWizardPage);
    wizard.show();
    QCOMPARE(wizard.findChild<QPlainTextEdit *>(q("eulaText"))->toPlainText(),
             q("EULA tidak tersedia.\n\nPastikan file eula.txt berada di folder aplikasi."));
    wizard.findChild<QRadioButton *>(q("acceptRadio"))->click();
    QVERIFY(wizard.button(QWizard::NextButton)->isEnabled());
}

void SetupWizardTest::proposesTheServer()
{
    QCOMPARE(m_rig->text("serverAddressEdit"), q("radio.example"));
    const auto *port = m_rig->find<QSpinBox>("serverPortSpin");
    QCOMPARE(port->value(), 8080);
    QCOMPARE(port->minimum(), 1);
    QCOMPARE(port->maximum(), 65535);
    QCOMPARE(m_rig->text("defaultRoomEdit"), q("== LOBBY =="));
    const auto hints = m_rig->wizard().page(SetupWizard::Server)->findChildren<QLabel *>();
    QVERIFY(std::any_of(hints.begin(), hints.end(), [](const QLabel *label) {
        return label->text() == q("Nama room bisa diubah di Settings setelah login pertama.");
    }));
}

void SetupWizardTest::fieldsHaveTheirBounds_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("placeholder");
    QTest::addColumn<int>("longest");
    QTest::newRow("room") << QByteArray("defaultRoomEdit") << q("Nama room default, contoh: == LOBBY ==") << 100;
    QTest::newRow("callsign") << QByteArray("callsignEdit") << q("Contoh: YH0GW") << 10;
    QTest::newRow("name") << QByteArray("gatewayNameEdit") << q("RF-GW SINAR ...") << 100;
    QTest::newRow("frequency") << QByteArray("frequencyEdit") << q("145.500 MHz") << 40;
    QTest::newRow("location") << QByteArray("locationEdit") << q("Alamat stasiun") << 200;
    QTest::newRow("person") << QByteArray("picCallsignEdit") << q("Contoh: YB0ABC") << 10;
    QTest::newRow("e-mail") << QByteArray("emailEdit") << q("operator@contoh.id") << 100;
    QTest::newRow("telephone") << QByteArray("whatsappEdit") << q("08123456789") << 40;
    QTest::newRow("password") << QByteArray("passwordEdit") << q("Min. 8 karakter") << 128;
}

void SetupWizardTest::fieldsHaveTheirBounds()
{
    QFETCH(QByteArray, name);
    QFETCH(int, longest);
    auto *widget = m_rig->find<QWidget>(name.constData());
    QVERIFY(widget);
    QTEST(placeholder(widget), "placeholder");
    m_rig->type(name.constData(), QString(longest + 5, QLatin1Char('A')));
    QCOMPARE(m_rig->text(name.constData()).size(), longest);
}

void SetupWizardTest::takesNoQuotes_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"serverAddressEdit", "defaultRoomEdit", "callsignEdit", "gatewayNameEdit", "frequencyEdit",
                             "locationEdit", "emailEdit", "whatsappEdit", "passwordEdit"})
        QTest::newRow(name) << QByteArray(name);
}

void SetupWizardTest::takesNoQuotes()
{
    QFETCH(QByteArray, name);
    m_rig->type(name.constData(), q("A\"B"));
    QCOMPARE(m_rig->text(name.constData()), q("AB"));
    // A pasted line end must not begin another command.
    auto *widget = m_rig->find<QWidget>(name.constData());
    QApplication::clipboard()->setText(q("X\r\nQUIT\n"));
    QMetaObject::invokeMethod(widget, "paste");
    const QString text = m_rig->text(name.constData());
    QVERIFY2(!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')), qPrintable(text));
}

void SetupWizardTest::passwordIsMandatoryOnly()
{
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    const auto *finish = m_rig->wizard().button(QWizard::FinishButton);
    QVERIFY(!finish->isEnabled());
    m_rig->type("passwordEdit", q("x"));
    QVERIFY(finish->isEnabled());
    m_rig->wizard().button(QWizard::FinishButton)->click();
    QCOMPARE(m_rig->wizard().result(), int(QDialog::Accepted));
    QCOMPARE(m_rig->wizard().gatewayData().password, q("x"));
}

void SetupWizardTest::passwordCanBeSeen()
{
    const auto *edit = m_rig->find<QLineEdit>("passwordEdit");
    auto *show = m_rig->find<QAbstractButton>("showPasswordCheck");
    QCOMPARE(show->text(), q("Tampilkan"));
    QCOMPARE(edit->echoMode(), QLineEdit::Password);
    show->click();
    QCOMPARE(edit->echoMode(), QLineEdit::Normal);
    show->click();
    QCOMPARE(edit->echoMode(), QLineEdit::Password);
}

void SetupWizardTest::generatesPasswords()
{
    auto *generate = m_rig->find<QPushButton>("generateButton");
    QCOMPARE(generate->text(), q("Generate Password"));
    const QRegularExpression form(q("^[a-zA-Z0-9]{12}$"));
    QSet<QString> passwords;
    QSet<QChar> letters;
    for (int i = 0; i < 400; ++i) {
        generate->click();
        const QString password = m_rig->text("passwordEdit");
        QVERIFY2(form.match(password).hasMatch(), qPrintable(password));
        passwords.insert(password);
        for (const QChar letter : password)
            letters.insert(letter);
    }
    QCOMPARE(passwords.size(), 400);
    QCOMPARE(letters.size(), 62);
}

void SetupWizardTest::reviewsEverything()
{
    QCOMPARE(m_rig->text("reviewLabel"), q("Data akan ditampilkan di sini"));
    m_rig->type("frequencyEdit", q("145.500 MHz"));
    m_rig->type("emailEdit", q("a@b.id"));
    m_rig->type("whatsappEdit", q("0812 %1"));
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    QCOMPARE(m_rig->text("reviewLabel"), q("Server  : radio.example:8080\n"
                                           "Room    : == LOBBY ==\n"
                                           "Callsign: YH0AB\n"
                                           "Gateway : RF-GW SINAR Bandung\n"
                                           "Freq    : 145.500 MHz\n"
                                           "Lokasi  : JL. MERDEKA 1, BANDUNG\n"
                                           "PIC     : ANI SITI (YB0AA)\n"
                                           "Email   : a@b.id\n"
                                           "WA      : 0812 %1"));
    const auto *review = m_rig->find<QLabel>("reviewLabel");
    QCOMPARE(review->textFormat(), Qt::PlainText);
    const QFontMetrics metrics(review->font());
    QCOMPARE(metrics.horizontalAdvance(q("iiii")), metrics.horizontalAdvance(q("MMMM")));
}

void SetupWizardTest::reviewIsRefreshed()
{
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    m_rig->wizard().back();
    m_rig->type("emailEdit", q("neu@b.id"));
    m_rig->wizard().next();
    QVERIFY(m_rig->text("reviewLabel").contains(q("Email   : neu@b.id\n")));
}

void SetupWizardTest::reviewOfTheLongestValues()
{
    m_rig->type("gatewayNameEdit", QString(100, QLatin1Char('9')));
    m_rig->type("emailEdit", QString(100, QLatin1Char('W')));
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    const auto *review = m_rig->find<QLabel>("reviewLabel");
    // Whatever does not fit can be scrolled to, and nothing is cut off.
    QVERIFY(review->width() >= review->fontMetrics().horizontalAdvance(QString(100, QLatin1Char('W'))));
    QVERIFY(review->height() >= 9 * review->fontMetrics().lineSpacing());
}

void SetupWizardTest::goingBackKeepsWhatWasTyped()
{
    m_rig->type("serverAddressEdit", q("hill.example"));
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    m_rig->type("passwordEdit", q("rahasia"));
    const QString before = PasswordPage::reviewOf(m_rig->wizard().gatewayData());
    while (m_rig->wizard().currentId() != SetupWizard::Welcome)
        m_rig->wizard().back();
    QCOMPARE(PasswordPage::reviewOf(m_rig->wizard().gatewayData()), before);
    QVERIFY(m_rig->find<QRadioButton>("acceptRadio")->isChecked());
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    QCOMPARE(m_rig->text("passwordEdit"), q("rahasia"));
    QVERIFY(m_rig->wizard().button(QWizard::FinishButton)->isEnabled());
}

void SetupWizardTest::handsOverTheData()
{
    m_rig->type("serverAddressEdit", q(" hill.example "));
    m_rig->find<QSpinBox>("serverPortSpin")->setValue(9000);
    m_rig->type("defaultRoomEdit", q("Room 2"));
    m_rig->type("frequencyEdit", q("145.5"));
    m_rig->type("emailEdit", q("a@b.id"));
    m_rig->type("whatsappEdit", q("0812"));
    m_rig->type("passwordEdit", q(" geheim "));
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    const GatewayData data = m_rig->wizard().gatewayData();
    QCOMPARE(data.serverAddress, q("hill.example"));
    QCOMPARE(data.serverPort, 9000);
    QCOMPARE(data.defaultRoom, q("Room 2"));
    QCOMPARE(data.callsign, q("YH0AB"));
    QCOMPARE(data.gatewayName, q("RF-GW SINAR Bandung"));
    QCOMPARE(data.frequency, q("145.5"));
    QCOMPARE(data.location, q("JL. MERDEKA 1, BANDUNG"));
    QCOMPARE(data.permitExpiry, q("2099-12-31"));
    QCOMPARE(data.picCallsign, q("YB0AA"));
    QCOMPARE(data.picName, q("ANI SITI"));
    QCOMPARE(data.email, q("a@b.id"));
    QCOMPARE(data.whatsapp, q("0812"));
    QCOMPARE(data.password, q(" geheim "));
}

void SetupWizardTest::fallsBackForWhatIsLeftEmpty()
{
    m_rig->type("serverAddressEdit", {});
    m_rig->type("defaultRoomEdit", q("  "));
    const GatewayData data = m_rig->wizard().gatewayData();
    QCOMPARE(data.serverAddress, q("radio.example"));
    QCOMPARE(data.defaultRoom, q("Lobby"));
    QCOMPARE(data.permitExpiry, QString());
}

// Tab, arrows, blank and Enter, as somebody without a mouse would press them.
void SetupWizardTest::keyboardAloneIsEnough()
{
    SetupWizard &wizard = m_rig->wizard();
    wizard.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&wizard));
    const auto key = [](Qt::Key code) { QTest::keyClick(QApplication::focusWidget(), code); };
    const auto tabTo = [&key, this](const char *name) {
        for (int i = 0; i < 20 && QApplication::focusWidget() != m_rig->find<QWidget>(name); ++i)
            key(Qt::Key_Tab);
        return QApplication::focusWidget() == m_rig->find<QWidget>(name);
    };
    const auto type = [](const char *text) { QTest::keyClicks(QApplication::focusWidget(), q(text)); };

    QVERIFY(tabTo("qt_wizard_next") || tabTo("__qt__passive_wizardbutton1"));
    key(Qt::Key_Space);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Eula));
    QVERIFY(tabTo("acceptRadio"));
    key(Qt::Key_Space);
    key(Qt::Key_Return);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Server));
    QVERIFY(tabTo("serverAddressEdit"));
    key(Qt::Key_Return);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Gateway));
    QVERIFY(tabTo("callsignEdit"));
    type("yh0ab");
    key(Qt::Key_Tab);
    type("Gerbang");
    QTRY_VERIFY(m_rig->next()->isEnabled());
    QVERIFY(tabTo("locationEdit")); // Tab leaves a field with several lines as well
    key(Qt::Key_Return);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Pic));
    QVERIFY(tabTo("picCallsignEdit"));
    type("yb0aa");
    QTRY_VERIFY(m_rig->next()->isEnabled());
    key(Qt::Key_Return);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Contact));
    QVERIFY(tabTo("emailEdit"));
    key(Qt::Key_Return);
    QCOMPARE(wizard.currentId(), int(SetupWizard::Password));
    QVERIFY(tabTo("generateButton"));
    key(Qt::Key_Space);
    QCOMPARE(m_rig->text("passwordEdit").size(), 12);
    QVERIFY(tabTo("passwordEdit"));
    key(Qt::Key_Return);
    QCOMPARE(wizard.result(), int(QDialog::Accepted));
    QVERIFY(!wizard.isVisible());
}

void SetupWizardTest::beginsWithAnEarlierAttempt()
{
    m_rig.reset();
    m_rig = std::make_unique<SetupRig>(QJsonObject{{q("server_address"), q("hill.example")},
                                                   {q("server_port"), 9000},
                                                   {q("default_room"), q("Room 2")},
                                                   {q("callsign"), q("YH0AB")},
                                                   {q("gateway_name"), q("Gerbang")},
                                                   {q("frequency"), q("145.5")},
                                                   {q("location"), q("di \"bukit\"")},
                                                   {q("name"), q("ANI")},
                                                   {q("responsible_callsign"), q("YB0AA")},
                                                   {q("email"), q("a@b.id")},
                                                   {q("whatsapp"), q("0812")},
                                                   {q("password"), q("rahasia")},
                                                   {q("setup_completed"), false}});
    m_rig->open();
    QCOMPARE(PasswordPage::reviewOf(m_rig->wizard().gatewayData()), q("Server  : hill.example:9000\n"
                                                                      "Room    : Room 2\n"
                                                                      "Callsign: YH0AB\n"
                                                                      "Gateway : Gerbang\n"
                                                                      "Freq    : 145.5\n"
                                                                      "Lokasi  : di 'bukit'\n"
                                                                      "PIC     : ANI (YB0AA)\n"
                                                                      "Email   : a@b.id\n"
                                                                      "WA      : 0812"));
    // Nobody is asked before the pages are entered; then both callsigns are checked anew.
    QVERIFY(m_rig->goTo(SetupWizard::Gateway));
    QCOMPARE(m_rig->registry.requestCount(), 0);
    QVERIFY(!m_rig->next()->isEnabled());
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    QCOMPARE(m_rig->registry.callsigns(), (QStringList{q("YH0AB"), q("YB0AA")}));
    QVERIFY(m_rig->wizard().button(QWizard::FinishButton)->isEnabled());
    QCOMPARE(m_rig->wizard().gatewayData().password, q("rahasia"));
}

void SetupWizardTest::goesOnWhereItWasLeft()
{
    QVERIFY(m_rig->goTo(SetupWizard::Pic));
    m_rig->wizard().reject();
    QVERIFY(!m_rig->wizard().isVisible());
    m_rig->wizard().show();
    QCOMPARE(m_rig->wizard().currentId(), int(SetupWizard::Pic));
    QCOMPARE(m_rig->text("callsignEdit"), q("YH0AB"));
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    m_rig->type("passwordEdit", q("x"));
    m_rig->wizard().accept();
    m_rig->wizard().show();
    QCOMPARE(m_rig->wizard().currentId(), int(SetupWizard::Password));
    QVERIFY(m_rig->wizard().button(QWizard::FinishButton)->isEnabled());
}

void SetupWizardTest::neverEmitsTheUnusedSignal()
{
    int emitted = 0;
    connect(&m_rig->wizard(), &SetupWizard::registrationComplete, this, [&emitted] { ++emitted; });
    QVERIFY(m_rig->goTo(SetupWizard::Password));
    m_rig->wizard().accept();
    QCOMPARE(emitted, 0);
}

EVOX_TEST_MAIN(SetupWizardTest, QApplication)
#include "tst_setupwizard.moc"
