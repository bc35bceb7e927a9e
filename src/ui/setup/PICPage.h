#pragma once

#include <QWizardPage>

class LookupStatus;
class QLineEdit;
class QNetworkReply;
class RegistryLookup;
struct GatewayData;

/// Who answers for the gateway: a person whom the registry knows and names. Fields "picCallsign" and "picName".
class PICPage final : public QWizardPage
{
    Q_OBJECT

public:
    PICPage(const GatewayData &proposal, const QString &registryUrl, QWidget *parent = nullptr);

    [[nodiscard]] bool isComplete() const override { return m_picVerified; }

    void initializePage() override;

private slots:
    void onPICCallsignChanged(const QString &text);
    void onPICResponse(QNetworkReply *reply);

private:
    void fail(const QString &why);

    RegistryLookup *m_lookup;
    QLineEdit *m_callsign;
    LookupStatus *m_status;
    QLineEdit *m_name;
    bool m_picVerified = false;
};
