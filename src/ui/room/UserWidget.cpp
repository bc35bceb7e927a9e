#include "ui/room/UserWidget.h"

#include "ui/ElidedLabel.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int kLeastHeight = 32;
constexpr int kMostHeight = 40;
constexpr int kStateLabelSide = 20;
constexpr int kMuteLabelSide = 18;
constexpr int kStatePixmapSide = 22; // a little more than its label: the drawings have a margin of their own
constexpr int kMutePixmapSide = 20;
constexpr int kLeastNameWidth = 120;

struct Look
{
    const char *icon;
    const char *toolTip;
};

/// How a flag looks: {true, false}.
struct Looks
{
    Look on;
    Look off;
};

constexpr Looks kApproval{{":/icons/approve", "Approved"}, {":/icons/revoke", "Not Approved"}};
constexpr Looks kTransmit{{":/icons/tx", "Transmitting"}, {":/icons/rx", "Receiving"}};
constexpr Looks kMicrophone{{":/icons/mic_off", "Mic Muted"}, {":/icons/mic_on", "Mic Active"}};
constexpr Looks kSpeaker{{":/icons/speaker_off", "Speaker Muted"}, {":/icons/speaker_on", "Speaker Active"}};

QLabel *addIcon(QHBoxLayout *layout, const char *objectName, int side)
{
    auto *label = new QLabel(layout->parentWidget());
    label->setObjectName(QLatin1String(objectName));
    label->setFixedSize(side, side);
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(label, 0, Qt::AlignVCenter);
    return label;
}

void showFlag(QLabel *label, bool flag, const Looks &looks, int pixmapSide)
{
    const Look &look = flag ? looks.on : looks.off;
    const QString toolTip = QLatin1String(look.toolTip);
    const qreal ratio = label->devicePixelRatioF();
    const QPixmap shown = label->pixmap(Qt::ReturnByValue);
    if (!shown.isNull() && label->toolTip() == toolTip && qFuzzyCompare(shown.devicePixelRatio(), ratio))
        return;
    label->setPixmap(Theme::icon(QLatin1String(look.icon), pixmapSide, ratio));
    label->setToolTip(toolTip);
    label->setAccessibleName(toolTip);
}

} // namespace

UserWidget::UserWidget(const QString &displayName, const QString &callsign, int userId, bool isSelf, QWidget *parent)
    : QWidget(parent)
    , m_displayName(displayName)
    , m_callsign(callsign)
    , m_userId(userId)
    , m_isSelf(isSelf)
{
    setAttribute(Qt::WA_StyledBackground); // else only the labels would take the ground of a transmitting row
    setMinimumHeight(kLeastHeight);
    setMaximumHeight(kMostHeight);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->setSpacing(6);
    m_approvalIcon = addIcon(layout, "approvalIcon", kStateLabelSide);
    m_transmitIcon = addIcon(layout, "transmitIcon", kStateLabelSide);
    m_nameLabel = new ElidedLabel(this);
    m_nameLabel->setObjectName(QStringLiteral("nameLabel"));
    m_nameLabel->setMinimumWidth(kLeastNameWidth);
    m_nameLabel->setStyleSheet(QStringLiteral("font-size: 11px; padding: 1px 0;"));
    m_nameLabel->setText(nameText());
    layout->addWidget(m_nameLabel, 1);
    layout->addStretch();
    m_micIcon = addIcon(layout, "micIcon", kMuteLabelSide);
    m_speakerIcon = addIcon(layout, "speakerIcon", kMuteLabelSide);
    refresh();
}

QString UserWidget::nameText() const
{
    QString text = m_displayName;
    if (m_isSelf)
        text += QLatin1String(" (You)");
    if (!m_callsign.isEmpty() && m_callsign != m_displayName)
        text += QLatin1String("  [") + m_callsign + QLatin1Char(']');
    return ElidedLabel::oneLine(text);
}

void UserWidget::setFlag(bool Flags::*flag, bool value)
{
    if (m_flags.*flag == value) // most of a long list stays as it is from one over to the next
        return;
    m_flags.*flag = value;
    refresh();
}

void UserWidget::setApproved(bool approved)
{
    setFlag(&Flags::approved, approved);
}

void UserWidget::setTransmitting(bool transmitting)
{
    setFlag(&Flags::transmitting, transmitting);
}

void UserWidget::setMicMuted(bool muted)
{
    setFlag(&Flags::micMuted, muted);
}

void UserWidget::setSpeakerMuted(bool muted)
{
    setFlag(&Flags::speakerMuted, muted);
}

void UserWidget::refresh()
{
    showFlag(m_approvalIcon, m_flags.approved, kApproval, kStatePixmapSide);
    showFlag(m_transmitIcon, m_flags.transmitting, kTransmit, kStatePixmapSide);
    showFlag(m_micIcon, m_flags.micMuted, kMicrophone, kMutePixmapSide);
    showFlag(m_speakerIcon, m_flags.speakerMuted, kSpeaker, kMutePixmapSide);
    Theme::restyle(*this, m_flags.transmitting ? QStringLiteral("background-color: #FFEBEE;") : QString());
}

bool UserWidget::event(QEvent *event)
{
    if (event->type() == QEvent::ScreenChangeInternal) // dragged to a screen of another pixel ratio
        refresh();
    return QWidget::event(event);
}
