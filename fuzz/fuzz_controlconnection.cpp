// The bytes of a control connection. The first byte says in how large pieces they arrive.

#include "net/HostileInput.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_controlconnection";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication app(argc, argv);
    HostileInput::watchDiagnostics();

    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), static_cast<int>(size - 1));
    const QString wrong = HostileInput::feedControlConnection(bytes, 1 + data[0]);
    if (!wrong.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(wrong));
        std::abort();
    }
    return 0;
}
