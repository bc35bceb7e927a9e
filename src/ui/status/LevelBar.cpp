#include "ui/status/LevelBar.h"

#include <QLinearGradient>
#include <QPainter>

namespace {

constexpr int kHeight = 14; // logical pixels

} // namespace

LevelBar::LevelBar(const QGradientStops &stops, QWidget *parent)
    : QProgressBar(parent)
    , m_stops(stops)
{
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setFixedHeight(kHeight);
}

void LevelBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect inner = rect().adjusted(1, 1, -1, -1);
    painter.fillRect(rect(), QColor(QStringLiteral("#3C3C3C")));
    painter.fillRect(inner, QColor(QStringLiteral("#1A1A1A")));
    QLinearGradient gradient(inner.topLeft(), inner.topRight());
    gradient.setStops(m_stops);
    QRect filled = inner;
    filled.setWidth(inner.width() * value() / maximum());
    painter.fillRect(filled, gradient);
}
