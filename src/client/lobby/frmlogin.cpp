#include "client/lobby/frmlogin.h"

#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QLabel>
#include <QLineEdit>

namespace client {

FrmLogIn::FrmLogIn(QString credentialsPath, QWidget *parent)
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

    Label1 = addLabel("Label1", QStringLiteral("User name"), {12, 40, 80, 22});
    txtName = addControl<QLineEdit>("txtName", {96, 40, 150, 24});
    Label2 = addLabel("Label2", QStringLiteral("Password"), {12, 72, 80, 22});
    txtPassword = addControl<QLineEdit>("txtPassword", {96, 72, 150, 24});
    txtPassword->setEchoMode(QLineEdit::Password);

    Picture3 = addControl<PictureButton>("Picture3", {214, 104, 32, 30});
    Picture3->setPicture(Icons::smallIcon(Icons::LogInOnline));
    Picture3->setToolTip(tr("Login"));

    const Credentials saved = CredentialsFile::read(m_credentialsPath);
    txtName->setText(saved.name);
    txtPassword->setText(saved.password);

    connect(Picture3, &QAbstractButton::clicked, this, [this] {
        CredentialsFile::write(m_credentialsPath, credentials());
        Q_EMIT loginRequested();
    });
    connect(txtPassword, &QLineEdit::returnPressed, Picture3, &QAbstractButton::click);
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
