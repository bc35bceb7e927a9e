#include "ui/setup/BusyNotice.h"

#include "app/Product.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kLongestWait{500}; ///< a window that is not shown by then is done without
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
    QElapsedTimer waited;
    waited.start();
    while (!windowHandle()->isExposed() && !waited.hasExpired(kLongestWait.count()))
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 50);
    repaint();
}

BusyNotice::~BusyNotice()
{
    QApplication::restoreOverrideCursor();
}
