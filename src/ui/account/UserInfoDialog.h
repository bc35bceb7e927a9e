#pragma once

#include "ui/account/ReadoutDialog.h"

/// What the server knows about one station, to read. Takes the server's record; every key may be missing.
class UserInfoDialog final : public ReadoutDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UserInfoDialog)

public:
    explicit UserInfoDialog(const QVariantMap &record, QWidget *parent = nullptr);

    /// The block of text shown for a record.
    [[nodiscard]] static QString textFor(const QVariantMap &record);
};
