#pragma once

#include <QObject>
#include <QString>

/// The radio's push-to-talk and carrier lines on a serial port's modem lines. GUI thread only.
class SerialManager final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SerialManager)

public:
    explicit SerialManager(QObject *parent = nullptr);
    ~SerialManager() override;

    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool isPttActive() const;
    [[nodiscard]] bool isCosActive() const;

    bool open(const QString &portName, int baudRate, const QString &pttPin, const QString &cosPin, bool cosLogicHigh);
    void setPtt(bool active);
    void setCosLogicHigh(bool high);
    void close();

signals:
    void cosChanged(bool active);
    void pttChanged(bool active);
    /// Declared for listeners; failures are returned and logged, never emitted.
    void error(const QString &message);

private slots:
    void onCosDebounce();
    void checkCos();
};
