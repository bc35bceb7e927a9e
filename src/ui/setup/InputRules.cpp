#include "ui/setup/InputRules.h"

#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <QToolTip>

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
    return QStringLiteral("Tanda kutip (\") dan ganti baris tidak dapat digunakan di sini.");
}

void InputRules::refuseQuotes(QLineEdit &edit)
{
    // What is pasted may bring its line end along.
    static const QRegularExpression oneLine(QStringLiteral("[^\"\\x00-\\x1f\\x7f]*"));
    edit.setValidator(new QRegularExpressionValidator(oneLine, &edit));
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
