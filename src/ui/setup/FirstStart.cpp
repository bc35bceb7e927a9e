#include "ui/setup/FirstStart.h"

#include "app/Config.h"
#include "app/HardwareId.h"
#include "ui/Prompts.h"

#include <utility>

FirstStart::FirstStart(const Endpoints &endpoints, Prompts &prompts, GatewayRegistration::Start start)
    : m_endpoints(endpoints)
    , m_prompts(prompts)
    , m_start(std::move(start))
    , m_wizard(endpoints, prompts)
{
}

FirstStart::Outcome FirstStart::run()
{
    for (;;) {
        if (const auto outcome = showWizard())
            return *outcome;
    }
}

std::optional<FirstStart::Outcome> FirstStart::showWizard()
{
    if (m_wizard.exec() == QDialog::Accepted)
        return Config::instance().setupCompleted() ? finishLogin() : tryRegistration();
    if (m_prompts.confirm(QStringLiteral("Konfirmasi"),
                          QStringLiteral("Apakah Anda yakin ingin keluar?\n\nAnda harus login atau mendaftar untuk "
                                         "menggunakan aplikasi ini.")))
        return Outcome::Ended;
    return {};
}

FirstStart::Outcome FirstStart::finishLogin()
{
    HardwareId::ensureStored(&Config::instance(), "[Main] HWID generated after login:");
    return Outcome::SetUp;
}

std::optional<FirstStart::Outcome> FirstStart::tryRegistration()
{
    const GatewayData data = m_wizard.gatewayData();
    if (!data.isComplete()) {
        m_prompts.warning(QStringLiteral("Data Tidak Lengkap"),
                          QStringLiteral("Semua field wajib harus diisi.\nSilakan lengkapi data pendaftaran."));
        return {};
    }
    data.store(&Config::instance());
    Config::instance().save();
    if (registerGateway(data, m_endpoints.mailDomain, m_prompts, m_start))
        return Outcome::Ended;
    if (Config::instance().setupCompleted())
        return Outcome::SetUp;
    return {};
}
