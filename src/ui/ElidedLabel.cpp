#include "ui/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

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

QRect ElidedLabel::room() const
{
    return contentsRect().adjusted(margin(), margin(), -margin(), -margin());
}

ElidedLabel::Shown ElidedLabel::shown() const
{
    const QFontMetrics metrics = fontMetrics();
    const QString all = text();
    const QVector<QStringRef> lines = all.splitRef(QLatin1Char('\n'));
    QStringList whole;
    QStringList cut;
    for (int i = 0; i < std::min(lines.size(), kMostLines); ++i) {
        whole += lines.at(i).left(kMostCharacters).toString();
        cut += metrics.elidedText(whole.last(), Qt::ElideRight, room().width());
    }
    const QString separator(QLatin1Char('\n'));
    return {cut.join(separator), whole.join(separator), cut != whole};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty())
        return QLabel::event(event);
    const Shown now = shown();
    if (!now.isCut) {
        event->ignore(); // whoever is under the label may have one
        return true;
    }
    const QString tip = QStringLiteral("<div style='white-space: pre-wrap;'>%1</div>").arg(now.whole.toHtmlEscaped());
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), tip, this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, room(), static_cast<int>(alignment()), palette(), isEnabled(), shown().text,
                          foregroundRole());
}
