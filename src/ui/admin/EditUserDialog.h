#pragma once

#include "net/protocol/Commands.h"

#include <QDialog>
#include <QVariantMap>

class Prompts;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class ToldEdit;

/// Everything an administrator may change of one user. Works on a copy of the record; asks for commands, sends none.
class EditUserDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EditUserDialog)

public:
    /// The record names its user by an id of 1 or more.
    EditUserDialog(const QVariantMap &user, Prompts &prompts, QWidget *parent = nullptr);

    /// What the fields say now, on one line each; what the operator left alone as the record has it. Without a date the
    /// account does not expire.
    [[nodiscard]] Commands::Account account() const;

signals:
    void commandRequested(const QString &line);
    /// Something was asked for that changes the list of users.
    void refreshRequested();

private:
    [[nodiscard]] QWidget *createFields(const QVariantMap &user);
    [[nodiscard]] QWidget *createAccount(const QVariantMap &user);
    [[nodiscard]] QGroupBox *createInformation(const QVariantMap &user);
    [[nodiscard]] QGroupBox *createExpiry(const QVariantMap &user);
    [[nodiscard]] QGroupBox *createPassword();
    [[nodiscard]] QGroupBox *createDevice(const QVariantMap &user);
    [[nodiscard]] QHBoxLayout *createButtons();
    [[nodiscard]] QLabel *createUnreadableExpiry();
    void setUpTabOrder();
    void resetPassword();
    void resetDevice();
    void save();
    void tellPassword(const QString &text, bool isGood);

    Prompts &m_prompts;
    int m_userId;
    QString m_callsign;
    ToldEdit *m_picName = nullptr;
    ToldEdit *m_picCallsign = nullptr;
    QComboBox *m_status = nullptr;
    QCheckBox *m_approved = nullptr;
    QCheckBox *m_admin = nullptr;
    ToldEdit *m_gatewayName = nullptr;
    ToldEdit *m_frequency = nullptr;
    ToldEdit *m_location = nullptr;
    ToldEdit *m_email = nullptr;
    ToldEdit *m_whatsapp = nullptr;
    QGroupBox *m_expires = nullptr;
    QDateEdit *m_expiry = nullptr;
    QString m_unreadableExpiry; ///< as the record has it, until the operator decides otherwise
    QLineEdit *m_password = nullptr;
    QLabel *m_passwordStatus = nullptr;
    QLabel *m_device = nullptr;
};
