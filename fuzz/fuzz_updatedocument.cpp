// The update document of the web site, and the address that is opened after it.

#include "gateway/UpdateDocument.h"

#include <cstdlib>
#include <sanitizer/lsan_interface.h>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// The toolkit's JSON parser loses an array whose key comes twice; that is not what is looked for here.
UpdateDocument read(const QByteArray &body)
{
    const __lsan::ScopedDisabler ignoreLeaks;
    return UpdateDocument::read(body);
}

void requireOneLine(const QString &text, int longest)
{
    require(text.size() <= longest);
    for (const QChar c : text)
        require(c.category() != QChar::Other_Control && c.category() != QChar::Other_Format);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const UpdateDocument document = read(body);
    requireOneLine(document.version, UpdateDocument::kLongestVersion);
    requireOneLine(document.buildDate, UpdateDocument::kLongestBuild);
    require(document.changelog.size() <= UpdateDocument::kMostChanges);
    for (const QString &change : document.changelog)
        requireOneLine(change, UpdateDocument::kLongestChange);
    require(document.changeText().count(QLatin1Char('\n')) == document.changelog.size());
    require(!document.version.isEmpty() || !document.isNewerThan(QStringLiteral("4.0.2")));
    // Whatever the document says, the browser stays with the project.
    for (const QString &base :
         {QStringLiteral("https://sinar.example"), QStringLiteral("http://localhost:8088/sinar")}) {
        for (const QString &architecture : {QStringLiteral("x86_64"), QStringLiteral("i386")}) {
            const QUrl address = document.downloadAddress(base, architecture);
            const QUrl site(base);
            require(address == site || address.toString(QUrl::FullyEncoded).startsWith(base + QLatin1Char('/')));
            require(address.authority() == site.authority() && address.scheme() == site.scheme());
        }
    }
    return 0;
}
