#include "app/sound_player.h"

#include "base/screen.h"

#include <canberra.h>

namespace brivant {

namespace {

constexpr int patience_ms = 500;

// The event of the sound theme, null for none.
const char* event_of(int sound) {
    switch (sound) {
    case sound_nothing_found: return "dialog-warning";
    case sound_alert: return "dialog-error";
    case sound_no_identifier: return "dialog-warning";
    case sound_done: return "complete";
    default: return nullptr;
    }
}

} // namespace

struct sound_player::output {
    ca_context* context = nullptr;

    void play(const char* event) {
        if (!context && ca_context_create(&context) != CA_SUCCESS)
            return;
        ca_context_play(context, 0, CA_PROP_EVENT_ID, event, CA_PROP_APPLICATION_NAME, "Brivant Lite",
                        CA_PROP_MEDIA_ROLE, "event", nullptr);
    }
    ~output() {
        if (context)
            ca_context_destroy(context);
    }
};

sound_player::sound_player() : out(std::make_shared<output>()), worker(std::make_unique<QThreadPool>()) {
    worker->setMaxThreadCount(1);
}

sound_player::~sound_player() {
    worker->clear();
    if (!worker->waitForDone(patience_ms))
        static_cast<void>(
            worker.release()); // a sound system that hangs must not keep the program from ending
}

void sound_player::play(int sound) {
    if (const char* event = event_of(sound))
        worker->start([output_of_it = out, event] { output_of_it->play(event); });
}

} // namespace brivant
