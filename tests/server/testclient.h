#pragma once

#include "protocol/codes.h"
#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTcpSocket>
#include <optional>

// A lobby client for server tests: a real socket that sends messages and collects what the
// server sends, cut into messages as the client cuts them.
class TestClient : public QObject
{
    Q_OBJECT

public:
    explicit TestClient(quint16 port, QObject *parent = nullptr);

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    bool waitForDisconnected(int timeoutMs = 5000);
    // Closes the connection from the client's side, as a client that quits does.
    void close() { m_socket.disconnectFromHost(); }

    void send(protocol::Code code, const QStringList &fields = {});
    void sendRaw(const QByteArray &bytes);

    // Removes and returns the first received message with `code`, waiting for it.
    std::optional<protocol::Message> take(protocol::Code code, int timeoutMs = 5000);
    // Waits until `count` messages with `code` have arrived, then removes and returns them.
    QList<protocol::Message> takeCount(protocol::Code code, int count, int timeoutMs = 5000);
    // Lets the server run for `ms`, then removes and returns every message with `code`.
    QList<protocol::Message> takeAllAfter(protocol::Code code, int ms = 300);
    // Whether a message with `code` and first field `first` has arrived and is not taken.
    bool hasPending(protocol::Code code, const QString &first) const;
    // Everything received and not taken, in order.
    const QList<protocol::Message> &pending() const { return m_messages; }
    void clear() { m_messages.clear(); }

    // True when every byte received so far forms complete messages of known codes, each
    // with exactly its field count: nothing for a client to skip or misread.
    bool receivedOnlyWellFormed() const;

    // "VE" with `version`; true when "SL" comes back.
    bool greet(const QString &version = QStringLiteral("V 6.0"));
    // Greets and logs in; the "LT" on success. Leaves the welcome ("AN", "AR") pending.
    std::optional<protocol::Message> login(const QString &name, const QString &password);

private:
    void readAvailable();
    qsizetype indexOf(protocol::Code code) const;

    QTcpSocket m_socket;
    protocol::FrameBuffer m_buffer{protocol::Direction::ToClient};
    QList<protocol::Message> m_messages;
    QByteArray m_raw;
};
