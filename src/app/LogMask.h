#pragma once

#include <QString>

/// What of a diagnostic message may be kept in a file. Passwords, tokens and keys are replaced by "***", by rule and
/// not by place, so that they stay out wherever a message carries them; where a rule cannot tell how much of the text
/// is secret, the rest of the line goes.
namespace LogMask {

inline constexpr int kLongestLine = 8 * 1024; ///< UTF-16 units; what is longer is cut

/// The message as one line of valid text: control characters and line ends are written as "\n", "\r", "\t" or a blank.
[[nodiscard]] QString oneLine(const QString &message);

/// The message as one line, at most kLongestLine long, without its secrets.
[[nodiscard]] QString masked(const QString &message);

} // namespace LogMask
