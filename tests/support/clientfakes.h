#pragma once

#include <functional>

// Stand-ins for the operating-system services a test cannot use for real: no notification
// area and no sound device under the offscreen platform, dialogs that nobody answers, a
// keyboard nobody presses, and clocks that move only when a test moves them.

#include "client/desktop/trayservice.h"
#include "client/platform/clock.h"
#include "client/platform/dialogs.h"
#include "client/platform/keystate.h"
#include "client/platform/soundplayer.h"
#include "client/platform/tickcount.h"

class FakeTray final : public client::TrayService
{
public:
    bool available = true;
    bool shown = false;
    QString tip;

    bool isAvailable() const override { return available; }
    void add(const QIcon &, const QString &text) override
    {
        shown = true;
        tip = text;
    }
    void modify(const QIcon &, const QString &text) override { tip = text; }
    void remove() override { shown = false; }
    bool isShown() const override { return shown; }
    void showMessage(const QString &title, const QString &text) override
    {
        messages << title + ": " + text;
    }
    QStringList messages;
    // A click on the icon (or "Show" in its menu), and "Quit" in its menu.
    void activate() { Q_EMIT showRequested(); }
    void chooseQuit() { Q_EMIT quitRequested(); }
    // A click on the desktop note shown last.
    void clickMessage() { Q_EMIT messageClicked(); }
};

class RecordingPlayer final : public client::SoundPlayer
{
public:
    void play(const QString &file) override { played << file; }
    QStringList played;
};

// Answers every dialog at once in the user's place: message boxes from `answers` (Ok when
// empty), file dialogs from `files` (cancelled when empty), input boxes from `inputs`
// (cancelled when empty). Remembers each question in `asked`: a message box by its text,
// " [Yes/No]" added when it asks so; a file dialog as "file: FILTER"; an input box as
// "input: TITLE". `whileAsking` runs while a box is open, as the event loop would.
class FakeDialogs final : public client::Dialogs
{
public:
    QList<Answer> answers;
    QStringList files;
    QStringList inputs;
    QStringList asked;
    std::function<void()> whileAsking;

    Answer messageBox(const QString &, const QString &text, Buttons buttons, Icon) override
    {
        asked << text + (buttons == Buttons::YesNo ? " [Yes/No]" : "");
        return answers.isEmpty() ? Answer::Ok : answers.takeFirst();
    }
    QString openFileName(const QString &, const QString &filter) override
    {
        asked << "file: " + filter;
        return files.isEmpty() ? QString() : files.takeFirst();
    }
    QString inputBox(const QString &, const QString &title, const QString &, bool) override
    {
        asked << "input: " + title;
        if (whileAsking)
            whileAsking();
        return inputs.isEmpty() ? QString() : inputs.takeFirst();
    }
};

// A keyboard whose keys are down while a test holds them (by their virtual-key codes).
class FakeKeyState final : public client::KeyState
{
public:
    bool available = true;
    QList<int> down;

    bool isAvailable() const override { return available; }
    bool isKeyDown(int virtualKey) override { return available && down.contains(virtualKey); }
};

// A clock that stands still until it is set or advanced.
class ManualClock final : public client::Clock
{
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 1, 1), QTime(12, 0)))
        : m_now(std::move(start))
    {
    }
    QDateTime now() const override { return m_now; }
    void set(const QDateTime &time) { m_now = time; }
    void advanceSeconds(qint64 seconds) { m_now = m_now.addSecs(seconds); }

private:
    QDateTime m_now;
};

// A tick counter that stands still until a test sets it.
class ManualTickCount final : public client::TickCount
{
public:
    qint64 now() const override { return m_now; }
    void set(qint64 ticks) { m_now = ticks; }

private:
    qint64 m_now = 1000;
};
