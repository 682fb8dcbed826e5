#pragma once

#include "protocol/codes.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <initializer_list>
#include <optional>

namespace protocol {

// One lobby message: a code and its fields, as text.
struct Message
{
    Code code;
    QStringList fields;

    // The field at `index`, or an empty string past the end.
    QString field(qsizetype index) const { return fields.value(index); }
};

// Code + fields joined by 0x0E + 0x0F, in code page 1252. A field cannot carry 0x0E or 0x0F
// (they would break the framing), so those characters are removed from the text.
QByteArray buildMessage(Code code, const QStringList &fields = {});

// Cuts the text between a code and its terminator into exactly `count` fields, as the
// handlers read them: fields before the last end at the next 0x0E, the last one takes the
// rest. nullopt when the body has fewer separators than `count` needs (a short message).
// A body for a field-less message (count 0) is ignored.
std::optional<QStringList> splitFields(QByteArrayView body, int count);
// The same into `fields` (cleared first, its capacity reused). False for a short message.
bool splitFieldsInto(QByteArrayView body, int count, QStringList &fields);

// Every field of a body, for messages whose length varies ("DS").
QStringList splitAllFields(QByteArrayView body);

} // namespace protocol
