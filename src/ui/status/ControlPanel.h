#pragma once

#include <QWidget>

class ElidedLabel;
class LevelMeter;
class QLabel;
class QVBoxLayout;

/// The status column: server facts, round trip, gateway facts, levels, carrier and readiness. Takes no input.
class ControlPanel final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ControlPanel)

public:
    explicit ControlPanel(QWidget *parent = nullptr);

    [[nodiscard]] bool isSerialReady() const;
    [[nodiscard]] bool isInRoom() const;
    [[nodiscard]] int inputLevel() const;  ///< as shown now, 0 to 100
    [[nodiscard]] int outputLevel() const; ///< as shown now, 0 to 100

    void setSerialReady(bool ready); ///< shown by the next updateReadiness()
    void setInRoom(bool inRoom);     ///< shown by the next updateReadiness()
    /// @p bitrate in bit/s, @p sampleRate in Hz. The plain users are what the gateways and administrators leave of
    /// @p onlineTotal; counts that contradict each other are shown as far as they are positive.
    void updateServerInfo(const QString &codec, const QString &preset, int bitrate, int sampleRate,
                          const QString &encryption, int onlineTotal, int onlineGateways, int onlineAdmins,
                          int totalRooms);
    /// Empty values are shown as "-"; without a WhatsApp number that line is left out.
    void updateGatewayInfo(const QString &name, const QString &callsign, const QString &frequency,
                           const QString &location, const QString &picName, const QString &picCallsign,
                           const QString &whatsapp);
    void setPing(float latencyMs);
    void setInputLevel(int level);  ///< in percent; cut to 0 to 100
    void setOutputLevel(int level); ///< in percent; cut to 0 to 100
    void setTransmitIndicator(bool transmitting);
    void updateReadiness();
    void applyTheme(bool dark);

public slots:
    void resetInputLevel();
    void resetOutputLevel();

private:
    void addLogo(QVBoxLayout *layout);
    void addServerFacts(QVBoxLayout *layout);
    void addGatewayFacts(QVBoxLayout *layout);
    void addMeters(QVBoxLayout *layout);
    void addState(QVBoxLayout *layout);
    void addHeader(QVBoxLayout *layout, const QString &text, const QString &objectName);
    void addSeparator(QVBoxLayout *layout);
    [[nodiscard]] ElidedLabel *addFacts(QVBoxLayout *layout, const QString &objectName);

    ElidedLabel *m_serverInfo = nullptr;
    QLabel *m_ping = nullptr;
    ElidedLabel *m_gatewayInfo = nullptr;
    LevelMeter *m_input = nullptr;
    LevelMeter *m_output = nullptr;
    QLabel *m_transmitIndicator = nullptr;
    QLabel *m_readiness = nullptr;
    bool m_serialReady = false;
    bool m_inRoom = false;
};
