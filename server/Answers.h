#pragma once

#include <QString>

/// Refusals that several commands have in common.
namespace Answers {

inline const QString kUnknownUser = QStringLiteral("ERROR|User tidak ditemukan");
inline const QString kNotOnline = QStringLiteral("ERROR|User tidak online");
inline const QString kUnknownRoom = QStringLiteral("ERROR|Room tidak ditemukan");
inline const QString kAdminsOnly = QStringLiteral("ERROR|Hanya untuk administrator");
inline const QString kNotStored = QStringLiteral("ERROR|Perubahan tidak dapat disimpan");
inline const QString kNotRead = QStringLiteral("ERROR|Data tidak dapat dibaca");

} // namespace Answers
