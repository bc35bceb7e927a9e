#include "support/TestMain.h"
#include "ui/MainActions.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

using State = ConnectionState;
using States = QList<ConnectionState>;

Q_DECLARE_METATYPE(States)

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// Every item of a menu as "text|shortcut|status tip|icon"; a submenu's end with ">".
QStringList itemsOf(const QMenu *menu)
{
    QStringList items;
    for (const QAction *action : menu->actions()) {
        if (action->isSeparator())
            continue;
        items.append(action->text() + q("|") + action->shortcut().toString() + q("|") + action->statusTip() +
                     q(action->icon().isNull() ? "" : "|icon") + q(action->isCheckable() ? "|check" : "") +
                     q(action->menu() ? ">" : ""));
    }
    return items;
}

} // namespace

class MainActionsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void menusInOrder_data();
    void menusInOrder();
    void menuBarInOrder();
    void toolbarInOrder();
    void everyStateSetsEveryAction_data();
    void everyStateSetsEveryAction();
    void roomsOfTheMoveMenu();
    void serialIndicator();
    void everyActionHasAName();
};

void MainActionsTest::initTestCase()
{
    Theme::initResources();
}

void MainActionsTest::menuBarInOrder()
{
    QMainWindow window;
    new MainActions(&window);
    QStringList titles;
    for (const QAction *action : window.menuBar()->actions())
        titles.append(action->text());
    QCOMPARE(titles, (QStringList{q("&File"), q("&View"), q("&Profile"), q("&Room"), q("&Serial"), q("&Help")}));
}

void MainActionsTest::menusInOrder_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::newRow("&File") << QStringList{q("&Connect to Server|Ctrl+Shift+C|Connect to eVOX SINAR server"),
                                          q("&Disconnect from Server|Ctrl+Shift+D|Disconnect from server"),
                                          q("&Settings|Ctrl+,|Configure application settings"),
                                          q("&Admin Panel|Ctrl+Shift+A|Open admin panel (admin only)"),
                                          q("E&xit|Alt+F4|Exit application")};
    QTest::newRow("&View") << QStringList{q("&Dark Theme||Toggle between light and dark theme|check")};
    QTest::newRow("&Profile") << QStringList{q("&View Profile||View your profile information"),
                                             q("&Edit Profile||Edit your profile"),
                                             q("&Change Password||Change your password"),
                                             q("&Reset HWID (Ganti Perangkat)||Reset hardware ID for new device")};
    QTest::newRow("&Room") << QStringList{
        q("&Join Room|Ctrl+J|Join a room|icon"), q("&Leave Room|Ctrl+L|Leave current room|icon"),
        q("Mute &Microphone|||check"), q("Mute &Speaker|||check"), q("&Move to Room|||icon>")};
    QTest::newRow("&Serial") << QStringList{q("&Serial Configuration|Ctrl+Shift+P|Configure serial port for PTT/COS")};
    QTest::newRow("&Help") << QStringList{
        q("&About e-VOX SINAR||About this application"), q("&Check for Updates||Check for new version"),
        q("&Documentation||Open online documentation"), q("&Tutorial||Open online tutorial"),
        q("Buka Folder &Log||Buka folder berkas log untuk laporan masalah")};
}

void MainActionsTest::menusInOrder()
{
    QMainWindow window;
    new MainActions(&window);
    for (const QAction *action : window.menuBar()->actions()) {
        if (action->text() == q(QTest::currentDataTag())) {
            QTEST(itemsOf(action->menu()), "items");
            return;
        }
    }
    QFAIL("no such menu");
}

void MainActionsTest::toolbarInOrder()
{
    QMainWindow window;
    new MainActions(&window);
    const auto *bar = window.findChild<QToolBar *>();
    QCOMPARE(bar->windowTitle(), q("Main Toolbar"));
    QStringList items;
    for (const QAction *action : bar->actions()) {
        if (!action->isSeparator())
            items.append(action->text() + q("|") + action->toolTip() + q(action->isCheckable() ? "|check" : ""));
    }
    QCOMPARE(items, (QStringList{q("Disconnected|Connection Status"), q("Serial|Serial Not Connected"),
                                 q("PTT|PTT Inactive"), q("MIC|Mute Microphone|check"), q("SPK|Mute Speaker|check"),
                                 q("JOIN|Join Room"), q("LEAVE|Leave Room"), q("Settings|Settings")}));
}

void MainActionsTest::everyStateSetsEveryAction_data()
{
    QTest::addColumn<States>("states");
    QTest::addColumn<QString>("enabled");
    // Connect, Disconnect; Join, Leave, both mutes, Move; then the toolbar's MIC, SPK, JOIN and LEAVE, the last two in
    // capitals where they are shown; what is hidden is never enabled.
    const auto row = [](const char *name, const States &states, const char *enabled) {
        QTest::newRow(name) << states << q(enabled);
    };
    row("start", {}, "yn nn nnn nnNn");
    row("disconnected", {State::Disconnected}, "yn nn nnn nnNn");
    row("connected", {State::Connected}, "ny yn nnn nnYn");
    row("in a room", {State::Connected, State::InRoom}, "ny ny yyy yynY");
    row("left the room", {State::Connected, State::InRoom, State::LeftRoom}, "ny yn nnn nnYn");
    row("joined again", {State::Connected, State::InRoom, State::LeftRoom, State::InRoom}, "ny ny yyy yynY");
    row("lost in a room", {State::Connected, State::InRoom, State::Disconnected}, "yn nn nnn nnNn");
    row("kicked", {State::Connected, State::InRoom, State::Kicked}, "ny ny yyy yyNn");
    row("kicked and gone", {State::Connected, State::InRoom, State::Kicked, State::Disconnected}, "yn nn nnn nnNn");
    row("banned", {State::Connected, State::InRoom, State::Banned}, "ny yn yyy yyYn");
    row("banned and gone", {State::Connected, State::InRoom, State::Banned, State::Disconnected}, "yn nn nnn nnNn");
}

void MainActionsTest::everyStateSetsEveryAction()
{
    QFETCH(States, states);
    QMainWindow window;
    auto &actions = *new MainActions(&window);
    for (const State state : states)
        actions.apply(state);
    const auto letter = [](const QAction *action) {
        const QChar l = QLatin1Char(action->isEnabled() ? 'y' : 'n');
        const bool hides = action->text() == q("JOIN") || action->text() == q("LEAVE");
        return hides && action->isVisible() ? l.toUpper() : l;
    };
    QString enabled;
    const auto add = [&](std::initializer_list<const QAction *> group) {
        for (const QAction *action : group)
            enabled += letter(action);
    };
    add({actions.connectToServer, actions.disconnectFromServer});
    enabled += QLatin1Char(' ');
    add({actions.joinRoom, actions.leaveRoom});
    enabled += QLatin1Char(' ');
    add({actions.muteMicrophone, actions.muteSpeaker, actions.moveToRoom->menuAction()});
    enabled += QLatin1Char(' ');
    add({actions.toolbarMicrophone, actions.toolbarSpeaker, actions.toolbarJoin, actions.toolbarLeave});
    QTEST(enabled, "enabled");
    // The others never depend on the connection.
    for (const QAction *action :
         {actions.settings, actions.exit, actions.darkTheme, actions.viewProfile, actions.editProfile,
          actions.changePassword, actions.resetDevice, actions.serialConfiguration, actions.about,
          actions.checkForUpdates, actions.documentation, actions.tutorial, actions.openLogFolder,
          actions.toolbarSettings, actions.connectionIndicator, actions.pttIndicator})
        QVERIFY2(action->isEnabled() && action->isVisible(), qPrintable(action->text()));
    QVERIFY(!actions.serialIndicator->isEnabled());
    QVERIFY(!actions.adminPanel->isEnabled());
}

void MainActionsTest::roomsOfTheMoveMenu()
{
    QMainWindow window;
    auto &actions = *new MainActions(&window);
    QStringList chosen;
    connect(&actions, &MainActions::roomChosen, this, [&chosen](const QString &room) { chosen.append(room); });
    actions.setRooms({q("Lobby"), q("R & D")});
    actions.setRooms({q("R & D"), q("Lobby")});
    QCOMPARE(actions.moveToRoom->actions().size(), 2);
    QCOMPARE(actions.moveToRoom->actions().first()->text(), q("R && D"));
    actions.moveToRoom->actions().first()->trigger();
    QCOMPARE(chosen, QStringList{q("R & D")});
}

void MainActionsTest::serialIndicator()
{
    QMainWindow window;
    auto &actions = *new MainActions(&window);
    actions.showSerialPort({});
    QCOMPARE(actions.serialIndicator->toolTip(), q("Serial Not Configured"));
    QVERIFY(!actions.serialIndicator->isEnabled());
    actions.showSerialPort(q("COM3"));
    QCOMPARE(actions.serialIndicator->toolTip(), q("Serial: COM3"));
    QVERIFY(actions.serialIndicator->isEnabled());
    actions.showSerialPort({});
    actions.showSerialConfigured(q("COM4"));
    QCOMPARE(actions.serialIndicator->toolTip(), q("Serial Configured: COM4"));
    QVERIFY(actions.serialIndicator->isEnabled());
}

// The menus are all there is for a screen reader and for tests.
void MainActionsTest::everyActionHasAName()
{
    QMainWindow window;
    new MainActions(&window);
    for (const QAction *menu : window.menuBar()->actions()) {
        for (const QAction *action : menu->menu()->actions())
            QVERIFY2(action->isSeparator() || action->menu() || !action->objectName().isEmpty(),
                     qPrintable(action->text()));
    }
    for (const QAction *action : window.findChild<QToolBar *>()->actions())
        QVERIFY2(action->isSeparator() || !action->objectName().isEmpty(), qPrintable(action->text()));
}

EVOX_TEST_MAIN(MainActionsTest, QApplication)
#include "tst_mainactions.moc"
