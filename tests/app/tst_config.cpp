#include "app/Config.h"
#include "app/Endpoints.h"
#include "support/LogCapture.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSettings>

class ConfigTest final : public QObject
{
    Q_OBJECT

private slots:
    void defaultsWithoutFile();
    void filePathIsInTheDataFolder();
    void loadsAnObject();
    void ignoresWhatIsNoObject_data();
    void ignoresWhatIsNoObject();
    void hostileValuesReadAsDefaults();
    void savesIndentedJsonWithAssignedKeysOnly();
    void savedFileIsForItsOwnerOnly();
    void reportsAFileThatCannotBeWritten();
    void startsWithTheSession();
};

void ConfigTest::defaultsWithoutFile()
{
    LogCapture log;
    const TestConfig test;
    const Config &config = Config::instance();
    QVERIFY(log.contains(QStringLiteral("[Config] No config file, using defaults")));
    QVERIFY(config.values().isEmpty());
    QCOMPARE(config.serverAddress(), Endpoints::builtIn().serverHost);
    QCOMPARE(config.serverPort(), 8080);
    QCOMPARE(config.defaultRoom(), QStringLiteral("Lobby"));
    QCOMPARE(config.pttPin(), QStringLiteral("RTS"));
    QCOMPARE(config.cosPin(), QStringLiteral("CTS"));
    QCOMPARE(config.serialPort(), QString());
    QCOMPARE(config.callsign(), QString());
    QCOMPARE(config.hwid(), QString());
    QCOMPARE(config.inputDevice(), -1);
    QCOMPARE(config.outputDevice(), -1);
    QCOMPARE(config.micGain(), 100);
    QCOMPARE(config.speakerGain(), 80);
    QCOMPARE(config.baudrate(), 9600);
    QCOMPARE(config.cosLogicHigh(), true);
    QCOMPARE(config.autoLogin(), true);
    QCOMPARE(config.rememberPassword(), false);
    QCOMPARE(config.setupCompleted(), false);
    QCOMPARE(config.darkTheme(), false);
}

void ConfigTest::filePathIsInTheDataFolder()
{
    const TestConfig test;
    QCOMPARE(Config::filePath(), test.folder() + QStringLiteral("/SINAR/e-VOX SINAR/config.json"));
    QVERIFY2(QFileInfo(test.folder() + QStringLiteral("/SINAR/e-VOX SINAR")).isDir(), "the folder is made on demand");
}

void ConfigTest::loadsAnObject()
{
    LogCapture log;
    const TestConfig test(
        {{QStringLiteral("server_port"), 9000}, {QStringLiteral("callsign"), QStringLiteral("YB0A")}});
    QVERIFY(log.contains(QStringLiteral("[Config] Loaded from: ") + Config::filePath()));
    QCOMPARE(Config::instance().serverPort(), 9000);
    QCOMPARE(Config::instance().callsign(), QStringLiteral("YB0A"));
}

void ConfigTest::ignoresWhatIsNoObject_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("array at the top") << QByteArray("[1, 2]");
    QTest::newRow("cut off") << QByteArray("{\"server_port\": 9");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("random bytes") << QByteArray::fromHex("00ff80feff0d0a7b");
    QTest::newRow("nested too deep") << QByteArray(5000, '[');
    QTest::newRow("trailing garbage") << QByteArray("{\"server_port\": 9000} x");
}

void ConfigTest::ignoresWhatIsNoObject()
{
    QFETCH(QByteArray, bytes);
    const TestConfig test({{QStringLiteral("server_port"), 9000}});
    test.writeFile(bytes);
    LogCapture log;
    Config::instance().load();
    QVERIFY(Config::instance().values().isEmpty());
    QCOMPARE(Config::instance().serverPort(), 8080);
    QVERIFY2(log.lines().isEmpty(), "a malformed file is ignored without a word");
}

void ConfigTest::hostileValuesReadAsDefaults()
{
    const TestConfig test({{QStringLiteral("server_port"), 70000},
                           {QStringLiteral("default_room"), QJsonArray()},
                           {QStringLiteral("auto_login"), QStringLiteral("no")},
                           {QStringLiteral("input_device"), QStringLiteral("x")}});
    const Config &config = Config::instance();
    QCOMPARE(config.serverPort(), 8080);
    QCOMPARE(config.defaultRoom(), QStringLiteral("Lobby"));
    QCOMPARE(config.autoLogin(), true);
    QCOMPARE(config.inputDevice(), -1);
}

void ConfigTest::savesIndentedJsonWithAssignedKeysOnly()
{
    const TestConfig test;
    LogCapture log;
    Config &config = Config::instance();
    config.setServerAddress(QStringLiteral("radio.example"));
    config.setRememberPassword(true);
    config.save();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("[Config] Saved to: ") + Config::filePath()});
    QFile file(Config::filePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             QByteArray("{\n    \"remember_password\": true,\n    \"server_address\": \"radio.example\"\n}\n"));
}

void ConfigTest::savedFileIsForItsOwnerOnly()
{
#ifdef Q_OS_WIN
    QSKIP("Windows has access lists instead; those of the user's data folder hold");
#endif
    const TestConfig test;
    Config::instance().setPassword(QStringLiteral("secret"));
    Config::instance().save();
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(Config::filePath()) & others, QFile::Permissions());
}

void ConfigTest::reportsAFileThatCannotBeWritten()
{
    const TestConfig test;
    QVERIFY(QDir().mkpath(Config::filePath())); // a folder stands where the file should be
    LogCapture log;
    log.expectWarning(QStringLiteral("[Config] Failed to save to: ") + Config::filePath() + QStringLiteral(" Error: "));
    Config::instance().setServerPort(9000);
    Config::instance().save();
    QCOMPARE(log.count(QStringLiteral("[Config] Failed to save to: ")), 1);
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(Config::instance().serverPort(), 9000);
}

void ConfigTest::startsWithTheSession()
{
    const TestConfig test;
#ifdef Q_OS_WIN
    QSettings run(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                  QSettings::NativeFormat);
    Config::instance().setAutoStart(true);
    run.sync();
    QCOMPARE(run.value(QStringLiteral("eVOX-SINAR")).toString(),
             QDir::toNativeSeparators(QCoreApplication::applicationFilePath()));
    Config::instance().setAutoStart(false);
    run.sync();
    QVERIFY(!run.contains(QStringLiteral("eVOX-SINAR")));
#else
    const QString path = test.folder() + QStringLiteral("/autostart/eVOX-SINAR.desktop");
    Config::instance().setAutoStart(true);
    QSettings entry(path, QSettings::IniFormat);
    QCOMPARE(entry.value(QStringLiteral("Desktop Entry/Exec")).toString(), QCoreApplication::applicationFilePath());
    Config::instance().setAutoStart(false);
    QVERIFY(!QFileInfo::exists(path));
#endif
}

EVOX_TEST_MAIN(ConfigTest, QCoreApplication)
#include "tst_config.moc"
