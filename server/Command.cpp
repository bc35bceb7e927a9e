#include "server/Command.h"

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

QString without(const QString &separators, QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control || separators.contains(character))
            character = QLatin1Char(' ');
    }
    return text.simplified();
}

} // namespace

QString cleanText(const QString &text, int maximumLength)
{
    return without(QStringLiteral("|\""), text.left(maximumLength));
}

QString cleanName(const QString &text, int maximumLength)
{
    return without(QStringLiteral("|,;\""), text.left(maximumLength));
}
