#include "gateway/RegistryRecord.h"

#include <QRegularExpression>
#include <QVector>

#include <array>
#include <optional>

namespace {

struct Item
{
    QString title; ///< in lower case, without its colon
    QString value;
};

/// The page is at times sent as a string literal; these three escapes are all that it is known to contain.
QString unquoted(QString page)
{
    if (!page.startsWith(QLatin1Char('"')))
        return page;
    page = page.mid(1);
    page.chop(1);
    page.replace(QLatin1String("\\\""), QLatin1String("\""));
    page.replace(QLatin1String("\\n"), QLatin1String("\n"));
    page.replace(QLatin1String("\\/"), QLatin1String("/"));
    return page;
}

QString plain(QString html)
{
    static const QRegularExpression tag(QStringLiteral("<[^>]+>"));
    return html.remove(tag).simplified();
}

/// The text from a position on up to a closing tag; nothing when the tag is never closed.
std::optional<QString> contentUpTo(const QString &closingTag, const QString &html, int from)
{
    const int end = html.indexOf(closingTag, from, Qt::CaseInsensitive);
    if (end < 0)
        return {};
    return html.mid(from, end - from);
}

/// What the first such division of an item holds.
std::optional<QString> divisionOf(const QString &html, const QString &openingTag)
{
    const int start = html.indexOf(openingTag, 0, Qt::CaseInsensitive);
    return start < 0 ? std::nullopt : contentUpTo(QStringLiteral("</div>"), html, start + openingTag.size());
}

std::optional<Item> itemFrom(const QString &html)
{
    const auto title = divisionOf(html, QStringLiteral("<div class=\"title-meta\">"));
    const auto value = divisionOf(html, QStringLiteral("<div class=\"meta-details\">"));
    if (!title || !value)
        return {};
    return Item{plain(*title).remove(QLatin1Char(':')).toLower(), plain(*value)};
}

/// What the list of facts holds. Searched for by hand: a pattern would take minutes for a page that is made to be slow.
std::optional<QString> listOf(const QString &page)
{
    int start = 0;
    while ((start = page.indexOf(QLatin1String("<ul"), start, Qt::CaseInsensitive)) >= 0) {
        const int end = page.indexOf(QLatin1Char('>'), start);
        if (end < 0)
            return {};
        const QStringRef tag = page.midRef(start, end - start);
        if (tag.contains(QLatin1String("class=\"none-style\""), Qt::CaseInsensitive))
            return contentUpTo(QStringLiteral("</ul>"), page, end + 1);
        start = end;
    }
    return {};
}

QVector<Item> itemsOf(const QString &list)
{
    const QString closingTag = QStringLiteral("</li>");
    QVector<Item> items;
    int start = 0;
    while ((start = list.indexOf(QLatin1String("<li"), start, Qt::CaseInsensitive)) >= 0) {
        const int end = list.indexOf(QLatin1Char('>'), start);
        const auto content = end < 0 ? std::nullopt : contentUpTo(closingTag, list, end + 1);
        if (!content)
            break;
        if (const auto item = itemFrom(*content))
            items.append(*item);
        start = end + 1 + content->size() + closingTag.size();
    }
    return items;
}

bool saysInactive(const QString &status)
{
    const QString upper = status.toUpper();
    for (const char *word : {"KADALUARSA", "EXPIRED", "INACTIVE", "TIDAK AKTIF"}) {
        if (upper.contains(QLatin1String(word)))
            return true;
    }
    return false;
}

bool namesValidity(const QString &title)
{
    return (title.contains(QLatin1String("masa")) && title.contains(QLatin1String("laku"))) ||
           title.contains(QLatin1String("berlaku")) || title.contains(QLatin1String("expir"));
}

/// Of several names, validities or states the first that says something counts.
void keepFirst(QString *text, const QString &value)
{
    if (text->isEmpty())
        *text = value;
}

/// Gathers the texts; whether an address was among them.
bool gather(const QVector<Item> &items, RegistryRecord *record)
{
    bool hasAddress = false;
    for (const Item &item : items) {
        if (item.title.contains(QLatin1String("nama")) && !item.title.contains(QLatin1String("penggunaan")))
            keepFirst(&record->name, item.value);
        if (item.title.contains(QLatin1String("alamat"))) {
            if (!hasAddress)
                record->address = item.value;
            hasAddress = true;
        } else if (namesValidity(item.title)) {
            keepFirst(&record->validity, item.value);
        } else if (item.title.contains(QLatin1String("status"))) {
            if (saysInactive(item.value) && !saysInactive(record->status))
                record->status = item.value; // one such item is enough
            keepFirst(&record->status, item.value);
        }
    }
    return hasAddress;
}

RegistryRecord::Verdict judge(const RegistryRecord &record, bool hasAddress)
{
    using Verdict = RegistryRecord::Verdict;
    if (!hasAddress)
        return Verdict::NoAddress;
    if (record.validity.isEmpty())
        return Verdict::NoValidity;
    if (saysInactive(record.status))
        return Verdict::Inactive;
    if (!record.expiry.isValid())
        return Verdict::UnreadableDate;
    if (record.daysLeft < 0)
        return Verdict::Expired;
    return record.daysLeft <= RegistryRecord::kSoonDays ? Verdict::ExpiresSoon : Verdict::Valid;
}

QDate endOfNamedMonth(const QString &validity)
{
    static const std::array<QLatin1String, 12> months{
        QLatin1String("JANUARI"),   QLatin1String("FEBRUARI"), QLatin1String("MARET"),    QLatin1String("APRIL"),
        QLatin1String("MEI"),       QLatin1String("JUNI"),     QLatin1String("JULI"),     QLatin1String("AGUSTUS"),
        QLatin1String("SEPTEMBER"), QLatin1String("OKTOBER"),  QLatin1String("NOVEMBER"), QLatin1String("DESEMBER")};
    static const QRegularExpression year(QStringLiteral("(\\d{4})"));
    const QString upper = validity.toUpper();
    for (std::size_t i = 0; i < months.size(); ++i) {
        if (!upper.contains(months[i]))
            continue;
        const QDate first(year.match(upper).captured(1).toInt(), static_cast<int>(i) + 1, 1);
        return first.isValid() ? QDate(first.year(), first.month(), first.daysInMonth()) : QDate();
    }
    return {};
}

} // namespace

bool RegistryRecord::isListed() const
{
    return verdict != Verdict::NotListed && verdict != Verdict::UnknownFormat;
}

bool RegistryRecord::isPermitted() const
{
    return verdict == Verdict::NoValidity || verdict == Verdict::ExpiresSoon || verdict == Verdict::Valid ||
           verdict == Verdict::UnreadableDate;
}

QDate RegistryRecord::expiryFrom(const QString &validity)
{
    if (const QDate end = endOfNamedMonth(validity); end.isValid())
        return end;
    // The order decides what 01/02/2027 is: the first of February.
    for (const char *format :
         {"dd/MM/yyyy", "yyyy-MM-dd", "d/M/yyyy", "MM/dd/yyyy", "dd-MM-yyyy", "yyyy/MM/dd", "MM/yyyy", "MM-yyyy"}) {
        if (const QDate date = QDate::fromString(validity, QLatin1String(format)); date.isValid())
            return date;
    }
    return {};
}

RegistryRecord RegistryRecord::read(const QByteArray &page, const QDate &today)
{
    RegistryRecord record;
    if (page.size() > kLargestPage)
        return record;
    const QString text = QString::fromUtf8(page);
    if (text.contains(QLatin1String("not-found.png"))) {
        record.verdict = Verdict::NotListed;
        return record;
    }
    const auto list = listOf(unquoted(text));
    if (!list)
        return record;
    const bool hasAddress = gather(itemsOf(*list), &record);
    record.expiry = expiryFrom(record.validity);
    record.daysLeft = record.expiry.isValid() ? today.daysTo(record.expiry) : 0;
    record.verdict = judge(record, hasAddress);
    return record;
}
