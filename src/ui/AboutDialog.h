#pragma once

#include <QDialog>

class QLabel;

/// What the program is, its version and those of the libraries in use; all of it can be copied for a support mail.
class AboutDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AboutDialog)

public:
    /// The libraries' own version texts; empty: not loaded.
    struct Libraries
    {
        QString qt;
        QString opus;
        QString sodium;
    };

    explicit AboutDialog(const Libraries &libraries, QWidget *parent = nullptr);

    /// Everything that the dialog says, line by line.
    [[nodiscard]] static QString textFor(const Libraries &libraries);

private:
    [[nodiscard]] QLabel *makeLabel(const char *name, const QString &text, const char *styleSheet);
    void layOut(const Libraries &libraries);
};
