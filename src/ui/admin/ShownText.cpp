#include "ui/admin/ShownText.h"

#include "ui/ElidedLabel.h"

QString shownText(const QString &text)
{
    return ElidedLabel::oneLine(text.left(kLongestShown));
}
