#include "AdminUsers.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/AddGatewayDialog.h"

#include <QCheckBox>
#include <QDate>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <memory>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class AddGatewayDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void validatesInOrder_data();
    void validatesInOrder();
    void aRepairedFormIsSent();
    void theCommand_data();
    void theCommand();
    void thePermitRunsFiveYears();
    void callsignsAreWrittenInCapitals();
    void quotesAreNotTaken_data();
    void quotesAreNotTaken();
    void cancelSendsNothing();
    void enterSends();
    void theReceiverMayDeleteIt();
    void pictures_data();
    void pictures();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = m_dialog->findChild<Widget *>(q(name));
        Q_ASSERT(widget);
        return widget;
    }
    void type(const char *name, const char *text) const
    {
        find<QLineEdit>(name)->clear();
        QTest::keyClicks(find<QLineEdit>(name), q(text));
    }
    void fillIn() const;
    void submit() const { find<QPushButton>("addGatewaySubmitButton")->click(); }

    std::unique_ptr<AddGatewayDialog> m_dialog;
    QStringList m_lines;
    QList<bool> m_approvals;
};

void AddGatewayDialogTest::init()
{
    m_lines.clear();
    m_approvals.clear();
    m_dialog = std::make_unique<AddGatewayDialog>();
    connect(m_dialog.get(), &AddGatewayDialog::submitted, m_dialog.get(),
            [this](const Commands::Registration &registration, bool approve) {
                m_lines += Commands::registerGateway(registration);
                m_approvals += approve;
            });
    m_dialog->show();
}

void AddGatewayDialogTest::cleanup()
{
    m_dialog.reset();
}

void AddGatewayDialogTest::fillIn() const
{
    type("addCallsignEdit", "YH8RXX");
    type("addGatewayNameEdit", "RF-GW Satu");
    type("addPicNameEdit", "Ani Siti");
    type("addPasswordEdit", "rahasia");
}

void AddGatewayDialogTest::looksAsAnnounced()
{
    QCOMPARE(m_dialog->windowTitle(), q("Add Gateway"));
    QStringList groups;
    for (const auto *group : m_dialog->findChildren<QGroupBox *>())
        groups += group->title();
    QCOMPARE(groups, (QStringList{q("Gateway Information"), q("Person in Charge (PIC)")}));
    QStringList labels;
    for (const auto *label : m_dialog->findChildren<QLabel *>()) {
        if (label->buddy())
            labels += label->text();
    }
    for (const char *label : {"Callsign (YH...):", "Gateway Name:", "Frequency:", "Location:", "PIC Name:",
                              "PIC Callsign:", "Email:", "WhatsApp:", "Password:"})
        QVERIFY2(labels.contains(q(label)), label);
    QCOMPARE(find<QLineEdit>("addCallsignEdit")->placeholderText(), q("e.g. YH8RXX"));
    QCOMPARE(find<QLineEdit>("addFrequencyEdit")->placeholderText(), q("e.g. 146.440 MHz"));
    QCOMPARE(find<QLineEdit>("addWhatsappEdit")->placeholderText(), q("e.g. 08123456789"));
    QCOMPARE(find<QLineEdit>("addPasswordEdit")->placeholderText(), q("Initial password"));
    QCOMPARE(find<QCheckBox>("addApprovedCheck")->text(), q("Approved (can transmit immediately)"));
    QVERIFY(!find<QCheckBox>("addApprovedCheck")->isChecked());
    QCOMPARE(find<QPushButton>("addGatewaySubmitButton")->text(), q("Add Gateway"));
    QVERIFY(find<QPushButton>("addGatewaySubmitButton")->isDefault());
    QVERIFY(find<QLabel>("addGatewayError")->styleSheet().contains(q("#F44336")));
}

void AddGatewayDialogTest::validatesInOrder_data()
{
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("gatewayName");
    QTest::addColumn<QString>("picName");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *callsign, const char *gateway, const char *pic,
                        const char *password, const char *error) {
        QTest::newRow(name) << q(callsign) << q(gateway) << q(pic) << q(password) << q(error);
    };
    row("everything empty", "", "", "", "", "Callsign harus diawali YH!");
    row("another callsign", "YB0ABC", "GW", "Ani", "pw", "Callsign harus diawali YH!");
    row("YH not at the beginning", "AYH", "", "", "", "Callsign harus diawali YH!");
    row("no gateway name", "YH8RXX", "", "", "", "Gateway Name tidak boleh kosong!");
    row("blank gateway name", "YH8RXX", "  ", "Ani", "pw", "Gateway Name tidak boleh kosong!");
    row("no name of the person", "YH8RXX", "GW", "", "", "PIC Name tidak boleh kosong!");
    row("no password", "YH8RXX", "GW", "Ani", "", "Password tidak boleh kosong!");
    row("blank password", "YH8RXX", "GW", "Ani", "   ", "Password tidak boleh kosong!");
    row("small letters are enough", "yh8rxx", "GW", "Ani", "pw", "");
}

void AddGatewayDialogTest::validatesInOrder()
{
    QFETCH(QString, callsign);
    QFETCH(QString, gatewayName);
    QFETCH(QString, picName);
    QFETCH(QString, password);
    QFETCH(QString, error);
    find<QLineEdit>("addCallsignEdit")->setText(callsign);
    find<QLineEdit>("addGatewayNameEdit")->setText(gatewayName);
    find<QLineEdit>("addPicNameEdit")->setText(picName);
    find<QLineEdit>("addPasswordEdit")->setText(password);
    submit();
    QCOMPARE(find<QLabel>("addGatewayError")->text(), error);
    QCOMPARE(m_lines.isEmpty(), !error.isEmpty());
    QCOMPARE(m_dialog->isVisible(), !error.isEmpty());
}

void AddGatewayDialogTest::aRepairedFormIsSent()
{
    submit();
    QVERIFY(!find<QLabel>("addGatewayError")->text().isEmpty());
    fillIn();
    submit();
    QCOMPARE(find<QLabel>("addGatewayError")->text(), QString());
    QCOMPARE(m_lines.size(), 1);
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Accepted));
}

void AddGatewayDialogTest::theCommand_data()
{
    QTest::addColumn<QStringList>("optional");
    QTest::addColumn<bool>("approved");
    QTest::addColumn<QString>("line");
    QTest::newRow("nothing optional") << QStringList{{}, {}, {}, {}, {}} << false
                                      << q(R"(REGISTER_GATEWAY "RF-GW Satu" "YH8RXX" "-" "2031-11-21" "-" "Ani Siti" )"
                                           R"("-" "rahasia" "-" "-")");
    QTest::newRow("everything") << QStringList{q("146.440 MHz"), q("Jl. Satu %1, Medan"), q("yb0abc"), q("a@b.id"),
                                               q("08123456789")}
                                << true
                                << q(R"(REGISTER_GATEWAY "RF-GW Satu" "YH8RXX" "146.440 MHz" "2031-11-21" )"
                                     R"("Jl. Satu %1, Medan" "Ani Siti" "YB0ABC" "rahasia" "a@b.id" "08123456789")");
    QTest::newRow("pasted lines") << QStringList{q("1\r\nQUIT"), {}, {}, {}, {}} << false
                                  << q(R"(REGISTER_GATEWAY "RF-GW Satu" "YH8RXX" "1QUIT" "2031-11-21" "-" )"
                                       R"("Ani Siti" "-" "rahasia" "-" "-")");
}

void AddGatewayDialogTest::theCommand()
{
    QFETCH(QStringList, optional);
    QFETCH(bool, approved);
    QFETCH(QString, line);
    fillIn();
    const char *names[] = {"addFrequencyEdit", "addLocationEdit", "addPicCallsignEdit", "addEmailEdit",
                           "addWhatsappEdit"};
    for (int i = 0; i < optional.size(); ++i)
        find<QLineEdit>(names[i])->setText(optional.at(i));
    find<QCheckBox>("addApprovedCheck")->setChecked(approved);
    QCOMPARE(Commands::registerGateway(m_dialog->registration(QDate(2026, 11, 21))), line);
    submit();
    QCOMPARE(m_approvals, QList<bool>{approved});
}

void AddGatewayDialogTest::thePermitRunsFiveYears()
{
    fillIn();
    const QDate before = QDate::currentDate();
    submit();
    const QDate after = QDate::currentDate();
    QCOMPARE(m_lines.size(), 1);
    const QString sent = m_lines.first().section(QLatin1Char('"'), 7, 7);
    const QStringList possible{before.addYears(5).toString(Qt::ISODate), after.addYears(5).toString(Qt::ISODate)};
    QVERIFY2(possible.contains(sent), qPrintable(sent));
    QCOMPARE(m_dialog->registration(QDate(2028, 2, 29)).permitExpiry, q("2033-02-28"));
}

void AddGatewayDialogTest::callsignsAreWrittenInCapitals()
{
    type("addCallsignEdit", "yh8rxx");
    QCOMPARE(find<QLineEdit>("addCallsignEdit")->text(), q("YH8RXX"));
    type("addPicCallsignEdit", "yb0abc");
    QCOMPARE(find<QLineEdit>("addPicCallsignEdit")->text(), q("YB0ABC"));
}

void AddGatewayDialogTest::quotesAreNotTaken_data()
{
    QTest::addColumn<QString>("name");
    const AddGatewayDialog dialog;
    for (const auto *edit : dialog.findChildren<QLineEdit *>())
        QTest::newRow(qPrintable(edit->objectName())) << edit->objectName();
}

void AddGatewayDialogTest::quotesAreNotTaken()
{
    QFETCH(QString, name);
    const QByteArray objectName = name.toLatin1();
    type(objectName.constData(), "A\"B");
    QCOMPARE(find<QLineEdit>(objectName.constData())->text(), q("AB"));
}

void AddGatewayDialogTest::cancelSendsNothing()
{
    fillIn();
    find<QPushButton>("addGatewayCancelButton")->click();
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_lines, QStringList());
}

void AddGatewayDialogTest::enterSends()
{
    fillIn();
    QTest::keyClick(find<QLineEdit>("addPasswordEdit"), Qt::Key_Return);
    QCOMPARE(m_lines.size(), 1);
}

void AddGatewayDialogTest::theReceiverMayDeleteIt()
{
    fillIn();
    connect(m_dialog.get(), &AddGatewayDialog::submitted, this, [this] { m_dialog.reset(); });
    QPointer<AddGatewayDialog> gone(m_dialog.get());
    submit();
    QVERIFY(!gone);
}

void AddGatewayDialogTest::pictures_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void AddGatewayDialogTest::pictures()
{
    QFETCH(bool, dark);
    AdminUsers::useDesktopFont();
    LogCapture log; // a style sheet that does not parse is a warning
    Theme::apply(*qApp, dark);
    AddGatewayDialog dialog;
    dialog.findChild<QPushButton *>(q("addGatewaySubmitButton"))->click();
    const QImage image = Screenshots::save(dialog, q("admin-addgateway-") + (dark ? q("dark") : q("light")));
    QVERIFY(!image.isNull());
    QVERIFY2(dialog.height() <= 600 && dialog.width() <= 1024, "fits the smallest screen");
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(AddGatewayDialogTest, QApplication)
#include "tst_addgatewaydialog.moc"
