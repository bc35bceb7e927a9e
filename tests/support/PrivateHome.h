#pragma once

#include <QString>

#include <memory>

/// While it lives, this process has an empty folder for its user's data and, on Windows, a registry of its own for the
/// user's values. One at a time.
class PrivateHome final
{
public:
    PrivateHome();
    ~PrivateHome();
    PrivateHome(const PrivateHome &) = delete;
    PrivateHome &operator=(const PrivateHome &) = delete;

    /// Under it are the folders of organisations and their programs.
    [[nodiscard]] QString folder() const;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};
