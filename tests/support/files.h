#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

// Writes `content` to `path`, creating the folders on the way; whether it all went.
inline bool writeFile(const QString &path, const QByteArray &content = {})
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Copies the files of `from` and of the folders below it into `to`; whether all were copied.
inline bool copyFolder(const QString &from, const QString &to)
{
    bool copied = true;
    QDirIterator it(from, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(file));
        copied =
            QDir().mkpath(QFileInfo(target).absolutePath()) && QFile::copy(file, target) && copied;
    }
    return copied;
}

// A shell script at `path` with `body` as its commands, executable.
inline bool writeScript(const QString &path, const QByteArray &body)
{
    return writeFile(path, "#!/bin/sh\n" + body + "\n") &&
           QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::ExeUser);
}

// A Wine system.reg at `path` in which `game` ("Rogue Spear", "Black Ops") calls the local
// player `name`.
inline bool writeGamePlayerName(const QString &path, const QString &game, const QString &name)
{
    return writeFile(path, "WINE REGISTRY Version 2\n\n[Software\\\\Red Storm Entertainment\\\\" +
                               game.toUtf8() + "] 1700000001\n\"MultiplayerPlayerName\"=\"" +
                               name.toUtf8() + "\"\n");
}
