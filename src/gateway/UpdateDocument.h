#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>

/// What the project's web site says about the published version. Every text is one bounded line without control
/// characters; it may hold markup, which whoever shows it has to escape. A document that cannot be read is empty.
struct UpdateDocument
{
    /// Longer documents are not read: a real one has a few kilobytes.
    static constexpr int kLargest = 256 * 1024; // bytes
    static constexpr int kLongestVersion = 64;  // characters; a longer version counts as none
    static constexpr int kLongestBuild = 64;    // characters
    static constexpr int kLongestChange = 500;  // characters of one entry
    static constexpr int kMostChanges = 200;    // entries
    static constexpr int kLongestPath = 2000;   // characters; a longer path counts as none

    QString version;       ///< empty: none
    QString buildDate;     ///< as the site words it
    QStringList changelog; ///< one line each
    QString pathX64;       ///< of the download for 64-bit processors, under the web site; empty: none
    QString pathX86;       ///< of the download for the others

    [[nodiscard]] static UpdateDocument read(const QByteArray &body);

    [[nodiscard]] bool isNewerThan(const QString &ownVersion) const;
    /// The changes, each on a line of its own that begins with changePrefix() and ends with "\n".
    [[nodiscard]] QString changeText() const;
    /// What stands before each change: a replacement character and a blank. The byte behind it is a bullet only in
    /// Windows-1252; the line has looked like this in every release.
    [[nodiscard]] static QString changePrefix();
    /// Where the download for a processor is, by its name as the toolkit reports it: under @p webUrl (scheme and host
    /// without a trailing slash), or @p webUrl itself when the document gives no path or one that would lead
    /// elsewhere.
    [[nodiscard]] QUrl downloadAddress(const QString &webUrl, const QString &architecture) const;
};
