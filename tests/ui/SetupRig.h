#pragma once

#include "app/Endpoints.h"
#include "support/FakeRegistry.h"
#include "support/ScriptedPrompts.h"
#include "support/TestConfig.h"
#include "ui/setup/SetupWizard.h"

#include <QAbstractButton>
#include <QJsonObject>
#include <QStringList>

#include <memory>

/// A setup wizard with a registry, a configuration and an answering operator of its own. Lists YH0AB as a station that
/// may transmit for years and YB0AA as the person "ANI SITI". The registry is asked without delay.
class SetupRig final
{
public:
    explicit SetupRig(const QJsonObject &values = {});
    SetupRig(const SetupRig &) = delete;
    SetupRig &operator=(const SetupRig &) = delete;

    /// Makes the wizard and shows it.
    void open();
    void close() { m_own.reset(); }
    /// Drives somebody else's wizard instead of an own one.
    void drive(SetupWizard *wizard);
    [[nodiscard]] SetupWizard &wizard() const { return *m_wizard; }
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return m_wizard->findChild<Widget *>(QLatin1String(name));
    }
    [[nodiscard]] QAbstractButton *next() const { return m_wizard->button(QWizard::NextButton); }
    [[nodiscard]] QString text(const char *name) const;
    void type(const char *name, const QString &text) const;

    /// Presses Next until this page is there, filling in what the pages ask for.
    [[nodiscard]] bool goTo(SetupWizard::Page page);

    FakeRegistry registry;
    TestConfig config;
    ScriptedPrompts prompts;
    Endpoints endpoints;

private:
    [[nodiscard]] bool fillIn(int page) const;

    std::unique_ptr<SetupWizard> m_own;
    SetupWizard *m_wizard = nullptr;
};
