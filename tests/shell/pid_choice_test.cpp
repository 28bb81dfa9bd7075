#include "shell/pid_choice.h"

#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct choosing : testing::Test {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    const obd_groups two_ecus{{"7E8", {"01", "05", "0C", "0D", "11", "20", "0C"}},
                              {"7E9", {"0C", "0D", "no", "GG"}},
                              {QString(17, '7'), {"05"}},
                              {"7E|A", {"05"}}};

    pid_choice of(const QStringList& samples) { return pid_choice(two_ecus, samples, toolies); }
};

QString words(const QList<pid_entry>& entries) {
    QStringList texts;
    for (const pid_entry& entry : entries)
        texts += entry.item + (entry.reported ? "" : "!");
    return texts.join(' ');
}

} // namespace

TEST_F(choosing, lists_what_the_ecus_report_and_takes_the_stored_set) {
    const pid_choice choice =
        of({"0D", "0C|7E9", "0D|7E8", "nonsense", "2F|7E8", "0C|7E9", "0D|" + QString(17, '7')});
    EXPECT_EQ(words(choice.available()), "01|7E8 05|7E8 0C|7E8 0D|7E8 11|7E8 0C|7E9 0D|7E9");
    EXPECT_EQ(choice.available()[2].name, "Engine RPM");
    EXPECT_EQ(choice.available()[2].ecu, "Engine");
    EXPECT_EQ(choice.available()[5].ecu, "Transmission");
    EXPECT_EQ(words(choice.chosen()), "0D|7E8 0C|7E9 2F|7E8!"); // a bare PID is the engine's
    EXPECT_EQ(choice.items().join(' '), "0D|7E8 0C|7E9 2F|7E8");
    // What is worked out of them.
    const pid_choice worked_out({{"7E8", {"0B", "0D", "10"}}, {"7E9", {"0D"}}}, {}, toolies);
    EXPECT_EQ(words(worked_out.available()), "0B|7E8 0D|7E8 10|7E8 E4|7E8 E5|7E8 0D|7E9");
    // Without a record the set stays as it is stored.
    EXPECT_EQ(pid_choice({}, {"0D", "0C|7E9"}, toolies).items().join(' '), "0D 0C|7E9");
}

TEST_F(choosing, adds_removes_and_moves_within_its_limits) {
    pid_choice choice = of({"0D|7E8", "0C|7E8", "05|7E8"});
    EXPECT_FALSE(choice.add("0C|7E8")) << "it stands there";
    EXPECT_FALSE(choice.add("2F|7E8")) << "not reported";
    EXPECT_TRUE(choice.add("0C|7E9"));
    EXPECT_TRUE(choice.move(3, 0));
    for (const auto& [from, to] : {std::pair{-1, 0}, {0, -1}, {0, 4}, {4, 0}})
        EXPECT_FALSE(choice.move(from, to));
    EXPECT_EQ(choice.items().join(' '), "0C|7E9 0D|7E8 0C|7E8 05|7E8");
    EXPECT_TRUE(choice.remove("0D|7E8"));
    EXPECT_FALSE(choice.remove("0D|7E8"));
    EXPECT_EQ(choice.place_of("05|7E8"), 2);

    QStringList many;
    for (int pid = 1; pid < 0x60; ++pid)
        many += QString::asprintf("%02X|7EA", unsigned(pid));
    pid_choice full = of(many);
    EXPECT_EQ(full.items(), many.first(pid_choice::most_chosen));
    EXPECT_FALSE(full.add("0C|7E8"));
    EXPECT_TRUE(full.remove("01|7EA"));
    EXPECT_TRUE(full.add("0C|7E8"));
}

TEST_F(choosing, is_searched_by_any_words) {
    const auto found = [this](const char* search) {
        QList<pid_entry> entries;
        const pid_choice choice = of({});
        for (const pid_entry& entry : choice.available()) {
            if (pid_choice::matches(entry, search))
                entries += entry;
        }
        return words(entries);
    };
    EXPECT_EQ(found(" rpm "), "0C|7E8 0C|7E9");
    EXPECT_EQ(found("RPM trans"), "0C|7E9");
    EXPECT_EQ(found("11"), "11|7E8");
    EXPECT_EQ(found("rpm speed"), "");
}

} // namespace brivant
