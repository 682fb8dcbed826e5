#pragma once

#include <QProcess>
#include <QStringList>

// Programs of this build that tests run as child processes.
inline const QString kLobbyServer = QStringLiteral(QUORVEL_BINARY_DIR "/src/server/quorvel-server");
inline const QString kFakeGame = QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/fakegame");
inline const QString kClient = QStringLiteral(QUORVEL_BINARY_DIR "/src/client/quorvel");
// The same client with a higher version ("V 6.1").
inline const QString kNewerClient = QStringLiteral(QUORVEL_BINARY_DIR "/tests/quorvel_next");

// An answer of a web server.
struct WebReply
{
    int status = 0; // 0: no answer within 10 s
    QByteArray contentType;
    QString body;
};
// GET `url`, waiting up to 10 s.
WebReply webGet(const QString &url);

// A server program in a child process that names its port at the end of its first line of
// output ("lobby listening on 127.0.0.1:PORT", "status 127.0.0.1 PORT"). Killed when it goes.
// A lobby server is started with a free web port unless the arguments name one.
class ServerProcess
{
public:
    ~ServerProcess() { killHard(); }
    // True once the program has said its port, within `timeoutMs`.
    bool start(const QString &program, const QStringList &arguments, int timeoutMs = 10000);
    quint16 port() const { return m_port; }
    quint16 webPort() const { return m_webPort; } // the lobby server's web pages, 0 if none
    // Its resident size now, in KiB; 0 when it is not running.
    qint64 residentKb() const;
    // Started with at most this many descriptors (soft and hard), for the next start().
    void setDescriptorLimit(int count) { m_descriptorLimit = count; }
    // The body of a web page of the server (`pathAndQuery` as "/?p=stats&id=3"); empty when
    // it did not come within 10 s or was not found.
    QString webPage(const QString &pathAndQuery) const;
    void killHard(); // SIGKILL, no chance to clean up

    struct Result
    {
        int exitCode = -1; // -1: crashed or hung
        QString out;
        QString err;
    };
    static Result run(const QString &program, const QStringList &arguments); // to its end

private:
    QProcess m_process;
    quint16 m_port = 0;
    quint16 m_webPort = 0;
    int m_descriptorLimit = 0;
};
