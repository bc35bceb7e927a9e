#pragma once

#include "net/TcpClient.h"

#include <QObject>
#include <QStringList>

/// Every signal of a client in the order of emission, each as "name(argument, …)". Records and lists are written as
/// compact JSON.
class SignalLog final : public QObject
{
    Q_OBJECT

public:
    explicit SignalLog(TcpClient *client);

    [[nodiscard]] const QStringList &entries() const { return m_entries; }
    void clear() { m_entries.clear(); }

private:
    void add(const QString &name, const QVariantList &arguments);

    QStringList m_entries;
};
