#include "ui/AboutDialog.h"

#include "app/Product.h"
#include "ui/Theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kLogoSide = 96; // logical pixels
constexpr char kPlain[] = "color: #E6E6E6;";
constexpr char kDim[] = "color: #A8A8A8;";

QString versionLine()
{
    return QStringLiteral("Version %1 (Build %2)").arg(Product::version(), Product::build());
}

QString description()
{
    return QStringLiteral("Radio-over-IP gateway for amateur radio");
}

QString licence()
{
    return QStringLiteral("Licence: MIT");
}

QString libraryLine(const char *library, const QString &version)
{
    return QLatin1String(library) + QLatin1String(": ") + (version.isEmpty() ? QStringLiteral("not loaded") : version);
}

QString libraryLines(const AboutDialog::Libraries &libraries)
{
    return QStringList{libraryLine("Qt", libraries.qt), libraryLine("Opus", libraries.opus),
                       libraryLine("libsodium", libraries.sodium)}
        .join(QLatin1Char('\n'));
}

} // namespace

AboutDialog::AboutDialog(const Libraries &libraries, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("aboutDialog"));
    setWindowTitle(QStringLiteral("About e-VOX SINAR"));
    setStyleSheet(QStringLiteral("QDialog { background-color: #1A1A1A; }"));
    layOut(libraries);
}

QString AboutDialog::textFor(const Libraries &libraries)
{
    return QStringList{Product::name(), versionLine(), description(), libraryLines(libraries), licence()}.join(
        QLatin1Char('\n'));
}

QLabel *AboutDialog::makeLabel(const char *name, const QString &text, const char *styleSheet)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setStyleSheet(QLatin1String(styleSheet));
    return label;
}

void AboutDialog::layOut(const Libraries &libraries)
{
    auto *logo = makeLabel("logoLabel", {}, "");
    logo->setPixmap(Theme::icon(QStringLiteral(":/icons/logo_sinar.png"), kLogoSide, devicePixelRatioF()));
    auto *copy = new QPushButton(QStringLiteral("Copy"), this);
    copy->setObjectName(QStringLiteral("copyButton"));
    copy->setToolTip(QStringLiteral("Copy these lines to the clipboard"));
    copy->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this,
            [text = textFor(libraries)] { QGuiApplication::clipboard()->setText(text); });
    auto *close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("closeButton"));
    close->setDefault(true);
    close->setFocus();
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(copy);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *texts = new QVBoxLayout;
    texts->addWidget(makeLabel("nameLabel", Product::name(), "color: #00FF00; font-size: 28px; font-weight: bold;"));
    texts->addWidget(makeLabel("versionLabel", versionLine(), kPlain));
    texts->addWidget(makeLabel("descriptionLabel", description(), kPlain));
    texts->addWidget(makeLabel("librariesLabel", libraryLines(libraries), kDim));
    texts->addWidget(makeLabel("licenceLabel", licence(), kDim));
    auto *upper = new QHBoxLayout; // the logo beside the texts: one above the other would be too high for small screens
    upper->addWidget(logo, 0, Qt::AlignTop);
    upper->addLayout(texts, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(upper);
    layout->addLayout(buttons);
}
