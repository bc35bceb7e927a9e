#pragma once

#include <QWidget>

class QLabel;
class SerialFields;
struct Settings;

/// The settings dialog's tab "Serial/PTT": the port, its lines, and a lamp that shows the radio's carrier.
class SerialSettingsPage final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialSettingsPage)

public:
    explicit SerialSettingsPage(QWidget *parent = nullptr);

    void collect(Settings &settings) const;

    void showSettings(const Settings &settings);
    /// Lists the serial ports anew and keeps the chosen one.
    void refreshPorts();
    /// Shows whether the radio's carrier is there.
    void setCosActive(bool active);

protected:
    bool event(QEvent *event) override;

private:
    QWidget *createIndicator();
    void refreshIndicator();

    SerialFields *m_fields = nullptr;
    QLabel *m_cosIcon = nullptr;
    QLabel *m_cosCaption = nullptr;
    bool m_cosActive = false;
};
