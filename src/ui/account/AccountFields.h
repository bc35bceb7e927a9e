#pragma once

#include <QString>

class QLineEdit;
class QWidget;

/// What the input fields of the account dialogs have in common: their texts travel to the server as parts of one line,
/// between double quotes.
namespace AccountFields {

/// A field for @p longest characters that takes neither double quotes nor control characters. A longer proposal is
/// kept whole: an account is not to lose what the dialog only shows.
[[nodiscard]] QLineEdit *makeEdit(const QString &name, int longest, const QString &proposal, QWidget *parent);
/// What is left of a text from elsewhere for such a line.
[[nodiscard]] QString sendable(const QString &text);

} // namespace AccountFields
