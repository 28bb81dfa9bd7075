#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/car_file.h"
#include "tools/virtual_adapter/elm327.h"

#include <gtest/gtest.h>

using namespace virtual_adapter;

namespace {

std::shared_ptr<car> car_of(const std::string& text) {
    std::string problem;
    auto made = parse_car(text, problem);
    EXPECT_TRUE(made) << problem;
    return made ? std::make_shared<car>(*made) : nullptr;
}

struct turn {
    const char* sent; // without its return
    const char* reply;
};

void converse(elm327& adapter, std::initializer_list<turn> turns) {
    for (const turn& t : turns)
        EXPECT_EQ(adapter.receive(std::string(t.sent) + '\r'), t.reply) << t.sent;
}

const std::string two_ecus = "protocol 6\nbattery 12.3\n"
                             "ecu 7E8\npid 05 7B\npid 0C 1A F8\npid 21 00 00\n"
                             "ecu 7E9\npid 0C 1A F8\n";

} // namespace

TEST(elm327, first_contact_as_a_scanner_makes_it) {
    elm327 adapter(car_of(two_ecus));
    converse(adapter,
             {
                 {"AT Z", "AT Z\r\r\rELM327 v1.5\r\r>"},
                 {"AT E0", "AT E0\rOK\r\r>"},
                 {"AT I", "ELM327 v1.5\r\r>"},
                 {"AT DP", "AUTO\r\r>"},
                 {"AT DPN", "A0\r\r>"},
                 {"at h1", "OK\r\r>"},
                 {"01 00", "SEARCHING...\r7E8 06 41 00 88 10 00 01 \r7E9 06 41 00 80 10 00 00 \r\r>"},
                 {"AT DPN", "A6\r\r>"},
                 {"AT DP", "AUTO, ISO 15765-4 (CAN 11/500)\r\r>"},
                 {"01 20", "7E8 06 41 20 80 00 00 00 \r\r>"},
                 {"", "7E8 06 41 20 80 00 00 00 \r\r>"},
                 {"01 0C 1", "7E8 04 41 0C 1A F8 \r\r>"},
                 {"01 0D", "NO DATA\r\r>"},
                 {"AT RV", "12.3V\r\r>"},
                 {"ATS0", "OK\r\r>"},
                 {"010c", "7E804410C1AF8\r7E904410C1AF8\r\r>"},
                 {"AT L1", "OK\r\n\r\n>"},
                 {"AT H0", "OK\r\n\r\n>"},
                 {"0105", "41057B\r\n\r\n>"},
                 {"AT D", "OK\r\r>"},
                 {"AT @1", "AT @1\rOBDII to RS232 Interpreter\r\r>"},
                 {"AT WS", "AT WS\r\r\rELM327 v1.5\r\r>"},
             });
}

TEST(elm327, what_it_does_not_know_is_answered_with_a_question_mark) {
    elm327 adapter(car_of(two_ecus));
    adapter.receive("ATE0\r");
    adapter.refuse({"ATH1"});
    for (const char* bad :
         {"AT H1", "AT", "AT H2", "AT SP D", "AT SP", "AT ST F", "AT CAF2", "AT SH 7E", "AT CRA 7E",
          "AT CM 7EX", "AT STI", "STI", "HELLO", "0", "01 0G", "01 02 03 04 05 06 07 08", "\xFF\x80"})
        EXPECT_EQ(adapter.receive(std::string(bad) + '\r'), "?\r\r>") << bad;
    for (const char* good : {"AT SP 6", "AT SP A6", "AT TP 3", "AT ST FF", "AT AT1", "AT M0", "AT CAF1",
                             "AT AL", "AT PC", "AT CAF0", "AT CFC1", "AT CP 18"})
        EXPECT_EQ(adapter.receive(std::string(good) + '\r'), "OK\r\r>") << good;
    EXPECT_EQ(adapter.receive(std::string(5000, ' ') + "ATI\r"), "?\r\r>");
    EXPECT_EQ(adapter.receive(std::string_view("\n\0ATRV\0\r\n01", 11)), "12.3V\r\r>");
    EXPECT_EQ(adapter.receive("05\r\r"), "BUS INIT: ...ERROR\r\r>BUS INIT: ...ERROR\r\r>");
}

TEST(elm327, fixed_protocols_and_cars_that_do_not_answer) {
    elm327 k_line(car_of("protocol 3\necu 10\npid 05 7B\n"),
                  {.stored_protocol = 3, .stored_automatic = false});
    converse(k_line, {
                         {"ATE0", "ATE0\rOK\r\r>"},
                         {"AT DP", "ISO 9141-2\r\r>"},
                         {"0105", "BUS INIT: ...OK\r41 05 7B \r\r>"},
                         {"0105", "41 05 7B \r\r>"},
                         {"AT PC", "OK\r\r>"},
                         {"0105", "BUS INIT: ...OK\r41 05 7B \r\r>"},
                         {"AT SP A3", "OK\r\r>"},
                         {"AT DP", "AUTO, ISO 9141-2\r\r>"},
                         {"AT DPN", "A3\r\r>"},
                         {"AT H1", "OK\r\r>"},
                         {"0105", "SEARCHING...\r48 6B 10 41 05 7B 84 \r\r>"},
                         {"AT TP 6", "OK\r\r>"},
                         {"0105", "CAN ERROR\r\r>"},
                         {"AT Z", "\r\rELM327 v1.5\r\r>"}, // the tried protocol was not stored
                         {"AT DPN", "AT DPN\rA3\r\r>"},
                         {"AT SP 0", "AT SP 0\rOK\r\r>"},
                         {"AT DPN", "AT DPN\rA0\r\r>"},
                     });
    elm327 dark(car_of("protocol 5\nignition off\necu 12\npid 05 7B\n"));
    converse(dark, {
                       {"ATE0", "ATE0\rOK\r\r>"},
                       {"0105", "SEARCHING...\rUNABLE TO CONNECT\r\r>"},
                       {"AT SP 5", "OK\r\r>"},
                       {"0105", "BUS INIT: ERROR\r\r>"},
                   });
}

// Requests to one ECU and to all, and whose answers come through.
TEST(elm327, headers_and_filters_choose_the_ecus) {
    const std::string can29 = "protocol 7\necu 18DAF110\npid 0C 1A F8\necu 18DAF111\npid 0C 1A F9\n";
    const std::string kwp = "protocol 5\necu 10\npid 0C 1A F8\necu 11\npid 0C 1A F9\n";
    const std::string vpw = "protocol 2\necu 10\npid 0C 1A F8\n";
    struct {
        const std::string& car;
        std::vector<const char*> settings;
        const char* reply;
    } const rows[] = {
        {two_ecus, {}, "7E804410C1AF8\r7E904410C1AF8\r\r>"},
        {two_ecus, {"AT SH 7DF"}, "7E804410C1AF8\r7E904410C1AF8\r\r>"},
        {two_ecus, {"AT SH 7E1"}, "7E904410C1AF8\r\r>"},
        {two_ecus, {"AT SH 00 07 E0"}, "7E804410C1AF8\r\r>"},
        {two_ecus, {"AT SH 7E2"}, "NO DATA\r\r>"},
        {two_ecus, {"AT SH 123"}, "NO DATA\r\r>"},
        {two_ecus, {"AT SH 7E1", "AT CRA 7E8"}, "NO DATA\r\r>"},
        {two_ecus, {"AT CRA 7E9"}, "7E904410C1AF8\r\r>"},
        {two_ecus, {"AT CRA 7EX"}, "7E804410C1AF8\r7E904410C1AF8\r\r>"},
        {two_ecus, {"AT CRA 7E9", "AT CRA"}, "7E804410C1AF8\r7E904410C1AF8\r\r>"},
        {two_ecus, {"AT CF 7E9", "AT CM 7FF"}, "7E904410C1AF8\r\r>"},
        {can29, {"AT CRA 7E9"}, "18DAF11004410C1AF8\r18DAF11104410C1AF9\r\r>"},
        {can29, {"AT SH DA 11 F1"}, "18DAF11104410C1AF9\r\r>"},
        {can29, {"AT SH 18 DA 10 F1"}, "18DAF11004410C1AF8\r\r>"},
        {can29, {"AT CP 10", "AT SH DB 33 F1"}, "NO DATA\r\r>"},
        {can29, {"AT SH DB 33 F1"}, "18DAF11004410C1AF8\r18DAF11104410C1AF9\r\r>"},
        {can29, {"AT CRA 18DAF111"}, "18DAF11104410C1AF9\r\r>"},
        {kwp, {"AT SH 82 11 F1"}, "84F111410C1AF9E6\r\r>"},
        {kwp, {"AT SH C2 33 F1"}, "84F110410C1AF8E4\r84F111410C1AF9E6\r\r>"},
        {vpw, {"AT SH 68 6A F1"}, "486B10410C1AF8B2\r\r>"},
        {vpw, {"AT SH 6C 10 F1"}, "NO DATA\r\r>"},
    };
    for (const auto& row : rows) {
        elm327 adapter(car_of(row.car));
        adapter.receive("ATE0\rATS0\rATH1\r");
        const std::string first = adapter.receive("0100\r");
        std::string set;
        for (const char* setting : row.settings) {
            EXPECT_EQ(adapter.receive(std::string(setting) + '\r'), "OK\r\r>");
            set += setting + std::string(" ");
        }
        EXPECT_EQ(adapter.receive("010C\r"), row.reply) << set;
        adapter.receive("ATD\rATE0\rATS0\rATH1\r");
        EXPECT_EQ(adapter.receive("0100\r"), first) << set;
    }
}

TEST(elm327, several_pids_a_request_the_count_digit_and_the_forms_of_a_long_answer) {
    elm327 adapter(car_of(two_ecus));
    adapter.receive("ATE0\r0100\r");
    converse(adapter, {
                          {"01 0C 05", "41 0C 1A F8 05 7B \r41 0C 1A F8 \r\r>"},
                          {"010C05 1", "41 0C 1A F8 05 7B \r\r>"},
                          {"AT SH 7E0", "OK\r\r>"},
                          {"01 21 0D 0C 05", "009\r0: 41 21 00 00 0C 1A \r1: F8 05 7B 00 00 00 00 \r\r>"},
                          {"01210D0C05 1", "009\r0: 41 21 00 00 0C 1A \r\r>"},
                          {"AT CFC0", "OK\r\r>"},
                          {"01210D0C05", "009\r0: 41 21 00 00 0C 1A \r\r>"},
                          {"AT CFC1", "OK\r\r>"},
                          {"AT S0", "OK\r\r>"},
                          {"AT H1", "OK\r\r>"},
                          {"0121050C2", "7E8100941210000057B\r7E8210C1AF800000000\r\r>"},
                          {"AT CAF0", "OK\r\r>"},
                          {"01 0C", "NO DATA\r\r>"},
                          {"04 01 21 05 0C", "7E8100941210000057B\r7E8210C1AF800000000\r\r>"},
                          {"AT H0", "OK\r\r>"},
                          {"04 01 21 05 0C", "100941210000057B\r210C1AF800000000\r\r>"},
                          {"02 01 05 00 00 00 00 00", "0341057B\r\r>"},
                      });
    elm327 k_line(car_of("protocol 3\necu 10\npid 05 7B\npid 0C 1A F8\necu 11\npid 05 7B\n"));
    k_line.receive("ATE0\r0100\r");
    converse(k_line, {{"01 05 1", "41 05 7B \r\r>"}, {"01 05 0C", "NO DATA\r\r>"}});
}

TEST(elm327, an_stn_chip_knows_more) {
    elm327 adapter(car_of(two_ecus), {.st_identity = "STN1110 v4.0.1"});
    adapter.receive("ATE0\rATH1\r0100\r");
    converse(adapter, {
                          {"STI", "STN1110 v4.0.1\r\r>"},
                          {"STPX H:7E1, D:01 0C", "7E9 04 41 0C 1A F8 \r\r>"},
                          {"STPX D:010C, R:1, T:100", "7E8 04 41 0C 1A F8 \r\r>"},
                          {"STPX H:7E2,D:010C", "NO DATA\r\r>"},
                          {"STPTO 100", "OK\r\r>"},
                          {"AT SH 7E1", "OK\r\r>"},
                          {"STPX H:7E0,D:0105", "7E8 03 41 05 7B \r\r>"},
                      });
    for (const char* bad :
         {"ST", "STZ", "STPTO", "STPTO 0", "STPTO 99999", "STPX", "STPX H:7E0", "STPX D:010",
          "STPX D:010C,R:0", "STPX D:010C,Q:1", "STPX H:7,D:010C", "STPX 010C"})
        EXPECT_EQ(adapter.receive(std::string(bad) + '\r'), "?\r\r>") << bad;
}

TEST(elm327, a_clone_fails_where_fast_clients_go) {
    struct {
        const char* fault;
        std::vector<turn> turns;
    } const rows[] = {
        {"hang", {{"010C05", "7E806410C1AF8057B"}, {"010C0521", ""}, {"ATI", ""}, {"0105", ""}}},
        {"no-count", {{"01051", "?"}, {"0105", "7E80341057B"}}},
        {"order", {{"01050C", "7E806410C1AF8057B"}, {"0105", "7E80341057B"}}},
        {"drop", {{"01050C21", "7E80641057B210000"}, {"0105", "7E80341057B"}}},
        {"cut", {{"010C0521", "7E807410C1AF8057B21"}, {"0121", "7E80441210000"}}},
        {"ignore-sh", {{"ATSH7E2", "OK"}, {"0105", "7E80341057B"}}},
        {"ignore-cra", {{"ATCRA7E9", "OK"}, {"ATCRA", "OK"}, {"0105", "7E80341057B"}}},
        {"ignore-s0", {{"ATS1", "OK"}, {"ATS0", "OK"}, {"0105", "7E8 03 41 05 7B "}}},
    };
    for (const auto& row : rows) {
        clone_faults what;
        ASSERT_TRUE(what.add(row.fault));
        elm327 adapter(car_of(two_ecus));
        adapter.receive("ATE0\rATS0\rATH1\r0100\rATSH7E0\r");
        adapter.suffer(what);
        for (const turn& t : row.turns) {
            std::string expected = t.reply;
            if (!expected.empty())
                expected += "\r\r>";
            EXPECT_EQ(adapter.receive(std::string(t.sent) + '\r'), expected) << row.fault << ' ' << t.sent;
        }
    }
    EXPECT_FALSE(clone_faults().add("rust"));
}
