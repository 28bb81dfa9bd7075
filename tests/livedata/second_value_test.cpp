#include "livedata/second_value.h"

#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

// A sample's value in either reading: text, the other's text, number.
TEST(second_value, follows_the_switch) {
    adapter_bench bench;
    bench.profile.defaults.set(setting::metric_units, true);
    struct row {
        const char* body;
        const char* own;
        const char* standard;
        bool differ;
        double number; // by the standard
    };
    for (const row& r : {row{"41422E7C", "0.002 V", "11.900 V", true, 11.9},
                         {"410D3C", "60.00  Km/h", "60 km/h", false, 60},
                         {"41310599", "153.00 Kms", "1433 km", true, 1433},
                         {"~", "~", "~", false, NAN},
                         {"-1", "~", "~", false, NAN}}) {
        const QString body = r.body;
        bench.profile.defaults.set(setting::standard_reading, false);
        const second_value own = read_value(body, bench.toolies);
        EXPECT_EQ(own.text, r.own);
        EXPECT_EQ(own.other, r.differ ? r.standard : "") << r.body;
        if (!std::isnan(r.number)) {
            EXPECT_EQ(bench.toolies.shown_number(body), bench.toolies.get_OBDVal(body));
        }
        bench.profile.defaults.set(setting::standard_reading, true);
        const second_value standard = read_value(body, bench.toolies);
        EXPECT_EQ(standard.text, r.standard);
        EXPECT_EQ(standard.other, r.differ ? r.own : "");
        if (!std::isnan(r.number)) {
            EXPECT_NEAR(bench.toolies.shown_number(body), r.number, 1e-9);
        }
    }
}

// The economy of a run, text and number and their extremes, in either reading.
TEST(second_value, a_fuel_run_is_read_again) {
    adapter_bench bench;
    bench.profile.defaults.set(setting::metric_units, true);
    live_results results([&](const QString& body) { return bench.toolies.shown_number(body); });
    results.pid_logitems_list = QStringList{"E4|7E8", "0D|7E8", "10|7E8"};
    results.these_samples.resize(3);
    for (int column = 0; column < 3; ++column)
        results.these_samples[column].pid = results.pid_logitems_list[column].left(2);
    results.cur_log_points.start(3);
    EXPECT_TRUE(work_out_sweeps(results, bench.toolies));
    for (const QStringList& sweep :
         {QStringList{"41E40181", "410D3C", "411003E8"}, QStringList{"41E402F1", "410D3C", "41100200"}}) {
        for (int column = 0; column < 3; ++column)
            results.cur_log_points.set(column, sweep[column]);
        results.cur_log_points.add_row();
    }
    results.these_samples[0].value = "of now";
    const sample_row& economy = results.these_samples[0];
    for (const bool standard : {true, false, true}) {
        bench.profile.defaults.set(setting::standard_reading, standard);
        read_again(results, bench.toolies);
        EXPECT_EQ(economy.value, standard ? "35.65 km/l, 2.81 l/100 km" : "7.538040");
        EXPECT_EQ(economy.other_value, standard ? "7.538040" : "35.65 km/l, 2.81 l/100 km");
        EXPECT_EQ(economy.units, standard ? "km/l" : "km/litre");
        EXPECT_NEAR(results.cur_log_points.value(0, 0), standard ? 18.2525 : 3.85, 1e-6);
        EXPECT_NEAR(economy.latest, standard ? 35.649414 : 7.53, 1e-6);
        EXPECT_NEAR(economy.max.toDouble(), standard ? 35.649414 : 7.53, 1e-6);
    }
}

TEST(second_value, a_run_is_read_again_without_the_car) {
    adapter_bench bench;
    bench.profile.defaults.set(setting::metric_units, true);
    live_results results([&](const QString& body) { return bench.toolies.shown_number(body); });
    results.cur_log_points.start(2);
    for (const char* body : {"41422E7C", "41423A98"}) {
        results.cur_log_points.set(0, body);
        results.cur_log_points.set(1, "~");
        results.cur_log_points.add_row();
    }
    results.these_samples.resize(2);
    results.these_samples[0].pid = "42";
    results.these_samples[0].value = "0.003 V";
    results.these_samples[1].pid = "0D";
    results.these_samples[1].value = "~";
    bench.profile.defaults.set(setting::standard_reading, true);
    read_again(results, bench.toolies);
    const sample_row& volts = results.these_samples[0];
    EXPECT_EQ(volts.value, "15.000 V");
    EXPECT_EQ(volts.other_value, "0.003 V");
    EXPECT_EQ(volts.units, "V");
    EXPECT_DOUBLE_EQ(volts.latest, 15);
    EXPECT_LE(volts.min.toDouble(), 11.9);
    EXPECT_GE(volts.max.toDouble(), 15);
    EXPECT_DOUBLE_EQ(results.cur_log_points.value(0, 0), 11.9);
    EXPECT_EQ(results.these_samples[1].value, "~");
    EXPECT_EQ(results.these_samples[1].max, "max");
    bench.profile.defaults.set(setting::standard_reading, false);
    read_again(results, bench.toolies);
    EXPECT_EQ(volts.value, "0.003 V");
    EXPECT_EQ(volts.units, " V");
}

} // namespace brivant
