#include "support/ScriptedPrompts.h"

#include <QTest>

#include <utility>

ScriptedPrompts::~ScriptedPrompts()
{
    if (!m_answers.isEmpty())
        QTest::qFail("a scripted answer was never asked for", __FILE__, __LINE__);
}

void ScriptedPrompts::accept(std::function<void()> whileOpen)
{
    m_answers.append(Answer{{true, {}, 0}, std::move(whileOpen)});
}

void ScriptedPrompts::cancel(std::function<void()> whileOpen)
{
    m_answers.append(Answer{{false, {}, 0}, std::move(whileOpen)});
}

void ScriptedPrompts::enter(const QString &text, std::function<void()> whileOpen)
{
    m_answers.append(Answer{{true, text, 0}, std::move(whileOpen)});
}

void ScriptedPrompts::enterNumber(int number)
{
    m_answers.append(Answer{{true, {}, number}, {}});
}

PromptReply ScriptedPrompts::show(const Prompt &prompt)
{
    m_seen.append(prompt);
    if (m_answers.isEmpty()) {
        QTest::qFail(
            qPrintable(QStringLiteral("unexpected prompt: ") + prompt.title + QLatin1String(": ") + prompt.text),
            __FILE__, __LINE__);
        return {};
    }
    const Answer answer = m_answers.takeFirst();
    if (answer.whileOpen)
        answer.whileOpen();
    return answer.reply;
}
