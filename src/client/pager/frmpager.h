#pragma once

#include "client/ui/borderlesswindow.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace client {

class Pager;
class SessionState;

// The pager window `frmPager`: the conversation on display with the partner's avatar, the line
// being typed and its send button, the partner's statistics button. A view of `Pager`, which
// keeps every conversation; closing the window only hides it until the program ends
// (`exitPager`), and the typed line is dropped then.
class FrmPager : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{601, 226};

    FrmPager(Pager &pager, const SessionState &session, QWidget *parent = nullptr);
    ~FrmPager() override;

    QLabel *Label2 = titleLabel();
    QPlainTextEdit *txtHistory; // the history of the conversation on display
    QLabel *picUser;            // the partner's avatar
    QLineEdit *txtSkicka;       // the line being typed
    PictureButton *Picture3;    // send
    PictureButton *Picture4;    // the partner's statistics page
    PictureButton *Picture2 = closeButton();

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showConversation();
    void showAvatar();

    Pager &m_pager;
    const SessionState &m_session;
};

} // namespace client
