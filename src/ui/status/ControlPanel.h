#pragma once

#include <QWidget>

/// The status column: server facts, round trip, gateway facts, levels, carrier and readiness. Takes no input.
class ControlPanel final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ControlPanel)

public:
    explicit ControlPanel(QWidget *parent = nullptr);

    [[nodiscard]] bool isSerialReady() const;
    [[nodiscard]] bool isInRoom() const;

    void setSerialReady(bool ready); ///< shown by the next updateReadiness()
    void setInRoom(bool inRoom);     ///< shown by the next updateReadiness()
    void updateServerInfo(const QString &codec, const QString &preset, int bitrate, int sampleRate,
                          const QString &encryption, int onlineTotal, int onlineGateways, int onlineAdmins,
                          int totalRooms);
    void updateGatewayInfo(const QString &name, const QString &callsign, const QString &frequency,
                           const QString &location, const QString &picName, const QString &picCallsign,
                           const QString &whatsapp);
    void setPing(float latencyMs);
    void setInputLevel(int level);
    void setOutputLevel(int level);
    void setTransmitIndicator(bool transmitting);
    void updateReadiness();
    void applyTheme(bool dark);

public slots:
    void resetInputLevel();
    void resetOutputLevel();
};
