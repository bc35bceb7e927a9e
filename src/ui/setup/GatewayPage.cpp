#include "ui/setup/GatewayPage.h"

#include "gateway/RegistryRecord.h"
#include "ui/Prompts.h"
#include "ui/setup/AddressEdit.h"
#include "ui/setup/GatewayData.h"
#include "ui/setup/InputRules.h"
#include "ui/setup/LookupStatus.h"
#include "ui/setup/RegistryLookup.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kDebounce{800};
constexpr int kLongestCallsign = 10;
constexpr int kShortestChecked = 4; ///< a shorter text is still being typed

QLineEdit *textField(const char *objectName, const QString &text, const QString &placeholder, QWidget *parent)
{
    auto *edit = new QLineEdit(InputRules::withoutQuotes(text), parent);
    edit->setObjectName(QLatin1String(objectName));
    edit->setMaxLength(InputRules::kLongestText);
    edit->setPlaceholderText(placeholder);
    InputRules::refuseQuotes(*edit);
    return edit;
}

} // namespace

GatewayPage::GatewayPage(const GatewayData &proposal, const QString &registryUrl, Prompts &prompts, QWidget *parent)
    : QWizardPage(parent)
    , m_prompts(prompts)
    , m_lookup(new RegistryLookup(registryUrl, this))
    , m_debounce(new QTimer(this))
{
    setTitle(QStringLiteral("Konfigurasi RF Gateway"));
    setSubTitle(QStringLiteral("Informasi identitas gateway Anda"));
    createFields(proposal);
    registerField(QStringLiteral("callsign*"), m_callsign);
    registerField(QStringLiteral("gatewayName*"), m_gatewayName);
    registerField(QStringLiteral("frequency"), m_frequency);
    registerField(QStringLiteral("location"), m_location, "text", SIGNAL(textChanged()));

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("Callsign Gateway:"), m_callsign);
    form->addRow(QString(), m_status);
    form->addRow(QStringLiteral("Nama Gateway:"), m_gatewayName);
    form->addRow(QStringLiteral("Frekuensi:"), m_frequency);
    form->addRow(QStringLiteral("Lokasi:"), m_location);
    form->addRow(QStringLiteral("Masa Laku:"), m_validity);

    m_debounce->setObjectName(QStringLiteral("debounceTimer"));
    m_debounce->setSingleShot(true);
    m_debounce->setInterval(kDebounce);
    connect(m_debounce, &QTimer::timeout, this, &GatewayPage::doCheckDjid);
    connect(m_callsign, &QLineEdit::textChanged, this, &GatewayPage::onCallsignChanged);
    connect(m_gatewayName, &QLineEdit::textChanged, this, &GatewayPage::completeChanged);
    connect(m_lookup, &RegistryLookup::answered, this, &GatewayPage::onDjidResponse);
}

void GatewayPage::createFields(const GatewayData &proposal)
{
    m_callsign = textField("callsignEdit", proposal.callsign, QStringLiteral("Contoh: YH0GW"), this);
    m_callsign->setMaxLength(kLongestCallsign);
    m_status = new LookupStatus(QStringLiteral("callsignStatusLabel"), this);
    m_gatewayName = textField("gatewayNameEdit", proposal.gatewayName, QStringLiteral("RF-GW SINAR ..."), this);
    m_frequency = textField("frequencyEdit", proposal.frequency, QStringLiteral("145.500 MHz"), this);
    m_frequency->setMaxLength(InputRules::kLongestNumber);
    m_location = new AddressEdit(this);
    m_location->setObjectName(QStringLiteral("locationEdit"));
    m_location->setPlaceholderText(QStringLiteral("Alamat stasiun"));
    m_location->setText(proposal.location);
    m_validity = new LookupStatus(QStringLiteral("validityLabel"), this);
    m_validity->setText(QStringLiteral("-"));
}

bool GatewayPage::isComplete() const
{
    return m_djidVerified && !m_callsign->text().trimmed().isEmpty() && !m_gatewayName->text().trimmed().isEmpty();
}

void GatewayPage::initializePage()
{
    // A callsign from an earlier attempt, or one whose check failed: coming back to the page checks it.
    if (!m_djidVerified && !m_callsign->text().isEmpty())
        onCallsignChanged(m_callsign->text());
}

bool GatewayPage::validatePage()
{
    if (m_djidVerified)
        return true;
    m_prompts.warning(QStringLiteral("Validasi"), QStringLiteral("Callsign harus terverifikasi DJID!"));
    return false;
}

void GatewayPage::onCallsignChanged(const QString &text)
{
    Q_UNUSED(text) // the field has to be changed as well
    static const QRegularExpression form(QStringLiteral("^YH[0-9][A-Z]{2,4}$"));
    const QString callsign = InputRules::makeCallsign(*m_callsign);
    m_djidVerified = false;
    m_permitExpiry.clear();
    m_lookup->drop();
    m_debounce->stop();
    emit completeChanged();

    if (callsign.size() < kShortestChecked) {
        m_status->tell({}, LookupStatus::kPlain);
    } else if (form.match(callsign).hasMatch()) {
        m_status->tell(QStringLiteral("Menunggu..."), LookupStatus::kWaiting);
        m_debounce->start();
    } else {
        m_status->tell(QStringLiteral("Format: YH[0-9][A-Z]{2,4}"), LookupStatus::kError);
    }
}

void GatewayPage::doCheckDjid()
{
    m_status->tell(QStringLiteral("Memeriksa ke DJID..."), LookupStatus::kBusy);
    m_validity->tell(QStringLiteral("-"), LookupStatus::kPlain);
    m_lookup->ask(m_callsign->text());
}

void GatewayPage::onDjidResponse(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError) {
        m_status->tell(QStringLiteral("Gagal verifikasi DJID"), LookupStatus::kError);
        return;
    }
    const RegistryRecord record = RegistryRecord::read(reply->readAll(), QDate::currentDate());
    showAddress(record.address);
    m_djidVerified = record.isPermitted();
    m_permitExpiry = record.expiry.toString(Qt::ISODate);
    showVerdict(record);
    emit completeChanged();
}

/// Without an address what was typed stays, but not the address of an earlier callsign.
void GatewayPage::showAddress(const QString &address)
{
    if (address.isEmpty() && m_location->text() != m_registryAddress)
        return;
    m_location->setText(address);
    m_registryAddress = m_location->text();
}

void GatewayPage::showVerdict(const RegistryRecord &record)
{
    using Verdict = RegistryRecord::Verdict;
    const QString verified = QStringLiteral("Terverifikasi DJID");
    const auto tell = [this, &record](const QString &text, const char *style) {
        m_status->tell(text, style);
        m_validity->tell(record.validity, style);
    };
    switch (record.verdict) {
    case Verdict::NotListed:
        m_status->tell(QStringLiteral("Callsign tidak ditemukan di DJID"), LookupStatus::kError);
        break;
    case Verdict::UnknownFormat:
        m_status->tell(QStringLiteral("Format DJID tidak dikenal"), LookupStatus::kError);
        break;
    case Verdict::NoAddress: m_status->tell(QStringLiteral("Data tidak lengkap di DJID"), LookupStatus::kError); break;
    case Verdict::NoValidity:
        m_status->tell(verified, LookupStatus::kSure);
        m_validity->tell(QStringLiteral("Tidak tersedia"), LookupStatus::kPlain);
        break;
    case Verdict::Inactive:
        tell(QStringLiteral("Callsign TIDAK AKTIF/KADALUARSA: ") + record.status, LookupStatus::kRefused);
        break;
    case Verdict::Expired:
        tell(QStringLiteral("Callsign EXPIRED sejak ") + record.expiry.toString(QStringLiteral("dd/MM/yyyy")),
             LookupStatus::kRefused);
        break;
    case Verdict::ExpiresSoon:
        tell(QStringLiteral("%1 (berlaku %2 hari lagi)").arg(verified).arg(record.daysLeft), LookupStatus::kCaution);
        break;
    case Verdict::Valid: tell(verified, LookupStatus::kGood); break;
    case Verdict::UnreadableDate:
        tell(verified + QStringLiteral(" (cek masa berlaku manual)"), LookupStatus::kBusy);
        break;
    }
}
