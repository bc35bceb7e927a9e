#pragma once

/// What the plugin in the program and the test that drives it say to each other: one JSON object a line. The program
/// connects and introduces itself with {"pid", "arguments"}; then each request {"id", "do", ...} is answered with
/// {"id", "result"} or {"id", "error"}. Whatever a request does to the program happens after its answer, so that a
/// click that opens a dialog is answered too.
namespace DriverWords {

/// Environment variable: the port of this machine on which the test listens. A port, since it is the same for a program
/// of another system that runs here.
constexpr char kPortVariable[] = "EVOX_DRIVER_PORT";
/// The name under which Qt finds the plugin.
constexpr char kPlugin[] = "evoxdriver";
/// Longest line in bytes; a longer one ends the connection.
constexpr int kMaxLine = 1 << 20;

} // namespace DriverWords
