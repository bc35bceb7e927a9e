#pragma once

#include <QWizardPage>

struct GatewayData;

/// Where the server is. Fields "serverAddress", "serverPort" (1..65535) and "defaultRoom".
class ServerPage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit ServerPage(const GatewayData &proposal, QWidget *parent = nullptr);
};
