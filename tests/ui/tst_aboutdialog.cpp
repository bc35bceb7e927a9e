#include "WidgetChecks.h"
#include "app/Product.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/AboutDialog.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QPushButton>

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const AboutDialog::Libraries kLibraries{q("5.15.8"), q("libopus 1.3.1"), q("1.0.18")};

QString textOf(const AboutDialog &dialog, const char *name)
{
    return dialog.findChild<QLabel *>(q(name))->text();
}

} // namespace

class AboutDialogTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Theme::initResources(); }

    void saysWhatItIs();
    void aLibraryThatIsNotLoaded();
    void copies();
    void closes_data();
    void closes();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
};

void AboutDialogTest::saysWhatItIs()
{
    const AboutDialog dialog(kLibraries);
    QCOMPARE(dialog.windowTitle(), q("About e-VOX SINAR"));
    QVERIFY(dialog.styleSheet().contains(q("background-color: #1A1A1A")));
    QCOMPARE(textOf(dialog, "nameLabel"), q("e-VOX SINAR"));
    QVERIFY(dialog.findChild<QLabel *>(q("nameLabel"))->styleSheet().contains(q("color: #00FF00")));
    QCOMPARE(textOf(dialog, "versionLabel"), q("Version 4.0.2 (Build 20260530)"));
    QVERIFY(!textOf(dialog, "descriptionLabel").contains(QLatin1Char('\n')));
    QCOMPARE(textOf(dialog, "librariesLabel"), q("Qt: 5.15.8\nOpus: libopus 1.3.1\nlibsodium: 1.0.18"));
    QCOMPARE(textOf(dialog, "licenceLabel"), q("Licence: MIT"));
    QVERIFY(!dialog.findChild<QLabel *>(q("logoLabel"))->pixmap(Qt::ReturnByValue).isNull());
}

void AboutDialogTest::aLibraryThatIsNotLoaded()
{
    const AboutDialog dialog({q("5.15.8"), QString(), q("<b>1</b>")});
    QCOMPARE(textOf(dialog, "librariesLabel"), q("Qt: 5.15.8\nOpus: not loaded\nlibsodium: <b>1</b>"));
    QCOMPARE(dialog.findChild<QLabel *>(q("librariesLabel"))->textFormat(), Qt::PlainText);
}

void AboutDialogTest::copies()
{
    AboutDialog dialog(kLibraries);
    dialog.show();
    QGuiApplication::clipboard()->setText(q("before"));
    auto *copy = dialog.findChild<QPushButton *>(q("copyButton"));
    copy->setFocus();
    QTest::keyClick(copy, Qt::Key_Space);
    const QString copied = QGuiApplication::clipboard()->text();
    QCOMPARE(copied, q("e-VOX SINAR\nVersion 4.0.2 (Build 20260530)\n") + textOf(dialog, "descriptionLabel") +
                         q("\nQt: 5.15.8\nOpus: libopus 1.3.1\nlibsodium: 1.0.18\nLicence: MIT"));
    QVERIFY2(dialog.isVisible(), "copying does not close");
}

void AboutDialogTest::closes_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Escape") << Qt::Key_Escape;
}

void AboutDialogTest::closes()
{
    QFETCH(Qt::Key, key);
    AboutDialog dialog(kLibraries);
    QCOMPARE(dialog.findChild<QPushButton *>(q("closeButton"))->text(), q("Close"));
    dialog.show();
    QTest::keyClick(&dialog, key);
    QVERIFY(!dialog.isVisible());
}

void AboutDialogTest::nothingIsCutOff_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void AboutDialogTest::nothingIsCutOff()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    LogCapture log; // a style sheet that cannot be read is a warning
    AboutDialog dialog(kLibraries);
    QVERIFY(!Screenshots::save(dialog, q("about-") + QLatin1String(QTest::currentDataTag())).isNull());
    dialog.show();
    dialog.resize(dialog.minimumSizeHint());
    QCOMPARE(WidgetChecks::cutOff(dialog), QStringList());
    QCOMPARE(WidgetChecks::tooBig(dialog), QString());
}

EVOX_TEST_MAIN(AboutDialogTest, QApplication)
#include "tst_aboutdialog.moc"
