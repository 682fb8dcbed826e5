// libFuzzer target: any bytes from clients through the lobby server's receive path, and every
// message decoder on the messages those bytes hold.
//
// The input is cut at each 0xFF into the streams of up to three clients. Each client is a real
// loopback TCP connection to a real LobbyServer listening on 127.0.0.1, greeted and logged in
// before its stream arrives, so the stream goes through the connection's framing and reaches
// every handler through the real dispatch. The store is a fresh database in memory (/dev/shm)
// per process. Nothing may crash, and the server must end and delete every session once its
// client has gone.
#include "protocol/chat.h"
#include "protocol/framebuffer.h"
#include "protocol/login.h"
#include "protocol/presence.h"
#include "protocol/rooms.h"
#include "protocol/stats.h"
#include "server/core/clock.h"
#include "server/lobby/lobbyserver.h"
#include "server/lobby/statshandler.h"
#include "server/net/session.h"
#include "server/store/accountstore.h"
#include "server/store/buddystore.h"
#include "server/store/database.h"
#include "server/store/diagnosticstore.h"
#include "server/store/passwordhash.h"
#include "server/store/statsstore.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <arpa/inet.h>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace protocol;

namespace {

class FuzzClock final : public server::Clock
{
public:
    qint64 nowMs() const override { return m_now; }
    void advance(qint64 ms) { m_now += ms; }

private:
    qint64 m_now = 1'000'000;
};

template <typename... Ts> void decodeAs(const Message &message)
{
    // Only the decoder of the message's own code and direction reads it; the others must
    // refuse it without reading.
    (static_cast<void>(Ts::decode(message)), ...);
}

// Every decoder, on every message the bytes hold as either side would cut them.
void decodeAll(QByteArrayView bytes)
{
    for (const Direction direction : {Direction::ToServer, Direction::ToClient}) {
        FrameBuffer buffer(direction);
        buffer.append(bytes.toByteArray());
        while (const std::optional<FrameBuffer::Frame> frame = buffer.next()) {
            const int count = fieldCount(frame->code, direction).value_or(0);
            const std::optional<QStringList> fields = splitFields(frame->body, count);
            if (!fields)
                continue;
            const Message message{frame->code, *fields};
            decodeAs<ChatLineToServer, ChatLineToClient, PrivateMessageToServer,
                     PrivateMessageToClient, Version, Login, LoginAccepted, AddPlayer, RemovePlayer,
                     PlayerStatusToServer, PlayerStatusToClient, BuddyAdd, BuddyRemove,
                     AddRoomToServer, AddRoomToClient, RemoveRoomToClient, RoomCount,
                     LockRoomToServer, LockRoomToClient, JoinRoom, MemberJoined, MemberLeft,
                     RoomChat, MemberReadyToServer, MemberReadyToClient, RoomStatusToServer,
                     RoomStatusToClient, StatsUpload, SendLogin, LoginFailed, OldVersion, KeepAlive,
                     RemoveRoomToServer, LeaveRoom, WrongPassword, StatsReset>(message);
        }
    }
}

struct Lobby
{
    Lobby()
    {
        const QString shm = QStringLiteral("/dev/shm");
        dir = std::make_unique<QTemporaryDir>((QDir(shm).exists() ? shm : QDir::tempPath()) +
                                              QStringLiteral("/fuzz-server-XXXXXX"));
        if (!database.open(dir->filePath(QStringLiteral("lobby.sqlite"))))
            std::abort();
        server::LobbyConfig config;
        config.openRegistration = true;
        server = std::make_unique<server::LobbyServer>(config, accounts, buddies, diagnostics,
                                                       passwords, clock);
        if (!server->listen(QHostAddress::LocalHost, 0))
            std::abort();
        statsHandler = std::make_unique<server::StatsHandler>(stats, server->limits());
        statsHandler->registerWith(server->router());
    }

    std::unique_ptr<QTemporaryDir> dir;
    server::Database database;
    server::AccountStore accounts{database};
    server::BuddyStore buddies{database};
    server::DiagnosticStore diagnostics{database};
    server::StatsStore stats{database};
    server::PasswordWorker passwords{server::HashCost::Minimal};
    FuzzClock clock;
    std::unique_ptr<server::LobbyServer> server;
    std::unique_ptr<server::StatsHandler> statsHandler;
};

Lobby &lobby()
{
    static int argc = 1;
    static char name[] = "fuzz_server";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static Lobby lobby;
    return lobby;
}

// Runs the event loop, deferred deletions included, until `done` or two seconds have passed.
// Password checks answer from other threads, so it sleeps between looks rather than spinning;
// the timer wakes it in time for the deadline.
template <typename F> bool runUntil(F done)
{
    const QDeadlineTimer deadline(2000);
    QTimer wake;
    wake.start(2);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return done();
}

// A client's end of a loopback connection to the lobby, non-blocking once connected. The
// kernel completes the handshake itself; the server accepts it from its event loop later.
int connectTo(quint16 port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd < 0 || ::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        std::abort();
    ::fcntl(fd, F_SETFL, O_NONBLOCK);
    return fd;
}

bool sessionsGone(const server::LobbyServer &server)
{
    return server.findChildren<server::Session *>(Qt::FindDirectChildrenOnly).isEmpty();
}

void drain(int fd)
{
    char sink[16 * 1024];
    while (::read(fd, sink, sizeof sink) > 0) {
    }
}

void writeAll(int fd, QByteArrayView bytes)
{
    qsizetype at = 0;
    while (at < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + at, size_t(bytes.size() - at));
        if (n > 0)
            at += n;
        drain(fd);
        QCoreApplication::processEvents();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView input(reinterpret_cast<const char *>(data), qsizetype(size));
    decodeAll(input);

    Lobby &l = lobby();
    QList<QByteArrayView> streams;
    for (qsizetype from = 0; streams.size() < 3;) {
        const qsizetype cut = input.indexOf('\xff', from);
        streams.append(input.sliced(from, (cut < 0 ? input.size() : cut) - from));
        if (cut < 0)
            break;
        from = cut + 1;
    }

    QList<int> clients;
    for (qsizetype i = 0; i < streams.size(); ++i) {
        const int fd = connectTo(l.server->serverPort());
        clients.append(fd);
        const QString name = QStringLiteral("P%1").arg(i);
        writeAll(fd, buildMessage(Code::Version, {QStringLiteral("V 6.0")}) +
                         buildMessage(Code::Login, {name, QStringLiteral("pw")}));
    }
    if (!runUntil([&] { return l.server->lobby().size() == streams.size(); }))
        std::abort();

    for (qsizetype i = 0; i < streams.size(); ++i)
        writeAll(clients[i], streams[i]);
    // Time moves on for the limits, so that later inputs are not all refused.
    l.clock.advance(60'000);
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        for (const int fd : clients)
            drain(fd);
    }
    for (const int fd : clients)
        ::close(fd);
    if (!runUntil([&] { return l.server->lobby().size() == 0 && sessionsGone(*l.server); }))
        std::abort();
    return 0;
}
