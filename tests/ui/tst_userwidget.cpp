#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/room/UserWidget.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>

class UserWidgetTest final : public QObject
{
    Q_OBJECT

private slots:
    void nameText_data();
    void nameText();
    void startsWithEveryFlagDown();
    void layout();
    void flags_data();
    void flags();
    void transmittingRowHasPaleGround();
    void hostileNames_data();
    void hostileNames();
    void cutNameHasToolTip_data();
    void cutNameHasToolTip();
};

namespace {

QLabel *label(const UserWidget &row, const char *name)
{
    auto *found = row.findChild<QLabel *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

} // namespace

void UserWidgetTest::nameText_data()
{
    QTest::addColumn<QString>("displayName");
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<bool>("isSelf");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *displayName, const char *callsign, bool isSelf,
                        const char *text) {
        QTest::newRow(name) << QString::fromUtf8(displayName) << QString::fromUtf8(callsign) << isSelf
                            << QString::fromUtf8(text);
    };
    row("name is the callsign", "YB0ABC", "YB0ABC", false, "YB0ABC");
    row("name differs", "Budi", "YB0ABC", false, "Budi  [YB0ABC]");
    row("own row", "YB0ABC", "YB0ABC", true, "YB0ABC (You)");
    row("own row whose name differs", "Budi", "YB0ABC", true, "Budi (You)  [YB0ABC]");
    row("no callsign", "Budi", "", false, "Budi");
    row("differs in case", "yb0abc", "YB0ABC", false, "yb0abc  [YB0ABC]");
    row("html", "<b>x</b>", "<i>", false, "<b>x</b>  [<i>]");
    row("not ASCII", "Pé😀", "YB0ABC", false, "Pé😀  [YB0ABC]");
    row("line breaks are one line", "a\nb\tc", "YB0ABC", false, "a b c  [YB0ABC]");
}

void UserWidgetTest::nameText()
{
    QFETCH(QString, displayName);
    QFETCH(QString, callsign);
    QFETCH(bool, isSelf);
    QFETCH(QString, text);
    const UserWidget row(displayName, callsign, 7, isSelf);
    QCOMPARE(label(row, "nameLabel")->text(), text);
    QCOMPARE(label(row, "nameLabel")->textFormat(), Qt::PlainText);
    QCOMPARE(label(row, "nameLabel")->styleSheet(), QStringLiteral("font-size: 11px; padding: 1px 0;"));
    QCOMPARE(row.displayName(), displayName);
    QCOMPARE(row.callsign(), callsign);
    QCOMPARE(row.userId(), 7);
    QCOMPARE(row.isSelf(), isSelf);
}

void UserWidgetTest::startsWithEveryFlagDown()
{
    LogCapture log;
    const UserWidget row(QStringLiteral("Budi"), QStringLiteral("YB0ABC"), -1, false);
    QVERIFY(!row.isApproved());
    QVERIFY(!row.isTransmitting());
    QVERIFY(!row.isMicMuted());
    QVERIFY(!row.isSpeakerMuted());
    QCOMPARE(label(row, "approvalIcon")->toolTip(), QStringLiteral("Not Approved"));
    QCOMPARE(label(row, "transmitIcon")->toolTip(), QStringLiteral("Receiving"));
    QCOMPARE(label(row, "micIcon")->toolTip(), QStringLiteral("Mic Active"));
    QCOMPARE(label(row, "speakerIcon")->toolTip(), QStringLiteral("Speaker Active"));
}

void UserWidgetTest::layout()
{
    UserWidget row(QStringLiteral("Budi"), QStringLiteral("YB0ABC"), 7, false);
    QCOMPARE(row.minimumHeight(), 32);
    QCOMPARE(row.maximumHeight(), 40);
    const auto *box = qobject_cast<QHBoxLayout *>(row.layout());
    QVERIFY(box);
    QCOMPARE(box->contentsMargins(), QMargins(6, 3, 6, 3));
    QCOMPARE(box->spacing(), 6);
    QStringList order;
    for (int i = 0; i < box->count(); ++i)
        order += box->itemAt(i)->widget() ? box->itemAt(i)->widget()->objectName() : QStringLiteral("stretch");
    QCOMPARE(order,
             (QStringList{QStringLiteral("approvalIcon"), QStringLiteral("transmitIcon"), QStringLiteral("nameLabel"),
                          QStringLiteral("stretch"), QStringLiteral("micIcon"), QStringLiteral("speakerIcon")}));
    QCOMPARE(box->stretch(2), 1);
    QCOMPARE(label(row, "nameLabel")->minimumWidth(), 120);
    for (const auto &[name, side] :
         {std::pair{"approvalIcon", 20}, {"transmitIcon", 20}, {"micIcon", 18}, {"speakerIcon", 18}}) {
        QCOMPARE(label(row, name)->minimumSize(), QSize(side, side));
        QCOMPARE(label(row, name)->maximumSize(), QSize(side, side));
    }
    row.resize(300, 36);
    row.grab(); // lays out
    for (const char *name : {"approvalIcon", "transmitIcon", "micIcon", "speakerIcon"})
        QVERIFY2(qAbs(label(row, name)->geometry().center().y() - row.rect().center().y()) <= 1, name);
}

using Setter = void (UserWidget::*)(bool);
Q_DECLARE_METATYPE(Setter)

void UserWidgetTest::flags_data()
{
    QTest::addColumn<Setter>("set");
    QTest::addColumn<QString>("labelName");
    QTest::addColumn<int>("side");
    QTest::addColumn<bool>("value");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("toolTip");
    const auto row = [](Setter set, const char *labelName, int side, bool value, const char *icon,
                        const char *toolTip) {
        QTest::newRow(toolTip) << set << QString::fromLatin1(labelName) << side << value
                               << QStringLiteral(":/icons/") + QLatin1String(icon) << QString::fromLatin1(toolTip);
    };
    row(&UserWidget::setApproved, "approvalIcon", 22, true, "approve", "Approved");
    row(&UserWidget::setApproved, "approvalIcon", 22, false, "revoke", "Not Approved");
    row(&UserWidget::setTransmitting, "transmitIcon", 22, true, "tx", "Transmitting");
    row(&UserWidget::setTransmitting, "transmitIcon", 22, false, "rx", "Receiving");
    row(&UserWidget::setMicMuted, "micIcon", 20, true, "mic_off", "Mic Muted");
    row(&UserWidget::setMicMuted, "micIcon", 20, false, "mic_on", "Mic Active");
    row(&UserWidget::setSpeakerMuted, "speakerIcon", 20, true, "speaker_off", "Speaker Muted");
    row(&UserWidget::setSpeakerMuted, "speakerIcon", 20, false, "speaker_on", "Speaker Active");
}

void UserWidgetTest::flags()
{
    QFETCH(Setter, set);
    QFETCH(QString, labelName);
    QFETCH(int, side);
    QFETCH(bool, value);
    QFETCH(QString, icon);
    QFETCH(QString, toolTip);
    UserWidget row(QStringLiteral("Budi"), QStringLiteral("YB0ABC"), 7, false);
    (row.*set)(!value); // so that both rows of a flag see a change
    const QLabel *tested = label(row, qPrintable(labelName));
    QVERIFY(tested->toolTip() != toolTip);
    (row.*set)(value);
    QCOMPARE(tested->toolTip(), toolTip);
    const QPixmap shown = tested->pixmap(Qt::ReturnByValue);
    QCOMPARE(shown.size() / shown.devicePixelRatio(), QSize(side, side));
    QCOMPARE(shown.toImage(), Theme::icon(icon, side, row.devicePixelRatioF()).toImage());
}

void UserWidgetTest::transmittingRowHasPaleGround()
{
    UserWidget row(QStringLiteral("Budi"), QStringLiteral("YB0ABC"), 7, false);
    row.resize(300, 36);
    QCOMPARE(row.styleSheet(), QString());
    row.setTransmitting(true);
    QCOMPARE(row.styleSheet(), QStringLiteral("background-color: #FFEBEE;"));
    const QImage picture = row.grab().toImage();
    const QColor pale(QStringLiteral("#FFEBEE"));
    QCOMPARE(picture.pixelColor(2, 18), pale); // left of every label
    QCOMPARE(picture.pixelColor(picture.width() - 3, 18), pale);
    QCOMPARE(picture.pixelColor(150, 2), pale);
    row.setTransmitting(false);
    QCOMPARE(row.styleSheet(), QString());
}

void UserWidgetTest::hostileNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a thousand characters") << QString(1000, QLatin1Char('W'));
    QTest::newRow("a million characters") << QString(1000000, QLatin1Char('W'));
    QTest::newRow("a thousand lines") << QStringLiteral("W\n").repeated(1000);
    QTest::newRow("rich text") << QStringLiteral("<h1>BIG</h1><img src=':/icons/tx' width=500>");
    QTest::newRow("right to left and NUL") << QString::fromUtf8("\u202Eabc") + QChar(0) + QStringLiteral("def");
}

void UserWidgetTest::hostileNames()
{
    QFETCH(QString, name);
    UserWidget plain(QStringLiteral("Budi"), QStringLiteral("YB0ABC"), 7, false);
    UserWidget row(name, QStringLiteral("YB0ABC"), 7, false);
    QCOMPARE(row.sizeHint(), plain.sizeHint());
    QCOMPARE(row.minimumSizeHint(), plain.minimumSizeHint());
    row.resize(300, 36);
    plain.resize(300, 36);
    QVERIFY(!row.grab().isNull());
    QVERIFY(!plain.grab().isNull());
    QCOMPARE(label(row, "speakerIcon")->geometry(), label(plain, "speakerIcon")->geometry());
    QVERIFY(label(row, "nameLabel")->width() >= 120);
}

void UserWidgetTest::cutNameHasToolTip_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip"); // what it holds
    QTest::newRow("fits") << QStringLiteral("Budi") << QString();
    QTest::newRow("cut") << QStringLiteral("Gunung ").repeated(20) << QStringLiteral("[YB0ABC]</div>");
    QTest::newRow("cut, rich text") << QStringLiteral("<b>Gunung</b>").repeated(20)
                                    << QStringLiteral("&lt;b&gt;Gunung");
}

void UserWidgetTest::cutNameHasToolTip()
{
    QFETCH(QString, name);
    QFETCH(QString, toolTip);
    UserWidget row(name, QStringLiteral("YB0ABC"), 7, false);
    row.resize(300, 36);
    row.show();
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    QHelpEvent hover(QEvent::ToolTip, QPoint(10, 10), row.mapToGlobal(QPoint(100, 10)));
    QCoreApplication::sendEvent(label(row, "nameLabel"), &hover);
    QCOMPARE(QToolTip::isVisible(), !toolTip.isEmpty());
    QVERIFY2(QToolTip::text().contains(toolTip), qPrintable(QToolTip::text()));
    QToolTip::hideText();
}

EVOX_TEST_MAIN(UserWidgetTest, QApplication)
#include "tst_userwidget.moc"
