#pragma once

#include <QDialog>
#include <QVariantMap>

/// A dark panel with one block of facts to read, whatever the theme; the facts can be selected and scroll when they
/// are longer than the screen.
class ReadoutDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReadoutDialog)

public:
    /// What stands for a text that the record lacks.
    static constexpr char kMissing[] = "-";

    /// @p facts is plain text.
    ReadoutDialog(const QString &title, const QString &heading, const QString &facts, QWidget *parent = nullptr);

    /// A record's text under the first key, else under the other one, else the fallback.
    [[nodiscard]] static QString textOf(const QVariantMap &record, const char *key, const char *otherKey = nullptr,
                                        const char *fallback = kMissing);
    /// "Yes" or "No".
    [[nodiscard]] static QString yesNo(bool yes);
};
