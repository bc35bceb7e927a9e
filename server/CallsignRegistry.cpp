#include "server/CallsignRegistry.h"

#include "server/Resources.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int kLongestValue = 500; // characters

struct Item
{
    const char *key;
    const char *title;
};
constexpr Item kItems[] = {
    {"name", "Nama"}, {"callsign", "Callsign"}, {"address", "Alamat"}, {"validity", "Masa Laku"}, {"status", "Status"},
};

const QString kNotFound = QStringLiteral("<div class=\"not-found\">\n<img src=\"/images/not-found.png\">\n</div>\n");

/// A backslash would begin an escape in the quoted form.
QString escaped(const QString &text)
{
    return text.toHtmlEscaped().replace(QLatin1Char('\\'), QLatin1String("&#92;"));
}

} // namespace

std::optional<CallsignRegistry> CallsignRegistry::fromJson(const QByteArray &json, QString *error)
{
    QJsonParseError problem{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (!document.isArray()) {
        *error = problem.error ? problem.errorString() : QStringLiteral("not an array of callsigns");
        return std::nullopt;
    }
    CallsignRegistry registry;
    int number = 0;
    for (const auto &value : document.array()) {
        ++number;
        const QString wrong = registry.add(value.toObject());
        if (!wrong.isEmpty()) {
            *error = QStringLiteral("entry %1: %2").arg(QString::number(number), wrong);
            return std::nullopt;
        }
    }
    return registry;
}

QString CallsignRegistry::add(const QJsonObject &object)
{
    const QString callsign = object.value(QLatin1String("callsign")).toString().trimmed().toUpper();
    if (callsign.isEmpty())
        return QStringLiteral("no callsign");
    if (m_entries.contains(callsign))
        return QStringLiteral("a second ") + callsign;
    Items items;
    for (const Item &item : kItems) {
        const QJsonValue field = object.value(QLatin1String(item.key));
        if (field.isUndefined())
            continue;
        if (!field.isString() || field.toString().size() > kLongestValue)
            return QStringLiteral("\"%1\" is not a text of at most %2 characters")
                .arg(QLatin1String(item.key))
                .arg(kLongestValue);
        items.append({QLatin1String(item.title), field.toString()});
    }
    m_entries.insert(callsign, items);
    return {};
}

CallsignRegistry CallsignRegistry::sample()
{
    QString error;
    const auto registry = fromJson(builtInFile("registry-sample.json"), &error);
    if (!registry)
        qFatal("the built-in registry cannot be read: %s", qPrintable(error));
    return *registry;
}

QString CallsignRegistry::page(const QString &callsign) const
{
    const auto entry = m_entries.constFind(callsign.trimmed().toUpper());
    if (entry == m_entries.constEnd())
        return kNotFound;
    QString html = QStringLiteral("<ul class=\"none-style\">\n");
    for (const auto &item : entry.value()) {
        html += QStringLiteral("<li>\n<div class=\"title-meta\">") + item.first +
                QStringLiteral(" :</div>\n<div class=\"meta-details\">") + escaped(item.second) +
                QStringLiteral("</div>\n</li>\n");
    }
    return html + QStringLiteral("</ul>\n");
}

QString quotedPage(const QString &page)
{
    QString text = page;
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    text.replace(QLatin1Char('/'), QLatin1String("\\/"));
    return QLatin1Char('"') + text + QLatin1Char('"');
}
