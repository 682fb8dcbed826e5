#include "testclient.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QTest>

TestClient::TestClient(quint16 port, QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QTcpSocket::readyRead, this, &TestClient::readAvailable);
    m_socket.connectToHost(QHostAddress::LocalHost, port);
    m_socket.waitForConnected(5000);
}

bool TestClient::waitForDisconnected(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (m_socket.state() != QAbstractSocket::UnconnectedState && !deadline.hasExpired())
        QTest::qWait(5);
    return m_socket.state() == QAbstractSocket::UnconnectedState;
}

void TestClient::send(protocol::Code code, const QStringList &fields)
{
    sendRaw(protocol::buildMessage(code, fields));
}

void TestClient::sendRaw(const QByteArray &bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}

void TestClient::readAvailable()
{
    const QByteArray bytes = m_socket.readAll();
    m_raw += bytes;
    m_buffer.append(bytes);
    while (const auto frame = m_buffer.next()) {
        const int count =
            protocol::fieldCount(frame->code, protocol::Direction::ToClient).value_or(0);
        if (auto fields = protocol::splitFields(frame->body, count))
            m_messages.append({frame->code, *fields});
    }
}

qsizetype TestClient::indexOf(protocol::Code code) const
{
    for (qsizetype i = 0; i < m_messages.size(); ++i) {
        if (m_messages[i].code == code)
            return i;
    }
    return -1;
}

bool TestClient::hasPending(protocol::Code code, const QString &first) const
{
    return std::any_of(m_messages.cbegin(), m_messages.cend(), [&](const protocol::Message &m) {
        return m.code == code && m.field(0) == first;
    });
}

std::optional<protocol::Message> TestClient::take(protocol::Code code, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    qsizetype i = indexOf(code);
    while (i < 0 && !deadline.hasExpired()) {
        QTest::qWait(2);
        i = indexOf(code);
    }
    if (i < 0)
        return std::nullopt;
    return m_messages.takeAt(i);
}

QList<protocol::Message> TestClient::takeCount(protocol::Code code, int count, int timeoutMs)
{
    const auto matching = [&] {
        return std::count_if(m_messages.cbegin(), m_messages.cend(),
                             [code](const protocol::Message &m) { return m.code == code; });
    };
    QDeadlineTimer deadline(timeoutMs);
    while (matching() < count && !deadline.hasExpired())
        QTest::qWait(2);
    QList<protocol::Message> taken;
    for (qsizetype i = 0; i < m_messages.size() && taken.size() < count;) {
        if (m_messages[i].code == code)
            taken.append(m_messages.takeAt(i));
        else
            ++i;
    }
    return taken;
}

QList<protocol::Message> TestClient::takeAllAfter(protocol::Code code, int ms)
{
    QTest::qWait(ms);
    QList<protocol::Message> taken;
    for (qsizetype i = 0; i < m_messages.size();) {
        if (m_messages[i].code == code)
            taken.append(m_messages.takeAt(i));
        else
            ++i;
    }
    return taken;
}

bool TestClient::greet(const QString &version)
{
    send(protocol::Code::Version, {version});
    return take(protocol::Code::SendLogin).has_value();
}

std::optional<protocol::Message> TestClient::login(const QString &name, const QString &password)
{
    if (!greet())
        return std::nullopt;
    send(protocol::Code::Login, {name, password});
    QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired()) {
        if (indexOf(protocol::Code::LoginFailed) >= 0) {
            take(protocol::Code::LoginFailed);
            return std::nullopt;
        }
        if (indexOf(protocol::Code::LoginAccepted) >= 0)
            return take(protocol::Code::LoginAccepted);
        QTest::qWait(2);
    }
    return std::nullopt;
}

bool TestClient::receivedOnlyWellFormed() const
{
    qsizetype start = 0;
    while (start < m_raw.size()) {
        const qsizetype end = m_raw.indexOf(protocol::kTerminator, start);
        if (end < 0)
            return false;
        const QByteArrayView message = QByteArrayView(m_raw).sliced(start, end - start);
        const std::optional<protocol::Code> code =
            protocol::codeAt(message, protocol::Direction::ToClient);
        if (!code)
            return false;
        const int count = *protocol::fieldCount(*code, protocol::Direction::ToClient);
        const qsizetype separators = message.sliced(2).count(protocol::kSeparator);
        if (count == 0 ? message.size() != 2 : separators != count - 1)
            return false;
        start = end + 1;
    }
    return true;
}
