#pragma once

#include "link/adapter_place.h"

#include <QMap>
#include <QSet>

namespace brivant {

// What cheap adapters cannot bear, by adapter (its address), from when it was found out to the end of the
// program: one that resets its link with itself on "AT Z", and one that falls silent at a command it does not
// know.
class adapter_quirks {
public:
    // The adapter that is led to.
    explicit adapter_quirks(const adapter_place& its_place) : place(its_place) {}

    void link_opened() { ++links; }
    // The link fell at "AT Z". True when that is news.
    bool link_fell_at_reset();
    bool may_be_reset() const { return !of_current().reset_ends_link; }
    // That is known from before.
    void do_not_reset() { known[place.address()].reset_ends_link = true; }

    // A command was answered, or was not in all its tries although the adapter had answered others on this
    // link. Only an AT command that never was answered is one it falls silent at, after the second time: the
    // adapter may just have lost its power. The link after the first time goes without, when little is lost
    // so.
    void answered(const QString& command);
    void unanswered(const QString& command);
    bool falls_silent_at(const QString& command) const;

private:
    struct silence {
        int times = 0;
        int on_link = 0; // the last of them
    };
    struct knowledge {
        bool reset_ends_link = false;
        QSet<QString> answered;             // AT commands, upper case, without blanks
        QMap<QString, silence> silences_at; // of the others
    };
    knowledge of_current() const { return known.value(place.address()); }

    const adapter_place& place;
    QMap<QString, knowledge> known;
    int links = 0; // opened so far
};

} // namespace brivant
