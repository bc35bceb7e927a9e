#include "ui/setup/BusyNotice.h"

#include "app/Product.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QWindow>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kLongestWait{500}; ///< a window that is not shown by then is done without
constexpr std::chrono::milliseconds kLook{10};
constexpr QSize kSize(360, 90);

} // namespace

BusyNotice::BusyNotice(const QString &text)
    : QLabel(text)
{
    setObjectName(QStringLiteral("busyNotice"));
    setWindowTitle(Product::name());
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setGeometry(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, kSize.expandedTo(sizeHint()),
                                    QApplication::primaryScreen()->availableGeometry()));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    show();
    QEventLoop untilShown;
    QTimer look;
    const QDeadlineTimer deadline(kLongestWait);
    connect(&look, &QTimer::timeout, &untilShown, [this, &untilShown, &deadline] {
        if (windowHandle()->isExposed() || deadline.hasExpired())
            untilShown.quit();
    });
    look.start(kLook);
    untilShown.exec(QEventLoop::ExcludeUserInputEvents);
    repaint();
}

BusyNotice::~BusyNotice()
{
    QApplication::restoreOverrideCursor();
}
