#pragma once

#include "diagnostics/diagnostic_results.h"

#include <QHash>

class mac_toolies;

// One list of results read twice: the program's own rows, and the rows that the same replies give by SAE
// J1979, in the same form. The preference "BV_standard_reading" says which of the two is shown; what the
// other one says stands beside it. Nothing is asked from the car. All that it is given outlives it.
class second_reading {
public:
    second_reading(result_list which, const diagnostic_results& what_was_read,
                   const mac_toolies& its_toolies);

    // Takes up the replies that were kept since, and the preference.
    void reload();

    bool shows_standard() const { return standard_shown; }
    bool differs() const { return codes_differ || changed > 0 || !told.isEmpty(); }
    const QStringList& own_rows() const { return own; }
    const QStringList& standard_rows() const { return standard; }
    const QStringList& shown() const { return standard_shown ? standard : own; }
    // What the other reading says in the place of a shown row ("By SAE J1979: 15.000 V"), "" where both say
    // the same.
    QString note_on(int row) const;
    // The same for the list as a whole, in a sentence; "" before anything was read.
    QString line() const;
    // Where an answer was refused, damaged or cut: "7E8: a consecutive frame is missing".
    const QStringList& faults() const { return told; }

private:
    void start_again();
    void copy_own_rows(qsizetype end);
    void read(const kept_reply& kept);
    void read_codes(const kept_reply& kept);
    void read_vin(const kept_reply& kept);
    void read_value(const kept_reply& kept);
    void read_freezing_code(const kept_reply& kept);
    void read_freeze_value(const kept_reply& kept);
    void read_tests(const kept_reply& kept);
    // The standard's row in the place of the own one at `own_row` (-1: there is none), and what either says.
    void add(const QString& row, qsizetype own_row, const QString& said, const QString& own_said);
    void keep_own(const kept_reply& kept);
    QString line_of_codes(const QString& because) const;
    QString line_of_values(const QString& because) const;
    bool is_codes() const { return list == result_list::codes || list == result_list::pending; }

    result_list list;
    const diagnostic_results& results;
    const mac_toolies& toolies;
    const QStringList& own;

    bool standard_shown = false;
    QStringList standard;
    QHash<int, QString> own_notes; // by row, what the standard says
    QHash<int, QString> standard_notes;
    bool codes_differ = false;
    int changed = 0; // rows of values that differ
    QString vin;     // by the standard, where it differs
    QStringList told;
    qsizetype replies_read = 0;
    qsizetype own_read = 0; // own rows that have their place among the standard's
};
