#include "gameoptions.h"

#include <map>

namespace {

enum class Option {
    Server,
    Client,
    Bind,
    HostName,
    Map,
    GameType,
    MaxPlayers,
    Player,
    Password,
    Locked,
    TimeLimit,
    NoTimeLimit,
    Round,
    Name,
    Wow64,
    Class
};

struct OptionSpec
{
    Option option;
    bool takesValue;
};

const std::map<std::string, OptionSpec, std::less<>> kOptions{
    {"server", {Option::Server, true}},
    {"client", {Option::Client, true}},
    {"bind", {Option::Bind, true}},
    {"hostname", {Option::HostName, true}},
    {"map", {Option::Map, true}},
    {"gametype", {Option::GameType, true}},
    {"maxplayers", {Option::MaxPlayers, true}},
    {"player", {Option::Player, true}},
    {"password", {Option::Password, false}},
    {"locked", {Option::Locked, false}},
    {"timelimit", {Option::TimeLimit, true}},
    {"no-timelimit", {Option::NoTimeLimit, false}},
    {"round", {Option::Round, true}},
    {"name", {Option::Name, true}},
    {"wow64", {Option::Wow64, false}},
    {"class", {Option::Class, true}},
};

// Applies one option's value; an error text when the value is bad.
std::string apply(GameOptions &options, Option option, const std::string &value,
                  std::optional<std::string> &serverPort)
{
    switch (option) {
    case Option::Server:
        serverPort = value;
        options.host = true;
        break;
    case Option::Client:
        options.joinAddress = value;
        break;
    case Option::Bind:
        options.bindAddress = value;
        break;
    case Option::HostName:
        options.info.hostName = value;
        break;
    case Option::Map:
        options.info.mapName = value;
        break;
    case Option::GameType:
        options.info.gameType = value;
        break;
    case Option::MaxPlayers: {
        const std::optional<int> n = parseInt(value);
        if (!n)
            return "bad player slots: " + value;
        options.info.maxPlayers = *n;
        break;
    }
    case Option::Player: {
        const std::optional<ServerInfo::Player> player = parsePlayer(value);
        if (!player)
            return "bad player (NAME:TEAM:PING): " + value;
        options.info.players.push_back(*player);
        break;
    }
    case Option::Password:
        options.info.password = true;
        break;
    case Option::Locked:
        options.info.locked = true;
        break;
    case Option::TimeLimit: {
        const std::optional<int> seconds = parseInt(value);
        if (!seconds)
            return "bad time limit: " + value;
        // -no-timelimit wins wherever it stands.
        if (options.info.timeLimitSeconds)
            options.info.timeLimitSeconds = *seconds;
        break;
    }
    case Option::NoTimeLimit:
        options.info.timeLimitSeconds.reset();
        break;
    case Option::Round: {
        const std::optional<int> seconds = parseInt(value);
        // Up to a day, which a timer in milliseconds still holds.
        if (!seconds || *seconds <= 0 || *seconds > 24 * 60 * 60)
            return "bad round length: " + value;
        options.roundSeconds = *seconds;
        break;
    }
    case Option::Name:
        options.playerName = value;
        break;
    case Option::Wow64:
        options.registry32 = true;
        break;
    case Option::Class:
        options.windowClass = value;
        break;
    }
    return {};
}

} // namespace

std::variant<GameOptions, std::string> parseGameOptions(const std::vector<std::string> &arguments)
{
    GameOptions options;
    std::optional<std::string> serverPort;
    bool joining = false;
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string_view word = arguments[i];
        if (word.size() < 2 || word[0] != '-') {
            positional.emplace_back(word);
            continue;
        }
        word.remove_prefix(word.starts_with("--") ? 2 : 1);
        const auto known = kOptions.find(word);
        if (known == kOptions.end())
            return "unknown option: " + arguments[i];
        std::string value;
        if (known->second.takesValue) {
            if (i + 1 == arguments.size())
                return "missing value for " + arguments[i];
            value = arguments[++i];
        }
        joining = joining || known->second.option == Option::Client;
        std::string error = apply(options, known->second.option, value, serverPort);
        if (!error.empty())
            return error;
    }
    if (options.host == joining)
        return std::string("give either -server PORT or -client ADDRESS PORT");
    const std::string portText = options.host         ? *serverPort
                                 : positional.empty() ? ""
                                                      : positional[0];
    const std::optional<int> port = parseInt(portText);
    if (!port || *port < 0 || *port > 65535)
        return "bad port: " + portText;
    options.port = static_cast<unsigned short>(*port);
    options.info.hostPort = options.port;
    return options;
}
