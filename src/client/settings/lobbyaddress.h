#pragma once

#include <QString>
#include <optional>

namespace client {

// A host with a port, as given on the command line ("HOST[:PORT]") and kept in the data
// folder so that later starts without the option use the same servers.
struct HostPort
{
    QString host;
    quint16 port = 0;

    // "HOST", "HOST:PORT", "[v6]:PORT"; nullopt for an empty host or a bad port.
    static std::optional<HostPort> parse(const QString &text, quint16 defaultPort);
    // The form `parse` reads back.
    QString toString() const;
    // The host as it stands in an address with a port or in a URL: an IPv6 address in brackets.
    QString bracketedHost() const;
};

// The lobby, web and avatar addresses kept in "servers.ini" in the data folder.
struct ServerAddresses
{
    static constexpr quint16 kLobbyPort = 20000;
    static constexpr quint16 kWebPort = 80;
    static constexpr auto kDefaultHost = "localhost";

    HostPort lobby{QString::fromLatin1(kDefaultHost), kLobbyPort};
    // The web host defaults to the lobby host.
    std::optional<HostPort> web;

    // The avatar service, a URL such as "http://host:port"; empty for the public service.
    QString avatars;

    HostPort webOrLobbyHost() const { return web ? *web : HostPort{lobby.host, kWebPort}; }

    static ServerAddresses load(const QString &dataFolder);
    void save(const QString &dataFolder) const;
};

} // namespace client
