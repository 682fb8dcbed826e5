#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>

// Writes `content` to `path`, creating the folders on the way; whether it all went.
inline bool writeFile(const QString &path, const QByteArray &content = {})
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}
