#pragma once

#include <QString>

constexpr int kLongestShown = 200; // characters; no text of the server is laid out further

/// A text of the server as the panel shows it: on one line, and of bounded length.
[[nodiscard]] QString shownText(const QString &text);
