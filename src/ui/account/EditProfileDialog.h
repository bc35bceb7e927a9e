#pragma once

#include "net/protocol/Commands.h"

#include <QDialog>
#include <QVariantMap>

class QFormLayout;
class QLineEdit;

/// The form for what a gateway may change of its own account. Takes the server's record, of which every key may be
/// missing, and gives back what was typed once it is accepted; it stores and sends nothing.
class EditProfileDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EditProfileDialog)

public:
    explicit EditProfileDialog(const QVariantMap &record, QWidget *parent = nullptr);

    /// What stands in the form, fit to be sent; the gateway's name is the record's.
    [[nodiscard]] Commands::OwnProfile profile() const;

private:
    void createFields(const QVariantMap &record);
    void fillForm(QFormLayout &form, const QVariantMap &record);
    void layOut(const QVariantMap &record);

    QString m_gatewayName;
    QLineEdit *m_frequency = nullptr;
    QLineEdit *m_location = nullptr;
    QLineEdit *m_picName = nullptr;
    QLineEdit *m_picCallsign = nullptr;
    QLineEdit *m_email = nullptr;
    QLineEdit *m_whatsapp = nullptr;
};
