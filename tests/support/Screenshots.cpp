#include "support/Screenshots.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QWidget>

QString Screenshots::folder()
{
    const QString build = qEnvironmentVariable("EVOX_BUILD_DIR");
    return QDir(build.isEmpty() ? QDir::currentPath() : build).filePath(QStringLiteral("screenshots"));
}

QImage Screenshots::save(QWidget &widget, const QString &name)
{
    // Widgets that are not shown are laid out by halves only.
    const bool wasVisible = widget.isVisible();
    widget.setAttribute(Qt::WA_DontShowOnScreen, !wasVisible);
    widget.show();
    QCoreApplication::sendPostedEvents(); // delayed layouts
    const QImage image = widget.grab().toImage();
    widget.setVisible(wasVisible);
    widget.setAttribute(Qt::WA_DontShowOnScreen, false);
    const QDir target(folder());
    if (!target.mkpath(QStringLiteral(".")) || !image.save(target.filePath(name + QLatin1String(".png"))))
        return {};
    return image;
}
