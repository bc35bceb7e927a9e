#pragma once

#include <QWizardPage>

class QLabel;
class QLineEdit;
struct GatewayData;

/// The gateway's password, and a last look at everything. Field "password": anything but nothing is taken, the advised
/// length is only advice.
class PasswordPage final : public QWizardPage
{
    Q_OBJECT

public:
    static constexpr int kGeneratedLength = 12;

    explicit PasswordPage(const GatewayData &proposal, QWidget *parent = nullptr);

    /// Letters and digits.
    [[nodiscard]] static QString generatePassword();
    [[nodiscard]] static QString reviewOf(const GatewayData &data);

    [[nodiscard]] bool isComplete() const override;

    void initializePage() override;

private:
    [[nodiscard]] QWidget *createPasswordGroup(const GatewayData &proposal);
    [[nodiscard]] QWidget *createReviewGroup();

    QLineEdit *m_password = nullptr;
    QLabel *m_review = nullptr;
};
