// From the start of a program to its first painted window.

#include "Bench.h"
#include "BenchProcess.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

double millisecondsToPaint(const char *program, const QString &home)
{
    bool painted = false;
    const double seconds = Bench::secondsOf([&] {
        BenchProcess process(QString::fromLatin1(program), home);
        painted = process.waitForPaint();
    });
    if (!painted) {
        std::fprintf(stderr, "%s did not paint\n", program);
        std::exit(1);
    }
    return 1000 * seconds;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QTemporaryDir home;
    const auto times = Bench::compare([&] { return millisecondsToPaint("start_gateway", home.path()); },
                                      [&] { return millisecondsToPaint("start_empty", home.path()); });
    Bench::printRow("start to first painted window", times.ours, times.baseline, "ms", 1.5);
    return 0;
}
