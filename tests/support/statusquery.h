#pragma once

#include <QByteArray>
#include <QList>

// Sends the datagrams to a game's status port on this machine from one socket and returns
// the first answer, or nothing within 5 s.
QByteArray askStatus(quint16 port, const QList<QByteArray> &requests);
