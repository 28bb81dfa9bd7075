#pragma once

#include "shell/Bv_lite_delegate.h"
#include "terminal/cli_screen.h"
#include "terminal/terminal_run.h"

namespace brivant {

// A command that talks to the car. A controller that it makes goes after leave().
class car_run : public terminal_run {
public:
    explicit car_run(program_core& its_core)
        : terminal_run(its_core), view(core.options.yes),
          delegate(core.place, core.adapter, core.car, core.toolies, core.clock, view) {}

protected:
    // Starts up, on the link that was asked for.
    void begin() {
        core.choose_link(delegate.adapters);
        delegate.applicationDidFinishLaunching(nullptr);
    }
    // Why an operation failed may be told up to half a second after its end.
    void after_last_words(bool done, std::function<void()> then) {
        ending = core.clock.one_shot(done ? 0 : last_words_ms, std::move(then));
    }
    void leave() { delegate.applicationWillTerminate(); }

    cli_screen view;
    Bv_lite_delegate delegate;

private:
    static constexpr int last_words_ms = 700;
    timer_handle ending;
};

} // namespace brivant
