#pragma once

#include "ui/settings/Settings.h"

#include <QDialog>

class AudioSettingsPage;
class GeneralSettingsPage;
class Prompts;
class QTabWidget;
class SerialSettingsPage;
class ServerSettingsPage;

/// Edits the stored settings in four tabs. Shows what the configuration says when it is made, writes it on Save and
/// Apply, and tells its owner, who puts the settings to use. Never blocks but for the verdicts of the sound tests.
class SettingsDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SettingsDialog)

public:
    explicit SettingsDialog(Prompts &prompts, QWidget *parent = nullptr);

public slots:
    /// Shows whether the radio's carrier is there.
    void setCosActive(bool active);

    /// Stores and reports the settings and closes the dialog.
    void onSave();
    /// Stores and reports the settings.
    void onApply();
    /// Lists the sound devices anew and selects the stored ones; lists the serial ports anew and keeps the chosen one.
    void onRefreshDevices();
    /// Judges the selected input by a second of its sound.
    void onTestInput();
    /// Plays half a second of tone on the default output.
    void onTestOutput();
    /// Breaks off the tests that run; called however the dialog closes.
    void onDialogClosed();

signals:
    /// Never emitted: Save reports the same as Apply, so that the settings are always put to use.
    void settingsSaved(const Settings &settings);
    /// The configuration has been written with these settings.
    void settingsApplied(const Settings &settings);

private:
    void addTab(QWidget *page, const QString &title);
    QWidget *createButtons();
    void store(const QString &status);

    QTabWidget *m_tabs = nullptr;
    GeneralSettingsPage *m_general = nullptr;
    ServerSettingsPage *m_server = nullptr;
    AudioSettingsPage *m_audio = nullptr;
    SerialSettingsPage *m_serial = nullptr;
};
