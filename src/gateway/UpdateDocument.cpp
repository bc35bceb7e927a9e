#include "gateway/UpdateDocument.h"

#include "gateway/VersionNumber.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/// Neither ends a line nor turns the direction of the text that follows.
bool isPrintable(QChar c)
{
    switch (c.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph: return false;
    default: return true;
    }
}

QString oneLine(const QJsonValue &value, int longest)
{
    QString text = value.toString().left(longest);
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !isPrintable(c); }, QLatin1Char(' '));
    return text;
}

/// Not shortened and not cleaned: half a path leads nowhere, and one with control characters is not to be followed.
QString pathFrom(const QJsonValue &value)
{
    const QString path = value.toString();
    return path.size() <= UpdateDocument::kLongestPath ? path : QString();
}

QStringList changesFrom(const QJsonArray &entries)
{
    QStringList changes;
    for (const QJsonValue &entry : entries) {
        if (changes.size() == UpdateDocument::kMostChanges)
            break;
        changes.append(oneLine(entry, UpdateDocument::kLongestChange));
    }
    return changes;
}

/// One "/" at the beginning ends the host's name; two would begin another one for whoever resolves the path alone.
bool isPlainPath(const QString &path)
{
    return path.startsWith(QLatin1Char('/')) && !path.startsWith(QLatin1String("//")) &&
           !path.contains(QLatin1Char('\\')) && std::all_of(path.begin(), path.end(), isPrintable);
}

bool climbs(const QUrl &address)
{
    const QString path = address.path(QUrl::FullyDecoded);
    return path.contains(QLatin1Char('\\')) || path.split(QLatin1Char('/')).contains(QStringLiteral(".."));
}

bool isUnder(const QUrl &address, const QUrl &base)
{
    return address.isValid() && address.scheme() == base.scheme() && address.authority() == base.authority() &&
           address.path().startsWith(base.path() + QLatin1Char('/')) && !climbs(address);
}

} // namespace

UpdateDocument UpdateDocument::read(const QByteArray &body)
{
    UpdateDocument document;
    if (body.size() > kLargest)
        return document;
    const QJsonObject object = QJsonDocument::fromJson(body).object();
    document.version = object.value(QLatin1String("version")).toString();
    if (document.version.size() > kLongestVersion)
        document.version.clear();
    document.version = oneLine(document.version, kLongestVersion);
    document.buildDate = oneLine(object.value(QLatin1String("build_date")), kLongestBuild);
    document.changelog = changesFrom(object.value(QLatin1String("changelog")).toArray());
    document.pathX64 = pathFrom(object.value(QLatin1String("download_url_x64")));
    document.pathX86 = pathFrom(object.value(QLatin1String("download_url_x86")));
    return document;
}

bool UpdateDocument::isNewerThan(const QString &ownVersion) const
{
    return VersionNumber::compare(version, ownVersion) > 0;
}

QString UpdateDocument::changePrefix()
{
    return QString::fromUtf8("\x95 ");
}

QString UpdateDocument::changeText() const
{
    QString text;
    for (const QString &change : changelog)
        text += changePrefix() + change + QLatin1Char('\n');
    return text;
}

QUrl UpdateDocument::downloadAddress(const QString &webUrl, const QString &architecture) const
{
    const QUrl base(webUrl);
    const QString &path = architecture.contains(QLatin1String("64")) ? pathX64 : pathX86;
    const QUrl address(webUrl + path);
    return isPlainPath(path) && isUnder(address, base) ? address : base;
}
