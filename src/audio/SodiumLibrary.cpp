#include "audio/SodiumLibrary.h"

#include <QDebug>

namespace {

constexpr RuntimeLibrary::Description kDescription{"libsodium", "C:/e-vox-sinar-v4/libs/sodium/x86",
                                                   "[Sodium] DLL not found",
                                                   "[Sodium] Loading:", "[Sodium] Load failed:"};

} // namespace

SodiumLibrary &SodiumLibrary::instance()
{
    static SodiumLibrary library;
    return library;
}

bool SodiumLibrary::load()
{
    if (loaded)
        return true;
    if (!m_library.open(kDescription))
        return false;

    m_library.resolve(sodium_init, "sodium_init");
    m_library.resolve(randombytes_buf, "randombytes_buf");
    m_library.resolve(crypto_secretbox_easy, "crypto_secretbox_easy");
    m_library.resolve(crypto_secretbox_open_easy, "crypto_secretbox_open_easy");
    if (!sodium_init || !crypto_secretbox_easy || !crypto_secretbox_open_easy) {
        qDebug() << "[Sodium] Failed to resolve functions";
        unload();
        return false;
    }
    // One means that somebody else in the process has initialised it already.
    if (sodium_init() < 0) {
        qDebug() << "[Sodium] Init failed";
        unload();
        return false;
    }
    loaded = true;
    qDebug() << "[Sodium] DLL loaded OK";
    return true;
}

void SodiumLibrary::unload()
{
    m_library.close();
    static_cast<SodiumEntryPoints &>(*this) = {};
}

QString SodiumLibrary::version() const
{
    return m_library.text("sodium_version_string");
}
