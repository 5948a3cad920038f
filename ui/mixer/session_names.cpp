#include "ui/mixer/session_names.h"

#include <QFile>

#include <system_error>

namespace orvane::ui {

namespace {

const QString sessionSuffix = QStringLiteral(".orvane");

} // namespace

std::filesystem::path toPath(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

QString toName(const std::filesystem::path& path) {
    return QFile::decodeName(path.c_str());
}

bool isSessionName(const QString& name) {
    return name.endsWith(sessionSuffix, Qt::CaseInsensitive)
           || name.endsWith(QStringLiteral(".json"), Qt::CaseInsensitive);
}

QString withSessionSuffix(const QString& name) {
    return name.endsWith(sessionSuffix, Qt::CaseInsensitive) ? name : name + sessionSuffix;
}

bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code unknown;
    return one == other || std::filesystem::equivalent(one, other, unknown);
}

} // namespace orvane::ui
