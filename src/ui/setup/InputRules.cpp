#include "ui/setup/InputRules.h"

#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <QToolTip>

#include <algorithm>

namespace {

/// A pasted line end would end the command as well.
void dropControlCharacters(QLineEdit &edit)
{
    QString text = edit.text();
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control; };
    const auto end = std::remove_if(text.begin(), text.end(), isControl);
    if (end == text.end())
        return;
    text.truncate(static_cast<int>(std::distance(text.begin(), end)));
    const int cursor = edit.cursorPosition();
    edit.setText(text);
    edit.setCursorPosition(cursor);
}

} // namespace

QString InputRules::makeCallsign(QLineEdit &edit)
{
    const QString callsign = edit.text().trimmed().toUpper();
    if (callsign != edit.text()) {
        const QSignalBlocker silent(edit);
        const int cursor = edit.cursorPosition();
        edit.setText(callsign);
        edit.setCursorPosition(cursor);
    }
    return callsign;
}

QString InputRules::quoteRefusal()
{
    return QStringLiteral("Tanda kutip (\") tidak dapat digunakan di sini.");
}

void InputRules::refuseQuotes(QLineEdit &edit)
{
    static const QRegularExpression noQuotes(QStringLiteral("[^\"]*"));
    edit.setValidator(new QRegularExpressionValidator(noQuotes, &edit));
    dropControlCharacters(edit);
    QObject::connect(&edit, &QLineEdit::textChanged, &edit, [&edit] { dropControlCharacters(edit); });
    QObject::connect(&edit, &QLineEdit::inputRejected, &edit, [&edit] {
        // Also told when the field is full, which needs no explanation.
        if (edit.text().size() < edit.maxLength())
            QToolTip::showText(edit.mapToGlobal(edit.rect().bottomLeft()), quoteRefusal(), &edit);
    });
}

QString InputRules::withoutQuotes(QString text)
{
    text.replace(QLatin1Char('"'), QLatin1Char('\''));
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    }
    return text;
}
