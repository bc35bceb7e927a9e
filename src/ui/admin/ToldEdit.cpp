#include "ui/admin/ToldEdit.h"

#include "ui/ElidedLabel.h"

#include <algorithm>

namespace {

constexpr int kMostShown = 10000; // characters; laying out a hostile megabyte would stall the panel

} // namespace

ToldEdit::ToldEdit(int longest, QWidget *parent)
    : QLineEdit(parent)
    , m_longest(longest)
{
    setMaxLength(longest);
}

QString ToldEdit::value() const
{
    return text() == m_shown ? m_told : ElidedLabel::oneLine(text()).trimmed(); // what was pasted may have lines
}

void ToldEdit::tell(const QString &text)
{
    m_told = text;
    setMaxLength(std::max(m_longest, std::min(text.size(), kMostShown)));
    setText(text);
    m_shown = QLineEdit::text();
    setCursorPosition(0);
}
