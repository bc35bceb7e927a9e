#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// One blocking question or notice.
struct Prompt
{
    enum class Kind {
        Information,
        Warning,
        Critical,
        Question,
        WarningQuestion,
        Proposal,
        Text,
        Password,
        Number,
        Choice
    };

    Kind kind = Kind::Information;
    QString title;
    QString text;              ///< the box's text, or the label above the input
    QString informativeText;   ///< Kind::Proposal, below the text; rich text, as the text is then
    QString acceptLabel;       ///< Kind::Proposal, the default button
    QString rejectLabel;       ///< Kind::Proposal
    QString initialText;       ///< Kind::Text
    QStringList choices;       ///< Kind::Choice, the first is selected
    int value = 0;             ///< Kind::Number
    int minimum = 0;           ///< Kind::Number
    int maximum = 0;           ///< Kind::Number
    bool yesIsDefault = false; ///< the two question kinds and Kind::Proposal
};

/// What the operator answered.
struct PromptReply
{
    bool accepted = false; ///< OK, Yes or the proposal's button; false for Cancel, No and a closed box
    QString text;          ///< Kind::Text, Password, Choice
    int number = 0;        ///< Kind::Number
};

/// The one way to a blocking box. Everything that waits for the operator goes through here, so that tests can answer
/// from a queue. While a prompt waits, the event loop runs: callers check afterwards that they still exist and what
/// state they are in.
///
/// A gateway that nobody watches must not bury itself in boxes: a prompt that is open already is not opened a second
/// time, and no more than kMaxOpen wait at once. Such a prompt is logged and counts as cancelled.
class Prompts
{
public:
    static constexpr int kMaxOpen = 8;

    Prompts() = default;
    virtual ~Prompts();
    Prompts(const Prompts &) = delete;
    Prompts &operator=(const Prompts &) = delete;

    void information(const QString &title, const QString &text);
    void warning(const QString &title, const QString &text);
    void critical(const QString &title, const QString &text);
    /// Yes or No with the question icon; No is the default.
    [[nodiscard]] bool confirm(const QString &title, const QString &text);
    /// Yes or No with the warning icon; Yes is the default.
    [[nodiscard]] bool offer(const QString &title, const QString &text);
    /// The information icon and two buttons of its own; whether the first was chosen, which is the default. Both texts
    /// are rich text: what comes from elsewhere must be escaped in them. Line ends in @p informativeText are shown.
    [[nodiscard]] bool propose(const QString &title, const QString &richText, const QString &informativeText,
                               const QString &acceptLabel, const QString &rejectLabel);
    [[nodiscard]] std::optional<QString> text(const QString &title, const QString &label,
                                              const QString &initialText = {});
    [[nodiscard]] std::optional<QString> password(const QString &title, const QString &label);
    [[nodiscard]] std::optional<int> number(const QString &title, const QString &label, int value, int minimum,
                                            int maximum);
    [[nodiscard]] std::optional<QString> choice(const QString &title, const QString &label, const QStringList &choices);

protected:
    /// Shows the prompt and waits for the answer.
    virtual PromptReply show(const Prompt &prompt) = 0;

private:
    [[nodiscard]] PromptReply ask(const Prompt &prompt);

    QSet<QString> m_open;
};
