"""Every window of the client as a screen reader hands it over: no control without a name, no
text field without a label, no list that exposes columns nobody sees. The windows are opened
the way a user opens them."""

from quorvel_a11y import (Player, find, focused, keys, press, problems, run, set_text,
                          start_client, start_lobby, wait_for, window, window_named)


def every_window():
    port = start_lobby()
    app = start_client(port, "ann")
    found = []

    login = window(app, "Login")
    found += problems(login)
    set_text(find(login, "text", "User name"), "ann")
    set_text(find(login, "password text", "Password"), "pw")
    press(find(login, "push button", "Login"))

    main = window(app, "QUORVEL")
    bob = Player(port, "bob")
    bob.send("PS", "2", "127.0.0.9")  # in a game: the game-info entry of the menu works
    found += problems(main)

    press(find(main, "push button", "Options"))
    found += problems(window(app, "Options"))
    keys("Escape")

    press(find(main, "push button", "Create room"))
    make = window(app, "Make room")
    found += problems(make)
    set_text(find(make, "text", "Room name"), "Friday night raid")
    press(find(make, "push button", "Make room"))
    room = window_named(app, lambda title: "Friday night raid" in title)
    found += problems(room)
    press(find(room, "push button", "Hide"))

    # The player menu, and the windows it opens.
    window(app, "QUORVEL")
    for _ in range(40):
        now = focused(app)
        if now is not None and now.name.startswith("bob"):
            break
        keys("Tab" if now is None or "Players" not in (now.name, now.parent.name) else "Down")
    keys("shift+F10")
    wait_for("the player menu", lambda: focused(app).getRoleName() == "menu item")
    keys("Return")  # Send PM
    found += problems(window_named(app, lambda title: title.startswith("Page bob")))
    keys("Escape")

    assert not found, "\n".join(found)


run([every_window])
