#include "AllUsersRig.h"
#include "support/LogCapture.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

using namespace AdminUsers;

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

/// Gateways that an administrator adds, and the approval that he asked for with it.
class AllUsersAddTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_rig = std::make_unique<AllUsersRig>(); }
    void cleanup() { m_rig.reset(); }

    void addsAGateway_data();
    void addsAGateway();
    void anApprovalWaitsForTheNewList();
    void anApprovedGatewayIsApprovedOnce();
    void gatewaysAreAnsweredInOrder();
    void anUnansweredGatewayApprovesNobody();
    void aNewConnectionAnswersNothingOld();
    void aConfirmedGatewayIsForgottenWithTheConnection();
    void refusedGatewayIsReported();
    void otherRegistrationsAreNotItsOwn();

private:
    std::unique_ptr<AllUsersRig> m_rig;
};

void AllUsersAddTest::addsAGateway_data()
{
    QTest::addColumn<bool>("approved");
    QTest::newRow("to be approved later") << false;
    QTest::newRow("approved") << true;
}

void AllUsersAddTest::addsAGateway()
{
    QFETCH(bool, approved);
    m_rig->addGateway(q("YH8RXX"), approved);
    QCOMPARE(m_rig->lines.size(), 1);
    const QString line = m_rig->lines.takeFirst();
    QVERIFY2(line.startsWith(q(R"(REGISTER_GATEWAY "Satu" "YH8RXX" "-" "20)")), qPrintable(line));
    QVERIFY2(line.endsWith(q(R"(" "-" "Ani" "-" "pw%2" "-" "-")")), qPrintable(line));
    QCOMPARE(m_rig->prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_rig->prompts.seen().first().title, q("Success"));
    QCOMPARE(m_rig->prompts.seen().first().text, q("Gateway YH8RXX berhasil ditambahkan!\nPassword: pw%2"));
    m_rig->tab->onRegisterResult(true, q("Registrasi berhasil"));
    QCOMPARE(m_rig->lines, QStringList{q("refresh")});
    m_rig->lines.clear();
    m_rig->tab->showUsers({user(5), user(6, {{q("callsign"), q("YH8RXX")}, {q("approved"), false}})});
    QCOMPARE(m_rig->lines, approved ? (QStringList{q("approve 6"), q("refresh")}) : QStringList());
}

void AllUsersAddTest::anApprovalWaitsForTheNewList()
{
    const Users with{user(6, {{q("callsign"), q("YH8RXX")}})};
    m_rig->addGateway(q("YH8RXX"), true);
    m_rig->lines.clear();
    m_rig->tab->showUsers(with); // somebody's of that callsign, before the server said anything
    QCOMPARE(m_rig->lines, QStringList());
    m_rig->tab->onRegisterResult(true, {});
    m_rig->lines.clear();
    m_rig->tab->showUsers(users(1, 3)); // was on its way already
    QCOMPARE(m_rig->lines, QStringList());
    m_rig->tab->showUsers(with);
    QCOMPARE(m_rig->lines.value(0), q("approve 6"));
}

void AllUsersAddTest::anApprovedGatewayIsApprovedOnce()
{
    const Users with{user(6, {{q("callsign"), q("YH8RXX")}})};
    m_rig->addGateway(q("YH8RXX"), true);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->showUsers(with);
    m_rig->lines.clear();
    m_rig->tab->showUsers(with);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->showUsers(with);
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersAddTest::gatewaysAreAnsweredInOrder()
{
    m_rig->addGateway(q("YH1AA"), true);
    m_rig->addGateway(q("YH2BB"), true);
    m_rig->addGateway(q("YH3CC"), false);
    m_rig->addGateway(q("YH4DD"), true);
    m_rig->prompts.accept();
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->onRegisterResult(false, q("no\n") + QString(1000000, QLatin1Char('W')));
    QVERIFY(m_rig->prompts.seen().last().text.size() <= 200);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->onRegisterResult(true, {});
    m_rig->lines.clear();
    const auto listed = [](int id, const char *callsign) { return user(id, {{q("callsign"), q(callsign)}}); };
    m_rig->tab->showUsers({listed(1, "YH1AA"), listed(2, "YH2BB"), listed(3, "YH3CC")});
    QCOMPARE(m_rig->lines, (QStringList{q("approve 1"), q("refresh")}));
    m_rig->lines.clear();
    m_rig->tab->showUsers({listed(1, "YH1AA"), listed(2, "YH2BB"), listed(3, "YH3CC"), listed(4, "YH4DD")});
    QCOMPARE(m_rig->lines, (QStringList{q("approve 4"), q("refresh")}));
}

/// The server may answer a registration with another word, or not at all; the next answer is then another one's.
void AllUsersAddTest::anUnansweredGatewayApprovesNobody()
{
    const auto listed = [](int id, const char *callsign) { return user(id, {{q("callsign"), q(callsign)}}); };
    m_rig->addGateway(q("YH1AA"), true); // somebody's already
    m_rig->addGateway(q("YH2BB"), false);
    m_rig->tab->onRegisterResult(true, {}); // the second one's
    QCOMPARE(m_rig->lines.takeLast(), q("refresh"));
    m_rig->lines.clear();
    m_rig->tab->showUsers({listed(1, "YH1AA"), listed(2, "YH2BB")});
    m_rig->addGateway(q("YH3CC"), true); // somebody's as well
    m_rig->prompts.accept();
    m_rig->tab->onRegisterResult(false, q("Callsign sudah terdaftar"));
    m_rig->addGateway(q("YH4DD"), false);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->lines.clear();
    m_rig->tab->showUsers({listed(1, "YH1AA"), listed(2, "YH2BB"), listed(3, "YH3CC"), listed(4, "YH4DD")});
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersAddTest::aConfirmedGatewayIsForgottenWithTheConnection()
{
    m_rig->addGateway(q("YH1AA"), true);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->forgetRegistrations();
    m_rig->lines.clear();
    m_rig->tab->showUsers({user(1, {{q("callsign"), q("YH1AA")}})}); // deleted and registered anew meanwhile
    QCOMPARE(m_rig->lines, QStringList());
}

void AllUsersAddTest::aNewConnectionAnswersNothingOld()
{
    m_rig->addGateway(q("YH1AA"), true); // lost with the connection
    m_rig->tab->forgetRegistrations();
    m_rig->addGateway(q("YH2BB"), true);
    m_rig->tab->onRegisterResult(true, {});
    m_rig->lines.clear();
    m_rig->tab->showUsers({user(1, {{q("callsign"), q("YH1AA")}}), user(2, {{q("callsign"), q("YH2BB")}})});
    QCOMPARE(m_rig->lines, (QStringList{q("approve 2"), q("refresh")}));
}

void AllUsersAddTest::refusedGatewayIsReported()
{
    m_rig->addGateway(q("YH8RXX"), true);
    m_rig->lines.clear();
    m_rig->prompts.accept();
    m_rig->tab->onRegisterResult(false, q("Callsign sudah terdaftar"));
    QCOMPARE(m_rig->prompts.seen().last().kind, Prompt::Kind::Warning);
    QCOMPARE(m_rig->prompts.seen().last().title, q("Add Gateway"));
    QCOMPARE(m_rig->prompts.seen().last().text, q("Callsign sudah terdaftar"));
    m_rig->tab->showUsers({user(6, {{q("callsign"), q("YH8RXX")}})});
    QCOMPARE(m_rig->lines, QStringList()); // the one that had the callsign before is not approved
}

void AllUsersAddTest::otherRegistrationsAreNotItsOwn()
{
    m_rig->tab->onRegisterResult(true, {});
    m_rig->tab->onRegisterResult(false, q("no")); // a box would fail
    QCOMPARE(m_rig->lines, QStringList());
}

EVOX_TEST_MAIN(AllUsersAddTest, QApplication)
#include "tst_allusersadd.moc"
