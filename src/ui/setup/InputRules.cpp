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
    return QStringLiteral("Tanda kutip (\") tidak dapat digunakan di sini.");
}

void InputRules::refuseQuotes(QLineEdit &edit)
{
    static const QRegularExpression noQuotes(QStringLiteral("[^\"]*"));
    edit.setValidator(new QRegularExpressionValidator(noQuotes, &edit));
    QObject::connect(&edit, &QLineEdit::inputRejected, &edit, [&edit] {
        // Also told when the field is full, which needs no explanation.
        if (edit.text().size() < edit.maxLength())
            QToolTip::showText(edit.mapToGlobal(edit.rect().bottomLeft()), quoteRefusal(), &edit);
    });
}

QString InputRules::withoutQuotes(QString text)
{
    return text.replace(QLatin1Char('"'), QLatin1Char('\''));
}
