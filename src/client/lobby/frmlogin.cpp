#include "client/lobby/frmlogin.h"

#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"
#include "client/ui/windowframe.h"

#include <QLabel>
#include <QLineEdit>

namespace client {

FrmLogIn::FrmLogIn(QString credentialsPath, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint),
      m_credentialsPath(std::move(credentialsPath))
{
    setObjectName(QStringLiteral("frmLogIn"));
    // Closing unloads it, so the next use reads user.txt again.
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Login"));
    resize(kSize);

    Label3 = new QLabel(QStringLiteral("Login"), this);
    Label3->setObjectName(QStringLiteral("Label3"));
    QFont bold = Label3->font();
    bold.setBold(true);
    Label3->setFont(bold);
    Label3->setGeometry(10, 6, 200, 20);

    Label1 = new QLabel(QStringLiteral("User name"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->setGeometry(12, 40, 80, 22);
    txtName = new QLineEdit(this);
    txtName->setObjectName(QStringLiteral("txtName"));
    txtName->setGeometry(96, 40, 150, 24);

    Label2 = new QLabel(QStringLiteral("Password"), this);
    Label2->setObjectName(QStringLiteral("Label2"));
    Label2->setGeometry(12, 72, 80, 22);
    txtPassword = new QLineEdit(this);
    txtPassword->setObjectName(QStringLiteral("txtPassword"));
    txtPassword->setEchoMode(QLineEdit::Password);
    txtPassword->setGeometry(96, 72, 150, 24);

    Picture3 = new PictureButton(this);
    Picture3->setObjectName(QStringLiteral("Picture3"));
    Picture3->setPicture(Icons::smallIcon(Icons::LogInOnline));
    Picture3->setToolTip(tr("Login"));
    Picture3->setGeometry(214, 104, 32, 30);

    Picture2 = new PictureButton(this);
    Picture2->setObjectName(QStringLiteral("Picture2"));
    Picture2->setPicture(Icons::button(QStringLiteral("close")));
    Picture2->setGeometry(232, 4, 22, 22);

    const Credentials saved = CredentialsFile::read(m_credentialsPath);
    txtName->setText(saved.name);
    txtPassword->setText(saved.password);

    connect(Picture2, &QAbstractButton::clicked, this, &QWidget::close);
    connect(Picture3, &QAbstractButton::clicked, this, [this] {
        CredentialsFile::write(m_credentialsPath, credentials());
        Q_EMIT loginRequested();
    });
    connect(txtPassword, &QLineEdit::returnPressed, Picture3, &QAbstractButton::click);
    DragHandle::install(this, {Label3});
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

void FrmLogIn::paintEvent(QPaintEvent *)
{
    paintWindowFrame(*this);
}

} // namespace client
