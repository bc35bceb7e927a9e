#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserMenu.h"
#include "ui/room/UserWidget.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

using Users = QList<QVariantMap>;

class RoomPanelTest final : public QObject
{
    Q_OBJECT

private slots:
    void startsInNoRoom();
    void listIsSetUp();
    void setRooms_data();
    void setRooms();
    void setCurrentRoom_data();
    void setCurrentRoom();
    void joinButton_data();
    void joinButton();
    void leaveReEnablesJoinAtOnce();
    void leaveByKeyboard();

    void rowsFollowTheList_data();
    void rowsFollowTheList();
    void isAsIfEveryRowWereMadeAnew_data() { rowsFollowTheList_data(); }
    void isAsIfEveryRowWereMadeAnew();
    void keepsRowsThatAreRight();
    void replacesRowsOfAnotherName_data();
    void replacesRowsOfAnotherName();
    void ownRow_data();
    void ownRow();
    void laterOfTwoWins();
    void cutsAnAbsurdList();
    void itemState_data();
    void itemState();
    void unknownStationIsIgnored();
    void clearForgetsRowsOnly();
    void savedMute_data();
    void savedMute();
    void mutesListedStation();
    void selectionStaysWithItsStation();
    void selectionGoesWithItsStation();
    void scrollPositionStaysWithItsStation();

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

    void themes_data();
    void themes();
    void transmittingRowCanBeReadInBothThemes_data();
    void transmittingRowCanBeReadInBothThemes();
    void hostileTextsDoNotMoveThePanel();
    void pictures_data();
    void pictures();
};

namespace {

const QString kRichText = QStringLiteral("<h1>W</h1>\n&x");

QVariantMap user(int id, const QString &callsign, const QString &name = {}, bool transmitting = false,
                 bool approved = true, bool muted = false)
{
    return {{QStringLiteral("user_id"), id},
            {QStringLiteral("callsign"), callsign},
            {QStringLiteral("name"), name.isEmpty() ? callsign : name},
            {QStringLiteral("is_transmitting"), transmitting},
            {QStringLiteral("approved"), approved},
            {QStringLiteral("is_muted"), muted}};
}

/// "A B C": a station each, its id from its letter.
Users users(const QString &callsigns)
{
    Users result;
    for (const QString &callsign : callsigns.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        result += user(callsign.at(0).unicode(), callsign);
    return result;
}

template<typename Widget> Widget *part(const RoomPanel &panel, const char *name)
{
    auto *found = panel.findChild<Widget *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

QListWidget *list(const RoomPanel &panel)
{
    return part<QListWidget>(panel, "userList");
}

UserWidget *rowWidget(const RoomPanel &panel, int row)
{
    return qobject_cast<UserWidget *>(list(panel)->itemWidget(list(panel)->item(row)));
}

QStringList callsigns(const RoomPanel &panel)
{
    QStringList result;
    for (int row = 0; row < list(panel)->count(); ++row)
        result += rowWidget(panel, row) ? rowWidget(panel, row)->callsign() : QStringLiteral("(no row)");
    return result;
}

/// All that can be seen or asked of the rows.
QStringList state(const RoomPanel &panel)
{
    QStringList result;
    for (int row = 0; row < list(panel)->count(); ++row) {
        const QListWidgetItem *item = list(panel)->item(row);
        QStringList parts{QString::number(rowWidget(panel, row)->userId()),
                          item->background().color().name(QColor::HexArgb),
                          item->foreground().color().name(),
                          item->font().toString(),
                          rowWidget(panel, row)->styleSheet(),
                          QString::number(item->sizeHint().height())};
        for (const int role : {2, 3, 5})
            parts += item->data(Qt::UserRole + role).toString();
        for (const QLabel *label : rowWidget(panel, row)->findChildren<QLabel *>())
            parts += label->text() + QLatin1Char('/') + label->toolTip();
        result += parts.join(QLatin1Char('|'));
    }
    return result;
}

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

QPoint middleOf(const RoomPanel &panel, int row)
{
    return list(panel)->visualItemRect(list(panel)->item(row)).center();
}

void rightClick(RoomPanel &panel, const QPoint &inList)
{
    QWindow *window = panel.window()->windowHandle();
    const QPoint pos = list(panel)->viewport()->mapTo(panel.window(), inList);
    QTest::mouseClick(window, Qt::RightButton, {}, pos);
}

void show(RoomPanel &panel)
{
    panel.resize(420, 560);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
}

void addDark()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

} // namespace

void RoomPanelTest::startsInNoRoom()
{
    LogCapture log;
    const RoomPanel panel;
    QCOMPARE(panel.currentRoom(), QString());
    QVERIFY(!panel.isAdmin());
    QCOMPARE(panel.availableRooms(), QStringList());
    QCOMPARE(part<QLabel>(panel, "roomsTitle")->text(), QStringLiteral("ROOMS"));
    QCOMPARE(part<QLabel>(panel, "roomStatus")->text(), QStringLiteral("Belum bergabung di room"));
    QCOMPARE(part<QLabel>(panel, "usersHeader")->text(), QStringLiteral("RF-Gateway Units"));
    QCOMPARE(part<QPushButton>(panel, "joinButton")->text(), QStringLiteral("Join"));
    QCOMPARE(part<QPushButton>(panel, "leaveButton")->text(), QStringLiteral("Leave"));
    QVERIFY(!part<QPushButton>(panel, "joinButton")->isEnabled());
    QVERIFY(!part<QPushButton>(panel, "leaveButton")->isEnabled());
    QVERIFY(!part<QComboBox>(panel, "roomSelector")->isEditable());
    QCOMPARE(part<QLabel>(panel, "roomStatus")->minimumHeight(), 36);
    QVERIFY(part<QLabel>(panel, "roomStatus")->wordWrap());
    for (const char *name : {"roomSelector", "joinButton", "leaveButton"})
        QCOMPARE(part<QWidget>(panel, name)->minimumHeight(), 30);
    QCOMPARE(panel.layout()->contentsMargins(), QMargins(4, 4, 4, 4));
    QCOMPARE(panel.layout()->spacing(), 4);
}

void RoomPanelTest::listIsSetUp()
{
    const RoomPanel panel;
    const QListWidget *tested = list(panel);
    QVERIFY(tested->alternatingRowColors());
    QCOMPARE(tested->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(tested->contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(tested->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(tested->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(tested->minimumHeight(), 200);
}

void RoomPanelTest::setRooms_data()
{
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("available");
    QTest::addColumn<bool>("canJoin");
    const QStringList none{QStringLiteral("No rooms available")};
    const QStringList unsorted{QStringLiteral("Zulu"), QStringLiteral("Alpha"), QStringLiteral("Lobby")};
    const QStringList marked{QStringLiteral("<b>A&B</b>"), QStringLiteral("C D")};
    QTest::newRow("server order, no sorting") << unsorted << unsorted << unsorted << true;
    QTest::newRow("one") << QStringList{QStringLiteral("Lobby")} << QStringList{QStringLiteral("Lobby")}
                         << QStringList{QStringLiteral("Lobby")} << true;
    QTest::newRow("empty list") << QStringList() << none << QStringList() << false;
    QTest::newRow("names with marks") << marked << marked << marked << true;
}

void RoomPanelTest::setRooms()
{
    QFETCH(QStringList, rooms);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, available);
    QFETCH(bool, canJoin);
    RoomPanel panel;
    panel.setRooms(canJoin ? QStringList() : QStringList{QStringLiteral("Former")}); // the other state first
    panel.setRooms(rooms);
    const auto *selector = part<QComboBox>(panel, "roomSelector");
    QStringList texts;
    for (int i = 0; i < selector->count(); ++i)
        texts += selector->itemText(i);
    QCOMPARE(texts, shown);
    QCOMPARE(panel.availableRooms(), available);
    QCOMPARE(part<QPushButton>(panel, "joinButton")->isEnabled(), canJoin);
}

void RoomPanelTest::setCurrentRoom_data()
{
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<QString>("room");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("style");
    QTest::addColumn<bool>("canJoin");
    QTest::addColumn<bool>("canLeave");
    const QStringList lobby{QStringLiteral("Lobby")};
    const QStringList joined{QStringLiteral("background-color: #012B61;"), QStringLiteral("font-size: 14px;")};
    const QStringList notJoined{QStringLiteral("background-color: #F44336;"), QStringLiteral("font-size: 13px;")};
    const QString inLobby = QStringLiteral("Currently joining the room : Lobby");
    const QString nowhere = QStringLiteral("Belum bergabung di room");
    QTest::newRow("joined") << lobby << QStringLiteral("Lobby") << inLobby << joined << false << true;
    QTest::newRow("joined before any list")
        << QStringList() << QStringLiteral("Lobby") << inLobby << joined << false << true;
    QTest::newRow("left, with rooms") << lobby << QString() << nowhere << notJoined << true << false;
    QTest::newRow("left, without rooms") << QStringList() << QString() << nowhere << notJoined << false << false;
    QTest::newRow("rich text") << lobby << QStringLiteral("<b>x</b>")
                               << QStringLiteral("Currently joining the room : <b>x</b>") << joined << false << true;
}

void RoomPanelTest::setCurrentRoom()
{
    QFETCH(QStringList, rooms);
    QFETCH(QString, room);
    QFETCH(QString, text);
    QFETCH(QStringList, style);
    QFETCH(bool, canJoin);
    QFETCH(bool, canLeave);
    RoomPanel panel;
    panel.setRooms(rooms);
    panel.setCurrentRoom(room.isEmpty() ? QStringLiteral("Former") : QString());
    panel.setCurrentRoom(room);
    QCOMPARE(panel.currentRoom(), room);
    const auto *status = part<QLabel>(panel, "roomStatus");
    QCOMPARE(status->text(), text);
    QCOMPARE(status->textFormat(), Qt::PlainText);
    for (const QString &rule :
         style + QStringList{QStringLiteral("color: #FFFFFF;"), QStringLiteral("font-weight: bold;")})
        QVERIFY2(status->styleSheet().contains(rule), qPrintable(rule));
    QCOMPARE(part<QPushButton>(panel, "joinButton")->isEnabled(), canJoin);
    QCOMPARE(part<QPushButton>(panel, "leaveButton")->isEnabled(), canLeave);
}

void RoomPanelTest::joinButton_data()
{
    QTest::addColumn<QStringList>("rooms");
    QTest::addColumn<int>("chosen");
    QTest::addColumn<QStringList>("asked");
    const QStringList rooms{QStringLiteral("Lobby"), QStringLiteral("Jakarta")};
    QTest::newRow("first room") << rooms << 0 << QStringList{QStringLiteral("Lobby")};
    QTest::newRow("second room") << rooms << 1 << QStringList{QStringLiteral("Jakarta")};
    QTest::newRow("no rooms available") << QStringList() << 0 << QStringList();
    QTest::newRow("a room of that very name")
        << QStringList{QStringLiteral("No rooms available")} << 0 << QStringList();
}

void RoomPanelTest::joinButton()
{
    QFETCH(QStringList, rooms);
    QFETCH(int, chosen);
    QFETCH(QStringList, asked);
    RoomPanel panel;
    panel.setRooms(rooms);
    part<QComboBox>(panel, "roomSelector")->setCurrentIndex(chosen);
    auto *join = part<QPushButton>(panel, "joinButton");
    join->setEnabled(true); // also without a room, where it is off
    QSignalSpy spy(&panel, &RoomPanel::joinRoom);
    QTest::mouseClick(join, Qt::LeftButton);
    QStringList emitted;
    for (const QList<QVariant> &arguments : spy)
        emitted += arguments.first().toString();
    QCOMPARE(emitted, asked);
    QCOMPARE(panel.currentRoom(), QString()); // changes with the server's answer only
    QVERIFY(!part<QPushButton>(panel, "leaveButton")->isEnabled());
}

void RoomPanelTest::leaveReEnablesJoinAtOnce()
{
    RoomPanel panel;
    panel.setRooms({QStringLiteral("Lobby")});
    panel.setCurrentRoom(QStringLiteral("Lobby"));
    auto *join = part<QPushButton>(panel, "joinButton");
    auto *leave = part<QPushButton>(panel, "leaveButton");
    bool joinWhenAsked = false;
    connect(&panel, &RoomPanel::leaveRoom, &panel, [&] { joinWhenAsked = join->isEnabled() && !leave->isEnabled(); });
    QSignalSpy spy(&panel, &RoomPanel::leaveRoom);
    QTest::mouseClick(leave, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QVERIFY(joinWhenAsked);
    QCOMPARE(panel.currentRoom(), QStringLiteral("Lobby"));
    QTest::mouseClick(leave, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
}

void RoomPanelTest::leaveByKeyboard()
{
    RoomPanel panel;
    panel.setCurrentRoom(QStringLiteral("Lobby"));
    QSignalSpy spy(&panel, &RoomPanel::leaveRoom);
    QTest::keyClick(part<QPushButton>(panel, "leaveButton"), Qt::Key_Space);
    QCOMPARE(spy.count(), 1);
}

void RoomPanelTest::rowsFollowTheList_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, const char *before, const char *after) {
        QTest::newRow(name) << QString::fromLatin1(before) << QString::fromLatin1(after);
    };
    row("first list", "", "A B C");
    row("same", "A B C", "A B C");
    row("joined at the end", "A B", "A B C");
    row("joined at the beginning", "B C", "A B C");
    row("joined in the middle", "A C", "A B C");
    row("left at the beginning", "A B C", "B C");
    row("left in the middle", "A B C", "A C");
    row("left at the end", "A B C", "A B");
    row("all left", "A B C", "");
    row("all others", "A B C", "D E F");
    row("first went to the end", "A B C D", "B C D A");
    row("last went to the beginning", "A B C D", "D A B C");
    row("turned round", "A B C D E", "E D C B A");
    row("two swapped", "A B C D", "A C B D");
    row("left, joined and moved", "A B C D E", "F D A E G");
}

void RoomPanelTest::rowsFollowTheList()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    LogCapture log;
    RoomPanel panel;
    panel.setUsers(users(before), {});
    panel.setUsers(users(after), {});
    const QStringList expected = after.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QCOMPARE(callsigns(panel), expected);
    for (const QString &callsign : expected) {
        QVERIFY(panel.userWidget(callsign));
        QCOMPARE(panel.userWidget(callsign)->callsign(), callsign);
    }
    for (const QString &callsign : before.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        QCOMPARE(panel.userWidget(callsign) != nullptr, expected.contains(callsign));
    for (int row = 0; row < expected.size(); ++row)
        QCOMPARE(list(panel)->item(row)->sizeHint().height(), 36);
}

void RoomPanelTest::isAsIfEveryRowWereMadeAnew()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    const auto marked = [](const QString &text, int seed) {
        Users result = users(text);
        for (int i = 0; i < result.size(); ++i) {
            result[i][QStringLiteral("is_transmitting")] = (i + seed) % 3 == 0;
            result[i][QStringLiteral("is_muted")] = (i + seed) % 2 == 0;
            result[i][QStringLiteral("approved")] = (i + seed) % 4 != 0;
        }
        return result;
    };
    RoomPanel panel;
    panel.setUsers(marked(before, 0), QStringLiteral("B"));
    for (int row = 0; row < list(panel)->count(); ++row)
        rowWidget(panel, row)->setSpeakerMuted(true);
    panel.setUsers(marked(after, 1), QStringLiteral("B"));
    RoomPanel fresh;
    fresh.setUsers(marked(after, 1), QStringLiteral("B"));
    QCOMPARE(state(panel), state(fresh));
}

void RoomPanelTest::keepsRowsThatAreRight()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C D")), {});
    const QPointer<UserWidget> a = panel.userWidget(QStringLiteral("A"));
    const QPointer<UserWidget> b = panel.userWidget(QStringLiteral("B"));
    const QPointer<UserWidget> d = panel.userWidget(QStringLiteral("D"));
    Users now = users(QStringLiteral("A B X D"));
    now[1][QStringLiteral("is_transmitting")] = true;
    panel.setUsers(now, {});
    QCOMPARE(panel.userWidget(QStringLiteral("A")), a.data());
    QCOMPARE(panel.userWidget(QStringLiteral("B")), b.data());
    QCOMPARE(panel.userWidget(QStringLiteral("D")), d.data());
    QVERIFY(b && b->isTransmitting());
}

void RoomPanelTest::replacesRowsOfAnotherName_data()
{
    QTest::addColumn<QVariantMap>("record");
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("id");
    QTest::newRow("new name") << user(1, QStringLiteral("YB0ABC"), QStringLiteral("Budi")) << QString()
                              << QStringLiteral("Budi  [YB0ABC]") << 1;
    QTest::newRow("new id") << user(2, QStringLiteral("YB0ABC")) << QString() << QStringLiteral("YB0ABC") << 2;
    QTest::newRow("became the own one") << user(1, QStringLiteral("YB0ABC")) << QStringLiteral("YB0ABC")
                                        << QStringLiteral("YB0ABC (You)") << 1;
}

void RoomPanelTest::replacesRowsOfAnotherName()
{
    QFETCH(QVariantMap, record);
    QFETCH(QString, own);
    QFETCH(QString, text);
    QFETCH(int, id);
    RoomPanel panel;
    panel.setUsers({user(1, QStringLiteral("YB0ABC"))}, {});
    panel.setUsers({record}, own);
    QCOMPARE(list(panel)->count(), 1);
    QCOMPARE(rowWidget(panel, 0)->findChild<QLabel *>(QStringLiteral("nameLabel"))->text(), text);
    QCOMPARE(rowWidget(panel, 0)->userId(), id);
    QCOMPARE(panel.userWidget(QStringLiteral("YB0ABC")), rowWidget(panel, 0));
}

void RoomPanelTest::ownRow_data()
{
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("own");
    QTest::addColumn<bool>("isSelf");
    QTest::newRow("own") << QStringLiteral("YB0ABC") << QStringLiteral("YB0ABC") << true;
    QTest::newRow("another") << QStringLiteral("YB0ABC") << QStringLiteral("YB0ABD") << false;
    QTest::newRow("in other case") << QStringLiteral("yb0abc") << QStringLiteral("YB0ABC") << false;
    QTest::newRow("nobody logged in") << QString() << QString() << false;
}

void RoomPanelTest::ownRow()
{
    QFETCH(QString, callsign);
    QFETCH(QString, own);
    QFETCH(bool, isSelf);
    RoomPanel panel;
    panel.setUsers({user(1, callsign)}, own);
    QCOMPARE(list(panel)->count(), 1);
    QCOMPARE(rowWidget(panel, 0)->isSelf(), isSelf);
}

void RoomPanelTest::laterOfTwoWins()
{
    RoomPanel panel;
    panel.setUsers({user(1, QStringLiteral("A"), QStringLiteral("first"), true), user(2, QStringLiteral("B")),
                    user(3, QStringLiteral("A"), QStringLiteral("second"), false, false)},
                   {});
    QCOMPARE(callsigns(panel), (QStringList{QStringLiteral("B"), QStringLiteral("A")}));
    QCOMPARE(rowWidget(panel, 1)->userId(), 3);
    QCOMPARE(rowWidget(panel, 1)->displayName(), QStringLiteral("second"));
    QVERIFY(!rowWidget(panel, 1)->isTransmitting());
    QVERIFY(!rowWidget(panel, 1)->isApproved());
}

void RoomPanelTest::cutsAnAbsurdList()
{
    LogCapture log;
    Users many;
    for (int i = 0; i < 2001; ++i)
        many += user(i, QStringLiteral("YB%1").arg(i));
    RoomPanel panel;
    panel.setUsers(many, {});
    QCOMPARE(list(panel)->count(), 2000);
    QVERIFY(log.contains(QStringLiteral("[RoomPanel] User list cut to 2000 of 2001")));
}

void RoomPanelTest::itemState_data()
{
    QTest::addColumn<bool>("transmitting");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<bool>("approved");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QString>("text");
    const QColor none(Qt::transparent);
    const QColor red(QStringLiteral("#F44336"));
    QTest::newRow("approved") << false << false << true << none << QStringLiteral("#212121");
    QTest::newRow("not approved") << false << false << false << none << QStringLiteral("#888888");
    QTest::newRow("approved, muted") << false << true << true << none << QStringLiteral("#212121");
    QTest::newRow("transmitting") << true << false << true << red << QStringLiteral("#ffffff");
    QTest::newRow("transmitting, not approved") << true << false << false << red << QStringLiteral("#ffffff");
    QTest::newRow("transmitting, muted") << true << true << true << red << QStringLiteral("#ffffff");
}

void RoomPanelTest::itemState()
{
    QFETCH(bool, transmitting);
    QFETCH(bool, muted);
    QFETCH(bool, approved);
    QFETCH(QColor, ground);
    QFETCH(QString, text);
    const QString callsign = QStringLiteral("YB0ABC");
    RoomPanel panel;
    panel.setUsers({user(1, callsign, {}, !transmitting, !approved, !muted)}, {});
    panel.updateUserState(callsign, transmitting, muted, approved);
    const QListWidgetItem *item = list(panel)->item(0);
    QCOMPARE(item->data(Qt::UserRole + 2), QVariant(approved));
    QCOMPARE(item->data(Qt::UserRole + 3), QVariant(muted));
    QCOMPARE(item->data(Qt::UserRole + 5), QVariant(transmitting));
    QCOMPARE(item->background().color(), ground);
    QCOMPARE(item->foreground().color().name(), text);
    QCOMPARE(item->font().family(), QStringLiteral("Segoe UI"));
    QCOMPARE(item->font().pointSize(), 11);
    QCOMPARE(item->font().weight(), transmitting ? static_cast<int>(QFont::Bold) : static_cast<int>(QFont::Normal));
    QCOMPARE(panel.userWidget(callsign)->isTransmitting(), transmitting);
    QCOMPARE(panel.userWidget(callsign)->isMicMuted(), muted);
    QCOMPARE(panel.userWidget(callsign)->isApproved(), approved);
}

void RoomPanelTest::unknownStationIsIgnored()
{
    LogCapture log;
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B")), {});
    const QStringList before = state(panel);
    panel.updateUserState(QStringLiteral("X"), true, true, false);
    QCOMPARE(state(panel), before);
    QCOMPARE(panel.userWidget(QStringLiteral("X")), nullptr);
}

void RoomPanelTest::clearForgetsRowsOnly()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B")), {});
    panel.setUserMuted(QStringLiteral("A"), true);
    panel.clearUsers();
    QCOMPARE(list(panel)->count(), 0);
    QCOMPARE(panel.userWidget(QStringLiteral("A")), nullptr);
    panel.updateUserState(QStringLiteral("A"), true, true, true);
    panel.setUsers(users(QStringLiteral("A B")), {});
    QVERIFY(panel.userWidget(QStringLiteral("A"))->isMicMuted());
    QVERIFY(!panel.userWidget(QStringLiteral("B"))->isMicMuted());
}

void RoomPanelTest::savedMute_data()
{
    QTest::addColumn<bool>("listedFirst");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<bool>("fromServer");
    for (const bool listedFirst : {true, false}) {
        for (const bool saved : {true, false})
            QTest::addRow("%s, %s against the server", listedFirst ? "listed" : "not listed yet",
                          saved ? "muted" : "unmuted")
                << listedFirst << saved << !saved;
    }
}

void RoomPanelTest::savedMute()
{
    QFETCH(bool, listedFirst);
    QFETCH(bool, saved);
    QFETCH(bool, fromServer);
    const QString callsign = QStringLiteral("YB0ABC");
    const Users server{user(1, callsign, {}, false, true, fromServer)};
    RoomPanel panel;
    if (listedFirst)
        panel.setUsers(server, {});
    LogCapture log;
    panel.setUserMuted(callsign, saved);
    QVERIFY(log.contains(QStringLiteral("[RoomPanel] Mute state saved: YB0ABC ") +
                         (saved ? QStringLiteral("true") : QStringLiteral("false"))));
    panel.setUsers(server, {});
    QCOMPARE(panel.userWidget(callsign)->isMicMuted(), saved);
    QCOMPARE(list(panel)->item(0)->data(Qt::UserRole + 3), QVariant(saved));
    panel.updateUserState(callsign, false, fromServer, true);
    QCOMPARE(panel.userWidget(callsign)->isMicMuted(), saved);
}

void RoomPanelTest::mutesListedStation()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B")), {});
    panel.setUserMuted(QStringLiteral("B"), true);
    QVERIFY(!panel.userWidget(QStringLiteral("A"))->isMicMuted());
    QVERIFY(panel.userWidget(QStringLiteral("B"))->isMicMuted());
    panel.setUserMuted(QStringLiteral("B"), false);
    QVERIFY(!panel.userWidget(QStringLiteral("B"))->isMicMuted());
}

void RoomPanelTest::selectionStaysWithItsStation()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C D")), {});
    show(panel);
    QTest::mouseClick(list(panel)->viewport(), Qt::LeftButton, {}, middleOf(panel, 2));
    QCOMPARE(list(panel)->currentRow(), 2);
    panel.setUsers(users(QStringLiteral("X D C Y")), {}); // C moved, all others changed
    QCOMPARE(list(panel)->currentRow(), 2);
    QVERIFY(list(panel)->item(2)->isSelected());
    panel.setUsers({user(67, QStringLiteral("C"), QStringLiteral("new name"))}, {});
    QCOMPARE(list(panel)->currentRow(), 0);
    QVERIFY(list(panel)->item(0)->isSelected());
}

void RoomPanelTest::selectionGoesWithItsStation()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C")), {});
    list(panel)->setCurrentRow(1);
    panel.setUsers(users(QStringLiteral("A C")), {});
    QVERIFY2(list(panel)->selectedItems().isEmpty(), "another station took over the selection");
    QCOMPARE(list(panel)->currentItem(), nullptr);
}

void RoomPanelTest::scrollPositionStaysWithItsStation()
{
    Users many;
    for (int i = 0; i < 100; ++i)
        many += user(i, QStringLiteral("YB%1").arg(i));
    RoomPanel panel;
    panel.setUsers(many, {});
    show(panel);
    QScrollBar *bar = list(panel)->verticalScrollBar();
    bar->setValue(36 * 50 + 7);
    const int y = rowWidget(panel, 50)->mapTo(&panel, QPoint(0, 0)).y();
    many[60][QStringLiteral("is_transmitting")] = true;
    panel.setUsers(many, {});
    QCoreApplication::processEvents();
    QCOMPARE(bar->value(), 36 * 50 + 7);
    many.removeAt(3);
    many.prepend(user(200, QStringLiteral("YB200")));
    many.prepend(user(201, QStringLiteral("YB201")));
    panel.setUsers(many, {});
    QCoreApplication::processEvents();
    QCOMPARE(panel.userWidget(QStringLiteral("YB50"))->mapTo(&panel, QPoint(0, 0)).y(), y);
    panel.setUsers(many.mid(0, 2), {}); // all that was in sight is gone
    QCoreApplication::processEvents();
    QCOMPARE(bar->value(), 0);
}

void RoomPanelTest::menuEntries_data()
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

void RoomPanelTest::menuEntries()
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

void RoomPanelTest::menuChoices_data()
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

void RoomPanelTest::menuChoices()
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

void RoomPanelTest::menuShowsServerTextsLiterally()
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

void RoomPanelTest::rightClickOpensTheRowsMenu()
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
    QCOMPARE(at, list(panel)->viewport()->mapToGlobal(clicked));
}

void RoomPanelTest::menuKeyOpensTheCurrentRowsMenu()
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

void RoomPanelTest::menuOutlivesItsRow()
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

void RoomPanelTest::menuGoesWithThePanel()
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

void RoomPanelTest::moveOffersNoCurrentRoom_data()
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

void RoomPanelTest::moveOffersNoCurrentRoom()
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

void RoomPanelTest::clickBesideTheRows()
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

void RoomPanelTest::itemWithoutRow()
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

void RoomPanelTest::doubleClickDoesNothing()
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

void RoomPanelTest::themes_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("rule");
    const auto row = [](const char *name, const char *light, const char *dark) {
        QTest::addRow("%s %s, light", name, light) << false << QString::fromLatin1(name) << QString::fromLatin1(light);
        QTest::addRow("%s %s, dark", name, dark) << true << QString::fromLatin1(name) << QString::fromLatin1(dark);
    };
    row("roomsTitle", "background-color: #012B61; color: #FFFFFF;", "background-color: #0D2137; color: #FFFFFF;");
    row("usersHeader", "background-color: #012B61; color: #FFFFFF;", "background-color: #0D2137; color: #FFFFFF;");
    row("userList", "background-color: #FAFAFA;", "background-color: #1A1A1A;");
    row("userList", "::item:selected { background-color: #E3F2FD;", "::item:selected { background-color: #0078D4;");
    row("roomSelector", "background-color: #FAFAFA;", "background-color: #1A1A1A;");
    row("joinButton", "background-color: #2E7D32;", "background-color: #2E7D32;");
    row("leaveButton", "background-color: #C62828;", "background-color: #C62828;");
}

void RoomPanelTest::themes()
{
    QFETCH(bool, dark);
    QFETCH(QString, name);
    QFETCH(QString, rule);
    LogCapture log; // a style sheet that does not parse is a warning
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A")), {});
    const QStringList before = state(panel);
    panel.applyTheme(!dark);
    panel.applyTheme(dark);
    panel.ensurePolished();
    const QString style = part<QWidget>(panel, qPrintable(name))->styleSheet();
    QVERIFY2(style.contains(rule), qPrintable(style));
    QVERIFY2(!style.contains(QLatin1Char('@')), qPrintable(style));
    QCOMPARE(state(panel), before);
}

void RoomPanelTest::transmittingRowCanBeReadInBothThemes_data()
{
    addDark();
}

void RoomPanelTest::transmittingRowCanBeReadInBothThemes()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    RoomPanel panel;
    panel.applyTheme(dark);
    panel.setUsers(users(QStringLiteral("A B")), {});
    panel.updateUserState(QStringLiteral("A"), true, false, true);
    show(panel);
    const auto textColor = [&panel](const char *callsign) {
        const auto *name = panel.userWidget(QLatin1String(callsign))->findChild<QLabel *>(QStringLiteral("nameLabel"));
        return name->palette().color(QPalette::WindowText);
    };
    const QImage row = panel.userWidget(QStringLiteral("A"))->grab().toImage();
    QCOMPARE(row.pixelColor(row.width() / 2, row.height() / 2), QColor(QStringLiteral("#FFEBEE")));
    QCOMPARE(textColor("A"), QColor(QStringLiteral("#212121")));
    QCOMPARE(textColor("B"), Theme::color(Theme::Role::SelectionText, dark));
    panel.updateUserState(QStringLiteral("A"), false, false, true);
    QCOMPARE(textColor("A"), Theme::color(Theme::Role::SelectionText, dark));
    Theme::apply(*qApp, false);
}

void RoomPanelTest::hostileTextsDoNotMoveThePanel()
{
    RoomPanel panel;
    panel.setRooms({QStringLiteral("Lobby")});
    panel.setCurrentRoom(QStringLiteral("Lobby"));
    panel.setUsers(users(QStringLiteral("A")), {});
    const int width = panel.minimumSizeHint().width();
    const int height = panel.minimumSizeHint().height();
    const QString huge = kRichText.repeated(2000);
    panel.setRooms({huge});
    panel.setCurrentRoom(QString(20000, QLatin1Char('W')));
    panel.setUsers({user(1, huge, huge)}, huge);
    QCOMPARE(panel.minimumSizeHint().width(), width);
    QVERIFY(panel.minimumSizeHint().height() <= height + 60);
    show(panel);
    QCOMPARE(rowWidget(panel, 0)->height(), 36);
    QVERIFY(part<QLabel>(panel, "roomStatus")->height() <= 96);
    QVERIFY(!panel.grab().isNull());
}

void RoomPanelTest::pictures_data()
{
    addDark();
}

void RoomPanelTest::pictures()
{
    QFETCH(bool, dark);
    QApplication::setFont(QFont(QApplication::font().family(), 9)); // a desktop\'s; this platform\'s own is a large one
    Theme::apply(*qApp, dark);
    const QString suffix = dark ? QStringLiteral("-dark") : QStringLiteral("-light");
    RoomPanel panel;
    panel.applyTheme(dark);
    panel.resize(420, 620);
    panel.setRooms({});
    QVERIFY(!Screenshots::save(panel, QStringLiteral("room-empty") + suffix).isNull());
    Users many;
    for (int i = 0; i < 12; ++i)
        many += user(i, QStringLiteral("YB%1ABC").arg(i), i % 3 ? QStringLiteral("Gunung %1").arg(i) : QString(),
                     i == 3, i % 4 != 1, i % 5 == 2);
    many[6][QStringLiteral("name")] = QStringLiteral("A very long name of a station that does not fit into any row");
    panel.setRooms({QStringLiteral("Lobby"), QStringLiteral("Jakarta")});
    panel.setCurrentRoom(QStringLiteral("Lobby"));
    panel.setUsers(many, QStringLiteral("YB0ABC"));
    panel.userWidget(QStringLiteral("YB0ABC"))->setSpeakerMuted(true);
    list(panel)->setCurrentRow(5);
    QVERIFY(!Screenshots::save(panel, QStringLiteral("room-full") + suffix).isNull());
    list(panel)->setCurrentRow(3);
    QVERIFY(!Screenshots::save(panel, QStringLiteral("room-talker-chosen") + suffix).isNull());
    UserMenu menu({QStringLiteral("YB1ABC"), 1, false, false, false}, true, {QStringLiteral("Jakarta")}, &panel);
    menu.setActiveAction(menu.actions().at(4));
    menu.resize(menu.sizeHint());
    QVERIFY(!Screenshots::save(menu, QStringLiteral("room-menu") + suffix).isNull());
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(RoomPanelTest, QApplication)
#include "tst_roompanel.moc"
