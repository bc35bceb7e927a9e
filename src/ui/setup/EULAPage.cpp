#include "ui/setup/EULAPage.h"

#include <QFile>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

constexpr int kTermsHeight = 250;

QString termsFrom(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("EULA tidak tersedia.\n\nPastikan file eula.txt berada di folder aplikasi.");
    return QString::fromUtf8(file.readAll());
}

} // namespace

EULAPage::EULAPage(const QString &termsPath, QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(QStringLiteral("Persyaratan Lisensi (EULA)"));
    setSubTitle(QStringLiteral("Silakan baca dan setujui persyaratan berikut"));

    auto *terms = new QPlainTextEdit(termsFrom(termsPath), this);
    terms->setObjectName(QStringLiteral("eulaText"));
    terms->setReadOnly(true);
    terms->setTabChangesFocus(true);
    terms->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    terms->setMinimumHeight(kTermsHeight);
    auto *accept = new QRadioButton(QStringLiteral("Terima"), this);
    accept->setObjectName(QStringLiteral("acceptRadio"));
    auto *reject = new QRadioButton(QStringLiteral("Tolak"), this);
    reject->setObjectName(QStringLiteral("rejectRadio"));
    registerField(QStringLiteral("eula_accepted*"), accept);

    auto *choice = new QHBoxLayout;
    choice->addWidget(accept);
    choice->addWidget(reject);
    choice->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(terms, 1);
    layout->addLayout(choice);
}
