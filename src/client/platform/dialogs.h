#pragma once

#include <QString>

namespace client {

// The dialogs that wait for the user: message boxes, the input box and the file dialog. Every
// part of the client asks through this seam, so that tests can answer in the user's place.
class Dialogs
{
public:
    enum class Buttons { Ok, OkCancel, YesNo };
    enum class Icon { None, Information, Question, Warning, Critical };
    enum class Answer { Ok, Cancel, Yes, No };

    virtual ~Dialogs() = default;

    // A modal message box; closing it without a button counts as Cancel (or No).
    virtual Answer messageBox(const QString &title, const QString &text,
                              Buttons buttons = Buttons::Ok, Icon icon = Icon::None) = 0;

    // The open-file dialog with a name filter such as "Programs (*.exe)". Empty when cancelled.
    virtual QString openFileName(const QString &title, const QString &filter) = 0;

    // A one-line text prompt. Empty when cancelled, as an empty answer is. `masked` hides the
    // typed characters (passwords).
    virtual QString inputBox(const QString &prompt, const QString &title,
                             const QString &defaultText = {}, bool masked = false) = 0;
};

// The title that the program's message boxes carry.
inline QString applicationTitle()
{
    return QStringLiteral("QUORVEL");
}

} // namespace client
