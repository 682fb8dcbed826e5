#pragma once

#include <QDeadlineTimer>
#include <QTest>
#include <functional>

// Runs the event loop until `done` holds, for at most `timeoutMs`; whether it held. It looks
// every millisecond or so, where QTest::qWaitFor sleeps ten between looks: a test that waits
// for hundreds of answers would spend most of its time asleep.
inline bool waitUntil(const std::function<bool()> &done, int timeoutMs = 5000)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QTest::qWait(1);
    }
    return true;
}
