#include "audio/OpusLibrary.h"

#include <QDebug>

namespace {

constexpr RuntimeLibrary::Description kDescription{"libopus-0", "C:/e-vox-sinar-v4/libs/opus/x86",
                                                   "[Opus] DLL not found!", "[Opus] Loading:", "[Opus] Load failed:"};

} // namespace

OpusLibrary &OpusLibrary::instance()
{
    static OpusLibrary library;
    return library;
}

bool OpusLibrary::load()
{
    if (loaded)
        return true;
    if (!m_library.open(kDescription))
        return false;

    m_library.resolve(opus_encoder_create, "opus_encoder_create");
    m_library.resolve(opus_encoder_destroy, "opus_encoder_destroy");
    m_library.resolve(opus_encoder_ctl, "opus_encoder_ctl");
    m_library.resolve(opus_encode, "opus_encode");
    m_library.resolve(opus_decoder_create, "opus_decoder_create");
    m_library.resolve(opus_decoder_destroy, "opus_decoder_destroy");
    m_library.resolve(opus_decode, "opus_decode");
    m_library.resolve(opus_strerror, "opus_strerror");
    if (!opus_encoder_create || !opus_encode || !opus_decoder_create || !opus_decode) {
        qDebug() << "[Opus] Failed to resolve functions";
        m_library.close();
        static_cast<OpusEntryPoints &>(*this) = {};
        return false;
    }
    loaded = true;
    qDebug() << "[Opus] DLL loaded OK";
    return true;
}

QString OpusLibrary::version() const
{
    return m_library.text("opus_get_version_string");
}
