#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

class QSystemTrayIcon;

namespace client {

// The icon in the notification area. Only a double-click on it is acted on.
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

Q_SIGNALS:
    void doubleClicked();
};

// The tray icon of the desktop, through QSystemTrayIcon.
class SystemTrayService final : public TrayService
{
    Q_OBJECT

public:
    explicit SystemTrayService(QObject *parent = nullptr);

    bool isAvailable() const override;
    void add(const QIcon &icon, const QString &tip) override;
    void modify(const QIcon &icon, const QString &tip) override;
    void remove() override;
    bool isShown() const override;

private:
    QSystemTrayIcon *m_icon;
};

} // namespace client
