#include "ui/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int kMostCharacters = 300; // of one line; measuring a hostile megabyte would stall the window
constexpr int kMostLines = 20;

} // namespace

ElidedLabel::ElidedLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QString ElidedLabel::oneLine(QString text)
{
    const auto breaks = [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
    };
    std::replace_if(text.begin(), text.end(), breaks, QLatin1Char(' '));
    return text;
}

QSize ElidedLabel::sizeHint() const
{
    const int lines = std::min(text().count(QLatin1Char('\n')) + 1, kMostLines);
    const QMargins around = contentsMargins(); // a style sheet's padding is among them
    return {minimumWidth(), lines * fontMetrics().lineSpacing() + around.top() + around.bottom() + 2 * margin()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return sizeHint();
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect room = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    const QFontMetrics metrics = fontMetrics();
    const QVector<QStringRef> lines = text().splitRef(QLatin1Char('\n'));
    QStringList shown;
    for (int i = 0; i < std::min(lines.size(), kMostLines); ++i)
        shown += metrics.elidedText(lines.at(i).left(kMostCharacters).toString(), Qt::ElideRight, room.width());
    style()->drawItemText(&painter, room, static_cast<int>(alignment()) | Qt::TextExpandTabs, palette(), isEnabled(),
                          shown.join(QLatin1Char('\n')), foregroundRole());
}
