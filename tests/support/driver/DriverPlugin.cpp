#include "support/driver/DriverSession.h"
#include "support/driver/DriverWords.h"

#include <QGenericPlugin>

/// Loaded by Qt itself, into a program that knows nothing of it, when QT_QPA_GENERIC_PLUGINS names it.
class DriverPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

public:
    QObject *create(const QString &name, const QString &) override
    {
        const int port = qEnvironmentVariableIntValue(DriverWords::kPortVariable);
        const bool isWanted = name.compare(QLatin1String(DriverWords::kPlugin), Qt::CaseInsensitive) == 0;
        return isWanted && port > 0 ? new DriverSession(static_cast<quint16>(port)) : nullptr;
    }
};

#include "DriverPlugin.moc"
