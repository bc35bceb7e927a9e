#include "support/LogCapture.h"

#include <QTest>

#include <algorithm>

namespace {

LogCapture *s_capture = nullptr;

// What the platform says on a machine without a desktop session; no fault of the program's.
const QStringList &platformNoise()
{
    static const QStringList beginnings{
        QStringLiteral("QStandardPaths: "),       QStringLiteral("This plugin does not support"),
        QStringLiteral("PulseAudioService: "),    QStringLiteral("defaultServiceProvider::"),
        QStringLiteral("propagateSizeHints"),     QStringLiteral("using null output device"),
        QStringLiteral("using null input device")};
    return beginnings;
}

bool startsWithOneOf(const QString &text, const QStringList &beginnings)
{
    return std::any_of(beginnings.cbegin(), beginnings.cend(),
                       [&text](const QString &beginning) { return text.startsWith(beginning); });
}

} // namespace

LogCapture::LogCapture()
{
    Q_ASSERT(!s_capture);
    s_capture = this;
    m_previous = qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_capture = nullptr;
    for (const QString &text : qAsConst(m_unexpected))
        QTest::qFail(qPrintable(QStringLiteral("unexpected warning: ") + text), __FILE__, __LINE__);
}

QStringList LogCapture::linesStartingWith(const QString &beginning) const
{
    QStringList found;
    std::copy_if(m_lines.cbegin(), m_lines.cend(), std::back_inserter(found),
                 [&beginning](const QString &line) { return line.startsWith(beginning); });
    return found;
}

bool LogCapture::isExpected(const QString &text) const
{
    return startsWithOneOf(text, m_expected) || startsWithOneOf(text, platformNoise());
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    s_capture->m_lines.append(text);
    if ((type == QtWarningMsg || type == QtCriticalMsg) && !s_capture->isExpected(text))
        s_capture->m_unexpected.append(text);
    if (type == QtFatalMsg && s_capture->m_previous)
        s_capture->m_previous(type, context, text);
}
