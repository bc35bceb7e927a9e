#pragma once

#include <QLabel>

/// A label for text from outside: always plain, every line cut to the width there is and ended with "…". It never asks
/// for more width than its minimum, so that no text can push a panel apart; text() is the whole text all the same.
class ElidedLabel final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ElidedLabel)

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    /// The text with every control character as a space, so that one value stays on one line.
    [[nodiscard]] static QString oneLine(QString text);

protected:
    /// A tool tip with the whole text where something is cut.
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    struct Shown
    {
        QString text;
        QString whole; ///< of the same bounded length
        bool isCut = false;
    };

    [[nodiscard]] QRect room() const;
    [[nodiscard]] Shown shown() const;
};
