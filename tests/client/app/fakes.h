#pragma once

#include "client/platform/dialogs.h"
#include "client/platform/soundplayer.h"
#include "client/platform/trayservice.h"

// The tests run without a desktop: no notification area and no sound device.
class FakeTray final : public TrayService
{
public:
    bool available = true;
    bool shown = false;
    QString tip;
    int modifications = 0;

    bool isAvailable() const override { return available; }
    void add(const QIcon &, const QString &text) override
    {
        shown = true;
        tip = text;
    }
    void modify(const QIcon &, const QString &text) override
    {
        tip = text;
        ++modifications;
    }
    void remove() override { shown = false; }
    bool isShown() const override { return shown; }
    void doubleClick() { Q_EMIT doubleClicked(); }
};

class RecordingPlayer final : public SoundPlayer
{
public:
    void play(const QString &file) override { played << file; }
    QStringList played;
};

// Answers every dialog at once and remembers what was asked.
class FakeDialogs final : public Dialogs
{
public:
    QStringList messages;
    Answer answer = Answer::Ok;

    Answer messageBox(const QString &, const QString &text, Buttons, Icon) override
    {
        messages << text;
        return answer;
    }
    QString openFileName(const QString &, const QString &) override { return {}; }
    QString inputBox(const QString &, const QString &, const QString &, bool) override
    {
        return {};
    }
};
