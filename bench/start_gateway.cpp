// The gateway's own start, in the order of the program, with a report of the first paint.

#include "FirstPaint.h"
#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/Product.h"
#include "ui/MainWindow.h"
#include "ui/Theme.h"
#include "ui/WidgetPrompts.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(Product::name());
    QApplication::setOrganizationName(Product::organisation());
    Theme::initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/app_icon")));
    static_cast<void>(Config::instance());
    WidgetPrompts prompts;
    MainWindow window(Endpoints::builtIn(), prompts);
    prompts.setWindow(&window);
    FirstPaint paint;
    window.installEventFilter(&paint);
    window.show();
    return QApplication::exec();
}
