#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QTemporaryDir>

/// A shell script that stands on PATH under a program's name and records how it is called. The earlier PATH comes back
/// at the end; of several, the last is ended first.
class FakeProgram final
{
public:
    /// The body of the script; its arguments are "$1", "$2" and so on.
    FakeProgram(const QString &name, const QByteArray &script);
    ~FakeProgram();
    FakeProgram(const FakeProgram &) = delete;
    FakeProgram &operator=(const FakeProgram &) = delete;

    /// The arguments of each call so far.
    [[nodiscard]] QList<QStringList> calls() const;

private:
    QTemporaryDir m_folder;
    QByteArray m_path;
};
