#include "ui/setup/PICPage.h"

#include "gateway/RegistryRecord.h"
#include "ui/Theme.h"
#include "ui/setup/GatewayData.h"
#include "ui/setup/InputRules.h"
#include "ui/setup/LookupStatus.h"
#include "ui/setup/RegistryLookup.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QNetworkReply>
#include <QRegularExpression>

namespace {

constexpr int kLongestCallsign = 10;
constexpr int kShortestChecked = 4; ///< a shorter text is still being typed

} // namespace

PICPage::PICPage(const GatewayData &proposal, const QString &registryUrl, QWidget *parent)
    : QWizardPage(parent)
    , m_lookup(new RegistryLookup(registryUrl, this))
    , m_callsign(new QLineEdit(InputRules::withoutQuotes(proposal.picCallsign), this))
    , m_status(new LookupStatus(QStringLiteral("picStatusLabel"), this))
    , m_name(new QLineEdit(InputRules::withoutQuotes(proposal.picName), this))
{
    setTitle(QStringLiteral("Informasi Penanggungjawab"));
    setSubTitle(QStringLiteral("Data penanggungjawab RF Gateway"));
    m_callsign->setObjectName(QStringLiteral("picCallsignEdit"));
    m_callsign->setPlaceholderText(QStringLiteral("Contoh: YB0ABC"));
    m_callsign->setMaxLength(kLongestCallsign);
    m_name->setObjectName(QStringLiteral("picNameEdit"));
    m_name->setPlaceholderText(QStringLiteral("Nama akan terisi otomatis"));
    m_name->setReadOnly(true);
    m_name->setStyleSheet(QStringLiteral("background-color: #F5F5F5;"));
    // Its ground is light in both themes. Not by the style sheet: that would colour the placeholder like a text.
    QPalette onLight = m_name->palette();
    onLight.setColor(QPalette::Text, Theme::color(Theme::Role::Text, false));
    onLight.setColor(QPalette::PlaceholderText, Theme::color(Theme::Role::Dim, false));
    m_name->setPalette(onLight);
    registerField(QStringLiteral("picCallsign*"), m_callsign);
    registerField(QStringLiteral("picName"), m_name);

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("Callsign PIC:"), m_callsign);
    form->addRow(QString(), m_status);
    form->addRow(QStringLiteral("Nama PIC:"), m_name);

    connect(m_callsign, &QLineEdit::textChanged, this, &PICPage::onPICCallsignChanged);
    connect(m_lookup, &RegistryLookup::answered, this, &PICPage::onPICResponse);
}

void PICPage::initializePage()
{
    // A callsign from an earlier attempt, or one whose check failed: coming back to the page checks it.
    if (!m_picVerified && !m_callsign->text().isEmpty())
        onPICCallsignChanged(m_callsign->text());
}

void PICPage::onPICCallsignChanged(const QString &text)
{
    Q_UNUSED(text) // the field has to be changed as well
    static const QRegularExpression form(QStringLiteral("^Y[B-G][0-9][A-Z]{2,3}$"));
    const QString callsign = InputRules::makeCallsign(*m_callsign);
    m_picVerified = false;
    m_lookup->drop();
    emit completeChanged();

    if (callsign.size() < kShortestChecked) {
        m_status->tell({}, LookupStatus::kPlain);
    } else if (form.match(callsign).hasMatch()) {
        m_status->tell(QStringLiteral("Memeriksa..."), LookupStatus::kBusy);
        m_lookup->ask(callsign);
    } else {
        m_status->tell(QStringLiteral("Format: YB/YC/YD..."), LookupStatus::kError);
    }
}

void PICPage::onPICResponse(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError) {
        fail(QStringLiteral("Gagal verifikasi"));
        return;
    }
    const RegistryRecord record = RegistryRecord::read(reply->readAll(), QDate::currentDate());
    if (record.verdict == RegistryRecord::Verdict::NotListed) {
        fail(QStringLiteral("Tidak ditemukan"));
    } else if (!record.isListed()) {
        fail(QStringLiteral("Format tidak dikenal"));
    } else if (record.name.isEmpty()) {
        fail(QStringLiteral("Data tidak lengkap"));
    } else {
        m_name->setText(InputRules::withoutQuotes(record.name).left(InputRules::kLongestText));
        m_name->setCursorPosition(0);
        m_status->tell(QStringLiteral("Terverifikasi"), LookupStatus::kSure);
        m_picVerified = true;
        emit completeChanged();
    }
}

/// A name that belongs to another callsign must not stay.
void PICPage::fail(const QString &why)
{
    m_name->clear();
    m_status->tell(why, LookupStatus::kError);
}
