#include "SetupRig.h"
#include "WidgetChecks.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/setup/LoginDialog.h"

#include <QApplication>
#include <QImage>

class SetupPicturesTest final : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsCutOff_data();
    void nothingIsCutOff();
};

void SetupPicturesTest::nothingIsCutOff_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void SetupPicturesTest::nothingIsCutOff()
{
    QFETCH(bool, dark);
    Theme::initResources();
    Theme::apply(*qApp, dark);
    const QString theme = QLatin1String(QTest::currentDataTag());
    SetupRig rig;
    rig.open();
    for (int page = SetupWizard::Welcome; page <= SetupWizard::Password; ++page) {
        QVERIFY(rig.goTo(static_cast<SetupWizard::Page>(page)));
        QVERIFY(!Screenshots::save(rig.wizard(), QStringLiteral("setup-%1-%2").arg(page).arg(theme)).isNull());
        rig.wizard().resize(rig.wizard().minimumSize());
        QCOMPARE(WidgetChecks::cutOff(rig.wizard()), QStringList());
    }
    LoginDialog login(rig.endpoints.serverHost, rig.prompts);
    QVERIFY(!Screenshots::save(login, QStringLiteral("setup-login-") + theme).isNull());
    login.show();
    QCOMPARE(WidgetChecks::cutOff(login), QStringList());
}

EVOX_TEST_MAIN(SetupPicturesTest, QApplication)
#include "tst_setuppictures.moc"
