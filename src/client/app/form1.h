#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QSizeGrip;
class QTextBrowser;
class QTreeView;

namespace client {

class PictureButton;
class SplitterBar;

// The main window: a borderless window, 800 x 600 unless the user resizes it by its corner grip,
// holding the room list, the player list with its find box, the lobby chat and the tool
// buttons. At any size the lists and the chat take the room; the splitter keeps its share of
// the height and stops where the room list still shows a row and the chat two lines. It only lays
// out and shows its controls; the parts that own a control's behaviour attach to it (the chat to
// `txtChat`, the room list to `ListView1`...). Closing it (`Picture2`) raises `unloading`, which
// runs the shut-down.
class Form1 : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSize kSize{800, 600};
    static constexpr QSize kMinimumSize{600, 450};

    explicit Form1(QWidget *parent = nullptr);

    // Sets the window to its normal size (800 x 600) and shows it.
    void showAtNormalSize();
    // Lays the lists and the chat out around the splitter `Picture1`.
    void relayout();

    // Controls, named as the rest of the program knows them.
    QLabel *Label1;                 // title "QUORVEL"; dragging it moves the window
    QLabel *Label3;                 // the client version (the one sent on connecting)
    PictureButton *Picture2;        // close: ends the program
    PictureButton *Picture4;        // hide to the notification area
    PictureButton *picLogIn;        // log in / out; tag "ONLINE" / "OFFLINE"
    PictureButton *picOptions;      // the options window
    PictureButton *picCreateRoom;   // create a room; only while logged in
    PictureButton *picResetStats;   // reset statistics; only while logged in
    PictureButton *picViewStats;    // the own statistics page (the session's statistics id)
    PictureButton *picRefreshPings; // ping the running games again
    PictureButton *Picture3;        // send the chat line
    QTreeView *ListView1;           // rooms and running games
    QTreeView *ListView2;           // players, grouped by what they do
    QLineEdit *txtFindPlayer;       // part of a name: the player list shows only who matches
    QTextBrowser *txtChat;          // lobby chat
    QLineEdit *txtChatSend;         // chat input
    SplitterBar *Picture1;          // splitter between the room list and the chat

Q_SIGNALS:
    // The window is closing: the program shuts down.
    void unloading();
    void hideRequested();

protected:
    void closeEvent(QCloseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    // Places every control for the window's present size.
    void layoutControls();
    void splitterMoved();
    int minimumRoomListHeight() const;
    int minimumChatHeight() const;

    PictureButton *makeButton(const char *name, const QString &picture, const QString &tip,
                              const QRect &geometry);

    QSizeGrip *m_sizeGrip = nullptr;
    double m_splitShare = -1; // the splitter's place between its top and bottom stops, 0..1
    bool m_layingOut = false;
};

} // namespace client
