#include "server/web/webserver.h"

#include "server/web/webroutes.h"

#include <QFile>
#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <fcntl.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace server {

namespace {

// Markers of a request's progress: its headers have been seen; it has been answered.
char s_headersSeen;
char s_answered;

MHD_Result addQueryItem(void *cls, MHD_ValueKind, const char *key, const char *value)
{
    static_cast<QUrlQuery *>(cls)->addQueryItem(QString::fromUtf8(key),
                                                value ? QString::fromUtf8(value) : QString());
    return MHD_YES;
}

// The answer's bytes stay with the page that made them (a cached page is shared by every
// visitor); the response holds a reference until it is sent.
MHD_Response *bytesResponse(const QByteArray &body)
{
    auto held = std::make_unique<QByteArray>(body);
    MHD_Response *response = MHD_create_response_from_buffer_with_free_callback_cls(
        size_t(held->size()), const_cast<char *>(held->constData()),
        [](void *cls) { delete static_cast<QByteArray *>(cls); }, held.get());
    if (response)
        held.release(); // owned by the response now
    return response;
}

// A file answered straight from the disk; nullptr when it cannot be opened as one.
MHD_Response *fileResponse(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    struct stat info
    {
    };
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return nullptr;
    }
    MHD_Response *response = MHD_create_response_from_fd64(uint64_t(info.st_size), fd);
    if (!response)
        ::close(fd);
    return response;
}

MHD_Result queue(MHD_Connection *connection, const WebResponse &answer)
{
    MHD_Response *response = nullptr;
    int status = answer.status;
    if (!answer.file.isEmpty()) {
        response = fileResponse(answer.file);
        if (!response) { // replaced or removed since the page looked
            status = 404;
            response = bytesResponse(QByteArrayLiteral("Not found.\n"));
        }
    } else {
        response = bytesResponse(answer.body);
    }
    if (!response)
        return MHD_NO;
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE,
                            answer.contentType.isEmpty() ? "text/plain; charset=utf-8"
                                                         : answer.contentType.constData());
    for (const auto &[name, value] : answer.headers)
        MHD_add_response_header(response, name.constData(), value.constData());
    const MHD_Result queued = MHD_queue_response(connection, unsigned(status), response);
    MHD_destroy_response(response);
    return queued;
}

MHD_Result onRequest(void *cls, MHD_Connection *connection, const char *url, const char *method,
                     const char *, const char *, size_t *uploadSize, void **requestState)
{
    if (*requestState == &s_answered) {
        *uploadSize = 0; // a body sent anyway is dropped with the connection
        return MHD_YES;
    }
    // The pages give way to the lobby when both want the processor: a crowd of visitors
    // slows the pages, not the chat.
    thread_local const bool yielding = ::setpriority(PRIO_PROCESS, id_t(::gettid()), 10) == 0;
    Q_UNUSED(yielding);
    const auto &routes = *static_cast<const WebRoutes *>(cls);

    WebRequest request;
    request.method = method;
    request.path = QString::fromUtf8(url);
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, addQueryItem, &request.query);
    request.ifNoneMatch =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_IF_NONE_MATCH);

    // Pages take no body: one announced is refused before any of it is read.
    const char *length =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_CONTENT_LENGTH);
    const bool body =
        (length && std::strcmp(length, "0") != 0) ||
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_TRANSFER_ENCODING);
    const bool readOnly = request.method == "GET" || request.method == "HEAD";
    if (*requestState == nullptr && !body && readOnly) {
        // Answered on the next call, once the request is whole: an answer queued before that
        // would close a connection the browser means to keep.
        *requestState = &s_headersSeen;
        return MHD_YES;
    }
    *requestState = &s_answered;
    WebResponse answer = routes.answer(request);
    if (body && answer.status != 405) {
        answer = WebResponse::plainText(QByteArrayLiteral("Pages take no body.\n"), 413);
        answer.withHeader("X-Content-Type-Options", "nosniff");
    }
    if (body)
        answer.withHeader(MHD_HTTP_HEADER_CONNECTION, "close");
    return queue(connection, answer);
}

int descriptorLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return INT_MAX;
    return int(std::min<rlim_t>(limit.rlim_cur, INT_MAX));
}

} // namespace

WebServer::WebServer(const WebRoutes &routes, const WebLimits &limits)
    : m_routes(routes), m_limits(limits)
{
}

WebServer::~WebServer()
{
    stop();
}

void WebServer::stop()
{
    if (m_daemon)
        MHD_stop_daemon(std::exchange(m_daemon, nullptr));
}

bool WebServer::listen(const QHostAddress &address, quint16 port)
{
    if (m_daemon)
        return false;
    m_maxConnections = std::max(1, std::min(m_limits.maxConnections, descriptorLimit() / 4));

    sockaddr_in v4{};
    sockaddr_in6 v6{};
    const sockaddr *bound = nullptr;
    unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_EPOLL;
    if (address == QHostAddress::Any || address.protocol() == QAbstractSocket::IPv6Protocol) {
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        if (address == QHostAddress::Any) {
            v6.sin6_addr = in6addr_any;
            flags |= MHD_USE_DUAL_STACK;
        } else {
            const Q_IPV6ADDR bytes = address.toIPv6Address();
            std::memcpy(&v6.sin6_addr, &bytes, sizeof bytes);
            v6.sin6_scope_id = address.scopeId().toUInt();
            flags |= MHD_USE_IPv6;
        }
        bound = reinterpret_cast<const sockaddr *>(&v6);
    } else {
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        v4.sin_addr.s_addr = htonl(address.toIPv4Address());
        bound = reinterpret_cast<const sockaddr *>(&v4);
    }
    const auto start = [&](unsigned useFlags, const sockaddr *at) {
        return MHD_start_daemon(
            useFlags, port, nullptr, nullptr, onRequest, const_cast<WebRoutes *>(&m_routes),
            MHD_OPTION_SOCK_ADDR, at, MHD_OPTION_CONNECTION_LIMIT, unsigned(m_maxConnections),
            MHD_OPTION_PER_IP_CONNECTION_LIMIT, unsigned(m_limits.maxConnectionsPerAddress),
            MHD_OPTION_CONNECTION_TIMEOUT, unsigned(m_limits.timeoutSeconds),
            MHD_OPTION_CONNECTION_MEMORY_LIMIT, size_t(m_limits.memoryPerConnection),
            MHD_OPTION_LISTEN_BACKLOG_SIZE, 256u, MHD_OPTION_END);
    };
    m_daemon = start(flags, bound);
    if (!m_daemon && address == QHostAddress::Any) { // a host without IPv6
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        v4.sin_addr.s_addr = htonl(INADDR_ANY);
        m_daemon = start(MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_EPOLL,
                         reinterpret_cast<const sockaddr *>(&v4));
    }
    if (!m_daemon)
        return false;
    const MHD_DaemonInfo *info = MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_BIND_PORT);
    m_port = info ? info->port : port;
    return true;
}

} // namespace server
