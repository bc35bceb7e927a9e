#include "ui/status/ControlPanel.h"

#include "ui/ElidedLabel.h"
#include "ui/Theme.h"
#include "ui/status/LevelMeter.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int kLogoHeight = 90;
constexpr int kLogoSide = 80;
constexpr int kUnitsPerKilo = 1000;
constexpr int kLeastWidth = 300;

QString orDash(const QString &value)
{
    return value.isEmpty() ? QStringLiteral("-") : ElidedLabel::oneLine(value);
}

/// "7 online (4 User, 2 GW, 1 Admin)"; kinds of which there are none are left out.
QString usersText(int total, int gateways, int admins)
{
    const qint64 users = qint64{total} - gateways - admins;
    QStringList kinds;
    if (users > 0)
        kinds += QStringLiteral("%1 User").arg(users);
    if (gateways > 0)
        kinds += QStringLiteral("%1 GW").arg(gateways);
    if (admins > 0)
        kinds += QStringLiteral("%1 Admin").arg(admins);
    QString text = QStringLiteral("%1 online").arg(total);
    if (!kinds.isEmpty())
        text += QStringLiteral(" (") + kinds.join(QStringLiteral(", ")) + QLatin1Char(')');
    return text;
}

QString notReadyReason(bool serialReady, bool inRoom)
{
    if (!serialReady && !inRoom)
        return QStringLiteral("No Serial + No Room");
    return serialReady ? QStringLiteral("No Room") : QStringLiteral("No Serial");
}

QString readinessStyle(bool ready)
{
    return QStringLiteral("color: %1; font-size: 11px; font-weight: bold;")
        .arg(QLatin1String(ready ? "#4CAF50" : "#F44336"));
}

QString receiveStyle()
{
    return QStringLiteral("padding: 8px; color: #666; font-size: 12px; font-weight: bold; background-color: #FAFAFA; "
                          "border-radius: 4px; margin-top: 5px;");
}

QString transmitStyle()
{
    return QStringLiteral("padding: 8px; color: #F44336; font-size: 12px; font-weight: bold; "
                          "background-color: #FFEBEE; border-radius: 4px; margin-top: 5px;");
}

} // namespace

ControlPanel::ControlPanel(QWidget *parent)
    : QWidget(parent)
{
    Theme::initResources();
    setMinimumWidth(kLeastWidth);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(4);
    layout->setContentsMargins(6, 4, 6, 4);
    addLogo(layout);
    addSeparator(layout);
    addServerFacts(layout);
    addSeparator(layout);
    addGatewayFacts(layout);
    addSeparator(layout);
    addMeters(layout);
    addSeparator(layout);
    addState(layout);
    layout->addStretch();
    applyTheme(false);
}

void ControlPanel::addLogo(QVBoxLayout *layout)
{
    auto *block = new QWidget(this);
    block->setObjectName(QStringLiteral("logoBlock"));
    block->setFixedHeight(kLogoHeight);
    auto *logo = new QLabel(block);
    logo->setObjectName(QStringLiteral("logo"));
    logo->setPixmap(Theme::icon(QStringLiteral(":/icons/logo_sinar"), kLogoSide, devicePixelRatioF()));
    auto *title = new QLabel(QStringLiteral("SINAR"), block);
    title->setObjectName(QStringLiteral("brand"));
    auto *row = new QHBoxLayout(block);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addStretch();
    row->addWidget(logo);
    row->addWidget(title);
    row->addStretch();
    layout->addWidget(block);
}

void ControlPanel::addServerFacts(QVBoxLayout *layout)
{
    addHeader(layout, QStringLiteral("SERVER INFO"), QStringLiteral("serverHeader"));
    m_serverInfo = addFacts(layout, QStringLiteral("serverInfo"));
    // The address is shown only until the first record, which has none.
    m_serverInfo->setText(QStringLiteral("Name     :  -\n"
                                         "Address  :  -:--\n"
                                         "Codec    :  Opus\n"
                                         "Quality  :  standard (32kbps, 48kHz)\n"
                                         "Encrypt  :  -\n"
                                         "Users    :  0 online\n"
                                         "Rooms    :  0 total"));
    m_ping = new QLabel(QStringLiteral("PING: -- ms"), this);
    m_ping->setObjectName(QStringLiteral("pingLabel"));
    layout->addWidget(m_ping);
}

void ControlPanel::addGatewayFacts(QVBoxLayout *layout)
{
    addHeader(layout, QStringLiteral("RF-GATEWAY INFO"), QStringLiteral("gatewayHeader"));
    m_gatewayInfo = addFacts(layout, QStringLiteral("gatewayInfo"));
    m_gatewayInfo->setText(QStringLiteral("Name     :  -\n"
                                          "Call     :  -\n"
                                          "Freq     :  -\n"
                                          "Loc      :  -\n"
                                          "PIC      :  -"));
}

void ControlPanel::addMeters(QVBoxLayout *layout)
{
    addHeader(layout, QStringLiteral("AUDIO LEVEL"), QStringLiteral("audioHeader"));
    const LevelMeter::Colors green{QColor(QStringLiteral("#2E7D32")), QColor(QStringLiteral("#43A047"))};
    const LevelMeter::Colors blue{QColor(QStringLiteral("#1565C0")), QColor(QStringLiteral("#1976D2"))};
    m_input = new LevelMeter(QStringLiteral("INPUT"), green, this);
    m_output = new LevelMeter(QStringLiteral("OUTPUT"), blue, this);
    m_input->setObjectName(QStringLiteral("inputMeter"));
    m_output->setObjectName(QStringLiteral("outputMeter"));
    layout->addWidget(m_input);
    layout->addWidget(m_output);
    connect(m_input, &LevelMeter::fellBack, this, &ControlPanel::resetInputLevel);
    connect(m_output, &LevelMeter::fellBack, this, &ControlPanel::resetOutputLevel);
}

void ControlPanel::addState(QVBoxLayout *layout)
{
    m_transmitIndicator = new QLabel(QStringLiteral("-- Waiting for COS Signal --"), this);
    m_transmitIndicator->setObjectName(QStringLiteral("transmitIndicator"));
    m_transmitIndicator->setAlignment(Qt::AlignCenter);
    Theme::restyle(*m_transmitIndicator, receiveStyle());
    layout->addWidget(m_transmitIndicator);
    m_readiness = new QLabel(QStringLiteral("Gateway -- Not Ready"), this);
    m_readiness->setObjectName(QStringLiteral("readiness"));
    m_readiness->setAlignment(Qt::AlignCenter);
    Theme::restyle(*m_readiness, readinessStyle(false));
    layout->addWidget(m_readiness);
}

void ControlPanel::addHeader(QVBoxLayout *layout, const QString &text, const QString &objectName)
{
    auto *header = new QLabel(text, this);
    header->setObjectName(objectName);
    layout->addWidget(header);
}

void ControlPanel::addSeparator(QVBoxLayout *layout)
{
    auto *line = new QFrame(this);
    line->setObjectName(QStringLiteral("separator"));
    line->setFixedHeight(1);
    line->setStyleSheet(QStringLiteral("background-color: #E0E0E0; border: none;"));
    layout->addWidget(line);
}

ElidedLabel *ControlPanel::addFacts(QVBoxLayout *layout, const QString &objectName)
{
    auto *label = new ElidedLabel(this);
    label->setObjectName(objectName);
    layout->addWidget(label);
    return label;
}

bool ControlPanel::isSerialReady() const
{
    return m_serialReady;
}

bool ControlPanel::isInRoom() const
{
    return m_inRoom;
}

int ControlPanel::inputLevel() const
{
    return m_input->level();
}

int ControlPanel::outputLevel() const
{
    return m_output->level();
}

void ControlPanel::setSerialReady(bool ready)
{
    m_serialReady = ready;
}

void ControlPanel::setInRoom(bool inRoom)
{
    m_inRoom = inRoom;
}

void ControlPanel::updateServerInfo(const QString &codec, const QString &preset, int bitrate, int sampleRate,
                                    const QString &encryption, int onlineTotal, int onlineGateways, int onlineAdmins,
                                    int totalRooms)
{
    // Filled in one go: a "%5" in a server's text must not be filled again.
    m_serverInfo->setText(QStringLiteral("Name     :  e-VOX SINAR\n"
                                         "Codec    :  %1\n"
                                         "Quality  :  %2 (%3kbps, %4kHz)\n"
                                         "Encrypt  :  %5\n"
                                         "Users    :  %6\n"
                                         "Rooms    :  %7 total")
                              .arg(ElidedLabel::oneLine(codec), ElidedLabel::oneLine(preset),
                                   QString::number(bitrate / kUnitsPerKilo),
                                   QString::number(sampleRate / kUnitsPerKilo), ElidedLabel::oneLine(encryption),
                                   usersText(onlineTotal, onlineGateways, onlineAdmins), QString::number(totalRooms)));
}

void ControlPanel::updateGatewayInfo(const QString &name, const QString &callsign, const QString &frequency,
                                     const QString &location, const QString &picName, const QString &picCallsign,
                                     const QString &whatsapp)
{
    QString text = QStringLiteral("Name     :  %1\n"
                                  "Call     :  %2\n"
                                  "Freq     :  %3\n"
                                  "Loc      :  %4\n"
                                  "PIC      :  %5 (%6)")
                       .arg(orDash(name), orDash(callsign), orDash(frequency), orDash(location), orDash(picName),
                            orDash(picCallsign));
    if (!whatsapp.isEmpty())
        text += QStringLiteral("\nWA       :  ") + ElidedLabel::oneLine(whatsapp);
    m_gatewayInfo->setText(text);
}

void ControlPanel::setPing(float latencyMs)
{
    m_ping->setText(Theme::pingText(latencyMs));
}

void ControlPanel::setInputLevel(int level)
{
    m_input->setLevel(level);
}

void ControlPanel::setOutputLevel(int level)
{
    m_output->setLevel(level);
}

void ControlPanel::setTransmitIndicator(bool transmitting)
{
    m_transmitIndicator->setText(transmitting ? QStringLiteral("TX") : QStringLiteral("RX"));
    Theme::restyle(*m_transmitIndicator, transmitting ? transmitStyle() : receiveStyle());
}

void ControlPanel::updateReadiness()
{
    const bool ready = m_serialReady && m_inRoom;
    m_readiness->setText(
        ready ? QStringLiteral("Gateway -- READY")
              : QStringLiteral("Gateway -- Not Ready (%1)").arg(notReadyReason(m_serialReady, m_inRoom)));
    Theme::restyle(*m_readiness, readinessStyle(ready));
}

void ControlPanel::applyTheme(bool dark)
{
    // Figures whose colours mean something stand on a dark ground in both themes, where all of those colours can be
    // read.
    Theme::restyle(
        *this,
        Theme::filled(
            QStringLiteral("QLabel#brand { color: @brand; font-size: 18px; font-weight: bold; } "
                           "QLabel#serverHeader { background-color: @server; } "
                           "QLabel#gatewayHeader { background-color: @gateway; } "
                           "QLabel#audioHeader { background-color: @audio; } "
                           "QLabel#serverHeader, QLabel#gatewayHeader, QLabel#audioHeader { color: @headerText; "
                           "font-weight: bold; padding: 4px 8px; border-radius: 4px; } "
                           "QLabel#serverInfo, QLabel#gatewayInfo { background-color: @readout; color: @readoutText; "
                           "font-family: Consolas, \"Courier New\", monospace; font-size: 11px; padding: 4px 8px; } "
                           "QLabel#pingLabel { background-color: @instrument; color: #E0E0E0; font-weight: bold; "
                           "font-family: Consolas, \"Courier New\", monospace; font-size: 11px; padding: 3px 8px; "
                           "border-radius: 4px; } "
                           "QLabel#readiness { background-color: @instrument; padding: 6px; border-radius: 4px; }"),
            dark));
    m_input->applyTheme(dark);
    m_output->applyTheme(dark);
}

void ControlPanel::resetInputLevel()
{
    m_input->reset();
}

void ControlPanel::resetOutputLevel()
{
    m_output->reset();
}
