#include "support/FakeSerial.h"

#include "support/Wait.h"
#include "support/simserial/simserial.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QStringList>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kWatchInterval{10};
constexpr char kStateFile[] = "state";

uint32_t bit(FakeSerial::Line line)
{
    switch (line) {
    case FakeSerial::Line::Cts: return TIOCM_CTS;
    case FakeSerial::Line::Dcd: return TIOCM_CD;
    case FakeSerial::Line::Dsr: return TIOCM_DSR;
    }
    return 0;
}

uint32_t load(const uint32_t &field)
{
    return __atomic_load_n(&field, __ATOMIC_SEQ_CST);
}

QList<QByteArray> listedHere()
{
    QList<QByteArray> entries = qgetenv(SIMSERIAL_VARIABLE).split(':');
    entries.removeAll(QByteArray());
    return entries;
}

void store(uint32_t &field, uint32_t value)
{
    __atomic_store_n(&field, value, __ATOMIC_SEQ_CST);
}

} // namespace

FakeSerial::FakeSerial(QObject *parent)
    : QObject(parent)
{
    openTerminal();
    connect(&m_watch, &QTimer::timeout, this, &FakeSerial::watch);
    m_watch.start(kWatchInterval);
}

FakeSerial::~FakeSerial()
{
    pull();
    munmap(m_state, sizeof *m_state);
}

void FakeSerial::openTerminal()
{
    int slave = -1;
    std::array<char, sizeof SimSerialState::terminal> terminal{};
    termios raw{};
    cfmakeraw(&raw);
    raw.c_cflag |= CREAD | HUPCL;
    if (openpty(&m_master, &slave, terminal.data(), &raw, nullptr) != 0)
        qFatal("no pseudo terminal: %s", std::strerror(errno));
    fcntl(m_master, F_SETFD, FD_CLOEXEC);
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    createState(QString::fromLatin1(terminal.data()));
    struct stat info
    {
    };
    fstat(slave, &info);
    m_state->device = info.st_rdev;
    ::close(slave); // so that the master notices when the program has closed the port or died
    m_name = QLatin1String("ttyUSB9") + QString::fromLatin1(terminal.data()).section(QLatin1Char('/'), -1);
}

void FakeSerial::createState(const QString &terminal)
{
    QFile file(m_folder.filePath(QLatin1String(kStateFile)));
    if (!file.open(QIODevice::ReadWrite) || !file.resize(sizeof(SimSerialState)))
        qFatal("no state file: %s", qPrintable(file.errorString()));
    void *memory = mmap(nullptr, sizeof(SimSerialState), PROT_READ | PROT_WRITE, MAP_SHARED, file.handle(), 0);
    if (memory == MAP_FAILED)
        qFatal("no shared state: %s", std::strerror(errno));
    m_state = static_cast<SimSerialState *>(memory);
    m_state->magic = SIMSERIAL_MAGIC;
    qstrncpy(m_state->terminal, terminal.toLatin1().constData(), sizeof m_state->terminal);
}

QByteArray FakeSerial::listEntry() const
{
    return QFile::encodeName(m_name + QLatin1Char('=') + m_folder.filePath(QLatin1String(kStateFile)));
}

void FakeSerial::plugIn()
{
    QList<QByteArray> entries = listedHere();
    entries.append(listEntry());
    qputenv(SIMSERIAL_VARIABLE, entries.join(':'));
}

void FakeSerial::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral(SIMSERIAL_VARIABLE), QFile::decodeName(listEntry()));
    QStringList libraries{QStringLiteral(EVOX_LIBASAN), QStringLiteral(EVOX_SIMSERIAL)};
    libraries.removeAll(QString()); // without the sanitizer
    environment.insert(QStringLiteral("LD_PRELOAD"), libraries.join(QLatin1Char(':')));
}

void FakeSerial::pull()
{
    if (m_master < 0)
        return;
    QList<QByteArray> entries = listedHere();
    if (entries.removeAll(listEntry()) > 0)
        qputenv(SIMSERIAL_VARIABLE, entries.join(':'));
    m_state->terminal[0] = '\0';
    m_state->device = 0;
    ::close(m_master); // hangs up: reads end, and the terminal itself refuses every request
    m_master = -1;
}

void FakeSerial::set(Line line, bool high)
{
    if (high)
        __atomic_fetch_or(&m_state->inputs, bit(line), __ATOMIC_SEQ_CST);
    else
        __atomic_fetch_and(&m_state->inputs, ~bit(line), __ATOMIC_SEQ_CST);
}

void FakeSerial::flip(Line line, int reads)
{
    store(m_state->flippedInputs, bit(line));
    store(m_state->flippedReads, static_cast<uint32_t>(reads));
}

bool FakeSerial::isOpen() const
{
    return load(m_state->openCount) > 0;
}

bool FakeSerial::rts() const
{
    return load(m_state->outputs) & TIOCM_RTS;
}

bool FakeSerial::dtr() const
{
    return load(m_state->outputs) & TIOCM_DTR;
}

QVector<FakeSerial::Edge> FakeSerial::edges() const
{
    const uint32_t count = load(m_state->edgeCount);
    QVector<Edge> edges;
    for (uint32_t i = count > SIMSERIAL_EDGES ? count - SIMSERIAL_EDGES : 0; i < count; ++i) {
        const SimSerialEdge &edge = m_state->edges[i % SIMSERIAL_EDGES];
        edges.append({std::chrono::nanoseconds(edge.nanoseconds), (edge.outputs & TIOCM_RTS) != 0,
                      (edge.outputs & TIOCM_DTR) != 0});
    }
    return edges;
}

int FakeSerial::reads() const
{
    return static_cast<int>(load(m_state->readCount));
}

bool FakeSerial::waitForRts(bool high, std::chrono::milliseconds timeout) const
{
    return waitFor([this, high] { return rts() == high; }, timeout);
}

/// Takes what the program sent, and drops RTS and DTR when nobody has the port open any more: a program that was
/// killed does not do it itself.
void FakeSerial::watch()
{
    pollfd terminal{m_master, POLLIN, 0};
    if (m_master < 0 || poll(&terminal, 1, 0) <= 0)
        return;
    if (terminal.revents & POLLIN) {
        std::array<char, 4096> bytes{};
        const ssize_t size = ::read(m_master, bytes.data(), bytes.size());
        if (size > 0)
            m_written.append(bytes.data(), static_cast<int>(size));
        return;
    }
    if (!(terminal.revents & POLLHUP))
        return;
    store(m_state->openCount, 0);
    if (load(m_state->outputs) == 0)
        return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const uint32_t count = load(m_state->edgeCount);
    m_state->edges[count % SIMSERIAL_EDGES] = {static_cast<uint64_t>(std::chrono::nanoseconds(now).count()), 0, 0};
    store(m_state->outputs, 0);
    store(m_state->edgeCount, count + 1);
}
