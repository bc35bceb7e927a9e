#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

/// The benchmarks' common ground: a figure is the median of alternating pairs (ours, baseline, ours, …) in one
/// process, so that the machine's noise hits both, and a row is one JSON object on standard output.
namespace Bench {

inline constexpr int kPairs = 7;

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// Seconds that one call takes.
inline double secondsOf(const std::function<void()> &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Medians
{
    double ours = 0;
    double baseline = 0;
    [[nodiscard]] double ratio() const { return ours / baseline; }
};

/// Medians of alternating measurements; each function returns one figure (seconds, bytes, …).
inline Medians compare(const std::function<double()> &ours, const std::function<double()> &baseline, int pairs = kPairs)
{
    std::vector<double> a;
    std::vector<double> b;
    ours(); // warms up caches, lazily loaded libraries and the CPU's clock
    baseline();
    for (int i = 0; i < pairs; ++i) {
        a.push_back(ours());
        b.push_back(baseline());
    }
    return {median(a), median(b)};
}

/// Medians of the time that alternating calls take, in seconds.
inline Medians compareTimes(const std::function<void()> &ours, const std::function<void()> &baseline,
                            int pairs = kPairs)
{
    return compare([&] { return secondsOf(ours); }, [&] { return secondsOf(baseline); }, pairs);
}

enum class Better { Lower, Higher };

/// Value and baseline are in the unit; ratio is value / baseline.
inline void printRow(const char *name, double value, double baseline, const char *unit, double limit,
                     Better better = Better::Lower)
{
    std::printf("{\"name\": \"%s\", \"value\": %.6g, \"baseline\": %.6g, \"unit\": \"%s\", \"ratio\": %.4f, "
                "\"limit\": %g, \"better\": \"%s\"}\n",
                name, value, baseline, unit, value / baseline, limit, better == Better::Lower ? "lower" : "higher");
    std::fflush(stdout);
}

} // namespace Bench
