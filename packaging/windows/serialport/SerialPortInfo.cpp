#include "PortNames.h"
#include "qserialportinfo.h"

#include <QCollator>
#include <QHash>

#include <windows.h>
// What initguid.h asks for has to come before the identifiers that it defines.
#include <algorithm>
#include <array>
#include <devguid.h>
#include <initguid.h>
#include <setupapi.h>

namespace {

constexpr DWORD kMaxText = 512; // in characters; names and descriptions are shorter

using Text = std::array<wchar_t, kMaxText + 1>;

struct Device
{
    QString description;
    QString manufacturer;
};

QString property(HDEVINFO devices, SP_DEVINFO_DATA &device, DWORD which)
{
    Text text{};
    if (!SetupDiGetDeviceRegistryPropertyW(devices, &device, which, nullptr, reinterpret_cast<BYTE *>(text.data()),
                                           kMaxText * sizeof(wchar_t), nullptr))
        return {};
    return QString::fromWCharArray(text.data());
}

/// The name of the port that a device makes; empty for one that makes none.
QString portOf(HDEVINFO devices, SP_DEVINFO_DATA &device)
{
    const HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
    if (key == INVALID_HANDLE_VALUE)
        return {};
    Text text{};
    DWORD bytes = kMaxText * sizeof(wchar_t);
    const LSTATUS status =
        RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE *>(text.data()), &bytes);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? QString::fromWCharArray(text.data()) : QString();
}

/// What the device manager shows, by port.
QHash<QString, Device> describedDevices()
{
    QHash<QString, Device> described;
    for (const GUID &kind : {GUID_DEVCLASS_PORTS, GUID_DEVCLASS_MODEM}) {
        const HDEVINFO devices = SetupDiGetClassDevsW(&kind, nullptr, nullptr, DIGCF_PRESENT);
        if (devices == INVALID_HANDLE_VALUE)
            continue;
        SP_DEVINFO_DATA device{};
        device.cbSize = sizeof device;
        for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device); ++i)
            described.insert(portOf(devices, device),
                             {property(devices, device, SPDRP_DEVICEDESC), property(devices, device, SPDRP_MFG)});
        SetupDiDestroyDeviceInfoList(devices);
    }
    return described;
}

/// Every driver announces its ports there while they are present.
QStringList announcedPorts()
{
    QStringList names;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE, &key) !=
        ERROR_SUCCESS)
        return names;
    for (DWORD i = 0;; ++i) {
        Text name{};
        Text port{};
        DWORD nameLength = kMaxText;
        DWORD bytes = kMaxText * sizeof(wchar_t);
        DWORD type = REG_NONE;
        const LSTATUS status = RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type,
                                             reinterpret_cast<BYTE *>(port.data()), &bytes);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) // the end, or the ports have gone
            break;
        if (status == ERROR_SUCCESS && type == REG_SZ && port[0] != L'\0')
            names.append(QString::fromWCharArray(port.data()));
    }
    RegCloseKey(key);
    return names;
}

} // namespace

QList<QSerialPortInfo> QSerialPortInfo::availablePorts()
{
    QStringList names = announcedPorts();
    names.removeDuplicates();
    QCollator numbers;
    numbers.setNumericMode(true);
    std::sort(names.begin(), names.end(), numbers);
    const QHash<QString, Device> devices = describedDevices();
    QList<QSerialPortInfo> ports;
    for (const QString &name : qAsConst(names)) {
        const Device device = devices.value(name);
        QSerialPortInfo port;
        port.m_portName = name;
        port.m_systemLocation = PortNames::location(name);
        port.m_description = device.description;
        port.m_manufacturer = device.manufacturer;
        ports.append(port);
    }
    return ports;
}
