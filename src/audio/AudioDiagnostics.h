#pragma once

#include <QtGlobal>

/// Per-packet diagnostics are counted for the whole process and written rarely.
namespace AudioDiagnostics {

/// The events of one kind so far; one static object per kind, where the event happens.
class EventCounter final
{
public:
    /// Counts one more and returns its number, from 1.
    qint64 next() { return ++m_count; }

private:
    qint64 m_count = 0;
};

[[nodiscard]] constexpr bool isFirstFive(qint64 number)
{
    return number <= 5;
}
[[nodiscard]] constexpr bool isFiftieth(qint64 number)
{
    return number % 50 == 0;
}
[[nodiscard]] constexpr bool isFifth(qint64 number)
{
    return number % 5 == 0;
}

} // namespace AudioDiagnostics
