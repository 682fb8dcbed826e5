#pragma once

#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>
#include <chrono>

namespace client {

// Reads a text value of a Wine prefix's machine registry from Wine itself ("wine reg export" of
// the key to a temporary file), which sees a change at once where the prefix's system.reg gets
// it only every half minute or when Wine ends. The export is UTF-16, so any name survives,
// where "reg query" would print in the console's code page. Asks each key in turn until one holds
// the value, without blocking: each question gets `kTimeout`, then counts as unanswered. The object
// deletes itself after `finished`.
class WineRegistryQuery : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kTimeout{10000};

    // `keys` are full paths ("HKLM\Software\..."); `wineCommand` as a shell would split it.
    WineRegistryQuery(QString wineCommand, QString prefix, QStringList keys, QString name,
                      QObject *parent);
    ~WineRegistryQuery() override;

    // Asks the first key; `finished` follows from the event loop.
    void start();

    // The text of the value `name` of `key` ("HKLM\...") in a file "reg export" wrote; ""
    // when it is not there or is not text.
    static QString valueIn(const QByteArray &exported, const QString &key, const QString &name);

Q_SIGNALS:
    // The value's text; "" when no key held it or Wine could not be asked.
    void finished(const QString &value);

private:
    void askNext();
    void answered(const QString &value);

    QString m_wineCommand;
    QString m_prefix;
    QStringList m_keys;
    QString m_name;
    QProcess *m_process = nullptr;
    QString m_exportFile; // kept while a question runs
    QTimer m_timeout;
};

} // namespace client
