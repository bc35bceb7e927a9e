#pragma once

#include "support/ScriptedPrompts.h"
#include "support/TestConfig.h"
#include "ui/settings/SettingsDialog.h"

#include <QMainWindow>
#include <QPointer>

/// The settings dialog over a main window, with a configuration of its own.
class SettingsRig final
{
public:
    /// The dialog is on the screen.
    explicit SettingsRig(const QJsonObject &values = {})
        : config(values)
        , dialog(new SettingsDialog(prompts, &window))
    {
        window.show();
        dialog->show();
    }

    template<typename Widget> [[nodiscard]] Widget *find(const QString &name) const
    {
        return dialog->findChild<Widget *>(name);
    }
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return find<Widget>(QLatin1String(name));
    }

    TestConfig config;
    ScriptedPrompts prompts;
    QMainWindow window;
    QPointer<SettingsDialog> dialog; // the window's
};
