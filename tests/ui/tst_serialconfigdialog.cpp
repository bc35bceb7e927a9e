#include "app/Config.h"
#include "support/FakeSerial.h"
#include "support/LogCapture.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"
#include "ui/settings/SerialConfigDialog.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>

#include <memory>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class SerialConfigDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void showsTheDefaults();
    void showsTheConfiguration();
    void savesTheChoice();
    void savesLowLogic();
    void vanishedPortIsKept();
    void nothingChosenStoresNoPort();
    void cancelChangesNothing();
    void ownerMayDeleteTheDialog();
    void doesNotOpenThePort();

private:
    void open(const QJsonObject &values = {});
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(q(name));
    }

    std::unique_ptr<FakeSerial> m_first;
    std::unique_ptr<FakeSerial> m_second;
    std::unique_ptr<TestConfig> m_config;
    QPointer<SerialConfigDialog> m_dialog;
};

void SerialConfigDialogTest::init()
{
    m_first = std::make_unique<FakeSerial>();
    m_first->plugIn();
    m_second = std::make_unique<FakeSerial>();
    m_second->plugIn();
}

void SerialConfigDialogTest::cleanup()
{
    delete m_dialog;
    m_config.reset();
    m_second.reset();
    m_first.reset();
}

void SerialConfigDialogTest::open(const QJsonObject &values)
{
    m_config = std::make_unique<TestConfig>(values);
    m_dialog = new SerialConfigDialog;
    m_dialog->show();
}

void SerialConfigDialogTest::looksAsAnnounced()
{
    open();
    QCOMPARE(m_dialog->windowTitle(), q("Serial Configuration"));
    QStringList groups;
    for (const auto *group : m_dialog->findChildren<QGroupBox *>())
        groups.append(group->title());
    QCOMPARE(groups, (QStringList{q("Serial Port"), q("PTT Control"), q("COS Logic")}));
    QStringList labels;
    for (const auto *label : m_dialog->findChildren<QLabel *>()) {
        if (label->buddy())
            labels.append(label->text());
    }
    QCOMPARE(labels, (QStringList{q("Port:"), q("Baudrate:"), q("PTT Pin:"), q("COS Pin:")}));
    QCOMPARE(find<QRadioButton>("cosHighRadio")->text(), q("HIGH (active when signal HIGH)"));
    QCOMPARE(find<QRadioButton>("cosLowRadio")->text(), q("LOW (active when signal LOW)"));
    QCOMPARE(find<QPushButton>("saveButton")->text(), q("Save"));
    QCOMPARE(find<QPushButton>("saveButton")->property("meaning").toString(), q("good"));
    QCOMPARE(find<QPushButton>("cancelButton")->text(), q("Cancel"));
    const auto *ports = find<QComboBox>("serialPortCombo");
    QCOMPARE(ports->count(), 2);
    for (int i = 0; i < 2; ++i) {
        const QString name = (i == 0 ? m_first : m_second)->portName();
        QCOMPARE(ports->itemData(i).toString(), name);
        QVERIFY(ports->itemText(i).startsWith(name + q(" - ")));
        QVERIFY(ports->itemText(i).size() > name.size() + 3);
    }
}

void SerialConfigDialogTest::showsTheDefaults()
{
    open();
    QCOMPARE(find<QComboBox>("serialPortCombo")->currentIndex(), -1);
    QCOMPARE(find<QComboBox>("baudrateCombo")->currentText(), q("9600"));
    QCOMPARE(find<QComboBox>("pttPinCombo")->currentText(), q("RTS"));
    QCOMPARE(find<QComboBox>("cosPinCombo")->currentText(), q("CTS"));
    QVERIFY(find<QRadioButton>("cosHighRadio")->isChecked());
}

void SerialConfigDialogTest::showsTheConfiguration()
{
    open({{q("serial_port"), m_second->portName()},
          {q("baudrate"), 1200},
          {q("ptt_pin"), q("DTR")},
          {q("cos_pin"), q("DCD")},
          {q("cos_logic_high"), false}});
    QCOMPARE(find<QComboBox>("serialPortCombo")->currentData().toString(), m_second->portName());
    QCOMPARE(find<QComboBox>("baudrateCombo")->currentText(), q("1200"));
    QCOMPARE(find<QComboBox>("pttPinCombo")->currentText(), q("DTR"));
    QCOMPARE(find<QComboBox>("cosPinCombo")->currentText(), q("DCD"));
    QVERIFY(find<QRadioButton>("cosLowRadio")->isChecked());
    QVERIFY(!find<QRadioButton>("cosHighRadio")->isChecked());
}

void SerialConfigDialogTest::savesTheChoice()
{
    open({{q("mic_gain"), 7}});
    find<QComboBox>("serialPortCombo")->setCurrentIndex(1);
    find<QComboBox>("baudrateCombo")->setCurrentText(q("57600"));
    find<QComboBox>("pttPinCombo")->setCurrentText(q("BOTH"));
    find<QComboBox>("cosPinCombo")->setCurrentText(q("DSR"));
    const QJsonObject expected{{q("mic_gain"), 7},       {q("serial_port"), m_second->portName()},
                               {q("baudrate"), 57600},   {q("ptt_pin"), q("BOTH")},
                               {q("cos_pin"), q("DSR")}, {q("cos_logic_high"), true}};
    QSignalSpy saved(m_dialog, &SerialConfigDialog::saved);
    QJsonObject stored;
    connect(m_dialog, &SerialConfigDialog::saved, this, [&] { stored = m_config->saved(); });
    find<QPushButton>("saveButton")->click();
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.first().first().toString(), m_second->portName());
    QCOMPARE(stored, expected); // the owner finds it there already
    QCOMPARE(Config::instance().values(), expected);
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    QVERIFY(!m_dialog->isVisible());
}

void SerialConfigDialogTest::savesLowLogic()
{
    open();
    find<QRadioButton>("cosLowRadio")->click();
    find<QPushButton>("saveButton")->click();
    QCOMPARE(m_config->saved().value(q("cos_logic_high")), QJsonValue(false));
}

void SerialConfigDialogTest::vanishedPortIsKept()
{
    open({{q("serial_port"), q("COM9")}});
    const auto *ports = find<QComboBox>("serialPortCombo");
    QCOMPARE(ports->count(), 3);
    QCOMPARE(ports->currentText(), q("COM9 (tidak terdeteksi)"));
    QSignalSpy saved(m_dialog, &SerialConfigDialog::saved);
    find<QPushButton>("saveButton")->click();
    QCOMPARE(saved.first().first().toString(), q("COM9"));
    QCOMPARE(m_config->saved().value(q("serial_port")), QJsonValue(q("COM9")));
}

void SerialConfigDialogTest::nothingChosenStoresNoPort()
{
    open();
    QSignalSpy saved(m_dialog, &SerialConfigDialog::saved);
    find<QPushButton>("saveButton")->click();
    QCOMPARE(saved.first().first().toString(), QString());
    QCOMPARE(m_config->saved().value(q("serial_port")), QJsonValue(QString()));
}

void SerialConfigDialogTest::cancelChangesNothing()
{
    const QJsonObject values{{q("baudrate"), 1200}};
    open(values);
    QSignalSpy saved(m_dialog, &SerialConfigDialog::saved);
    find<QComboBox>("serialPortCombo")->setCurrentIndex(0);
    find<QComboBox>("baudrateCombo")->setCurrentText(q("4800"));
    find<QPushButton>("cancelButton")->click();
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
    QCOMPARE(saved.size(), 0);
    QCOMPARE(m_config->saved(), values);
    QCOMPARE(Config::instance().values(), values);
}

void SerialConfigDialogTest::ownerMayDeleteTheDialog()
{
    open();
    connect(m_dialog, &SerialConfigDialog::saved, this, [this] { delete m_dialog; });
    find<QPushButton>("saveButton")->click();
    QVERIFY(!m_dialog);
}

void SerialConfigDialogTest::doesNotOpenThePort()
{
    open({{q("serial_port"), m_first->portName()}});
    find<QPushButton>("saveButton")->click();
    QVERIFY(!m_first->isOpen());
    QVERIFY(m_first->edges().isEmpty());
}

EVOX_TEST_MAIN(SerialConfigDialogTest, QApplication)
#include "tst_serialconfigdialog.moc"
