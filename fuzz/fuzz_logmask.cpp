// A diagnostic message, and what of it may be kept.

#include "app/LogMask.h"

#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QString secret = QStringLiteral("\u00abrahasia\u00bb");
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QString line = LogMask::masked(text);
    for (const QChar c : line)
        require(c.category() != QChar::Other_Control);
    require(LogMask::masked(line).size() <= line.size());

    // Whatever stands before or behind it, a secret in its place does not pass.
    if (text.contains(QChar(0xAB)) || text.size() > LogMask::kLongestLine / 2)
        return 0;
    const QString registration = QStringLiteral("REGISTER_GATEWAY \"a\" \"b\" \"\" \"\" \"\" \"\" \"\" \"") + secret +
                                 QStringLiteral("\" \"\" \"\"");
    for (const QString &carrier :
         {registration, QStringLiteral("LOGIN YH0AB ") + secret, QStringLiteral("LOGIN_OK|") + secret,
          QStringLiteral("JOIN_OK|Lobby|") + secret, QStringLiteral("TOKEN:") + secret,
          QStringLiteral("USER_CHANGE_PASSWORD \"") + secret, QStringLiteral("ADMIN_RESET_PASSWORD 7 \"") + secret,
          QStringLiteral("{\"password\":\"") + secret}) {
        require(!LogMask::masked(text + carrier).contains(secret));
        require(!LogMask::masked(text + carrier + text).contains(secret));
    }
    return 0;
}
