#pragma once

#include "client/platform/dialogs.h"

#include <QList>
#include <QStringList>

// Answers dialogs in the user's place: each kind of dialog takes its answers from a queue
// (message boxes answer Ok, or No for Yes/No, when the queue is empty; file dialogs and input
// boxes answer as cancelled) and every question is recorded.
class ScriptedDialogs final : public Dialogs
{
public:
    struct Shown
    {
        QString title;
        QString text;
        Buttons buttons;
    };

    Answer messageBox(const QString &title, const QString &text, Buttons buttons, Icon) override
    {
        shown.append({title, text, buttons});
        if (!answers.isEmpty())
            return answers.takeFirst();
        return buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
    }
    QString openFileName(const QString &, const QString &filter) override
    {
        fileFilters.append(filter);
        return files.isEmpty() ? QString() : files.takeFirst();
    }
    QString inputBox(const QString &, const QString &, const QString &, bool) override
    {
        return inputs.isEmpty() ? QString() : inputs.takeFirst();
    }

    QList<Answer> answers;
    QStringList files;
    QStringList inputs;
    QList<Shown> shown;
    QStringList fileFilters;
};
