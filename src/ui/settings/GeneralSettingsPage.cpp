#include "ui/settings/GeneralSettingsPage.h"

#include "ui/settings/Settings.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QVBoxLayout>

GeneralSettingsPage::GeneralSettingsPage(QWidget *parent)
    : QWidget(parent)
{
    auto *group = new QGroupBox(QStringLiteral("Startup"), this);
    m_autoStart = new QCheckBox(QStringLiteral("Run application when Windows starts"), group);
    m_autoStart->setObjectName(QStringLiteral("autoStartCheck"));
    // There is nothing to switch: the default room is always joined. The box only says so.
    auto *autoJoin = new QCheckBox(QStringLiteral("Auto Join"), group);
    autoJoin->setObjectName(QStringLiteral("autoJoinCheck"));
    autoJoin->setChecked(true);
    autoJoin->setEnabled(false);
    autoJoin->setToolTip(QStringLiteral("Room default selalu diikuti otomatis setelah login"));
    m_autoLogin = new QCheckBox(QStringLiteral("Auto login when application starts"), group);
    m_autoLogin->setObjectName(QStringLiteral("autoLoginCheck"));
    auto *rows = new QVBoxLayout(group);
    rows->addWidget(m_autoStart);
    rows->addWidget(autoJoin);
    rows->addWidget(m_autoLogin);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addStretch();
}

void GeneralSettingsPage::collect(Settings &settings) const
{
    settings.autoStart = m_autoStart->isChecked();
    settings.autoLogin = m_autoLogin->isChecked();
}

void GeneralSettingsPage::showSettings(const Settings &settings)
{
    m_autoStart->setChecked(settings.autoStart);
    m_autoLogin->setChecked(settings.autoLogin);
}
