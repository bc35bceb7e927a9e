#pragma once

#include <QString>

/// What a fake program and the test that plants it agree on: files beside the program.
namespace FakeProgramFiles {

inline const QString kPlan = QStringLiteral("plan.json");
inline const QString kCalls = QStringLiteral("calls");

inline const QString kOutput = QStringLiteral("output");
inline const QString kErrorOutput = QStringLiteral("errorOutput");
inline const QString kExitCode = QStringLiteral("exitCode");
inline const QString kHangs = QStringLiteral("hangs");
inline const QString kCrashes = QStringLiteral("crashes");
inline const QString kWhen = QStringLiteral("when");
inline const QString kAfter = QStringLiteral("after");

} // namespace FakeProgramFiles
