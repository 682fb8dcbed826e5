#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

// Writes `content` to `path`, creating the folders on the way; whether it all went.
inline bool writeFile(const QString &path, const QByteArray &content = {})
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Copies what `from` holds, folders and all, into `to`; whether it all went.
inline bool copyFolder(const QString &from, const QString &to)
{
    return QDir().mkpath(to) && QProcess::execute("cp", {"-R", from + "/.", to}) == 0;
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
