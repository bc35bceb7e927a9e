#pragma once

#include "net/UdpAudio.h"
#include "support/FakeServer.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

/// A link and its server; the clock stands still until a test moves it.
struct UdpLink
{
    static constexpr qint64 kStart = 1000000; ///< ms

    FakeServer server;
    UdpAudio udp;
    qint64 now = kStart;
    int clockReads = 0; ///< one for each datagram that was heard, and for each look at the health
    QSignalSpy ready{&udp, &UdpAudio::udpReady};
    QSignalSpy failed{&udp, &UdpAudio::udpFailed};

    UdpLink()
    {
        udp.setClock([this] {
            ++clockReads;
            return now;
        });
        timer("handshakeTimer")->setInterval(30000);
    }
    [[nodiscard]] QTimer *timer(const char *name) const { return udp.findChild<QTimer *>(QLatin1String(name)); }
    [[nodiscard]] bool enable(const char *token = "abc")
    {
        return udp.enableUdp(server.host(), FakeServer::kUdpPort, QString::fromLatin1(token));
    }
    [[nodiscard]] bool bringUp()
    {
        return enable() && QTest::qWaitFor([this] { return udp.isReady(); });
    }
    void checkHealth() { QMetaObject::invokeMethod(&udp, "checkHealth", Qt::DirectConnection); }
    /// Waits until the link has handled everything that the server sent up to now.
    [[nodiscard]] bool settle()
    {
        const qint64 before = now;
        QSignalSpy audio(&udp, &UdpAudio::audioReceived);
        server.sendDatagram("AUDIOmark");
        const bool heard = audio.wait(udp.isReady() ? 5000 : 100) || !udp.isReady();
        now = before;
        return heard;
    }
};
