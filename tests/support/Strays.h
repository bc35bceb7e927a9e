#pragma once

#include <QString>

#include <chrono>

/// Programs that a program under test has started detached: in a session of their own, with no parent left. They are
/// known by a mark in the environment that they inherit.
namespace Strays {

/// Environment variable that holds the mark.
constexpr char kVariable[] = "EVOX_TEST_CHILD";

/// Makes this process the parent of those whose parent ends, so that none of them remains after its end. For good.
void adopt();
[[nodiscard]] bool areLeft(const QString &mark);
/// Asks them to end and kills those that have not when the time is over; returns when none is left.
void end(const QString &mark, std::chrono::milliseconds politely);

} // namespace Strays
