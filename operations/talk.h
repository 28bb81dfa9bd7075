#pragma once

#include <coroutine>
#include <exception>
#include <utility>

namespace brivant {

// An operation written as the conversation it holds: a coroutine that waits at each command for its reply. A
// talk may wait for another one (`co_await car.ready()`): what that one throws, it throws too. One that is
// destroyed ends where it waits; one that runs must not be destroyed.
class [[nodiscard]] talk {
public:
    struct promise_type;
    using handle = std::coroutine_handle<promise_type>;

    struct promise_type {
        int run = 0;                    // which conversation it is part of: see held_talk
        std::coroutine_handle<> caller; // the talk that waits for this one's end
        std::exception_ptr failure;

        struct to_the_caller {
            bool await_ready() noexcept { return false; }
            std::coroutine_handle<> await_suspend(handle over) noexcept {
                return over.promise().caller ? over.promise().caller : std::noop_coroutine();
            }
            void await_resume() noexcept {}
        };

        talk get_return_object() { return talk(handle::from_promise(*this)); }
        std::suspend_always initial_suspend() noexcept { return {}; }
        to_the_caller final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { failure = std::current_exception(); }
    };

    talk() = default;
    talk(talk&& other) noexcept : frame(std::exchange(other.frame, {})) {}
    talk& operator=(talk&& other) noexcept {
        std::swap(frame, other.frame);
        return *this;
    }
    ~talk() {
        if (frame)
            frame.destroy();
    }

    // Null for none.
    handle waiting_frame() const { return frame; }
    bool is_over() const { return frame && frame.done(); }
    // What ended it early, null for nothing.
    std::exception_ptr failure() const { return frame ? frame.promise().failure : nullptr; }

    // Inside another talk.
    bool await_ready() const { return false; }
    handle await_suspend(handle outer) {
        frame.promise().run = outer.promise().run;
        frame.promise().caller = outer;
        return frame;
    }
    void await_resume() const {
        if (frame.promise().failure)
            std::rethrow_exception(frame.promise().failure);
    }

private:
    explicit talk(handle its_frame) : frame(its_frame) {}

    handle frame;
};

} // namespace brivant
