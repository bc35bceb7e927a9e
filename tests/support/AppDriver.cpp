#include "support/AppDriver.h"

#include "support/Strays.h"
#include "support/Wait.h"
#include "support/driver/DriverWords.h"

#include <QDebug>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr int kMaxTabs = 60;

QJsonObject request(const char *what, const QJsonObject &more = {})
{
    QJsonObject whole = more;
    whole.insert(QStringLiteral("do"), QString::fromLatin1(what));
    return whole;
}

QString toText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonObject clickRequest(const QString &widget)
{
    return request("click", {{QStringLiteral("name"), widget}});
}

QJsonObject chooseRequest(const QString &entry)
{
    return request("choose", {{QStringLiteral("entry"), entry}});
}

QJsonObject keyRequest(const QString &name)
{
    return request("key", {{QStringLiteral("key"), name}});
}

QJsonObject typeRequest(const QString &text)
{
    return request("type", {{QStringLiteral("text"), text}});
}

} // namespace

AppDriver::AppDriver()
{
    Strays::adopt();
}

void AppDriver::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(EVOX_DRIVER_PLUGINS));
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QString::fromLatin1(DriverWords::kPlugin));
    environment.insert(QString::fromLatin1(DriverWords::kPortVariable), QString::number(m_line.port()));
}

bool AppDriver::waitForProgram(int number, std::chrono::milliseconds timeout)
{
    return expect(
        QStringLiteral("program number %1").arg(number), [this, number] { return m_line.programs() >= number; },
        timeout);
}

bool AppDriver::waitForWindow(const QString &title, std::chrono::milliseconds timeout)
{
    const auto isOpen = [this, &title] {
        const QJsonArray all = windows();
        return std::any_of(all.begin(), all.end(), [&title](const QJsonValue &window) {
            return window[QLatin1String("title")].toString() == title;
        });
    };
    return expect(QStringLiteral("a window \"%1\"").arg(title), isOpen, timeout);
}

bool AppDriver::waitForBox(const QString &title, const QString &text, std::chrono::milliseconds timeout)
{
    const auto isInFront = [this, &title, &text] {
        const QJsonObject front = m_line.ask(request("front")).value(QLatin1String("result")).toObject();
        return front.contains(QLatin1String("buttons")) && front.value(QLatin1String("title")) == title &&
               front.value(QLatin1String("text")) == text;
    };
    return expect(QStringLiteral("a box \"%1\" in front with the text \"%2\"").arg(title, text), isInFront, timeout);
}

bool AppDriver::answer(const QString &button)
{
    return insist(request("answer", {{QStringLiteral("button"), button}}));
}

QJsonValue AppDriver::property(const QString &widget, const QString &property)
{
    return m_line.ask(request("read", {{QStringLiteral("name"), widget}, {QStringLiteral("property"), property}}))
        .value(QLatin1String("result"));
}

bool AppDriver::waitForProperty(const QString &widget, const QString &property, const QJsonValue &value,
                                std::chrono::milliseconds timeout)
{
    QJsonValue last;
    const auto holds = [this, &last, &widget, &property, &value] {
        last = this->property(widget, property);
        return last == value;
    };
    if (expect(QStringLiteral("\"%1\" of \"%2\" to be ").arg(property, widget) + value.toVariant().toString(), holds,
               timeout))
        return true;
    qWarning().noquote() << "   it is" << last.toVariant().toString();
    return false;
}

QString AppDriver::focus()
{
    return m_line.ask(request("focus"))
        .value(QLatin1String("result"))
        .toObject()
        .value(QLatin1String("name"))
        .toString();
}

bool AppDriver::click(const QString &widget)
{
    return insist(clickRequest(widget));
}

bool AppDriver::openMenu()
{
    return insist(request("menu"));
}

bool AppDriver::choose(const QString &entry)
{
    return insist(chooseRequest(entry));
}

bool AppDriver::type(const QString &text)
{
    return insist(typeRequest(text));
}

bool AppDriver::key(const QString &name)
{
    return insist(keyRequest(name));
}

bool AppDriver::tabTo(const QString &widget)
{
    QStringList visited;
    while (focus() != widget) {
        if (visited.size() == kMaxTabs || !key(QStringLiteral("Tab"))) {
            qWarning().noquote() << "Tab does not lead to" << widget << "but to" << visited;
            return false;
        }
        visited.append(focus());
    }
    return true;
}

bool AppDriver::screenshot(const QString &path)
{
    return insist(request("screenshot", {{QStringLiteral("path"), path}})) && QFile::exists(path);
}

QString AppDriver::tryClick(const QString &widget)
{
    return attempt(clickRequest(widget));
}

QString AppDriver::tryChoose(const QString &entry)
{
    return attempt(chooseRequest(entry));
}

QString AppDriver::tryKey(const QString &name)
{
    return attempt(keyRequest(name));
}

QString AppDriver::tryType(const QString &text)
{
    return attempt(typeRequest(text));
}

QString AppDriver::attempt(const QJsonObject &request)
{
    return m_line.ask(request).value(QLatin1String("error")).toString();
}

bool AppDriver::insist(const QJsonObject &request)
{
    QString refusal;
    const auto isDone = [this, &refusal, &request] {
        refusal = attempt(request);
        return refusal.isEmpty();
    };
    if (expect(toText(request), isDone))
        return true;
    qWarning().noquote() << "   refused:" << refusal;
    return false;
}

QJsonArray AppDriver::windows()
{
    return m_line.ask(request("windows")).value(QLatin1String("result")).toArray();
}

bool AppDriver::expect(const QString &what, const std::function<bool()> &condition, std::chrono::milliseconds timeout)
{
    if (waitFor(condition, timeout))
        return true;
    if (wasInterrupted())
        return false;
    qWarning().noquote() << "expected" << what;
    const QJsonArray open = windows();
    if (open.isEmpty())
        qWarning() << "   no window is open";
    for (const QJsonValue &window : open)
        qWarning().noquote() << "   open:" << toText(window.toObject());
    return false;
}
