#pragma once

#include <QFile>
#include <QProcess>

inline const QString kFakeGame = QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/fakegame");

// A fakegame answering its status query on 127.0.0.1 and a free port.
struct FakeGame
{
    QProcess process;
    quint16 port = 0;

    bool start(const QStringList &arguments)
    {
        process.start(kFakeGame, QStringList{"-server", "0", "-bind", "127.0.0.1"} + arguments);
        if (!process.waitForStarted() || !process.waitForReadyRead(5000))
            return false;
        const QList<QByteArray> words = process.readLine().trimmed().split(' ');
        port = words.size() == 3 ? words[2].toUShort() : 0;
        return port != 0;
    }
    ~FakeGame()
    {
        process.kill();
        process.waitForFinished();
    }
};
