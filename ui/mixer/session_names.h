#pragma once

#include <QString>

#include <filesystem>

namespace orvane::ui {

// The names of session files, which are bytes for the system and text for dialogs. Main thread.

/// Returns a path as text for dialogs.
QString toName(const std::filesystem::path& path);

/// Returns the path of a file that a dialog or a drag names.
std::filesystem::path toPath(const QString& name);

/// Whether a file with this name can be a session.
bool isSessionName(const QString& name);

/// Returns the name to save a session under; adds the suffix of session files if it is missing.
QString withSessionSuffix(const QString& name);

/// Returns the name, without its folder, to save the session of a file under.
QString savedName(const std::filesystem::path& path);

/// Whether two paths lead to the same file; if a file does not exist, whether the paths are equal.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace orvane::ui
