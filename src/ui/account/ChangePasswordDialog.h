#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for the old password and twice for the new one, checks what can be checked here and waits for the server's
/// verdict. Sending, keeping and storing the new one and closing after a success are left to whoever opened it.
class ChangePasswordDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChangePasswordDialog)

public:
    static constexpr int kShortestPassword = 6; ///< characters

    /// @p isConnected tells whether a request would reach the server now.
    explicit ChangePasswordDialog(std::function<bool()> isConnected, QWidget *parent = nullptr);

signals:
    /// The passwords have passed the checks; the server is to be asked.
    void changeRequested(const QString &oldPassword, const QString &newPassword);
    /// The server has taken the new password.
    void changed();

public slots:
    /// The server's verdict. Only the first one after a request counts.
    void onPasswordChanged(bool success, const QString &message);

private:
    [[nodiscard]] QLineEdit *makeField(const char *name, const QString &placeholder);
    void layOut();
    [[nodiscard]] QString problem() const;
    void request();
    void showMessage(const QString &text, const QString &styleSheet);

    std::function<bool()> m_isConnected;
    QLineEdit *m_old = nullptr;
    QLineEdit *m_new = nullptr;
    QLineEdit *m_confirm = nullptr;
    QLabel *m_message = nullptr;
    QPushButton *m_change = nullptr;
    bool m_isWaiting = false;
};
