#pragma once

#include <QWizardPage>

struct GatewayData;

/// How to reach the operator; both may stay empty. Fields "email" and "whatsapp".
class ContactPage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit ContactPage(const GatewayData &proposal, QWidget *parent = nullptr);
};
