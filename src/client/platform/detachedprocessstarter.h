#pragma once

#include "client/platform/processstarter.h"

class QProcess;

namespace client {

// Starts processes with QProcess. A Windows program (an ".exe" that is not a native
// executable) runs through the Wine command, in the prefix it is installed in (or the client's
// default one), named by its Windows path as a Windows shortcut would.
class DetachedProcessStarter final : public ProcessStarter
{
public:
    static constexpr const char *kDefaultWine = "wine";

    // `wineCommand`: the program and its leading arguments, as a shell would split them.
    explicit DetachedProcessStarter(QString wineCommand = QString::fromLatin1(kDefaultWine),
                                    QString winePrefix = {});

    QString start(QProcess &process, const ProgramStart &program, qint64 &pid) override;
    QString startDetached(const QString &program, const QStringList &arguments,
                          qint64 *pid = nullptr) override;
    void run(const QString &program, const QStringList &arguments, QObject &context,
             std::function<void(const ProcessEnd &)> finished) override;

    // Whether the file must run through Wine: its name ends in ".exe" (any case) and it is not
    // a native executable (an ELF binary or a script).
    static bool needsWine(const QString &program);

private:
    // Sets the process up to run the program, through Wine when it must; why not when it cannot.
    QString prepare(QProcess &process, const ProgramStart &start) const;

    QString m_wineCommand;
    QString m_winePrefix;
};

} // namespace client
