#pragma once

#include "ui/setup/GatewayData.h"

#include <QWizard>

class GatewayPage;
class Prompts;
struct Endpoints;

/// Asks for what a new gateway has to tell the server about itself, or for the login data of an account that exists. In
/// the second case the configuration holds them, as a completed setup, when the wizard is accepted; in the first the
/// caller takes gatewayData(). It can be shown again and then goes on where it was left, with everything that was
/// typed.
class SetupWizard final : public QWizard
{
    Q_OBJECT

public:
    enum Page { Welcome, Eula, Server, Gateway, Pic, Contact, Password };

    /// Begins with what an earlier attempt left in the configuration.
    SetupWizard(const Endpoints &endpoints, Prompts &prompts, QWidget *parent = nullptr);

    /// What the pages hold now.
    [[nodiscard]] GatewayData gatewayData() const;

    void cleanupPage(int id) override;
    void done(int result) override;

signals:
    /// Never emitted: whoever shows the wizard reads gatewayData() once it is accepted.
    void registrationComplete(GatewayData data);

private:
    void addPages(const Endpoints &endpoints);
    void setUpButtons();
    void showLogin();

    Prompts &m_prompts;
    GatewayData m_proposal;
    QString m_defaultHost;
    GatewayPage *m_gatewayPage = nullptr;
};
