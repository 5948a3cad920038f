#pragma once

#include <QString>

#include <filesystem>

namespace orvane::ui {

// The names of session files, which are bytes to the system and text to dialogs. Main thread.

/// A path as a dialog writes it.
QString toName(const std::filesystem::path& path);

/// The file that a dialog or something that is dragged names.
std::filesystem::path toPath(const QString& name);

/// Whether a file of that name may be a session.
bool isSessionName(const QString& name);

/// A name that a session is to be saved under, with the ending of session files where it has none.
QString withSessionSuffix(const QString& name);

/// The name, without its folder, that the session of a file is to be saved under.
QString savedName(const std::filesystem::path& path);

/// Whether two paths lead to the same file; of files that cannot be found, whether the paths are the same.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace orvane::ui
