#include "e2e/WizardUser.h"

#include "support/CompanionServer.h"
#include "support/Wait.h"

#include <algorithm>

QList<QPair<QString, QString>> GatewayEntries::fields() const
{
    return {{QStringLiteral("serverAddressEdit"), server}, {QStringLiteral("defaultRoomEdit"), room},
            {QStringLiteral("callsignEdit"), callsign},    {QStringLiteral("gatewayNameEdit"), gatewayName},
            {QStringLiteral("frequencyEdit"), frequency},  {QStringLiteral("picCallsignEdit"), picCallsign},
            {QStringLiteral("emailEdit"), email},          {QStringLiteral("whatsappEdit"), whatsapp},
            {QStringLiteral("passwordEdit"), password}};
}

GatewayEntries exampleGateway(const CompanionServer &server, const QString &room, const QString &callsign,
                              const QString &password)
{
    GatewayEntries entries;
    entries.server = server.host();
    entries.port = server.port();
    entries.room = room;
    entries.callsign = callsign;
    entries.gatewayName = QStringLiteral("RF-GW SINAR Utama");
    entries.frequency = QStringLiteral("145.500 MHz");
    entries.picCallsign = QStringLiteral("YB0ABC");
    entries.email = QStringLiteral("gw@club.example");
    entries.whatsapp = QStringLiteral("08123456789");
    entries.password = password;
    return entries;
}

WizardUser::WizardUser(AppDriver &driver, Hand hand)
    : m_driver(driver)
    , m_hand(hand)
{
}

bool WizardUser::reach(const QString &widget)
{
    return m_hand == Hand::Keyboard ? m_driver.tabTo(widget) : m_driver.click(widget);
}

bool WizardUser::press(const QString &button)
{
    return reach(button) && (m_hand == Hand::Mouse || m_driver.key(QStringLiteral("Space")));
}

bool WizardUser::enter(const QString &field, const QString &text)
{
    if (text.isEmpty())
        return true;
    if (!reach(field) || !m_driver.key(QStringLiteral("Ctrl+A")))
        return false;
    if (m_pace.count() == 0)
        return m_driver.type(text);
    return std::all_of(text.begin(), text.end(), [this](QChar c) {
        (void)waitFor([] { return false; }, m_pace);
        return m_driver.type(QString(c));
    });
}

bool WizardUser::turnTo(const QString &button, const QString &widget)
{
    return m_driver.waitForProperty(button, QStringLiteral("enabled"), true) && press(button) &&
           m_driver.waitForProperty(widget, QStringLiteral("visible"), true);
}

bool WizardUser::turnPage(const QString &name, const QString &next)
{
    return look(name) && turnTo(WizardButton::kNext, next);
}

bool WizardUser::passWelcome()
{
    return m_driver.waitForWindow(QStringLiteral("eVOX SINAR - Setup Wizard")) &&
           turnPage(QStringLiteral("welcome"), QStringLiteral("acceptRadio"));
}

bool WizardUser::acceptTerms()
{
    return press(QStringLiteral("acceptRadio")) &&
           turnPage(QStringLiteral("terms"), QStringLiteral("serverAddressEdit"));
}

bool WizardUser::enterServer(const GatewayEntries &entries)
{
    return enter(QStringLiteral("serverAddressEdit"), entries.server) &&
           enter(QStringLiteral("serverPortSpin"), QString::number(entries.port)) &&
           enter(QStringLiteral("defaultRoomEdit"), entries.room) &&
           turnPage(QStringLiteral("server"), QStringLiteral("callsignEdit"));
}

bool WizardUser::enterGateway(const GatewayEntries &entries)
{
    return enter(QStringLiteral("callsignEdit"), entries.callsign) &&
           enter(QStringLiteral("gatewayNameEdit"), entries.gatewayName) &&
           enter(QStringLiteral("frequencyEdit"), entries.frequency) &&
           m_driver.waitForText(QStringLiteral("callsignStatusLabel"), QStringLiteral("Terverifikasi DJID")) &&
           turnPage(QStringLiteral("gateway"), QStringLiteral("picCallsignEdit"));
}

bool WizardUser::enterPic(const GatewayEntries &entries)
{
    return enter(QStringLiteral("picCallsignEdit"), entries.picCallsign) &&
           m_driver.waitForText(QStringLiteral("picStatusLabel"), QStringLiteral("Terverifikasi")) &&
           turnPage(QStringLiteral("pic"), QStringLiteral("emailEdit"));
}

bool WizardUser::enterContact(const GatewayEntries &entries)
{
    return enter(QStringLiteral("emailEdit"), entries.email) &&
           enter(QStringLiteral("whatsappEdit"), entries.whatsapp) &&
           turnPage(QStringLiteral("contact"), QStringLiteral("passwordEdit"));
}

bool WizardUser::enterPassword(const GatewayEntries &entries)
{
    return enter(QStringLiteral("passwordEdit"), entries.password) && look(QStringLiteral("password"));
}

bool WizardUser::fillIn(const GatewayEntries &entries)
{
    return passWelcome() && acceptTerms() && enterServer(entries) && enterGateway(entries) && enterPic(entries) &&
           enterContact(entries) && enterPassword(entries);
}

bool WizardUser::submit()
{
    return m_driver.waitForProperty(WizardButton::kFinish, QStringLiteral("enabled"), true) &&
           press(WizardButton::kFinish);
}

bool WizardUser::holds(const GatewayEntries &entries)
{
    const auto fields = entries.fields();
    return std::all_of(fields.begin(), fields.end(),
                       [this](const auto &field) { return m_driver.waitForText(field.first, field.second); }) &&
           m_driver.waitForProperty(QStringLiteral("serverPortSpin"), QStringLiteral("value"), entries.port);
}
