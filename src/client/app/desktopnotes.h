#pragma once

#include <QObject>
#include <QString>

namespace client {

class TrayService;

// The desktop notes of the tray icon, some of which offer to join a game. Qt 6.4's tray
// messages carry no buttons, so a click on the note is its "Join"; the desktop only says that
// a note was clicked, so the click belongs to the note shown last, and a note without an offer
// takes the offer of an earlier one away.
class DesktopNotes : public QObject
{
    Q_OBJECT

public:
    explicit DesktopNotes(TrayService &tray, QObject *parent = nullptr);

    void show(const QString &text);
    // A note whose click joins the game server at `address`.
    void showJoinOffer(const QString &text, const QString &address);

Q_SIGNALS:
    void joinRequested(const QString &address);

private:
    void clicked();

    TrayService &m_tray;
    QString m_offeredAddress; // of the note shown last; empty when it offered nothing
};

} // namespace client
