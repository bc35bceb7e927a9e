#pragma once

#include <QDialog>

class Prompts;
class QLabel;
class QLineEdit;
class QSpinBox;

/// The way round the registration for those who have an account: stores the login data in the configuration. They are
/// not checked with the server here; the next start logs in with them.
class LoginDialog final : public QDialog
{
    Q_OBJECT

public:
    /// The server that is proposed.
    LoginDialog(const QString &serverHost, Prompts &prompts, QWidget *parent = nullptr);

private:
    void createFields(const QString &serverHost);
    void layOut();
    void logIn();

    Prompts &m_prompts;
    QLineEdit *m_server = nullptr;
    QSpinBox *m_port = nullptr;
    QLineEdit *m_callsign = nullptr;
    QLineEdit *m_password = nullptr;
    QLabel *m_error = nullptr;
};
