#include "RoomRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserMenu.h"
#include "ui/room/UserWidget.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

using namespace RoomRig;

class UserMenuTest final : public QObject
{
    Q_OBJECT

private slots:
    void menuEntries_data();
    void menuEntries();
    void menuChoices_data();
    void menuChoices();
    void menuShowsServerTextsLiterally();
    void rightClickOpensTheRowsMenu();
    void menuKeyOpensTheCurrentRowsMenu();
    void menuOutlivesItsRow();
    void menuGoesWithThePanel();
    void moveOffersNoCurrentRoom_data();
    void moveOffersNoCurrentRoom();
    void clickBesideTheRows();
    void itemWithoutRow();
    void doubleClickDoesNothing();
};

namespace {

QStringList entries(const QMenu &menu)
{
    QStringList result;
    for (const QAction *action : menu.actions()) {
        QString text = action->isSeparator() ? QStringLiteral("--") : action->text();
        if (!action->isEnabled() && !action->isSeparator())
            text += QStringLiteral(" (off)");
        if (action->isCheckable())
            text += action->isChecked() ? QStringLiteral(" [x]") : QStringLiteral(" [ ]");
        if (action->menu())
            text += QStringLiteral(" > ") + entries(*action->menu()).join(QLatin1Char(','));
        result += text;
    }
    return result;
}

QAction *entry(const QMenu &menu, const QString &text)
{
    for (QAction *action : menu.actions()) {
        if (action->text() == text)
            return action;
        if (QAction *inside = action->menu() ? entry(*action->menu(), text) : nullptr)
            return inside;
    }
    return nullptr;
}

/// Runs once a menu is up.
template<typename Action> void whenMenuIsOpen(QObject *context, Action action)
{
    auto *timer = new QTimer(context);
    QObject::connect(timer, &QTimer::timeout, context, [timer, action] {
        if (auto *menu = qobject_cast<UserMenu *>(QApplication::activePopupWidget())) {
            timer->stop();
            timer->deleteLater();
            action(menu);
        }
    });
    timer->start(1);
}

void rightClick(RoomPanel &panel, const QPoint &inList)
{
    QWindow *window = panel.window()->windowHandle();
    const QPoint pos = list(panel)->viewport()->mapTo(panel.window(), inList);
    QTest::mouseClick(window, Qt::RightButton, {}, pos);
}

} // namespace

void UserMenuTest::menuEntries_data()
{
    QTest::addColumn<bool>("isSelf");
    QTest::addColumn<bool>("isAdmin");
    QTest::addColumn<bool>("approved");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, bool isSelf, bool isAdmin, bool approved, bool muted, const char *expected) {
        QTest::newRow(name) << isSelf << isAdmin << approved << muted << QString::fromLatin1(expected);
    };
    const char *own = "YB0ABC (You) (off);--;Mute Microphone [ ];Mute Speaker [ ];--;Move to Room > Jakarta,Bogor";
    row("own row", true, false, true, false, own);
    row("own row, muted", true, false, true, true, own);
    row("own row of an administrator", true, true, false, false, own);
    row("another station", false, false, true, false, "YB0ABC (off);--;Admin actions only (off)");
    row("administrator, approved", false, true, true, false,
        "YB0ABC (off);--;Revoke Approval;--;Mute User;Kick User;Ban User;--;Move to Room > Jakarta,Bogor;--;User Info");
    row("administrator, not approved", false, true, false, false,
        "YB0ABC (off);--;Approve User;--;Mute User;Kick User;Ban User;--;Move to Room > Jakarta,Bogor;--;User Info");
    row("administrator, muted", false, true, true, true,
        "YB0ABC (off);--;Revoke Approval;--;Unmute User;Kick User;Ban User;--;Move to Room > Jakarta,Bogor;--;User "
        "Info");
}

void UserMenuTest::menuEntries()
{
    QFETCH(bool, isSelf);
    QFETCH(bool, isAdmin);
    QFETCH(bool, approved);
    QFETCH(bool, muted);
    QFETCH(QString, expected);
    RoomPanel panel;
    panel.setAdmin(isAdmin);
    QCOMPARE(panel.isAdmin(), isAdmin);
    panel.setRooms({QStringLiteral("Lobby"), QStringLiteral("Jakarta"), QStringLiteral("Bogor")});
    panel.setCurrentRoom(QStringLiteral("Lobby"));
    panel.setUsers({user(7, QStringLiteral("YB0ABC"), QStringLiteral("Budi"), false, approved, muted)},
                   isSelf ? QStringLiteral("YB0ABC") : QStringLiteral("YB0XYZ"));
    show(panel);
    QStringList seen;
    QString style;
    QFont titleFont;
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        seen = entries(*menu);
        style = menu->styleSheet();
        titleFont = menu->actions().first()->font();
        QTest::keyClick(menu, Qt::Key_Escape);
    });
    rightClick(panel, middleOf(panel, 0));
    QTRY_COMPARE(seen.join(QLatin1Char(';')), expected);
    QCOMPARE(style, QStringLiteral("QMenu { padding: 4px; } QMenu::item { padding: 8px 20px; }"));
    QCOMPARE(titleFont, QFont(QStringLiteral("Segoe UI"), 10, QFont::Bold));
}

void UserMenuTest::menuChoices_data()
{
    QTest::addColumn<bool>("isSelf");
    QTest::addColumn<bool>("isSet"); // approved and muted
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("expected");
    const auto row = [](const char *text, bool isSelf, bool isSet, const char *action, int id = 7,
                        const char *room = "") {
        QTest::addRow("%s%s", isSelf ? "own row: " : "", text)
            << isSelf << isSet << QString::fromLatin1(text)
            << QVariantList{QString::fromLatin1(action), QStringLiteral("YB0ABC"), id, QString::fromLatin1(room)};
    };
    row("Mute Microphone", true, false, "self_mute_mic");
    row("Mute Speaker", true, false, "self_mute_speaker");
    row("Jakarta", true, false, "move", 7, "Jakarta");
    row("Approve User", false, false, "approve");
    row("Revoke Approval", false, true, "revoke");
    row("Mute User", false, false, "mute");
    row("Unmute User", false, true, "unmute");
    row("Kick User", false, false, "kick");
    row("Ban User", false, false, "ban");
    row("A&&B", false, false, "move", 7, "A&B");
    row("User Info", false, false, "info", 0);
}

void UserMenuTest::menuChoices()
{
    QFETCH(bool, isSelf);
    QFETCH(bool, isSet);
    QFETCH(QString, text);
    QFETCH(QVariantList, expected);
    RoomPanel panel;
    panel.setAdmin(true);
    panel.setRooms({QStringLiteral("Lobby"), QStringLiteral("Jakarta"), QStringLiteral("A&B")});
    panel.setUsers({user(7, QStringLiteral("YB0ABC"), QStringLiteral("Budi"), false, isSet, isSet)},
                   isSelf ? QStringLiteral("YB0ABC") : QString());
    show(panel);
    QSignalSpy spy(&panel, &RoomPanel::userAction);
    bool found = false;
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        QAction *action = entry(*menu, text);
        found = action != nullptr;
        if (found)
            action->trigger();
        menu->close();
    });
    rightClick(panel, middleOf(panel, 0));
    QTRY_VERIFY(!QApplication::activePopupWidget());
    QVERIFY2(found, "no such entry");
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first(), expected);
}

void UserMenuTest::menuShowsServerTextsLiterally()
{
    UserMenu menu({kRichText, 1, false, true, false}, true, {QStringLiteral("R&D\n"), QString(5000, QLatin1Char('W'))});
    QCOMPARE(menu.actions().first()->text(), QStringLiteral("<h1>W</h1> &&x"));
    const QMenu *move = entry(menu, QStringLiteral("Move to Room"))->menu();
    QCOMPARE(move->actions().first()->text(), QStringLiteral("R&&D "));
    QVERIFY2(move->actions().last()->text().size() < 100, "a huge name is not cut");
    QSignalSpy spy(&menu, &UserMenu::chosen);
    move->actions().last()->trigger();
    QCOMPARE(spy.first().last().toString(), QString(5000, QLatin1Char('W')));
}

void UserMenuTest::rightClickOpensTheRowsMenu()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C")), {});
    show(panel);
    QString title;
    QPoint at;
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        title = menu->actions().first()->text();
        at = menu->pos();
        menu->close();
    });
    const QPoint clicked = middleOf(panel, 1);
    rightClick(panel, clicked);
    QTRY_COMPARE(title, QStringLiteral("B"));
    QCOMPARE(at.y(), list(panel)->viewport()->mapToGlobal(clicked).y()); // a narrow screen moves it sideways
}

void UserMenuTest::menuKeyOpensTheCurrentRowsMenu()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C")), {});
    show(panel);
    panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    list(panel)->setFocus();
    list(panel)->setCurrentRow(2);
    QString title;
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        title = menu->actions().first()->text();
        menu->close();
    });
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}); // what the menu key becomes on a real display
    QCoreApplication::sendEvent(panel.windowHandle(), &key);
    QTRY_COMPARE(title, QStringLiteral("C"));
}

void UserMenuTest::menuOutlivesItsRow()
{
    RoomPanel panel;
    panel.setAdmin(true);
    panel.setUsers(users(QStringLiteral("A B C")), {});
    show(panel);
    QSignalSpy spy(&panel, &RoomPanel::userAction);
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        panel.setUsers(users(QStringLiteral("X")), {}); // a user list arrives
        panel.clearUsers();
        entry(*menu, QStringLiteral("Kick User"))->trigger();
        menu->close();
    });
    rightClick(panel, middleOf(panel, 1));
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.first(), (QVariantList{QStringLiteral("kick"), QStringLiteral("B"), 66, QString()}));
}

void UserMenuTest::menuGoesWithThePanel()
{
    auto *panel = new RoomPanel;
    panel->setUsers(users(QStringLiteral("A")), {});
    show(*panel);
    const QPointer<RoomPanel> guard(panel);
    whenMenuIsOpen(qApp, [&](UserMenu *) { delete panel; });
    QMetaObject::invokeMethod(panel, "onUserContextMenu", Q_ARG(QPoint, middleOf(*panel, 0)));
    QVERIFY(guard.isNull());
    QVERIFY(!QApplication::activePopupWidget());
}

void UserMenuTest::moveOffersNoCurrentRoom_data()
{
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("offered");
    const QStringList three{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
    QTest::newRow("one of three") << three << QStringLiteral("B") << QStringLiteral("A,C");
    QTest::newRow("in none") << three << QString() << QStringLiteral("A,B,C");
    QTest::newRow("only one room") << QStringList{QStringLiteral("A")} << QStringLiteral("A") << QString();
    QTest::newRow("no rooms available") << QStringList() << QString() << QString();
    QTest::newRow("a room that is not listed") << three << QStringLiteral("D") << QStringLiteral("A,B,C");
}

void UserMenuTest::moveOffersNoCurrentRoom()
{
    QFETCH(QStringList, rooms);
    QFETCH(QString, current);
    QFETCH(QString, offered);
    RoomPanel panel;
    panel.setRooms(rooms);
    panel.setCurrentRoom(current);
    panel.setUsers(users(QStringLiteral("A")), QStringLiteral("A"));
    show(panel);
    QString seen;
    whenMenuIsOpen(&panel, [&](UserMenu *menu) {
        seen = entries(*menu).last();
        menu->close();
    });
    rightClick(panel, middleOf(panel, 0));
    QTRY_COMPARE(seen, QStringLiteral("Move to Room > ") + offered);
}

void UserMenuTest::clickBesideTheRows()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A")), {});
    show(panel);
    LogCapture log;
    QSignalSpy spy(&panel, &RoomPanel::userAction);
    rightClick(panel, QPoint(20, 150));
    QTRY_VERIFY(log.contains(QStringLiteral("[RoomPanel] No item at position")));
    QVERIFY(!QApplication::activePopupWidget());
    QCOMPARE(spy.count(), 0);
}

void UserMenuTest::itemWithoutRow()
{
    RoomPanel panel;
    list(panel)->addItem(QStringLiteral("stray"));
    show(panel);
    LogCapture log;
    rightClick(panel, middleOf(panel, 0));
    QTRY_VERIFY(log.contains(QStringLiteral("[RoomPanel] No UserWidget")));
    QVERIFY(!QApplication::activePopupWidget());
    panel.setUsers(users(QStringLiteral("A")), {});
    QCOMPARE(callsigns(panel), QStringList{QStringLiteral("A")});
}

void UserMenuTest::doubleClickDoesNothing()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A")), QStringLiteral("A"));
    show(panel);
    QSignalSpy actions(&panel, &RoomPanel::userAction);
    QSignalSpy joins(&panel, &RoomPanel::joinRoom);
    const QStringList before = state(panel);
    QTest::mouseDClick(list(panel)->viewport(), Qt::LeftButton, {}, middleOf(panel, 0));
    QVERIFY(QMetaObject::invokeMethod(&panel, "onUserDoubleClicked", Q_ARG(QListWidgetItem *, list(panel)->item(0))));
    QCOMPARE(actions.count() + joins.count(), 0);
    QCOMPARE(state(panel), before);
    QVERIFY(!QApplication::activePopupWidget());
}

EVOX_TEST_MAIN(UserMenuTest, QApplication)
#include "tst_usermenu.moc"
