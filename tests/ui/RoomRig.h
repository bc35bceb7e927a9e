#pragma once

#include <QListWidget>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class UserWidget;

/// What the tests of the room panel share: user records, and a look at the rows.
namespace RoomRig {

using Users = QList<QVariantMap>;

/// Rich text, a line break and a shortcut mark in one.
inline const QString kRichText = QStringLiteral("<h1>W</h1>\n&x");

QVariantMap user(int id, const QString &callsign, const QString &name = {}, bool transmitting = false,
                 bool approved = true, bool muted = false);
/// "A B C": a station each, its id from its letter.
Users users(const QString &callsigns);

QListWidget *list(const QWidget &panel);
UserWidget *rowWidget(const QWidget &panel, int row);
QStringList callsigns(const QWidget &panel);
/// All that can be seen or asked of the rows.
QStringList state(const QWidget &panel);
QPoint middleOf(const QWidget &panel, int row); ///< in the list's viewport
void show(QWidget &panel);

template<typename Widget> Widget *part(const QWidget &panel, const char *name)
{
    auto *found = panel.findChild<Widget *>(QLatin1String(name));
    Q_ASSERT(found);
    return found;
}

} // namespace RoomRig
