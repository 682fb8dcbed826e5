#include "client/desktop/trayservice.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace client {

SystemTrayService::SystemTrayService(QObject *parent)
    : TrayService(parent), m_menu(std::make_unique<QMenu>()), m_icon(new QSystemTrayIcon(this))
{
    connect(m_menu->addAction(tr("Show")), &QAction::triggered, this, &TrayService::showRequested);
    connect(m_menu->addAction(tr("Quit")), &QAction::triggered, this, &TrayService::quitRequested);
    m_icon->setContextMenu(m_menu.get());
    connect(m_icon, &QSystemTrayIcon::messageClicked, this, &TrayService::messageClicked);

    connect(m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                const bool click = reason == QSystemTrayIcon::Trigger;
                const bool doubleClick = reason == QSystemTrayIcon::DoubleClick;
                const bool firstClickSeen = m_lastWasClick;
                m_lastWasClick = click;
                if (click || (doubleClick && !firstClickSeen))
                    Q_EMIT showRequested();
            });
}

SystemTrayService::~SystemTrayService()
{
    delete m_icon; // before the menu it shows
}

bool SystemTrayService::isAvailable() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void SystemTrayService::add(const QIcon &icon, const QString &tip)
{
    modify(icon, tip);
    m_icon->show();
}

void SystemTrayService::modify(const QIcon &icon, const QString &tip)
{
    m_icon->setIcon(icon);
    m_icon->setToolTip(tip);
}

void SystemTrayService::remove()
{
    m_icon->hide();
}

bool SystemTrayService::isShown() const
{
    return m_icon->isVisible();
}

void SystemTrayService::showMessage(const QString &title, const QString &text)
{
    if (m_icon->isVisible())
        m_icon->showMessage(title, text);
}

} // namespace client
