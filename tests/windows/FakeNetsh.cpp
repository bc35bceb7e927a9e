// A "netsh" that stands early on PATH. It writes each call's arguments into the file that EVOX_NETSH_CALLS names, one
// call a line. A rule is there once it has been added; with EVOX_NETSH_REFUSES set it is not allowed to add any.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <windows.h>

namespace {

bool contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

bool hasRule(const std::string &path)
{
    std::ifstream calls(path);
    for (std::string line; std::getline(calls, line);) {
        if (contains(line, " add rule "))
            return true;
    }
    return false;
}

} // namespace

int main()
{
    const char *path = std::getenv("EVOX_NETSH_CALLS");
    if (!path)
        return EXIT_FAILURE;
    const std::string call = GetCommandLineA(); // as it came, with its quotes
    if (contains(call, " show rule ")) {
        const bool isThere = hasRule(path);
        std::puts(isThere ? "\nRule Name:   eVOX SINAR\nOk." : "\nNo rules match the specified criteria.");
        std::ofstream(path, std::ios::app) << call << '\n';
        return isThere ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (std::getenv("EVOX_NETSH_REFUSES")) {
        std::puts("The requested operation requires elevation (Run as administrator).");
        return EXIT_FAILURE;
    }
    std::ofstream(path, std::ios::app) << call << '\n';
    std::puts("Ok.");
    return EXIT_SUCCESS;
}
