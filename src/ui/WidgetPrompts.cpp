#include "ui/WidgetPrompts.h"

#include <QInputDialog>
#include <QLineEdit>

namespace {

bool isInput(Prompt::Kind kind)
{
    return kind == Prompt::Kind::Text || kind == Prompt::Kind::Password || kind == Prompt::Kind::Number ||
           kind == Prompt::Kind::Choice;
}

QMessageBox::Icon iconOf(Prompt::Kind kind)
{
    switch (kind) {
    case Prompt::Kind::Warning:
    case Prompt::Kind::WarningQuestion: return QMessageBox::Warning;
    case Prompt::Kind::Critical: return QMessageBox::Critical;
    case Prompt::Kind::Question: return QMessageBox::Question;
    default: return QMessageBox::Information;
    }
}

void prepare(QInputDialog *dialog, const Prompt &prompt)
{
    dialog->setWindowTitle(prompt.title);
    dialog->setLabelText(prompt.text);
    switch (prompt.kind) {
    case Prompt::Kind::Number:
        dialog->setInputMode(QInputDialog::IntInput);
        dialog->setIntRange(prompt.minimum, prompt.maximum);
        dialog->setIntValue(prompt.value);
        break;
    case Prompt::Kind::Choice:
        dialog->setComboBoxItems(prompt.choices);
        dialog->setComboBoxEditable(false);
        break;
    case Prompt::Kind::Password:
        dialog->setInputMode(QInputDialog::TextInput);
        dialog->setTextEchoMode(QLineEdit::Password);
        break;
    default:
        dialog->setInputMode(QInputDialog::TextInput);
        dialog->setTextValue(prompt.initialText);
        break;
    }
}

} // namespace

PromptReply WidgetPrompts::show(const Prompt &prompt)
{
    return isInput(prompt.kind) ? showInput(prompt) : showBox(prompt);
}

/// A box over a hidden window might stay hidden with it.
QWidget *WidgetPrompts::parent() const
{
    return m_window && m_window->isVisible() ? m_window.data() : nullptr;
}

PromptReply WidgetPrompts::showBox(const Prompt &prompt)
{
    const bool asks = prompt.kind == Prompt::Kind::Question || prompt.kind == Prompt::Kind::WarningQuestion;
    // Not on the stack: the window deletes its boxes when it goes.
    const QPointer<QMessageBox> box = new QMessageBox(parent());
    box->setIcon(iconOf(prompt.kind));
    box->setWindowTitle(prompt.title);
    box->setTextFormat(Qt::PlainText); // parts of it come from the server
    box->setText(prompt.text);
    box->setStandardButtons(asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    if (asks)
        box->setDefaultButton(prompt.yesIsDefault ? QMessageBox::Yes : QMessageBox::No);
    const int answer = box->exec();
    delete box;
    return {answer == QMessageBox::Yes || answer == QMessageBox::Ok, {}, 0};
}

PromptReply WidgetPrompts::showInput(const Prompt &prompt)
{
    const QPointer<QInputDialog> dialog = new QInputDialog(parent());
    prepare(dialog, prompt);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return {};
    PromptReply reply{accepted, dialog->textValue(), dialog->intValue()};
    delete dialog;
    return reply;
}
