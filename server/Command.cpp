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

QString Command::rest(int index) const
{
    return index < m_starts.size() ? m_line.mid(m_starts.at(index)).trimmed() : QString();
}

QString cleanText(const QString &text, int maximumLength)
{
    QString clean = text.left(maximumLength);
    for (QChar &character : clean) {
        if (character.category() == QChar::Other_Control || QStringLiteral("|,;\"").contains(character))
            character = QLatin1Char(' ');
    }
    return clean.simplified();
}
