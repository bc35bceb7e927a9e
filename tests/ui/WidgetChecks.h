#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// What is wrong with the looks of a window that is shown.
namespace WidgetChecks {

/// The texts of labels and buttons that have less room than they need.
[[nodiscard]] QStringList cutOff(const QWidget &window);
/// How the window does not fit on a screen of 1024x600 pixels at twice the size; empty: it does.
[[nodiscard]] QString tooBig(const QWidget &window);
/// The object names in the order in which the tabulator key reaches them, from the one that has the focus first.
[[nodiscard]] QStringList tabOrder(QWidget &window);

} // namespace WidgetChecks
