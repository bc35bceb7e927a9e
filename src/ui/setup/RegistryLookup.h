#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>

class QNetworkReply;

/// Asks the callsign registry about one callsign at a time. A question that is dropped, or followed by another one, is
/// never answered.
class RegistryLookup final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RegistryLookup)

public:
    /// The registry's base address: scheme and host without a trailing slash.
    explicit RegistryLookup(const QString &registryUrl, QObject *parent = nullptr);
    ~RegistryLookup() override;

    void ask(const QString &callsign);
    void drop();

signals:
    /// The answer to the last question, or why there is none. The reply is deleted afterwards.
    void answered(QNetworkReply *reply);

private:
    void onFinished(QNetworkReply *reply);

    QString m_registryUrl;
    QNetworkAccessManager m_manager;
    QPointer<QNetworkReply> m_reply;
};
