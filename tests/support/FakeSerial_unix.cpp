#include "support/FakeSerial.h"
#include "support/simserial/simserial.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kWatchInterval{10};
constexpr char kStateFile[] = "state";

uint32_t load(const uint32_t &field)
{
    return __atomic_load_n(&field, __ATOMIC_SEQ_CST);
}

void store(uint32_t &field, uint32_t value)
{
    __atomic_store_n(&field, value, __ATOMIC_SEQ_CST);
}

QList<QByteArray> listedHere()
{
    QList<QByteArray> entries = qgetenv(SIMSERIAL_VARIABLE).split(':');
    entries.removeAll(QByteArray());
    return entries;
}

} // namespace

class FakeSerial::Terminal final
{
public:
    Terminal();
    ~Terminal();
    Q_DISABLE_COPY_MOVE(Terminal)

    [[nodiscard]] QString portName() const;
    [[nodiscard]] QByteArray stateFile() const { return QFile::encodeName(folder.filePath(QLatin1String(kStateFile))); }
    void hangUp();

    QTemporaryDir folder;
    int master = -1;
    SimSerialState *state = nullptr;
    QByteArray written;

private:
    void createState(const char *terminal, dev_t device);
    void look();

    QTimer m_watch;
};

FakeSerial::Terminal::Terminal()
{
    int slave = -1;
    std::array<char, sizeof SimSerialState::terminal> terminal{};
    termios raw{};
    cfmakeraw(&raw);
    raw.c_cflag |= CREAD | HUPCL;
    if (openpty(&master, &slave, terminal.data(), &raw, nullptr) != 0)
        qFatal("no pseudo terminal: %s", std::strerror(errno));
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(master, F_SETFL, O_NONBLOCK);
    struct stat info
    {
    };
    fstat(slave, &info);
    createState(terminal.data(), info.st_rdev);
    ::close(slave); // so that the master notices when the program has closed the port or died
    QObject::connect(&m_watch, &QTimer::timeout, &m_watch, [this] { look(); });
    m_watch.start(kWatchInterval);
}

FakeSerial::Terminal::~Terminal()
{
    munmap(state, sizeof *state);
}

void FakeSerial::Terminal::createState(const char *terminal, dev_t device)
{
    QFile file(folder.filePath(QLatin1String(kStateFile)));
    if (!file.open(QIODevice::ReadWrite) || !file.resize(sizeof(SimSerialState)))
        qFatal("no state file: %s", qPrintable(file.errorString()));
    void *memory = mmap(nullptr, sizeof(SimSerialState), PROT_READ | PROT_WRITE, MAP_SHARED, file.handle(), 0);
    if (memory == MAP_FAILED)
        qFatal("no shared state: %s", std::strerror(errno));
    state = static_cast<SimSerialState *>(memory);
    state->magic = SIMSERIAL_MAGIC;
    state->device = device;
    qstrncpy(state->terminal, terminal, sizeof state->terminal);
}

QString FakeSerial::Terminal::portName() const
{
    return QLatin1String("ttyUSB9") + QString::fromLatin1(state->terminal).section(QLatin1Char('/'), -1);
}

/// Reads end, and the terminal itself refuses every request.
void FakeSerial::Terminal::hangUp()
{
    state->terminal[0] = '\0';
    state->device = 0;
    ::close(master);
    master = -1;
}

/// Takes what the program sent, and drops RTS and DTR when nobody has the port open any more: a program that was
/// killed does not do it itself.
void FakeSerial::Terminal::look()
{
    pollfd terminal{master, POLLIN, 0};
    if (master < 0 || poll(&terminal, 1, 0) <= 0)
        return;
    if (terminal.revents & POLLIN) {
        std::array<char, 4096> bytes{};
        const ssize_t size = ::read(master, bytes.data(), bytes.size());
        if (size > 0)
            written.append(bytes.data(), static_cast<int>(size));
        return;
    }
    if (!(terminal.revents & POLLHUP))
        return;
    store(state->openCount, 0);
    if (load(state->outputs) == 0)
        return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const uint32_t count = load(state->edgeCount);
    state->edges[count % SIMSERIAL_EDGES] = {static_cast<uint64_t>(std::chrono::nanoseconds(now).count()), 0, 0};
    store(state->outputs, 0);
    store(state->edgeCount, count + 1);
}

FakeSerial::FakeSerial(QObject *parent)
    : QObject(parent)
    , m_terminal(std::make_unique<Terminal>())
    , m_name(m_terminal->portName())
    , m_state(m_terminal->state)
{
}

FakeSerial::~FakeSerial()
{
    pull();
}

void FakeSerial::plugIn()
{
    QList<QByteArray> entries = listedHere();
    entries.append(m_name.toLatin1() + '=' + m_terminal->stateFile());
    qputenv(SIMSERIAL_VARIABLE, entries.join(':'));
}

void FakeSerial::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral(SIMSERIAL_VARIABLE),
                       m_name + QLatin1Char('=') + QFile::decodeName(m_terminal->stateFile()));
    QStringList libraries{QStringLiteral(EVOX_LIBASAN), QStringLiteral(EVOX_SIMSERIAL)};
    libraries.removeAll(QString()); // without the sanitizer
    environment.insert(QStringLiteral("LD_PRELOAD"), libraries.join(QLatin1Char(':')));
}

void FakeSerial::pull()
{
    if (m_terminal->master < 0)
        return;
    QList<QByteArray> entries = listedHere();
    if (entries.removeAll(m_name.toLatin1() + '=' + m_terminal->stateFile()) > 0)
        qputenv(SIMSERIAL_VARIABLE, entries.join(':'));
    m_terminal->hangUp();
}

void FakeSerial::send(const QByteArray &data)
{
    if (::write(m_terminal->master, data.constData(), static_cast<std::size_t>(data.size())) != data.size())
        qFatal("the terminal does not take the radio's data: %s", std::strerror(errno));
}

QByteArray FakeSerial::written() const
{
    return m_terminal->written;
}

int FakeSerial::baudRate() const
{
    termios settings{};
    tcgetattr(m_terminal->master, &settings);
    switch (cfgetospeed(&settings)) {
    case B9600: return 9600;
    case B57600: return 57600;
    case B115200: return 115200;
    default: return 0;
    }
}
