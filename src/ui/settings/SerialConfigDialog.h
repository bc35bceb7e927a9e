#pragma once

#include <QDialog>

class SerialFields;

/// Edits the settings of the serial port. On Save it writes them to the configuration; the port itself is reopened
/// with them only when it is opened next.
class SerialConfigDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialConfigDialog)

public:
    explicit SerialConfigDialog(QWidget *parent = nullptr);

signals:
    /// The configuration has been written; the dialog closes next. @p port is the chosen port's name, empty for none.
    void saved(const QString &port);

private:
    void save();

    SerialFields *m_fields = nullptr;
};
