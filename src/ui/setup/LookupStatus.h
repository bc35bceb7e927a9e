#pragma once

#include <QLabel>

/// The line under a callsign field that tells how its check at the registry stands. What it shows may come from the
/// registry, so it is plain text and wraps.
class LookupStatus final : public QLabel
{
    Q_OBJECT

public:
    // The styles of its states; their colours carry the meaning in both themes.
    static const char *const kWaiting; ///< grey
    static const char *const kBusy;    ///< amber
    static const char *const kCaution; ///< amber, bold
    static const char *const kGood;    ///< green
    static const char *const kSure;    ///< green, bold
    static const char *const kError;   ///< red
    static const char *const kRefused; ///< red, bold
    static const char *const kPlain;   ///< none

    static constexpr int kLongest = 300; ///< characters shown

    explicit LookupStatus(const QString &objectName, QWidget *parent = nullptr);

    void tell(const QString &text, const char *style);
};
