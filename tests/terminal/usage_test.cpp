#include "tests/terminal/cli_process.h"

#include <QDir>
#include <QDirIterator>

namespace brivant {

namespace {

QStringList files_below(const QString& folder) {
    QStringList files;
    for (QDirIterator all(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); all.hasNext();)
        files += QDir(folder).relativeFilePath(all.next());
    files.sort();
    return files;
}

} // namespace

TEST(usage, exit_statuses) {
    const std::tuple<QStringList, int, const char*> rows[] = {
        {{"--help"}, 0, "Usage: brivant-cli"},
        {{"--version"}, 0, "brivant-cli " BV_VERSION},
        {{}, 2, ""},
        {{"read-code"}, 2, ""},
        {{"--demo=no-such-car", "read-codes"}, 2, ""},
        {{"--demo", "clear-codes"}, 2, ""}, // not without --yes
        {{"--demo", "--yes=no", "clear-codes"}, 2, ""},
        {{"--demo", "read-codes", "link-info"}, 2, ""},
        {{"--simulate", "read-codes"}, 1, ""},
    };
    for (const auto& [words, status, out] : rows) {
        cli_process run(words);
        EXPECT_EQ(run.status(), status) << words.join(' ').toStdString();
        EXPECT_TRUE(run.out().startsWith(out)) << words.join(' ').toStdString();
        EXPECT_EQ(run.out().isEmpty(), *out == '\0') << words.join(' ').toStdString();
        EXPECT_EQ(run.progress().isEmpty(), status == 0) << words.join(' ').toStdString(); // why not
    }
}

TEST(usage, without_bluetooth_it_ends_and_names_the_ways_to_an_adapter) {
    for (const QStringList& command :
         {QStringList{"read-codes"}, QStringList{"send", "AT RV"}, QStringList{"fuel"},
          QStringList{"--bluetooth", "00:1D:A5:68:98:8B", "link-info"}}) {
        cli_process run(command);
        EXPECT_EQ(run.status(), 1) << command.join(' ').toStdString();
        for (const char* way : {"bluetooth-scan", "--bluetooth ADDRESS", "--wifi HOST:PORT"})
            EXPECT_TRUE(run.progress().contains(way))
                << command.join(' ').toStdString() << run.progress().constData();
    }
}

TEST(usage, text_results) {
    cli_process run({"--demo", "read-codes"});
    EXPECT_EQ(run.status(), 0);
    for (const char* part :
         {"MIL: ON\nCodes announced: 2\n", "\nP0133  7E8  ", "\nP0220  7E8  ", "\nReadiness:\n",
          "Interface: ELM327v1.5\nProtocol: ISO 15765-4 CAN (11 bit ID, 500 kbaud)\nNo of ECUS: 2"})
        EXPECT_TRUE(run.out().contains(part)) << part << run.out().constData();
}

TEST(clear_codes, clears_and_tells_a_refusal) {
    bench_adapter adapter;
    const QStringList clearing{"--yes", "clear-codes"};
    EXPECT_EQ(cli_process(adapter.link() + clearing).status(), 0);
    cli_process after(adapter.link() << "read-codes");
    EXPECT_EQ(after.status(), 0);
    EXPECT_EQ(codes_of(after.json()).join(' '), "");
    EXPECT_FALSE(after.json()["mil"].toBool(true));

    bench_adapter running("can11-many-codes"); // its engine runs: it refuses
    cli_process refused(running.link() + clearing);
    EXPECT_EQ(refused.status(), 1);
    EXPECT_TRUE(refused.said().contains(
        "The car did not confirm the clearing (its answer: 7E8: refused by the ECU: conditions not"));
}

TEST(profile, holds_every_file) {
    QTemporaryDir folder;
    const QString profile = folder.filePath("profile");
    cli_process first({"--demo", "--profile", profile, "--json", "read-codes"});
    EXPECT_EQ(first.status(), 0);
    EXPECT_EQ(files_below(first.home.path()).join(' '), "");
    EXPECT_EQ(files_below(profile).join(' '),
              "Documents/BV_loggies_lite.db Documents/BV_loggies_lite.db-reserve Documents/console.log "
              "brivant-lite.ini");
    // Another car on the same profile: the question, which a script without a terminal goes past.
    cli_process second({"--demo=can29", "--profile", profile, "--json", "link-info"});
    EXPECT_EQ(second.status(), 0);
    EXPECT_TRUE(second.said().contains("Answered: Yes"));
    cli_process third({"--demo=can29", "--profile", profile, "--json", "link-info"});
    EXPECT_EQ(third.status(), 0);
    EXPECT_FALSE(third.said().contains("Answered"));

    cli_process demo({"--demo", "--json", "link-info"}); // without a profile nothing is kept
    EXPECT_EQ(demo.status(), 0);
    EXPECT_EQ(files_below(demo.home.path()).join(' '), "");
}

} // namespace brivant
