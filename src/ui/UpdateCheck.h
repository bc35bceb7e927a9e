#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

class Prompts;
class QNetworkAccessManager;
class QNetworkReply;
struct UpdateDocument;

/// Asks the project's web site, when the operator wants to know, whether a newer version is out, and sends the browser
/// to its download. It checks nothing by itself. Every check ends with one box.
class UpdateCheck final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UpdateCheck)

public:
    using OpenBrowser = std::function<void(const QUrl &)>;

    /// @p webUrl is the site's base address, scheme and host without a trailing slash. @p openBrowser is given http
    /// and https addresses only. The prompts must live longer than this.
    UpdateCheck(const QString &webUrl, Prompts &prompts, OpenBrowser openBrowser, QObject *parent = nullptr);
    ~UpdateCheck() override;

    /// From check() until the operator has closed its box.
    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    /// How long the site may keep silent before a check fails; 30 s unless set.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

public slots:
    /// Starts a check. Does nothing while one runs.
    void check();

private:
    [[nodiscard]] QNetworkAccessManager &network();
    void onFinished();
    void tellError(const QString &reason);
    void judge(const UpdateDocument &document);
    [[nodiscard]] bool isWanted(const UpdateDocument &document);

    QString m_webUrl;
    Prompts &m_prompts;
    OpenBrowser m_openBrowser;
    std::chrono::milliseconds m_patience;
    QNetworkAccessManager *m_network = nullptr; ///< made by the first check
    QPointer<QNetworkReply> m_reply;
    bool m_isRunning = false;
};
