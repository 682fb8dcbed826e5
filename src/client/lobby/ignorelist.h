#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

namespace client {

// The players the user ignores: their lobby and room chat lines and their private messages are
// dropped as they arrive, and their entries in the player list are marked. Players are told
// apart as the lobby tells them apart (nameKey), so ignoring "Anna" ignores "ANNA" too. The
// list is kept in a file, one name per line in UTF-8 (a line break or "%" in a name as %XX),
// readable by its owner only, and read back when the object is made, so it holds across restarts
// and logins. Without a file (an empty path) it lasts until the program ends; a file that cannot be
// written leaves the list as it is in memory.
class IgnoreList : public QObject
{
    Q_OBJECT

public:
    static constexpr char kFileName[] = "ignored.txt";

    explicit IgnoreList(QString path, QObject *parent = nullptr);

    bool contains(const QString &name) const;
    // Ignores `name`, or stops ignoring him; the file is rewritten on a change.
    void setIgnored(const QString &name, bool ignored);
    // The names ignored, spelled as they were when first ignored, in key order.
    QStringList names() const { return m_names.values(); }

Q_SIGNALS:
    void changed();

private:
    void load();
    void save() const;

    QString m_path;
    QMap<QString, QString> m_names; // the name as first ignored, by its key
};

} // namespace client
