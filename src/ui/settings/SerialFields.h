#pragma once

#include <QWidget>

class QComboBox;
class QRadioButton;
class SerialPortCombo;
struct Settings;

/// The serial port's settings in three groups, as both dialogs that edit them show them.
class SerialFields final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialFields)

public:
    /// What the dialogs word differently.
    struct Texts
    {
        QString cosPin;
        QString cosHigh;
        QString cosLow;
    };

    explicit SerialFields(const Texts &texts, QWidget *parent = nullptr);

    /// Writes what is chosen into the settings of the serial port; leaves the others alone.
    void collect(Settings &settings) const;

    /// Shows the settings of the serial port. A speed or a pin that is not offered shows as its default.
    void showSettings(const Settings &settings);
    /// Lists the ports anew and keeps the chosen one.
    void refreshPorts();

private:
    QWidget *createPort();
    QWidget *createPins(const QString &cosLabel);
    QWidget *createLogic(const Texts &texts);

    SerialPortCombo *m_port = nullptr;
    QComboBox *m_baudrate = nullptr;
    QComboBox *m_pttPin = nullptr;
    QComboBox *m_cosPin = nullptr;
    QRadioButton *m_cosHigh = nullptr;
    QRadioButton *m_cosLow = nullptr;
};
