#pragma once

#include "ui/Prompts.h"

#include <QMessageBox>
#include <QPointer>
#include <QWidget>

class QInputDialog;

/// Shows prompts as modal boxes and input dialogs over a window. The window may go while a prompt waits; the prompt
/// then counts as cancelled.
class WidgetPrompts final : public Prompts
{
public:
    void setWindow(QWidget *window) { m_window = window; }

protected:
    PromptReply show(const Prompt &prompt) override;

private:
    [[nodiscard]] QWidget *parent() const;
    PromptReply showBox(const Prompt &prompt);
    PromptReply showInput(const Prompt &prompt);

    QPointer<QWidget> m_window;
};
