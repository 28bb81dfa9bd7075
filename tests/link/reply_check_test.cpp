#include "link/reply_check.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct row {
    const char* why;
    const char* command;
    const char* expected; // null: none
    bool has_header;
    int protocol;
    const char* reply; // normalised
    bool accepted;
};

constexpr bool headers = true;
constexpr bool plain = false;

// clang-format off
constexpr row rows[] = {
    {"no data answers everything",             "01 00\r",    "4100",    plain,    6, "NODATA",                     true},
    {"  also what expects nothing",            "04\r",       nullptr,   plain,    6, "NODATA",                     true},
    {"a voltage",                              "AT RV\r",    "8|9|1",   plain,    6, "12.3V",                      true},
    {"  which matches the empty text",         "AT RV\r",    "8|9|1",   plain,    6, "?",                          true},
    {"a protocol number",                      "AT DPN\r",   "A",       plain,   -1, "A6",                         true},
    {"  in lower case",                        "AT DPN\r",   "A",       plain,   -1, "aC",                         true},
    {"  found before",                         "AT DPN\r",   "A",       plain,   -1, "6",                          false},
    {"  A and no number",                      "AT DPN\r",   "A",       plain,   -1, "AUTO",                       false},
    {"  at the start only",                    "AT DPN\r",   "A",       plain,   -1, "\rA6",                       false},
    {"one alternative of an AT command",       "AT DP\r",    "AUTO|ISO|SAE", plain, -1, "ISO15765-4",              true},
    {"  none of them",                         "AT DP\r",    "AUTO|ISO|SAE", plain, -1, "USER1",                   false},
    {"  upper and lower case differ",          "AT H1\r",    "OK",      plain,   -1, "ok",                         false},
    {"  echoed",                               "AT E0\r",    "OK",      plain,   -1, "ATE0\rOK",                   true},
    {"  AT commands are tested as such",       "AT H1\r",    "OK",      headers,  6, "?",                          false},
    {"  without an expectation",               "AT H1\r",    nullptr,   plain,    6, "OK",                         false},
    {"a request without headers",              "01 00|12\r", "4100",    plain,   -1, "7E8064100BE3FA813",          true},
    {"  unanswered",                           "01 00\r",    "4100",    plain,   -1, "UNABLETOCONNECT",            false},
    {"  never, without an expectation",        "04\r",       nullptr,   plain,    6, "44",                         false},
    {"headers, protocol unknown",              "01 00\r",    nullptr,   headers, -1, "anything",                   true},
    {"headers, nothing but ?",                 "01 00\r",    nullptr,   headers,  6, "?",                          true},
    {"headers, ? and more",                    "01 00\r",    nullptr,   headers,  6, "?7E8",                       false},
    {"headers, before the car was found",      "01 00\r",    nullptr,   headers,  0, "4100BE3FA813",               true},
    {"  with a header",                        "01 00\r",    nullptr,   headers,  0, "7E8064100BE3FA813",          false},
    {"headers, 11 bit",                        "01 00\r",    "?",       headers,  6, "7E8064100BE3FA813",          true},
    {"  29 bit",                               "01 00\r",    nullptr,   headers,  7, "18DAF110064100BE3FA813",     true},
    {"  ISO 9141",                             "01 0C\r",    nullptr,   headers,  3, "486B10410C16446A",           true},
    {"  the length as header",                 "01 0C\r",    nullptr,   headers,  5, "84F112410C0000D4",           true},
    {"  another PID",                          "01 0C\r",    nullptr,   headers,  6, "7E803410D3C",                false},
    {"  cut off",                              "01 0C\r",    nullptr,   headers,  6, "7E80341",                    false},
    {"  the first group counts",               "01 0C\r",    nullptr,   headers,  6, "7E804410C1AF8\r7E9037F0112", true},
    {"  set aside when it refuses",            "01 0C\r",    nullptr,   headers,  6, "7E8037F0112\r7E904410C1AF8", true},
    {"  a refusal that sorts first",           "01 01\r",    nullptr,   headers,  5, "83F1187F01121E\r86F1104101880765E5D7", true},
    {"  all refuse",                           "01 0C\r",    nullptr,   headers,  6, "7E8037F0112\r7E9037F0112", false},
    {"  an answer that comes later",           "01 0C\r",    nullptr,   headers,  6, "7E8037F0178\r7E804410C1AF8", true},
    {"  several frames",                       "09 02\r",    nullptr,   headers,  6,
        "7E81014490201314731\r7E8214A433534343452\r7E82237323532333637", true},
    {"  PID and freeze frame number",          "02 02 00\r", nullptr,   headers,  6, "7E8054202000133",            true},
    {"  of another freeze frame",              "02 02 00\r", nullptr,   headers,  6, "7E8054202010133",            false},
    {"  line noise",                           "03\r",       nullptr,   headers,  6, "<DATAERROR",                 false},
    {"  in the answer's line",                 "01 0C\r",    nullptr,   headers,  6, "7E804410<DATAERROR",         false},
    {"  interrupted",                          "01 0C\r",    nullptr,   headers,  6, "STOPPED",                    false},
    {"  too much at once",                     "01 0C\r",    nullptr,   headers,  6, "BUFFERFULL",                 false},
    {"  a bus that does not answer",           "01 0C\r",    nullptr,   headers,  6, "CANERROR",                   false},
    {"  words around an answer",               "01 0C\r",    nullptr,   headers,  3, "BUSINIT:...OK\r\n\r\n486B10410C16446A\rSTOPPED", true},
    {"  words around an answer without one",   "01 0C\r",    "410C",    plain,    6, "BUSINIT:OK\r410C1AF8\rBUFFERFULL", true},
    {"a protocol in another spelling",         "AT DP\r",    "AUTO|ISO|SAE", plain, -1, "Auto,ISO9141-2",         true},
    {"  nothing",                              "03\r",       nullptr,   headers,  6, "",                           false},
};
// clang-format on

sent_command of(const row& from) {
    return {from.command, from.expected ? QString(from.expected) : QString(), from.has_header};
}

} // namespace

TEST(reply_check, accepts_and_refuses) {
    for (const row& row : rows) {
        const reply_verdict verdict = work_a_rcvdOBD_cmd(reply({row.reply, row.protocol}), of(row), 2);
        EXPECT_EQ(verdict.result, row.accepted ? 671 : 673) << row.why << ": " << row.command << row.reply;
        EXPECT_EQ(verdict.no_confirm_count, row.accepted ? 0 : 3) << row.why;
    }
}

TEST(reply_check, gives_up_at_the_fourth) {
    int count = 0;
    for (const int expected : {673, 673, 673, 672}) {
        const reply_verdict verdict =
            work_a_rcvdOBD_cmd(reply({"7E803410D3C", 6}), {"01 0C\r", QString(), true}, count);
        EXPECT_EQ(verdict.result, expected);
        count = verdict.no_confirm_count;
    }
    EXPECT_EQ(count, 0);
}

TEST(reply_check, positive_replies) {
    const std::pair<const char*, const char*> pairs[] = {
        {"04\r", "44"},
        {"01 0C", "410C"},
        {"02 0C 00\r", "420C"},
        {"03|12\r", "43"},
        {"09 02", "4902"},
        {"22 10 2A", "62102A"},
        {"22 F1 97 01", "62F197"},
        {"at h0\r", "OK"},
        {"", "40"},
        {"0", "40"},
    };
    for (const auto& [command, expected] : pairs)
        EXPECT_EQ(positive_reply_of(command), expected) << command;
}

TEST(reply_check, an_adapter_that_was_reset) {
    for (const char* reply : {"LVRESET", "010C\rLVRESET", "ELM327v1.5"})
        for (const QList<sent_command>& unasked :
             {QList<sent_command>(), {{"01 0C\r", {}}}, {{"AT H1\r", "OK"}, {"AT RV\r", {}}}})
            EXPECT_TRUE(tells_a_reset(reply, unasked)) << reply;
    for (const char* command : {"AT Z\r", "AT I\r", "atws\r", "AT @1\r"}) // asked for, and perhaps late
        EXPECT_FALSE(tells_a_reset("ELM327v1.5", {{command, {}}, {"01 0C\r", {}}})) << command;
    EXPECT_FALSE(tells_a_reset("STOPPED", {{"01 0C\r", {}}}));
}

TEST(reply_check, tells_adapter_from_car) {
    const std::pair<const char*, const char*> rows[] = {
        {"UNABLETOCONNECT", "The adapter answers, the car does not"},
        {"BUSINIT:ERROR", "The adapter answers, the car does not"},
        {"CANERROR", "The adapter answers, the car does not"},
        {"7E80441<RXERROR", "The car answers, but not all"},
        {"LVRESET", "The adapter has reset itself"},
        {"STOPPED", "The adapter broke off"},
        {"ERR94", "The adapter reports a fault of its own (ERR94)"},
        {"7E8037F0122", "7E8 refuses this request: conditions not right."},
        {"7E8037F019A", "7E8 refuses this request: code 9A."},
        {"7E8037F0178", "7E8 asked for more time and then sent no answer."},
        {"#", "Retried 3 times and Did not get a reply"},
    };
    for (const auto& [text, beginning] : rows)
        EXPECT_EQ(why_given_up(reply({text, 6, true})).left(qsizetype(qstrlen(beginning))), beginning);
}

// The words keep their blanks, so nothing that was normalised is refused.
TEST(reply_check, error_words) {
    EXPECT_EQ(check_initial_car_reply("UNABLE TO CONNECT"), car_reply::no_reply_from_car);
    EXPECT_EQ(check_initial_car_reply("BUS INIT: ERROR"), car_reply::init_error);
    for (const char* passed : {"UNABLETOCONNECT", "BUSINIT:ERROR", "BUS INIT: OK", "ERROR", "", "NODATA"})
        EXPECT_EQ(check_initial_car_reply(passed), car_reply::accepted) << passed;
}

} // namespace brivant
