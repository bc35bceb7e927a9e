// Renders an SVG icon as PNG files: render-icons ICON.svg FOLDER SIZE…, which makes FOLDER/SIZE.png. It draws with the
// renderer of the program itself, so the desktop shows what the window shows.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

namespace {

bool render(QSvgRenderer *icon, int size, const QString &path)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon->render(&painter);
    painter.end();
    return image.save(path);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    QGuiApplication app(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    QSvgRenderer icon(arguments.value(1));
    if (!icon.isValid() || arguments.size() < 4) {
        std::fprintf(stderr, "usage: render-icons ICON.svg FOLDER SIZE...\n");
        return 1;
    }
    for (const QString &size : arguments.mid(3)) {
        const QString path = QStringLiteral("%1/%2.png").arg(arguments.at(2), size);
        const int pixels = size.toInt();
        if (pixels <= 0 || !render(&icon, pixels, path)) {
            std::fprintf(stderr, "render-icons: cannot make %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
