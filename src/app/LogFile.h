#pragma once

#include <QDeadlineTimer>
#include <QFile>
#include <QString>
#include <QtGlobal>

/// Keeps the program's diagnostic lines in a file, without its secrets (LogMask), while it lives. Whatever handled the
/// lines before still gets them, unchanged. One at a time, made and ended on the main thread; the lines may come from
/// any thread. What cannot be written is lost without a word: diagnostics never stop a gateway.
///
/// Each line begins with the local time, its offset from UTC and the level:
/// "2026-11-21T07:03:12.345+07:00 debug [TCP] Connected!". When the file is full it becomes "evox-sinar.1.log", and so
/// on. Folder and files are their owner's only.
class LogFile final
{
public:
    static constexpr int kFiles = 5;                           ///< the one being written and older ones
    static constexpr qint64 kLargestFile = Q_INT64_C(1) << 20; ///< bytes of one file

    /// "logs" beside the configuration file. Not made by asking.
    [[nodiscard]] static QString folder();
    /// "evox-sinar.log", or an older one's name; age 0..kFiles-1.
    [[nodiscard]] static QString fileName(int age);

    explicit LogFile(const QString &folder = LogFile::folder());
    ~LogFile();
    Q_DISABLE_COPY_MOVE(LogFile)

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    void write(QtMsgType type, const QString &text);
    [[nodiscard]] bool open(QIODevice::OpenMode mode);
    [[nodiscard]] bool makeRoom(qint64 bytes);
    [[nodiscard]] bool rotate();
    [[nodiscard]] QString path(int age) const;

    QString m_folder;
    QFile m_file;
    QDeadlineTimer m_nextOpen{0}; ///< not every line tries a folder that is not there
    bool m_isMidLine = false;     ///< a write ended half way
};
