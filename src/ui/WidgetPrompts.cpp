#include "ui/WidgetPrompts.h"

#include <QInputDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>

namespace {

constexpr int kInformativeWidth = 360; // logical pixels, of the text below a proposal
constexpr int kInformativeShare = 3;   // it may take this part of the screen's height

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

/// Puts the informative text into an area that scrolls: a long list of changes would push the buttons off the screen.
void letScroll(QMessageBox *box)
{
    auto *label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"));
    if (!label || !box->layout())
        return;
    auto *area = new QScrollArea(box);
    area->setObjectName(QStringLiteral("informativeArea"));
    delete box->layout()->replaceWidget(label, area);
    label->setWordWrap(true);
    area->setWidget(label);
    area->setWidgetResizable(true);
    const int most = box->screen()->availableGeometry().height() / kInformativeShare;
    area->setMinimumWidth(kInformativeWidth);
    area->setFixedHeight(std::min(label->heightForWidth(kInformativeWidth), most));
}

void dressProposal(QMessageBox *box, const Prompt &prompt)
{
    box->setTextFormat(Qt::RichText);
    // Line ends are only blanks in rich text unless it is told otherwise.
    box->setInformativeText(QLatin1String("<div style=\"white-space: pre-wrap;\">") + prompt.informativeText +
                            QLatin1String("</div>"));
    box->button(QMessageBox::Yes)->setText(prompt.acceptLabel);
    box->button(QMessageBox::No)->setText(prompt.rejectLabel);
    letScroll(box);
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
    const bool asks = prompt.kind == Prompt::Kind::Question || prompt.kind == Prompt::Kind::WarningQuestion ||
                      prompt.kind == Prompt::Kind::Proposal;
    // Not on the stack: the window deletes its boxes when it goes.
    const QPointer<QMessageBox> box = new QMessageBox(parent());
    box->setIcon(iconOf(prompt.kind));
    box->setWindowTitle(prompt.title);
    box->setTextFormat(Qt::PlainText); // parts of it come from the server
    box->setText(prompt.text);
    box->setStandardButtons(asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    if (asks)
        box->setDefaultButton(prompt.yesIsDefault ? QMessageBox::Yes : QMessageBox::No);
    if (prompt.kind == Prompt::Kind::Proposal)
        dressProposal(box, prompt);
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
