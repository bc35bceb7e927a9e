#include "app/LogFile.h"

#include "app/Config.h"
#include "app/LogMask.h"
#include "app/Product.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QSysInfo>

#include <chrono>
#include <cstdlib>

namespace {

constexpr std::chrono::seconds kOpenRetry{10};
constexpr QFileDevice::Permissions kFileOwnerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr QFileDevice::Permissions kFolderOwnerOnly = kFileOwnerOnly | QFileDevice::ExeOwner;

QMutex s_mutex; // for the two below and the file itself
LogFile *s_log = nullptr;
QtMessageHandler s_previous = nullptr; // stays: another thread may be on its way into handle() at the end

thread_local bool s_isWriting = false; // what the file classes themselves say goes to the previous handler only

const char *levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg: return "debug";
    case QtInfoMsg: return "info";
    case QtWarningMsg: return "warning";
    case QtCriticalMsg: return "critical";
    case QtFatalMsg: break;
    }
    return "fatal";
}

QString timeStamp(const QDateTime &now)
{
    const int offset = now.offsetFromUtc() / 60;
    return now.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")) +
           QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60);
}

/// Of a text with letters outside ASCII, fewer characters fit.
QByteArray boundedUtf8(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= LogMask::kLongestLine)
        return bytes;
    int size = LogMask::kLongestLine;
    while (size > 0 && (static_cast<uchar>(bytes.at(size)) & 0xC0) == 0x80)
        --size; // inside a character
    bytes.truncate(size);
    return bytes;
}

QString startLine()
{
    return QStringLiteral("[Log] %1 %2 (Build %3), Qt %4, %5, %6")
        .arg(Product::name(), Product::version(), Product::build(), QLatin1String(qVersion()),
             QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture());
}

} // namespace

QString LogFile::folder()
{
    return QFileInfo(Config::filePath()).dir().filePath(QStringLiteral("logs"));
}

QString LogFile::fileName(int age)
{
    return age == 0 ? QStringLiteral("evox-sinar.log") : QStringLiteral("evox-sinar.%1.log").arg(age);
}

LogFile::LogFile(const QString &folder)
    : m_folder(folder)
{
    const QMutexLocker lock(&s_mutex);
    Q_ASSERT(!s_log);
    s_isWriting = true;
    write(QtInfoMsg, startLine());
    s_isWriting = false;
    s_log = this;
    s_previous = qInstallMessageHandler(handle);
}

LogFile::~LogFile()
{
    const QMutexLocker lock(&s_mutex);
    s_log = nullptr;
    const QtMessageHandler current = qInstallMessageHandler(s_previous);
    if (current != handle)
        qInstallMessageHandler(current); // installed later, and calls this one: it stays
}

void LogFile::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    QtMessageHandler previous = nullptr;
    if (s_isWriting) {
        previous = s_previous; // under this thread's own lock
    } else {
        const QMutexLocker lock(&s_mutex);
        s_isWriting = true;
        if (s_log)
            s_log->write(type, text);
        s_isWriting = false;
        previous = s_previous;
    }
    if (previous)
        previous(type, context, text);
}

void LogFile::write(QtMsgType type, const QString &text)
{
    QByteArray line = timeStamp(QDateTime::currentDateTime()).toLatin1() + ' ' + levelName(type) + ' ' +
                      boundedUtf8(LogMask::masked(text)) + '\n';
    if (m_isMidLine)
        line.prepend('\n');
    if (!makeRoom(line.size()))
        return;
    const qint64 written = m_file.write(line);
    if (written > 0)
        m_isMidLine = written < line.size();
}

bool LogFile::makeRoom(qint64 bytes)
{
    if (!m_file.isOpen() && !open(QIODevice::Append))
        return false;
    return m_file.size() + bytes <= kLargestFile || rotate();
}

bool LogFile::open(QIODevice::OpenMode mode)
{
    if (!m_nextOpen.hasExpired())
        return false;
    m_nextOpen = QDeadlineTimer(kOpenRetry);
    if (!QDir().mkpath(m_folder))
        return false;
    QFile::setPermissions(m_folder, kFolderOwnerOnly); // first: the file is anybody's for a moment
    m_file.setFileName(path(0));
    if (!m_file.open(QIODevice::WriteOnly | mode | QIODevice::Unbuffered))
        return false;
    m_file.setPermissions(kFileOwnerOnly);
    m_nextOpen = QDeadlineTimer(0);
    m_isMidLine = false;
    return true;
}

/// A fresh file. Where the old one cannot be put aside it is given up, as it may not grow for ever.
bool LogFile::rotate()
{
    m_file.close();
    for (int age = kFiles - 1; age > 0; --age) {
        QFile::remove(path(age));
        QFile::rename(path(age - 1), path(age));
    }
    return open(QIODevice::Truncate);
}

QString LogFile::path(int age) const
{
    return m_folder + QLatin1Char('/') + fileName(age);
}
