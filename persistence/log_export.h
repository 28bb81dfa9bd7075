#pragma once

#include "base/shared_types.h"
#include "base/text_resources.h"
#include "base/whole_file.h"
#include "formats/run_writer.h"
#include "obd/readings/sampled_value.h"
#include "persistence/database.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_run.h"

#include <memory>

namespace brivant {

// What an export needs beside the log itself.
struct export_settings {
    QString documents;          // its "loggies" folder takes the file
    QString application_folder; // see log_export::begin
    unit_system units = unit_system::imperial;
    bool by_standard = false; // the reading of the values: see sampled_value.h
    bool time_column = false;
    const run_format* format = nullptr; // of other tools; the program's own while there is none
};

// Writes a stored sampling run to a file of comma-separated values, or in a format of other tools, a slice of
// lines at a time, so that it can be shown, stopped, and of any length. The values are those of the unit
// system and the reading in force. Under its final name the file is whole.
class log_export {
public:
    log_export(database& store, const text_resources& texts, export_settings its_settings);
    ~log_export();
    Q_DISABLE_COPY_MOVE(log_export)

    // False when the log cannot be exported: see problem().
    bool begin(int log_id, bool as_txt);
    // Handles up to `lines` stored lines. True while there are more.
    bool step(int lines);
    // The person stops it, or it goes away on its way: nothing stays behind.
    void stop();

    bool succeeded() const { return phase == stage::done; }
    // A sentence for the person, "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }
    const QString& path() const { return final_path; }
    qint64 lines_written() const { return written; }
    // How many lines the log says that it has; 0 when it does not say.
    qint64 lines_announced() const { return announced; }

private:
    enum class stage { idle, finding_columns, writing, done, failed };

    bool open_rows();
    bool find_columns(int lines);
    bool write_lines(int lines);
    bool write(const QString& text);
    bool fail(const QString& sentence);
    bool fail_to_write();
    bool finish();
    bool begin_writing();
    QString header() const;
    QString line_of(const QStringList& row, const timed_sweep& sweep) const;

    database& db;
    const text_resources& lists;
    const export_settings settings;
    const sample_reading reading;

    stage phase = stage::idle;
    std::unique_ptr<stored_run> run;
    std::unique_ptr<run_writer> writer; // none for the program's own format
    int id = -1;
    QString vehicle;
    bool are_columns_told = false;
    qint64 announced = 0;
    qint64 written = 0;
    QString final_path;
    std::unique_ptr<whole_file> file;
    std::unique_ptr<row_cursor> rows;
    QString what_is_wrong;
};

} // namespace brivant
