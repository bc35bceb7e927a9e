#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/HardwareId.h"
#include "app/Product.h"
#include "ui/MainWindow.h"
#include "ui/Theme.h"
#include "ui/WidgetPrompts.h"

#include <QApplication>
#include <QDebug>
#include <QIcon>

namespace {

constexpr int kShownIdentifierPart = 16;

void ensureHardwareId(Config &config)
{
    if (!config.setupCompleted() || !config.hwid().isEmpty())
        return;
    config.setHwid(generateHardwareId());
    config.save();
    qDebug().noquote() << "[Main] HWID generated:" << config.hwid().left(kShownIdentifierPart) + QLatin1String("...");
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_AUDIO_BACKEND", "windows");
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    QApplication::setApplicationName(Product::name());
    QApplication::setOrganizationName(Product::organisation());
    QApplication::setApplicationVersion(Product::applicationVersion());
    Theme::initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/app_icon")));

    ensureHardwareId(Config::instance());

    WidgetPrompts prompts;
    MainWindow window(Endpoints::builtIn(), prompts);
    prompts.setWindow(&window);
    window.show();
    return QApplication::exec();
}
