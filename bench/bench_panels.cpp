// How long the panels take: for the room list that the server sends at the beginning of every over, and for the list of
// all accounts.
#include "Bench.h"
#include "ui/Theme.h"
#include "ui/admin/UserTableView.h"
#include "ui/room/RoomPanel.h"

#include <QApplication>
#include <QStandardItemModel>
#include <QVariantMap>

namespace {

constexpr int kStations = 500;
constexpr int kTalker = 3;      // in sight, so that it is painted
constexpr double kFrameMs = 16; // of 60 Hz
constexpr double kMillisecondsPerSecond = 1000;

QList<QVariantMap> stations(bool somebodyTalks)
{
    QList<QVariantMap> result;
    for (int i = 0; i < kStations; ++i) {
        const QString callsign = QStringLiteral("YB%1ABC").arg(i);
        result += QVariantMap{{QStringLiteral("user_id"), i},
                              {QStringLiteral("callsign"), callsign},
                              {QStringLiteral("name"), QStringLiteral("Station %1").arg(i)},
                              {QStringLiteral("is_transmitting"), somebodyTalks && i == kTalker},
                              {QStringLiteral("approved"), i % 7 != 0},
                              {QStringLiteral("is_muted"), i % 11 == 0}};
    }
    return result;
}

void measureRoomPanel()
{
    RoomPanel panel;
    panel.applyTheme(false);
    panel.resize(420, 620);
    panel.setUsers(stations(false), QStringLiteral("YB0ABC"));
    panel.show();
    QCoreApplication::processEvents();

    bool talks = false;
    std::vector<double> times;
    for (int i = 0; i < 2 * Bench::kPairs + 2; ++i) {
        talks = !talks;
        const QList<QVariantMap> list = stations(talks);
        const double seconds = Bench::secondsOf([&] {
            panel.setUsers(list, QStringLiteral("YB0ABC"));
            QCoreApplication::sendPostedEvents(); // the layout it asked for
            panel.repaint();                      // and every visible row
        });
        if (i > 1) // the first two fill the caches
            times.push_back(seconds * kMillisecondsPerSecond);
    }
    Bench::printRow("room list of 500 stations, one changes to TX", Bench::median(times), kFrameMs, "ms", 1.0);
}

constexpr int kAccounts = 20000;
constexpr double kMostOfItems = 0.5;
const QString kSought = QStringLiteral("YB1999"); // 11 of them

using Column = UserTableModel::Column;

QVector<Column> accountColumns()
{
    return {Column::Id,     Column::Callsign, Column::GatewayName, Column::Status, Column::Approved,
            Column::Expiry, Column::Location, Column::LastLogin,   Column::Device, Column::Actions};
}

QList<QVariantMap> accounts()
{
    QList<QVariantMap> result;
    for (int i = 1; i <= kAccounts; ++i) {
        result += QVariantMap{{QStringLiteral("id"), i},
                              {QStringLiteral("callsign"), QStringLiteral("YB%1ABC").arg(i)},
                              {QStringLiteral("gateway_name"), QStringLiteral("Gateway %1").arg(i)},
                              {QStringLiteral("responsible_name"), QStringLiteral("Operator %1").arg(i)},
                              {QStringLiteral("status"), QStringLiteral("active")},
                              {QStringLiteral("approved"), i % 7 != 0},
                              {QStringLiteral("license_expiry"), QStringLiteral("2031-12-30")},
                              {QStringLiteral("location"), QStringLiteral("Gunung %1").arg(i)},
                              {QStringLiteral("last_login"), QStringLiteral("2026-11-21T08:00:00")},
                              {QStringLiteral("registered_hwid"), QStringLiteral("ABC-%1").arg(i)}};
    }
    return result;
}

void prepare(QTableView &view)
{
    view.resize(880, 480);
    view.show();
    QCoreApplication::processEvents();
}

void paintNow(QTableView &view)
{
    QCoreApplication::sendPostedEvents(); // the layout it asked for
    view.viewport()->repaint();
}

/// The texts of every cell, as the table shows them.
QVector<QStringList> textsOf(const QList<QVariantMap> &users)
{
    UserTableModel model(accountColumns());
    model.setUsers(users);
    QVector<QStringList> rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < model.columnCount(); ++column)
            texts += model.index(row, column).data().toString();
        rows += texts;
    }
    return rows;
}

/// Both fill a table that is on the screen in the order of the ids, look for a few accounts in it and show all of them
/// again.
void measureAccounts()
{
    const QList<QVariantMap> users = accounts();
    UserTableView ours(accountColumns(), QStringLiteral("None"), nullptr);
    prepare(ours);

    const QVector<QStringList> texts = textsOf(users);
    QStandardItemModel items(0, accountColumns().size());
    QSortFilterProxyModel filter;
    filter.setFilterCaseSensitivity(Qt::CaseInsensitive);
    filter.setFilterKeyColumn(1);
    filter.sort(0);
    QTableView theirs;
    theirs.setModel(&filter);
    prepare(theirs);

    const auto fillOurs = [&] {
        ours.showUsers(users);
        paintNow(ours);
        for (const QString &text : {kSought, QString()}) {
            ours.setFilter({text, {}, {}});
            paintNow(ours);
        }
    };
    const auto fillItems = [&] {
        filter.setSourceModel(nullptr); // nobody is told of every row
        items.removeRows(0, items.rowCount());
        for (const QStringList &row : texts) {
            QList<QStandardItem *> cells;
            for (const QString &text : row)
                cells += new QStandardItem(text);
            cells.first()->setData(row.first().toInt(), Qt::DisplayRole); // ids are in the order of their numbers
            items.appendRow(cells);
        }
        filter.setSourceModel(&items);
        paintNow(theirs);
        for (const QString &text : {kSought, QString()}) {
            filter.setFilterFixedString(text);
            paintNow(theirs);
        }
    };
    const Bench::Medians times = Bench::compareTimes(fillOurs, fillItems);
    Bench::printRow("admin table of 20,000 accounts: fill and filter", times.ours * kMillisecondsPerSecond,
                    times.baseline * kMillisecondsPerSecond, "ms", kMostOfItems);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    Theme::apply(app, false);
    measureRoomPanel();
    measureAccounts();
    return 0;
}
