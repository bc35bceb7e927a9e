#pragma once

#include <QString>

/// Versions as texts of numbers between dots.
namespace VersionNumber {

/// 1 when @p a is newer than @p b, -1 when it is older, 0 when both are the same. A missing part counts as 0, and so
/// does one that is no decimal number or does not fit into 64 bits: 4.0.2 equals 4.0.2.0, and "v5" is older than 1.
[[nodiscard]] int compare(const QString &a, const QString &b);

} // namespace VersionNumber
