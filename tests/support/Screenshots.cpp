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
    widget.ensurePolished();
    QCoreApplication::sendPostedEvents(); // delayed layouts
    const QImage image = widget.grab().toImage();
    const QDir target(folder());
    if (!target.mkpath(QStringLiteral(".")) || !image.save(target.filePath(name + QLatin1String(".png"))))
        return {};
    return image;
}
