#pragma once

#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

// clang-format off
// A car's side of a talk, and what is expected of ours, as a text file of lines:
//
//   # a note
//   ! do read-codes      an action of the bench; when nothing is sent the link is given its 0.8 s
//   > 01 00 |12          the next command must be this one; |12 its time-out where that is not 3 s
//   < 7E8 06 41 00 ...   a line of the reply; the prompt follows the last one
//   | BUS INIT: OK\r\n>  bytes as they are, with \r, \n and \0
//   ! again 3            the command before is sent three times more and answered the same
//   ! silence            no answer until the time-out, which must come neither sooner nor later
//   ! wait 500           milliseconds pass
//   ! close              the far end closes the link
//   ! answer yes         to the question that is open
//   ! include FILE       the lines of another file of the folder
//   = shown status: ...  this event came, after those asked for before; a beginning is enough;
//                        {KEY} is looked up
//   = never message      no event that begins so
//   = codes P0133|7E8    a fact of the bench has this text
// clang-format on
struct conversation {
    struct step {
        QChar kind;
        QString text;
        QString where; // "file:line"
    };
    QList<step> steps;

    static conversation load(const QString& file);
    // `name` stands in the places of what differs.
    static conversation parse(const QString& text, const QString& name, const QString& folder = {});
    // The steps that expect a command.
    QList<qsizetype> commands() const;
    // The reply to the command at `command`: the steps after it that speak for the adapter.
    QList<step> reply_to(qsizetype command) const;
};

// The names of the conversations in a folder, in order.
QStringList conversations_in(const QString& folder);

enum class delivery { whole, byte_by_byte };

// Plays the conversation. The first thing that differs, with its place; "" when nothing does.
QString play(const conversation& talk, adapter_bench& bench, delivery pace = delivery::whole);

// Plays each conversation of a folder on a bench of its own. There are more than `least`.
template <class bench>
void expect_as_written(const QString& folder, qsizetype least,
                       const QList<delivery>& paces = {delivery::whole}) {
    const QStringList files = conversations_in(folder);
    EXPECT_GT(files.size(), least) << folder.toStdString();
    for (const QString& file : files)
        for (const delivery pace : paces) {
            bench one;
            EXPECT_EQ(play(conversation::load(folder + file), one, pace), "") << (pace == delivery::whole);
        }
}

// What goes wrong once on the way, and is mended by sending the command again.
enum class disturbance {
    time_out,   // no reply to the first try
    late,       // the replies to both tries come after the second
    late_glued, // the same in one read
    noise,      // the first reply is unusable
};
// The conversation with the disturbance at one command: that is sent once more, and nothing else changes.
conversation disturbed(const conversation& talk, qsizetype command, disturbance what);

} // namespace brivant
