#include "ui/status/LevelMeter.h"

#include "ui/Theme.h"
#include "ui/status/LevelBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds kFallBackDelay{500};
constexpr int kFullLevel = 100;
constexpr int kHighLevel = 70;
constexpr int kOverLevel = 90;

constexpr QLatin1String kHighColor("#F9A825");
constexpr QLatin1String kOverColor("#E53935");

/// A mark of the scale, and how much of the bar lies between it and the next one.
struct Mark
{
    const char *text;
    int share;
};

constexpr Mark kScale[] = {{"0", 45}, {"45", 25}, {"70", 20}, {"90", 5}, {"100", 5}};

QGradientStops stops(const LevelMeter::Colors &colors)
{
    return {{0.00, colors.quietest},
            {0.44, colors.low},
            {0.69, QColor(kHighColor)},
            {0.89, QColor(kOverColor)},
            {1.00, QColor(QStringLiteral("#B71C1C"))}};
}

} // namespace

LevelMeter::LevelMeter(const QString &caption, const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_lowColor(colors.low)
    , m_percent(new QLabel(this))
    , m_bar(new LevelBar(stops(colors), this))
    , m_fallBack(new QTimer(this))
{
    auto *captionLabel = new QLabel(caption, this);
    captionLabel->setObjectName(QStringLiteral("caption"));
    m_percent->setObjectName(QStringLiteral("percent"));
    m_percent->setAlignment(Qt::AlignCenter);
    m_bar->setAccessibleName(caption);
    m_fallBack->setObjectName(QStringLiteral("fallBack"));
    m_fallBack->setSingleShot(true);
    m_fallBack->setInterval(kFallBackDelay);
    connect(m_fallBack, &QTimer::timeout, this, &LevelMeter::fellBack);

    auto *top = new QHBoxLayout;
    top->addWidget(captionLabel, 1);
    top->addWidget(m_percent);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(top);
    layout->addWidget(m_bar);
    addScale(layout);
    applyTheme(false);
    display(0);
}

void LevelMeter::addScale(QVBoxLayout *layout)
{
    auto *scale = new QHBoxLayout;
    scale->setSpacing(0);
    for (const Mark &mark : kScale) {
        auto *label = new QLabel(QLatin1String(mark.text), this);
        label->setObjectName(QStringLiteral("scaleMark"));
        label->setAlignment(mark.text == kScale[std::size(kScale) - 1].text ? Qt::AlignRight : Qt::AlignLeft);
        scale->addWidget(label, mark.share);
    }
    layout->addLayout(scale);
}

int LevelMeter::level() const
{
    return m_bar->value();
}

void LevelMeter::setLevel(int level)
{
    display(std::clamp(level, 0, kFullLevel));
    m_fallBack->start();
}

void LevelMeter::reset()
{
    display(0);
}

void LevelMeter::display(int level)
{
    m_bar->setValue(level);
    m_percent->setText(QStringLiteral("%1%").arg(level));
    QString color = m_lowColor.name().toUpper();
    if (level >= kOverLevel)
        color = kOverColor;
    else if (level >= kHighLevel)
        color = kHighColor;
    Theme::restyle(*m_percent, QStringLiteral("color: %1; font-size: 10px; font-weight: bold;").arg(color));
}

void LevelMeter::applyTheme(bool dark)
{
    Theme::restyle(
        *this,
        Theme::filled(
            QStringLiteral("QLabel { color: @text; } "
                           "QLabel#caption { font-size: 10px; font-weight: bold; } "
                           "QLabel#percent { background-color: @instrument; border-radius: 3px; padding: 1px 6px; "
                           "min-width: 34px; } "
                           "QLabel#scaleMark { font-size: 8px; color: @dim; }"),
            dark));
}
