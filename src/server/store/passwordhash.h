#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <functional>

namespace server {

// Argon2id through libsodium. The cost is written into each hash, so verification follows
// the cost a password was stored with, whatever the cost of new hashes is now.
//   Standard: 2 passes over 19 MiB, for every real lobby.
//   Minimal:  the least libsodium allows, for test runs that log in hundreds of times; such
//             hashes are cheap to guess, so a lobby with real players never uses it.
enum class HashCost { Standard, Minimal };

QByteArray hashPassword(const QString &password,
                        HashCost cost = HashCost::Standard); // empty on failure
bool verifyPassword(const QByteArray &hash, const QString &password);

// Runs the hashing off the event loop: one hash takes tens of milliseconds, and the lobby
// must keep serving everyone else meanwhile. Results come back on the thread of `context`
// and are dropped when `context` is gone by then. Create it on the event loop's thread.
class PasswordWorker
{
public:
    explicit PasswordWorker(HashCost cost = HashCost::Standard, int threads = 2);
    ~PasswordWorker();

    void hash(const QString &password, QObject *context,
              std::function<void(const QByteArray &hash)> done);
    void verify(const QByteArray &hash, const QString &password, QObject *context,
                std::function<void(bool accepted)> done);

    int threads() const { return m_pool.maxThreadCount(); }
    // A hash of a random password at this worker's cost: checking a login of an unknown name
    // against it takes as long as checking a known one, so the time of the answer does not
    // tell which names exist.
    QByteArray dummyHash();

private:
    HashCost m_cost;
    QByteArray m_dummyHash;
    QObject m_receiver; // lives on the creating thread; results are posted to it
    QThreadPool m_pool; // declared last: destroyed (and drained) first
};

} // namespace server
