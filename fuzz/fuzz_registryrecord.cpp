// A page of the callsign registry, and the verdict on it.

#include "gateway/RegistryRecord.h"

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
    const QByteArray page(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QDate today(2026, 11, 21);
    const RegistryRecord record = RegistryRecord::read(page, today);
    using Verdict = RegistryRecord::Verdict;
    // Nobody transmits on a page without an entry, after the permit has ended, or against a status that forbids it.
    if (record.isPermitted()) {
        require(record.isListed());
        require(!record.expiry.isValid() || record.expiry >= today);
        require(record.validity.isEmpty() || !record.status.contains(QLatin1String("EXPIRED"), Qt::CaseInsensitive));
    }
    require(record.verdict != Verdict::NoValidity || record.validity.isEmpty());
    // What is shown is one line.
    for (const QString &text : {record.address, record.name, record.validity, record.status})
        require(text == text.simplified());
    return 0;
}
