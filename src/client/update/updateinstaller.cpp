#include "client/update/updateinstaller.h"

#include "client/platform/filedownload.h"
#include "client/update/updatesignature.h"

#include <QFile>
#include <QProcess>
#include <filesystem>
#include <system_error>

namespace client {

namespace {

std::filesystem::path fsPath(const QString &path)
{
    return std::filesystem::path(path.toStdString());
}

} // namespace

UpdateInstaller::UpdateInstaller(UpdateFiles files, QUrl url,
                                 std::chrono::milliseconds downloadTimeout, QObject *parent)
    : QObject(parent), m_files(std::move(files)), m_url(std::move(url)), m_timeout(downloadTimeout)
{
}

QString UpdateInstaller::keptMessage(const QString &reason)
{
    return QStringLiteral("The update was not installed: %1. This version stays installed.")
        .arg(reason);
}

bool UpdateInstaller::install()
{
    m_failure.clear();
    m_failureMessage.clear();
    return download() && verify() && swap();
}

bool UpdateInstaller::download()
{
    FileDownload program(m_timeout);
    connect(&program, &FileDownload::progress, this, &UpdateInstaller::progress);
    if (!program.run(m_url, m_files.download()))
        return fail(program.errorString(), QStringLiteral("Something went wrong try later"));

    FileDownload signature(m_timeout);
    if (!signature.run(signatureUrl(m_url), m_files.signature())) {
        QFile::remove(m_files.download());
        QFile::remove(m_files.signature());
        const QString reason = QStringLiteral("the download is not signed");
        return fail(QStringLiteral("%1 (%2)").arg(reason, signature.errorString()),
                    keptMessage(reason + QStringLiteral(", so it may not come from the lobby's "
                                                        "operator")));
    }
    return true;
}

bool UpdateInstaller::verify()
{
    QFile signatureFile(m_files.signature());
    const QByteArray published =
        signatureFile.open(QIODevice::ReadOnly) ? signatureFile.read(4096) : QByteArray();
    signatureFile.close();
    signatureFile.remove();
    // Only the signature is trusted: the program and anything else from the same host may have
    // been replaced on the way.
    if (!signatureVerifies(m_files.download(), published, buildUpdatePublicKey())) {
        QFile::remove(m_files.download());
        const QString reason = QStringLiteral("its signature does not verify");
        return fail(reason, keptMessage(reason + QStringLiteral(", so it may not come from the "
                                                                "lobby's operator")));
    }

    // The signature proves the file is the operator's; this proves it runs here.
    QFile::setPermissions(m_files.download(), QFile::permissions(m_files.executable) |
                                                  QFileDevice::ExeOwner | QFileDevice::ReadOwner);
    QProcess check;
    check.start(m_files.download(), {QStringLiteral("--version")});
    const bool ran = check.waitForFinished(10000) && check.exitStatus() == QProcess::NormalExit &&
                     check.exitCode() == 0 && check.readAllStandardOutput().startsWith("quorvel ");
    if (!ran) {
        check.kill();
        check.waitForFinished(1000);
        QFile::remove(m_files.download());
        const QString reason = QStringLiteral("the downloaded program does not run here");
        return fail(reason, keptMessage(reason));
    }
    return true;
}

bool UpdateInstaller::swap()
{
    // The installed program stays as "old.tmp" (a second name for the same file), and the new
    // one replaces it in one rename: at no moment is there no program to start.
    std::error_code error;
    std::filesystem::remove(fsPath(m_files.previous()), error);
    std::filesystem::create_hard_link(fsPath(m_files.executable), fsPath(m_files.previous()),
                                      error);
    if (error)
        std::filesystem::copy_file(fsPath(m_files.executable), fsPath(m_files.previous()),
                                   std::filesystem::copy_options::overwrite_existing, error);
    if (!error)
        std::filesystem::rename(fsPath(m_files.download()), fsPath(m_files.executable), error);
    if (error) {
        QFile::remove(m_files.download());
        const QString reason =
            QStringLiteral("%1 could not be replaced (%2)")
                .arg(m_files.executable, QString::fromLocal8Bit(error.message().c_str()));
        return fail(reason, keptMessage(reason));
    }
    return true;
}

bool UpdateInstaller::fail(const QString &reason, const QString &message)
{
    m_failure = reason;
    m_failureMessage = message;
    return false;
}

} // namespace client
