#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/admin/HwidRequests.h"
#include "ui/admin/HwidRequestsTab.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>

class HwidRequestsTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void itemTexts_data();
    void itemTexts();
    void everyUserIsAnItem();
    void chosenItemStaysChosen();
    void longTextsAreCut();
    void approves();
    void idFromTheUserList_data();
    void idFromTheUserList();
    void dismisses();
    void dismissesByKeyboard();
    void keyboardChooses();
    void resetElsewhereSettles();
    void nothingSelected();
    void menuOfTheSelectedItem_data();
    void menuOfTheSelectedItem();
    void mayGoWhileTheBoxIsOpen();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const QDateTime kWhen({2025, 3, 9}, {7, 5});

struct Rig
{
    Rig()
        : tab(requests, prompts)
    {
        tab.show();
    }
    [[nodiscard]] QListWidget *list() const { return tab.findChild<QListWidget *>(q("hwidRequestsList")); }
    [[nodiscard]] QAction *action(const char *name) const { return tab.findChild<QAction *>(q(name)); }
    [[nodiscard]] QStringList callsigns() const
    {
        QStringList texts;
        for (int row = 0; row < list()->count(); ++row)
            texts.append(list()->item(row)->text().section(q("  |  "), 0, 0));
        return texts;
    }
    void add(const char *details) { requests.add(q(details), kWhen); }
    void trigger(int row, const char *name)
    {
        list()->setCurrentRow(row);
        action(name)->trigger();
        QCoreApplication::sendPostedEvents(&tab, QEvent::MetaCall);
    }

    ScriptedPrompts prompts;
    HwidRequests requests{nullptr};
    HwidRequestsTab tab;
    QSignalSpy commands{&tab, &HwidRequestsTab::commandRequested};
    QSignalSpy counts{&tab, &HwidRequestsTab::countChanged};
};

} // namespace

void HwidRequestsTabTest::startsEmpty()
{
    const Rig rig;
    const auto *explanation = rig.tab.findChild<QLabel *>(q("hwidExplanation"));
    QCOMPARE(explanation->text(), q("Daftar permintaan Reset HWID dari user.\nKlik kanan pada item untuk Approve atau "
                                    "Dismiss."));
    QVERIFY(explanation->styleSheet().contains(q("font-size: 11px;")));
    QVERIFY(explanation->property("hint").toBool()); // grey in both themes
    QCOMPARE(rig.tab.count(), 0);
    QVERIFY(rig.tab.findChild<QLabel *>(q("emptyState"))->isVisible());
    QCOMPARE(rig.action("approveHwidAction")->text(), q("Approve Reset HWID"));
    QCOMPARE(rig.action("dismissHwidAction")->text(), q("Dismiss"));
}

void HwidRequestsTabTest::itemTexts_data()
{
    QTest::addColumn<QString>("details");
    QTest::addColumn<QString>("text");
    QTest::newRow("callsign and id") << q("YB1A:7") << q("YB1A  |  09/03/2025 07:05  |  Klik kanan untuk approve");
    QTest::newRow("callsign only") << q("YB1A") << q("YB1A  |  09/03/2025 07:05  |  Klik kanan untuk approve");
    QTest::newRow("a place mark") << q("%2:7") << q("%2  |  09/03/2025 07:05  |  Klik kanan untuk approve");
    QTest::newRow("nothing") << q("") << q("  |  09/03/2025 07:05  |  Klik kanan untuk approve");
}

void HwidRequestsTabTest::itemTexts()
{
    QFETCH(QString, details);
    QFETCH(QString, text);
    Rig rig;
    rig.requests.add(details, kWhen);
    QCOMPARE(rig.list()->item(0)->text(), text);
    QCOMPARE(rig.list()->item(0)->foreground().color(), QColor(q("#FF9800")));
}

void HwidRequestsTabTest::everyUserIsAnItem()
{
    Rig rig;
    for (const char *details : {"YB1A:1", "YB2B:2", "YB1A:1"})
        rig.add(details);
    QCOMPARE(rig.callsigns(), QStringList({q("YB1A"), q("YB2B")}));
    QCOMPARE(rig.counts.last().first().toInt(), 2);
    QCOMPARE(rig.tab.count(), 2);
}

void HwidRequestsTabTest::chosenItemStaysChosen()
{
    Rig rig;
    for (const char *details : {"YB1A:1", "YB2B:2", "YB3C:3"})
        rig.add(details);
    rig.list()->setCurrentRow(1);
    rig.requests.settle(q("YB1A"));
    rig.requests.add(q("YB2B:2"), kWhen.addDays(1));
    QCOMPARE(rig.list()->selectedItems().value(0)->text(), q("YB2B  |  10/03/2025 07:05  |  Klik kanan untuk approve"));
    rig.requests.settle(q("YB2B"));
    QVERIFY(rig.list()->selectedItems().isEmpty()); // a neighbour would be approved in his place
    QVERIFY(!rig.action("approveHwidAction")->isEnabled());
}

void HwidRequestsTabTest::longTextsAreCut()
{
    Rig rig;
    const QString call = q("YB1A\nQUIT\u2028") + QString(1000000, QLatin1Char('W'));
    rig.requests.add(call + q(":1"), kWhen);
    QVERIFY(rig.list()->item(0)->text().startsWith(q("YB1A QUIT WW")));
    QVERIFY(rig.list()->item(0)->text().size() < 300);
    rig.prompts.accept();
    rig.trigger(0, "approveHwidAction");
    QVERIFY(rig.prompts.seen().first().text.size() < 300);
    QCOMPARE(rig.tab.count(), 0);
}

void HwidRequestsTabTest::approves()
{
    Rig rig;
    rig.add("YB1A:1");
    rig.add("YB2B:22");
    rig.prompts.accept([&rig] { QCOMPARE(rig.tab.count(), 1); }); // gone before anybody answers the box
    rig.trigger(1, "approveHwidAction");
    QCOMPARE(rig.commands.size(), 1);
    QCOMPARE(rig.commands.first().first().toString(), q("ADMIN_RESET_HWID 22"));
    QCOMPARE(rig.callsigns(), QStringList(q("YB1A")));
    QCOMPARE(rig.counts.last().first().toInt(), 1);
    QCOMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(rig.prompts.seen().first().title, q("HWID Reset"));
    QCOMPARE(rig.prompts.seen().first().text,
             q("HWID untuk YB2B berhasil direset.\nUser dapat login dari perangkat baru."));
}

void HwidRequestsTabTest::idFromTheUserList_data()
{
    QTest::addColumn<QString>("details");
    QTest::addColumn<QString>("command"); // empty: refused
    QTest::newRow("id in the request") << q("YB1A:7") << q("ADMIN_RESET_HWID 7");
    QTest::newRow("words instead of an id") << q("YB1A:minta reset") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("no id") << q("YB1A") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("empty id") << q("YB1A:") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("id 0") << q("YB1A:0") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("negative id") << q("YB1A:-3") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("id beyond all numbers") << q("YB1A:99999999999") << q("ADMIN_RESET_HWID 41");
    QTest::newRow("nobody of that name") << q("YB9Z:x") << QString();
}

void HwidRequestsTabTest::idFromTheUserList()
{
    QFETCH(QString, details);
    QFETCH(QString, command);
    Rig rig;
    rig.tab.setIdLookup([](const QString &callsign) { return callsign == QLatin1String("YB1A") ? 41 : 0; });
    rig.requests.add(details, kWhen);
    rig.prompts.accept();
    rig.trigger(0, "approveHwidAction");
    if (command.isEmpty()) {
        QCOMPARE(rig.commands.size(), 0);
        QCOMPARE(rig.tab.count(), 1);
        QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Warning);
    } else {
        QCOMPARE(rig.commands.size(), 1);
        QCOMPARE(rig.commands.first().first().toString(), command);
        QCOMPARE(rig.tab.count(), 0);
    }
}

void HwidRequestsTabTest::dismisses()
{
    Rig rig;
    rig.add("YB1A:1");
    rig.add("YB2B:2");
    rig.trigger(0, "dismissHwidAction");
    QCOMPARE(rig.callsigns(), QStringList(q("YB2B")));
    QCOMPARE(rig.commands.size(), 0);
    QCOMPARE(rig.counts.last().first().toInt(), 1);
}

void HwidRequestsTabTest::dismissesByKeyboard()
{
    Rig rig;
    rig.add("YB1A:1");
    QApplication::setActiveWindow(&rig.tab);
    rig.list()->setFocus();
    rig.list()->setCurrentRow(0);
    QTest::keyClick(rig.list(), Qt::Key_Delete);
    QCOMPARE(rig.tab.count(), 0);
    QVERIFY(rig.tab.findChild<QLabel *>(q("emptyState"))->isVisible());
}

void HwidRequestsTabTest::keyboardChooses()
{
    Rig rig;
    rig.add("YB1A:1");
    QApplication::setActiveWindow(&rig.tab);
    rig.list()->setFocus(Qt::TabFocusReason);
    QVERIFY(!rig.action("approveHwidAction")->isEnabled());
    QTest::keyClick(rig.list(), Qt::Key_Down);
    QVERIFY(rig.action("approveHwidAction")->isEnabled());
    QTest::keyClick(rig.list(), Qt::Key_Delete);
    QCOMPARE(rig.tab.count(), 0);
}

void HwidRequestsTabTest::resetElsewhereSettles()
{
    Rig rig;
    for (const char *details : {"YB1A:1", "YB1AB:2"})
        rig.add(details);
    rig.requests.settle(q("YB1A"));
    QCOMPARE(rig.callsigns(), QStringList(q("YB1AB")));
    QCOMPARE(rig.counts.last().first().toInt(), 1);
    QCOMPARE(rig.commands.size(), 0);
}

void HwidRequestsTabTest::nothingSelected()
{
    Rig rig;
    rig.add("YB1A:1");
    rig.list()->clearSelection();
    QVERIFY(!rig.action("approveHwidAction")->isEnabled());
    QVERIFY(!rig.action("dismissHwidAction")->isEnabled());
    rig.list()->setCurrentRow(0);
    QVERIFY(rig.action("approveHwidAction")->isEnabled());
    QVERIFY(rig.action("dismissHwidAction")->isEnabled());
}

void HwidRequestsTabTest::menuOfTheSelectedItem_data()
{
    QTest::addColumn<int>("reason");
    QTest::newRow("mouse") << int(QContextMenuEvent::Mouse);
    QTest::newRow("menu key") << int(QContextMenuEvent::Keyboard);
}

void HwidRequestsTabTest::menuOfTheSelectedItem()
{
    QFETCH(int, reason);
    Rig rig;
    rig.add("YB1A:1");
    rig.add("YB2B:2");
    const QPoint place = rig.list()->visualItemRect(rig.list()->item(1)).center();
    QTest::mouseClick(rig.list()->viewport(), Qt::RightButton, {}, place);
    QCOMPARE(rig.list()->currentRow(), 1);
    QStringList entries;
    QTimer::singleShot(0, &rig.tab, [&entries] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        for (const QAction *action : menu->actions())
            entries.append(action->text());
        menu->setActiveAction(menu->actions().last());
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QContextMenuEvent event(static_cast<QContextMenuEvent::Reason>(reason), place,
                            rig.list()->viewport()->mapToGlobal(place));
    QApplication::sendEvent(rig.list()->viewport(), &event);
    QCOMPARE(entries, QStringList({q("Approve Reset HWID"), q("Dismiss")}));
    QCOMPARE(rig.callsigns(), QStringList(q("YB1A")));
}

void HwidRequestsTabTest::mayGoWhileTheBoxIsOpen()
{
    ScriptedPrompts prompts;
    HwidRequests requests(nullptr);
    auto *tab = new HwidRequestsTab(requests, prompts);
    const QPointer<HwidRequestsTab> watched(tab);
    requests.add(q("YB1A:1"), kWhen);
    tab->findChild<QListWidget *>()->setCurrentRow(0);
    prompts.accept([tab] { delete tab; });
    tab->findChild<QAction *>(q("approveHwidAction"))->trigger();
    QTRY_VERIFY(!watched);
}

EVOX_TEST_MAIN(HwidRequestsTabTest, QApplication)
#include "tst_hwidrequeststab.moc"
