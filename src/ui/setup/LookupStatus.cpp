#include "ui/setup/LookupStatus.h"

#include "ui/Theme.h"

const char *const LookupStatus::kWaiting = "color: #999;";
const char *const LookupStatus::kBusy = "color: #FF9800;";
const char *const LookupStatus::kCaution = "color: #FF9800; font-weight: bold;";
const char *const LookupStatus::kGood = "color: #4CAF50;";
const char *const LookupStatus::kSure = "color: #4CAF50; font-weight: bold;";
const char *const LookupStatus::kError = "color: #F44336;";
const char *const LookupStatus::kRefused = "color: #F44336; font-weight: bold;";
const char *const LookupStatus::kPlain = "";

LookupStatus::LookupStatus(const QString &objectName, QWidget *parent)
    : QLabel(parent)
{
    setObjectName(objectName);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void LookupStatus::tell(const QString &text, const char *style)
{
    Theme::restyle(*this, QLatin1String(style));
    setText(text.left(kLongest));
}
