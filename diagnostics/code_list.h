#pragma once

#include "diagnostics/permanent_codes.h"

namespace brivant {

// A trouble code as a person asks for it: one row, whatever kinds of it the car holds.
struct listed_code {
    QString code{};
    QString ecu{}; // "" when it cannot be told
    bool confirmed = false;
    bool pending = false;
    bool permanent = false;
    bool froze_the_frame = false;
    QString sentence{}; // in the place of a code
    QString note{};     // what the other reading says

    bool is_sentence() const { return code.isEmpty(); }
    QString kinds() const; // "confirmed, permanent, froze the frame"
};

// Confirmed, pending and permanent codes as one list. Each confirmed row stays a row; the other kinds join
// the row of the same code and ECU. Codes that only the other reading has stand last, under its heading; that
// there are no codes is no row.
struct code_list {
    QList<listed_code> rows;

    code_list() = default;
    code_list(const QList<noted_row>& confirmed, const QList<noted_row>& pending,
              const permanent_codes& permanent, const QString& freezing_code);

    // How many different codes of a kind the shown reading has.
    qsizetype count(bool listed_code::*kind) const;
    // Why the confirmed codes were not read, "" when they were.
    const QString& doubt() const { return confirmed_doubt; }

private:
    void add(const QList<noted_row>& read, bool listed_code::*kind);

    QList<listed_code> only_other;
    QString heading; // above these
    QStringList sentences;
    QString confirmed_doubt;
};

// The code that froze the frame, "" for none.
QString freezing_code(const QList<noted_row>& frame);

} // namespace brivant
