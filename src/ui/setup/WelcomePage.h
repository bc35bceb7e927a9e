#pragma once

#include <QWizardPage>

/// The setup's first page: what is going to happen, and the way round it for those who have an account.
class WelcomePage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit WelcomePage(QWidget *parent = nullptr);

signals:
    void loginRequested();
};
