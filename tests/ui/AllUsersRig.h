#pragma once

#include "AdminUsers.h"
#include "support/ScriptedPrompts.h"
#include "ui/admin/AllUsersTab.h"
#include "ui/admin/UserActionsDelegate.h"

#include <QLabel>
#include <QTableView>

#include <memory>

/// The tab with every user, shown, with an answering operator of its own. Notes what it asks for.
class AllUsersRig final
{
public:
    AllUsersRig();
    AllUsersRig(const AllUsersRig &) = delete;
    AllUsersRig &operator=(const AllUsersRig &) = delete;

    template<typename Widget> [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = tab->findChild<Widget *>(QLatin1String(name));
        Q_ASSERT(widget);
        return widget;
    }
    [[nodiscard]] QTableView *table() const { return find<QTableView>("allUsersTable"); }
    [[nodiscard]] QString total() const { return find<QLabel>("allUsersTotal")->text(); }
    [[nodiscard]] QStringList shownIds() const;
    [[nodiscard]] QString chosenId() const; ///< or "none"
    void choose(int userId) const;
    /// As the menu does; what the action asks for has been done then.
    void trigger(const QString &action) const;
    /// The middle of a button in a row, in the viewport; scrolls there.
    [[nodiscard]] QPoint rowButton(int row, UserActionsDelegate::Button button) const;
    /// Fills in the form and sends it; its box is answered. The password is "pw%2".
    void addGateway(const QString &callsign, bool approved);

    ScriptedPrompts prompts;
    std::unique_ptr<AllUsersTab> tab;
    QStringList lines; ///< commands, "approve <id>", "revoke <id>" and "refresh", in order
};
