#include "ui/UpdateCheck.h"

#include "app/Product.h"
#include "gateway/UpdateDocument.h"
#include "ui/Prompts.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSysInfo>

#include <utility>

namespace {

constexpr std::chrono::milliseconds kPatience{30000};
constexpr int kLongestReason = 500; // characters; the server's own words are part of it

bool isWebAddress(const QUrl &address)
{
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == QLatin1String("https") || address.scheme() == QLatin1String("http"));
}

} // namespace

UpdateCheck::UpdateCheck(const QString &webUrl, Prompts &prompts, OpenBrowser openBrowser, QObject *parent)
    : QObject(parent)
    , m_webUrl(webUrl)
    , m_prompts(prompts)
    , m_openBrowser(std::move(openBrowser))
    , m_patience(kPatience)
{
}

UpdateCheck::~UpdateCheck()
{
    if (m_reply)
        m_reply->disconnect(this);
}

QNetworkAccessManager &UpdateCheck::network()
{
    if (!m_network) {
        m_network = new QNetworkAccessManager(this);
        m_network->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    }
    return *m_network;
}

void UpdateCheck::check()
{
    if (m_isRunning)
        return;
    m_isRunning = true;
    QNetworkRequest request(QUrl(m_webUrl + QLatin1String("/update/")));
    request.setTransferTimeout(static_cast<int>(m_patience.count()));
    request.setRawHeader("Accept-Encoding", "identity"); // nothing that grows when it is unpacked
    m_reply = network().get(request);
    m_reply->setReadBufferSize(UpdateDocument::kLargest + 1);
    connect(m_reply, &QNetworkReply::finished, this, &UpdateCheck::onFinished);
    // A document without end must not fill the memory; this one is too long to be read already.
    connect(m_reply, &QNetworkReply::readyRead, m_reply, [reply = m_reply.data()] {
        if (reply->bytesAvailable() > UpdateDocument::kLargest)
            reply->abort();
    });
}

void UpdateCheck::onFinished()
{
    QNetworkReply *reply = m_reply;
    m_reply.clear();
    reply->deleteLater();
    const QPointer<UpdateCheck> self(this);
    if (reply->error() != QNetworkReply::NoError)
        tellError(reply->errorString());
    else
        judge(UpdateDocument::read(reply->readAll()));
    if (self)
        m_isRunning = false;
}

void UpdateCheck::tellError(const QString &reason)
{
    m_prompts.warning(QStringLiteral("Update Error"),
                      QLatin1String("Gagal memeriksa update.\n") + reason.left(kLongestReason));
}

void UpdateCheck::judge(const UpdateDocument &document)
{
    if (!document.isNewerThan(Product::version())) {
        m_prompts.information(QStringLiteral("Up to Date"),
                              QLatin1String("Anda sudah menggunakan versi terbaru!\n\nVersi: ") + Product::version() +
                                  QLatin1String("\nBuild: ") + Product::build());
        return;
    }
    const QUrl address = document.downloadAddress(m_webUrl, QSysInfo::currentCpuArchitecture());
    const OpenBrowser openBrowser = m_openBrowser; // this may be gone once the operator has answered
    if (isWanted(document) && isWebAddress(address))
        openBrowser(address);
}

bool UpdateCheck::isWanted(const UpdateDocument &document)
{
    // Put together, not filled in: a text of the document may contain a "%2".
    return m_prompts.propose(QStringLiteral("Update Tersedia!"),
                             QLatin1String("<h3>e-VOX SINAR v") + document.version.toHtmlEscaped() +
                                 QLatin1String(" tersedia!</h3>"),
                             QLatin1String("<b>Build:</b> ") + document.buildDate.toHtmlEscaped() +
                                 QLatin1String("\n\n<b>Perubahan:</b>\n") + document.changeText().toHtmlEscaped() +
                                 QLatin1String("\n\nDownload update sekarang?"),
                             QStringLiteral("Download"), QStringLiteral("Nanti"));
}
