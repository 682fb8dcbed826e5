#include "client/game/statustable.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace client {

namespace {

constexpr std::array<const char16_t *, StatusTable::kRows> kKeyNames = {
    u"",
    u"gamename\\",
    u"gamever\\",
    u"hostname\\",
    u"hostport\\",
    u"hostip\\",
    u"mapname\\",
    u"gametype\\",
    u"numplayers\\",
    u"maxplayers\\",
    u"gamemode\\",
    u"teamplay\\",
    u"password\\",
    u"rs_serverlocked\\",
    u"rs_mods\\",
    u"rs_kitrestrictions\\",
    u"rs_armpatches\\",
    u"rs_highbandwidth\\",
    u"timelimit\\",
    u"player_0\\",
    u"",
};

QString marker(const char *prefix, int index)
{
    return u'\\' + QLatin1String(prefix) + QString::number(index) + u'\\';
}

// The text from the backslash that ends `open` up to and including the backslash that
// starts `close` (`close` found at `closeAt`); "" when either is missing.
QString between(const QString &data, const QString &open, const QString &close, int from = 0)
{
    const qsizetype openAt = data.indexOf(open, from);
    if (openAt < 0)
        return {};
    const qsizetype start = openAt + open.size() - 1;
    const qsizetype closeAt = data.indexOf(close, start + 1);
    if (closeAt < 0)
        return {};
    return data.mid(start, closeAt - start + 1);
}

} // namespace

StatusTable::StatusTable() = default;

QString StatusTable::cell(int column, int row) const
{
    if (row < 0 || row >= kRows)
        return {};
    switch (column) {
    case 1:
        return QString::fromUtf16(kKeyNames[row]);
    case 2:
        return m_values[row];
    default:
        return {};
    }
}

int StatusTable::slotCount() const
{
    const double slots = leadingNumber(withoutBackslashes(m_values[MaxPlayers]));
    return slots < 1                                  ? 0
           : slots >= std::numeric_limits<int>::max() ? std::numeric_limits<int>::max()
                                                      : int(slots);
}

void StatusTable::parse(const QString &data)
{
    m_values[Player0].clear();
    parseKeys(data);
    m_hasTimeLimit = data.contains(QString::fromUtf16(kKeyNames[TimeLimit]));

    const double count = leadingNumber(withoutBackslashes(m_values[NumPlayers]));
    m_playerCount = count <= 0                                 ? 0
                    : count >= std::numeric_limits<int>::max() ? std::numeric_limits<int>::max()
                                                               : int(std::trunc(count));
    parsePlayers(data);
}

void StatusTable::parseKeys(const QString &data)
{
    // Each key is searched in what the earlier keys left over, so a value is always the text
    // between a key and the next key of the fixed order.
    qsizetype remaining = 0;
    for (int row = GameName; row < Player0; ++row) {
        const QString key = QString::fromUtf16(kKeyNames[row]);
        const QString next = QString::fromUtf16(kKeyNames[row + 1]);
        const qsizetype keyAt = data.indexOf(key, remaining);
        if (keyAt < 0)
            continue;
        const qsizetype start = keyAt + key.size() - 1;
        const qsizetype nextAt = data.indexOf(next, start + 1);
        if (nextAt < 0)
            continue;
        m_values[row] = data.mid(start, nextAt - start);
        remaining = nextAt - 1;
    }
}

void StatusTable::parsePlayers(const QString &data)
{
    m_players.clear();
    const int shown = std::min(m_playerCount, kMaxPlayers);
    for (int j = 0; j < shown; ++j) {
        const QString playerMarker = marker("player_", j);
        const QString teamMarker = marker("team_", j);
        const QString pingMarker = marker("ping_", j);
        Player player;
        player.name = between(data, playerMarker, teamMarker);
        player.team = between(data, teamMarker, pingMarker);
        player.ping = between(data, pingMarker, marker("player_", j + 1));
        if (player.ping.isEmpty()) {
            // The last player's ping runs up to "final\", whose backslash is the one before.
            const QString ping = between(data, pingMarker, QStringLiteral("final\\"));
            player.ping = ping.size() > 1 ? ping.chopped(1) : QString();
        }
        m_players.append(player);
    }
}

QString withoutBackslashes(const QString &text)
{
    QString out = text;
    out.remove(u'\\');
    return out;
}

QString withoutEnds(const QString &text)
{
    return text.size() < 2 ? QString() : text.mid(1, text.size() - 2);
}

double leadingNumber(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral(R"(^\s*[+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?)"));
    const QRegularExpressionMatch match = number.match(text);
    if (!match.hasMatch())
        return 0;
    const double value = match.captured(0).trimmed().toDouble();
    return std::isfinite(value) ? value : 0;
}

} // namespace client
