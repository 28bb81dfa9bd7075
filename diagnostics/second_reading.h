#pragma once

#include "diagnostics/diagnostic_results.h"
#include "obd/standard_reading/pid_values.h"

#include <optional>

namespace brivant {

class mac_toolies;

// A row as it is shown, and what is said beside it ("By SAE J1979: 15.000 V"), "" for nothing.
struct noted_row {
    result_row row;
    QString note;
    bool weighs = false; // the note is of something that a person acts on
};

// One part of the results read twice: the program's own rows, and the rows that the same replies give by SAE
// J1979. The preference "BV_standard_reading" says which of the two is shown; what the other one says stands
// beside it. Nothing is asked from the car. All that it is given outlives it.
class second_reading {
public:
    second_reading(part which, const diagnostic_results& what_was_read, const mac_toolies& its_toolies);

    // Takes up the answers that came since, and the preference.
    void reload();

    bool shows_standard() const { return standard_shown; }
    bool differs() const { return weighty || changed > 0; }
    // They differ in what a person acts on: a trouble code, the code that froze a frame, the VIN, the verdict
    // of a test.
    bool weighs() const { return weighty; }
    const QList<noted_row>& own_rows() const { return own; }
    const QList<noted_row>& standard_rows() const { return standard; }
    // The rows of the reading that is shown; then, under a heading, the codes and tests that only the other
    // one reads.
    const QList<noted_row>& shown() const { return only_other().isEmpty() ? chosen() : shown_with_other; }
    // What the other reading says of the list as a whole, in a sentence; "" before anything was read.
    QString line() const;
    // What was refused, damaged or not answered, whichever reading is shown: "7E8: a consecutive frame is
    // missing".
    QStringList faults() const;
    // The same in a sentence, "" without any.
    QString fault_line() const;

private:
    void start_again();
    void read(const answer& one);
    void read_codes(const answer& one);
    void read_vin(const answer& one);
    void read_value(const answer& one);
    void read_freezing_code(const answer& one);
    void read_freeze_value(const answer& one);
    void read_tests(const answer& one);
    void both_say(const QList<result_row>& rows);
    void they_agree(const result_row& own_row, const result_row& row);
    void take_scales(const answer& one, QMap<QString, full_scales>& all) const;
    value_reading reading_for(const answer& one) const;
    // Either reading's row, where it has one, and what it says.
    void they_differ(const result_row* own_row, const QString& own_said, const std::optional<result_row>& row,
                     const QString& said, bool weighs = false);
    const QList<noted_row>& chosen() const { return standard_shown ? standard : own; }
    const QList<noted_row>& only_other() const { return standard_shown ? only_own : only_standard; }
    QString line_of_codes() const;
    QString line_of_values() const;
    bool is_value(const answer& one) const;
    bool is_codes() const { return which == part::codes || which == part::pending; }

    part which;
    const diagnostic_results& results;
    const mac_toolies& toolies;

    bool standard_shown = false;
    QList<noted_row> own;
    QList<noted_row> standard;
    QList<noted_row> only_own; // codes and tests
    QList<noted_row> only_standard;
    QList<noted_row> shown_with_other;
    bool weighty = false;
    int changed = 0; // rows of values that differ
    QString vin;     // by the standard, where it differs
    QStringList told;
    QMap<QString, QStringList> unanswered; // the PIDs that came to nothing, by the ECU that announced them
    QMap<QString, full_scales> scales;     // by the ECU that was asked
    qsizetype answers_read = 0;
    bool replies_read = false; // that can be read twice
};

// The rows without what stands beside them.
QList<result_row> plain(const QList<noted_row>& rows);

} // namespace brivant
