#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>

/// What the amateur radio registry says about one callsign, read from its answer: an HTML fragment, or the same
/// fragment as one quoted string. Texts are plain: without tags, white space collapsed, character references as they
/// came.
struct RegistryRecord
{
    enum class Verdict {
        NotListed,     ///< the registry does not know the callsign
        UnknownFormat, ///< not a page that can be read
        NoAddress,     ///< an entry without its address is no entry of a station
        NoValidity,    ///< listed without an end date; its status is not looked at, on purpose
        Inactive,      ///< the status says so
        Expired,       ///< ended before today
        ExpiresSoon,   ///< ends within kSoonDays from today
        Valid,         ///< ends later
        UnreadableDate ///< there is a validity, but no date in it
    };
    static constexpr int kSoonDays = 30;
    /// Longer answers are not read: a real one has a few kilobytes.
    static constexpr int kLargestPage = 256 * 1024; // bytes

    Verdict verdict = Verdict::UnknownFormat;
    QString name;        ///< of the person or club; empty: none
    QString address;     ///< of the station
    QString validity;    ///< as the registry words it; empty: none
    QString status;      ///< as the registry words it
    QDate expiry;        ///< last valid day; invalid without a readable validity
    qint64 daysLeft = 0; ///< from today to the expiry

    /// Whether the registry answered with an entry at all.
    [[nodiscard]] bool isListed() const;
    /// Whether a station may be set up under the callsign.
    [[nodiscard]] bool isPermitted() const;

    [[nodiscard]] static RegistryRecord read(const QByteArray &page, const QDate &today);
    /// The last valid day that a validity text names: the last day of an Indonesian month and a year, else a date in
    /// one of the registry's number formats, day before month. Invalid when there is none.
    [[nodiscard]] static QDate expiryFrom(const QString &validity);
};
