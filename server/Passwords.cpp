#include "server/Passwords.h"

#include <algorithm>
#include <sodium.h>

namespace Passwords {

bool initialize()
{
    return sodium_init() >= 0;
}

QByteArray hash(const QString &password)
{
    const QByteArray bytes = password.toUtf8();
    QByteArray text(crypto_pwhash_STRBYTES, '\0');
    const int failed = crypto_pwhash_str(text.data(), bytes.constData(), static_cast<unsigned long long>(bytes.size()),
                                         crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE);
    return failed ? QByteArray() : QByteArray(text.constData());
}

bool matches(const QByteArray &hash, const QString &password)
{
    const QByteArray bytes = password.toUtf8();
    return hash.size() < int(crypto_pwhash_STRBYTES) &&
           crypto_pwhash_str_verify(hash.constData(), bytes.constData(),
                                    static_cast<unsigned long long>(bytes.size())) == 0;
}

QByteArray randomBytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    randombytes_buf(bytes.data(), static_cast<size_t>(count));
    return bytes;
}

bool fitsLogin(const QString &password)
{
    return std::none_of(password.cbegin(), password.cend(), [](QChar character) {
        return character.isSpace() || character == QLatin1Char('"') || character.category() == QChar::Other_Control;
    });
}

} // namespace Passwords
