#include "gateway/ConnectionState.h"
#include "support/TestMain.h"

Q_DECLARE_METATYPE(ConnectionState)

class ConnectionStateTest final : public QObject
{
    Q_OBJECT

private slots:
    void rules_data();
    void rules();
};

namespace {

QString letters(const ActionRules &r)
{
    const auto letter = [](Change change) {
        return change == Change::Yes ? QLatin1Char('Y') : change == Change::No ? QLatin1Char('N') : QLatin1Char('-');
    };
    QString text;
    for (const Change change :
         {r.canConnect, r.canDisconnect, r.canJoin, r.joinShown, r.canLeave, r.leaveShown, r.canMute, r.canMove})
        text += letter(change);
    return text + QLatin1String(r.liftsMutes ? " lifts" : "");
}

} // namespace

void ConnectionStateTest::rules_data()
{
    QTest::addColumn<ConnectionState>("state");
    QTest::addColumn<QString>("expected"); // connect, disconnect, join, join shown, leave, leave shown, mute, move
    QTest::newRow("disconnected") << ConnectionState::Disconnected << QStringLiteral("YNNYNNNN lifts");
    QTest::newRow("connected") << ConnectionState::Connected << QStringLiteral("NYYYNN--");
    QTest::newRow("in a room") << ConnectionState::InRoom << QStringLiteral("--NNYYYY");
    QTest::newRow("left the room") << ConnectionState::LeftRoom << QStringLiteral("--YYNNNN lifts");
    QTest::newRow("kicked") << ConnectionState::Kicked << QStringLiteral("---Y-N--");
    QTest::newRow("banned") << ConnectionState::Banned << QStringLiteral("--YYNN--");
}

void ConnectionStateTest::rules()
{
    QFETCH(ConnectionState, state);
    QTEST(letters(actionRules(state)), "expected");
}

EVOX_TEST_MAIN(ConnectionStateTest, QCoreApplication)
#include "tst_connectionstate.moc"
