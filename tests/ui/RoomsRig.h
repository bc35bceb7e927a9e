#pragma once

#include "support/ScriptedPrompts.h"
#include "ui/admin/RoomsTab.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/// What the tests of the administrator's tab of rooms share.
namespace RoomsTest {

inline QString q(const char *text)
{
    return QString::fromUtf8(text);
}

/// "A,B": a room each.
inline QStringList names(const char *text)
{
    return q(text).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

inline RoomLimits::Map noLimits(const QStringList &rooms)
{
    RoomLimits::Map limits;
    for (const QString &room : rooms)
        limits.insert(room, 0);
    return limits;
}

/// The tab with some rooms, all without a limit, shown, with an answering operator of its own.
struct Rig
{
    explicit Rig(const char *rooms = "Lobby,Alpha,Ruang Dua", bool hasLimits = true)
        : tab(prompts)
    {
        tab.resize(880, 480);
        tab.showRooms(names(rooms));
        if (hasLimits)
            tab.showLimits(noLimits(names(rooms)));
        tab.show();
        QApplication::setActiveWindow(&tab);
    }
    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        return tab.findChild<Widget *>(q(name));
    }
    [[nodiscard]] QListWidget *list() const { return find<QListWidget>("roomsList"); }
    [[nodiscard]] QString rooms() const { return tab.rooms().join(QLatin1Char(',')); }
    [[nodiscard]] QString selected() const
    {
        const auto items = list()->selectedItems();
        return items.isEmpty() ? QString() : items.first()->text();
    }
    [[nodiscard]] QString status() const { return find<QLabel>("roomOrderStatus")->text(); }
    [[nodiscard]] QStringList sent() const
    {
        QStringList lines;
        for (const QVariantList &line : commands)
            lines.append(line.first().toString());
        return lines;
    }
    void click(const char *button) const { find<QPushButton>(button)->click(); }
    void select(int row) const { list()->setCurrentRow(row); }
    void press(Qt::Key key) const
    {
        list()->setFocus();
        QTest::keyClick(list(), key, Qt::AltModifier);
    }

    ScriptedPrompts prompts;
    RoomsTab tab;
    QSignalSpy commands{&tab, &RoomsTab::commandRequested};
    QSignalSpy refreshes{&tab, &RoomsTab::refreshRequested};
};

} // namespace RoomsTest
