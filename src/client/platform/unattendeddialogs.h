#pragma once

#include "client/platform/dialogs.h"

#include <cstdio>

namespace client {

// Dialogs for a client that runs with nobody at the screen (scripted installs, test runs): a
// message box is written as a line to standard error and answered with its first button, the
// file dialog is cancelled and the input box keeps its default text.
class UnattendedDialogs final : public Dialogs
{
public:
    explicit UnattendedDialogs(std::FILE *out = stderr) : m_out(out) {}

    Answer messageBox(const QString &title, const QString &text, Buttons buttons, Icon) override
    {
        std::fprintf(m_out, "%s: %s\n", qPrintable(title), qPrintable(text));
        std::fflush(m_out);
        return buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok;
    }
    QString openFileName(const QString &, const QString &) override { return {}; }
    QString inputBox(const QString &, const QString &, const QString &defaultText, bool) override
    {
        return defaultText;
    }

private:
    std::FILE *m_out;
};

} // namespace client
