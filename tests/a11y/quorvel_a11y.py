"""Drives the QUORVEL client as a screen reader user does: through the accessibility bus only,
every control found by its role and name, never by its position. The keyboard goes through the
X server's test extension (xdotool), as typed keys do.

The tests run inside tests/a11y/session.sh, which gives them an X display and an accessibility
bus of their own. Every process started here ends when the test ends."""

import atexit
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import GLib

BUILD = os.environ.get("QUORVEL_BUILD", os.path.join(os.path.dirname(__file__), "../../build"))
SERVER = os.path.join(BUILD, "src/server/quorvel-server")
CLIENT = os.path.join(BUILD, "src/client/quorvel")
GAME = os.path.join(BUILD, "tools/fakegame/fakegame")

# Controls a person acts on or reads: each must say what it is.
NAMED_ROLES = {
    "push button", "toggle button", "check box", "radio button", "combo box", "spin button",
    "text", "password text", "tree", "tree table", "table", "list", "menu item", "page tab",
}
TEXT_ROLES = {"text", "password text"}
TABLE_ROLES = {"tree", "tree table", "table"}

_processes = []
_home = tempfile.mkdtemp(prefix="quorvel-a11y-")


class Failure(AssertionError):
    pass


def _stop_processes():
    """Ends what the test started, and the games its clients started."""
    for process in reversed(_processes):
        if process.poll() is None:
            process.terminate()
    for process in reversed(_processes):
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
    _processes.clear()
    subprocess.run(["pkill", "-f", f"{_home}/.*/RogueSpear/"], check=False)


def _stop_all():
    _stop_processes()
    shutil.rmtree(_home, ignore_errors=True)


atexit.register(_stop_all)


def start(arguments, **options):
    process = subprocess.Popen(arguments, **options)
    _processes.append(process)
    return process


def wait_for(what, predicate, timeout=20):
    """The predicate's first true value, asked every 0.1 s; fails the test after `timeout`."""
    deadline = time.monotonic() + timeout
    while True:
        pump()
        try:
            value = predicate()
        except Exception:  # an object that went away while it was read: ask again
            value = None
        if value:
            return value
        if time.monotonic() > deadline:
            raise Failure(f"timed out waiting for {what}")
        time.sleep(0.1)


def start_lobby():
    """A lobby server on loopback with open registration; its port."""
    server = start([SERVER, "--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                    "--db", os.path.join(_home, "lobby.sqlite"), "--registration", "open"],
                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    line = server.stdout.readline()
    if "listening" not in line:
        raise Failure(f"the lobby server did not start: {line!r}")
    return int(line.rsplit(":", 1)[1])


def start_client(port, name, told_lobby=True):
    """The client with a fresh data folder of its own whose game folder holds the game
    stand-in, and no saved login: it starts with the login window, as a first start does.
    Not `told_lobby`, it does not know the lobby's address: the user types it."""
    home = os.path.join(_home, name)
    data = os.path.join(home, "data", "Quorvel")
    game = os.path.join(home, "RogueSpear")
    os.makedirs(data)
    os.makedirs(game)
    shutil.copy(GAME, os.path.join(game, "fakegame"))
    with open(os.path.join(game, "roguespear.exe"), "w") as script:
        script.write('#!/bin/bash\nexec -a "$0" "$(dirname "$0")/fakegame" "$@"\n')
    os.chmod(os.path.join(game, "roguespear.exe"), 0o755)
    with open(os.path.join(data, "settingRS.txt"), "w", newline="") as settings:
        settings.write(f"0\r\n0\r\n0\r\n0\r\n0\r\n{game}\r\n\r\n")
    environment = dict(os.environ, XDG_DATA_HOME=os.path.join(home, "data"),
                       XDG_CONFIG_HOME=os.path.join(home, "config"), HOME=home,
                       WINEPREFIX=os.path.join(home, "wine"), QT_QPA_PLATFORM="xcb",
                       QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    log = open(os.path.join(home, "client.log"), "w")
    process = start([CLIENT] + (["--lobby", f"127.0.0.1:{port}"] if told_lobby else []),
                    env=environment, stdout=log, stderr=subprocess.STDOUT)
    return wait_for("the client on the accessibility bus", lambda: application(process.pid))


def data_folder(name):
    return os.path.join(_home, name, "data", "Quorvel")


def application(pid):
    desktop = pyatspi.Registry.getDesktop(0)
    for i in range(desktop.childCount):
        app = desktop.getChildAtIndex(i)
        if app is not None and app.get_process_id() == pid:
            return app
    return None


def showing(acc):
    return acc.getState().contains(pyatspi.STATE_SHOWING)


def descendants(root):
    stack = [root]
    while stack:
        acc = stack.pop()
        yield acc
        for i in reversed(range(acc.childCount)):
            child = acc.getChildAtIndex(i)
            if child is not None:
                stack.append(child)


def find(root, role, name, timeout=20):
    """The showing control of `role` (any: None) named `name` below `root`, once there is one."""
    def look():
        for acc in descendants(root):
            if role in (None, acc.getRoleName()) and acc.name == name and showing(acc):
                return acc
        return None
    return wait_for(f"{role} {name!r}", look, timeout)


def window(app, title, timeout=20):
    """The application's showing window (a frame) called `title`."""
    return window_named(app, lambda name: name == title, timeout, repr(title))


def window_named(app, matches, timeout=20, what="the window"):
    """The application's showing window whose title `matches`."""
    def look():
        for i in range(app.childCount):
            frame = app.getChildAtIndex(i)
            if frame is not None and matches(frame.name) and showing(frame):
                return frame
        return None
    return wait_for(f"window {what}", look, timeout)


def press(acc):
    action = acc.queryAction()
    for i in range(action.nActions):
        if action.getName(i).lower() in ("press", "click", "toggle"):
            action.doAction(i)
            return
    raise Failure(f"{acc.getRoleName()} {acc.name!r} cannot be pressed")


def set_text(acc, text):
    acc.queryEditableText().setTextContents(text)


def text_of(acc):
    return acc.queryText().getText(0, -1)


# The control that took the keyboard last, as the accessibility bus announced it. (A control's
# focused state, when asked, can lag behind: a list's cell may still say so after Tab left.)
_focus = []


def _focus_changed(event):
    if event.detail1:
        _focus[:] = [event.source]


pyatspi.Registry.registerEventListener(_focus_changed, "object:state-changed:focused")


def pump():
    """Hands over what the accessibility bus has announced so far."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)


def focused(app):
    """The control of `app` that has the keyboard."""
    time.sleep(0.2)  # the key pressed last reaches the client and its announcement comes back
    pump()
    return _focus[0] if _focus else None


def keys(*names):
    """Key presses as the keyboard sends them ("Tab", "shift+F10", "Return")."""
    subprocess.run(["xdotool", "key", "--delay", "60", *names], check=True)


def type_text(text):
    subprocess.run(["xdotool", "type", "--delay", "30", text], check=True)


def problems(window_acc):
    """What a screen reader user could not use in a window: a control without a name, a text
    field without a label, a list that exposes columns nobody sees."""
    found = []
    for acc in descendants(window_acc):
        role = acc.getRoleName()
        if not showing(acc):
            continue
        where = f"{role} in {window_acc.name!r} (description {acc.description!r})"
        if role in TEXT_ROLES and not acc.name.strip():
            found.append(f"text field without a label: {where}")
        elif role in NAMED_ROLES and not acc.name.strip():
            found.append(f"control without a name: {where}")
        if role in TABLE_ROLES:
            table = acc.queryTable()
            for column in range(table.nColumns):
                cells = [table.getAccessibleAt(row, column) for row in range(table.nRows)]
                if cells and not any(cell is not None and showing(cell) for cell in cells):
                    header = table.getColumnHeader(column)
                    found.append(f"exposed internal column {header.name if header else column!r} "
                                 f"of {acc.name!r}")
    return found


class Player:
    """A scripted player on the lobby: a plain socket that logs in and sends what it is told."""

    SEP, END = b"\x0e", b"\x0f"

    def __init__(self, port, name):
        self.name = name
        self.socket = socket.create_connection(("127.0.0.1", port))
        self.socket.settimeout(0.2)
        self.received = b""
        self.send("VE", "V 6.0")
        self.expect("SL")
        self.send("LG", name, "pw")
        self.expect("LT")

    def send(self, code, *fields):
        self.socket.sendall(code.encode("cp1252") +
                            self.SEP.join(f.encode("cp1252") for f in fields) + self.END)

    def messages(self):
        try:
            while True:
                data = self.socket.recv(65536)
                if not data:
                    break
                self.received += data
        except socket.timeout:
            pass
        return [m.decode("cp1252") for m in self.received.split(self.END)]

    def expect(self, start, timeout=20):
        """Waits for a message starting with `start` (code and fields, fields joined by |)."""
        def look():
            for message in self.messages():
                if message.replace("\x0e", "|").startswith(start):
                    return message
            return None
        return wait_for(f"{self.name} to receive {start!r}", look, timeout)


def run(tests):
    """Runs each test function in turn, as the test program's main."""
    for test in tests:
        print(f"-- {test.__name__}", flush=True)
        test()
        _stop_processes()
    print("PASS", flush=True)


if __name__ == "__main__":
    sys.exit("a module of the accessibility tests")
