#include "ui/setup/AddressEdit.h"

#include "ui/setup/InputRules.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QToolTip>

namespace {

constexpr int kLines = 3;

} // namespace

AddressEdit::AddressEdit(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QString AddressEdit::text() const
{
    return InputRules::withoutQuotes(toPlainText().simplified()).left(kLongest);
}

void AddressEdit::setText(const QString &text)
{
    setPlainText(InputRules::withoutQuotes(text.simplified()).left(kLongest));
}

QSize AddressEdit::sizeHint() const
{
    const int frame = 2 * (frameWidth() + static_cast<int>(document()->documentMargin()));
    return {QPlainTextEdit::sizeHint().width(), kLines * fontMetrics().lineSpacing() + frame + 4};
}

void AddressEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->ignore(); // for the dialog's default button
        return;
    }
    if (event->text().contains(QLatin1Char('"'))) {
        QToolTip::showText(mapToGlobal(rect().bottomLeft()), InputRules::quoteRefusal(), this);
        return;
    }
    if (!event->text().isEmpty() && event->text().at(0).isPrint() && textCursor().selectedText().isEmpty() &&
        toPlainText().size() >= kLongest)
        return;
    QPlainTextEdit::keyPressEvent(event);
}

void AddressEdit::insertFromMimeData(const QMimeData *source)
{
    if (!source->hasText())
        return;
    const int room = kLongest - toPlainText().size() + textCursor().selectedText().size();
    insertPlainText(InputRules::withoutQuotes(source->text().simplified()).left(qMax(0, room)));
}
