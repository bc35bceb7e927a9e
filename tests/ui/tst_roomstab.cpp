#include "RoomsRig.h"
#include "support/TestMain.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>

using namespace RoomsTest;

class RoomsTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void looksAsAnnounced();
    void detailsOfTheSelectedRoom();
    void adds_data();
    void adds();
    void addingThatComesToNothing_data();
    void addingThatComesToNothing();
    void deletes_data();
    void deletes();
    void edits_data();
    void edits();
    void fieldTakesNoSeparators();
    void renamedRoomStaysSelected();
    void renamingEndsWithTheNextList_data();
    void renamingEndsWithTheNextList();
    void movesByKeyboard_data();
    void movesByKeyboard();
    void dragsWithinTheList();
    void savesTheOrder();
    void savedIsWhatTheServerConfirms();
    void renamedRoomKeepsItsUnsavedPlace();
    void unsavedOrderSurvivesARefresh_data();
    void unsavedOrderSurvivesARefresh();
    void refreshKeepsSelectionAndTyping();
    void longNamesAreCut();
    void longNamesAreNotChangedUnasked_data();
    void longNamesAreNotChangedUnasked();
    void thousandsOfRooms();
    void mayGoWhileABoxIsOpen_data();
    void mayGoWhileABoxIsOpen();
};

void RoomsTabTest::looksAsAnnounced()
{
    const Rig rig("");
    QCOMPARE(rig.find<QLabel>("reorderHint")->text(), q("drag to reorder"));
    QVERIFY(rig.find<QLabel>("reorderHint")->styleSheet().contains(q("font-style: italic;")));
    QCOMPARE(rig.find<QPushButton>("addRoomButton")->text(), q("Add Room"));
    QCOMPARE(rig.find<QPushButton>("addRoomButton")->property("meaning").toString(), q("good"));
    QCOMPARE(rig.find<QPushButton>("deleteRoomButton")->text(), q("Delete Room"));
    QCOMPARE(rig.find<QPushButton>("deleteRoomButton")->property("meaning").toString(), q("danger"));
    QCOMPARE(rig.find<QPushButton>("saveRoomOrderButton")->text(), q("Save Room Order"));
    QCOMPARE(rig.find<QPushButton>("saveRoomOrderButton")->property("meaning").toString(), q("accent"));
    QCOMPARE(rig.find<QPushButton>("saveRoomButton")->text(), q("Save Changes"));
    QCOMPARE(rig.find<QGroupBox>("roomDetailsGroup")->title(), q("Room Details"));
    QStringList labels;
    for (const QLabel *label : rig.find<QGroupBox>("roomDetailsGroup")->findChildren<QLabel *>())
        labels.append(label->text());
    QVERIFY(labels.contains(q("Name:")) && labels.contains(q("Max Users:")));
    QVERIFY(rig.find<QLabel>("emptyState")->isVisible());
    QCOMPARE(rig.status(), QString());
}

void RoomsTabTest::detailsOfTheSelectedRoom()
{
    const Rig rig;
    QCOMPARE(rig.find<QLabel>("roomHint")->text(), q("Select a room to edit"));
    QVERIFY(rig.find<QLabel>("roomHint")->isVisible());
    QVERIFY(!rig.find<QLineEdit>("roomNameEdit")->isVisible());
    QVERIFY(!rig.find<QPushButton>("deleteRoomButton")->isEnabled());
    rig.select(2);
    QVERIFY(!rig.find<QLabel>("roomHint")->isVisible());
    QVERIFY(rig.find<QLineEdit>("roomNameEdit")->isVisible());
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("Ruang Dua"));
    QVERIFY(rig.find<QPushButton>("deleteRoomButton")->isEnabled());
    rig.list()->clearSelection();
    QVERIFY(rig.find<QLabel>("roomHint")->isVisible());
}

void RoomsTabTest::adds_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("line");
    QTest::newRow("one word") << q("Bravo") << 20 << q("ADMIN_CREATE_ROOM \"Bravo\" 20");
    QTest::newRow("blanks") << q("  == LOBBY ==  ") << 0 << q("ADMIN_CREATE_ROOM \"== LOBBY ==\" 0");
    QTest::newRow("place mark") << q("%2") << 1 << q("ADMIN_CREATE_ROOM \"%2\" 1");
    QTest::newRow("longest") << QString(100, QLatin1Char('x')) << 1
                             << QStringLiteral("ADMIN_CREATE_ROOM \"%1\" 1").arg(QString(100, QLatin1Char('x')));
}

void RoomsTabTest::adds()
{
    QFETCH(QString, typed);
    QFETCH(int, maximum);
    QFETCH(QString, line);
    Rig rig;
    rig.prompts.enter(typed);
    rig.prompts.enterNumber(maximum);
    rig.click("addRoomButton");
    QCOMPARE(rig.sent(), QStringList(line));
    QCOMPARE(rig.refreshes.size(), 1);
    QCOMPARE(rig.prompts.seen().size(), 2);
    const Prompt name = rig.prompts.seen().at(0);
    QCOMPARE(name.kind, Prompt::Kind::Text);
    QCOMPARE(name.title, q("Add Room"));
    QCOMPARE(name.text, q("Room Name:"));
    const Prompt users = rig.prompts.seen().at(1);
    QCOMPARE(users.kind, Prompt::Kind::Number);
    QCOMPARE(users.title, q("Add Room"));
    QCOMPARE(users.text, q("Max Users:"));
    QVERIFY(users.minimum <= 0 && users.maximum >= 1000);
}

void RoomsTabTest::addingThatComesToNothing_data()
{
    QTest::addColumn<QString>("typed"); // null: cancelled
    QTest::addColumn<int>("prompts");
    QTest::newRow("name cancelled") << QString() << 1;
    QTest::newRow("name empty") << q("") << 1;
    QTest::newRow("name of blanks") << q("   ") << 1;
    QTest::newRow("maximum cancelled") << q("Bravo") << 2;
    QTest::newRow("double quote") << q("Bra\"vo") << 2;
    QTest::newRow("comma") << q("A,B") << 2;
    QTest::newRow("bar") << q("A|B") << 2;
    QTest::newRow("line break") << q("A\nQUIT") << 2;
    QTest::newRow("too long") << QString(101, QLatin1Char('x')) << 2;
}

void RoomsTabTest::addingThatComesToNothing()
{
    QFETCH(QString, typed);
    QFETCH(int, prompts);
    Rig rig;
    if (typed.isNull())
        rig.prompts.cancel();
    else
        rig.prompts.enter(typed);
    if (prompts == 2)
        rig.prompts.cancel();
    rig.click("addRoomButton");
    QCOMPARE(rig.prompts.seen().size(), prompts);
    if (prompts == 2) {
        const bool refused = typed != QLatin1String("Bravo");
        QCOMPARE(rig.prompts.seen().last().kind, refused ? Prompt::Kind::Warning : Prompt::Kind::Number);
    }
    QCOMPARE(rig.sent(), QStringList());
    QCOMPARE(rig.refreshes.size(), 0);
}

void RoomsTabTest::deletes_data()
{
    QTest::addColumn<bool>("yes");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("yes") << true << QStringList(q("ADMIN_DELETE_ROOM \"Ruang Dua\""));
    QTest::newRow("no") << false << QStringList();
}

void RoomsTabTest::deletes()
{
    QFETCH(bool, yes);
    QFETCH(QStringList, lines);
    Rig rig;
    rig.tab.onDeleteRoom(); // no room, no question
    rig.select(2);
    // The list may change while the question waits.
    const auto change = [&rig] { rig.tab.showRooms(names("Alpha,Lobby")); };
    if (yes)
        rig.prompts.accept(change);
    else
        rig.prompts.cancel(change);
    rig.click("deleteRoomButton");
    QCOMPARE(rig.sent(), lines);
    QCOMPARE(rig.prompts.seen().size(), 1);
    QCOMPARE(rig.prompts.seen().first().kind, Prompt::Kind::Question);
    QCOMPARE(rig.prompts.seen().first().title, q("Delete Room"));
    QCOMPARE(rig.prompts.seen().first().text, q("Are you sure you want to delete room 'Ruang Dua'?"));
}

void RoomsTabTest::edits_data()
{
    QTest::addColumn<int>("row"); // -1: none selected
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("new name") << 2 << q("Ruang Tiga") << 30
                              << QStringList(q("ADMIN_EDIT_ROOM \"Ruang Dua\" \"Ruang Tiga\" 30 \"\""));
    QTest::newRow("maximum only") << 0 << q("Lobby") << 5
                                  << QStringList(q("ADMIN_EDIT_ROOM \"Lobby\" \"Lobby\" 5 \"\""));
    QTest::newRow("no limit") << 0 << q("Lobby") << 0 << QStringList(q("ADMIN_EDIT_ROOM \"Lobby\" \"Lobby\" 0 \"\""));
    QTest::newRow("blanks around it") << 1 << q(" Beta ") << 1
                                      << QStringList(q("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 1 \"\""));
    QTest::newRow("empty name") << 1 << q("") << 1 << QStringList();
    QTest::newRow("name of blanks") << 1 << q("  ") << 1 << QStringList();
    QTest::newRow("no room selected") << -1 << q("Beta") << 1 << QStringList();
}

void RoomsTabTest::edits()
{
    QFETCH(int, row);
    QFETCH(QString, name);
    QFETCH(int, maximum);
    QFETCH(QStringList, lines);
    Rig rig;
    rig.select(row);
    rig.find<QLineEdit>("roomNameEdit")->setText(name);
    rig.find<QSpinBox>("roomMaximumSpin")->setValue(maximum);
    rig.click("saveRoomButton");
    QCOMPARE(rig.sent(), lines);
    QCOMPARE(rig.refreshes.size(), lines.size());
}

void RoomsTabTest::fieldTakesNoSeparators()
{
    Rig rig;
    rig.select(0);
    auto *edit = rig.find<QLineEdit>("roomNameEdit");
    edit->clear();
    QTest::keyClicks(edit, q("A\"B,C|D E"));
    QCOMPARE(edit->text(), q("ABCD E"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Lobby\" \"ABCD E\" 0 \"\"")));
}

void RoomsTabTest::renamedRoomStaysSelected()
{
    Rig rig;
    rig.select(1);
    rig.find<QLineEdit>("roomNameEdit")->setText(q("Beta"));
    rig.click("saveRoomButton");
    rig.tab.showRooms(names("Lobby,Beta,Ruang Dua"));
    QCOMPARE(rig.selected(), q("Beta"));
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("Beta"));
}

void RoomsTabTest::renamingEndsWithTheNextList_data()
{
    QTest::addColumn<QString>("first"); // list after the renaming of Alpha to Beta
    QTest::addColumn<QString>("then");
    QTest::newRow("came about") << q("Lobby,Beta,Ruang Dua") << q("Lobby,Beta");
    QTest::newRow("refused, and made by somebody else") << q("Lobby,Alpha,Ruang Dua") << q("Lobby,Beta");
}

/// The room that is selected goes; the one that was renamed once is not chosen in its place.
void RoomsTabTest::renamingEndsWithTheNextList()
{
    QFETCH(QString, first);
    QFETCH(QString, then);
    Rig rig;
    rig.select(1);
    rig.find<QLineEdit>("roomNameEdit")->setText(q("Beta"));
    rig.click("saveRoomButton");
    rig.tab.showRooms(first.split(QLatin1Char(',')));
    QVERIFY(!rig.selected().isEmpty());
    if (first.contains(q("Beta")))
        rig.select(2);
    rig.tab.showRooms(then.split(QLatin1Char(',')));
    QCOMPARE(rig.selected(), QString());
    QVERIFY(rig.find<QLabel>("roomHint")->isVisible());
    QVERIFY(!rig.find<QPushButton>("deleteRoomButton")->isEnabled());
}

void RoomsTabTest::movesByKeyboard_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("status");
    const QString unsaved = q("Room order not saved yet");
    QTest::newRow("first down") << 0 << int(Qt::Key_Down) << q("Alpha,Lobby,Ruang Dua") << unsaved;
    QTest::newRow("middle up") << 1 << int(Qt::Key_Up) << q("Alpha,Lobby,Ruang Dua") << unsaved;
    QTest::newRow("middle down") << 1 << int(Qt::Key_Down) << q("Lobby,Ruang Dua,Alpha") << unsaved;
    QTest::newRow("last up") << 2 << int(Qt::Key_Up) << q("Lobby,Ruang Dua,Alpha") << unsaved;
    QTest::newRow("first up") << 0 << int(Qt::Key_Up) << q("Lobby,Alpha,Ruang Dua") << QString();
    QTest::newRow("last down") << 2 << int(Qt::Key_Down) << q("Lobby,Alpha,Ruang Dua") << QString();
    QTest::newRow("none selected") << -1 << int(Qt::Key_Down) << q("Lobby,Alpha,Ruang Dua") << QString();
}

void RoomsTabTest::movesByKeyboard()
{
    QFETCH(int, row);
    QFETCH(int, key);
    QFETCH(QString, order);
    QFETCH(QString, status);
    const Rig rig;
    rig.select(row);
    const QString selected = rig.selected();
    rig.press(static_cast<Qt::Key>(key));
    QCOMPARE(rig.rooms(), order);
    QCOMPARE(rig.selected(), selected);
    QCOMPARE(rig.status(), status);
}

void RoomsTabTest::dragsWithinTheList()
{
    const Rig rig;
    QCOMPARE(rig.list()->dragDropMode(), QAbstractItemView::InternalMove);
    QVERIFY(rig.list()->item(0)->flags() & Qt::ItemIsDragEnabled);
    // What the view does with a drop.
    QVERIFY(rig.list()->model()->moveRow(QModelIndex(), 2, QModelIndex(), 0));
    QCOMPARE(rig.rooms(), q("Ruang Dua,Lobby,Alpha"));
    QCOMPARE(rig.status(), q("Room order not saved yet"));
    QVERIFY(rig.list()->model()->moveRow(QModelIndex(), 0, QModelIndex(), 3));
    QCOMPARE(rig.status(), QString()); // as it was
}

void RoomsTabTest::savesTheOrder()
{
    Rig rig;
    rig.select(2);
    rig.press(Qt::Key_Up);
    rig.click("saveRoomOrderButton");
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_SET_ROOM_ORDER Lobby|Ruang Dua|Alpha")));
    QCOMPARE(rig.status(), q("Room order saved!"));
    QCOMPARE(rig.find<QLabel>("roomOrderStatus")->styleSheet(), q("color: #4CAF50; font-weight: bold;"));
    rig.tab.showRooms(names("Lobby,Ruang Dua,Alpha"));
    QCOMPARE(rig.status(), q("Room order saved!"));
    rig.press(Qt::Key_Up);
    QCOMPARE(rig.status(), q("Room order not saved yet"));
    QCOMPARE(rig.find<QLabel>("roomOrderStatus")->styleSheet(), QString());
    Rig none("");
    none.click("saveRoomOrderButton");
    QCOMPARE(none.sent(), QStringList());
}

/// The command may be refused, or lost with the connection.
void RoomsTabTest::savedIsWhatTheServerConfirms()
{
    Rig rig;
    rig.select(2);
    rig.press(Qt::Key_Up);
    rig.click("saveRoomOrderButton");
    QCOMPARE(rig.status(), q("Room order saved!"));
    rig.tab.showRooms(names("Lobby,Alpha,Ruang Dua"));
    QCOMPARE(rig.rooms(), q("Lobby,Ruang Dua,Alpha"));
    QCOMPARE(rig.status(), q("Room order not saved yet"));
    rig.click("saveRoomOrderButton");
    rig.press(Qt::Key_Down); // back, before the server has answered
    QCOMPARE(rig.status(), q("Room order not saved yet"));
    rig.tab.showRooms(names("Lobby,Ruang Dua,Alpha"));
    QCOMPARE(rig.rooms(), q("Lobby,Alpha,Ruang Dua"));
    QCOMPARE(rig.status(), q("Room order not saved yet"));
    rig.click("saveRoomOrderButton");
    rig.tab.showRooms(names("Lobby,Alpha,Ruang Dua"));
    QCOMPARE(rig.status(), q("Room order saved!"));
}

void RoomsTabTest::renamedRoomKeepsItsUnsavedPlace()
{
    Rig rig;
    rig.select(2);
    rig.press(Qt::Key_Up);
    rig.press(Qt::Key_Up);
    rig.find<QLineEdit>("roomNameEdit")->setText(q("Ruang Tiga"));
    rig.click("saveRoomButton");
    rig.tab.showRooms(names("Lobby,Alpha,Ruang Tiga"));
    QCOMPARE(rig.rooms(), q("Ruang Tiga,Lobby,Alpha"));
    QCOMPARE(rig.selected(), q("Ruang Tiga"));
    QCOMPARE(rig.status(), q("Room order not saved yet"));
}

void RoomsTabTest::unsavedOrderSurvivesARefresh_data()
{
    QTest::addColumn<QString>("fromServer");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("status");
    const QString unsaved = q("Room order not saved yet");
    QTest::newRow("same list") << q("Lobby,Alpha,Ruang Dua") << q("Ruang Dua,Lobby,Alpha") << unsaved;
    QTest::newRow("new room") << q("Lobby,New,Alpha,Ruang Dua") << q("Ruang Dua,Lobby,Alpha,New") << unsaved;
    QTest::newRow("room gone") << q("Alpha,Ruang Dua") << q("Ruang Dua,Alpha") << unsaved;
    QTest::newRow("somebody saved the same") << q("Ruang Dua,Lobby,Alpha") << q("Ruang Dua,Lobby,Alpha") << QString();
    QTest::newRow("all gone") << q("") << q("") << QString();
}

void RoomsTabTest::unsavedOrderSurvivesARefresh()
{
    QFETCH(QString, fromServer);
    QFETCH(QString, order);
    QFETCH(QString, status);
    Rig rig;
    rig.select(2);
    rig.press(Qt::Key_Up);
    rig.press(Qt::Key_Up);
    QCOMPARE(rig.rooms(), q("Ruang Dua,Lobby,Alpha"));
    rig.tab.showRooms(fromServer.split(QLatin1Char(','), Qt::SkipEmptyParts));
    QCOMPARE(rig.rooms(), order);
    QCOMPARE(rig.status(), status);
}

void RoomsTabTest::refreshKeepsSelectionAndTyping()
{
    Rig rig;
    rig.select(1);
    rig.find<QLineEdit>("roomNameEdit")->setText(q("half typed"));
    rig.tab.showRooms(names("New,Lobby,Alpha"));
    QCOMPARE(rig.selected(), q("Alpha"));
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("half typed"));
    rig.tab.showRooms(names("New,Lobby"));
    QCOMPARE(rig.selected(), QString());
    QVERIFY(rig.find<QLabel>("roomHint")->isVisible());
}

void RoomsTabTest::longNamesAreCut()
{
    const QString name = q("A\nB\u2028C") + QString(1000000, QLatin1Char('W'));
    Rig rig("");
    rig.tab.showRooms({name, name + QLatin1Char('X')});
    QCOMPARE(rig.list()->item(0)->text().size(), 200);
    QVERIFY(rig.list()->item(0)->text().startsWith(q("A B CWW")));
    QCOMPARE(rig.tab.rooms(), QStringList({name, name + QLatin1Char('X')}));
    rig.select(1);
    rig.prompts.accept();
    rig.click("deleteRoomButton");
    QVERIFY(rig.prompts.seen().first().text.size() < 300);
    QVERIFY(rig.sent().first().endsWith(q("WX\""))); // which room it is nobody cuts
    QVERIFY(!rig.tab.grab().isNull());
}

void RoomsTabTest::longNamesAreNotChangedUnasked_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("longer than one that is entered here") << QString(150, QLatin1Char('x'));
    QTest::newRow("longer than a field shows") << QString(50000, QLatin1Char('x'));
    QTest::newRow("blanks around it") << q(" Lobby ");
}

void RoomsTabTest::longNamesAreNotChangedUnasked()
{
    QFETCH(QString, name);
    Rig rig("");
    rig.tab.showRooms({name});
    rig.select(0);
    rig.find<QSpinBox>("roomMaximumSpin")->setValue(7);
    rig.click("saveRoomButton");
    QTest::keyClick(rig.find<QLineEdit>("roomNameEdit"), Qt::Key_Return);
    const QString line = q("ADMIN_EDIT_ROOM \"") + name + q("\" \"") + name + q("\" 7 \"\"");
    QCOMPARE(rig.sent(), QStringList({line, line}));
    rig.find<QLineEdit>("roomNameEdit")->setText(q("short"));
    rig.click("saveRoomButton");
    QVERIFY(rig.sent().last().endsWith(q("\" \"short\" 7 \"\"")));
}

void RoomsTabTest::thousandsOfRooms()
{
    QStringList rooms;
    for (int i = 0; i < 2000; ++i)
        rooms.append(QStringLiteral("Room %1").arg(i));
    Rig rig("");
    rig.tab.showRooms(rooms);
    rig.select(1000);
    rig.list()->verticalScrollBar()->setValue(990);
    rooms.prepend(q("New"));
    rig.tab.showRooms(rooms);
    QCOMPARE(rig.selected(), q("Room 1000"));
    QCOMPARE(rig.list()->verticalScrollBar()->value(), 990);
    rig.list()->setCurrentRow(-1);
    rig.list()->verticalScrollBar()->setValue(800);
    rooms.prepend(q("Newer"));
    rig.tab.showRooms(rooms);
    QCOMPARE(rig.list()->verticalScrollBar()->value(), 800);
}

void RoomsTabTest::mayGoWhileABoxIsOpen_data()
{
    QTest::addColumn<bool>("adds");
    QTest::newRow("add") << true;
    QTest::newRow("delete") << false;
}

void RoomsTabTest::mayGoWhileABoxIsOpen()
{
    QFETCH(bool, adds);
    ScriptedPrompts prompts;
    auto *tab = new RoomsTab(prompts);
    const QPointer<RoomsTab> watched(tab);
    tab->showRooms(names("Lobby"));
    tab->findChild<QListWidget *>()->setCurrentRow(0);
    if (adds) {
        prompts.enter(q("Bravo"), [tab] { delete tab; });
        tab->onAddRoom();
    } else {
        prompts.accept([tab] { delete tab; });
        tab->onDeleteRoom();
    }
    QVERIFY(!watched);
}

EVOX_TEST_MAIN(RoomsTabTest, QApplication)
#include "tst_roomstab.moc"
