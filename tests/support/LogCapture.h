#pragma once

#include <QStringList>
#include <QtGlobal>

/// Records every diagnostic line while it lives. A warning that nobody announced with expectWarning() fails the test
/// when the capture ends. One at a time; GUI thread only.
class LogCapture final
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    [[nodiscard]] QStringList lines() const { return m_lines; }
    [[nodiscard]] QStringList linesStartingWith(const QString &beginning) const;
    [[nodiscard]] bool contains(const QString &line) const { return m_lines.contains(line); }
    [[nodiscard]] int count(const QString &beginning) const { return linesStartingWith(beginning).size(); }

    /// Warnings that begin so are part of the test.
    void expectWarning(const QString &beginning) { m_expected.append(beginning); }
    void clear() { m_lines.clear(); }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);
    [[nodiscard]] bool isExpected(const QString &text) const;

    QStringList m_lines;
    QStringList m_expected;
    QStringList m_unexpected;
    QtMessageHandler m_previous = nullptr;
};
