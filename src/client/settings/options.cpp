#include "client/settings/options.h"

#include "client/settings/hotkeynames.h"

namespace client {

namespace {

template <typename T, typename Signal>
void assign(Options *options, T &member, const T &value, Signal signal)
{
    if (member == value)
        return;
    member = value;
    Q_EMIT(options->*signal)(value);
}

} // namespace

void Options::setAutoStart(bool on)
{
    assign(this, m_autoStart, on, &Options::autoStartChanged);
}

void Options::setAutoLogIn(bool on)
{
    assign(this, m_autoLogIn, on, &Options::autoLogInChanged);
}

void Options::setSound(bool on)
{
    assign(this, m_sound, on, &Options::soundChanged);
}

void Options::setReset(bool on)
{
    assign(this, m_reset, on, &Options::resetChanged);
}

void Options::setBuddyNotifications(bool on)
{
    assign(this, m_buddyNotifications, on, &Options::buddyNotificationsChanged);
}

void Options::setPathRS(const QString &folder)
{
    assign(this, m_pathRS, folder, &Options::pathRSChanged);
}

void Options::setPathBlackOps(const QString &folder)
{
    assign(this, m_pathBlackOps, folder, &Options::pathBlackOpsChanged);
}

std::optional<int> Options::hotKey() const
{
    bool ok = false;
    const int code = m_hotKeyTag.trimmed().toInt(&ok);
    return ok ? std::optional<int>(code) : std::nullopt;
}

void Options::captureHotKey(int virtualKey)
{
    const QString name = HotKeys::displayName(virtualKey);
    setHotKey(QString::number(virtualKey), name.isNull() ? m_hotKeyText : name);
}

void Options::setHotKeyTag(const QString &tag)
{
    bool ok = false;
    const int code = tag.trimmed().toInt(&ok);
    setHotKey(tag, ok ? HotKeys::displayName(code) : QString());
}

void Options::setHotKey(const QString &tag, const QString &text)
{
    if (tag == m_hotKeyTag && text == m_hotKeyText)
        return;
    m_hotKeyTag = tag;
    m_hotKeyText = text;
    Q_EMIT hotKeyChanged();
}

} // namespace client
