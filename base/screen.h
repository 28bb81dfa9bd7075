#pragma once

#include <QString>
#include <functional>

namespace brivant {

// What of a controller's results has changed.
enum class part {
    operation, // begun or ended
    progress,
    labels,
    reading, // the other of the two readings of the replies is shown from now on
    codes,
    readiness,
    permanent,
    pending,
    freeze,
    vehicle,
    mode6,
    misfire,
    o2,
    extras,
    transcript, // of the console
    sent,
};

// All that a controller may ask of the world. The window, the terminal and the tests' recorder implement
// it. No operation blocks: a question is answered later, through its callback, so that no nested event
// loop runs while replies arrive.
class screen {
public:
    virtual ~screen() = default;

    virtual void show_status(const QString& text) = 0;
    // A transient notice; "" hides it.
    virtual void show_toast(const QString& text) = 0;
    virtual void show_busy(bool busy) = 0;
    // A notice that stays until it is dismissed. An empty title stands for the program's name.
    virtual void show_message(const QString& title, const QString& text) = 0;
    // `answer` is called once: true for Yes.
    virtual void ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) = 0;
    // The same for whether the car is the current vehicle. A window has a third way beside Yes and No: a new
    // vehicle for it, which answers No.
    virtual void ask_same_car(const QString& title, const QString& text, std::function<void(bool)> answer) {
        ask_yes_no(title, text, std::move(answer));
    }
    // `answer` is called once, with the address ("ble:..." of Bluetooth LE) and the name of the Bluetooth
    // device that the person chose, or two empty texts, at once where the screen cannot ask. `why`: what is
    // wrong with the device before, "" for nothing.
    virtual void choose_device([[maybe_unused]] const QString& why,
                               std::function<void(const QString& address, const QString& name)> answer) {
        answer(QString(), QString());
    }
    // This part of the current controller's results has changed.
    virtual void reload(part what) = 0;
    virtual void play_sound(int sound) = 0;
    virtual void beep() = 0;
};

// The sounds of play_sound(), by their numbers.
enum sound : int { sound_nothing_found = 0, sound_alert = 1, sound_no_identifier = 2, sound_done = 6 };

} // namespace brivant
