#pragma once

#include "client/lobby/credentialsfile.h"
#include "client/settings/lobbyaddress.h"
#include "client/ui/borderlesswindow.h"

class QLabel;
class QLineEdit;

namespace client {

// The login dialog: user name, password and the lobby server's address, a Login button and a
// close button. Creating it fills the boxes from user.txt and the address in use; Login saves
// the name and password to user.txt and asks to log in at the address typed (an address that
// does not read as HOST[:PORT] is marked and nothing happens). The close button and Escape
// only close it, which unloads it.
class FrmLogIn : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{260, 173};

    // `credentialsPath` is user.txt in the data folder; `lobby` the lobby server in use.
    FrmLogIn(QString credentialsPath, const HostPort &lobby, QWidget *parent = nullptr);

    Credentials credentials() const;
    // Shows the dialog, modal to the whole program.
    void showModal();

    QLabel *Label3 = titleLabel(); // title "Login"
    QLabel *Label1;                // "User name"
    QLabel *Label2;                // "Password"
    QLineEdit *txtName;
    QLineEdit *txtPassword;
    QLabel *lblLobbyServer;    // "Lobby server"
    QLineEdit *txtLobbyServer; // HOST[:PORT]
    PictureButton *Picture3;   // Login
    PictureButton *Picture2 = closeButton();

Q_SIGNALS:
    // Login pressed; the name and password are saved to user.txt already.
    void loginRequested(const client::HostPort &lobby);

protected:
private:
    void loginClicked();

    QString m_credentialsPath;
};

} // namespace client
