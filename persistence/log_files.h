#pragma once

#include <QDateTime>
#include <QString>

namespace brivant {

// Names, folders, dates and rates of the files that the program writes beside its database.

// The "loggies" folder below the given one, made when it is missing.
QString loggies_folder(const QString& folder);
// The folder of the exports: "loggies" below the Documents folder.
QString pull_out_docs_dir(const QString& documents);
// The full path of an export.
QString work_out_log_fname(const QString& documents, const QString& file_name);
// The full path of a new session file, without an extension: a prefix by task code and the date.
QString work_out_log_fname_for_mode(const QString& application_folder, int task, bool metric,
                                    const QDateTime& now);
// Removes a session file from the application folder.
void delete_a_log(const QString& application_folder, const QString& file_name);

// The date as a part of a file name, or as it is shown. The hours are those of a 12-hour clock without AM or
// PM, on purpose; months are English in every locale.
QString get_todays_date(bool for_display, bool metric, const QDateTime& now);
// A time stamp of the database (UTC, "yyyy-MM-dd HH:mm:ss") as seconds since 1970; -1 for other text.
qint64 seconds_of_time_stamp(QByteArrayView utc);
// The same in local time, in the same form; "" for other text.
QString gmt_date_str_2_local_date_str(const QString& utc);
// The same in the medium date and short time style.
QString format_date_str(const QString& utc);

// Sampling rates: the seconds of a place in the list of rates, -1 for as fast as the adapter allows; the name
// of a number of seconds.
int secs_4_sampling(int index);
QString text_4_sampling(int seconds);

} // namespace brivant
