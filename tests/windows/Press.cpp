// Presses a button in a window of another program, as its user would:
//
//   evox-press [--wait] TITLE BUTTON
//
// Waits until a window of that title has such a button and it can be pressed; with --wait it is left alone. Texts are
// compared without mnemonics. Ends with 0, or with 1 when no such button has come.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <windows.h>

namespace {

constexpr DWORD kPatience = 60000; // ms
constexpr DWORD kPause = 50;       // ms; nothing tells of another program's windows

struct Wanted
{
    std::string title;
    std::string button;
    HWND found = nullptr;
};

std::string textOf(HWND window)
{
    std::array<char, 256> text{};
    GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
    std::string plain(text.data());
    plain.erase(std::remove(plain.begin(), plain.end(), '&'), plain.end());
    plain.erase(plain.find_last_not_of(' ') + 1); // captions end with one
    return plain;
}

bool canBeUsed(HWND window)
{
    return IsWindowVisible(window) && IsWindowEnabled(window);
}

BOOL CALLBACK lookAtChild(HWND child, LPARAM parameter)
{
    auto *wanted = reinterpret_cast<Wanted *>(parameter);
    if (canBeUsed(child) && textOf(child) == wanted->button)
        wanted->found = child;
    return !wanted->found;
}

BOOL CALLBACK lookAtWindow(HWND window, LPARAM parameter)
{
    auto *wanted = reinterpret_cast<Wanted *>(parameter);
    if (canBeUsed(window) && textOf(window) == wanted->title)
        EnumChildWindows(window, lookAtChild, parameter);
    return !wanted->found;
}

} // namespace

int main(int argc, char *argv[])
{
    const bool waitsOnly = argc == 4 && std::strcmp(argv[1], "--wait") == 0;
    if (argc != 3 && !waitsOnly)
        return EXIT_FAILURE;
    Wanted wanted{argv[argc - 2], argv[argc - 1]};
    const DWORD begin = GetTickCount();
    while (!wanted.found && GetTickCount() - begin < kPatience) {
        EnumWindows(lookAtWindow, reinterpret_cast<LPARAM>(&wanted));
        if (!wanted.found)
            Sleep(kPause);
    }
    if (wanted.found && !waitsOnly) {
        // A box that it opens is not waited for.
        DWORD_PTR result = 0;
        SendMessageTimeoutA(wanted.found, BM_CLICK, 0, 0, SMTO_NORMAL, kPause * 20, &result);
    }
    return wanted.found ? EXIT_SUCCESS : EXIT_FAILURE;
}
