#pragma once

#include <QLineEdit>

/// A line edit for a text that the server has told. What the operator leaves alone goes back as it came, however little
/// of it the field can show.
class ToldEdit final : public QLineEdit
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToldEdit)

public:
    /// What is typed has at most @p longest characters; a text of the server may have more.
    explicit ToldEdit(int longest, QWidget *parent = nullptr);

    /// The told text until it is changed, then what stands in the field, on one line and trimmed.
    [[nodiscard]] QString value() const;
    /// Shows a text of the server in place of whatever is there.
    void tell(const QString &text);

private:
    int m_longest; ///< characters
    QString m_told;
    QString m_shown;
};
