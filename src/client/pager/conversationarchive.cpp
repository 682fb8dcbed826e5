#include "client/pager/conversationarchive.h"

#include "client/lobby/playername.h"
#include "client/platform/clock.h"

#include <QCryptographicHash>
#include <QDir>

namespace client {

namespace {

// File names stay well below the 255 bytes file systems allow.
constexpr qsizetype kMaxFolderName = 120;
constexpr qsizetype kCutFolderName = 72;

} // namespace

ConversationArchive::ConversationArchive(QString folder, const Clock &clock, QObject *parent)
    : QObject(parent), m_folder(std::move(folder)), m_clock(clock)
{
}

QString ConversationArchive::folderName(const QString &partner)
{
    const QByteArray key = nameKey(partner).toUtf8();
    // Unreserved URL characters stay as they are, except '.' and '~' (no "." or ".." folder,
    // and '~' marks a cut name); case folding has left no uppercase letter but in odd scripts,
    // and an uppercase ASCII letter is encoded too on file systems that ignore case.
    QByteArray encoded = key.toPercentEncoding({}, ".~ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    if (encoded.size() > kMaxFolderName)
        encoded = encoded.left(kCutFolderName) + '~' +
                  QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex();
    return QString::fromLatin1(encoded);
}

ChatArchive *ConversationArchive::archiveOf(const QString &partner)
{
    const QString name = folderName(partner);
    if (m_folder.isEmpty() || name.isEmpty())
        return nullptr;
    ChatArchive *&archive = m_archives[name];
    if (!archive)
        archive = new ChatArchive(QDir(m_folder).filePath(name), m_clock, kLimits, this);
    return archive;
}

QList<ChatLine> ConversationArchive::earlierLines(const QString &partner)
{
    ChatArchive *archive = archiveOf(partner);
    return archive ? archive->newestLines(kLimits.restoredLines) : QList<ChatLine>();
}

void ConversationArchive::keep(const QString &partner, const QString &name, const QString &text)
{
    if (ChatArchive *archive = archiveOf(partner))
        archive->keep(ChatLine{m_clock.now().time(), name, Qt::black, text});
}

} // namespace client
