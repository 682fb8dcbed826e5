#pragma once

namespace client {

// The state of a key at this moment, whichever window has the keyboard focus, as the
// platform's asynchronous key state reports it. Keys are named by their Windows virtual-key
// codes.
class KeyState
{
public:
    virtual ~KeyState() = default;

    // False when the platform cannot tell (no display); no key is ever down then.
    virtual bool isAvailable() const = 0;
    virtual bool isKeyDown(int virtualKey) = 0;
};

} // namespace client
