#pragma once

#include <QAudioDeviceInfo>
#include <QList>
#include <QWidget>

class InputTest;
class OutputTest;
class Prompts;
class QComboBox;
class QFormLayout;
class QPushButton;
class QSlider;
struct Settings;

/// The settings dialog's tab "Audio": the sound devices, their gains, and a test of each direction.
class AudioSettingsPage final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioSettingsPage)

public:
    explicit AudioSettingsPage(Prompts &prompts, QWidget *parent = nullptr);

    void collect(Settings &settings) const;

    /// Shows the gains. The devices are shown by refreshDevices().
    void showSettings(const Settings &settings);
    /// Lists the system's devices anew and selects the two at these positions; the first where there is no such one.
    void refreshDevices(int inputDevice, int outputDevice);

    /// Records from the selected input for a second and shows the verdict. The page may be gone when this returns.
    void testInput();
    /// Plays a tone on the default output, whichever is selected. The page may be gone when this returns.
    void testOutput();
    /// Breaks both tests off, without a word.
    void stopTests();

private:
    QWidget *createDevice(const char *title, const char *label, const char *name, QComboBox *&combo);
    QWidget *createGains();
    QLayout *createTests();
    QSlider *addGain(QFormLayout *form, const QString &label, const QString &name);
    void showInputVerdict(int level);
    void showOutputQuestion();
    void showInputRunning(bool running);
    void showOutputRunning(bool running);

    Prompts &m_prompts;
    QComboBox *m_input = nullptr;
    QComboBox *m_output = nullptr;
    QSlider *m_micGain = nullptr;
    QSlider *m_speakerGain = nullptr;
    QPushButton *m_testInput = nullptr;
    QPushButton *m_testOutput = nullptr;
    InputTest *m_inputTest;
    OutputTest *m_outputTest;
    QList<QAudioDeviceInfo> m_inputs; // in the order of the combo
};
