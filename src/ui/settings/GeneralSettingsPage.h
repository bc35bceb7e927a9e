#pragma once

#include <QWidget>

class QCheckBox;
struct Settings;

/// The settings dialog's tab "General": what happens when the system and the program start.
class GeneralSettingsPage final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GeneralSettingsPage)

public:
    explicit GeneralSettingsPage(QWidget *parent = nullptr);

    void collect(Settings &settings) const;

    void showSettings(const Settings &settings);

private:
    QCheckBox *m_autoStart = nullptr;
    QCheckBox *m_autoLogin = nullptr;
};
