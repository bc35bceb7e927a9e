#pragma once

#include <QGradient>
#include <QProgressBar>

/// A bar from 0 to 100 whose colours belong to the scale, not to the filled part: a low level never shows the colours
/// of a high one, as a style sheet's chunk would.
class LevelBar final : public QProgressBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LevelBar)

public:
    /// @p stops from left to right over the whole bar.
    explicit LevelBar(const QGradientStops &stops, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const QGradientStops m_stops;
};
