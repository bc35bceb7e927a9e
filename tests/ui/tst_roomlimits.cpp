// The limits of the rooms: what the server tells of them, and that no change of a room takes one away.
#include "RoomsRig.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QSpinBox>

using namespace RoomsTest;

class RoomLimitsTest final : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void silenceIsNoLimit();
    void roomsAreBounded();
    void renamingKeepsTheLimit_data();
    void renamingKeepsTheLimit();
    void unknownIsProposed();
    void unknownIsEnteredByKeyboard();
    void renamedRoomKeepsWhatWasEntered();
    void limitsMayComeLate();
    void limitsMayComeBeforeTheNewName();
    void enteredLimitSurvivesTheServersNext();
    void lostLimitIsKeptAndHintedAt();
};

namespace {

QVariantMap infoOf(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).object().toVariantMap();
}

QSpinBox *maximum(const Rig &rig)
{
    return rig.find<QSpinBox>("roomMaximumSpin");
}

void rename(const Rig &rig, const char *name)
{
    rig.find<QLineEdit>("roomNameEdit")->setText(q(name));
}

} // namespace

void RoomLimitsTest::reads_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("limit"); // -1: not known
    const auto row = [](const char *value, int limit) { QTest::newRow(value) << q(value) << limit; };
    row("0", 0);
    row("25", 25);
    row("25.0", 25);
    row("2147483647", 2147483647);
    row("2147483648", -1);
    row("1e300", -1);
    row("-1", -1);
    row("2.5", -1);
    row("\"25\"", -1);
    row("true", -1);
    row("null", -1);
    row("[25]", -1);
    row("{}", -1);
}

void RoomLimitsTest::reads()
{
    QFETCH(QString, value);
    QFETCH(int, limit);
    const auto limits = RoomLimits::read(infoOf(q("{\"room_limits\":{\"Lobby\":%1}}").arg(value)));
    QVERIFY(limits);
    QCOMPARE(limits->value(q("Lobby"), -1), limit);
    QCOMPARE(limits->size(), limit < 0 ? 0 : 1);
}

void RoomLimitsTest::silenceIsNoLimit()
{
    QVERIFY(!RoomLimits::read(infoOf(q("{\"total_rooms\":2}"))));
    const auto odd = RoomLimits::read(infoOf(q("{\"room_limits\":[1,2]}")));
    QVERIFY(odd && odd->isEmpty());
}

void RoomLimitsTest::roomsAreBounded()
{
    QVariantMap rooms{{QString(201, QLatin1Char('x')), 1}};
    for (int i = 0; i < RoomLimits::kMostRooms + 5; ++i)
        rooms.insert(QStringLiteral("Room %1").arg(i), 1);
    const auto limits = RoomLimits::read({{q("room_limits"), rooms}});
    QCOMPARE(limits->size(), RoomLimits::kMostRooms);
    QVERIFY(!RoomLimits::read({{q("room_limits"), rooms}})->contains(rooms.lastKey()));
}

void RoomLimitsTest::renamingKeepsTheLimit_data()
{
    QTest::addColumn<int>("limit");
    QTest::newRow("none") << 0;
    QTest::newRow("small") << 12;
    QTest::newRow("more than the panel proposes") << RoomsTab::kMostUsers + 1;
}

/// It was set elsewhere: by another administrator, or before this panel was opened.
void RoomLimitsTest::renamingKeepsTheLimit()
{
    QFETCH(int, limit);
    Rig rig;
    rig.tab.showLimits({{q("Alpha"), limit}, {q("Lobby"), 3}});
    rig.select(0);
    rig.select(1);
    QCOMPARE(maximum(rig)->value(), limit);
    rename(rig, "Beta");
    rig.click("saveRoomButton");
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" %1 \"\"").arg(limit)));
}

void RoomLimitsTest::unknownIsProposed()
{
    Rig rig("Lobby,Alpha", false);
    rig.select(1);
    rig.prompts.enter(q("New"));
    rig.prompts.cancel();
    rig.click("addRoomButton");
    QCOMPARE(maximum(rig)->value(), rig.prompts.seen().last().value); // as for a new room
    QVERIFY(maximum(rig)->isEnabled());
    QVERIFY(rig.find<QLabel>("roomLimitHint")->isVisible());
    QCOMPARE(rig.find<QLabel>("roomLimitHint")->text(),
             q("The server does not tell the present limit. Saving sets the one above."));
    rename(rig, "Beta");
    rig.click("saveRoomButton");
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 50 \"\"")));
    QCOMPARE(rig.refreshes.size(), 1);
}

void RoomLimitsTest::unknownIsEnteredByKeyboard()
{
    Rig rig("Lobby", false);
    rig.select(0);
    maximum(rig)->setFocus();
    maximum(rig)->selectAll();
    QTest::keyClicks(maximum(rig), q("25"));
    QTest::keyClick(rig.find<QLineEdit>("roomNameEdit"), Qt::Key_Return);
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Lobby\" \"Lobby\" 25 \"\"")));
    QVERIFY(rig.find<QLabel>("roomLimitHint")->isVisible()); // told by nobody yet
}

/// With a server that never tells a limit.
void RoomLimitsTest::renamedRoomKeepsWhatWasEntered()
{
    Rig rig("Lobby,Alpha", false);
    rig.select(1);
    rename(rig, "Beta");
    maximum(rig)->setValue(25);
    rig.click("saveRoomButton");
    rig.tab.showRooms(names("Lobby,Beta"));
    QCOMPARE(rig.selected(), q("Beta"));
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("Beta"));
    QCOMPARE(maximum(rig)->value(), 25);
}

void RoomLimitsTest::limitsMayComeLate()
{
    Rig rig("Lobby,Alpha", false);
    rig.select(1);
    rename(rig, "half typed");
    rig.tab.showLimits({{q("Alpha"), 7}});
    QCOMPARE(maximum(rig)->value(), 7);
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("half typed"));
    QVERIFY(!rig.find<QLabel>("roomLimitHint")->isVisible());
    rig.tab.showLimits({{q("Alpha"), 8}}); // changed by somebody else
    QCOMPARE(maximum(rig)->value(), 8);
    rig.select(0);
    QVERIFY(rig.find<QLabel>("roomLimitHint")->isVisible());
}

void RoomLimitsTest::limitsMayComeBeforeTheNewName()
{
    Rig rig("Lobby,Alpha");
    rig.select(1);
    rename(rig, "Beta");
    rig.click("saveRoomButton");
    rig.tab.showLimits({{q("Lobby"), 0}, {q("Beta"), 9}});
    rig.tab.showRooms(names("Lobby,Beta"));
    QCOMPARE(maximum(rig)->value(), 9);
    QVERIFY(!rig.find<QLabel>("roomLimitHint")->isVisible());
}

void RoomLimitsTest::enteredLimitSurvivesTheServersNext()
{
    Rig rig;
    rig.select(0);
    maximum(rig)->setValue(30);
    rig.tab.showLimits({{q("Lobby"), 7}});
    QCOMPARE(maximum(rig)->value(), 30);
    rig.tab.showLimits({{q("Lobby"), 30}}); // saved
    rig.tab.showLimits({{q("Lobby"), 31}});
    QCOMPARE(maximum(rig)->value(), 31);
}

void RoomLimitsTest::lostLimitIsKeptAndHintedAt()
{
    Rig rig;
    rig.tab.showLimits({{q("Lobby"), 7}});
    rig.select(0);
    rig.tab.showLimits({});
    QCOMPARE(maximum(rig)->value(), 7);
    QVERIFY(rig.find<QLabel>("roomLimitHint")->isVisible());
    rig.tab.showLimits({{q("Lobby"), 8}}); // back again
    QCOMPARE(maximum(rig)->value(), 8);
    QVERIFY(!rig.find<QLabel>("roomLimitHint")->isVisible());
}

EVOX_TEST_MAIN(RoomLimitsTest, QApplication)
#include "tst_roomlimits.moc"
