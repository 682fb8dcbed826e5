#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace client {

// The icon in the notification area. A click or a double-click on it, or "Show" in its
// menu, asks for the main window back; "Quit" in its menu asks to end the program.
class TrayService : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Whether the desktop has a notification area at all; without one, hiding to the tray
    // minimises the window instead.
    virtual bool isAvailable() const = 0;
    virtual void add(const QIcon &icon, const QString &tip) = 0;
    virtual void modify(const QIcon &icon, const QString &tip) = 0;
    virtual void remove() = 0;
    virtual bool isShown() const = 0;
    // A desktop notification from the icon; nothing when the icon is not shown.
    virtual void showMessage(const QString &title, const QString &text) = 0;

Q_SIGNALS:
    void showRequested();
    void quitRequested();
    // The user clicked the desktop notification shown last.
    void messageClicked();
};

// The tray icon of the desktop, through QSystemTrayIcon. Desktops with the D-Bus tray (KDE
// Plasma, GNOME's AppIndicator) report only single activations, so a click shows the window
// too; where a double-click is reported as well, its first click already did, and one
// double-click shows the window once.
class SystemTrayService final : public TrayService
{
    Q_OBJECT

public:
    explicit SystemTrayService(QObject *parent = nullptr);
    ~SystemTrayService() override;

    bool isAvailable() const override;
    void add(const QIcon &icon, const QString &tip) override;
    void modify(const QIcon &icon, const QString &tip) override;
    void remove() override;
    bool isShown() const override;
    void showMessage(const QString &title, const QString &text) override;

private:
    std::unique_ptr<QMenu> m_menu; // a widget, so not a child of this object
    QSystemTrayIcon *m_icon;
    bool m_lastWasClick = false;
};

} // namespace client
