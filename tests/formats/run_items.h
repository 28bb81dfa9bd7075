#pragma once

#include "formats/run_writer.h"
#include "formats/timed_csv_reader.h"

#include <QBuffer>

namespace brivant {

// A whole run at once, as the formats give and take it piece by piece.

using run_item = timed_csv_reader::item;

struct read_run {
    run_head head;
    QList<run_item> items;
    QString problem;
    bool has_head = false;
};

inline read_run read_timed_csv(QByteArray bytes) {
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    timed_csv_reader reader(file);
    read_run run;
    run.has_head = reader.read_head();
    run.head = reader.head();
    while (auto item = reader.next())
        run.items += *item;
    run.problem = reader.problem();
    return run;
}

inline bool write_run(run_writer& writer, const run_head& head, const QList<run_item>& items) {
    bool is_well = writer.begin(head);
    for (const run_item& item : items) {
        if (const auto* sweep = std::get_if<timed_sweep>(&item))
            is_well = writer.add(*sweep);
        else
            is_well = writer.mark(std::get<timed_mark>(item));
    }
    return writer.end() && is_well;
}

} // namespace brivant
