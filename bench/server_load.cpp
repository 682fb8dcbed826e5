// Load on a real quorvel-server process over loopback: N clients log in (open registration),
// then chat lines flow at a fixed rate and each line's delivery to every client is timed.
// One row, with these counters:
//   clients          clients logged in at once at the end
//   login_all_s      time to log in the first N-1 clients (32 logins in flight)
//   last_login_ms    from the last client's "LG" to its N-th "AN" (target: under 300 ms)
//   chat_p50_ms, chat_p99_ms, chat_max_ms   delivery of each line to each client, while
//                    lines flow at --rate per second (target p99: under 100 ms)
//   chat_lost        deliveries that never arrived
//   server_rss_mb    server resident memory with all sessions after the chat (target: < 150)
// Options before the benchmark's own: --clients=N (default 2000), --rate=R (20),
// --chat-seconds=S (10), --server=PATH.
#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <sys/resource.h>
#include <vector>

using protocol::Code;

namespace {

struct Settings
{
    int clients = 2000;
    int rate = 20;
    int chatSeconds = 10;
    QString server = QStringLiteral(QUORVEL_BINARY_DIR "/src/server/quorvel-server");
};
Settings g_settings;

QElapsedTimer g_clock;

struct ChatRecord
{
    std::vector<qint64> sentNs;
    std::vector<double> latenciesMs;
};

// One simulated player: greets, logs in, then only counts "AN" and times chat lines.
class LoadClient : public QObject
{
public:
    LoadClient(QString name, ChatRecord &chat) : m_name(std::move(name)), m_chat(chat)
    {
        connect(&m_socket, &QTcpSocket::connected, this, [this] {
            m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
            m_socket.write(protocol::buildMessage(Code::Version, {"V 6.0"}));
        });
        connect(&m_socket, &QTcpSocket::readyRead, this, [this] { read(); });
        connect(&m_socket, &QTcpSocket::disconnected, this, [this] { m_dropped = true; });
    }

    void start(quint16 port) { m_socket.connectToHost(QHostAddress::LocalHost, port); }
    void send(const QByteArray &bytes) { m_socket.write(bytes); }

    bool loggedIn() const { return m_loggedIn; }
    bool failed() const { return m_failed || m_dropped; }
    bool greeted() const { return m_greeted; }
    int announcements() const { return m_announcements; }
    qint64 loginSentNs() const { return m_loginSentNs; }
    qint64 lastAnnouncementNs() const { return m_lastAnnouncementNs; }
    void holdLogin(bool hold) { m_holdLogin = hold; }
    void sendLogin()
    {
        m_loginSentNs = g_clock.nsecsElapsed();
        m_socket.write(protocol::buildMessage(Code::Login, {m_name, QStringLiteral("pw")}));
    }

private:
    void read()
    {
        m_buffer.append(m_socket.readAll());
        while (const auto frame = m_buffer.next()) {
            switch (frame->code) {
            case Code::SendLogin:
                m_greeted = true;
                if (!m_holdLogin)
                    sendLogin();
                break;
            case Code::LoginAccepted:
                m_loggedIn = true;
                break;
            case Code::LoginFailed:
                m_failed = true;
                break;
            case Code::AddPlayer:
                ++m_announcements;
                m_lastAnnouncementNs = g_clock.nsecsElapsed();
                break;
            case Code::ChatLine: {
                const qint64 now = g_clock.nsecsElapsed();
                const auto fields = protocol::splitFields(frame->body, 3);
                bool ok = false;
                const int seq = fields ? fields->at(2).mid(1).toInt(&ok) : -1;
                if (ok && seq >= 0 && std::size_t(seq) < m_chat.sentNs.size())
                    m_chat.latenciesMs.push_back(double(now - m_chat.sentNs[seq]) / 1e6);
                break;
            }
            default:
                break;
            }
        }
    }

    QString m_name;
    ChatRecord &m_chat;
    QTcpSocket m_socket;
    protocol::FrameBuffer m_buffer{protocol::Direction::ToClient};
    bool m_greeted = false;
    bool m_loggedIn = false;
    bool m_failed = false;
    bool m_dropped = false;
    bool m_holdLogin = false;
    int m_announcements = 0;
    qint64 m_loginSentNs = 0;
    qint64 m_lastAnnouncementNs = 0;
};

template <typename Condition> bool runUntil(Condition done, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

double residentMb(qint64 pid, const char *field)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return -1;
}

double percentile(std::vector<double> &values, double p)
{
    if (values.empty())
        return -1;
    const std::size_t i = std::min(values.size() - 1, std::size_t(p * double(values.size())));
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(i), values.end());
    return values[i];
}

void BM_LobbyLoad(benchmark::State &state)
{
    const int n = g_settings.clients;
    for (auto _ : state) {
        QTemporaryDir dir;
        QProcess server;
        server.start(g_settings.server, {"--port", "0", "--listen", "127.0.0.1", "--db",
                                         dir.filePath("load.sqlite"), "--registration", "open"});
        QByteArray out;
        static const QRegularExpression listening(QStringLiteral(":(\\d+)\\n"));
        quint16 port = 0;
        runUntil(
            [&] {
                server.waitForReadyRead(50);
                out += server.readAllStandardOutput();
                const auto match = listening.match(QString::fromUtf8(out));
                port = match.hasMatch() ? match.captured(1).toUShort() : 0;
                return port != 0 || server.state() == QProcess::NotRunning;
            },
            10000);
        if (port == 0) {
            state.SkipWithError("the server did not start");
            return;
        }

        ChatRecord chat;
        std::vector<std::unique_ptr<LoadClient>> clients;
        for (int i = 0; i < n; ++i)
            clients.push_back(std::make_unique<LoadClient>(QStringLiteral("load%1").arg(i), chat));

        // Everyone but the last, a bounded number at a time.
        QElapsedTimer phase;
        phase.start();
        int started = 0;
        const auto settled = [&] {
            int inFlight = 0;
            int done = 0;
            for (int i = 0; i < started; ++i) {
                if (clients[i]->failed())
                    return true;
                if (clients[i]->loggedIn())
                    ++done;
                else
                    ++inFlight;
            }
            while (inFlight < 32 && started < n - 1) {
                clients[started++]->start(port);
                ++inFlight;
            }
            return done == n - 1;
        };
        if (!runUntil(settled, 600000)) {
            state.SkipWithError("logging in the first clients timed out");
            return;
        }
        const double loginAllS = double(phase.elapsed()) / 1000.0;

        LoadClient &last = *clients[n - 1];
        last.holdLogin(true);
        last.start(port);
        runUntil([&] { return last.greeted() || last.failed(); }, 10000);
        // Let the announcements of the others settle before the measured login.
        QElapsedTimer quiet;
        quiet.start();
        runUntil([&] { return quiet.elapsed() > 500; }, 1000);
        last.sendLogin();
        runUntil([&] { return last.announcements() >= n || last.failed(); }, 30000);
        const double lastLoginMs = double(last.lastAnnouncementNs() - last.loginSentNs()) / 1e6;

        // Chat: lines at a fixed rate from changing senders, each sender once per 100 lines.
        const int lines = g_settings.rate * g_settings.chatSeconds;
        chat.sentNs.assign(std::size_t(lines), 0);
        chat.latenciesMs.reserve(std::size_t(lines) * std::size_t(n));
        int sent = 0;
        QTimer pacer;
        pacer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&pacer, &QTimer::timeout, [&] {
            if (sent >= lines)
                return;
            chat.sentNs[std::size_t(sent)] = g_clock.nsecsElapsed();
            clients[std::size_t((sent * 97) % n)]->send(
                protocol::buildMessage(Code::ChatLine, {QStringLiteral("c%1").arg(sent)}));
            ++sent;
        });
        pacer.start(1000 / g_settings.rate);
        runUntil([&] { return sent >= lines; }, g_settings.chatSeconds * 2000 + 5000);
        runUntil([&] { return chat.latenciesMs.size() >= std::size_t(lines) * std::size_t(n); },
                 5000);
        pacer.stop();

        int connected = 0;
        for (const auto &c : clients)
            connected += c->loggedIn() && !c->failed() ? 1 : 0;
        const double rssMb = residentMb(server.processId(), "VmRSS:");
        const double hwmMb = residentMb(server.processId(), "VmHWM:");

        state.counters["clients"] = connected;
        state.counters["login_all_s"] = loginAllS;
        state.counters["last_login_ms"] = lastLoginMs;
        state.counters["last_login_an"] = last.announcements();
        state.counters["chat_lines"] = lines;
        state.counters["chat_lost"] =
            double(std::size_t(lines) * std::size_t(n) - chat.latenciesMs.size());
        state.counters["chat_p50_ms"] = percentile(chat.latenciesMs, 0.50);
        state.counters["chat_p99_ms"] = percentile(chat.latenciesMs, 0.99);
        state.counters["chat_max_ms"] = percentile(chat.latenciesMs, 1.0);
        state.counters["server_rss_mb"] = rssMb;
        state.counters["server_peak_mb"] = hwmMb;

        clients.clear();
        server.kill();
        server.waitForFinished(5000);
    }
}

BENCHMARK(BM_LobbyLoad)->Iterations(1)->Unit(benchmark::kSecond);

// Takes this program's own options out of argv before the benchmark library sees them.
void takeSettings(int &argc, char **argv)
{
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        const auto value = [&](const char *name) { return arg.mid(int(qstrlen(name))); };
        if (arg.startsWith(QLatin1String("--clients=")))
            g_settings.clients = qMax(2, value("--clients=").toInt());
        else if (arg.startsWith(QLatin1String("--rate=")))
            g_settings.rate = qBound(1, value("--rate=").toInt(), 1000);
        else if (arg.startsWith(QLatin1String("--chat-seconds=")))
            g_settings.chatSeconds = qMax(1, value("--chat-seconds=").toInt());
        else if (arg.startsWith(QLatin1String("--server=")))
            g_settings.server = value("--server=");
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    takeSettings(argc, argv);
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    g_clock.start();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
