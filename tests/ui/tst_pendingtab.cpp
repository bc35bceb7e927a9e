#include "AdminUsers.h"
#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/Theme.h"
#include "ui/admin/PendingTab.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

#include <memory>

using namespace AdminUsers;

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class PendingTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsAnnounced();
    void showsTheList();
    void saysThatNobodyWaits();
    void approves_data();
    void approves();
    void nobodyChosen();
    void aRecordWithoutIdIsNotApproved();
    void theChosenOneIsKept();
    void theRestMovesUpUnchosen();
    void pictures_data();
    void pictures();

private:
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = m_tab->findChild<Widget *>(q(name));
        Q_ASSERT(widget);
        return widget;
    }
    [[nodiscard]] QTableView *table() const { return find<QTableView>("pendingTable"); }
    void doubleClick(int row) const;

    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<PendingTab> m_tab;
};

void PendingTabTest::init()
{
    m_prompts = std::make_unique<ScriptedPrompts>();
    m_tab = std::make_unique<PendingTab>(*m_prompts);
    m_tab->resize(880, 480);
    m_tab->show();
}

void PendingTabTest::cleanup()
{
    m_tab.reset();
    m_prompts.reset();
}

void PendingTabTest::doubleClick(int row) const
{
    const QPoint middle = table()->visualRect(table()->model()->index(row, 0)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, middle);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, middle);
}

void PendingTabTest::looksAsAnnounced()
{
    QCOMPARE(find<QLabel>("pendingHeading")->text(), q("Users Waiting for Approval"));
    QCOMPARE(find<QLabel>("pendingTotal")->text(), q("Total: 0 pending"));
    QCOMPARE(find<QPushButton>("approveSelectedButton")->text(), q("Approve Selected"));
    QStringList titles;
    for (int i = 0; i < table()->model()->columnCount(); ++i)
        titles += table()->model()->headerData(i, Qt::Horizontal).toString();
    QCOMPARE(titles, (QStringList{q("Callsign"), q("Name"), q("Email"), q("WhatsApp")}));
}

void PendingTabTest::showsTheList()
{
    m_tab->showUsers(users(1, 3));
    QCOMPARE(table()->model()->rowCount(), 3);
    QCOMPARE(find<QLabel>("pendingTotal")->text(), q("Total: 3 pending"));
    QStringList texts;
    for (int i = 0; i < 4; ++i)
        texts += table()->model()->index(1, i).data().toString();
    QCOMPARE(texts, (QStringList{q("YH2AB"), q("Sari"), q("yh@example.org"), q("0812")}));
    m_tab->showUsers({});
    QCOMPARE(find<QLabel>("pendingTotal")->text(), q("Total: 0 pending"));
}

void PendingTabTest::saysThatNobodyWaits()
{
    const auto *empty = find<QLabel>("emptyState");
    QCOMPARE(empty->text(), q("No users waiting for approval"));
    QVERIFY(empty->isVisible());
    m_tab->showUsers(users(1, 1));
    QVERIFY(!empty->isVisible());
}

void PendingTabTest::approves_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"button", "double click", "context menu"})
        QTest::newRow(way) << q(way);
}

void PendingTabTest::approves()
{
    QFETCH(QString, way);
    m_tab->showUsers(users(11, 13));
    QSignalSpy approved(m_tab.get(), &PendingTab::approveRequested);
    QSignalSpy refresh(m_tab.get(), &PendingTab::refreshRequested);
    if (way == q("double click"))
        doubleClick(1);
    else
        table()->selectRow(1);
    if (way == q("button"))
        QTest::keyClick(find<QPushButton>("approveSelectedButton"), Qt::Key_Space);
    else if (way == q("context menu"))
        table()->actions().first()->trigger();
    QCOMPARE(table()->contextMenuPolicy(), Qt::ActionsContextMenu);
    QTRY_COMPARE(approved.count(), 1);
    QCOMPARE(approved.first().first().toInt(), 12);
    QCOMPARE(refresh.count(), 1);
}

void PendingTabTest::nobodyChosen()
{
    m_tab->showUsers(users(1, 2));
    table()->setFocus(); // makes the first row current, unseen
    QSignalSpy approved(m_tab.get(), &PendingTab::approveRequested);
    m_prompts->accept();
    find<QPushButton>("approveSelectedButton")->click();
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().first().title, q("Error"));
    QCOMPARE(m_prompts->seen().first().text, q("Please select a user first."));
    QCOMPARE(approved.count(), 0);
}

void PendingTabTest::aRecordWithoutIdIsNotApproved()
{
    m_tab->showUsers({{{q("callsign"), q("YH0AB")}}});
    table()->selectRow(0);
    QSignalSpy approved(m_tab.get(), &PendingTab::approveRequested);
    find<QPushButton>("approveSelectedButton")->click();
    QCOMPARE(approved.count(), 0);
}

void PendingTabTest::theChosenOneIsKept()
{
    m_tab->showUsers(users(11, 13));
    table()->selectRow(1);
    m_tab->showUsers(users(12, 15));
    QSignalSpy approved(m_tab.get(), &PendingTab::approveRequested);
    find<QPushButton>("approveSelectedButton")->click();
    QCOMPARE(approved.count(), 1);
    QCOMPARE(approved.first().first().toInt(), 12);
}

void PendingTabTest::theRestMovesUpUnchosen()
{
    m_tab->showUsers(users(11, 13));
    table()->selectRow(0);
    m_tab->showUsers(users(12, 13)); // the chosen one was approved elsewhere
    QVERIFY(!table()->selectionModel()->hasSelection());
}

void PendingTabTest::pictures_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void PendingTabTest::pictures()
{
    QFETCH(bool, dark);
    useDesktopFont();
    LogCapture log; // a style sheet that does not parse is a warning
    Theme::apply(*qApp, dark);
    const QString suffix = dark ? q("dark") : q("light");
    PendingTab tab(*m_prompts);
    tab.resize(880, 480);
    QVERIFY(!Screenshots::save(tab, q("admin-pending-empty-") + suffix).isNull());
    tab.showUsers(users(1, 9));
    tab.findChild<QTableView *>(q("pendingTable"))->selectRow(2);
    QVERIFY(!Screenshots::save(tab, q("admin-pending-") + suffix).isNull());
    Theme::apply(*qApp, false);
}

EVOX_TEST_MAIN(PendingTabTest, QApplication)
#include "tst_pendingtab.moc"
