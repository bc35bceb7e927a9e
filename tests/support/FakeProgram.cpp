#include "support/FakeProgram.h"

#include <QFile>

namespace {

const QByteArray kEndOfCall("\x1e\n");

QString logOf(const QTemporaryDir &folder)
{
    return folder.filePath(QStringLiteral("calls"));
}

} // namespace

FakeProgram::FakeProgram(const QString &name, const QByteArray &script)
    : m_path(qgetenv("PATH"))
{
    QFile file(m_folder.filePath(name));
    if (file.open(QIODevice::WriteOnly)) {
        const QByteArray log = '"' + QFile::encodeName(logOf(m_folder)) + '"';
        file.write("#!/bin/sh\n{ printf '%s\\n' \"$@\"; printf '"
                   "\\036\\n'; } >> " +
                   log + '\n' + script);
    }
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    file.close();
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + m_path);
}

FakeProgram::~FakeProgram()
{
    qputenv("PATH", m_path);
}

QList<QStringList> FakeProgram::calls() const
{
    QList<QStringList> calls;
    QFile file(logOf(m_folder));
    if (!file.open(QIODevice::ReadOnly))
        return calls;
    QStringList arguments;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (line == kEndOfCall) {
            calls.append(arguments);
            arguments.clear();
        } else {
            arguments.append(QString::fromUtf8(line).chopped(1));
        }
    }
    return calls;
}
