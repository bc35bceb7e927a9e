#include "gateway/VersionNumber.h"

#include <QVector>

#include <algorithm>

namespace {

qint64 partAt(const QVector<QStringRef> &parts, int index)
{
    return index < parts.size() ? parts.at(index).toLongLong() : 0; // 0 for what is no number, too
}

} // namespace

int VersionNumber::compare(const QString &a, const QString &b)
{
    const QVector<QStringRef> left = a.splitRef(QLatin1Char('.'));
    const QVector<QStringRef> right = b.splitRef(QLatin1Char('.'));
    const int parts = std::max(left.size(), right.size());
    for (int i = 0; i < parts; ++i) {
        const qint64 mine = partAt(left, i);
        const qint64 other = partAt(right, i);
        if (mine != other)
            return mine > other ? 1 : -1;
    }
    return 0;
}
