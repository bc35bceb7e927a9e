#include "support/LogCapture.h"
#include "support/RadioBench.h"
#include "support/ScriptedPrompts.h"
#include "support/TestConfig.h"
#include "support/TestMain.h"
#include "ui/settings/InputTest.h"
#include "ui/settings/OutputTest.h"
#include "ui/settings/SettingsDialog.h"

#include <QApplication>
#include <QAudioDeviceInfo>
#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kRate = 48000;     // Hz
constexpr int kPatience = 30000; // ms

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// A square wave of 500 Hz: its loudest sample is heard wherever one listens.
Sound square(qint16 amplitude, int seconds)
{
    QVector<qint16> samples(seconds * kRate);
    for (int i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<qint16>(i / 48 % 2 == 0 ? amplitude : -amplitude);
    return {{reinterpret_cast<const char *>(samples.constData()), samples.size() * 2}, kRate};
}

QVector<qint16> samplesOf(const QByteArray &bytes)
{
    const auto *begin = reinterpret_cast<const qint16 *>(bytes.constData());
    return {begin, begin + bytes.size() / 2};
}

/// The samples from the first to the last one louder than that.
QVector<qint16> sounding(const QByteArray &bytes, int threshold)
{
    const QVector<qint16> samples = samplesOf(bytes);
    const auto loud = [threshold](qint16 sample) { return std::abs(int{sample}) > threshold; };
    const auto first = std::find_if(samples.cbegin(), samples.cend(), loud);
    const auto last = std::find_if(samples.crbegin(), std::make_reverse_iterator(first), loud).base();
    return {first, last};
}

/// Hz, from the zero crossings.
double frequencyOf(const QVector<qint16> &samples, int rate)
{
    int rises = 0;
    for (int i = 1; i < samples.size(); ++i)
        rises += samples.at(i - 1) < 0 && samples.at(i) >= 0 ? 1 : 0;
    return samples.isEmpty() ? 0 : static_cast<double>(rises) * rate / samples.size();
}

/// What pactl prints: this process points to the bench.
QStringList pactl(const QStringList &arguments)
{
    const QString output =
        QString::fromUtf8(ChildProcess::outputOf(q("pactl"), arguments, QProcessEnvironment::systemEnvironment()));
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

int captureStreams()
{
    return pactl({q("list"), q("short"), q("source-outputs")}).size();
}

int playbackStreams()
{
    return pactl({q("list"), q("short"), q("sink-inputs")}).size();
}

/// Takes a sound server's module away, as an unplugged device takes its own.
bool unload(const QString &argument)
{
    const QStringList modules = pactl({q("list"), q("short"), q("modules")});
    for (const QString &module : modules) {
        if (module.contains(argument)) {
            (void)pactl({q("unload-module"), module.section(QLatin1Char('\t'), 0, 0)});
            return true;
        }
    }
    return false;
}

/// How many devices there are; the toolkit lists one without a name when there is none.
int count(QAudio::Mode mode)
{
    const QList<QAudioDeviceInfo> devices = QAudioDeviceInfo::availableDevices(mode);
    return static_cast<int>(std::count_if(devices.cbegin(), devices.cend(), [](const QAudioDeviceInfo &device) {
        return !device.deviceName().isEmpty();
    }));
}

} // namespace

// The settings' sound tests on a real sound server.
class SoundTestsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void inputVerdict_data();
    void inputVerdict();
    void inputIsReleasedBeforeTheVerdict();
    void toneIsHeardWhole();
    void outputIsReleasedBeforeTheQuestion();
    void closingBreaksOff_data();
    void closingBreaksOff();
    void startingAgainBreaksOff();
    void verdictMayDeleteTheDialog();
    void deviceRemovedMeanwhile();
    void deviceRemovedBefore();
    void noDevices();
    void soundServerDies();

private:
    [[nodiscard]] QPushButton *button(const char *name) const { return m_dialog->findChild<QPushButton *>(q(name)); }
    [[nodiscard]] QComboBox *combo(const char *name) const { return m_dialog->findChild<QComboBox *>(q(name)); }
    bool selectMicrophone();
    /// Starts to play into the radio's receiver and waits until it is heard.
    std::unique_ptr<ChildProcess> play(const Sound &sound);

    RadioBench m_bench;
    std::unique_ptr<TestConfig> m_config;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<SettingsDialog> m_dialog;
};

void SoundTestsTest::initTestCase()
{
    m_bench.useHere();
    QVERIFY(m_bench.start());
}

void SoundTestsTest::init()
{
    m_config = std::make_unique<TestConfig>();
    m_prompts = std::make_unique<ScriptedPrompts>();
    m_dialog = std::make_unique<SettingsDialog>(*m_prompts);
    m_dialog->show();
}

void SoundTestsTest::cleanup()
{
    m_dialog.reset();
    m_prompts.reset();
    m_config.reset();
}

bool SoundTestsTest::selectMicrophone()
{
    QComboBox *inputs = combo("inputDeviceCombo");
    inputs->setCurrentIndex(inputs->findText(q("microphone")));
    return inputs->currentText() == q("microphone");
}

std::unique_ptr<ChildProcess> SoundTestsTest::play(const Sound &sound)
{
    const std::unique_ptr<Recorder> recorder = m_bench.recordReceiver();
    std::unique_ptr<ChildProcess> player = m_bench.playIntoReceiver(sound);
    if (!recorder || !player)
        return {};
    const bool heard = QTest::qWaitFor([&] { return !sounding(recorder->sound().pcm, 0).isEmpty(); }, kPatience);
    return heard ? std::move(player) : nullptr;
}

void SoundTestsTest::inputVerdict_data()
{
    QTest::addColumn<qint16>("amplitude");
    QTest::addColumn<bool>("working");
    QTest::addColumn<int>("level");
    QTest::newRow("silent microphone") << qint16{0} << false << 0;
    QTest::newRow("exactly 10") << qint16{3604} << false << 10;
    QTest::newRow("11") << qint16{3605} << true << 11;
    QTest::newRow("loud") << qint16{20000} << true << 61;
}

void SoundTestsTest::inputVerdict()
{
    QFETCH(qint16, amplitude);
    QFETCH(bool, working);
    QFETCH(int, level);
    std::unique_ptr<ChildProcess> player;
    if (amplitude > 0)
        player = play(square(amplitude, 60));
    QVERIFY(amplitude == 0 || player);
    QVERIFY(selectMicrophone());
    m_prompts->accept();
    button("testInputButton")->click();
    QVERIFY(!button("testInputButton")->isEnabled());
    QCOMPARE(button("testInputButton")->text(), q("Recording..."));
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QVERIFY(button("testInputButton")->isEnabled());
    QCOMPARE(button("testInputButton")->text(), q("Test Input"));
    const Prompt &verdict = m_prompts->seen().first();
    QCOMPARE(verdict.title, q("Test Input"));
    QCOMPARE(verdict.kind, working ? Prompt::Kind::Information : Prompt::Kind::Warning);
    QCOMPARE(verdict.text,
             working ? q("Input device working!\nLevel: %1%").arg(level)
                     : q("No audio detected.\nLevel: %1%\n\nCheck microphone connection and try again.").arg(level));
}

void SoundTestsTest::inputIsReleasedBeforeTheVerdict()
{
    QVERIFY(selectMicrophone());
    const int before = captureStreams();
    int during = -1;
    bool enabled = false;
    m_prompts->accept([&] {
        QTRY_COMPARE_WITH_TIMEOUT(captureStreams(), before, kPatience);
        during = captureStreams();
        enabled = button("testInputButton")->isEnabled();
    });
    m_dialog->onTestInput();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QCOMPARE(during, before);
    QVERIFY(enabled);
}

void SoundTestsTest::toneIsHeardWhole()
{
    const std::unique_ptr<Recorder> recorder = m_bench.recordTransmitter();
    QVERIFY(recorder);
    m_prompts->accept();
    button("testOutputButton")->click();
    QVERIFY(!button("testOutputButton")->isEnabled());
    QCOMPARE(button("testOutputButton")->text(), q("Playing..."));
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QVERIFY(button("testOutputButton")->isEnabled());
    QCOMPARE(button("testOutputButton")->text(), q("Test Output"));
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(m_prompts->seen().first().title, q("Test Output"));
    QCOMPARE(m_prompts->seen().first().text, q("Test tone played.\n\nDid you hear the beep sound?"));
    QVERIFY(recorder->waitUntilNow());

    const QVector<qint16> tone = sounding(recorder->sound().pcm, 500);
    const double milliseconds = 1000.0 * tone.size() / Recorder::kRate;
    QVERIFY2(milliseconds > 490 && milliseconds < 510, qPrintable(q("heard %1 ms of the tone").arg(milliseconds)));
    const double frequency = frequencyOf(tone, Recorder::kRate);
    QVERIFY2(frequency > 435 && frequency < 445, qPrintable(q("heard %1 Hz").arg(frequency)));
    const int peak = *std::max_element(tone.cbegin(), tone.cend());
    QVERIFY2(peak > 15500 && peak < 16500, qPrintable(q("the loudest sample is %1").arg(peak)));
}

void SoundTestsTest::outputIsReleasedBeforeTheQuestion()
{
    const int before = playbackStreams();
    int during = -1;
    m_prompts->accept([&] {
        QTRY_COMPARE_WITH_TIMEOUT(playbackStreams(), before, kPatience);
        during = playbackStreams();
    });
    m_dialog->onTestOutput();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QCOMPARE(during, before);
}

void SoundTestsTest::closingBreaksOff_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"cancel", "save", "close", "delete"})
        QTest::newRow(how) << q(how);
}

void SoundTestsTest::closingBreaksOff()
{
    QFETCH(QString, how);
    QVERIFY(selectMicrophone());
    const int captures = captureStreams();
    const int playbacks = playbackStreams();
    m_dialog->onTestInput();
    m_dialog->onTestOutput();
    auto *input = m_dialog->findChild<InputTest *>();
    auto *output = m_dialog->findChild<OutputTest *>();
    QVERIFY(input->isRunning());
    QVERIFY(output->isRunning());
    QSignalSpy inputDone(input, &InputTest::finished);
    QSignalSpy outputDone(output, &OutputTest::finished);
    // Asked without the event loop, so that neither test ends meanwhile.
    const auto streams = [](const char *kind) {
        QProcess question;
        question.start(q("pactl"), {q("list"), q("short"), q(kind)});
        question.waitForFinished();
        return question.readAllStandardOutput().count('\n');
    };
    QCOMPARE(streams("source-outputs"), captures + 1);
    QCOMPARE(streams("sink-inputs"), playbacks + 1);

    if (how == q("cancel"))
        button("cancelButton")->click();
    else if (how == q("save"))
        button("saveButton")->click();
    else if (how == q("close"))
        m_dialog->close();
    else
        m_dialog.reset();
    if (m_dialog) {
        QVERIFY(!input->isRunning());
        QVERIFY(!output->isRunning());
        QCOMPARE(button("testInputButton")->text(), q("Test Input"));
        QCOMPARE(button("testOutputButton")->text(), q("Test Output"));
        QVERIFY(button("testInputButton")->isEnabled());
        QVERIFY(button("testOutputButton")->isEnabled());
    }
    QTRY_COMPARE_WITH_TIMEOUT(captureStreams(), captures, kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(playbackStreams(), playbacks, kPatience);
    // Another second of the sound server's time: a test that still ran would have ended in it.
    const std::unique_ptr<Recorder> clock = m_bench.recordReceiver();
    QVERIFY(clock);
    QVERIFY(clock->waitForMore(std::chrono::milliseconds(1200)));
    QCOMPARE(inputDone.size(), 0);
    QCOMPARE(outputDone.size(), 0);
    QVERIFY(m_prompts->seen().isEmpty());
}

void SoundTestsTest::startingAgainBreaksOff()
{
    QVERIFY(selectMicrophone());
    m_prompts->accept();
    const int before = captureStreams();
    m_dialog->onTestInput();
    m_dialog->onTestInput();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(captureStreams(), before, kPatience);
    QCOMPARE(m_prompts->seen().size(), 1);
}

void SoundTestsTest::verdictMayDeleteTheDialog()
{
    QVERIFY(selectMicrophone());
    m_prompts->accept([this] { m_dialog.reset(); });
    m_dialog->onTestInput();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QVERIFY(!m_dialog);

    m_dialog = std::make_unique<SettingsDialog>(*m_prompts);
    m_prompts->accept([this] { m_dialog.reset(); });
    m_dialog->onTestOutput();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 2, kPatience);
    QVERIFY(!m_dialog);
}

void SoundTestsTest::deviceRemovedMeanwhile()
{
    LogCapture log;
    log.expectWarning(QString()); // the sound system's own complaints
    QVERIFY(selectMicrophone());
    const int devices = count(QAudio::AudioInput);
    m_prompts->accept();
    m_dialog->onTestInput();
    auto *input = m_dialog->findChild<InputTest *>();
    QVERIFY(input->isRunning());
    QVERIFY(unload(q("source_name=microphone")));
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 1, kPatience);
    QVERIFY(!input->isRunning());
    QCOMPARE(m_prompts->seen().first().text,
             q("No audio detected.\nLevel: 0%\n\nCheck microphone connection and try again."));
    QVERIFY(button("testInputButton")->isEnabled());

    QTRY_COMPARE_WITH_TIMEOUT(count(QAudio::AudioInput), devices - 1, kPatience);
    m_dialog->onRefreshDevices();
    QCOMPARE(combo("inputDeviceCombo")->findText(q("microphone")), -1);
}

void SoundTestsTest::deviceRemovedBefore()
{
    LogCapture log;
    log.expectWarning(QString());
    QVERIFY(combo("inputDeviceCombo")->findText(q("microphone")) < 0);
    (void)pactl({q("load-module"), q("module-remap-source"), q("source_name=microphone"), q("master=receiver.monitor"),
                 q("remix=no")});
    QTRY_VERIFY_WITH_TIMEOUT((m_dialog->onRefreshDevices(), combo("inputDeviceCombo")->findText(q("microphone")) >= 0),
                             kPatience);
    QVERIFY(selectMicrophone());
    const int devices = count(QAudio::AudioInput);
    QVERIFY(unload(q("source_name=microphone")));
    QTRY_COMPARE_WITH_TIMEOUT(count(QAudio::AudioInput), devices - 1, kPatience);
    m_prompts->accept();
    button("testInputButton")->click();
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().first().kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().first().title, q("Test Input"));
    QCOMPARE(m_prompts->seen().first().text, q("Failed to start!"));
    QVERIFY(button("testInputButton")->isEnabled());
    QCOMPARE(button("testInputButton")->text(), q("Test Input"));
}

void SoundTestsTest::noDevices()
{
    LogCapture log;
    log.expectWarning(QString());
    QVERIFY(unload(q("sink_name=receiver")));
    QVERIFY(unload(q("sink_name=transmitter")));
    QTRY_COMPARE_WITH_TIMEOUT(count(QAudio::AudioInput), 0, kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(count(QAudio::AudioOutput), 0, kPatience);
    m_dialog->onRefreshDevices();
    QCOMPARE(combo("inputDeviceCombo")->currentIndex(), -1);
    QCOMPARE(combo("outputDeviceCombo")->currentIndex(), -1);
    m_prompts->accept();
    button("testInputButton")->click();
    QCOMPARE(m_prompts->seen().size(), 1);
    QCOMPARE(m_prompts->seen().at(0).kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().at(0).title, q("Test Input"));
    QCOMPARE(m_prompts->seen().at(0).text, q("No input device selected!"));
    m_prompts->accept();
    button("testOutputButton")->click();
    QCOMPARE(m_prompts->seen().size(), 2);
    QCOMPARE(m_prompts->seen().at(1).kind, Prompt::Kind::Warning);
    QCOMPARE(m_prompts->seen().at(1).title, q("Test Output"));
    QCOMPARE(m_prompts->seen().at(1).text, q("Failed to play test tone.\n\nCheck speaker connection."));
    QVERIFY(button("testOutputButton")->isEnabled());
    QCOMPARE(button("testOutputButton")->text(), q("Test Output"));
    m_dialog->onSave();
    QCOMPARE(m_config->saved().value(q("input_device")), QJsonValue(-1));
    QCOMPARE(m_config->saved().value(q("output_device")), QJsonValue(-1));
}

void SoundTestsTest::soundServerDies()
{
    LogCapture log;
    log.expectWarning(QString());
    m_bench.kill();
    QVERIFY(m_bench.start());
    QTRY_VERIFY_WITH_TIMEOUT((m_dialog->onRefreshDevices(), combo("inputDeviceCombo")->findText(q("microphone")) >= 0),
                             kPatience);
    QVERIFY(selectMicrophone());
    m_dialog->onTestInput();
    m_dialog->onTestOutput();
    QVERIFY(m_dialog->findChild<InputTest *>()->isRunning());
    QVERIFY(m_dialog->findChild<OutputTest *>()->isRunning());
    m_prompts->accept();
    m_prompts->accept();
    m_bench.kill();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompts->seen().size(), 2, kPatience);
    QVERIFY(!m_dialog->findChild<InputTest *>()->isRunning());
    QVERIFY(!m_dialog->findChild<OutputTest *>()->isRunning());
}

EVOX_TEST_MAIN(SoundTestsTest, QApplication)
#include "tst_soundtests.moc"
