#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

#include <optional>

class QJsonObject;

/// A callsign registry in the form of the public one: who holds a callsign, as a fragment of HTML. It stands in where a
/// gateway is set up without the public registry.
class CallsignRegistry final
{
public:
    static constexpr int kLargestFile = 16 * 1024 * 1024; ///< bytes

    /// From a JSON array of objects with "callsign" and, where known, "name", "address", "validity" and "status", all
    /// texts. Otherwise says in `error` what is wrong with it.
    [[nodiscard]] static std::optional<CallsignRegistry> fromJson(const QByteArray &json, QString *error);
    /// Invented gateways and persons, one for each case that a setup distinguishes.
    [[nodiscard]] static CallsignRegistry sample();

    /// The list of what is known of the callsign, or a picture that says that nothing is.
    [[nodiscard]] QString page(const QString &callsign) const;

private:
    using Items = QList<QPair<QString, QString>>; ///< titles and values
    /// What is wrong with the entry; empty: added.
    [[nodiscard]] QString add(const QJsonObject &object);

    QHash<QString, Items> m_entries;
};

/// The page as one quoted text with escapes, a form that the public registry answers in at times.
[[nodiscard]] QString quotedPage(const QString &page);
