#include "ui/account/EditProfileDialog.h"

#include "ui/ElidedLabel.h"
#include "ui/account/AccountFields.h"
#include "ui/account/ReadoutDialog.h"
#include "ui/setup/InputRules.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QVariant>

namespace {

constexpr int kLeastWidth = 420;  // logical pixels of the form
constexpr int kLeastHeight = 120; // the rest scrolls
constexpr double kScreenShare = 0.9;

QLabel *sectionHeading(const char *name, const QString &text)
{
    auto *label = new QLabel(text);
    label->setObjectName(QLatin1String(name));
    label->setStyleSheet(QStringLiteral("font-weight: bold; padding-top: 8px;"));
    return label;
}

QLabel *readOnly(const char *name, const QString &text)
{
    auto *label = new ElidedLabel;
    label->setObjectName(QLatin1String(name));
    label->setText(text);
    return label;
}

} // namespace

EditProfileDialog::EditProfileDialog(const QVariantMap &record, QWidget *parent)
    : QDialog(parent)
    , m_gatewayName(AccountFields::sendable(ReadoutDialog::textOf(record, "gateway_name", nullptr, "")))
{
    setObjectName(QStringLiteral("editProfileDialog"));
    setWindowTitle(QStringLiteral("Edit Profile - ") + ReadoutDialog::textOf(record, "callsign"));
    createFields(record);
    layOut(record);
    // Left to itself, a window begins with two thirds of the screen's height at most.
    ensurePolished();
    resize(sizeHint().boundedTo(screen()->availableSize() * kScreenShare));
    m_frequency->setFocus();
}

void EditProfileDialog::createFields(const QVariantMap &record)
{
    const auto edit = [this, &record](const char *name, int longest, const char *key, const char *otherKey = nullptr) {
        return AccountFields::makeEdit(QLatin1String(name), longest, ReadoutDialog::textOf(record, key, otherKey, ""),
                                       this);
    };
    m_frequency = edit("frequencyEdit", InputRules::kLongestNumber, "frequency");
    m_location = edit("locationEdit", InputRules::kLongestText, "location");
    m_picName = edit("picNameEdit", InputRules::kLongestText, "name", "responsible_name");
    m_picCallsign = edit("picCallsignEdit", InputRules::kLongestText, "responsible_callsign");
    m_email = edit("emailEdit", InputRules::kLongestText, "email");
    m_whatsapp = edit("whatsappEdit", InputRules::kLongestNumber, "whatsapp");
}

void EditProfileDialog::fillForm(QFormLayout &form, const QVariantMap &record)
{
    QLabel *callsign = readOnly("callsignLabel", ReadoutDialog::textOf(record, "callsign"));
    callsign->setStyleSheet(QStringLiteral("font-weight: bold; font-size: 14px; color: #2196F3;"));
    const QString gateway = m_gatewayName.isEmpty() ? QString::fromLatin1(ReadoutDialog::kMissing) : m_gatewayName;
    form.addRow(QStringLiteral("Callsign Gateway:"), callsign);
    form.addRow(QStringLiteral("Nama Gateway:"), readOnly("gatewayNameLabel", gateway));
    form.addRow(QStringLiteral("Frekuensi:"), m_frequency);
    form.addRow(QStringLiteral("Lokasi:"), m_location);
    form.addRow(sectionHeading("picHeading", QStringLiteral("PENANGGUNG JAWAB (PIC)")));
    form.addRow(QStringLiteral("Nama PIC:"), m_picName);
    form.addRow(QStringLiteral("Callsign PIC:"), m_picCallsign);
    form.addRow(sectionHeading("contactHeading", QStringLiteral("KONTAK")));
    form.addRow(QStringLiteral("Email:"), m_email);
    form.addRow(QStringLiteral("WhatsApp:"), m_whatsapp);
}

void EditProfileDialog::layOut(const QVariantMap &record)
{
    auto *page = new QWidget;
    fillForm(*new QFormLayout(page), record);
    auto *area = new QScrollArea(this); // the form is higher than a small screen
    area->setObjectName(QStringLiteral("formArea"));
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // the fields themselves are reached
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(page);
    area->setMinimumSize(kLeastWidth, kLeastHeight);

    auto *save = new QPushButton(QStringLiteral("Simpan"), this);
    save->setObjectName(QStringLiteral("saveButton"));
    save->setProperty("meaning", QStringLiteral("good"));
    save->setDefault(true);
    connect(save, &QPushButton::clicked, this, &QDialog::accept);
    auto *cancel = new QPushButton(QStringLiteral("Batal"), this);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(area, 1);
    layout->addLayout(buttons);
}

Commands::OwnProfile EditProfileDialog::profile() const
{
    Commands::OwnProfile profile;
    profile.picName = m_picName->text();
    profile.picCallsign = m_picCallsign->text();
    profile.gatewayName = m_gatewayName;
    profile.frequency = m_frequency->text();
    profile.location = m_location->text();
    profile.email = m_email->text();
    profile.whatsapp = m_whatsapp->text();
    return profile;
}
