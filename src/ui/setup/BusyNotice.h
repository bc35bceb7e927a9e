#pragma once

#include <QLabel>

/// A line of text in a window of its own while the program is busy and cannot draw. On the screen once constructed.
class BusyNotice final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BusyNotice)

public:
    explicit BusyNotice(const QString &text);
    ~BusyNotice() override;
};
