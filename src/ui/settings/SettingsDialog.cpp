#include "ui/settings/SettingsDialog.h"

#include "app/Config.h"
#include "ui/settings/AudioSettingsPage.h"
#include "ui/settings/GeneralSettingsPage.h"
#include "ui/settings/SerialSettingsPage.h"
#include "ui/settings/ServerSettingsPage.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QVariant>

#include <chrono>

namespace {

/// As large as its page, where there is room.
class PageArea final : public QScrollArea
{
public:
    using QScrollArea::QScrollArea;

    [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint(); }
};

constexpr std::chrono::milliseconds kStatusTime{3000};
constexpr qreal kScreenShare = 0.9; // the rest is for the frame

QPushButton *addButton(QHBoxLayout *row, const QString &text, const char *name, const char *meaning = nullptr)
{
    auto *button = new QPushButton(text, row->parentWidget());
    button->setObjectName(QLatin1String(name));
    if (meaning)
        button->setProperty("meaning", QLatin1String(meaning));
    row->addWidget(button);
    return button;
}

} // namespace

SettingsDialog::SettingsDialog(Prompts &prompts, QWidget *parent)
    : QDialog(parent)
    , m_tabs(new QTabWidget(this))
    , m_general(new GeneralSettingsPage(this))
    , m_server(new ServerSettingsPage(this))
    , m_audio(new AudioSettingsPage(prompts, this))
    , m_serial(new SerialSettingsPage(this))
{
    setObjectName(QStringLiteral("settingsDialog"));
    setWindowTitle(QStringLiteral("Settings"));
    m_tabs->setObjectName(QStringLiteral("settingsTabs"));
    addTab(m_general, QStringLiteral("General"));
    addTab(m_server, QStringLiteral("Server"));
    addTab(m_audio, QStringLiteral("Audio"));
    addTab(m_serial, QStringLiteral("Serial/PTT"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(createButtons());
    connect(this, &QDialog::finished, this, &SettingsDialog::onDialogClosed);

    const Settings settings = StoredSettings::read();
    m_general->showSettings(settings);
    m_server->showSettings(settings);
    m_audio->showSettings(settings);
    m_serial->showSettings(settings);
    m_audio->refreshDevices(settings.inputDevice, settings.outputDevice);
    ensurePolished();                                                       // the style has its say in the size
    resize(sizeHint().boundedTo(screen()->availableSize() * kScreenShare)); // left alone, it opens with two thirds
}

// On a small screen a page is scrolled, by the keyboard as well; else Tab has no business with what holds it.
void SettingsDialog::addTab(QWidget *page, const QString &title)
{
    auto *area = new PageArea(m_tabs);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(page);
    area->setFocusPolicy(Qt::NoFocus);
    connect(area->verticalScrollBar(), &QScrollBar::rangeChanged, area,
            [area](int, int maximum) { area->setFocusPolicy(maximum > 0 ? Qt::StrongFocus : Qt::NoFocus); });
    m_tabs->addTab(area, title);
}

QWidget *SettingsDialog::createButtons()
{
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins({});
    QPushButton *refresh = addButton(row, QStringLiteral("Refresh Devices"), "refreshDevicesButton");
    connect(refresh, &QPushButton::clicked, this, &SettingsDialog::onRefreshDevices);
    row->addStretch();
    QPushButton *apply = addButton(row, QStringLiteral("Apply"), "applyButton", "accent");
    connect(apply, &QPushButton::clicked, this, &SettingsDialog::onApply);
    QPushButton *save = addButton(row, QStringLiteral("Save"), "saveButton", "good");
    save->setDefault(true);
    connect(save, &QPushButton::clicked, this, &SettingsDialog::onSave);
    QPushButton *cancel = addButton(row, QStringLiteral("Cancel"), "cancelButton");
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return bar;
}

void SettingsDialog::setCosActive(bool active)
{
    m_serial->setCosActive(active);
}

void SettingsDialog::onSave()
{
    const QPointer<SettingsDialog> self(this);
    store(QStringLiteral("Settings saved"));
    if (!self)
        return;
    qDebug() << "[Settings] Saved and closing dialog";
    accept();
}

void SettingsDialog::onApply()
{
    const QPointer<SettingsDialog> self(this);
    store(QStringLiteral("Settings applied"));
    if (self)
        qDebug() << "[Settings] Applied (dialog stays open)";
}

/// Whoever is told may delete the dialog.
void SettingsDialog::store(const QString &status)
{
    Settings settings;
    m_general->collect(settings);
    m_server->collect(settings);
    m_audio->collect(settings);
    m_serial->collect(settings);
    StoredSettings::write(settings);
    qDebug().noquote() << "[Settings] Config saved to:" << Config::filePath();

    // The owner reports a status of its own; the dialog's comes last and stays.
    const QPointer<QMainWindow> owner(parentWidget() ? qobject_cast<QMainWindow *>(parentWidget()->window()) : nullptr);
    emit settingsApplied(settings);
    if (owner)
        owner->statusBar()->showMessage(status, static_cast<int>(kStatusTime.count()));
}

void SettingsDialog::onRefreshDevices()
{
    const Settings stored = StoredSettings::read();
    m_audio->refreshDevices(stored.inputDevice, stored.outputDevice);
    m_serial->refreshPorts();
}

void SettingsDialog::onTestInput()
{
    m_audio->testInput();
}

void SettingsDialog::onTestOutput()
{
    m_audio->testOutput();
}

void SettingsDialog::onDialogClosed()
{
    m_audio->stopTests();
}
