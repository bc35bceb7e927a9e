#pragma once

#include <QLibrary>
#include <QString>

/// A shared library that is found and opened by name while the program runs. Once opened it stays loaded for the life
/// of the process unless close() is called.
class RuntimeLibrary final
{
    Q_DISABLE_COPY_MOVE(RuntimeLibrary)

public:
    /// The diagnostics differ by more than their tag, so each library brings its own.
    struct Description
    {
        const char *baseName;    ///< without the platform's suffix
        const char *buildFolder; ///< searched last
        const char *notFound;
        const char *loading;
        const char *loadFailed;
    };

    RuntimeLibrary() = default;

    /// Finds and opens the library; logs which file, or why not.
    bool open(const Description &description);
    void close();

    /// Sets the entry to the exported function of that name, or to null.
    template<typename Function> void resolve(Function *&entry, const char *name)
    {
        entry = reinterpret_cast<Function *>(m_library.resolve(name));
    }
    /// What an exported "const char *name(void)" returns; empty when the library has none or is not open.
    [[nodiscard]] QString text(const char *name) const;

private:
    mutable QLibrary m_library; // resolving is not const in QLibrary
};
