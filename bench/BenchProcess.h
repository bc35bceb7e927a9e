#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

/// A program of the benchmarks that reports its first painted window; killed at the end.
class BenchProcess final
{
public:
    /// Starts it at once, offscreen, with this folder for its data.
    BenchProcess(const QString &program, const QString &home,
                 QProcessEnvironment environment = QProcessEnvironment::systemEnvironment());
    ~BenchProcess();
    BenchProcess(const BenchProcess &) = delete;
    BenchProcess &operator=(const BenchProcess &) = delete;

    [[nodiscard]] bool waitForPaint();
    [[nodiscard]] double residentMegabytes() const;

private:
    QProcess m_process;
};
