#include "SetupRig.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/setup/LoginDialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>

namespace {

/// The texts that have less room than they need.
QStringList cutOff(const QWidget &window)
{
    QStringList texts;
    for (const auto *widget : window.findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        if (!widget->isVisible() || (!label && !button))
            continue;
        const bool wraps = label && label->wordWrap();
        const QSize needed = wraps ? QSize(0, label->heightForWidth(label->width())) : widget->minimumSizeHint();
        if (needed.width() > widget->width() || needed.height() > widget->height())
            texts.append(widget->property("text").toString());
    }
    return texts;
}

} // namespace

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
        QCOMPARE(cutOff(rig.wizard()), QStringList());
    }
    LoginDialog login(rig.endpoints.serverHost, rig.prompts);
    QVERIFY(!Screenshots::save(login, QStringLiteral("setup-login-") + theme).isNull());
    login.show();
    QCOMPARE(cutOff(login), QStringList());
}

EVOX_TEST_MAIN(SetupPicturesTest, QApplication)
#include "tst_setuppictures.moc"
