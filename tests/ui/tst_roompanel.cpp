#include "RoomRig.h"
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
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

using namespace RoomRig;

class RoomPanelTest final : public QObject
{
    Q_OBJECT

private slots:
    void startsInNoRoom();
    void setRooms_data();
    void setRooms();
    void setCurrentRoom_data();
    void setCurrentRoom();
    void joinButton_data();
    void joinButton();
    void leaveReEnablesJoinAtOnce();
    void leaveByKeyboard();
    void themes_data();
    void themes();
    void transmittingRowCanBeReadInBothThemes_data();
    void transmittingRowCanBeReadInBothThemes();
    void hostileTextsDoNotMoveThePanel();
    void pictures_data();
    void pictures();
};

namespace {

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
