#include "ui/setup/RegistryLookup.h"

#include "gateway/RegistryRecord.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kTransferTimeout{30000};

} // namespace

RegistryLookup::RegistryLookup(const QString &registryUrl, QObject *parent)
    : QObject(parent)
    , m_registryUrl(registryUrl)
{
    m_manager.setTransferTimeout(static_cast<int>(kTransferTimeout.count()));
    m_manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

RegistryLookup::~RegistryLookup()
{
    drop();
}

void RegistryLookup::ask(const QString &callsign)
{
    drop();
    QNetworkRequest request(QUrl(m_registryUrl + QLatin1String("/registrant/searchDataIar/?callsign=") + callsign));
    request.setRawHeader("User-Agent", "Mozilla/5.0");
    request.setRawHeader("X-Requested-With", "XMLHttpRequest");
    request.setRawHeader("Accept-Encoding", "identity"); // a small compressed page may unfold without end
    m_reply = m_manager.get(request);
    m_reply->setReadBufferSize(RegistryRecord::kLargestPage + 1);
    connect(m_reply, &QNetworkReply::finished, this, [this, reply = m_reply.data()] { onFinished(reply); });
    // A page without end must not fill the memory; this one is too long to be read already.
    connect(m_reply, &QNetworkReply::readyRead, this, [reply = m_reply.data()] {
        if (reply->bytesAvailable() > RegistryRecord::kLargestPage)
            reply->abort();
    });
}

void RegistryLookup::drop()
{
    QNetworkReply *reply = m_reply;
    m_reply.clear();
    if (!reply)
        return;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

void RegistryLookup::onFinished(QNetworkReply *reply)
{
    m_reply.clear();
    reply->deleteLater();
    emit answered(reply);
}
