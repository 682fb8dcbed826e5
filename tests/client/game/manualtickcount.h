#pragma once

#include "client/game/tickcount.h"

// A tick counter that stands still until a test sets it.
class ManualTickCount final : public TickCount
{
public:
    qint64 now() const override { return m_now; }
    void set(qint64 ticks) { m_now = ticks; }

private:
    qint64 m_now = 1000;
};
