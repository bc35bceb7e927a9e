#include "ui/account/AccountFields.h"

#include "ui/ElidedLabel.h"
#include "ui/setup/InputRules.h"

#include <QLineEdit>

#include <algorithm>

namespace {

constexpr int kLongestKept = 1000; // characters of a proposal; the server's records could hold megabytes

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
    return edit;
}
