#include "support/Wait.h"

#include <QTest>

#include <csignal>

namespace {

volatile std::sig_atomic_t s_interrupted = 0;

extern "C" void onInterrupt(int)
{
    s_interrupted = 1;
}

} // namespace

bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds timeout)
{
    bool holds = false;
    const auto holdsOrInterrupted = [&holds, &condition] {
        holds = condition();
        return holds || wasInterrupted();
    };
    (void)QTest::qWaitFor(holdsOrInterrupted, static_cast<int>(timeout.count()));
    return holds;
}

void unwindOnInterrupt()
{
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, onInterrupt);
#ifdef SIGHUP
    std::signal(SIGHUP, onInterrupt);
#endif
}

bool wasInterrupted()
{
    return s_interrupted != 0;
}
