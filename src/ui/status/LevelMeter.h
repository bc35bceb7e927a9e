#pragma once

#include <QColor>
#include <QWidget>

class LevelBar;
class QLabel;
class QTimer;
class QVBoxLayout;

/// One audio level: caption, percentage, bar and scale. Falls to zero 500 ms after its last update.
class LevelMeter final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LevelMeter)

public:
    struct Colors
    {
        QColor quietest; ///< at the left end of the bar
        QColor low;      ///< below 45, and of the figure below 70
    };

    LevelMeter(const QString &caption, const Colors &colors, QWidget *parent = nullptr);

    [[nodiscard]] int level() const; ///< 0 to 100

    /// In percent; anything else is cut to 0 to 100.
    void setLevel(int level);
    void applyTheme(bool dark);

public slots:
    void reset();

signals:
    void fellBack(); ///< no level came for 500 ms

private:
    void display(int level);
    void addScale(QVBoxLayout *layout);

    const QColor m_lowColor;
    QLabel *m_percent = nullptr;
    LevelBar *m_bar = nullptr;
    QTimer *m_fallBack = nullptr;
};
