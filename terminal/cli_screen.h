#pragma once

#include "base/screen.h"
#include "link/bluetooth_service.h"

#include <QJsonObject>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <memory>

namespace brivant {

// The terminal as a screen: what is shown goes to standard error, a line each, and is kept for the result.
class cli_screen : public QObject, public screen {
public:
    // `always_yes`: questions are not asked.
    explicit cli_screen(bool always_yes) : yes(always_yes) {}

    // Called when a list has changed.
    std::function<void(part what)> on_reload;
    // False: it is not shown that a reply has come.
    bool shows_every_reply = true;

    // A result with "done" and, as "messages", what was shown so far: the latest thousand lines.
    QJsonObject with_messages(QJsonObject result, bool done) const;

    void show_status(const QString& text) override;
    void show_toast(const QString& text) override { show(text); }
    void show_busy(bool) override {}
    void show_message(const QString& title, const QString& text) override;
    void ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) override;
    // Tells which devices there are and how one is named; nothing is chosen here.
    void choose_device(const QString& why,
                       std::function<void(const QString& address, const QString& name)> answer) override;
    void reload(part what) override {
        if (on_reload)
            on_reload(what);
    }
    void play_sound(int) override {}
    void beep() override;

private:
    void show(const QString& text);
    void take_answer();

    bool yes;
    QStringList shown;
    std::function<void(bool)> waiting;
    std::unique_ptr<QSocketNotifier> input;
    bluetooth_service bluetooth;
};

} // namespace brivant
