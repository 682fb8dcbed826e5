#pragma once

#include "client/lobby/credentialsfile.h"
#include "client/ui/borderlesswindow.h"

class QLabel;
class QLineEdit;

namespace client {

// The login dialog: user name and password, a Login button and a close button. Creating it
// fills both boxes from user.txt; Login saves them to user.txt and asks to log in. The close
// button only closes it, which unloads it.
class FrmLogIn : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{260, 141};

    // `credentialsPath` is user.txt in the data folder.
    explicit FrmLogIn(QString credentialsPath, QWidget *parent = nullptr);

    Credentials credentials() const;
    // Shows the dialog, modal to the whole program.
    void showModal();

    QLabel *Label3 = titleLabel(); // title "Login"
    QLabel *Label1;                // "User name"
    QLabel *Label2;                // "Password"
    QLineEdit *txtName;
    QLineEdit *txtPassword;
    PictureButton *Picture3; // Login
    PictureButton *Picture2 = closeButton();

Q_SIGNALS:
    // Login pressed; the boxes are saved to user.txt already.
    void loginRequested();

private:
    QString m_credentialsPath;
};

} // namespace client
