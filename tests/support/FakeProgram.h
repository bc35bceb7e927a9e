#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A program that the system finds by name before any other, answers as it is told and records how it is called. It is
/// found on PATH, on Windows in the working folder, which comes first there; both come back at the end. Of several, the
/// last is ended first.
class FakeProgram final
{
public:
    enum class Ending { Exits, Hangs, Crashes };

    struct Reply
    {
        QByteArray output;
        int exitCode = 0;
        Ending ending = Ending::Exits;
        QByteArray when = {};        ///< what the command line contains; empty: any
        QByteArray after = {};       ///< what an earlier command line contains; empty: none has to
        QByteArray errorOutput = {}; ///< on the other stream
    };

    /// Each call gets the first reply that fits; without one it exits with 0 and says nothing.
    FakeProgram(const QString &name, const QList<Reply> &replies);
    ~FakeProgram();
    FakeProgram(const FakeProgram &) = delete;
    FakeProgram &operator=(const FakeProgram &) = delete;

    /// What stood behind the program's name in each call so far.
    [[nodiscard]] QStringList calls() const;

private:
    void standIn(const QString &name);

    QTemporaryDir m_folder;
    QByteArray m_path;
    QString m_workingFolder;
};
