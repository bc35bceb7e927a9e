#include "support/FakeSerial.h"
#include "support/simserial/simserial.h"

#include <QFile>
#include <QTcpSocket>

#include <array>
#include <windows.h>

namespace {

constexpr wchar_t kPortMap[] = L"HARDWARE\\DEVICEMAP\\SERIALCOMM"; // where drivers announce their ports
constexpr int kAnswerTimeout = 10000;                              // ms; what answers is on this computer

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

QString driverOf(const QString &port)
{
    return QStringLiteral("\\Device\\Simulated") + port;
}

/// Takes the first port that is not simulated off the map; whether there was one.
bool removeRealPort()
{
    HKEY map = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPortMap, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, &map) != ERROR_SUCCESS)
        return false;
    bool removed = false;
    std::array<wchar_t, 256> driver{};
    DWORD length = driver.size();
    for (DWORD i = 0;
         !removed && RegEnumValueW(map, i, driver.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = driver.size()) {
        if (!QString::fromWCharArray(driver.data()).contains(QLatin1String("Simulated")))
            removed = RegDeleteValueW(map, driver.data()) == ERROR_SUCCESS;
    }
    RegCloseKey(map);
    return removed;
}

} // namespace

/// A port of packaging/windows/serial-lines, which runs beside Wine and has the pseudo terminals.
class FakeSerial::Terminal final
{
public:
    Terminal();
    ~Terminal();
    Q_DISABLE_COPY_MOVE(Terminal)

    /// What it answers to a command.
    [[nodiscard]] QByteArray ask(const QByteArray &command);

    QString portName;
    SimSerialState *state = nullptr;
    bool isPlugged = true;

private:
    QTcpSocket m_lines;
    QFile m_stateFile;
};

FakeSerial::Terminal::Terminal()
{
    m_lines.connectToHost(QStringLiteral("127.0.0.1"),
                          static_cast<quint16>(qEnvironmentVariableIntValue("EVOX_SERIAL_LINES")));
    if (!m_lines.waitForConnected(kAnswerTimeout))
        qFatal("no simulated serial lines: run this with packaging/windows/wine-run --serial");
    const QList<QByteArray> answer = ask("plug").split(' ');
    portName = QString::fromLatin1(answer.value(0));
    m_stateFile.setFileName(QLatin1String("Z:") + QFile::decodeName(answer.value(1)));
    if (!m_stateFile.open(QIODevice::ReadWrite))
        qFatal("no state file: %s", qPrintable(m_stateFile.errorString()));
    state = reinterpret_cast<SimSerialState *>(m_stateFile.map(0, sizeof(SimSerialState)));
    if (!state || state->magic != SIMSERIAL_MAGIC)
        qFatal("no shared state");
}

FakeSerial::Terminal::~Terminal()
{
    m_stateFile.unmap(reinterpret_cast<uchar *>(state));
}

QByteArray FakeSerial::Terminal::ask(const QByteArray &command)
{
    m_lines.write(portName.isEmpty() ? command + '\n' : command + ' ' + portName.toLatin1() + '\n');
    while (!m_lines.canReadLine()) {
        if (!m_lines.waitForReadyRead(kAnswerTimeout))
            qFatal("the simulated serial lines do not answer %s", command.constData());
    }
    return m_lines.readLine().trimmed();
}

FakeSerial::FakeSerial(QObject *parent)
    : QObject(parent)
    , m_terminal(std::make_unique<Terminal>())
    , m_name(m_terminal->portName)
    , m_state(m_terminal->state)
{
}

FakeSerial::~FakeSerial()
{
    pull();
}

/// The computer's own ports are taken off the list.
void FakeSerial::plugIn()
{
    while (removeRealPort()) {
    }
    if (RegSetKeyValueW(HKEY_LOCAL_MACHINE, kPortMap, wide(driverOf(m_name)), REG_SZ, m_name.utf16(),
                        static_cast<DWORD>((m_name.size() + 1) * int(sizeof(wchar_t)))) != ERROR_SUCCESS)
        qFatal("the port cannot be announced");
}

void FakeSerial::pull()
{
    if (!m_terminal->isPlugged)
        return;
    m_terminal->isPlugged = false;
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kPortMap, wide(driverOf(m_name)));
    (void)m_terminal->ask("pull");
}

void FakeSerial::send(const QByteArray &data)
{
    (void)m_terminal->ask("send=" + data.toHex());
}

QByteArray FakeSerial::written() const
{
    return QByteArray::fromHex(m_terminal->ask("written"));
}

int FakeSerial::baudRate() const
{
    return m_terminal->ask("speed").toInt();
}
