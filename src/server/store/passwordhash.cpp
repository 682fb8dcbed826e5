#include "server/store/passwordhash.h"

#include <QMetaObject>
#include <QPointer>
#include <sodium.h>

namespace server {

namespace {
constexpr unsigned long long kOpsLimit = 2;
constexpr size_t kMemLimit = 19 * 1024 * 1024;

bool sodiumReady()
{
    static const bool ready = sodium_init() >= 0;
    return ready;
}
} // namespace

QByteArray hashPassword(const QString &password, HashCost cost)
{
    if (!sodiumReady())
        return {};
    const bool minimal = cost == HashCost::Minimal;
    const QByteArray utf8 = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(out, utf8.constData(), static_cast<unsigned long long>(utf8.size()),
                          minimal ? crypto_pwhash_OPSLIMIT_MIN : kOpsLimit,
                          minimal ? crypto_pwhash_MEMLIMIT_MIN : kMemLimit) != 0)
        return {};
    return QByteArray(out);
}

bool verifyPassword(const QByteArray &hash, const QString &password)
{
    if (!sodiumReady() || hash.isEmpty() || hash.size() >= crypto_pwhash_STRBYTES)
        return false;
    const QByteArray utf8 = password.toUtf8();
    return crypto_pwhash_str_verify(hash.constData(), utf8.constData(),
                                    static_cast<unsigned long long>(utf8.size())) == 0;
}

PasswordWorker::PasswordWorker(HashCost cost, int threads) : m_cost(cost)
{
    m_pool.setMaxThreadCount(qMax(1, threads));
}

QByteArray PasswordWorker::dummyHash()
{
    if (m_dummyHash.isEmpty()) {
        QByteArray secret(32, Qt::Uninitialized);
        if (sodiumReady())
            randombytes_buf(secret.data(), size_t(secret.size()));
        m_dummyHash = hashPassword(QString::fromLatin1(secret.toHex()), m_cost);
    }
    return m_dummyHash;
}

PasswordWorker::~PasswordWorker()
{
    m_pool.waitForDone();
}

void PasswordWorker::hash(const QString &password, QObject *context,
                          std::function<void(const QByteArray &)> done)
{
    // The guard is only read back on the receiver's thread, where `context` lives.
    QPointer<QObject> guard(context);
    QObject *receiver = &m_receiver;
    m_pool.start([password, cost = m_cost, guard, receiver, done = std::move(done)] {
        QByteArray result = hashPassword(password, cost);
        QMetaObject::invokeMethod(
            receiver,
            [guard, done, result = std::move(result)] {
                if (guard)
                    done(result);
            },
            Qt::QueuedConnection);
    });
}

void PasswordWorker::verify(const QByteArray &hash, const QString &password, QObject *context,
                            std::function<void(bool)> done)
{
    QPointer<QObject> guard(context);
    QObject *receiver = &m_receiver;
    m_pool.start([hash, password, guard, receiver, done = std::move(done)] {
        const bool accepted = verifyPassword(hash, password);
        QMetaObject::invokeMethod(
            receiver,
            [guard, done, accepted] {
                if (guard)
                    done(accepted);
            },
            Qt::QueuedConnection);
    });
}

} // namespace server
