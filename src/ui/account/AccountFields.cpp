#include "ui/account/AccountFields.h"

#include "ui/ElidedLabel.h"
#include "ui/setup/InputRules.h"

#include <QLineEdit>

#include <algorithm>

namespace {

constexpr int kLongestKept = 1000; // characters of a proposal; the server's records could hold megabytes

/// A pasted line end would end the command as well.
void dropControlCharacters(QLineEdit &edit)
{
    QString text = edit.text();
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control; };
    const auto end = std::remove_if(text.begin(), text.end(), isControl);
    if (end == text.end())
        return;
    text.truncate(static_cast<int>(std::distance(text.begin(), end)));
    const int cursor = edit.cursorPosition();
    edit.setText(text);
    edit.setCursorPosition(cursor);
}

} // namespace

QString AccountFields::sendable(const QString &text)
{
    return ElidedLabel::oneLine(InputRules::withoutQuotes(text.left(kLongestKept)));
}

QLineEdit *AccountFields::makeEdit(const QString &name, int longest, const QString &proposal, QWidget *parent)
{
    const QString text = sendable(proposal);
    auto *edit = new QLineEdit(parent);
    edit->setObjectName(name);
    edit->setMaxLength(std::max(longest, text.size()));
    edit->setText(text);
    edit->setCursorPosition(0); // the beginning of a long one is seen
    InputRules::refuseQuotes(*edit);
    QObject::connect(edit, &QLineEdit::textChanged, edit, [edit] { dropControlCharacters(*edit); });
    return edit;
}
