#pragma once

#include "audio/RuntimeLibrary.h"

#include <QtGlobal>

#include <cstddef>

/// The cipher's entry points under their exported names, with the library's own signatures. Null until loaded.
struct SodiumEntryPoints
{
    int (*sodium_init)() = nullptr;
    void (*randombytes_buf)(void *buffer, std::size_t size) = nullptr;
    int (*crypto_secretbox_easy)(unsigned char *box, const unsigned char *message, unsigned long long messageLength,
                                 const unsigned char *nonce, const unsigned char *key) = nullptr;
    int (*crypto_secretbox_open_easy)(unsigned char *message, const unsigned char *box, unsigned long long boxLength,
                                      const unsigned char *nonce, const unsigned char *key) = nullptr;
    bool loaded = false;
};

/// The libsodium cipher, loaded while the program runs; one table for the whole process. Load on the GUI thread.
class SodiumLibrary final : public SodiumEntryPoints
{
    Q_DISABLE_COPY_MOVE(SodiumLibrary)

public:
    [[nodiscard]] static SodiumLibrary &instance();

    /// True when the cipher is there and initialised; a failure is logged and the next call searches again.
    bool load();
    /// The library's own version text; empty when it is not loaded.
    [[nodiscard]] QString version() const;

private:
    SodiumLibrary() = default;
    void unload();

    RuntimeLibrary m_library;
};
