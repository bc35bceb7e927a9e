#include "ui/Prompts.h"

#include <QDebug>

namespace {

QString identityOf(const Prompt &prompt)
{
    return QString::number(static_cast<int>(prompt.kind)) + QLatin1Char('\n') + prompt.title + QLatin1Char('\n') +
           prompt.text;
}

Prompt notice(Prompt::Kind kind, const QString &title, const QString &text)
{
    Prompt prompt;
    prompt.kind = kind;
    prompt.title = title;
    prompt.text = text;
    return prompt;
}

std::optional<QString> textOf(const PromptReply &reply)
{
    return reply.accepted ? std::optional(reply.text) : std::nullopt;
}

} // namespace

Prompts::~Prompts() = default;

PromptReply Prompts::ask(const Prompt &prompt)
{
    const QString identity = identityOf(prompt);
    if (m_open.contains(identity) || m_open.size() >= kMaxOpen) {
        qDebug().noquote() << "[Prompts] Not shown again:" << prompt.title;
        return {};
    }
    m_open.insert(identity);
    PromptReply reply = show(prompt);
    m_open.remove(identity);
    return reply;
}

void Prompts::information(const QString &title, const QString &text)
{
    static_cast<void>(ask(notice(Prompt::Kind::Information, title, text)));
}

void Prompts::warning(const QString &title, const QString &text)
{
    static_cast<void>(ask(notice(Prompt::Kind::Warning, title, text)));
}

void Prompts::critical(const QString &title, const QString &text)
{
    static_cast<void>(ask(notice(Prompt::Kind::Critical, title, text)));
}

bool Prompts::confirm(const QString &title, const QString &text)
{
    return ask(notice(Prompt::Kind::Question, title, text)).accepted;
}

bool Prompts::offer(const QString &title, const QString &text)
{
    Prompt prompt = notice(Prompt::Kind::WarningQuestion, title, text);
    prompt.yesIsDefault = true;
    return ask(prompt).accepted;
}

bool Prompts::propose(const QString &title, const QString &richText, const QString &informativeText,
                      const QString &acceptLabel, const QString &rejectLabel)
{
    Prompt prompt = notice(Prompt::Kind::Proposal, title, richText);
    prompt.informativeText = informativeText;
    prompt.acceptLabel = acceptLabel;
    prompt.rejectLabel = rejectLabel;
    prompt.yesIsDefault = true;
    return ask(prompt).accepted;
}

std::optional<QString> Prompts::text(const QString &title, const QString &label, const QString &initialText)
{
    Prompt prompt = notice(Prompt::Kind::Text, title, label);
    prompt.initialText = initialText;
    return textOf(ask(prompt));
}

std::optional<QString> Prompts::password(const QString &title, const QString &label)
{
    return textOf(ask(notice(Prompt::Kind::Password, title, label)));
}

std::optional<int> Prompts::number(const QString &title, const QString &label, int value, int minimum, int maximum)
{
    Prompt prompt = notice(Prompt::Kind::Number, title, label);
    prompt.value = value;
    prompt.minimum = minimum;
    prompt.maximum = maximum;
    const PromptReply reply = ask(prompt);
    return reply.accepted ? std::optional(reply.number) : std::nullopt;
}

std::optional<QString> Prompts::choice(const QString &title, const QString &label, const QStringList &choices)
{
    Prompt prompt = notice(Prompt::Kind::Choice, title, label);
    prompt.choices = choices;
    return textOf(ask(prompt));
}
