#pragma once

#include <QString>

#include <memory>

/// Moves this process's user folders and, on Windows, the user's registry away from the real ones while it lives.
class PrivateHome final
{
public:
    explicit PrivateHome(const QString &folder);
    ~PrivateHome();
    PrivateHome(const PrivateHome &) = delete;
    PrivateHome &operator=(const PrivateHome &) = delete;

private:
    struct Earlier;
    std::unique_ptr<Earlier> m_earlier;
};
