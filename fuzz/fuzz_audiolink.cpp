// Datagrams of the audio link, each behind one byte that says how long it is.

#include "net/HostileInput.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_audiolink";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication app(argc, argv);
    HostileInput::watchDiagnostics();

    const auto rest = QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size));
    QList<QByteArray> datagrams;
    for (int at = 0; at < rest.size();) {
        const int length = static_cast<unsigned char>(rest.at(at));
        const QByteArray datagram = rest.mid(at + 1, length);
        datagrams.append(QByteArray(datagram.constData(), datagram.size()));
        at += 1 + length;
    }
    const QString wrong = HostileInput::feedAudioLink(datagrams);
    if (!wrong.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(wrong));
        std::abort();
    }
    return 0;
}
