#include "gateway/RelayRules.h"
#include "support/TestMain.h"

Q_DECLARE_METATYPE(RelayRules::CarrierStep)
Q_DECLARE_METATYPE(RelayRules::KeyStep)

using RelayRules::CarrierStep;
using RelayRules::KeyStep;

class RelayRulesTest final : public QObject
{
    Q_OBJECT

private slots:
    void onCarrier_data();
    void onCarrier();
    void remoteTalks_data();
    void remoteTalks();
    void onUserList_data();
    void onUserList();
};

void RelayRulesTest::onCarrier_data()
{
    QTest::addColumn<bool>("active");
    QTest::addColumn<bool>("micMuted");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("inRoom");
    QTest::addColumn<bool>("roomKnown");
    QTest::addColumn<CarrierStep>("step");
    QTest::newRow("rises in a room") << true << false << true << true << true << CarrierStep::StartTransmission;
    QTest::newRow("rises, muted") << true << true << true << true << true << CarrierStep::BlockedByMicMute;
    QTest::newRow("rises, muted and not connected")
        << true << true << false << false << false << CarrierStep::BlockedByMicMute;
    QTest::newRow("rises, not connected") << true << false << false << true << true << CarrierStep::Nothing;
    QTest::newRow("rises before any room") << true << false << true << false << false << CarrierStep::Nothing;
    QTest::newRow("rises, room without the mark") << true << false << true << false << true << CarrierStep::Nothing;
    QTest::newRow("rises, mark without a room") << true << false << true << true << false << CarrierStep::Nothing;
    QTest::newRow("falls in a room") << false << false << true << true << true << CarrierStep::StopTransmission;
    QTest::newRow("falls, muted") << false << true << true << true << true << CarrierStep::StopTransmission;
    QTest::newRow("falls, room without the mark")
        << false << false << true << false << true << CarrierStep::StopTransmission;
    QTest::newRow("falls, not connected") << false << false << false << true << true << CarrierStep::ForgetTransmission;
    QTest::newRow("falls, no room") << false << false << true << true << false << CarrierStep::ForgetTransmission;
    QTest::newRow("falls, muted and not connected")
        << false << true << false << false << false << CarrierStep::ForgetTransmission;
}

void RelayRulesTest::onCarrier()
{
    QFETCH(bool, active);
    QFETCH(bool, micMuted);
    QFETCH(bool, connected);
    QFETCH(bool, inRoom);
    QFETCH(bool, roomKnown);
    QTEST(RelayRules::onCarrier(active, {micMuted, connected, inRoom, roomKnown}), "step");
}

void RelayRulesTest::remoteTalks_data()
{
    QTest::addColumn<QStringList>("talkers"); // callsigns; a leading "*" marks who talks
    QTest::addColumn<bool>("talks");
    const auto row = [](const char *name, const QStringList &talkers, bool talks) {
        QTest::newRow(name) << talkers << talks;
    };
    row("nobody there", {}, false);
    row("nobody talks", {QStringLiteral("YB0ABC"), QStringLiteral("YB1X")}, false);
    row("only this station talks", {QStringLiteral("*YB0ABC"), QStringLiteral("YB1X")}, false);
    row("another talks", {QStringLiteral("YB0ABC"), QStringLiteral("*YB1X")}, true);
    row("both talk", {QStringLiteral("*YB0ABC"), QStringLiteral("*YB1X")}, true);
    row("other case is another station", {QStringLiteral("*yb0abc")}, true);
}

void RelayRulesTest::remoteTalks()
{
    QFETCH(QStringList, talkers);
    QList<QVariantMap> users;
    for (const QString &talker : qAsConst(talkers)) {
        const bool talks = talker.startsWith(QLatin1Char('*'));
        users.append(
            {{QStringLiteral("callsign"), talks ? talker.mid(1) : talker}, {QStringLiteral("is_transmitting"), talks}});
    }
    QTEST(RelayRules::remoteTalks(users, QStringLiteral("YB0ABC")), "talks");
}

void RelayRulesTest::onUserList_data()
{
    QTest::addColumn<bool>("talks");
    QTest::addColumn<bool>("keyed");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<bool>("open");
    QTest::addColumn<KeyStep>("step");
    QTest::newRow("talker appears") << true << false << false << true << KeyStep::Key;
    QTest::newRow("talker goes on") << true << true << false << true << KeyStep::Nothing;
    QTest::newRow("talker gone") << false << true << false << true << KeyStep::Release;
    QTest::newRow("talker gone, muted") << false << true << true << true << KeyStep::Release;
    QTest::newRow("silence goes on") << false << false << false << true << KeyStep::Nothing;
    QTest::newRow("talker appears, muted") << true << false << true << true << KeyStep::BlockedBySpeakerMute;
    QTest::newRow("talker appears, no port") << true << false << false << false << KeyStep::Nothing;
    QTest::newRow("talker appears, muted, no port") << true << false << true << false << KeyStep::Nothing;
    QTest::newRow("talker gone, no port") << false << true << false << false << KeyStep::Nothing;
}

void RelayRulesTest::onUserList()
{
    QFETCH(bool, talks);
    QFETCH(bool, keyed);
    QFETCH(bool, muted);
    QFETCH(bool, open);
    QTEST(RelayRules::onUserList(talks, keyed, muted, open), "step");
}

EVOX_TEST_MAIN(RelayRulesTest, QCoreApplication)
#include "tst_relayrules.moc"
