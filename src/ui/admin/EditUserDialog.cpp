#include "ui/admin/EditUserDialog.h"

#include "ui/ElidedLabel.h"
#include "ui/Prompts.h"
#include "ui/admin/ShownText.h"
#include "ui/admin/ToldEdit.h"
#include "ui/admin/UserRecord.h"
#include "ui/setup/InputRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr int kLongestField = 200;   // characters that are typed; a text of the server may have more
constexpr int kShortestPassword = 4; // characters; shorter than what users may choose for themselves
constexpr int kDateLength = 10;      // of yyyy-MM-dd and dd/MM/yyyy; a time of day may follow
constexpr int kProposedYears = 5;    // of a permit that has no end yet
constexpr int kWidth = 840;
constexpr int kHeight = 520; // logical pixels; fits a screen of 600

/// Texts of the server go back to it: a line break in one would begin a command of its own.
QString lineOf(const QString &text)
{
    return InputRules::withoutQuotes(ElidedLabel::oneLine(text));
}

ToldEdit *addField(QFormLayout *form, const QString &label, const char *name, const QString &text)
{
    auto *edit = new ToldEdit(kLongestField);
    edit->setObjectName(QLatin1String(name));
    InputRules::refuseQuotes(*edit);
    edit->tell(lineOf(text));
    form->addRow(label, edit);
    return edit;
}

/// Invalid for a text that is no date.
QDate dateOf(const QString &text)
{
    const QString day = text.left(kDateLength);
    const QDate date = QDate::fromString(day, Qt::ISODate);
    return date.isValid() ? date : QDate::fromString(day, QStringLiteral("dd/MM/yyyy"));
}

QPushButton *button(const QString &text, const char *name)
{
    auto *result = new QPushButton(text);
    result->setObjectName(QLatin1String(name));
    result->setAutoDefault(false);
    return result;
}

} // namespace

EditUserDialog::EditUserDialog(const QVariantMap &user, Prompts &prompts, QWidget *parent)
    : QDialog(parent)
    , m_prompts(prompts)
    , m_userId(UserRecord::id(user))
    , m_callsign(shownText(UserRecord::callsign(user)))
{
    setObjectName(QStringLiteral("editUserDialog"));
    setWindowTitle(QStringLiteral("Edit User - ") + m_callsign);
    auto *area = new QScrollArea(this); // on a small screen the fields are scrolled
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(createFields(user));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(area);
    layout->addLayout(createButtons());
    resize(kWidth, kHeight);
    setUpTabOrder();
    m_picName->setFocus();
}

/// The permit's end stands in the left column, and comes after the information beside it all the same.
void EditUserDialog::setUpTabOrder()
{
    QWidget *previous = m_admin;
    for (QWidget *next : std::initializer_list<QWidget *>{m_gatewayName, m_frequency, m_location, m_email, m_whatsapp,
                                                          m_expires, m_expiry, m_password}) {
        setTabOrder(previous, next);
        previous = next;
    }
}

QWidget *EditUserDialog::createFields(const QVariantMap &user)
{
    auto *fields = new QWidget(this);
    auto *left = new QVBoxLayout;
    left->addWidget(createAccount(user));
    left->addWidget(createExpiry(user));
    left->addStretch();
    auto *right = new QVBoxLayout;
    right->addWidget(createInformation(user));
    right->addWidget(createPassword());
    right->addWidget(createDevice(user));
    right->addStretch();
    auto *columns = new QHBoxLayout(fields);
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    return fields;
}

QWidget *EditUserDialog::createAccount(const QVariantMap &user)
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    ToldEdit *name = addField(form, QStringLiteral("Name:"), "editNameEdit", UserRecord::name(user));
    name->setReadOnly(true); // the person's own; no command changes it
    m_picName = addField(form, QStringLiteral("PIC Name:"), "editPicNameEdit", UserRecord::picName(user));
    m_picCallsign =
        addField(form, QStringLiteral("PIC Callsign:"), "editPicCallsignEdit", UserRecord::picCallsign(user));
    m_status = new QComboBox(page);
    m_status->setObjectName(QStringLiteral("editStatusCombo"));
    for (const char *status : {"active", "pending", "suspended", "banned"})
        m_status->addItem(QLatin1String(status), QLatin1String(status));
    const QString status = lineOf(UserRecord::status(user));
    if (m_status->findData(status) < 0)
        m_status->addItem(shownText(status), status); // one that only the server knows is not changed unasked
    m_status->setCurrentIndex(m_status->findData(status));
    form->addRow(QStringLiteral("Status:"), m_status);
    m_approved = new QCheckBox(QStringLiteral("Approved for Transmit"), page);
    m_approved->setObjectName(QStringLiteral("editApprovedCheck"));
    m_approved->setChecked(UserRecord::isApproved(user));
    m_admin = new QCheckBox(QStringLiteral("Administrator"), page);
    m_admin->setObjectName(QStringLiteral("editAdminCheck"));
    m_admin->setChecked(UserRecord::isAdmin(user));
    form->addRow(QString(), m_approved);
    form->addRow(QString(), m_admin);
    return page;
}

QGroupBox *EditUserDialog::createInformation(const QVariantMap &user)
{
    auto *group = new QGroupBox(QStringLiteral("Information"));
    auto *form = new QFormLayout(group);
    m_gatewayName =
        addField(form, QStringLiteral("Gateway Name:"), "editGatewayNameEdit", UserRecord::gatewayName(user));
    m_frequency = addField(form, QStringLiteral("Frequency:"), "editFrequencyEdit", UserRecord::frequency(user));
    m_location = addField(form, QStringLiteral("Location:"), "editLocationEdit", UserRecord::location(user));
    m_email = addField(form, QStringLiteral("Email:"), "editEmailEdit", UserRecord::email(user));
    m_whatsapp = addField(form, QStringLiteral("WhatsApp:"), "editWhatsappEdit", UserRecord::whatsapp(user));
    return group;
}

QGroupBox *EditUserDialog::createExpiry(const QVariantMap &user)
{
    // Unchecked for an account without a date: giving it one would suspend it some day.
    m_expires = new QGroupBox(QStringLiteral("License Expiry (Ijin DJID)"));
    m_expires->setObjectName(QStringLiteral("editExpiryGroup"));
    m_expires->setCheckable(true);
    const QString told = lineOf(UserRecord::expiry(user));
    const QDate expiry = dateOf(told);
    m_unreadableExpiry = expiry.isValid() ? QString() : told;
    m_expires->setChecked(expiry.isValid());
    m_expiry = new QDateEdit(expiry.isValid() ? expiry : QDate::currentDate().addYears(kProposedYears));
    m_expiry->setObjectName(QStringLiteral("editExpiryDate"));
    m_expiry->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    m_expiry->setCalendarPopup(true);
    auto *note = new QLabel(QStringLiteral("Tanggal kadaluarsa ijin dari DJID.\n"
                                           "User otomatis disuspend jika melewati tanggal ini."));
    note->setObjectName(QStringLiteral("editExpiryNote"));
    note->setProperty("hint", true);
    note->setWordWrap(true);
    auto *form = new QFormLayout(m_expires);
    form->addRow(QStringLiteral("Expiry Date:"), m_expiry);
    if (!m_unreadableExpiry.isEmpty())
        form->addRow(createUnreadableExpiry());
    form->addRow(note);
    return m_expires;
}

/// Checking the group is the operator's decision, as is unchecking it again.
QLabel *EditUserDialog::createUnreadableExpiry()
{
    auto *hint = new QLabel(QLatin1String("Not readable as a date, kept as it is: ") + shownText(m_unreadableExpiry));
    hint->setObjectName(QStringLiteral("editUnreadableExpiry"));
    hint->setProperty("hint", true); // readable although the group is not checked
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    connect(m_expires, &QGroupBox::toggled, hint, [this, hint] {
        m_unreadableExpiry.clear();
        hint->hide();
    });
    return hint;
}

QGroupBox *EditUserDialog::createPassword()
{
    auto *group = new QGroupBox(QStringLiteral("Reset Password"));
    m_password = new QLineEdit(group);
    m_password->setObjectName(QStringLiteral("editPasswordEdit"));
    m_password->setAccessibleName(group->title());
    m_password->setPlaceholderText(QStringLiteral("Enter new password..."));
    m_password->setEchoMode(QLineEdit::PasswordEchoOnEdit); // read to be passed on, not to lie open
    m_password->setMaxLength(InputRules::kLongestPassword);
    InputRules::refuseQuotes(*m_password);
    QPushButton *reset = button(QStringLiteral("Reset Password"), "editResetPasswordButton");
    connect(reset, &QPushButton::clicked, this, &EditUserDialog::resetPassword);
    m_passwordStatus = new QLabel(group);
    m_passwordStatus->setObjectName(QStringLiteral("editPasswordStatus"));
    m_passwordStatus->setWordWrap(true);
    auto *row = new QHBoxLayout;
    row->addWidget(reset);
    row->addWidget(m_passwordStatus, 1);
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(m_password);
    layout->addLayout(row);
    return group;
}

QGroupBox *EditUserDialog::createDevice(const QVariantMap &user)
{
    auto *group = new QGroupBox(QStringLiteral("Device Binding"));
    m_device = new QLabel(QLatin1String("HWID: ") + UserRecord::deviceText(user), group);
    m_device->setObjectName(QStringLiteral("editDeviceLabel"));
    QPushButton *reset = button(QStringLiteral("Reset HWID (Allow New Device)"), "editResetHwidButton");
    connect(reset, &QPushButton::clicked, this, &EditUserDialog::resetDevice);
    auto *layout = new QHBoxLayout(group);
    layout->addWidget(m_device, 1);
    layout->addWidget(reset);
    return group;
}

QHBoxLayout *EditUserDialog::createButtons()
{
    QPushButton *saveButton = button(QStringLiteral("Save Changes"), "editSaveButton");
    saveButton->setProperty("meaning", QStringLiteral("good"));
    connect(saveButton, &QPushButton::clicked, this, &EditUserDialog::save);
    QPushButton *cancel = button(QStringLiteral("Cancel"), "editCancelButton");
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(saveButton);
    row->addWidget(cancel);
    return row;
}

Commands::Account EditUserDialog::account() const
{
    Commands::Account account;
    account.picName = m_picName->value();
    account.picCallsign = m_picCallsign->value();
    account.status = m_status->currentData().toString();
    account.gatewayName = m_gatewayName->value();
    account.frequency = m_frequency->value();
    account.location = m_location->value();
    account.email = m_email->value();
    account.whatsapp = m_whatsapp->value();
    account.approved = m_approved->isChecked();
    account.admin = m_admin->isChecked();
    account.permitExpiry =
        m_expires->isChecked() ? m_expiry->date().toString(QStringLiteral("yyyy-MM-dd")) : m_unreadableExpiry;
    return account;
}

void EditUserDialog::resetPassword()
{
    const QString password = ElidedLabel::oneLine(m_password->text());
    if (password.isEmpty()) {
        tellPassword(QStringLiteral("Password cannot be empty!"), false);
    } else if (password.size() < kShortestPassword) {
        tellPassword(QStringLiteral("Password minimum 4 characters!"), false);
    } else {
        tellPassword(QStringLiteral("Password reset sent!"), true);
        m_password->clear();
        emit commandRequested(Commands::resetPassword(m_userId, password));
    }
}

void EditUserDialog::tellPassword(const QString &text, bool isGood)
{
    m_passwordStatus->setStyleSheet(isGood ? QStringLiteral("color: #4CAF50; font-weight: bold;")
                                           : QStringLiteral("color: #F44336; font-weight: bold;"));
    m_passwordStatus->setText(text);
}

void EditUserDialog::resetDevice()
{
    const QPointer<EditUserDialog> self(this);
    const bool confirmed = m_prompts.confirm(QStringLiteral("Reset HWID"),
                                             QLatin1String("Reset HWID for ") + m_callsign +
                                                 QLatin1String("?\nThis will allow login from a new device."));
    if (!confirmed || !self)
        return;
    m_device->setText(QStringLiteral("HWID: Reset Done"));
    emit commandRequested(Commands::resetDevice(m_userId));
}

void EditUserDialog::save()
{
    const QPointer<EditUserDialog> self(this);
    emit commandRequested(Commands::updateUser(m_userId, account()));
    if (self)
        emit refreshRequested();
    if (self)
        m_prompts.information(QStringLiteral("Success"), QStringLiteral("User updated successfully!"));
    if (self)
        accept();
}
