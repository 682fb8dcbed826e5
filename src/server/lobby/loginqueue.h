#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <deque>
#include <functional>

namespace server {

// Password checks waiting for their turn. At most `parallel` run at once, taken in turn from
// each address that has some waiting, so one address sending many logins delays itself and
// nobody else. At most `perAddress` wait for one address and `total` overall; add() refuses
// more. A check whose owner is gone before its turn is not run: `abandoned` is called instead.
//
// A running check calls the `finished` it is given once it is done (from the event loop),
// whether or not its owner still exists; the next check starts then.
class LoginQueue : public QObject
{
    Q_OBJECT

public:
    using Finished = std::function<void()>;
    using Check = std::function<void(Finished finished)>;

    LoginQueue(int parallel, int perAddress, int total, QObject *parent = nullptr);

    bool add(const QString &address, QObject *owner, Check check, std::function<void()> abandoned);
    int waiting() const { return m_waiting; }

private:
    struct Entry
    {
        QPointer<QObject> owner;
        Check check;
        std::function<void()> abandoned;
    };
    void startNext();

    int m_parallel;
    int m_perAddress;
    int m_total;
    QHash<QString, std::deque<Entry>> m_byAddress;
    std::deque<QString> m_turns; // addresses with checks waiting, next turn first
    int m_waiting = 0;
    int m_running = 0;
};

} // namespace server
