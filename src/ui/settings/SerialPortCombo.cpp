#include "ui/settings/SerialPortCombo.h"

#include <QSerialPortInfo>

namespace {

constexpr int kLeastCharacters = 24; // a long description does not widen the dialog

} // namespace

SerialPortCombo::SerialPortCombo(QWidget *parent)
    : QComboBox(parent)
{
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(kLeastCharacters);
}

QString SerialPortCombo::labelOf(const QString &name, const QString &description, const QString &manufacturer,
                                 const QString &location)
{
    const QString &information = !description.isEmpty()    ? description
                                 : !manufacturer.isEmpty() ? manufacturer
                                                           : location;
    return name + QLatin1String(" - ") + information;
}

void SerialPortCombo::showPorts(const QString &chosen)
{
    clear();
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        addItem(labelOf(port.portName(), port.description(), port.manufacturer(), port.systemLocation()),
                port.portName());
    if (!chosen.isEmpty() && findData(chosen) < 0)
        addItem(chosen + QLatin1String(" (tidak terdeteksi)"), chosen);
    // Nothing was chosen: the first port is not, either.
    setCurrentIndex(chosen.isEmpty() ? -1 : findData(chosen));
}
