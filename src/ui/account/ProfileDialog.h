#pragma once

#include "ui/account/ReadoutDialog.h"

/// The own account as the server knows it, and what the gateway keeps about its login, to read. Every key of the
/// record may be missing.
class ProfileDialog final : public ReadoutDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ProfileDialog)

public:
    /// What the configuration adds to the server's record.
    struct Local
    {
        QString hwid; ///< empty: "Not set"
        bool autoLogin = false;
        bool rememberPassword = false;
    };

    ProfileDialog(const QVariantMap &record, const Local &local, QWidget *parent = nullptr);

    /// The block of text shown.
    [[nodiscard]] static QString textFor(const QVariantMap &record, const Local &local);
};
