// Every job that changes the database, killed at each of its changes to a file, and with a disk that is full
// from each of them on: afterwards it is done or not done, and what it said is true. BV_SUDDEN_ENDS=1 tries
// each change, else about ten of each job.

#include "base/app_paths.h"
#include "formats/run_writer.h"
#include "persistence/recovery.h"
#include "tests/persistence/test_database.h"
#include "tests/support/faulty_disk.h"
#include "tests/support/other_program.h"
#include "tests/support/print_qt.h"

#include <QDir>
#include <QProcess>

namespace brivant {

namespace {

constexpr int changes_tried = 10;

// More than the database keeps in memory, so that it is on the disk before it is whole.
void put_run(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto writer = make_run_writer(run_format::kind::timed_csv, file);
    run_head head;
    head.start_ms = 1790000000000;
    head.columns = {{"0D", "Vehicle speed", "kph"}};
    head.has_offsets = true;
    writer->begin(head);
    writer->mark({150, "here"});
    for (int sweep = 0; sweep < 2000; ++sweep)
        writer->add({100.0 * sweep, {60.0 + sweep % 50}, {12.5}, {}});
    ASSERT_TRUE(writer->end());
}

// A profile with two vehicles, of which the second has a photo, a report and a long run, and the first a run.
struct profile {
    QTemporaryDir folder{folder_in_memory()};
    app_paths paths = app_paths::for_profile(folder.path());

    profile() { QDir().mkpath(paths.documents); }
    QString file() const { return database(paths.documents).path(); }

    void outside(const QByteArray& sql) const { other_program(file()).runs(sql); }
    void fill_in() const {
        database db(paths.documents);
        ASSERT_TRUE(db.init_DB() && db.init_DB() && db.add_own_parts());
        outside("INSERT INTO VEHICLES (NAME) VALUES ('Van'); INSERT INTO VEH_IMAGES (VEH_ID, PICY) VALUES "
                "(2, 'x');"
                "INSERT INTO LOGGIES (VEH_ID, LOG_TYPE, INFO) VALUES (1, 'Log', '9000 Sample points'), "
                "(2, 'DTC', 'Codes'), (2, 'Log', '9000 Sample points');"
                "INSERT INTO BV_REPLIES VALUES (2, 0, '03', '7E8 04 43 01 01 33', 6, 1, 5);"
                "INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER) VALUES (2, 'text', 0), (2, 'raw', 1);"
                "INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER) SELECT 1 + 2 * (i % 2), '410D3C', i / "
                "2 FROM "
                "(WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 17999) "
                "SELECT i FROM n)");
        put_run(paths.documents + "/run.csv");
    }
    void copy_to(const profile& other) const {
        const QDir there(other.paths.documents);
        for (const QString& old : there.entryList(QDir::Files))
            QFile::remove(there.filePath(old));
        const QDir here(paths.documents);
        for (const QString& name : here.entryList(QDir::Files))
            ASSERT_TRUE(QFile::copy(here.filePath(name), there.filePath(name)));
    }
    // What the next start makes of it: all rows, without their times.
    QString contents() const {
        database db(paths.documents);
        EXPECT_TRUE(db.init_DB() && db.add_own_parts()) << db.problem().toStdString();
        put_in_order(db);
        EXPECT_EQ(db.retrieve_from_DB("PRAGMA integrity_check").value(0).value(0), "ok");
        QStringList texts;
        for (const char* rows :
             {"'V', VEH_ID, NAME, MODEL_YEAR, ENG_VOL FROM VEHICLES",
              "'P', VEH_ID, LENGTH(PICY) > 0 FROM VEH_IMAGES",
              "'L', LOG_ID, VEH_ID, LOG_TYPE, INFO FROM LOGGIES",
              "'R', LOG_ID, SEQUENCE, REQUEST, REPLY FROM BV_REPLIES",
              "'S', LOG_ID, STARTED_UTC_MS FROM BV_RUNS", "'N', LOG_ID, TEXT FROM BV_MARKS",
              "'G', LOG_ID, COUNT(*) FROM BV_POSITIONS GROUP BY LOG_ID",
              "'D', LOG_ID, COUNT(*), MIN(LINE_NUMBER), MAX(LINE_NUMBER) FROM LOGGIES_DATA GROUP BY LOG_ID"})
            for (const QStringList& row :
                 db.retrieve_from_DB(QStringLiteral("SELECT ") + QLatin1String(rows)))
                texts += row.join('|');
        return texts.join('\n');
    }
};

int run_job(const QString& job, const profile& place, const faulty_disk& disk = {}) {
    QProcess process;
    QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
    disk.surround(surroundings);
    process.setProcessEnvironment(surroundings);
    process.start(BV_DATABASE_JOB, {job, place.folder.path()});
    EXPECT_TRUE(process.waitForFinished(60000));
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

// A job between what there was before it and what is there after it; a run may be cut after any sweep.
struct job_walk {
    const QString job;
    const profile& before;
    profile place;
    QString told = place.folder.filePath("told");
    QStringList allowed;
    QString done;
    int ends = 0;

    job_walk(const QString& name, const profile& start) : job(name), before(start) {
        before.copy_to(place);
        const QString old = place.contents();
        before.copy_to(place);
        EXPECT_EQ(run_job(job, place), 0);
        done = place.contents();
        allowed = {old, done};
        if (job == "run") {
            // What could not be stored leaves a gap; a sweep whose flush failed may stand all the same.
            for (const auto& [sweeps, lines] : {std::pair(1, "1|0|0"),
                                                {1, "2|0|1"},
                                                {2, "2|0|1"},
                                                {2, "3|0|2"},
                                                {2, "3|0|1"},
                                                {2, "4|0|2"}})
                allowed += QString(done)
                               .replace("|3 Sample", QStringLiteral("|%1 Sample").arg(sweeps))
                               .replace("|3|0|2", QLatin1Char('|') + lines);
        }
    }
    // The job with a disk that strikes at one change. False when it has fewer.
    bool strikes(const QByteArray& variable, const QByteArray& at) {
        before.copy_to(place);
        const faulty_disk disk{variable, at, told};
        const int status = run_job(job, place, disk);
        const QByteArray struck = disk.struck();
        if (struck.isEmpty())
            return false;
        ++ends;
        const QString found = place.contents();
        EXPECT_TRUE(allowed.contains(found)) << job.toStdString() << " " << variable.constData() << "="
                                             << at.constData() << ": " << struck.constData() << "\n"
                                             << found.toStdString();
        if (status == 0) {
            EXPECT_EQ(found, done) << job.toStdString() << " " << at.constData() << ": said to be done";
        }
        return true;
    }
    void walk(const QByteArray& variable, const QByteArray& suffix) {
        int changes = 1;
        while (changes < 4096 && strikes(variable, QByteArray::number(changes) + suffix))
            changes *= 2;
        const bool all = qEnvironmentVariableIsSet("BV_SUDDEN_ENDS");
        const int step = all ? 1 : std::max(1, changes / changes_tried);
        for (int at = 1; at < changes; at += step)
            strikes(variable, QByteArray::number(at) + suffix);
    }
};

} // namespace

class sudden_ends : public testing::TestWithParam<const char*> {};

TEST_P(sudden_ends, leave_a_job_done_or_not_done) {
    profile before;
    const QString job = GetParam();
    if (job == "migrate") {
        before.fill_in();
        before.outside(
            "ALTER TABLE LOGGIES_DATA DROP COLUMN DATA2; ALTER TABLE VEHICLES DROP COLUMN XTRA_INFO;"
            "DROP TABLE P1_CODES; DELETE FROM VEHICLES WHERE VEH_ID=2");
    } else if (job != "start") {
        before.fill_in();
    }
    job_walk walk(job == "migrate" ? "start" : job, before);
    walk.walk("BV_KILL_AT", "");
    walk.walk("BV_FAIL_AT", "");
    walk.walk("BV_FAIL_AT", "+");
    RecordProperty("sudden_ends", walk.ends);
    EXPECT_GT(walk.ends, 5);
    if (job == "migrate") {
        EXPECT_EQ(QDir(walk.place.paths.documents).entryList({"* before *.db"}).size(), 1) << "the copy";
    }
}

INSTANTIATE_TEST_SUITE_P(of, sudden_ends,
                         testing::Values("start", "migrate", "report", "run", "import", "vehicle",
                                         "delete-log", "delete-vehicle"));

} // namespace brivant
