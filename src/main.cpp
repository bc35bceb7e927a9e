#include "app/Config.h"
#include "app/Endpoints.h"
#include "app/FirewallRules.h"
#include "app/HardwareId.h"
#include "app/LogFile.h"
#include "app/Product.h"
#include "ui/MainWindow.h"
#include "ui/Theme.h"
#include "ui/WidgetPrompts.h"
#include "ui/setup/FirstStart.h"

#include <QApplication>
#include <QIcon>
#include <QProcess>

namespace {

bool startDetached(const QString &program, const QStringList &arguments)
{
    return QProcess::startDetached(program, arguments);
}

/// Runs the first start; whether the main window is to come.
bool isSetUp(const Endpoints &endpoints, WidgetPrompts &prompts, QApplication &app)
{
    Theme::apply(app, Config::instance().darkTheme());
    FirstStart firstStart(endpoints, prompts, startDetached);
    prompts.setWindow(firstStart.window());
    return firstStart.run() == FirstStart::Outcome::SetUp;
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
    const LogFile log;
    Theme::initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/app_icon")));

    setupFirewallRules();
    Config &config = Config::instance();
    const Endpoints endpoints = Endpoints::configured(config);
    WidgetPrompts prompts;
    if (!config.setupCompleted() && !isSetUp(endpoints, prompts, app))
        return 0;
    HardwareId::ensureStored(&config, "[Main] HWID generated:");

    MainWindow window(endpoints, prompts);
    prompts.setWindow(&window);
    window.show();
    return QApplication::exec();
}
