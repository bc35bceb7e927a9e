#include "support/LogCapture.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/admin/AudioQualityTab.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>

class AudioQualityTabTest final : public QObject
{
    Q_OBJECT

private slots:
    void looksAsAnnounced();
    void showsTheServersPreset_data();
    void showsTheServersPreset();
    void appliesTheSelectedOne_data();
    void appliesTheSelectedOne();
    void choosesByKeyboard();
    void mayGoWhileTheBoxIsOpen();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QStringList optionTexts(const AudioQualityTab &tab)
{
    QStringList texts;
    for (const QRadioButton *option : tab.findChildren<QRadioButton *>())
        texts.append(option->text());
    return texts;
}

QString checkedText(const AudioQualityTab &tab)
{
    for (const QRadioButton *option : tab.findChildren<QRadioButton *>()) {
        if (option->isChecked())
            return option->text();
    }
    return {};
}

void addPresets()
{
    QTest::addColumn<QString>("preset");
    QTest::addColumn<QString>("text");
    QTest::newRow("high") << q("high") << q("High Quality (64 kbps, 48kHz)");
    QTest::newRow("standard") << q("standard") << q("Standard (32 kbps, 48kHz) - Recommended");
    QTest::newRow("low") << q("low") << q("Low Bandwidth (16 kbps, 24kHz)");
    QTest::newRow("minimal") << q("minimal") << q("Minimal (8 kbps, 12kHz)");
}

} // namespace

void AudioQualityTabTest::looksAsAnnounced()
{
    ScriptedPrompts prompts;
    const AudioQualityTab tab(prompts);
    QCOMPARE(tab.findChild<QLabel *>(q("audioQualityHeader"))->text(), q("Server Audio Quality Settings"));
    QCOMPARE(tab.findChild<QGroupBox *>()->title(), q("Quality Preset"));
    QCOMPARE(tab.findChild<QPushButton *>(q("applyAudioQualityButton"))->text(), q("Apply to Server"));
    QCOMPARE(optionTexts(tab),
             QStringList({q("High Quality (64 kbps, 48kHz)"), q("Standard (32 kbps, 48kHz) - Recommended"),
                          q("Low Bandwidth (16 kbps, 24kHz)"), q("Minimal (8 kbps, 12kHz)")}));
    QCOMPARE(tab.preset(), q("standard"));
}

void AudioQualityTabTest::showsTheServersPreset_data()
{
    addPresets();
    const QString standard = q("Standard (32 kbps, 48kHz) - Recommended");
    QTest::newRow("unknown") << q("ultra") << standard;
    QTest::newRow("in capitals") << q("LOW") << standard;
    QTest::newRow("empty") << q("") << standard;
}

void AudioQualityTabTest::showsTheServersPreset()
{
    QFETCH(QString, preset);
    QFETCH(QString, text);
    ScriptedPrompts prompts;
    AudioQualityTab tab(prompts);
    tab.showQuality({{q("preset"), preset == q("minimal") ? q("high") : q("minimal")}}); // another one before
    LogCapture log;
    tab.showQuality({{q("preset"), preset}, {q("bitrate"), 1}});
    QCOMPARE(checkedText(tab), text);
    QCOMPARE(log.lines(), QStringList(q("[AdminPanel] Audio quality updated to: ") + preset));
}

void AudioQualityTabTest::appliesTheSelectedOne_data()
{
    addPresets();
}

void AudioQualityTabTest::appliesTheSelectedOne()
{
    QFETCH(QString, preset);
    ScriptedPrompts prompts;
    prompts.accept();
    AudioQualityTab tab(prompts);
    QSignalSpy commands(&tab, &AudioQualityTab::commandRequested);
    tab.findChild<QRadioButton *>(q("audioQuality_") + preset)->click();
    tab.findChild<QPushButton *>(q("applyAudioQualityButton"))->click();
    QCOMPARE(commands.size(), 1);
    QCOMPARE(commands.first().first().toString(), q("ADMIN_SET_AUDIO_QUALITY ") + preset);
    QCOMPARE(prompts.seen().size(), 1);
    QCOMPARE(prompts.seen().first().kind, Prompt::Kind::Information);
    QCOMPARE(prompts.seen().first().title, q("Audio Quality"));
    QCOMPARE(prompts.seen().first().text, q("Audio quality set to: ") + preset);
}

void AudioQualityTabTest::choosesByKeyboard()
{
    ScriptedPrompts prompts;
    AudioQualityTab tab(prompts);
    tab.show();
    QApplication::setActiveWindow(&tab);
    auto *standard = tab.findChild<QRadioButton *>(q("audioQuality_standard"));
    standard->setFocus();
    QTest::keyClick(standard, Qt::Key_Down);
    QCOMPARE(tab.preset(), q("low"));
}

void AudioQualityTabTest::mayGoWhileTheBoxIsOpen()
{
    ScriptedPrompts prompts;
    auto *tab = new AudioQualityTab(prompts);
    const QPointer<AudioQualityTab> watched(tab);
    prompts.accept([tab] { delete tab; });
    tab->onApplyAudioQuality();
    QVERIFY(!watched);
}

EVOX_TEST_MAIN(AudioQualityTabTest, QApplication)
#include "tst_audioqualitytab.moc"
