#pragma once

#include "ui/Prompts.h"

#include <QList>

#include <functional>

/// Answers prompts from a queue and records them. A prompt beyond the queue fails the test and counts as cancelled.
class ScriptedPrompts final : public Prompts
{
public:
    /// What one prompt is answered with; whileOpen runs first, as if the operator were away: it may run an event loop.
    struct Answer
    {
        PromptReply reply;
        std::function<void()> whileOpen;
    };

    ~ScriptedPrompts() override;

    [[nodiscard]] const QList<Prompt> &seen() const { return m_seen; }
    [[nodiscard]] bool isDone() const { return m_answers.isEmpty(); }

    void accept(std::function<void()> whileOpen = {});
    void cancel(std::function<void()> whileOpen = {});
    void enter(const QString &text, std::function<void()> whileOpen = {});
    void enterNumber(int number);

protected:
    PromptReply show(const Prompt &prompt) override;

private:
    QList<Answer> m_answers;
    QList<Prompt> m_seen;
};
