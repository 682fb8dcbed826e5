#pragma once

#include <QObject>

namespace client {

struct AppParts;

// The start-up, in its fixed order: the data folder (or a message and no start), the main
// window, the lobby and web hosts, the update installation when started with "update", the
// game queries, the session's first values, the tray icon, the settings with the autostart
// value, the automatic login, and last what a first start lacks: the options when no game
// folder is known (one question that says why), then the login window when no login is saved.
class StartupSequence : public QObject
{
    Q_OBJECT

public:
    // What a start without game folders asks: that none was found, and whether to open the
    // options to choose one, in one message.
    static QString offerOptionsText();

    explicit StartupSequence(AppParts &parts, QObject *parent = nullptr);

    // False (after telling the user) when the program cannot start.
    bool run();

Q_SIGNALS:
    // Started with "update", the new version was installed and runs: this program ends at
    // once.
    void updateInstalled();

private:
    bool makeDataFolder();
    // A first start finds no game and no login: the user is led to both rather than left
    // before an empty window.
    void offerFirstSteps();

    AppParts &m_parts;
};

} // namespace client
