#include "RoomRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"
#include "ui/room/RoomPanel.h"
#include "ui/room/UserWidget.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QScrollBar>

using namespace RoomRig;

class StationListTest final : public QObject
{
    Q_OBJECT

private slots:
    void listIsSetUp();
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
};

void StationListTest::listIsSetUp()
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

void StationListTest::rowsFollowTheList_data()
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

void StationListTest::rowsFollowTheList()
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

void StationListTest::isAsIfEveryRowWereMadeAnew()
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

void StationListTest::keepsRowsThatAreRight()
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

void StationListTest::replacesRowsOfAnotherName_data()
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

void StationListTest::replacesRowsOfAnotherName()
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

void StationListTest::ownRow_data()
{
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("own");
    QTest::addColumn<bool>("isSelf");
    QTest::newRow("own") << QStringLiteral("YB0ABC") << QStringLiteral("YB0ABC") << true;
    QTest::newRow("another") << QStringLiteral("YB0ABC") << QStringLiteral("YB0ABD") << false;
    QTest::newRow("in other case") << QStringLiteral("yb0abc") << QStringLiteral("YB0ABC") << false;
    QTest::newRow("nobody logged in") << QString() << QString() << false;
}

void StationListTest::ownRow()
{
    QFETCH(QString, callsign);
    QFETCH(QString, own);
    QFETCH(bool, isSelf);
    RoomPanel panel;
    panel.setUsers({user(1, callsign)}, own);
    QCOMPARE(list(panel)->count(), 1);
    QCOMPARE(rowWidget(panel, 0)->isSelf(), isSelf);
}

void StationListTest::laterOfTwoWins()
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

void StationListTest::cutsAnAbsurdList()
{
    LogCapture log;
    Users many;
    for (int i = 0; i < 1001; ++i)
        many += user(i, QStringLiteral("YB%1").arg(i));
    RoomPanel panel;
    panel.setUsers(many, {});
    QCOMPARE(list(panel)->count(), 1000);
    QVERIFY(log.contains(QStringLiteral("[RoomPanel] User list cut to 1000 of 1001")));
}

void StationListTest::itemState_data()
{
    QTest::addColumn<bool>("transmitting");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<bool>("approved");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("listedBefore");
    const QColor none(Qt::transparent);
    const QColor red(QStringLiteral("#F44336"));
    for (const bool listed : {false, true}) {
        const auto row = [listed](const char *name, bool transmitting, bool muted, bool approved, const QColor &ground,
                                  const char *text) {
            QTest::addRow("%s, %s", name, listed ? "changed" : "new row")
                << transmitting << muted << approved << ground << QString::fromLatin1(text) << listed;
        };
        row("approved", false, false, true, none, "#212121");
        row("not approved", false, false, false, none, "#888888");
        row("approved, muted", false, true, true, none, "#212121");
        row("transmitting", true, false, true, red, "#ffffff");
        row("transmitting, not approved", true, false, false, red, "#ffffff");
        row("transmitting, muted", true, true, true, red, "#ffffff");
    }
}

void StationListTest::itemState()
{
    QFETCH(bool, transmitting);
    QFETCH(bool, muted);
    QFETCH(bool, approved);
    QFETCH(QColor, ground);
    QFETCH(QString, text);
    QFETCH(bool, listedBefore);
    const QString callsign = QStringLiteral("YB0ABC");
    RoomPanel panel;
    if (listedBefore)
        panel.setUsers({user(1, callsign, {}, !transmitting, !approved, !muted)}, {});
    panel.setUsers({user(1, callsign, {}, transmitting, approved, muted)}, {});
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

void StationListTest::unknownStationIsIgnored()
{
    LogCapture log;
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B")), {});
    const QStringList before = state(panel);
    panel.updateUserState(QStringLiteral("X"), true, true, false);
    QCOMPARE(state(panel), before);
    QCOMPARE(panel.userWidget(QStringLiteral("X")), nullptr);
}

void StationListTest::clearForgetsRowsOnly()
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

void StationListTest::savedMute_data()
{
    QTest::addColumn<bool>("listedFirst");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<bool>("fromServer");
    QTest::addColumn<bool>("shown"); // by a new list
    for (const bool listedFirst : {true, false}) {
        const auto row = [listedFirst](const char *name, bool saved, bool fromServer, bool shown) {
            QTest::addRow("%s, %s", name, listedFirst ? "listed" : "not listed yet")
                << listedFirst << saved << fromServer << shown;
        };
        row("muted here", true, false, true);
        row("muted here and on the server", true, true, true);
        row("unmuted here", false, false, false);
        row("unmuted here, then muted by another", false, true, true);
    }
}

void StationListTest::savedMute()
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
    QTEST(panel.userWidget(callsign)->isMicMuted(), "shown");
    QCOMPARE(list(panel)->item(0)->data(Qt::UserRole + 3).toBool(), panel.userWidget(callsign)->isMicMuted());
    panel.updateUserState(callsign, false, fromServer, true);
    QCOMPARE(panel.userWidget(callsign)->isMicMuted(), saved);
}

void StationListTest::mutesListedStation()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B")), {});
    panel.setUserMuted(QStringLiteral("B"), true);
    QVERIFY(!panel.userWidget(QStringLiteral("A"))->isMicMuted());
    QVERIFY(panel.userWidget(QStringLiteral("B"))->isMicMuted());
    panel.setUserMuted(QStringLiteral("B"), false);
    QVERIFY(!panel.userWidget(QStringLiteral("B"))->isMicMuted());
}

void StationListTest::selectionStaysWithItsStation()
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

void StationListTest::selectionGoesWithItsStation()
{
    RoomPanel panel;
    panel.setUsers(users(QStringLiteral("A B C")), {});
    list(panel)->setCurrentRow(1);
    panel.setUsers(users(QStringLiteral("A C")), {});
    QVERIFY2(list(panel)->selectedItems().isEmpty(), "another station took over the selection");
    QCOMPARE(list(panel)->currentItem(), nullptr);
}

void StationListTest::scrollPositionStaysWithItsStation()
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

EVOX_TEST_MAIN(StationListTest, QApplication)
#include "tst_stationlist.moc"
