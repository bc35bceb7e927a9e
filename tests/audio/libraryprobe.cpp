// Loads the run-time libraries from wherever this program stands, and prints what came of it line by line.

#include "audio/AudioEngine.h"
#include "audio/OpusLibrary.h"
#include "audio/SodiumLibrary.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

void print(const QString &line)
{
    std::puts(qPrintable(line));
}

void printLog(QtMsgType, const QMessageLogContext &, const QString &text)
{
    print(text);
}

QString word(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

// Whether a library of that name is mapped into this process right now.
bool isMapped(const QString &name)
{
#ifdef Q_OS_WIN
    return GetModuleHandleW(reinterpret_cast<const wchar_t *>(name.utf16())) != nullptr;
#else
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(name.toUtf8());
#endif
}

template<typename Library> void probe(const QString &fileName)
{
    Library &library = Library::instance();
    print(QStringLiteral("load: ") + word(library.load()));
    print(QStringLiteral("loaded: ") + word(library.loaded));
    print(QStringLiteral("mapped: ") + word(isMapped(fileName)));
    print(QStringLiteral("again: ") + word(library.load()));
    print(QStringLiteral("version: ") + library.version());
}

void probeEngine()
{
    AudioEngine engine;
    QObject::connect(&engine, &AudioEngine::error,
                     [](const QString &message) { print(QStringLiteral("error: ") + message); });
    print(QStringLiteral("init: ") + word(engine.init(48000, 1, 960, 32000, 5)));
    print(QStringLiteral("capture: ") + word(engine.startCapture()));
    engine.onAudioReceived(QByteArray(100, 'x'));
    engine.resetDecoder();
    engine.applyQuality(24000, 16000, 5, 20);
    engine.setEncryptionKey(QString::fromLatin1(QByteArray(32, 'k').toBase64()));
    const QByteArray packet(60, 'p');
    print(QStringLiteral("sent raw: ") + word(engine.encryptAudio(packet) == packet));
    bool attempted = true;
    print(QStringLiteral("opened: ") + word(engine.tryOpen(QByteArray(100, 'x'), &attempted).has_value()));
    print(QStringLiteral("attempted: ") + word(attempted));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler(printLog);
    const QString what = app.arguments().value(1);
    if (what == QLatin1String("opus"))
        probe<OpusLibrary>(QStringLiteral("libopus-0"));
    else if (what == QLatin1String("sodium"))
        probe<SodiumLibrary>(QStringLiteral("libsodium"));
    else
        probeEngine();
    return 0;
}
