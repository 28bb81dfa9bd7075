#pragma once

#include "app/screen/screen_view.h"

#include <QPushButton>
#include <functional>

namespace brivant {

// A text that can be copied, saved and printed.
struct shared_text {
    QString what;      // for titles: "transcript", "log"
    QString file_name; // proposed for saving, without an extension
    std::function<QString()> text;
};

// Gives a button a menu with "Copy", "Save..." and "Print...". The frame outlives the button. No dialog of it
// runs an event loop of its own.
void add_share_menu(QPushButton& button, window_frame& frame, const shared_text& shared);

// Writes the text whole or not at all, and tells what went wrong. False when it was not saved.
bool save_shared_text(window_frame& frame, const shared_text& shared, const QString& file);

} // namespace brivant
