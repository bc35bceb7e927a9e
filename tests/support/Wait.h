#pragma once

#include <chrono>
#include <functional>

/// Runs the event loop until the condition holds; false when the time is over or an interrupt has come first.
[[nodiscard]] bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds timeout);

/// Ctrl+C and a polite kill end every waitFor() instead of the process, so that it unwinds and cleans up.
void unwindOnInterrupt();
[[nodiscard]] bool wasInterrupted();
