#include "app/Config.h"
#include "app/LogFile.h"
#include "app/LogMask.h"
#include "support/LogCapture.h"
#include "support/ResourceLimit.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

class LogFileTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void folderIsBesideTheConfiguration();
    void everyLineHasTimeAndLevel();
    void earlierHandlerStillGetsTheText();
    void secretsStayOut();
    void lineEndsAndLengthAreBounded();
    void onlyTheOwnerReads();
    void goesOnWithTheFileOfTheLastRun();
    void fullFilesArePutAside();
    void aRotationThatFailsStaysBounded_data();
    void aRotationThatFailsStaysBounded();
    void withoutAFolder_data();
    void withoutAFolder();
    void fullDisk();
    void threads();
    void handlerInstalledLaterStays();

private:
    [[nodiscard]] QString path(int age = 0) const { return m_folder + QLatin1Char('/') + LogFile::fileName(age); }
    [[nodiscard]] QByteArray content(int age = 0) const;
    [[nodiscard]] QList<QByteArray> lines(int age = 0) const;

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_folder;
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

std::atomic<int> s_passedOn{0};

void countMessages(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++s_passedOn;
}

/// So many bytes in lines that are numbered from 0 on; how many they are.
int writeNumbered(qint64 bytes)
{
    const QString filler(4000, QLatin1Char('.'));
    int number = 0;
    for (qint64 written = 0; written < bytes; written += filler.size())
        qDebug().noquote() << "[Test] number" << number++ << filler;
    return number;
}

int numberOf(const QByteArray &line)
{
    const int at = line.indexOf("number ");
    return at < 0 ? -1 : line.mid(at + 7, line.indexOf(' ', at + 7) - at - 7).toInt();
}

} // namespace

void LogFileTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    m_folder = m_home->filePath(q("data/logs"));
}

QByteArray LogFileTest::content(int age) const
{
    QFile file(path(age));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> LogFileTest::lines(int age) const
{
    QList<QByteArray> all = content(age).split('\n');
    all.removeLast();
    return all;
}

void LogFileTest::folderIsBesideTheConfiguration()
{
    const TestConfig test;
    QCOMPARE(LogFile::folder(), QFileInfo(Config::filePath()).path() + q("/logs"));
    QVERIFY2(!QFileInfo::exists(LogFile::folder()), "asking makes nothing");
    LogCapture capture;
    {
        const LogFile log;
        qDebug() << "[Test] here";
    }
    QVERIFY(QFileInfo(LogFile::folder() + q("/evox-sinar.log")).size() > 0);
    QCOMPARE(LogFile::fileName(4), q("evox-sinar.4.log"));
}

void LogFileTest::everyLineHasTimeAndLevel()
{
    LogCapture capture;
    capture.expectWarning(q("[Test]"));
    {
        const LogFile log(m_folder);
        qDebug() << "[Test] one";
        qInfo() << "[Test] two";
        qWarning() << "[Test] three";
        qCritical() << "[Test] four";
    }
    const QRegularExpression start(q("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[+-]\\d\\d:\\d\\d (.*)$"));
    QStringList texts;
    for (const QByteArray &line : lines()) {
        const QRegularExpressionMatch match = start.match(QString::fromUtf8(line));
        QVERIFY2(match.hasMatch(), line.constData());
        texts.append(match.captured(1));
    }
    QVERIFY(texts.takeFirst().startsWith(q("info [Log] e-VOX SINAR 4.")));
    QCOMPARE(texts, (QStringList{q("debug [Test] one"), q("info [Test] two"), q("warning [Test] three"),
                                 q("critical [Test] four")}));
}

void LogFileTest::earlierHandlerStillGetsTheText()
{
    LogCapture capture;
    {
        const LogFile log(m_folder);
        qDebug().noquote() << "[Test] TOKEN:abc\nx";
    }
    QCOMPARE(capture.lines(), QStringList{q("[Test] TOKEN:abc\nx")});
    qDebug() << "[Test] after the end";
    QCOMPARE(capture.lines().size(), 2);
    QVERIFY(!content().contains("after the end"));
}

void LogFileTest::secretsStayOut()
{
    LogCapture capture;
    {
        const LogFile log(m_folder);
        qDebug().noquote() << "[Register] Sending:"
                           << R"(REGISTER_GATEWAY "a" "b" "c" "d" "e" "f" "g" "rahasia" "i" "j")";
        qDebug().noquote() << "[UDP] TOKEN content (first 50):"
                           << "TOKEN:rahasia:7";
        qDebug().noquote() << "[MainWindow] Room key received:"
                           << "rahasia...";
    }
    QCOMPARE(lines().size(), 4);
    QVERIFY(!content().contains("rahasia"));
}

void LogFileTest::lineEndsAndLengthAreBounded()
{
    LogCapture capture;
    {
        const LogFile log(m_folder);
        qDebug().noquote() << "[Test] one\ntwo\r\n" << QString(QChar(0));
        qDebug().noquote() << QString(100000, QChar(0x65E5)); // three bytes each
        qDebug() << "[Test] last";
    }
    QCOMPARE(lines().size(), 4);
    QVERIFY(lines().at(1).contains("one\\ntwo\\r\\n"));
    QVERIFY(lines().at(2).size() < LogMask::kLongestLine + 100);
    QVERIFY2(!QString::fromUtf8(lines().at(2)).contains(QChar::ReplacementCharacter), "cut between characters");
    QVERIFY(lines().at(3).endsWith("[Test] last"));
}

void LogFileTest::onlyTheOwnerReads()
{
#ifdef Q_OS_WIN
    QSKIP("Windows has access lists instead; those of the user's data folder hold");
#endif
    const QFileDevice::Permissions everybody = QFileDevice::ReadUser | QFileDevice::ReadGroup | QFileDevice::ReadOther |
                                               QFileDevice::WriteGroup | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    const auto openTo = [&](const QString &name) {
        return QFile::permissions(name) & everybody & ~QFileDevice::ReadUser;
    };
    LogCapture capture;
    {
        const LogFile log(m_folder);
    }
    QCOMPARE(int(openTo(m_folder)), 0);
    QCOMPARE(int(openTo(path())), 0);
    QVERIFY(QFile::setPermissions(path(), QFile::permissions(path()) | everybody));
    QVERIFY(QFile::setPermissions(m_folder, QFile::permissions(m_folder) | everybody));
    {
        const LogFile log(m_folder);
    }
    QCOMPARE(int(openTo(m_folder)), 0);
    QCOMPARE(int(openTo(path())), 0);
}

void LogFileTest::goesOnWithTheFileOfTheLastRun()
{
    LogCapture capture;
    for (int run = 0; run < 2; ++run) {
        const LogFile log(m_folder);
        qDebug() << "[Test] run" << run;
    }
    QCOMPARE(lines().size(), 4);
    QVERIFY(lines().at(1).endsWith("[Test] run 0"));
    QVERIFY(lines().at(3).endsWith("[Test] run 1"));
}

void LogFileTest::fullFilesArePutAside()
{
    LogCapture capture;
    int count = 0;
    {
        const LogFile log(m_folder);
        count = writeNumbered((LogFile::kFiles + 1) * LogFile::kLargestFile);
    }
    const QStringList names = QDir(m_folder).entryList(QDir::Files);
    QCOMPARE(names.size(), LogFile::kFiles);
    int expected = -1;
    for (int age = LogFile::kFiles - 1; age >= 0; --age) {
        QVERIFY(QFileInfo(path(age)).size() <= LogFile::kLargestFile);
        for (const QByteArray &line : lines(age)) {
            const int number = numberOf(line);
            QVERIFY2(expected < 0 || number == expected, line.left(80).constData());
            expected = number + 1;
        }
    }
    QCOMPARE(expected, count); // the latest are there, in order, and the oldest gone
    QVERIFY(numberOf(lines(LogFile::kFiles - 1).first()) > 0);
    QVERIFY(QFileInfo(path(1)).size() > LogFile::kLargestFile - 10000);
}

void LogFileTest::aRotationThatFailsStaysBounded_data()
{
    QTest::addColumn<int>("youngest");
    QTest::newRow("every older name is taken") << 1;
    QTest::newRow("the oldest name is taken") << LogFile::kFiles - 1;
}

void LogFileTest::aRotationThatFailsStaysBounded()
{
    QFETCH(int, youngest);
    for (int age = youngest; age < LogFile::kFiles; ++age)
        QVERIFY(QDir().mkpath(path(age) + q("/folder")));
    LogCapture capture;
    {
        const LogFile log(m_folder);
        const int count = writeNumbered((LogFile::kFiles + 1) * LogFile::kLargestFile);
        QCOMPARE(numberOf(lines().last()), count - 1);
    }
    for (const QFileInfo &file : QDir(m_folder).entryInfoList(QDir::Files))
        QVERIFY2(file.size() <= LogFile::kLargestFile, qPrintable(file.fileName()));
    for (int age = 1; age < LogFile::kFiles; ++age)
        QCOMPARE(QFileInfo(path(age)).isDir(), age >= youngest);
}

void LogFileTest::withoutAFolder_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("a file where the folder should be") << q("data/logs");
    QTest::newRow("a file where its parent should be") << q("data");
}

void LogFileTest::withoutAFolder()
{
    QFETCH(QString, obstacle);
    QVERIFY(QDir().mkpath(QFileInfo(m_home->filePath(obstacle)).path()));
    QFile file(m_home->filePath(obstacle));
    QVERIFY(file.open(QIODevice::WriteOnly));
    LogCapture capture;
    {
        const LogFile log(m_folder);
        qDebug() << "[Test] one";
        qDebug() << "[Test] two";
    }
    QCOMPARE(capture.lines(), (QStringList{q("[Test] one"), q("[Test] two")}));
    QCOMPARE(file.size(), 0);
}

void LogFileTest::fullDisk()
{
    if (!ResourceLimit::isPossible())
        QSKIP("this system has no limit for a file's size");
    LogCapture capture;
    {
        const LogFile log(m_folder);
        qDebug() << "[Test] before";
        {
            const auto size = static_cast<quint64>(QFileInfo(path()).size());
            const ResourceLimit limit(ResourceLimit::Of::FileSize, size + 20);
            qDebug() << "[Test] cut off";
            qDebug() << "[Test] lost";
        }
        qDebug() << "[Test] after";
    }
    QCOMPARE(capture.count(q("[Test]")), 4);
    QCOMPARE(lines().size(), 4);
    QVERIFY(lines().at(1).endsWith(" debug [Test] before"));
    QCOMPARE(lines().at(2).size(), 20); // the disk took no more of it
    QVERIFY2(lines().at(3).endsWith(" debug [Test] after"), "on a line of its own");
    QVERIFY(!content().contains("lost"));
}

void LogFileTest::threads()
{
    constexpr int kThreads = 4;
    constexpr int kLines = 300;
    s_passedOn = 0;
    const QtMessageHandler before = qInstallMessageHandler(countMessages);
    {
        const LogFile log(m_folder);
        std::vector<std::thread> threads;
        for (int thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([thread] {
                for (int i = 0; i < kLines; ++i)
                    qDebug() << "[Test] thread" << thread << "line" << i << "end";
            });
        for (std::thread &thread : threads)
            thread.join();
    }
    qInstallMessageHandler(before);
    QCOMPARE(s_passedOn.load(), kThreads * kLines);
    QCOMPARE(lines().size(), kThreads * kLines + 1);
    const QRegularExpression whole(q("^\\S+ debug \\[Test\\] thread (\\d) line (\\d+) end$"));
    std::array<int, kThreads> next{};
    for (const QByteArray &line : lines().mid(1)) {
        const QRegularExpressionMatch match = whole.match(QString::fromUtf8(line));
        QVERIFY2(match.hasMatch(), line.constData());
        int &expected = next.at(static_cast<std::size_t>(match.captured(1).toInt()));
        QCOMPARE(match.captured(2).toInt(), expected++);
    }
}

void LogFileTest::handlerInstalledLaterStays()
{
    auto log = std::make_unique<LogFile>(m_folder);
    LogCapture capture;
    qDebug() << "[Test] one";
    log.reset();
    qDebug() << "[Test] two";
    QCOMPARE(capture.lines(), (QStringList{q("[Test] one"), q("[Test] two")}));
}

EVOX_TEST_MAIN(LogFileTest, QCoreApplication)
#include "tst_logfile.moc"
