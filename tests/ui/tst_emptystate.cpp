#include "support/TestMain.h"
#include "ui/admin/EmptyState.h"

#include <QApplication>
#include <QHeaderView>
#include <QListWidget>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QTableView>

class EmptyStateTest final : public QObject
{
    Q_OBJECT

private slots:
    void followsTheRows();
    void takesTheNextTextAndModel();
    void coversTheRowsOnly();
    void letsTheMouseThrough();
};

namespace {

QLabel *labelOf(const QAbstractItemView &view)
{
    return view.findChild<QLabel *>(QStringLiteral("emptyState"));
}

} // namespace

void EmptyStateTest::followsTheRows()
{
    QListWidget list;
    EmptyState::show(&list, QStringLiteral("<b>Nobody</b>"));
    list.show();
    QVERIFY(labelOf(list)->isVisible());
    QCOMPARE(labelOf(list)->text(), QStringLiteral("<b>Nobody</b>"));
    QCOMPARE(labelOf(list)->textFormat(), Qt::PlainText);
    list.addItem(QStringLiteral("YB1A"));
    QVERIFY(!labelOf(list)->isVisible());
    list.clear();
    QVERIFY(labelOf(list)->isVisible());
    list.addItem(QStringLiteral("YB1A"));
    delete list.takeItem(0);
    QVERIFY(labelOf(list)->isVisible());
}

void EmptyStateTest::takesTheNextTextAndModel()
{
    QTableView table;
    QStandardItemModel former;
    table.setModel(&former);
    EmptyState::show(&table, QStringLiteral("First"));
    QStringListModel next({QStringLiteral("row")});
    table.setModel(&next);
    EmptyState::show(&table, QStringLiteral("Second"));
    table.show();
    QCOMPARE(table.findChildren<QLabel *>(QStringLiteral("emptyState")).size(), 1);
    QVERIFY(!labelOf(table)->isVisible());
    next.setStringList({});
    QVERIFY(labelOf(table)->isVisible());
    QCOMPARE(labelOf(table)->text(), QStringLiteral("Second"));
}

void EmptyStateTest::coversTheRowsOnly()
{
    QTableView table;
    QStandardItemModel model(0, 20);
    table.setModel(&model);
    EmptyState::show(&table, QStringLiteral("Nobody"));
    table.resize(300, 200);
    table.show();
    QCOMPARE(labelOf(table)->geometry(), table.viewport()->geometry());
    QVERIFY(labelOf(table)->y() >= table.horizontalHeader()->height());
    table.horizontalScrollBar()->setValue(table.horizontalScrollBar()->maximum());
    QVERIFY(table.horizontalScrollBar()->value() > 0);
    QCOMPARE(labelOf(table)->geometry(), table.viewport()->geometry());
    table.resize(500, 300);
    QTRY_COMPARE(labelOf(table)->geometry(), table.viewport()->geometry());
}

void EmptyStateTest::letsTheMouseThrough()
{
    QListWidget list;
    EmptyState::show(&list, QStringLiteral("Nobody"));
    list.show();
    QCOMPARE(list.childAt(list.rect().center()), list.viewport());
}

EVOX_TEST_MAIN(EmptyStateTest, QApplication)
#include "tst_emptystate.moc"
