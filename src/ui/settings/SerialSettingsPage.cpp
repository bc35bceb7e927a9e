#include "ui/settings/SerialSettingsPage.h"

#include "ui/Theme.h"
#include "ui/settings/SerialFields.h"

#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QVariant>

namespace {

constexpr int kIconSide = 32;

struct Look
{
    const char *icon;
    const char *caption;
    const char *style;
};

constexpr Look kActive{":/icons/ptt_on", "PTT Active", "font-size: 14px; font-weight: bold; color: #F44336;"};
constexpr Look kInactive{":/icons/ptt_off", "Tekan PTT Radio", "font-size: 14px; font-weight: bold; color: #666;"};

} // namespace

SerialSettingsPage::SerialSettingsPage(QWidget *parent)
    : QWidget(parent)
{
    m_fields = new SerialFields({QStringLiteral("Signal Pin (COS):"),
                                 QStringLiteral("HIGH (default) - COS active when signal HIGH"),
                                 QStringLiteral("LOW - COS active when signal LOW")},
                                this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_fields);
    layout->addWidget(createIndicator());
    layout->addStretch();
    refreshIndicator();
}

QWidget *SerialSettingsPage::createIndicator()
{
    auto *group = new QGroupBox(QStringLiteral("COS Signal Indicator"), this);
    auto *hint =
        new QLabel(QStringLiteral("PTT test hanya melalui sinyal COS dari radio.\nTekan PTT di radio Anda."), group);
    hint->setObjectName(QStringLiteral("cosHintLabel"));
    hint->setProperty("hint", true);
    m_cosIcon = new QLabel(group);
    m_cosIcon->setObjectName(QStringLiteral("cosIcon"));
    m_cosIcon->setFixedSize(kIconSide, kIconSide);
    m_cosCaption = new QLabel(group);
    m_cosCaption->setObjectName(QStringLiteral("cosCaption"));
    auto *lamp = new QHBoxLayout;
    lamp->addWidget(m_cosIcon);
    lamp->addWidget(m_cosCaption);
    lamp->addStretch();
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(hint);
    layout->addLayout(lamp);
    return group;
}

void SerialSettingsPage::collect(Settings &settings) const
{
    m_fields->collect(settings);
}

void SerialSettingsPage::showSettings(const Settings &settings)
{
    m_fields->showSettings(settings);
}

void SerialSettingsPage::refreshPorts()
{
    m_fields->refreshPorts();
}

void SerialSettingsPage::setCosActive(bool active)
{
    m_cosActive = active;
    refreshIndicator();
}

void SerialSettingsPage::refreshIndicator()
{
    const Look &look = m_cosActive ? kActive : kInactive;
    const QString caption = QLatin1String(look.caption);
    m_cosIcon->setPixmap(Theme::icon(QLatin1String(look.icon), kIconSide, devicePixelRatioF()));
    m_cosIcon->setAccessibleName(caption);
    m_cosCaption->setText(caption);
    Theme::restyle(*m_cosCaption, QLatin1String(look.style));
}

bool SerialSettingsPage::event(QEvent *event)
{
    if (event->type() == QEvent::ScreenChangeInternal) // dragged to a screen of another pixel ratio
        refreshIndicator();
    return QWidget::event(event);
}
