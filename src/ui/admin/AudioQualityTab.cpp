#include "ui/admin/AudioQualityTab.h"

#include "net/protocol/Commands.h"
#include "ui/Prompts.h"

#include <QButtonGroup>
#include <QDebug>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QVariant>

namespace {

struct Option
{
    const char *preset;
    const char *text;
};

constexpr Option kOptions[] = {
    {"high", "High Quality (64 kbps, 48kHz)"},
    {"standard", "Standard (32 kbps, 48kHz) - Recommended"},
    {"low", "Low Bandwidth (16 kbps, 24kHz)"},
    {"minimal", "Minimal (8 kbps, 12kHz)"},
};
constexpr int kStandard = 1; // its place among them

} // namespace

AudioQualityTab::AudioQualityTab(Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_prompts(prompts)
    , m_options(new QButtonGroup(this))
{
    setObjectName(QStringLiteral("audioQualityTab"));
    auto *header = new QLabel(QStringLiteral("Server Audio Quality Settings"), this);
    header->setObjectName(QStringLiteral("audioQualityHeader"));
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    auto *group = new QGroupBox(QStringLiteral("Quality Preset"), this);
    group->setObjectName(QStringLiteral("audioQualityGroup"));
    auto *options = new QVBoxLayout(group);
    for (int i = 0; i < int(std::size(kOptions)); ++i) {
        auto *option = new QRadioButton(QLatin1String(kOptions[i].text), group);
        option->setObjectName(QLatin1String("audioQuality_") + QLatin1String(kOptions[i].preset));
        m_options->addButton(option, i);
        options->addWidget(option);
    }
    m_options->button(kStandard)->setChecked(true);
    auto *apply = new QPushButton(QStringLiteral("Apply to Server"), this);
    apply->setObjectName(QStringLiteral("applyAudioQualityButton"));
    apply->setProperty("meaning", QStringLiteral("accent"));
    connect(apply, &QPushButton::clicked, this, &AudioQualityTab::onApplyAudioQuality);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header);
    layout->addWidget(group);
    layout->addWidget(apply, 0, Qt::AlignLeft);
    layout->addStretch();
}

QString AudioQualityTab::preset() const
{
    return QLatin1String(kOptions[m_options->checkedId()].preset);
}

void AudioQualityTab::select(const QString &preset)
{
    int place = kStandard;
    for (int i = 0; i < int(std::size(kOptions)); ++i) {
        if (preset == QLatin1String(kOptions[i].preset))
            place = i;
    }
    m_options->button(place)->setChecked(true);
}

void AudioQualityTab::showQuality(const QVariantMap &quality)
{
    const QString preset = quality.value(QStringLiteral("preset")).toString();
    select(preset);
    qDebug().noquote() << "[AdminPanel] Audio quality updated to:" << preset;
}

void AudioQualityTab::onApplyAudioQuality()
{
    const QString chosen = preset();
    emit commandRequested(Commands::setAudioQuality(chosen));
    m_prompts.information(QStringLiteral("Audio Quality"), QStringLiteral("Audio quality set to: %1").arg(chosen));
}
