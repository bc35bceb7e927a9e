#include "support/TestMain.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

// main → ui → { gateway, net, audio, radio, app }, net → protocol, server → protocol: nothing on the ground floor
// includes a sibling or looks up.
class IncludesTest final : public QObject
{
    Q_OBJECT

private slots:
    void foldersIncludeOnlyWhatTheyMay_data();
    void foldersIncludeOnlyWhatTheyMay();
};

void IncludesTest::foldersIncludeOnlyWhatTheyMay_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("allowed");
    const auto row = [](const char *folder, const QStringList &allowed) {
        QTest::newRow(folder) << QString::fromLatin1(folder) << allowed;
    };
    const QString app = QStringLiteral("app");
    const QString protocol = QStringLiteral("net/protocol");
    const QString net = QStringLiteral("net");
    const QString audio = QStringLiteral("audio");
    const QString radio = QStringLiteral("radio");
    const QString gateway = QStringLiteral("gateway");
    const QString ui = QStringLiteral("ui");
    row("src/app", {app});
    row("src/net/protocol", {protocol});
    row("src/net", {net, protocol});
    row("src/audio", {audio});
    row("src/radio", {radio});
    row("src/gateway", {gateway});
    row("src/ui", {ui, gateway, net, protocol, audio, radio, app});
    row("server", {QStringLiteral("server"), protocol});
}

void IncludesTest::foldersIncludeOnlyWhatTheyMay()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, allowed);
    static const QRegularExpression include(QStringLiteral("^\\s*#\\s*include\\s+\"([^\"]+)\""),
                                            QRegularExpression::MultilineOption);
    const QString root = QStringLiteral(EVOX_SOURCE_DIR "/");
    int files = 0;
    QDirIterator it(root + folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (folder == QLatin1String("src/net") && path.contains(QLatin1String("/protocol/")))
            continue;
        ++files;
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        auto matches = include.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext()) {
            const QString header = matches.next().captured(1);
            const QString from = header.section(QLatin1Char('/'), 0, -2);
            const bool generated = from.isEmpty() && header.endsWith(QLatin1String(".moc"));
            const bool within = std::any_of(allowed.cbegin(), allowed.cend(), [&from](const QString &name) {
                return from == name || (name != QLatin1String("net") && from.startsWith(name + QLatin1Char('/')));
            });
            QVERIFY2(generated || within,
                     qPrintable(QStringLiteral("%1 may not include \"%2\"").arg(path.mid(root.size()), header)));
        }
    }
    QVERIFY2(files > 0, "the folder is empty: is the source tree where the build saw it?");
}

EVOX_TEST_MAIN(IncludesTest, QCoreApplication)
#include "tst_includes.moc"
