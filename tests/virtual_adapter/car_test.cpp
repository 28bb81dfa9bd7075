#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/car_file.h"

#include <gtest/gtest.h>

using namespace virtual_adapter;

TEST(car_file, mistakes_name_their_line) {
    struct {
        const char* text;
        const char* problem; // how it begins
    } const rows[] = {
        {"", "line 1: the car has no \"ecu\" line"},
        {"ecu 7E8\n", "line 1: the \"protocol\" line must"},
        {"protocol 6\npid 05 7B\n", "line 2: \"pid\" belongs below"},
        {"protocol A\n", "line 1: the protocol is not one of"},
        {"protocol 6\n# comment\n\necu 18DAF110", "line 4: the response address is not 3"},
        {"protocol 6\necu 7E8\necu 7E8", "line 3: an ECU of that address"},
        {"protocol 6\necu 7E8\nwheel 4", "line 3: no such keyword: \"wheel\""},
        {"protocol 6\necu 7E8\npid 5 7B", "line 3: the PID is not 2 hexadecimal digits: \"5\""},
        {"protocol 6\necu 7E8\npid 05 7B\npid 05 7C", "line 4: that PID stands above"},
        {"protocol 6\necu 7E8\npid 1C live", "line 3: the drive cycle has no value"},
        {"protocol 3\necu 10\npid 05 01 02 03 04 05 06", "line 3: the value has more than 5 bytes"},
        {"protocol 6\necu 7E8\ncode P4133", "line 3: not a trouble code: \"P4133\""},
        {"protocol 3\necu 10\npermanent P0133", "line 3: permanent codes exist on CAN only"},
        {"protocol 6\necu 7E8\nvin 1G1JC5443R7252367",
         "line 3: the check digit of the VIN (ninth place) should be 4"},
        {"protocol 6\necu 7E8\nfreeze 05 7B", "line 3: a \"freeze_code\" line must"},
        {"protocol 6\necu 7E8\ntest 01 01 0A 0E69 0E69", "line 3: the maximum is missing"},
        {"protocol 6\necu 7E8\nmil on off", "line 3: more than expected: \"off\""},
        {"battery nan", "line 1: the voltage is not a number from 0 to 40: \"nan\""},
        {"protocol 6\necu 7E8\ndata F190 \"", "line 3: a text stands between"},
        {"name caf\xC3\xA9", "line 1: the name holds a character"},
    };
    for (const auto& row : rows) {
        std::string problem;
        EXPECT_FALSE(parse_car(row.text, problem)) << row.text;
        EXPECT_TRUE(problem.starts_with(row.problem)) << problem << "\nnot: " << row.problem;
    }
    std::string problem;
    EXPECT_FALSE(parse_car(std::string(70000, '\n'), problem));
    EXPECT_TRUE(parse_car("protocol 5 # KWP\r\n\tecu 12\r\n", problem)) << problem;
    QString sentence;
    EXPECT_FALSE(load_car(QStringLiteral("no such car"), sentence));
    EXPECT_FALSE(sentence.isEmpty());
}
