#include "shell/program_core.h"
#include "tests/support/print_qt.h"
#include "tests/support/test_file.h"

#include <QDir>
#include <gtest/gtest.h>

namespace brivant {

namespace {

launch_options asked_for(const QStringList& words) {
    QString problem;
    const auto options = parse_launch_options(words, problem);
    EXPECT_TRUE(options.has_value()) << problem.toStdString();
    return options.value_or(launch_options());
}

} // namespace

TEST(launch_options, wrong_ones_are_refused_with_a_sentence) {
    // clang-format off
    const char* const wrong[] = {
        "--nonsense", "-x", "--wifi", "--wifi host", "--wifi :35000", "--wifi host:0", "--wifi host:65536",
        "--wifi host:port", "--wifi=", "--wifi []:1", "--demo=", "--profile", "--profile=", "--metric --imperial",
        "--demo --simulate", "--wifi a:1 --demo", "--json=no", "--yes=no", "--simulate=x"};
    // clang-format on
    for (const char* words : wrong) {
        QString problem;
        EXPECT_FALSE(parse_launch_options(QString(words).split(' '), problem).has_value()) << words;
        EXPECT_TRUE(problem.endsWith('.') || problem.endsWith('?')) << words << problem.toStdString();
    }
}

TEST(launch_options, choose_the_link_for_this_run) {
    const std::tuple<const char*, int, const char*, const char*> rows[] = {
        {"--json", interface_bluetooth, "192.168.0.10", "35000"},
        {"--wifi 10.0.0.9:1234", interface_wifi, "10.0.0.9", "1234"},
        {"--wifi=adapter.local:00035", interface_wifi, "adapter.local", "35"},
        {"--wifi [fe80::1]:35000", interface_wifi, "fe80::1", "35000"},
        {"--wifi [fe80:1111:2222:3333:4444:5555:6666:7777%wlp123s45f67g8]:1", interface_wifi,
         "fe80:1111:2222:3333:4444:5555:6666:7777%wlp123s45f67g8", "1"},
        {"--simulate", interface_simulated, "192.168.0.10", "35000"},
    };
    QTemporaryDir folder;
    for (const auto& [words, kind, address, port] : rows) {
        program_core core(asked_for(QString(words).split(' ') + QStringList{"--profile", folder.path()}));
        core.choose_link();
        EXPECT_EQ(core.place.interface_kind(), kind) << words;
        EXPECT_EQ(core.place.wifi_ip(), address) << words;
        EXPECT_EQ(core.place.wifi_port(), port) << words;
        EXPECT_FALSE(core.defaults.has(setting::interface_kind)) << words; // nothing of it is stored
    }
}

TEST(program_core, units_reading_and_folders) {
    QTemporaryDir folder;
    {
        program_core core(asked_for({"--profile", folder.path(), "--metric", "--standard-reading"}));
        EXPECT_TRUE(core.defaults.value(setting::metric_units) && core.toolies.standard_reading());
        EXPECT_EQ(core.folder_problem(), "");
        EXPECT_TRUE(core.paths.documents.startsWith(folder.path()));
        EXPECT_TRUE(core.paths.application_folder.startsWith(folder.path()));
        EXPECT_TRUE(core.paths.settings_file.startsWith(folder.path()));
    }
    program_core next(asked_for({"--profile=" + folder.path()}));
    EXPECT_FALSE(next.toolies.standard_reading());
    EXPECT_FALSE(next.defaults.has(setting::metric_units)); // it was for that run only

    const QString in_the_way = folder.filePath("file");
    put_file(in_the_way);
    program_core nowhere(asked_for({"--profile", in_the_way}));
    EXPECT_TRUE(nowhere.folder_problem().contains("cannot be made"));
}

TEST(program_core, a_demo_has_a_car_and_leaves_nothing) {
    QString its_folder;
    {
        program_core core(asked_for({"--demo"}));
        QString problem;
        ASSERT_TRUE(core.start_demo(problem)) << problem.toStdString();
        core.choose_link();
        EXPECT_EQ(core.place.interface_kind(), interface_wifi);
        EXPECT_EQ(core.place.wifi_ip(), "127.0.0.1");
        its_folder = core.paths.documents;
        EXPECT_TRUE(QDir(its_folder).exists());
    }
    EXPECT_FALSE(QDir(its_folder).exists());
    program_core core(asked_for({"--demo=no such car"}));
    QString problem;
    EXPECT_FALSE(core.start_demo(problem));
    EXPECT_FALSE(problem.isEmpty());
}

} // namespace brivant
