#include "server/Command.h"

#include <QVector>

Command::Command(const QString &line)
    : m_line(line)
{
    int position = 0;
    QStringList words;
    QList<int> starts;
    while (position < line.size()) {
        if (line.at(position) == QLatin1Char(' ')) {
            ++position;
            continue;
        }
        starts.append(position);
        const bool quoted = line.at(position) == QLatin1Char('"');
        const int begin = quoted ? position + 1 : position;
        int end = line.indexOf(quoted ? QLatin1Char('"') : QLatin1Char(' '), begin);
        if (end < 0)
            end = line.size();
        words.append(line.mid(begin, end - begin));
        position = end + 1;
    }
    if (words.isEmpty())
        return;
    m_word = words.takeFirst().toUpper();
    starts.removeFirst();
    m_arguments = words;
    m_starts = starts;
}

std::optional<int> Command::numberWithin(int index, int least, int most) const
{
    bool isNumber = false;
    const int number = argument(index).toInt(&isNumber);
    return isNumber && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

QString Command::roomName(int index) const
{
    const QString name = rest(index);
    return name.startsWith(QLatin1Char('"')) ? argument(index) : name;
}

QString Command::rest(int index) const
{
    return index < m_starts.size() ? m_line.mid(m_starts.at(index)).trimmed() : QString();
}

namespace {

constexpr uint kByteOrderMark = 0xFEFF; // the database takes it off the beginning of a text

/// Not between the two halves of one character.
QString cut(const QString &text, int maximumLength)
{
    const bool isSplit = text.size() > maximumLength && text.at(maximumLength).isLowSurrogate();
    return text.left(isSplit ? maximumLength - 1 : maximumLength);
}

/// What the database does not give back as it was, or no terminal and no list shows.
bool isUnfit(uint character)
{
    return QChar::category(character) == QChar::Other_Control || QChar::isNonCharacter(character) ||
           character == kByteOrderMark;
}

QString without(const QString &separators, const QString &text)
{
    const QVector<uint> unwanted = separators.toUcs4();
    QVector<uint> characters = text.toUcs4(); // a half without the other is U+FFFD from here on
    for (uint &character : characters) {
        if (isUnfit(character) || unwanted.contains(character))
            character = ' ';
    }
    return QString::fromUcs4(characters.constData(), characters.size()).simplified();
}

} // namespace

QString cleanText(const QString &text, int maximumLength)
{
    return without(QStringLiteral("|\""), cut(text, maximumLength));
}

QString cleanName(const QString &text, int maximumLength)
{
    return without(QStringLiteral("|,;\""), cut(text, maximumLength));
}
