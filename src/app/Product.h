#pragma once

#include <QString>

/// What the program calls itself. Version and build come from the top CMakeLists.txt.
namespace Product {

/// "e-VOX SINAR": the application name, and with it the name of the data folder.
[[nodiscard]] QString name();
/// "SINAR": the organisation name, the other half of the data folder's path.
[[nodiscard]] QString organisation();
/// The version that the window title, the About box and the update check show.
[[nodiscard]] QString version();
/// The build date, yyyyMMdd.
[[nodiscard]] QString build();
/// The version given to the toolkit. It stays behind version() on purpose: existing installations are known by it.
[[nodiscard]] QString applicationVersion();

} // namespace Product
