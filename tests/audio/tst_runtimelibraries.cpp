#include "audio/LibraryFinder.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

const QString kOpusFile = LibraryFinder::fileName(QStringLiteral("libopus-0"));
const QString kSodiumFile = LibraryFinder::fileName(QStringLiteral("libsodium"));

QString realLibrary(const QString &name)
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/libs/") + name;
}

QString fakeLibrary(const QString &name)
{
    return qEnvironmentVariable("EVOX_BUILD_DIR") + QStringLiteral("/fakes/") + LibraryFinder::fileName(name);
}

// A file that no system takes for a library.
QString noLibrary()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/eula.txt");
}

// A folder with a copy of the probe, started with another folder as the current one.
class Installation
{
public:
    Installation()
    {
        const QString suffix = QFileInfo(QCoreApplication::applicationFilePath()).suffix();
        m_probe = path("app/probe") + (suffix.isEmpty() ? QString() : QLatin1Char('.') + suffix);
        const QString probe = QCoreApplication::applicationDirPath() + QStringLiteral("/evox-libraryprobe") +
                              m_probe.mid(path("app/probe").size());
        m_ready = QDir(m_folder.path()).mkpath(QStringLiteral("app/libs")) &&
                  QDir(m_folder.path()).mkpath(QStringLiteral("current")) && QFile::copy(probe, m_probe);
    }
    ~Installation()
    {
        for (const QString &file : qAsConst(m_elsewhere))
            QFile::remove(file);
    }
    Q_DISABLE_COPY_MOVE(Installation)

    [[nodiscard]] bool isReady() const { return m_ready; }
    [[nodiscard]] QString path(const char *relative) const
    {
        return m_folder.path() + QLatin1Char('/') + QString::fromLatin1(relative);
    }
    // The folder is relative to this one; if it is absolute on this system, the file goes there and away at the end.
    [[nodiscard]] bool put(const QString &library, const QString &folder, const QString &fileName)
    {
        const QDir target(QDir::isAbsolutePath(folder) ? folder : path(qPrintable(folder)));
        const QString file = target.filePath(fileName);
        if (QDir::isAbsolutePath(folder))
            m_elsewhere.append(file);
        return target.mkpath(QStringLiteral(".")) && QFile::copy(library, file);
    }
    [[nodiscard]] QStringList run(const QString &what) const
    {
        QProcess probe;
        probe.setWorkingDirectory(path("current"));
        probe.start(m_probe, {what});
        if (!probe.waitForFinished() || probe.exitStatus() != QProcess::NormalExit || probe.exitCode() != 0)
            return {QStringLiteral("probe failed: ") + QString::fromUtf8(probe.readAllStandardError())};
        const QByteArray output = probe.readAllStandardOutput().replace("\r\n", "\n");
        return QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir m_folder;
    QString m_probe;
    QStringList m_elsewhere;
    bool m_ready = false;
};

} // namespace

class TestRuntimeLibraries : public QObject
{
    Q_OBJECT

private slots:
    void searchList();
    void firstFileWins_data();
    void firstFileWins();
    void opusOutcomes_data();
    void opusOutcomes();
    void sodiumOutcomes_data();
    void sodiumOutcomes();
    void engineWithoutCodec();
    void engineWithoutCipher();
    void engineWithRefusingCodec_data();
    void engineWithRefusingCodec();
    void engineWithRefusingCipher();
};

void TestRuntimeLibraries::searchList()
{
    const QStringList folders = LibraryFinder::searchFolders(QStringLiteral("/a"), QStringLiteral("/c"),
                                                             QStringLiteral("C:/e-vox-sinar-v4/libs/opus/x86"));
    QCOMPARE(folders, (QStringList{QStringLiteral("/a"), QStringLiteral("/a/libs"), QStringLiteral("/c"),
                                   QStringLiteral("C:/e-vox-sinar-v4/libs/opus/x86")}));
#ifdef Q_OS_WIN
    QCOMPARE(LibraryFinder::fileName(QStringLiteral("libopus-0")), QStringLiteral("libopus-0.dll"));
#else
    QCOMPARE(LibraryFinder::fileName(QStringLiteral("libopus-0")), QStringLiteral("libopus-0.so"));
#endif
    QCOMPARE(LibraryFinder::find({QStringLiteral("/nowhere"), QStringLiteral("/proc")}, QStringLiteral("absent")),
             QString());
}

void TestRuntimeLibraries::firstFileWins_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("winner"); // the last ones are relative to the current folder

    const QString opusBuild = QStringLiteral("C:/e-vox-sinar-v4/libs/opus/x86");
    const QString sodiumBuild = QStringLiteral("C:/e-vox-sinar-v4/libs/sodium/x86");
    for (const QString &what : {QStringLiteral("opus"), QStringLiteral("sodium")}) {
        const QByteArray name = what.toLatin1();
        // The build's folder is absolute on Windows only; elsewhere it begins at the current folder.
        const QString buildFolder = what == QLatin1String("opus") ? opusBuild : sodiumBuild;
        const QString build =
            QDir::isAbsolutePath(buildFolder) ? buildFolder : QStringLiteral("current/") + buildFolder;
        const QStringList order{QStringLiteral("app"), QStringLiteral("app/libs"), QStringLiteral("current"), build};
        QTest::addRow("%s: beside the program before all others", name.constData()) << what << order << order[0];
        QTest::addRow("%s: libs before the current folder", name.constData())
            << what << QStringList(order.mid(1)) << order[1];
        QTest::addRow("%s: current folder before the build's", name.constData())
            << what << QStringList(order.mid(2)) << order[2];
        QTest::addRow("%s: build folder last", name.constData()) << what << QStringList(order.mid(3)) << order[3];
        QTest::addRow("%s: nowhere", name.constData()) << what << QStringList{} << QString();
    }
}

void TestRuntimeLibraries::firstFileWins()
{
    QFETCH(QString, what);
    QFETCH(QStringList, folders);
    QFETCH(QString, winner);
    const bool opus = what == QLatin1String("opus");
    const QString tag = opus ? QStringLiteral("[Opus]") : QStringLiteral("[Sodium]");
    const QString fileName = opus ? kOpusFile : kSodiumFile;
    Installation installation;
    QVERIFY(installation.isReady());
    for (const QString &folder : qAsConst(folders))
        QVERIFY(installation.put(realLibrary(fileName), folder, fileName));

    const QStringList lines = installation.run(what);
    if (winner.isEmpty()) {
        const QString notFound = tag + (opus ? QStringLiteral(" DLL not found!") : QStringLiteral(" DLL not found"));
        // A failure is not remembered: the second call searches again.
        QCOMPARE(lines, (QStringList{notFound, QStringLiteral("load: false"), QStringLiteral("loaded: false"),
                                     QStringLiteral("mapped: false"), notFound, QStringLiteral("again: false"),
                                     QStringLiteral("version: ")}));
        return;
    }
    const QStringList loading = lines.filter(tag + QStringLiteral(" Loading:"));
    QCOMPARE(loading.size(), 1); // the second call does not look again
    // The build's folder is looked for as it is named.
    const QString folder = winner.contains(QLatin1String("C:/")) ? winner.mid(winner.indexOf(QLatin1String("C:/")))
                                                                 : installation.path("") + winner;
    QCOMPARE(loading.first(), tag + QStringLiteral(" Loading: ") + folder + QLatin1Char('/') + fileName);
    QCOMPARE(lines.value(1), tag + QStringLiteral(" DLL loaded OK"));
    QVERIFY(lines.contains(QStringLiteral("loaded: true")));
    QVERIFY(lines.contains(QStringLiteral("again: true")));
    QVERIFY(lines.last().size() > QStringLiteral("version: ").size());
}

void TestRuntimeLibraries::opusOutcomes_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<bool>("loads");
    QTest::addColumn<QString>("lastLine");

    QTest::addRow("lacks opus_strerror") << fakeLibrary(QStringLiteral("opus-without-strerror")) << true
                                         << QStringLiteral("[Opus] DLL loaded OK");
    QTest::addRow("lacks opus_decode") << fakeLibrary(QStringLiteral("opus-without-decode")) << false
                                       << QStringLiteral("[Opus] Failed to resolve functions");
    QTest::addRow("no library at all") << noLibrary() << false << QStringLiteral("[Opus] Load failed: ");
}

void TestRuntimeLibraries::opusOutcomes()
{
    QFETCH(QString, library);
    QFETCH(bool, loads);
    QFETCH(QString, lastLine);
    Installation installation;
    QVERIFY(installation.put(library, QStringLiteral("app"), kOpusFile));

    const QStringList lines = installation.run(QStringLiteral("opus"));
    const QString outcome = loads ? QStringLiteral("true") : QStringLiteral("false");
    QVERIFY2(lines.value(1).startsWith(lastLine), qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY(lines.contains(QStringLiteral("load: ") + outcome));
    QVERIFY(lines.contains(QStringLiteral("loaded: ") + outcome));
    QVERIFY2(lines.contains(QStringLiteral("mapped: ") + outcome), "the library's presence is not what was expected");
}

void TestRuntimeLibraries::sodiumOutcomes_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<bool>("loads");
    QTest::addColumn<QString>("lastLine");

    QTest::addRow("initialised before, returns 1")
        << fakeLibrary(QStringLiteral("sodium-initialised-before")) << true << QStringLiteral("[Sodium] DLL loaded OK");
    QTest::addRow("refuses to initialise, returns -1")
        << fakeLibrary(QStringLiteral("sodium-refusing")) << false << QStringLiteral("[Sodium] Init failed");
    QTest::addRow("lacks crypto_secretbox_open_easy") << fakeLibrary(QStringLiteral("sodium-without-open")) << false
                                                      << QStringLiteral("[Sodium] Failed to resolve functions");
    QTest::addRow("no library at all") << noLibrary() << false << QStringLiteral("[Sodium] Load failed: ");
}

void TestRuntimeLibraries::sodiumOutcomes()
{
    QFETCH(QString, library);
    QFETCH(bool, loads);
    QFETCH(QString, lastLine);
    Installation installation;
    QVERIFY(installation.put(library, QStringLiteral("app"), kSodiumFile));

    const QStringList lines = installation.run(QStringLiteral("sodium"));
    const QString outcome = loads ? QStringLiteral("true") : QStringLiteral("false");
    QVERIFY2(lines.value(1).startsWith(lastLine), qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY(lines.contains(QStringLiteral("load: ") + outcome));
    QVERIFY(lines.contains(QStringLiteral("loaded: ") + outcome));
    QVERIFY2(lines.contains(QStringLiteral("mapped: ") + outcome), "the library's presence is not what was expected");
}

void TestRuntimeLibraries::engineWithoutCodec()
{
    Installation installation;
    const QStringList lines = installation.run(QStringLiteral("engine"));
    QVERIFY(lines.contains(QStringLiteral("[Opus] DLL not found!")));
    QVERIFY(lines.contains(QStringLiteral("error: Failed to load Opus DLL")));
    QVERIFY(lines.contains(QStringLiteral("init: false")));
    QVERIFY(lines.contains(QStringLiteral("capture: false")));
    QCOMPARE(lines.last(), QStringLiteral("[Audio] Destructor called"));
}

void TestRuntimeLibraries::engineWithoutCipher()
{
    Installation installation;
    QVERIFY(installation.put(realLibrary(kOpusFile), QStringLiteral("app"), kOpusFile));
    const QStringList lines = installation.run(QStringLiteral("engine"));
    QVERIFY(lines.contains(QStringLiteral("init: true")));
    const int missing = lines.indexOf(QStringLiteral("[Audio] Sodium not available - encryption disabled"));
    QVERIFY(missing > 0);
    QCOMPARE(lines.value(missing - 1), QStringLiteral("[Sodium] DLL not found"));
    QCOMPARE(lines.value(missing + 1), QStringLiteral("[Audio] Encryption key updated (playback continues)"));
    QVERIFY(lines.contains(QStringLiteral("[TX] encryptAudio - encryption disabled, sending raw")));
    QVERIFY(lines.contains(QStringLiteral("sent raw: true")));
    QVERIFY(lines.contains(QStringLiteral("attempted: false")));
}

void TestRuntimeLibraries::engineWithRefusingCodec_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("line");
    QTest::addRow("no encoder") << QStringLiteral("opus-refusing-encoder")
                                << QStringLiteral("[Audio] Encoder error: no memory, says the fake");
    QTest::addRow("no decoder") << QStringLiteral("opus-refusing-decoder")
                                << QStringLiteral("[Audio] Decoder error: something else, says the fake");
}

void TestRuntimeLibraries::engineWithRefusingCodec()
{
    QFETCH(QString, library);
    QFETCH(QString, line);
    Installation installation;
    QVERIFY(installation.put(fakeLibrary(library), QStringLiteral("app"), kOpusFile));
    const QStringList lines = installation.run(QStringLiteral("engine"));
    QVERIFY2(lines.contains(line), qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY(lines.contains(QStringLiteral("init: false")));
    QVERIFY(lines.filter(QRegularExpression(QStringLiteral("^error: "))).isEmpty());
}

void TestRuntimeLibraries::engineWithRefusingCipher()
{
    Installation installation;
    QVERIFY(installation.put(realLibrary(kOpusFile), QStringLiteral("app"), kOpusFile));
    QVERIFY(
        installation.put(fakeLibrary(QStringLiteral("sodium-initialised-before")), QStringLiteral("app"), kSodiumFile));
    const QStringList lines = installation.run(QStringLiteral("engine"));
    QVERIFY(lines.contains(QStringLiteral("sent raw: false")));
    QVERIFY(lines.contains(QStringLiteral("opened: false")));
    QVERIFY(lines.contains(QStringLiteral("attempted: true")));
}

EVOX_TEST_MAIN(TestRuntimeLibraries, QCoreApplication)
#include "tst_runtimelibraries.moc"
