#pragma once

#include "net/protocol/Commands.h"

#include <QDialog>

class QCheckBox;
class QDate;
class QFormLayout;
class QLabel;
class QLineEdit;
class QWidget;

/// What an administrator tells of a gateway to be added.
class AddGatewayDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AddGatewayDialog)

public:
    explicit AddGatewayDialog(QWidget *parent = nullptr);

    /// What was typed, on one line each; "-" stands for what may be left out. The permit runs for years from @p today,
    /// until somebody enters its real end.
    [[nodiscard]] Commands::Registration registration(const QDate &today) const;
    /// Why it cannot be sent, or empty.
    [[nodiscard]] QString refusal() const;

signals:
    /// The dialog is closed by now; @p approve: the gateway may transmit at once.
    void submitted(const Commands::Registration &registration, bool approve);

private:
    [[nodiscard]] QLineEdit *addField(QFormLayout *form, const QString &label, const char *name, int longest,
                                      const QString &placeholder = {});
    [[nodiscard]] QWidget *createFields();
    void submit();

    QLineEdit *m_callsign = nullptr;
    QLineEdit *m_gatewayName = nullptr;
    QLineEdit *m_frequency = nullptr;
    QLineEdit *m_location = nullptr;
    QLineEdit *m_picName = nullptr;
    QLineEdit *m_picCallsign = nullptr;
    QLineEdit *m_email = nullptr;
    QLineEdit *m_whatsapp = nullptr;
    QLineEdit *m_password = nullptr;
    QCheckBox *m_approved = nullptr;
    QLabel *m_error = nullptr;
};
