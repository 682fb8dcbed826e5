#include "server/lobby/statshandler.h"

#include "server/core/serverlog.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/roundannouncer.h"
#include "server/net/messagerouter.h"
#include "server/net/session.h"
#include "server/store/statsstore.h"

#include <QDateTime>
#include <QPointer>

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

// Control characters (C0, DEL, C1) would reach the pages and the logs as they came.
QString cleanText(const QString &text, qsizetype maxChars)
{
    QString clean;
    clean.reserve(std::min(text.size(), maxChars));
    for (const QChar c : text) {
        if (clean.size() == maxChars)
            break;
        if (c >= u' ' && (c < u'\x7f' || c > u'\x9f'))
            clean.append(c);
    }
    return clean;
}

} // namespace

StatsHandler::StatsHandler(StatsStore &store, AccountLimits &limits, RoundAnnouncer *rounds)
    : m_store(store), m_limits(limits), m_rounds(rounds)
{
}

std::variant<StatsUpload, QString> StatsHandler::check(const Message &message)
{
    Decoded<StatsUpload> decoded = StatsUpload::decode(message);
    if (!decoded)
        return decoded.error();
    StatsUpload &upload = *decoded;
    if (!readCountedNumber(message.field(0), Sign::NotNegative))
        return QStringLiteral("own index \"%1\" is not a counted number").arg(message.field(0));
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
    for (qsizetype i = 0; i < count; ++i) {
        StatsRecord &r = upload.records[i];
        for (const auto &[name, field, sign] : {std::tuple{"P1", &r.p1, Sign::MayBeNegative},
                                                {"P2", &r.rounds, Sign::NotNegative},
                                                {"P3", &r.kills, Sign::MayBeNegative}}) {
            if (!readCountedNumber(field->text, sign))
                return QStringLiteral("record %1: %2 \"%3\" is not a counted number")
                    .arg(i + 1)
                    .arg(QLatin1String(name), field->text);
        }
        r.playerName = cleanText(r.playerName, kMaxNameChars);
        r.killedBy = cleanText(r.killedBy, kMaxNameChars);
        for (QString *text : {&r.p4, &r.p5, &r.p6, &r.p8})
            *text = cleanText(*text, kMaxTextChars);
    }
    upload.headerA = cleanText(upload.headerA, kMaxTextChars);
    upload.headerB = cleanText(upload.headerB, kMaxTextChars);
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
        m_writes.submit([this, accountId, uploader = QPointer<Session>(&sender),
                         upload = std::get<StatsUpload>(std::move(checked)), now] {
            const StatsStore::Added added = m_store.addRound(accountId, upload, now);
            if (added == StatsStore::Added::Busy)
                return WriteOutcome::Busy;
            if (added == StatsStore::Added::Counted && m_rounds && uploader)
                m_rounds->announce(*uploader, upload);
            return WriteOutcome::Written;
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
