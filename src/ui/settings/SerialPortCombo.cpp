#include "ui/settings/SerialPortCombo.h"

#include <QSerialPortInfo>

namespace {

constexpr int kLeastCharacters = 24; // a long description does not widen the dialog

QString labelOf(const QSerialPortInfo &port)
{
    QString information = port.description();
    if (information.isEmpty())
        information = port.manufacturer();
    if (information.isEmpty())
        information = port.systemLocation();
    return port.portName() + QLatin1String(" - ") + information;
}

} // namespace

SerialPortCombo::SerialPortCombo(QWidget *parent)
    : QComboBox(parent)
{
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(kLeastCharacters);
}

void SerialPortCombo::showPorts(const QString &chosen)
{
    clear();
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        addItem(labelOf(port), port.portName());
    if (!chosen.isEmpty() && findData(chosen) < 0)
        addItem(chosen + QLatin1String(" (tidak terdeteksi)"), chosen);
    // Nothing was chosen: the first port is not, either.
    setCurrentIndex(chosen.isEmpty() ? -1 : findData(chosen));
}
