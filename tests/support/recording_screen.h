#pragma once

#include "base/screen.h"

#include <QStringList>
#include <array>
#include <utility>

namespace brivant {

// Writes down what a person would see and hear, one line each, in order; a line end in a text stands as "\n".
// Questions wait for answer().
class recording_screen : public screen {
public:
    QStringList events;
    bool is_busy = false;
    std::function<void(bool)> question;
    std::function<void(const QString&, const QString&)> device_question;

    void answer(bool yes) {
        if (const auto asked = std::exchange(question, nullptr))
            asked(yes);
    }
    // The Bluetooth device chosen, two empty texts for none.
    void choose(const QString& address, const QString& name) {
        if (const auto asked = std::exchange(device_question, nullptr))
            asked(address, name);
    }
    // The last event of a kind ("status"), without the kind; "" when there was none.
    QString last(const QString& kind) const {
        for (auto event = events.rbegin(); event != events.rend(); ++event)
            if (event->startsWith(kind + ": "))
                return event->sliced(kind.size() + 2);
        return {};
    }

    void show_status(const QString& text) override { note("status", text); }
    void show_toast(const QString& text) override { note("toast", text); }
    void show_busy(bool busy) override { is_busy = busy; }
    void show_message(const QString& title, const QString& text) override {
        note("message", joined(title, text));
    }
    void ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) override {
        note("question", joined(title, text));
        question = std::move(answer);
    }
    void choose_device(const QString& why,
                       std::function<void(const QString&, const QString&)> answer) override {
        note("choose", why);
        device_question = std::move(answer);
    }
    void reload(part what) override {
        static constexpr std::array names{
            "operation", "progress", "labels", "reading", "codes", "readiness", "permanent",  "pending",
            "freeze",    "vehicle",  "mode6",  "misfire", "o2",    "extras",    "transcript", "sent"};
        note("reload", names.at(static_cast<size_t>(what)));
    }
    void play_sound(int sound) override { note("sound", QString::number(sound)); }
    void beep() override { note("beep", {}); }

private:
    static QString joined(const QString& title, const QString& text) {
        return title.isEmpty() ? text : title + " | " + text;
    }
    void note(const char* kind, QString text) {
        events += QLatin1String(kind) + ": " + text.replace('\n', "\\n").replace('\r', "\\r");
    }
};

} // namespace brivant
