#pragma once

#include "support/driver/UserActions.h"

#include <QJsonObject>
#include <QObject>
#include <QTcpSocket>

/// The program's end of the line to the test that drives it. Lives in the GUI thread and works in nested event loops
/// too. When the test is gone, so is the program.
class DriverSession final : public QObject
{
    Q_OBJECT

public:
    explicit DriverSession(quint16 port, QObject *parent = nullptr);
    ~DriverSession() override;

private:
    /// Answered at once; what is to happen begins afterwards.
    struct Reply
    {
        QString error;
        QJsonValue result;
        std::function<void()> begin;
    };
    using Handler = Reply (*)(const QJsonObject &);

    void open();
    void introduce();
    void onReadyRead();
    void answer(const QByteArray &line);
    void send(const QJsonObject &message);

    [[nodiscard]] static Reply perform(const UserActions::Action &action);
    [[nodiscard]] static Reply onWindows(const QJsonObject &request);
    [[nodiscard]] static Reply onFront(const QJsonObject &request);
    [[nodiscard]] static Reply onWidgets(const QJsonObject &request);
    [[nodiscard]] static Reply onRead(const QJsonObject &request);
    [[nodiscard]] static Reply onFocus(const QJsonObject &request);
    [[nodiscard]] static Reply onClick(const QJsonObject &request);
    [[nodiscard]] static Reply onAnswer(const QJsonObject &request);
    [[nodiscard]] static Reply onMenu(const QJsonObject &request);
    [[nodiscard]] static Reply onChoose(const QJsonObject &request);
    [[nodiscard]] static Reply onType(const QJsonObject &request);
    [[nodiscard]] static Reply onKey(const QJsonObject &request);
    [[nodiscard]] static Reply onScreenshot(const QJsonObject &request);

    quint16 m_port;
    QTcpSocket m_socket;
};
