#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;
struct Settings;

/// The settings dialog's tab "Server": where to log in, and the room to join.
class ServerSettingsPage final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ServerSettingsPage)

public:
    explicit ServerSettingsPage(QWidget *parent = nullptr);

    void collect(Settings &settings) const;

    void showSettings(const Settings &settings);

private:
    void createFields(QWidget *parent);

    QLineEdit *m_address = nullptr;
    QSpinBox *m_port = nullptr;
    QComboBox *m_room = nullptr;
    QCheckBox *m_rememberPassword = nullptr;
};
