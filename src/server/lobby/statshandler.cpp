#include "server/lobby/statshandler.h"

#include "server/core/serverlog.h"
#include "server/lobby/accountlimits.h"
#include "server/net/messagerouter.h"
#include "server/net/session.h"
#include "server/store/statsstore.h"

#include <QDateTime>

namespace server {

using namespace protocol;

namespace {
const QString kUploads = QStringLiteral("stats upload");
const QString kResets = QStringLiteral("stats reset");

// The upload as it came, fields split by " | ", for the rejected upload's record.
QString uploadText(const Message &message)
{
    return message.fields.join(QChar(kSeparator)).replace(QChar(kSeparator), QStringLiteral(" | "));
}

} // namespace

StatsHandler::StatsHandler(StatsStore &store, AccountLimits &limits)
    : m_store(store), m_limits(limits)
{
}

std::variant<StatsUpload, QString> StatsHandler::check(const Message &message)
{
    Decoded<StatsUpload> decoded = StatsUpload::decode(message);
    if (!decoded)
        return decoded.error();
    const StatsUpload &upload = *decoded;
    if (upload.gameType != QLatin1String("Survival") &&
        upload.gameType != QLatin1String("Team Survival"))
        return QStringLiteral("game type \"%1\" is neither Survival nor Team Survival")
            .arg(upload.gameType);
    const qsizetype count = upload.records.size();
    if (count > kMaxRecords)
        return QStringLiteral("%1 player records, more than %2").arg(count).arg(kMaxRecords);
    if (upload.ownIndex < 0 || upload.ownIndex > count)
        return QStringLiteral("own index %1 names none of %2 records")
            .arg(upload.ownIndex)
            .arg(count);
    return std::move(*decoded);
}

void StatsHandler::registerWith(MessageRouter &router)
{
    // Not router.on<StatsUpload>(): an upload that does not decode is kept too.
    router.setHandler(StatsUpload::kCode, [this](Session &sender, const Message &message) {
        const int accountId = sender.player().accountId;
        if (!m_limits.tryAcquire(accountId, kUploads, AccountLimits::kStatsUploads))
            return;
        const QDateTime now = QDateTime::currentDateTimeUtc();
        auto checked = check(message);
        if (const QString *reason = std::get_if<QString>(&checked)) {
            qCInfo(lcLobby).noquote()
                << sessionTag(sender) << "statistics upload rejected:" << *reason;
            m_writes.submit([this, accountId, reason = *reason, upload = uploadText(message), now] {
                return m_store.addRejected(accountId, reason, upload, now);
            });
            return;
        }
        m_writes.submit([this, accountId, upload = std::get<StatsUpload>(std::move(checked)), now] {
            return m_store.addRound(accountId, upload, now) == StatsStore::Added::Busy
                       ? WriteOutcome::Busy
                       : WriteOutcome::Written;
        });
    });

    router.on<StatsReset>([this](Session &sender, const StatsReset &) {
        const int accountId = sender.player().accountId;
        if (!m_limits.tryAcquire(accountId, kResets, AccountLimits::kStatsResets))
            return;
        m_writes.submit([this, accountId, at = QDateTime::currentDateTimeUtc()] {
            return m_store.reset(accountId, at);
        });
    });
}

} // namespace server
