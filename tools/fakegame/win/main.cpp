// RogueSpear.exe: the game stand-in as a Windows program, for running under Wine the way the
// real game runs. It takes the native stand-in's command line and says the same things: a
// top-level window titled "Rogue Spear"; "-server PORT" hosts a game (TCP PORT, and the
// status query on UDP PORT); "-client ADDRESS PORT" joins one; "-round SECONDS" writes a
// results log into its folder after each round. At start it keeps the player's name (-name)
// in the registry where the game does (-wow64: where the 32-bit game's lands). It ends when
// its window is closed or on WM_CLOSE.

#include "gamenetwork.h"
#include "gameoptions.h"
#include "playername.h"
#include "resultslog.h"
#include "text.h"

#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <optional>

namespace {

constexpr UINT kNetworkMessage = WM_APP + 1;
constexpr UINT_PTR kRoundTimer = 1;
const wchar_t kWindowClass[] = L"RogueSpear";

int fail(const std::string &message)
{
    std::fputs(("fakegame: " + message + '\n').c_str(), stderr);
    std::fflush(stderr);
    return 2;
}

// What the window's messages work on.
struct Game
{
    GameOptions options;
    std::wstring folder; // the program's own, with a trailing backslash
    int roundsPlayed = 0;
    std::unique_ptr<GameNetwork> network;
};

std::wstring programFolder()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetModuleFileNameW(nullptr, path.data(), DWORD(path.size()));
        if (size < path.size()) {
            path.resize(size);
            break;
        }
        path.resize(path.size() * 2);
    }
    return path.substr(0, path.find_last_of(L"\\/") + 1);
}

// Written beside and then moved into place, so that a reader never sees half a log.
bool writeResultsLog(const Game &game, int round)
{
    const std::string log = resultsLog(game.options.info, round, std::time(nullptr));
    const std::wstring path = game.folder + fromCp1252(resultsLogName(round));
    const std::wstring partial = path + L".part";
    const HANDLE file = CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool ok =
        WriteFile(file, log.data(), DWORD(log.size()), &written, nullptr) && written == log.size();
    CloseHandle(file);
    return ok && MoveFileExW(partial.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING);
}

LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    Game *game = reinterpret_cast<Game *>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(window, &paint);
        const HBRUSH green = CreateSolidBrush(RGB(40, 60, 40));
        FillRect(dc, &paint.rcPaint, green);
        DeleteObject(green);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_TIMER:
        if (game && wParam == kRoundTimer && !writeResultsLog(*game, ++game->roundsPlayed))
            fail("cannot write the results log");
        return 0;
    case kNetworkMessage:
        if (game && game->network)
            game->network->onEvent(SOCKET(wParam), lParam);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

HWND makeWindow(HINSTANCE instance)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    windowClass.lpszClassName = kWindowClass;
    if (!RegisterClassExW(&windowClass))
        return nullptr;
    return CreateWindowExW(0, kWindowClass, L"Rogue Spear", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                           CW_USEDEFAULT, 320, 240, nullptr, nullptr, instance, nullptr);
}

} // namespace

int wmain(int argc, wchar_t *argv[])
{
    // Lines end in LF, as the native stand-in's do, for the tests that read them.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(toCp1252(argv[i]));
    std::variant<GameOptions, std::string> parsed = parseGameOptions(arguments);
    if (const std::string *error = std::get_if<std::string>(&parsed))
        return fail(*error);

    Game game{std::move(std::get<GameOptions>(parsed)), programFolder(), 0, nullptr};
    if (const std::string error = writePlayerName(game.options.playerName, game.options.registry32);
        !error.empty())
        return fail(error);

    WSADATA winsock;
    if (WSAStartup(MAKEWORD(2, 2), &winsock) != 0)
        return fail("cannot start Winsock");
    const HWND window = makeWindow(GetModuleHandleW(nullptr));
    if (!window)
        return fail("cannot open the window");
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&game));
    ShowWindow(window, SW_SHOWNORMAL);

    game.network = std::make_unique<GameNetwork>(window, kNetworkMessage, game.options.info);
    const std::string error = game.options.host
                                  ? game.network->host(game.options.bindAddress, game.options.port)
                                  : game.network->join(game.options.joinAddress, game.options.port);
    if (!error.empty())
        return fail(error);
    if (game.options.roundSeconds > 0)
        SetTimer(window, kRoundTimer, UINT(game.options.roundSeconds) * 1000, nullptr);

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    game.network.reset();
    WSACleanup();
    return 0;
}
