#pragma once

#include <QElapsedTimer>

namespace brivant {

// A slice of long work, between which the event loop runs: one step after the other for less than a frame of
// the screen, while there is more to do. Gives whether there is.
template <class one_step>
bool work_a_moment(one_step step) {
    constexpr int milliseconds = 10;
    QElapsedTimer spent;
    spent.start();
    bool more = true;
    while (more && spent.elapsed() < milliseconds)
        more = step();
    return more;
}

} // namespace brivant
