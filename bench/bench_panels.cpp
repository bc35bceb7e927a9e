// How long the room panel takes for the list that the server sends at the beginning of every over.
#include "Bench.h"
#include "ui/Theme.h"
#include "ui/room/RoomPanel.h"

#include <QApplication>
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

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    Theme::apply(app, false);
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
    return 0;
}
