#include "client/login/frmlogin.h"

#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace client {

FrmLogIn::FrmLogIn(QString credentialsPath, const HostPort &lobby, QWidget *parent)
    : BorderlessWindow({.objectName = "frmLogIn",
                        .title = QStringLiteral("Login"),
                        .size = kSize,
                        .titleLabelName = "Label3",
                        .closeButtonName = "Picture2"},
                       parent),
      m_credentialsPath(std::move(credentialsPath))
{
    // Closing unloads it, so the next use reads user.txt again.
    setAttribute(Qt::WA_DeleteOnClose);

    txtName = addControl<QLineEdit>("txtName", {96, 40, 150, 24});
    Label1 = addFieldLabel("Label1", QStringLiteral("User name"), {12, 40, 80, 22}, txtName);
    txtPassword = addControl<QLineEdit>("txtPassword", {96, 72, 150, 24});
    Label2 = addFieldLabel("Label2", QStringLiteral("Password"), {12, 72, 80, 22}, txtPassword);
    txtPassword->setEchoMode(QLineEdit::Password);

    txtLobbyServer = addControl<QLineEdit>("txtLobbyServer", {96, 104, 150, 24});
    lblLobbyServer = addFieldLabel("lblLobbyServer", QStringLiteral("Lobby server"),
                                   {12, 104, 80, 22}, txtLobbyServer);
    txtLobbyServer->setText(lobby.toString());

    Picture3 = addControl<PictureButton>("Picture3", {214, 136, 32, 30});
    Picture3->setPicture(Icons::smallIcon(Icons::LogInOnline));
    Picture3->setToolTip(tr("Login"));

    const Credentials saved = CredentialsFile::read(m_credentialsPath);
    txtName->setText(saved.name);
    txtPassword->setText(saved.password);

    connect(Picture3, &QAbstractButton::clicked, this, &FrmLogIn::loginClicked);
    connect(txtPassword, &QLineEdit::returnPressed, Picture3, &QAbstractButton::click);
    connect(txtLobbyServer, &QLineEdit::returnPressed, Picture3, &QAbstractButton::click);
    connect(txtLobbyServer, &QLineEdit::textEdited, this, [this] {
        txtLobbyServer->setStyleSheet({});
        txtLobbyServer->setToolTip({});
    });
}

void FrmLogIn::loginClicked()
{
    const std::optional<HostPort> lobby =
        HostPort::parse(txtLobbyServer->text(), ServerAddresses::kLobbyPort);
    if (!lobby) {
        txtLobbyServer->setStyleSheet(QStringLiteral("QLineEdit { background: #ffd0d0; }"));
        txtLobbyServer->setToolTip(
            tr("Give the lobby server as HOST or HOST:PORT (port %1 when none is given).")
                .arg(ServerAddresses::kLobbyPort));
        txtLobbyServer->setFocus();
        return;
    }
    CredentialsFile::write(m_credentialsPath, credentials());
    Q_EMIT loginRequested(*lobby);
}

Credentials FrmLogIn::credentials() const
{
    return {txtName->text(), txtPassword->text()};
}

void FrmLogIn::showModal()
{
    setWindowModality(Qt::ApplicationModal);
    show();
    raise();
    activateWindow();
    txtName->setFocus();
}

} // namespace client
