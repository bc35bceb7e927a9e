#include "SetupRig.h"

#include "support/Wait.h"

#include <QRadioButton>
#include <QTest>
#include <QTimer>

namespace {

constexpr std::chrono::milliseconds kAnswer{5000};

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

SetupRig::SetupRig(const QJsonObject &values)
    : config(values)
{
    endpoints = {q("radio.example"), {}, registry.url(), q("mail.example")};
    registry.list(q("YH0AB"), FakeRegistry::entry(q("KLUB"), q("JL. MERDEKA 1, BANDUNG"), q("DESEMBER 2099")));
    registry.list(q("YB0AA"), FakeRegistry::entry(q("ANI SITI"), q("BANDUNG")));
}

void SetupRig::open()
{
    m_own = std::make_unique<SetupWizard>(endpoints, prompts);
    drive(m_own.get());
    m_wizard->show();
}

void SetupRig::drive(SetupWizard *wizard)
{
    m_wizard = wizard;
    find<QTimer>("debounceTimer")->setInterval(0);
}

QString SetupRig::text(const char *name) const
{
    const auto *widget = find<QWidget>(name);
    return widget ? widget->property("text").toString() : q("no widget ") + q(name);
}

void SetupRig::type(const char *name, const QString &text) const
{
    auto *widget = find<QWidget>(name);
    widget->setProperty("text", QString());
    if (text == QString::fromLatin1(text.toLatin1()))
        QTest::keyClicks(widget, text);
    else
        widget->setProperty("text", text); // there are no such keys
}

bool SetupRig::fillIn(int page) const
{
    switch (page) {
    case SetupWizard::Eula: find<QRadioButton>("acceptRadio")->click(); break;
    case SetupWizard::Gateway:
        if (text("gatewayNameEdit").isEmpty())
            type("gatewayNameEdit", q("RF-GW SINAR Bandung"));
        if (text("callsignEdit").isEmpty())
            type("callsignEdit", q("YH0AB"));
        break;
    case SetupWizard::Pic:
        if (text("picCallsignEdit").isEmpty())
            type("picCallsignEdit", q("YB0AA"));
        break;
    case SetupWizard::Password:
        if (text("passwordEdit").isEmpty())
            type("passwordEdit", q("rahasia"));
        break;
    default: break;
    }
    const int last = SetupWizard::Password;
    const auto *onwards = m_wizard->button(page == last ? QWizard::FinishButton : QWizard::NextButton);
    return waitFor([onwards] { return onwards->isEnabled(); }, kAnswer);
}

bool SetupRig::goTo(SetupWizard::Page page)
{
    while (m_wizard->currentId() < page) {
        const int before = m_wizard->currentId();
        if (!fillIn(before))
            return false;
        m_wizard->next();
        if (m_wizard->currentId() == before)
            return false;
    }
    return m_wizard->currentId() == page;
}
