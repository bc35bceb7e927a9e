#pragma once

#include <QPlainTextEdit>

/// An input field for one line of text that is shown wrapped: an address as the registry words it is longer than a
/// field. Enter and Tab do what they do in a line edit. Takes no double quotes.
class AddressEdit final : public QPlainTextEdit
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged USER true)

public:
    static constexpr int kLongest = 200; ///< characters; more is cut off

    explicit AddressEdit(QWidget *parent = nullptr);

    /// Without line ends and double quotes, trimmed.
    [[nodiscard]] QString text() const;
    void setText(const QString &text);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
};
