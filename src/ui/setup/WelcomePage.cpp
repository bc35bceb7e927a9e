#include "ui/setup/WelcomePage.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVariant>

WelcomePage::WelcomePage(QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(QStringLiteral("Selamat Datang di eVOX SINAR"));
    setSubTitle(QStringLiteral("Pendaftaran RF-Gateway Baru"));

    auto *brand = new QLabel(QStringLiteral("SINAR"), this);
    brand->setObjectName(QStringLiteral("brandTitle"));
    brand->setAlignment(Qt::AlignCenter);
    auto *text = new QLabel(QStringLiteral("e-VOX SINAR untuk komunitas amatir radio Indonesia\n\n"
                                           "Wizard ini akan membantu Anda mendaftarkan\n"
                                           "RF Gateway Anda ke server eVOX SINAR.\n\n"
                                           "Klik Lanjut untuk mendaftarkan gateway baru.\n\n"
                                           "Sudah punya akun? Klik tombol di bawah untuk login."),
                            this);
    text->setObjectName(QStringLiteral("welcomeText"));
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    auto *login = new QPushButton(QStringLiteral("Sudah Punya Akun? Login"), this);
    login->setObjectName(QStringLiteral("loginButton"));
    login->setProperty("meaning", QStringLiteral("accent"));
    login->setMinimumHeight(2 * fontMetrics().lineSpacing());
    connect(login, &QPushButton::clicked, this, &WelcomePage::loginRequested);

    auto *layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(brand);
    layout->addWidget(text);
    layout->addSpacing(fontMetrics().lineSpacing());
    layout->addWidget(login, 0, Qt::AlignCenter);
    layout->addStretch();
}
