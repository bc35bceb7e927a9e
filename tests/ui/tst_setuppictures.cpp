#include "SetupRig.h"
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
    void everyPage_data();
    void everyPage();
};

void SetupPicturesTest::everyPage_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void SetupPicturesTest::everyPage()
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
    }
    LoginDialog login(rig.wizard().gatewayData(), rig.prompts);
    QVERIFY(!Screenshots::save(login, QStringLiteral("setup-login-") + theme).isNull());
}

EVOX_TEST_MAIN(SetupPicturesTest, QApplication)
#include "tst_setuppictures.moc"
