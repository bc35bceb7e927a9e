#pragma once

#include <QWizardPage>

class AddressEdit;
class LookupStatus;
class Prompts;
class QLineEdit;
class QNetworkReply;
class QTimer;
class RegistryLookup;
struct GatewayData;
struct RegistryRecord;

/// Who the gateway is. Its callsign has to be one that the registry allows to transmit. Fields "callsign",
/// "gatewayName", "frequency" and "location".
class GatewayPage final : public QWizardPage
{
    Q_OBJECT

public:
    GatewayPage(const GatewayData &proposal, const QString &registryUrl, Prompts &prompts, QWidget *parent = nullptr);

    [[nodiscard]] bool isComplete() const override;
    /// Whether the registry lets this callsign transmit.
    [[nodiscard]] bool djidVerified() const { return m_djidVerified; }
    /// The permit's last day as yyyy-MM-dd; empty when the registry gave none for this callsign.
    [[nodiscard]] QString permitExpiry() const { return m_permitExpiry; }

    void initializePage() override;
    [[nodiscard]] bool validatePage() override;

private slots:
    void onCallsignChanged(const QString &text);
    void doCheckDjid();
    void onDjidResponse(QNetworkReply *reply);

private:
    void createFields(const GatewayData &proposal);
    void showAddress(const QString &address);
    void showVerdict(const RegistryRecord &record);

    Prompts &m_prompts;
    RegistryLookup *m_lookup;
    QLineEdit *m_callsign = nullptr;
    LookupStatus *m_status = nullptr;
    QLineEdit *m_gatewayName = nullptr;
    QLineEdit *m_frequency = nullptr;
    AddressEdit *m_location = nullptr;
    LookupStatus *m_validity = nullptr;
    QTimer *m_debounce;
    QString m_registryAddress; ///< the one that was shown last
    QString m_permitExpiry;
    bool m_djidVerified = false;
};
