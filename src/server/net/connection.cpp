#include "server/net/connection.h"

#include <QHostAddress>
#include <QTcpSocket>
#include <sys/socket.h>

namespace server {

namespace {
constexpr qint64 kReadChunk = 16 * 1024;

QString addressText(const QHostAddress &address)
{
    bool isV4 = false;
    const quint32 v4 = address.toIPv4Address(&isV4);
    return isV4 ? QHostAddress(v4).toString() : address.toString();
}
} // namespace

Connection::Connection(QTcpSocket *socket, QObject *parent)
    : QObject(parent), m_socket(socket), m_peerAddress(addressText(socket->peerAddress())),
      m_localAddress(addressText(socket->localAddress()))
{
    m_socket->setParent(this);
    // Lines go out as they are written; none waits for the acknowledgement of the one before.
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, [this] {
        m_closing = true;
        m_socket->abort();
        finish();
    });
    connect(m_socket, &QTcpSocket::readyRead, this, &Connection::readAvailable);
    connect(m_socket, &QTcpSocket::disconnected, this, &Connection::finish, Qt::QueuedConnection);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &Connection::finish, Qt::QueuedConnection);
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        QMetaObject::invokeMethod(this, &Connection::finish, Qt::QueuedConnection);
}

void Connection::setSilenceLimit(int ms)
{
    m_silence.stop();
    if (ms > 0) {
        m_silence.setInterval(ms);
        m_silence.start();
    }
}

void Connection::send(const QByteArray &bytes)
{
    // A peer that has just gone is closed before finish() runs from the event loop.
    if (m_closing || !m_socket->isOpen())
        return;
    const qint64 unsent = m_socket->bytesToWrite();
    if (unsent > 0 && unsent + bytes.size() > m_maxUnsent) {
        // A client that does not read would otherwise hold any amount of the server's memory.
        // What the kernel takes at once is not counted, so one big answer to a reading client
        // (a welcome to a full lobby) passes.
        m_closing = true;
        m_socket->abort();
        Q_EMIT unsentOverflow(unsent);
        QMetaObject::invokeMethod(this, &Connection::finish, Qt::QueuedConnection);
        return;
    }
    qsizetype sent = 0;
    const qintptr descriptor = m_socket->socketDescriptor();
    if (unsent == 0 && descriptor >= 0) {
        // Straight to the kernel while nothing waits. Whatever passes through the socket's own
        // buffer leaves a block of up to 32 KiB there for the socket's life (a welcome to a
        // full lobby fills one), so only what the kernel cannot take yet goes that way.
        const ssize_t written = ::send(int(descriptor), bytes.constData(), size_t(bytes.size()),
                                       MSG_DONTWAIT | MSG_NOSIGNAL);
        sent = written > 0 ? qsizetype(written) : 0;
        if (sent == bytes.size())
            return;
    }
    m_socket->write(bytes.constData() + sent, bytes.size() - sent);
    // Sent now rather than when the event loop next polls this socket: a broadcast to
    // thousands of sessions would otherwise trickle out one poll round per socket.
    m_socket->flush();
}

void Connection::closeAfterFlush()
{
    if (m_closing)
        return;
    m_closing = true;
    // A client that never reads would keep the closing socket forever.
    m_silence.setInterval(5000);
    m_silence.start();
    m_socket->disconnectFromHost();
    if (m_socket->state() == QAbstractSocket::UnconnectedState)
        QMetaObject::invokeMethod(this, &Connection::finish, Qt::QueuedConnection);
}

void Connection::readAvailable()
{
    if (m_closing)
        return;
    if (m_silence.isActive())
        m_silence.start();
    // Bounded reads: the limit on a pending message is checked before more is taken in. A read
    // of exactly what the socket holds takes over the socket's read block instead of copying
    // it, so that no quiet connection keeps a block of its own.
    while (!m_closing && m_socket->bytesAvailable() > 0) {
        m_buffer.append(m_socket->read(qMin(m_socket->bytesAvailable(), kReadChunk)));
        while (!m_closing) {
            const std::optional<protocol::FrameBuffer::Frame> frame = m_buffer.next();
            if (!frame)
                break;
            const int count =
                protocol::fieldCount(frame->code, protocol::Direction::ToServer).value_or(0);
            if (std::optional<QStringList> fields = protocol::splitFields(frame->body, count))
                Q_EMIT messageReceived(protocol::Message{frame->code, std::move(*fields)});
        }
        if (!m_closing && m_buffer.size() > kMaxPending && !m_buffer.holdsTerminator()) {
            m_closing = true;
            m_socket->abort();
            QMetaObject::invokeMethod(this, &Connection::finish, Qt::QueuedConnection);
        }
    }
    if (m_buffer.size() == 0)
        m_buffer.clear();
}

void Connection::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_closing = true;
    m_silence.stop();
    if (m_socket->state() != QAbstractSocket::UnconnectedState &&
        m_socket->state() != QAbstractSocket::ClosingState)
        m_socket->abort();
    Q_EMIT closed();
}

} // namespace server
