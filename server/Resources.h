#pragma once

#include <QByteArray>

/// A file that is built into the server, for example "registry-sample.json".
[[nodiscard]] QByteArray builtInFile(const char *name);
