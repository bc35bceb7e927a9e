#pragma once

#include <QWizardPage>

/// The terms of use, which are to be accepted. Terms that cannot be read can be accepted as well: a missing file must
/// not stop an installation on a hill.
class EULAPage final : public QWizardPage
{
    Q_OBJECT

public:
    /// The path of a plain text file, UTF-8.
    explicit EULAPage(const QString &termsPath, QWidget *parent = nullptr);
};
