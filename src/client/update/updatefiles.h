#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QUrl>

namespace client {

// The files of an update, all in the folder of the installed program: the download is written
// beside the program as "quor_vel.tmp" and the replaced program is kept as "old.tmp" until the
// next update.
struct UpdateFiles
{
    QString executable; // the installed program; empty when unknown

    QString folder() const { return QFileInfo(executable).absolutePath(); }
    QString download() const { return QDir(folder()).filePath(QStringLiteral("quor_vel.tmp")); }
    QString signature() const { return download() + QStringLiteral(".sig"); }
    QString previous() const { return QDir(folder()).filePath(QStringLiteral("old.tmp")); }
    // Whether this user may replace the program without asking for administrator rights.
    bool folderWritable() const { return QFileInfo(folder()).isWritable(); }
};

// Where the lobby's web server publishes the current program, and its signature beside it.
inline QUrl updateUrl(const QString &webHost, quint16 webPort)
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(webHost);
    url.setPort(webPort == 80 ? -1 : webPort);
    url.setPath(QStringLiteral("/public/quorvel/quor_vel.exe"));
    return url;
}

inline QUrl signatureUrl(const QUrl &download)
{
    QUrl url = download;
    url.setPath(url.path() + QStringLiteral(".sig"));
    return url;
}

} // namespace client
