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
    for (const char* bad : {"AT H1", "AT", "AT H2", "AT SP D", "AT SP", "AT ST F", "AT CAF0", "HELLO", "0",
                            "01 0G", "01 02 03 04 05 06 07 08", "\xFF\x80"})
        EXPECT_EQ(adapter.receive(std::string(bad) + '\r'), "?\r\r>") << bad;
    for (const char* good :
         {"AT SP 6", "AT SP A6", "AT TP 3", "AT ST FF", "AT AT1", "AT M0", "AT CAF1", "AT AL", "AT PC"})
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
