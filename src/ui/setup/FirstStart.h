#pragma once

#include "app/Endpoints.h"
#include "ui/setup/GatewayRegistration.h"
#include "ui/setup/SetupWizard.h"

#include <optional>

class Prompts;

/// What happens instead of the main window until a setup has been completed: the wizard, the registration, and the
/// wizard again.
class FirstStart final
{
public:
    enum class Outcome {
        SetUp, ///< the main window may come
        Ended  ///< the operator gave up, or a new instance of the program goes on
    };

    FirstStart(const Endpoints &endpoints, Prompts &prompts, GatewayRegistration::Start start);
    Q_DISABLE_COPY_MOVE(FirstStart)

    [[nodiscard]] QWidget *window() { return &m_wizard; }

    /// Blocks until the setup is completed or given up.
    [[nodiscard]] Outcome run();

private:
    // Nothing: the wizard is to be shown again.
    [[nodiscard]] std::optional<Outcome> showWizard();
    [[nodiscard]] Outcome finishLogin();
    [[nodiscard]] std::optional<Outcome> tryRegistration();

    Endpoints m_endpoints;
    Prompts &m_prompts;
    GatewayRegistration::Start m_start;
    SetupWizard m_wizard;
};
