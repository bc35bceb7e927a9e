#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

class QApplication;
class QWidget;

/// Both colour palettes by role, and what is drawn from them. Widgets ask for a role, never for a colour of their own;
/// only texts whose colour carries a fixed meaning name it themselves. GUI thread only.
namespace Theme {

enum class Role {
    Ground,        ///< windows and dialogs
    Text,          ///< on Ground, Field, Alternate and Raised
    Dim,           ///< hints and captions on the same grounds
    Field,         ///< what is typed into, lists and tables
    Alternate,     ///< every second row of a list
    Raised,        ///< buttons, tabs and header cells at rest
    Hover,         ///< the same under the mouse
    Border,        ///< lines round and between things
    Disabled,      ///< text of what cannot be used now
    Selection,     ///< ground of the chosen row
    SelectionText, ///< on Selection
    Focus,         ///< ring round what the keyboard reaches
    Accent,        ///< links, ticks and progress
    AccentText,    ///< on Accent
    Title,         ///< bars that name a part of a panel
    TitleText,     ///< on Title
    Good,          ///< ground of buttons that begin or confirm
    Warning,       ///< ground of notices
    Danger,        ///< ground of buttons that end or destroy
    OnMeaning,     ///< text on Good and Danger
    OnWarning,     ///< text on Warning
    Server,        ///< header over the server's facts
    Gateway,       ///< header over the gateway's facts
    Audio,         ///< header over the level meters
    HeaderText,    ///< on Server, Gateway and Audio
    Readout,       ///< ground of the facts
    ReadoutText,   ///< on Readout
    Instrument,    ///< ground behind coloured figures, dark in both themes
    Brand          ///< the name beside the logo, on Ground
};

/// Makes the icons and the style sheet available. Harmless when called again.
void initResources();

[[nodiscard]] QColor color(Role role, bool dark);
/// The colour as a style sheet writes it, "#RRGGBB".
[[nodiscard]] QString name(Role role, bool dark);
/// Replaces every @role of a style sheet ("@ground", "@selectionText") by its colour; an unknown one stays.
[[nodiscard]] QString filled(const QString &styleSheet, bool dark);

/// Gives the whole program its style, palette and style sheet.
void apply(QApplication &app, bool dark);

/// Gives a widget another style sheet. A plain setStyleSheet() on a widget that was styled but not shown yet keeps the
/// rules of its former one; and setting the same again would only cost the parsing.
void restyle(QWidget &widget, const QString &styleSheet);

/// An icon drawn at @p side logical pixels for a screen of @p ratio device pixels each; null when there is none of
/// that path. Kept in the pixmap cache.
[[nodiscard]] QPixmap icon(const QString &path, int side, qreal ratio);

/// Rich text with the round trip in milliseconds, one decimal, coloured by how good it is.
[[nodiscard]] QString pingText(float latencyMs);

} // namespace Theme
