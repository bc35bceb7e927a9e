#pragma once

#include <QVariantMap>
#include <QWidget>

class Prompts;
class QButtonGroup;

/// The choice of the server's audio quality among its presets.
class AudioQualityTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioQualityTab)

public:
    explicit AudioQualityTab(Prompts &prompts, QWidget *parent = nullptr);

    /// The key of the selected preset: "high", "standard", "low" or "minimal".
    [[nodiscard]] QString preset() const;

public slots:
    /// Selects the record's preset; an unknown one selects "standard".
    void showQuality(const QVariantMap &quality);
    void onApplyAudioQuality();

signals:
    void commandRequested(const QString &line);

private:
    void select(const QString &preset);

    Prompts &m_prompts;
    QButtonGroup *m_options;
};
