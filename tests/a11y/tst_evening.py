"""An evening in the lobby, driven through the accessibility bus only, as a screen reader user
drives it: log in from the first-start login window, make a room, a second player joins, both
are ready, the game starts; then a private message through the player menu, and the lobby chat
read back. Once with the controls' own actions, once with nothing but the keyboard."""

import os
import subprocess

from quorvel_a11y import (Player, data_folder, descendants, find, focused, keys, press, run, set_text,
                          showing, start_client, start_lobby, text_of, type_text, wait_for,
                          window, window_named)


def cell(tree, starting):
    """The showing row of `tree` that reads as `starting`..."""
    return wait_for(f"a row of {tree.name!r} reading {starting!r}",
                    lambda: next((acc for acc in descendants(tree)
                                  if acc.getRoleName() == "table cell" and
                                  acc.name.startswith(starting) and showing(acc)), None))


def tab_to(app, role, name):
    """Presses Tab until the control of `role` named `name` has the keyboard."""
    return tab_until(app, lambda now: now.getRoleName() == role and now.name == name,
                     f"{role} {name!r}")


def tab_until(app, reached, what, limit=40):
    seen = []
    for _ in range(limit):
        now = focused(app)
        seen.append(f"{now.getRoleName()} {now.name!r} in {now.parent.name!r}" if now else None)
        if now is not None and reached(now):
            return now
        keys("Tab")
    texts = [a.name for a in descendants(app) if a.getRoleName() == "label" and showing(a)]
    raise AssertionError(f"Tab never reached {what}; seen: {seen[:3]}; texts: {texts}")


def end_game(player):
    """The player quits the game once it has played its first seconds (a game that ends in
    them is a failed start): its stand-in ends as when he closes its window."""
    pattern = f"/{player}/RogueSpear/roguespear.exe"

    def seconds_running():
        pids = subprocess.run(["pgrep", "-f", pattern], capture_output=True, text=True).stdout
        ages = subprocess.run(["ps", "-o", "etimes=", "-p", ",".join(pids.split())],
                              capture_output=True, text=True).stdout.split()
        return ages and min(int(age) for age in ages) >= 5
    wait_for("the game's first seconds", seconds_running)
    subprocess.run(["pkill", "-f", pattern], check=False)


def evening(keyboard):
    me = "ann" if keyboard else "amy"
    port = start_lobby()
    app = start_client(port, me, told_lobby=keyboard)

    login = window(app, "Login")
    if keyboard:
        wait_for("the name box to have the keyboard",
                 lambda: focused(app) is not None and focused(app).name == "User name")
        type_text(me)
        keys("Tab")
        type_text("pw")
        keys("Return")
    else:
        # A first start that knows no lobby: its address is typed too, and kept.
        set_text(find(login, "text", "Lobby server"), f"127.0.0.1:{port}")
        set_text(find(login, "text", "User name"), me)
        set_text(find(login, "password text", "Password"), "pw")
        press(find(login, "push button", "Login"))
    main = window(app, "QUORVEL")
    create = find(main, "push button", "Create room")
    wait_for("the login told in the chat", lambda: "Connected" in text_of(find(main, None, "Lobby chat")))
    with open(os.path.join(data_folder(me), "servers.ini")) as kept:
        assert str(port) in kept.read(), "the lobby address is kept for the next start"
    # Logged in, the keyboard is in the chat box.
    wait_for("the chat box to have the keyboard",
             lambda: focused(app) is not None and focused(app).name == "Chat message")

    if keyboard:
        tab_to(app, "push button", "Create room")
        keys("space")
        window(app, "Make room")
        type_text("Friday night raid")
        keys("Return")
    else:
        press(create)
        make = window(app, "Make room")
        set_text(find(make, "text", "Room name"), "Friday night raid")
        press(find(make, "push button", "Make room"))
    room = window_named(app, lambda title: "Friday night raid" in title)

    # A second player sees the room, joins it and is ready.
    bob = Player(port, "bob")
    bob.expect(f"AR{me}|Friday night raid")
    bob.send("ÖJ", me, "")
    members = find(room, "tree", "Players in the room")
    cell(members, "bob")
    bob.send("ÖR", "2")
    cell(members, "bob, ready")
    if keyboard:
        tab_to(app, "push button", "Ready")
        keys("space")
    else:
        press(find(room, "push button", "Ready"))
    cell(members, f"{me}, ready")

    if keyboard:
        tab_to(app, "push button", "Start game")
        keys("space")
    else:
        press(find(room, "push button", "Start game"))
    bob.expect(f"ÖS{me}|In game")
    end_game(me)
    bob.expect(f"ÖS{me}|In chat", timeout=30)

    # The player menu on bob, opened from the keyboard as a screen reader user opens it: Send PM
    # opens the conversation with the keyboard in its box.
    room = window_named(app, lambda title: "Friday night raid" in title)
    if keyboard:
        tab_to(app, "push button", "Hide")
        keys("space")
    else:
        press(find(room, "push button", "Hide"))
    main = window(app, "QUORVEL")
    players = find(main, "tree", "Players")
    cell(players, "bob, in the lobby")
    tab_until(app, lambda now: "Players" in (now.name, now.parent.name), "the player list")
    for _ in range(12):
        if focused(app).name.startswith("bob"):
            break
        keys("Down")
    assert focused(app).name == "bob, in the lobby", focused(app).name
    keys("shift+F10")
    # A pop-up menu is no window of the application's: a screen reader follows the focus to it.
    send_pm = wait_for("the player menu on its first entry",
                       lambda: focused(app).getRoleName() == "menu item" and
                       focused(app).name == "Send PM" and focused(app))
    if keyboard:
        keys("Return")
    else:
        press(send_pm)
    pager = window_named(app, lambda title: title.startswith("Page bob"))
    wait_for("the message box to have the keyboard",
             lambda: focused(app) is not None and focused(app).name == "Message")
    type_text("see you at nine")
    keys("Return")
    bob.expect(f"PM{me}|see you at nine")
    wait_for("the line in the conversation",
             lambda: "see you at nine" in text_of(find(pager, None, "Conversation")))

    # What bob says in the lobby reaches the chat box.
    bob.send("MD", "anyone for a second round?")
    chat = find(main, None, "Lobby chat")
    wait_for("bob's line in the lobby chat",
             lambda: "anyone for a second round?" in text_of(chat))


def with_actions():
    evening(keyboard=False)


def keyboard_only():
    evening(keyboard=True)


run([with_actions, keyboard_only])
