#include "ui/setup/SetupWizard.h"

#include "app/Config.h"
#include "app/Endpoints.h"
#include "ui/setup/ContactPage.h"
#include "ui/setup/EULAPage.h"
#include "ui/setup/GatewayPage.h"
#include "ui/setup/LoginDialog.h"
#include "ui/setup/PICPage.h"
#include "ui/setup/PasswordPage.h"
#include "ui/setup/ServerPage.h"
#include "ui/setup/WelcomePage.h"

#include <QCoreApplication>
#include <QPointer>

namespace {

constexpr QSize kSmallest(550, 500);
constexpr QSize kComfortable(620, 580); ///< the review needs no scrolling

QString termsPath()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/eula.txt");
}

} // namespace

SetupWizard::SetupWizard(const Endpoints &endpoints, Prompts &prompts, QWidget *parent)
    : QWizard(parent)
    , m_prompts(prompts)
    , m_proposal(GatewayData::fromConfig(Config::instance(), endpoints))
    , m_defaultHost(endpoints.serverHost)
{
    setObjectName(QStringLiteral("setupWizard"));
    setWindowTitle(QStringLiteral("eVOX SINAR - Setup Wizard"));
    setMinimumSize(kSmallest);
    resize(kComfortable);
    setWizardStyle(QWizard::ModernStyle);
    setModal(true);
    setUpButtons();
    addPages(endpoints);
}

void SetupWizard::setUpButtons()
{
    setButtonText(QWizard::BackButton, QStringLiteral("Kembali"));
    setButtonText(QWizard::NextButton, QStringLiteral("Lanjut"));
    setButtonText(QWizard::CancelButton, QStringLiteral("Batal"));
    setButtonText(QWizard::FinishButton, QStringLiteral("Daftar"));
}

void SetupWizard::addPages(const Endpoints &endpoints)
{
    auto *welcome = new WelcomePage(this);
    connect(welcome, &WelcomePage::loginRequested, this, &SetupWizard::showLogin);
    setPage(Welcome, welcome);
    setPage(Eula, new EULAPage(termsPath(), this));
    setPage(Server, new ServerPage(m_proposal, this));
    m_gatewayPage = new GatewayPage(m_proposal, endpoints.registryUrl, m_prompts, this);
    setPage(Gateway, m_gatewayPage);
    setPage(Pic, new PICPage(m_proposal, endpoints.registryUrl, this));
    setPage(Contact, new ContactPage(m_proposal, this));
    setPage(Password, new PasswordPage(m_proposal, this));
}

GatewayData SetupWizard::gatewayData() const
{
    const auto text = [this](const char *name) { return field(QLatin1String(name)).toString().trimmed(); };
    const auto textOr = [&text](const char *name, const QString &fallback) {
        const QString typed = text(name);
        return typed.isEmpty() ? fallback : typed;
    };
    GatewayData entered;
    entered.serverAddress = textOr("serverAddress", m_defaultHost);
    entered.serverPort = field(QStringLiteral("serverPort")).toInt();
    entered.defaultRoom = textOr("defaultRoom", QStringLiteral("Lobby"));
    entered.callsign = text("callsign").toUpper();
    entered.gatewayName = text("gatewayName");
    entered.frequency = text("frequency");
    entered.location = text("location");
    entered.permitExpiry = m_gatewayPage->permitExpiry();
    entered.picCallsign = text("picCallsign");
    entered.picName = text("picName");
    entered.email = text("email");
    entered.whatsapp = text("whatsapp");
    entered.password = field(QStringLiteral("password")).toString();
    return entered;
}

void SetupWizard::cleanupPage(int id)
{
    Q_UNUSED(id) // going back keeps what was typed
}

void SetupWizard::done(int result)
{
    if (result == Rejected)
        QDialog::done(result); // the wizard's own would go back to the first page
    else
        QWizard::done(result);
}

void SetupWizard::showLogin()
{
    const QPointer<SetupWizard> self(this);
    const QPointer<LoginDialog> dialog = new LoginDialog(m_defaultHost, m_prompts, this);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    delete dialog;
    if (self && accepted)
        accept();
}
