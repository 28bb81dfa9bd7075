#include "livedata/second_value.h"

#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

// A sample's value in either reading: text, the other's text, number.
TEST(second_value, follows_the_switch) {
    adapter_bench bench;
    bench.profile.defaults.set("BV_metric_units", true);
    struct row {
        const char* body;
        const char* own;
        const char* standard; // "" where it says the same
        double number;        // by the standard
    };
    for (const row& r : {row{"41422E7C", "0.002 V", "11.900 V", 11.9},
                         {"410D3C", "60.00  Km/h", "", 60},
                         {"41310599", "153.00 Kms", "1433 km", 1433},
                         {"~", "~", "", NAN},
                         {"-1", "-1", "", NAN}}) {
        const QString body = r.body;
        bench.toolies.set_standard_reading(false);
        const second_value own = read_value(body, bench.toolies);
        EXPECT_EQ(own.other, r.standard) << r.body;
        if (!std::isnan(r.number)) {
            EXPECT_EQ(number_of_value(body, bench.toolies), bench.toolies.get_OBDVal(body));
        }
        if (*r.standard) {
            EXPECT_EQ(own.text, r.own);
        }
        bench.toolies.set_standard_reading(true);
        const second_value standard = read_value(body, bench.toolies);
        EXPECT_EQ(standard.text, *r.standard ? QString(r.standard) : own.text);
        EXPECT_EQ(standard.other, *r.standard ? own.text : QString());
        if (!std::isnan(r.number)) {
            EXPECT_NEAR(number_of_value(body, bench.toolies), r.number, 1e-9);
        }
    }
    // A computed value is the program's own.
    EXPECT_EQ(read_value("41E41234", bench.toolies).other, "");
}
