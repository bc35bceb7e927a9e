#pragma once

#include "support/AppDriver.h"

#include <QPair>
#include <QString>

#include <chrono>
#include <functional>

class CompanionServer;

/// The wizard's buttons by the names that Qt gives them.
namespace WizardButton {

inline const QString kBack = QStringLiteral("__qt__passive_wizardbutton0");
inline const QString kNext = QStringLiteral("__qt__passive_wizardbutton1");
inline const QString kFinish = QStringLiteral("qt_wizard_finish");
inline const QString kCancel = QStringLiteral("qt_wizard_cancel");

} // namespace WizardButton

/// What somebody who sets up a gateway enters; an empty text leaves its field as it is.
struct GatewayEntries
{
    QString server;
    quint16 port = 8080;
    QString room;
    QString callsign;
    QString gatewayName;
    QString frequency;
    QString picCallsign;
    QString email;
    QString whatsapp;
    QString password;

    /// The text fields by object name, as they read once everything is typed.
    [[nodiscard]] QList<QPair<QString, QString>> fields() const;
};

/// A gateway that a registry with its callsign and that of its responsible person, YB0ABC, lets register.
[[nodiscard]] GatewayEntries exampleGateway(const CompanionServer &server, const QString &room, const QString &callsign,
                                            const QString &password);

/// Somebody who goes through the setup wizard page by page, with the keyboard alone or with the mouse as well. Each
/// page takes the wizard from being shown to the next page; false, after printing why, when it does not get there.
class WizardUser final
{
public:
    enum class Hand { Keyboard, Mouse };

    WizardUser(AppDriver &driver, Hand hand);

    /// Rests so long after each key.
    void setPace(std::chrono::milliseconds pace) { m_pace = pace; }
    /// Called with a page's name when it is filled; false ends the walk.
    void onFilled(const std::function<bool(const QString &)> &look) { m_look = look; }

    [[nodiscard]] bool passWelcome();
    [[nodiscard]] bool acceptTerms();
    [[nodiscard]] bool enterServer(const GatewayEntries &entries);
    /// Waits for the registry's approval.
    [[nodiscard]] bool enterGateway(const GatewayEntries &entries);
    [[nodiscard]] bool enterPic(const GatewayEntries &entries);
    [[nodiscard]] bool enterContact(const GatewayEntries &entries);
    /// The last page, which stays.
    [[nodiscard]] bool enterPassword(const GatewayEntries &entries);
    /// All of the above.
    [[nodiscard]] bool fillIn(const GatewayEntries &entries);
    /// "Daftar".
    [[nodiscard]] bool submit();

    /// Replaces what the field holds.
    [[nodiscard]] bool enter(const QString &field, const QString &text);
    [[nodiscard]] bool press(const QString &button);
    /// Next or Back, until the page with this widget is shown.
    [[nodiscard]] bool turnTo(const QString &button, const QString &widget);
    /// Every text field reads as entered, whether its page is shown or not.
    [[nodiscard]] bool holds(const GatewayEntries &entries);

private:
    [[nodiscard]] bool reach(const QString &widget);
    [[nodiscard]] bool turnPage(const QString &name, const QString &next);
    [[nodiscard]] bool look(const QString &name) const { return !m_look || m_look(name); }

    AppDriver &m_driver;
    Hand m_hand;
    std::chrono::milliseconds m_pace{0};
    std::function<bool(const QString &)> m_look;
};
