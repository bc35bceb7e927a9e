#pragma once

#include <QtGlobal>

#include <memory>

/// The system gives this process no more of something while it lives.
class ResourceLimit final
{
public:
    enum class Of {
        OpenFiles, ///< no further file or socket is opened beyond so many
        FileSize   ///< no file grows past so many bytes; writing there fails as on a full disk
    };

    /// Whether this system can; a test that needs it is skipped where it cannot.
    [[nodiscard]] static bool isPossible();

    ResourceLimit(Of what, quint64 most);
    ~ResourceLimit();
    ResourceLimit(const ResourceLimit &) = delete;
    ResourceLimit &operator=(const ResourceLimit &) = delete;

private:
    struct Earlier;
    std::unique_ptr<Earlier> m_earlier;
};
