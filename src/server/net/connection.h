#pragma once

#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

class QTcpSocket;

namespace server {

// One client's lobby socket: cuts the byte stream into messages, sends bytes, and enforces
// the limits that protect the server from one client: a pending message may not grow past
// 64 KiB without its terminator, a client that stops reading may not make the server queue
// more than maxUnsent() bytes beyond what the kernel holds (it is dropped, and says so once
// with unsentOverflow()), and an optional silence limit closes a quiet connection.
//
// closed() is always emitted from the event loop, never from inside send() or a handler, so
// a caller that walks a list of connections while sending never sees one vanish.
class Connection : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype kMaxPending = 64 * 1024;
    static constexpr qint64 kDefaultMaxUnsent = 256 * 1024;

    // Takes ownership of the connected socket.
    Connection(QTcpSocket *socket, QObject *parent = nullptr);

    void send(const QByteArray &bytes);
    qint64 maxUnsent() const { return m_maxUnsent; }
    void setMaxUnsent(qint64 bytes) { m_maxUnsent = bytes; }
    // Sends what is queued, then closes. Nothing more is read or sent.
    void closeAfterFlush();
    bool isClosing() const { return m_closing; }

    // Closes the connection when nothing arrives for `ms` (0: never). Restarted by every
    // arrival and by this call.
    void setSilenceLimit(int ms);

    // The peer's address as dotted text; IPv4 peers on a dual-stack socket appear as IPv4.
    QString peerAddress() const { return m_peerAddress; }
    // The server's address as this peer reached it, in the same form.
    QString localAddress() const { return m_localAddress; }

Q_SIGNALS:
    // A complete message with exactly its field count; short messages are not emitted.
    void messageReceived(const protocol::Message &message);
    void closed();
    // The client was dropped for not reading: `unsent` bytes waited for it.
    void unsentOverflow(qint64 unsent);

private:
    void readAvailable();
    void finish();

    QTcpSocket *m_socket;
    protocol::FrameBuffer m_buffer{protocol::Direction::ToServer};
    QTimer m_silence;
    QString m_peerAddress;
    QString m_localAddress;
    qint64 m_maxUnsent = kDefaultMaxUnsent;
    bool m_closing = false;
    bool m_finished = false;
};

} // namespace server
