#include "client/lobby/ignorelist.h"

#include "client/lobby/playername.h"
#include "client/platform/privatefiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace client {

namespace {

// More than anyone ignores; a file larger than this was not written by the program.
constexpr qint64 kMaxFileBytes = 1024 * 1024;

// A name may hold any character the lobby lets through, line breaks included: those and the
// escape character itself are written as %XX so that each name stays one line.
QByteArray lineOf(const QString &name)
{
    QString line = name;
    line.replace(u'%', QStringLiteral("%25"))
        .replace(u'\n', QStringLiteral("%0A"))
        .replace(u'\r', QStringLiteral("%0D"));
    return line.toUtf8() + '\n';
}

} // namespace

IgnoreList::IgnoreList(QString path, QObject *parent) : QObject(parent), m_path(std::move(path))
{
    load();
}

bool IgnoreList::contains(const QString &name) const
{
    return !m_names.isEmpty() && m_names.contains(nameKey(name));
}

void IgnoreList::setIgnored(const QString &name, bool ignored)
{
    const QString key = nameKey(name);
    if (key.isEmpty() || m_names.contains(key) == ignored)
        return;
    if (ignored)
        m_names.insert(key, name);
    else
        m_names.remove(key);
    save();
    Q_EMIT changed();
}

void IgnoreList::load()
{
    QFile file(m_path);
    if (m_path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    for (QByteArray line : file.read(kMaxFileBytes).split('\n')) {
        if (line.endsWith('\r')) // a file edited by hand
            line.chop(1);
        const QString name = QString::fromUtf8(QByteArray::fromPercentEncoding(line));
        const QString key = nameKey(name);
        if (!key.isEmpty() && !m_names.contains(key))
            m_names.insert(key, name);
    }
}

void IgnoreList::save() const
{
    if (m_path.isEmpty() || !PrivateFiles::makeFolder(QFileInfo(m_path).absolutePath()))
        return;
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(PrivateFiles::kFile))
        return;
    for (const QString &name : m_names)
        file.write(lineOf(name));
    file.commit();
}

} // namespace client
