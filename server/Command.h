#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// One command line of a client: words separated by blanks, texts with blanks in double quotes. There is no escaping;
/// a quote always opens or closes a text.
class Command final
{
public:
    explicit Command(const QString &line);

    [[nodiscard]] QString word() const { return m_word; } ///< in capitals
    [[nodiscard]] int count() const { return m_arguments.size(); }
    /// The argument, without its quotes; empty where there is none.
    [[nodiscard]] QString argument(int index) const { return m_arguments.value(index); }
    /// The argument as a number, 0 where it is none.
    [[nodiscard]] int number(int index) const { return argument(index).toInt(); }
    /// The argument as a number of that range; nothing where it is none.
    [[nodiscard]] std::optional<int> numberWithin(int index, int least, int most) const;
    /// The rest of the line from this argument on, as it stands: room names travel unquoted in some commands.
    [[nodiscard]] QString rest(int index) const;
    /// A room as the last argument: the rest of the line, or a text in quotes.
    [[nodiscard]] QString roomName(int index) const;

private:
    QString m_line;
    QString m_word;
    QStringList m_arguments;
    QList<int> m_starts; ///< where each argument begins in the line
};

/// A text from outside, fit for one field of a line and for the database, which gives it back as it is: "|", quotes,
/// control characters and what is no character become blanks, and it is cut to the length.
[[nodiscard]] QString cleanText(const QString &text, int maximumLength = 200);
/// What is fit as well for the lists that are separated by "," and ";": callsigns and the names of people, gateways and
/// rooms.
[[nodiscard]] QString cleanName(const QString &text, int maximumLength = 200);
