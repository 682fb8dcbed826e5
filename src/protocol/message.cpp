#include "protocol/message.h"

#include "protocol/cp1252.h"

namespace protocol {

QByteArray buildMessage(Code code, const QStringList &fields)
{
    QByteArray out;
    qsizetype size = 3;
    for (const QString &f : fields)
        size += f.size() + 1;
    out.reserve(size);
    out.append(wireCode(code));
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out.append(kSeparator);
        QByteArray bytes = toCp1252(fields[i]);
        bytes.removeIf([](char c) { return c == kSeparator || c == kTerminator; });
        out.append(bytes);
    }
    out.append(kTerminator);
    return out;
}

std::optional<QStringList> splitFields(QByteArrayView body, int count)
{
    QStringList fields;
    if (!splitFieldsInto(body, count, fields))
        return std::nullopt;
    return fields;
}

bool splitFieldsInto(QByteArrayView body, int count, QStringList &fields)
{
    fields.clear();
    if (count <= 0)
        return true;
    fields.reserve(count);
    qsizetype start = 0;
    for (int i = 0; i < count - 1; ++i) {
        const qsizetype sep = body.indexOf(kSeparator, start);
        if (sep < 0)
            return false;
        fields.append(fromCp1252(body.sliced(start, sep - start)));
        start = sep + 1;
    }
    fields.append(fromCp1252(body.sliced(start)));
    return true;
}

QStringList splitAllFields(QByteArrayView body)
{
    QStringList fields;
    qsizetype start = 0;
    for (;;) {
        const qsizetype sep = body.indexOf(kSeparator, start);
        if (sep < 0) {
            fields.append(fromCp1252(body.sliced(start)));
            return fields;
        }
        fields.append(fromCp1252(body.sliced(start, sep - start)));
        start = sep + 1;
    }
}

} // namespace protocol
