#pragma once

#include "client/presence/chatarchive.h"

#include <QHash>
#include <QObject>

namespace client {

class Clock;

// The private conversations kept on disk, so that a conversation opened after a restart shows
// its last lines again: one chat archive per partner, in a folder of `folder` named after the
// partner's name key, so that "Anna" and "ANNA" share one. Each partner's archive is capped on
// its own, oldest days first out. Without a folder nothing is kept.
class ConversationArchive : public QObject
{
    Q_OBJECT

public:
    static constexpr ChatArchive::Limits kLimits{
        .maxDayBytes = 64 * 1024, .maxTotalBytes = 256 * 1024, .restoredLines = 20};

    ConversationArchive(QString folder, const Clock &clock, QObject *parent = nullptr);

    // The newest lines kept of the conversation with `partner`, oldest first.
    QList<ChatLine> earlierLines(const QString &partner);
    // Keeps the line `name` wrote to or from `partner`, stamped with the current time.
    void keep(const QString &partner, const QString &name, const QString &text);

    // The name of the folder that keeps the conversation with `partner`: a name may hold any
    // character, so everything but lowercase ASCII letters, digits, '-' and '_' is %XX-encoded
    // (UTF-8), and a name too long for a file name is cut and told apart by a hash of it.
    // Empty for an empty name.
    static QString folderName(const QString &partner);

private:
    ChatArchive *archiveOf(const QString &partner);

    QString m_folder;
    const Clock &m_clock;
    QHash<QString, ChatArchive *> m_archives; // by folder name
};

} // namespace client
