#pragma once

#include <QList>
#include <QString>

/// What Windows knows about a serial port: the part of the class of this name in Qt that the program uses.
class QSerialPortInfo
{
public:
    QSerialPortInfo() = default;

    /// The ports that are present now, by their numbers.
    [[nodiscard]] static QList<QSerialPortInfo> availablePorts();

    [[nodiscard]] QString portName() const { return m_portName; }             ///< "COM3"
    [[nodiscard]] QString systemLocation() const { return m_systemLocation; } ///< "\\.\COM3"
    /// Both empty where the driver only announced the port.
    [[nodiscard]] QString description() const { return m_description; }
    [[nodiscard]] QString manufacturer() const { return m_manufacturer; }

private:
    QString m_portName;
    QString m_systemLocation;
    QString m_description;
    QString m_manufacturer;
};
