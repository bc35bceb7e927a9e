#pragma once

#include "support/PrivateHome.h"

#include <QJsonObject>
#include <QString>

/// Gives a test its own application data folder and an empty configuration; the earlier environment comes back at the
/// end. One at a time.
class TestConfig final
{
public:
    /// The configuration begins with these values, on disk and in memory.
    explicit TestConfig(const QJsonObject &values = {});
    TestConfig(const TestConfig &) = delete;
    TestConfig &operator=(const TestConfig &) = delete;

    [[nodiscard]] QString folder() const { return m_home.folder(); }
    /// What stands in the file now; empty when there is none.
    [[nodiscard]] QJsonObject saved() const;
    /// Replaces the file's bytes; the object in memory stays as it is.
    void writeFile(const QByteArray &bytes) const;

private:
    PrivateHome m_home;
};
