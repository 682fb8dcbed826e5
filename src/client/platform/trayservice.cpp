#include "client/platform/trayservice.h"

#include <QSystemTrayIcon>

namespace client {

SystemTrayService::SystemTrayService(QObject *parent)
    : TrayService(parent), m_icon(new QSystemTrayIcon(this))
{
    connect(m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::DoubleClick)
                    Q_EMIT doubleClicked();
            });
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

} // namespace client
