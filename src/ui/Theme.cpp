#include "ui/Theme.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QImageReader>
#include <QPalette>
#include <QPixmapCache>
#include <QRegularExpression>
#include <QWidget>

// The resources live in a static library, which a linker only keeps when they are asked for, from outside a namespace.
static void registerResources()
{
    Q_INIT_RESOURCE(evox);
}

namespace {

using Theme::Role;

struct RoleColors
{
    Role role;
    const char *name; ///< after the "@" of a style sheet
    const char *light;
    const char *dark;
};

constexpr RoleColors kRoles[] = {
    {Role::Ground, "ground", "#F5F5F5", "#1E1E1E"},
    {Role::Text, "text", "#212121", "#E6E6E6"},
    {Role::Dim, "dim", "#616161", "#A8A8A8"},
    {Role::Field, "field", "#FAFAFA", "#1A1A1A"},
    {Role::Alternate, "alternate", "#F0F2F5", "#222426"},
    {Role::Raised, "raised", "#E8EAED", "#2D2F31"},
    {Role::Hover, "hover", "#DADDE1", "#3A3D40"},
    {Role::Border, "border", "#BDBDBD", "#4A4D50"},
    {Role::Disabled, "disabled", "#8A8A8A", "#787878"},
    {Role::Selection, "selection", "#E3F2FD", "#0078D4"},
    {Role::SelectionText, "selectionText", "#0D2137", "#FFFFFF"},
    {Role::Focus, "focus", "#1565C0", "#64B5F6"},
    {Role::Accent, "accent", "#1565C0", "#64B5F6"},
    {Role::AccentText, "accentText", "#FFFFFF", "#0D2137"},
    {Role::Title, "title", "#012B61", "#0D2137"},
    {Role::TitleText, "titleText", "#FFFFFF", "#FFFFFF"},
    {Role::Good, "good", "#2E7D32", "#2E7D32"},
    {Role::Warning, "warning", "#FFF3E0", "#FFF3E0"},
    {Role::Danger, "danger", "#C62828", "#C62828"},
    {Role::OnMeaning, "onMeaning", "#FFFFFF", "#FFFFFF"},
    {Role::OnWarning, "onWarning", "#212121", "#212121"},
    {Role::Server, "server", "#E3F2FD", "#0D2137"},
    {Role::Gateway, "gateway", "#E8F5E9", "#0D3320"},
    {Role::Audio, "audio", "#FFF3E0", "#3E2723"},
    {Role::HeaderText, "headerText", "#212121", "#F0F0F0"},
    {Role::Readout, "readout", "#FAFAFA", "#1E1E1E"},
    {Role::ReadoutText, "readoutText", "#333333", "#CCCCCC"},
    {Role::Instrument, "instrument", "#000000", "#000000"},
    {Role::Brand, "brand", "#0D47A1", "#64B5F6"},
};

constexpr float kGoodBelowMs = 50;
constexpr float kFairBelowMs = 100;

QPalette paletteFor(bool dark)
{
    const auto role = [dark](Role name) { return Theme::color(name, dark); };
    QPalette palette;
    palette.setColor(QPalette::Window, role(Role::Ground));
    palette.setColor(QPalette::WindowText, role(Role::Text));
    palette.setColor(QPalette::Base, role(Role::Field));
    palette.setColor(QPalette::AlternateBase, role(Role::Alternate));
    palette.setColor(QPalette::Text, role(Role::Text));
    palette.setColor(QPalette::PlaceholderText, role(Role::Dim));
    palette.setColor(QPalette::Button, role(Role::Raised));
    palette.setColor(QPalette::ButtonText, role(Role::Text));
    palette.setColor(QPalette::BrightText, role(Role::OnMeaning));
    palette.setColor(QPalette::Highlight, role(Role::Selection));
    palette.setColor(QPalette::HighlightedText, role(Role::SelectionText));
    palette.setColor(QPalette::Link, role(Role::Accent));
    palette.setColor(QPalette::LinkVisited, role(Role::Accent));
    palette.setColor(QPalette::ToolTipBase, role(Role::Warning));
    palette.setColor(QPalette::ToolTipText, role(Role::OnWarning));
    for (const QPalette::ColorRole text : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, text, role(Role::Disabled));
    return palette;
}

} // namespace

void Theme::initResources()
{
    registerResources();
}

QColor Theme::color(Role role, bool dark)
{
    return QColor(name(role, dark));
}

QString Theme::name(Role role, bool dark)
{
    for (const RoleColors &colors : kRoles) {
        if (colors.role == role)
            return QLatin1String(dark ? colors.dark : colors.light);
    }
    Q_UNREACHABLE();
}

QString Theme::filled(const QString &styleSheet, bool dark)
{
    static const QRegularExpression placeholder(QStringLiteral("@([A-Za-z]+)"));
    QString result;
    int copied = 0;
    auto matches = placeholder.globalMatch(styleSheet);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result += styleSheet.midRef(copied, match.capturedStart() - copied);
        copied = match.capturedEnd();
        QString replacement = match.captured();
        for (const RoleColors &colors : kRoles) {
            if (match.capturedRef(1) == QLatin1String(colors.name))
                replacement = QLatin1String(dark ? colors.dark : colors.light);
        }
        result += replacement;
    }
    return result + styleSheet.midRef(copied);
}

void Theme::apply(QApplication &app, bool dark)
{
    initResources();
    // Other styles paint some parts in the system's colours, whatever the palette says. Set before the first style
    // sheet only: each change of the style polishes every widget once more.
    if (app.styleSheet().isEmpty())
        QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(paletteFor(dark));
    QFile file(QStringLiteral(":/styles/application.qss"));
    if (file.open(QIODevice::ReadOnly))
        app.setStyleSheet(filled(QString::fromUtf8(file.readAll()), dark));
}

void Theme::restyle(QWidget &widget, const QString &styleSheet)
{
    widget.ensurePolished();
    if (widget.styleSheet() != styleSheet)
        widget.setStyleSheet(styleSheet);
}

QPixmap Theme::icon(const QString &path, int side, qreal ratio)
{
    const QString key = QStringLiteral("evox-icon:%1:%2:%3").arg(path).arg(side).arg(ratio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    // The reader lets the drawing be rendered at the wanted size, which is sharper than scaling its picture.
    QImageReader reader(path);
    const QSize wanted = QSize(side, side) * ratio;
    reader.setScaledSize(reader.size().scaled(wanted, Qt::KeepAspectRatio));
    pixmap = QPixmap::fromImageReader(&reader);
    if (pixmap.isNull())
        return pixmap;
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QString Theme::pingText(float latencyMs)
{
    const char *color = "#F44336";
    if (latencyMs < kGoodBelowMs)
        color = "#4CAF50";
    else if (latencyMs < kFairBelowMs)
        color = "#FFC107";
    return QStringLiteral("<span style='color:%1;'>PING: %2 ms</span>")
        .arg(QLatin1String(color), QString::number(static_cast<double>(latencyMs), 'f', 1));
}
