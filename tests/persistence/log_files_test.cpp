#include "persistence/log_files.h"

#include "base/string_table.h"
#include "tests/persistence/local_time_zone.h"
#include "tests/persistence/test_database.h"

#include <QDir>
#include <QLocale>

namespace brivant {

namespace {

QDateTime at(int hour, int minute, int second) {
    return {QDate(2025, 3, 1), QTime(hour, minute, second)};
}

} // namespace

TEST(log_files, session_names_by_task_code) {
    const QTemporaryDir folder;
    const std::pair<int, const char*> prefixes[] = {
        {1, "dtc_"},    {2, "other_"}, {3, "xprt_"},   {4, "log_"},    {5, "frz_"},      {6, "vinfo_"},
        {7, "fuel_"},   {8, "mode6_"}, {9, "other_"},  {10, "other_"}, {11, "misfire_"}, {12, "other_"},
        {13, "boost_"}, {14, "o2_"},   {15, "other_"}, {0, "other_"},  {-1, "other_"},   {99, "other_"},
    };
    for (const auto& [task, prefix] : prefixes)
        EXPECT_EQ(work_out_log_fname_for_mode(folder.path(), task, true, at(9, 8, 7)),
                  folder.path() + "/loggies/" + prefix + "01_Mar_2025-0908_07");
    EXPECT_TRUE(QDir(folder.path() + "/loggies").exists());
}

TEST(log_files, dates_on_a_clock_of_twelve_hours) {
    const std::tuple<QDateTime, bool, const char*, const char*> examples[] = {
        {at(0, 5, 9), true, "01_Mar_2025-1205_09", "01 Mar 2025 12:05:09"},
        {at(1, 0, 0), false, "Mar_01_2025-0100_00", "Mar 01 2025 01:00:00"},
        {at(12, 30, 0), true, "01_Mar_2025-1230_00", "01 Mar 2025 12:30:00"},
        {at(23, 59, 59), false, "Mar_01_2025-1159_59", "Mar 01 2025 11:59:59"},
    };
    const QLocale before;
    for (const QLocale& locale :
         {QLocale::c(), QLocale(QLocale::German), QLocale(QLocale::Arabic, QLocale::Egypt)}) {
        QLocale::setDefault(locale); // the names stay English, the digits Latin
        for (const auto& [now, is_metric, in_file, shown] : examples) {
            EXPECT_EQ(get_todays_date(false, is_metric, now), in_file);
            EXPECT_EQ(get_todays_date(true, is_metric, now), shown);
        }
    }
    QLocale::setDefault(before);
}

TEST(log_files, database_times_in_the_local_zone) {
    const local_time_zone zone("Europe/Berlin");
    const std::array<const char*, 3> examples[] = {
        {"2013-05-01 14:03:07", "2013-05-01 16:03:07", "1 May 2013 16:03"},
        {"2012-12-31 23:30:00", "2013-01-01 00:30:00", "1 Jan 2013 00:30"},
        // The clocks go from 2 to 3, and from 3 back to 2.
        {"2013-03-31 00:59:59", "2013-03-31 01:59:59", "31 Mar 2013 01:59"},
        {"2013-03-31 01:00:00", "2013-03-31 03:00:00", "31 Mar 2013 03:00"},
        {"2013-03-31 02:30:00", "2013-03-31 04:30:00", "31 Mar 2013 04:30"},
        {"2013-10-27 00:59:59", "2013-10-27 02:59:59", "27 Oct 2013 02:59"},
        {"2013-10-27 01:00:00", "2013-10-27 02:00:00", "27 Oct 2013 02:00"},
        {"2012-02-29 00:00:00", "2012-02-29 01:00:00", "29 Feb 2012 01:00"},
        // No times
        {"", "", ""},
        {"2013-02-29 00:00:00", "", ""},
        {"2013-05-01", "", ""},
        {"2013-05-01 24:00:00", "", ""},
        {"2013-05-01T14:03:07", "", ""},
        {"2013-05-01 14:03:0x", "", ""},
        {"+013-05-01 14:03:07", "", ""},
    };
    for (const auto& [utc, local, shown] : examples) {
        EXPECT_EQ(gmt_date_str_2_local_date_str(utc), local) << utc;
        EXPECT_EQ(format_date_str(utc), shown) << utc;
    }
    EXPECT_EQ(seconds_of_time_stamp("1970-01-02 00:00:01"), 86401);
}

TEST(log_files, sampling_rates) {
    for (const auto& [index, seconds, key] :
         {std::tuple(5, 300, "EVERY_5_MINS"), {6, -1, "AS_FAST_AS_AVAIL"}, {-1, -1, "AS_FAST_AS_AVAIL"}}) {
        EXPECT_EQ(secs_4_sampling(index), seconds) << index;
        EXPECT_EQ(text_4_sampling(seconds), localised(key)) << index;
    }
    EXPECT_EQ(text_4_sampling(61), localised("AS_FAST_AS_AVAIL"));
}

TEST(log_files, folders_are_made_and_session_files_deleted) {
    const test_database t; // for its log
    const QString deep = t.folder.filePath("some/where");
    EXPECT_EQ(work_out_log_fname(deep, "a.csv"), deep + "/loggies/a.csv");
    put_file(deep + "/loggies/dtc_1");
    delete_a_log(deep, "dtc_1");
    EXPECT_FALSE(QFile::exists(deep + "/loggies/dtc_1"));
    EXPECT_EQ(t.log(), "");
    delete_a_log(deep, "dtc_1");
    EXPECT_TRUE(t.log().startsWith("oops: ")) << t.log().toStdString();

    const QString in_the_way = t.folder.filePath("console.log");
    EXPECT_EQ(pull_out_docs_dir(in_the_way), in_the_way + "/loggies");
    EXPECT_TRUE(t.log().endsWith("Couldn't create loggies folder\n"));
}

} // namespace brivant
