#include "ui/mixer/session_names.h"

#include <QFile>

#include <system_error>

namespace orvane::ui {

namespace {

const QString sessionSuffix = QStringLiteral(".orvane");
const QString jsonSuffix = QStringLiteral(".json");

} // namespace

std::filesystem::path toPath(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

QString toName(const std::filesystem::path& path) {
    return QFile::decodeName(path.c_str());
}

bool isSessionName(const QString& name) {
    return name.endsWith(sessionSuffix, Qt::CaseInsensitive)
           || name.endsWith(jsonSuffix, Qt::CaseInsensitive);
}

QString withSessionSuffix(const QString& name) {
    return name.endsWith(sessionSuffix, Qt::CaseInsensitive) ? name : name + sessionSuffix;
}

QString savedName(const std::filesystem::path& path) {
    QString name = toName(path.filename());
    if (name.endsWith(jsonSuffix, Qt::CaseInsensitive)) name.chop(jsonSuffix.size());
    return withSessionSuffix(name);
}

bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code unknown;
    return one == other || std::filesystem::equivalent(one, other, unknown);
}

} // namespace orvane::ui
