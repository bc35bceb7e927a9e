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
    void unknownIsAskedFor();
    void unknownIsEnteredByKeyboard();
    void limitsMayComeLate();
    void enteredLimitSurvivesTheServersNext();
    void lostLimitsAreNotKnown();
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

void RoomLimitsTest::unknownIsAskedFor()
{
    Rig rig("Lobby,Alpha", false);
    rig.select(1);
    QCOMPARE(maximum(rig)->text(), q("Unknown"));
    QVERIFY(rig.find<QLabel>("roomLimitHint")->isVisible());
    QVERIFY(!rig.find<QPushButton>("saveRoomButton")->isEnabled());
    rename(rig, "Beta");
    rig.tab.onEditRoom(); // as Enter in the name does
    QCOMPARE(rig.sent(), QStringList());
    QVERIFY(maximum(rig)->hasFocus());
    maximum(rig)->stepUp();
    QCOMPARE(maximum(rig)->text(), q("No limit"));
    QVERIFY(!rig.find<QLabel>("roomLimitHint")->isVisible());
    rig.click("saveRoomButton");
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Alpha\" \"Beta\" 0 \"\"")));
    maximum(rig)->stepDown(); // there is no way back to not knowing
    QCOMPARE(maximum(rig)->text(), q("No limit"));
}

void RoomLimitsTest::unknownIsEnteredByKeyboard()
{
    Rig rig("Lobby", false);
    rig.select(0);
    maximum(rig)->setFocus();
    maximum(rig)->selectAll();
    QTest::keyClicks(maximum(rig), q("25"));
    QCOMPARE(maximum(rig)->value(), 25);
    QVERIFY(rig.find<QPushButton>("saveRoomButton")->isEnabled());
    rig.click("saveRoomButton");
    QCOMPARE(rig.sent(), QStringList(q("ADMIN_EDIT_ROOM \"Lobby\" \"Lobby\" 25 \"\"")));
}

void RoomLimitsTest::limitsMayComeLate()
{
    Rig rig("Lobby,Alpha", false);
    rig.select(1);
    rename(rig, "half typed");
    rig.tab.showLimits({{q("Alpha"), 7}});
    QCOMPARE(maximum(rig)->value(), 7);
    QCOMPARE(rig.find<QLineEdit>("roomNameEdit")->text(), q("half typed"));
    QVERIFY(rig.find<QPushButton>("saveRoomButton")->isEnabled());
    rig.tab.showLimits({{q("Alpha"), 8}}); // changed by somebody else
    QCOMPARE(maximum(rig)->value(), 8);
    rig.select(0);
    QCOMPARE(maximum(rig)->text(), q("Unknown"));
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

void RoomLimitsTest::lostLimitsAreNotKnown()
{
    Rig rig;
    rig.tab.showLimits({{q("Lobby"), 7}});
    rig.select(0);
    rig.tab.showLimits({});
    QCOMPARE(maximum(rig)->text(), q("Unknown"));
    QVERIFY(!rig.find<QPushButton>("saveRoomButton")->isEnabled());
}

EVOX_TEST_MAIN(RoomLimitsTest, QApplication)
#include "tst_roomlimits.moc"
