#pragma once

#include <QString>

class QLineEdit;

/// What the input fields of the setup have in common.
namespace InputRules {

constexpr int kLongestText = 100;     ///< characters of a free text such as a name
constexpr int kLongestNumber = 40;    ///< characters of a frequency or a telephone number
constexpr int kLongestHost = 253;     ///< characters of a host name
constexpr int kLongestPassword = 128; ///< characters; the companion server takes no longer one
constexpr int kHighestPort = 65535;

/// Replaces what was typed by its trimmed form in capitals, keeps the cursor where it is and tells nobody. Returns the
/// new text.
QString makeCallsign(QLineEdit &edit);

/// Texts travel to the server in one line, between double quotes, which cannot be escaped: the field takes none, and
/// says so when one is typed. Control characters, such as a pasted line end, it drops.
void refuseQuotes(QLineEdit &edit);
/// What is left of a text from elsewhere for such a field.
[[nodiscard]] QString withoutQuotes(QString text);
[[nodiscard]] QString quoteRefusal();

} // namespace InputRules
