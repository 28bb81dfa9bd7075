#pragma once

#include <QThreadPool>
#include <memory>

namespace brivant {

// Plays the sounds of the desktop's theme. Silent where there is no sound, and never in the way: opening the
// sound system can take its time, so it happens beside the main thread.
class sound_player {
public:
    sound_player();
    ~sound_player();

    // The numbers are those of base/screen.h; others are silent.
    void play(int sound);

private:
    struct output;
    std::shared_ptr<output> out;
    std::unique_ptr<QThreadPool> worker;
};

} // namespace brivant
