#pragma once

#include <QObject>
#include <QString>
#include <optional>

namespace client {

// The user's settings: what the options window `frmOptions` edits and the rest of the client
// reads. A change is in force at once (the signals tell who watches); it reaches the settings
// file only when the options window is closed. Initial values: everything off, no hot key, no
// game folders.
class Options : public QObject
{
    Q_OBJECT

public:
    explicit Options(QObject *parent = nullptr) : QObject(parent) {}

    // `chkAutoStart`: start the client when the user logs on.
    bool autoStart() const { return m_autoStart; }
    void setAutoStart(bool on);
    // `chkAutoLogIn`: log in at start-up with the saved credentials.
    bool autoLogIn() const { return m_autoLogIn; }
    void setAutoLogIn(bool on);
    // `chkSound`: "Play sounds".
    bool sound() const { return m_sound; }
    void setSound(bool on);
    // `chkReset`: the in-game stats-reset hot key is on.
    bool reset() const { return m_reset; }
    void setReset(bool on);

    // A desktop message when a buddy comes online or starts a game; on unless switched off.
    bool buddyNotifications() const { return m_buddyNotifications; }
    void setBuddyNotifications(bool on);

    // `txtHotKey`: its tag, the key's virtual-key code in decimal as stored (possibly empty or
    // not a number), and its text, the key's name.
    QString hotKeyTag() const { return m_hotKeyTag; }
    QString hotKeyText() const { return m_hotKeyText; }
    // The hot key's code when the tag is a number.
    std::optional<int> hotKey() const;
    // A key pressed in the hot-key field: the tag takes its code; the text takes its name
    // when it has one in the name table, and stays as it was otherwise.
    void captureHotKey(int virtualKey);
    // The tag as the settings file gives it; the text becomes the code's name, or empty.
    void setHotKeyTag(const QString &tag);

    // `txtPathRS`: the Rogue Spear folder (holds roguespear.exe); empty when not configured.
    QString pathRS() const { return m_pathRS; }
    void setPathRS(const QString &folder);
    // `txtPathBlackOps`: the Black Ops folder (holds R6BO.exe).
    QString pathBlackOps() const { return m_pathBlackOps; }
    void setPathBlackOps(const QString &folder);

Q_SIGNALS:
    void autoStartChanged(bool on);
    void autoLogInChanged(bool on);
    void soundChanged(bool on);
    void resetChanged(bool on);
    void buddyNotificationsChanged(bool on);
    void hotKeyChanged();
    void pathRSChanged(const QString &folder);
    void pathBlackOpsChanged(const QString &folder);

private:
    void setHotKey(const QString &tag, const QString &text);

    bool m_autoStart = false;
    bool m_autoLogIn = false;
    bool m_sound = false;
    bool m_reset = false;
    bool m_buddyNotifications = true;
    QString m_hotKeyTag;
    QString m_hotKeyText;
    QString m_pathRS;
    QString m_pathBlackOps;
};

} // namespace client
