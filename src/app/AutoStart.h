#pragma once

class QString;

/// Starting the program when the user logs in: a value of the user's "Run" registry key on Windows, an XDG autostart
/// entry elsewhere. Errors are not reported: the setting is a convenience.
namespace AutoStart {

/// Registers or removes programPath (an absolute path in Qt's form, with forward slashes).
void set(bool enabled, const QString &programPath);

} // namespace AutoStart
