#pragma once

#include <QWidget>

class ElidedLabel;
class QLabel;

/// One station's row: approval, transmit or receive, name, microphone and speaker.
class UserWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserWidget)
    Q_PROPERTY(bool transmitting READ isTransmitting) // style sheets choose the text's colour by it

public:
    UserWidget(const QString &displayName, const QString &callsign, int userId, bool isSelf, QWidget *parent = nullptr);

    [[nodiscard]] QString displayName() const { return m_displayName; }
    [[nodiscard]] QString callsign() const { return m_callsign; }
    [[nodiscard]] int userId() const { return m_userId; }
    [[nodiscard]] bool isSelf() const { return m_isSelf; }
    [[nodiscard]] bool isApproved() const { return m_flags.approved; }
    [[nodiscard]] bool isTransmitting() const { return m_flags.transmitting; }
    [[nodiscard]] bool isMicMuted() const { return m_flags.micMuted; }
    [[nodiscard]] bool isSpeakerMuted() const { return m_flags.speakerMuted; }

    void setApproved(bool approved);
    void setTransmitting(bool transmitting);
    void setMicMuted(bool muted);
    void setSpeakerMuted(bool muted);
    /// Redraws icons, tool tips and the row's ground where the flags, or the screen's pixel ratio, have changed.
    void refresh();

protected:
    bool event(QEvent *event) override;

private:
    struct Flags
    {
        bool approved = false;
        bool transmitting = false;
        bool micMuted = false;
        bool speakerMuted = false;
    };

    [[nodiscard]] QString nameText() const;
    void setFlag(bool Flags::*flag, bool value);

    const QString m_displayName;
    const QString m_callsign;
    const int m_userId;
    const bool m_isSelf;
    Flags m_flags;
    QLabel *m_approvalIcon = nullptr;
    QLabel *m_transmitIcon = nullptr;
    ElidedLabel *m_nameLabel = nullptr;
    QLabel *m_micIcon = nullptr;
    QLabel *m_speakerIcon = nullptr;
};
