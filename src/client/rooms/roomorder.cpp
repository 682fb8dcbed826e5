#include "client/rooms/roomorder.h"

#include "client/rooms/roomlistmodel.h"

#include <QCollator>
#include <optional>

namespace client {

namespace {

const QCollator &textCollator()
{
    static const QCollator collator = [] {
        // The "C" locale collates by code point; English is the better guess then.
        QCollator made(QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale());
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    return collator;
}

qsizetype runEnd(QStringView text, qsizetype from)
{
    const bool digits = text[from].isDigit();
    while (from < text.size() && text[from].isDigit() == digits)
        ++from;
    return from;
}

// Compares runs of digits by value and the text between them with the collator. (The
// collator's own numeric mode is not there in every Qt build.)
int compareNaturally(QStringView left, QStringView right)
{
    qsizetype l = 0, r = 0;
    while (l < left.size() && r < right.size()) {
        const qsizetype lEnd = runEnd(left, l), rEnd = runEnd(right, r);
        QStringView lRun = left.sliced(l, lEnd - l), rRun = right.sliced(r, rEnd - r);
        int order = 0;
        if (lRun[0].isDigit() && rRun[0].isDigit()) {
            while (lRun.size() > 1 && lRun[0] == u'0')
                lRun = lRun.sliced(1);
            while (rRun.size() > 1 && rRun[0] == u'0')
                rRun = rRun.sliced(1);
            order = lRun.size() != rRun.size() ? (lRun.size() < rRun.size() ? -1 : 1)
                                               : lRun.compare(rRun);
        } else {
            order = textCollator().compare(lRun, rRun);
        }
        if (order)
            return order;
        l = lEnd;
        r = rEnd;
    }
    return (left.size() - l > 0) - (right.size() - r > 0);
}

// Only a plain whole number ("  12") reads as one: this is how a person reads the cell, not
// how a message field is read, so "2.5" or "1e3" sorts as text.
std::optional<qint64> numberIn(const QString &cell)
{
    bool ok = false;
    const qint64 value = cell.trimmed().toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

} // namespace

int compareRoomCells(int column, const QString &left, const QString &right)
{
    if (column == RoomListModel::Players || column == RoomListModel::Ping) {
        const std::optional<qint64> l = numberIn(left), r = numberIn(right);
        if (l && r)
            return *l < *r ? -1 : *l > *r ? 1 : 0;
        if (l || r)
            return l ? -1 : 1;
    }
    if (const int order = compareNaturally(left, right))
        return order;
    // Texts the language takes as equal ("bob" and "Bob") still get one order.
    return left.compare(right);
}

} // namespace client
