#pragma once

#include <QFile>
#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

inline QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string fromQt(const QString &text) {
    return text.toStdString();
}

inline QString pathToQt(const std::filesystem::path &path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

inline std::filesystem::path pathFromQt(const QString &text) {
    return QFile::encodeName(text).toStdString();
}

} // namespace nv
