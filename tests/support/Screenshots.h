#pragma once

#include <QString>

class QImage;
class QWidget;

/// Pictures of widgets for whoever wants to look at them: PNG files in $EVOX_BUILD_DIR/screenshots, or in the working
/// folder's "screenshots" without that variable.
namespace Screenshots {

[[nodiscard]] QString folder();

/// Lays the widget out and renders it as @p name.png. Returns the picture; a null one when the file was not written.
QImage save(QWidget &widget, const QString &name);

} // namespace Screenshots
