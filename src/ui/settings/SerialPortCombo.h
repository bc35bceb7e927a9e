#pragma once

#include <QComboBox>

/// The machine's serial ports to choose from; each item shows what the port is and has its name as data. A chosen port
/// that is not there, as an adapter that is not plugged in, is offered nevertheless.
class SerialPortCombo final : public QComboBox
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialPortCombo)

public:
    explicit SerialPortCombo(QWidget *parent = nullptr);

    /// What an item shows: the name, and the first of the others that says something.
    [[nodiscard]] static QString labelOf(const QString &name, const QString &description, const QString &manufacturer,
                                         const QString &location);

    /// The name of the chosen port; empty when there is none.
    [[nodiscard]] QString port() const { return currentData().toString(); }

    /// Lists the ports that are present now and chooses one of them; without a name, none.
    void showPorts(const QString &chosen);
};
