// Whatever a stranger may send to the web server: the head of a request, and what the site makes of it.

#include "server/WebSite.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

const WebSite &site()
{
    static const WebSite quoted({CallsignRegistry::sample(), true, "{}"});
    return quoted;
}

/// What holds for every request, whatever it says.
bool isSane(const HttpRequest &request)
{
    const bool isEmpty = request.method.isEmpty() && request.path.isEmpty() && request.arguments.isEmpty();
    return request.state == HttpRequest::State::Complete ? !request.method.isEmpty() && request.path.startsWith(u'/')
                                                         : isEmpty;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const HttpRequest request = HttpRequest::parse(bytes);
    if (!isSane(request))
        std::abort();
    // More bytes never change a verdict.
    if (request.state != HttpRequest::State::Incomplete &&
        HttpRequest::parse(bytes + "x\r\n\r\n").state != request.state)
        std::abort();
    if (request.state == HttpRequest::State::Complete && site().answer(request).bytes(true).isEmpty())
        std::abort();
    return 0;
}
