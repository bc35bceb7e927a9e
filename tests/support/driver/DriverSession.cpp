#include "support/driver/DriverSession.h"

#include "support/driver/DriverWords.h"
#include "support/driver/WidgetFinder.h"

#include <QApplication>
#include <QHash>
#include <QHostAddress>
#include <QJsonDocument>
#include <QWidget>

#include <cstdlib>

namespace {

QString text(const QJsonObject &request, const char *key)
{
    return request.value(QLatin1String(key)).toString();
}

/// The widget that the request names; nullptr without one.
QWidget *target(const QJsonObject &request)
{
    const QWidgetList found = WidgetFinder::named(text(request, "name"), text(request, "window"));
    return found.isEmpty() ? nullptr : found.first();
}

QString missing(const QJsonObject &request)
{
    return QStringLiteral("there is no widget \"%1\"").arg(text(request, "name"));
}

} // namespace

DriverSession::DriverSession(quint16 port, QObject *parent)
    : QObject(parent)
    , m_port(port)
{
    connect(&m_socket, &QTcpSocket::connected, this, &DriverSession::introduce);
    connect(&m_socket, &QTcpSocket::readyRead, this, &DriverSession::onReadyRead);
    const auto end = [] { std::_Exit(EXIT_FAILURE); };
    connect(&m_socket, &QTcpSocket::disconnected, this, end);
    connect(&m_socket, &QTcpSocket::errorOccurred, this, end);
    // The application object is not complete yet.
    QMetaObject::invokeMethod(this, &DriverSession::open, Qt::QueuedConnection);
}

DriverSession::~DriverSession()
{
    m_socket.disconnect(this);
}

void DriverSession::open()
{
    m_socket.connectToHost(QHostAddress::LocalHost, m_port);
}

void DriverSession::introduce()
{
    // Lines are small, and each is waited for.
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    send({{QStringLiteral("pid"), static_cast<double>(QCoreApplication::applicationPid())},
          {QStringLiteral("arguments"), QJsonArray::fromStringList(QCoreApplication::arguments())}});
}

void DriverSession::onReadyRead()
{
    while (m_socket.canReadLine())
        answer(m_socket.readLine());
    if (m_socket.bytesAvailable() > DriverWords::kMaxLine)
        m_socket.abort();
}

void DriverSession::answer(const QByteArray &line)
{
    static const QHash<QString, Handler> handlers{
        {QStringLiteral("windows"), onWindows},
        {QStringLiteral("widgets"), onWidgets},
        {QStringLiteral("read"), onRead},
        {QStringLiteral("focus"), onFocus},
        {QStringLiteral("click"), onClick},
        {QStringLiteral("answer"), onAnswer},
        {QStringLiteral("menu"), onMenu},
        {QStringLiteral("choose"), onChoose},
        {QStringLiteral("type"), onType},
        {QStringLiteral("key"), onKey},
        {QStringLiteral("screenshot"), onScreenshot},
        {QStringLiteral("front"), onFront},
    };
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    const Handler handler = handlers.value(text(request, "do"));
    const Reply reply = handler ? handler(request) : Reply{QStringLiteral("unknown request"), {}, {}};
    QJsonObject answer{{QStringLiteral("id"), request.value(QLatin1String("id"))}};
    if (reply.error.isEmpty())
        answer.insert(QStringLiteral("result"), reply.result);
    else
        answer.insert(QStringLiteral("error"), reply.error);
    send(answer);
    if (reply.begin)
        QMetaObject::invokeMethod(qApp, reply.begin, Qt::QueuedConnection);
}

void DriverSession::send(const QJsonObject &message)
{
    m_socket.write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n');
    m_socket.flush(); // the event loop may be about to block
}

DriverSession::Reply DriverSession::perform(const UserActions::Action &action)
{
    return {action.refusal, true, action.refusal.isEmpty() ? action.begin : nullptr};
}

DriverSession::Reply DriverSession::onWindows(const QJsonObject &)
{
    return {{}, WidgetFinder::windows(), {}};
}

DriverSession::Reply DriverSession::onFront(const QJsonObject &)
{
    const QWidget *front = WidgetFinder::frontWindow();
    return {{}, front ? WidgetFinder::describedWindow(*front) : QJsonObject(), {}};
}

DriverSession::Reply DriverSession::onWidgets(const QJsonObject &request)
{
    QJsonArray all;
    const QWidgetList found = WidgetFinder::named(text(request, "name"), text(request, "window"));
    for (const QWidget *widget : found)
        all.append(WidgetFinder::described(*widget));
    return {{}, all, {}};
}

DriverSession::Reply DriverSession::onRead(const QJsonObject &request)
{
    const QWidget *widget = target(request);
    if (!widget)
        return {missing(request), {}, {}};
    const QString property = text(request, "property");
    const QJsonValue value = WidgetFinder::property(*widget, property);
    if (value.isUndefined())
        return {QStringLiteral("\"%1\" has no property \"%2\"").arg(widget->objectName(), property), {}, {}};
    return {{}, value, {}};
}

DriverSession::Reply DriverSession::onFocus(const QJsonObject &)
{
    const QWidget *focused = UserActions::focusWidget();
    return {{}, focused ? WidgetFinder::described(*focused) : QJsonObject(), {}};
}

DriverSession::Reply DriverSession::onClick(const QJsonObject &request)
{
    QWidget *widget = target(request);
    return widget ? perform(UserActions::click(widget)) : Reply{missing(request), {}, {}};
}

DriverSession::Reply DriverSession::onAnswer(const QJsonObject &request)
{
    return perform(UserActions::answer(text(request, "button")));
}

DriverSession::Reply DriverSession::onMenu(const QJsonObject &)
{
    return perform(UserActions::contextMenu());
}

DriverSession::Reply DriverSession::onChoose(const QJsonObject &request)
{
    return perform(UserActions::choose(text(request, "entry")));
}

DriverSession::Reply DriverSession::onType(const QJsonObject &request)
{
    return perform(UserActions::type(text(request, "text")));
}

DriverSession::Reply DriverSession::onKey(const QJsonObject &request)
{
    return perform(UserActions::key(text(request, "key")));
}

DriverSession::Reply DriverSession::onScreenshot(const QJsonObject &request)
{
    return {UserActions::screenshot(text(request, "window"), text(request, "path")), true, {}};
}
