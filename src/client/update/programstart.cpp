#include "client/update/programstart.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <pwd.h>
#include <unistd.h>

namespace client {

bool startProgramAsUser(const QString &program, const QStringList &arguments)
{
    bool isUid = false;
    const uint uid = qEnvironmentVariable("PKEXEC_UID").toUInt(&isUid);
    const passwd *user = isUid && ::geteuid() == 0 ? ::getpwuid(uid) : nullptr;
    if (!user)
        return QProcess::startDetached(program, arguments);

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QString::fromLocal8Bit(user->pw_dir));
    environment.insert(QStringLiteral("USER"), QString::fromLocal8Bit(user->pw_name));
    environment.insert(QStringLiteral("LOGNAME"), QString::fromLocal8Bit(user->pw_name));
    process.setProcessEnvironment(environment);
    process.setProgram(QStringLiteral("setpriv"));
    process.setArguments(QStringList{QStringLiteral("--reuid=%1").arg(uid),
                                     QStringLiteral("--regid=%1").arg(user->pw_gid),
                                     QStringLiteral("--init-groups"), QStringLiteral("--"),
                                     program} +
                         arguments);
    return process.startDetached();
}

} // namespace client
