#include "livedata/request_plan.h"

#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

request_plan plan_of(int pids, const QStringList& ecus, const request_plan::abilities& adapter) {
    QList<request_plan::wanted> wanted;
    for (const QString& ecu : ecus)
        for (int pid = 0; pid < pids; ++pid)
            wanted.append({QString("%1").arg(0x0A + pid, 2, 16, QChar('0')).toUpper(), ecu, true});
    return request_plan(wanted, adapter);
}

QString text_of(const QList<sweep_request>& requests) {
    QStringList texts;
    for (const sweep_request& request : requests)
        texts += request.ecu + ':' + request.pids.join(',') +
                 (request.frames ? '/' + QString::number(request.frames) : QString());
    return texts.join(' ');
}

// A sweep whose requests come out like this, by their number of PIDs.
template <typename Outcome>
QString swept(request_plan& plan, Outcome outcome_of) {
    const QList<sweep_request> requests = plan.next_sweep();
    for (const sweep_request& request : requests)
        plan.answered(request, outcome_of(request));
    return text_of(requests);
}

const auto all_well = [](const sweep_request& request) {
    return request_outcome{static_cast<int>(request.pids.size() + 1) / 2, true, true};
};

} // namespace

TEST(request_plan, joins_the_pids_of_each_ecu_and_counts_after_three_equal_answers) {
    request_plan plan = plan_of(8, {"7E8"}, {6, true});
    EXPECT_EQ(swept(plan, all_well).count(' '), 7) << "each alone, so that the run has a sweep";
    for (int sweep = 0; sweep < 3; ++sweep)
        EXPECT_EQ(swept(plan, all_well), "7E8:0A,0B,0C,0D,0E,0F 7E8:10,11");
    EXPECT_EQ(swept(plan, all_well), "7E8:0A,0B,0C,0D,0E,0F/3 7E8:10,11/1");

    request_plan two = plan_of(2, {"7E8", "7E9"}, {6, false});
    EXPECT_EQ(swept(two, all_well), "7E8:0A 7E8:0B 7E9:0A 7E9:0B");
    EXPECT_EQ(swept(two, all_well), "7E9:0A,0B 7E8:0A,0B") << "it begins where it has ended";
    EXPECT_EQ(swept(two, all_well), "7E8:0A,0B 7E9:0A,0B");
}

TEST(request_plan, asks_for_fewer_at_once_until_they_come_whole) {
    // What the adapter does with more than two.
    for (const request_outcome& bad : {request_outcome{}, request_outcome{1, false, true}}) {
        request_plan plan = plan_of(7, {"7E8"}, {6, false});
        const auto at_most_two = [&](const sweep_request& request) {
            return request.pids.size() > 2 ? bad : all_well(request);
        };
        swept(plan, at_most_two);
        EXPECT_EQ(swept(plan, at_most_two), "7E8:0A,0B,0C,0D,0E,0F 7E8:10");
        EXPECT_EQ(swept(plan, at_most_two), "7E8:0A,0B,0C 7E8:0D,0E,0F 7E8:10");
        for (int sweep = 0; sweep < 3; ++sweep)
            EXPECT_EQ(swept(plan, at_most_two), "7E8:0A,0B 7E8:0C,0D 7E8:0E,0F 7E8:10");
        EXPECT_EQ(plan.learnt().most_pids, 2);
    }
}

TEST(request_plan, one_pid_that_never_comes_is_asked_alone) {
    request_plan plan = plan_of(4, {"7E8"}, {6, false});
    const auto without_0B = [](const sweep_request& request) {
        return request.pids.contains("0B") ? request_outcome{1, false, request.pids.size() > 1}
                                           : all_well(request);
    };
    for (int sweep = 0; sweep < 4; ++sweep)
        swept(plan, without_0B);
    EXPECT_EQ(swept(plan, without_0B), "7E8:0A,0C,0D 7E8:0B");
    EXPECT_EQ(swept(plan, without_0B), "7E8:0A,0C,0D 7E8:0B");
}

TEST(request_plan, a_car_that_is_gone_teaches_nothing) {
    request_plan plan = plan_of(4, {"7E8"}, {6, false});
    swept(plan, all_well);
    swept(plan, all_well);
    for (int sweep = 0; sweep < 9; ++sweep)
        swept(plan, [](const sweep_request&) { return request_outcome{}; });
    for (int sweep = 0; sweep < 4; ++sweep)
        swept(plan, all_well);
    EXPECT_EQ(plan.learnt(), (request_plan::abilities{6, false}));
}

TEST(request_plan, leaves_the_count_out_where_it_is_not_known_or_wrong) {
    request_plan unknown = plan_of(1, {"7E8"}, {6, true});
    request_plan wrong = plan_of(1, {"7E8"}, {6, true});
    for (int sweep = 0; sweep < 3; ++sweep) {
        swept(unknown, all_well);
        swept(wrong, all_well);
    }
    EXPECT_EQ(swept(unknown, [](auto&) { return request_outcome{.is_unknown = true}; }), "7E8:0A/1");
    for (int sweep = 0; sweep < 20; ++sweep) {
        EXPECT_EQ(swept(unknown, all_well), "7E8:0A");
        swept(wrong, [](const sweep_request& request) {
            return request.frames > 0 ? request_outcome{} : all_well(request);
        });
    }
    EXPECT_EQ(swept(wrong, all_well), "7E8:0A");
    EXPECT_FALSE(wrong.learnt().counts);
}

TEST(request_plan, what_changes_slowly_takes_turns) {
    request_plan plan({{"0C", "7E8", true}, {"05", "7E8", true, 4}, {"0F", "7E8", true, 4}}, {6, false});
    QStringList sweeps;
    for (int sweep = 0; sweep < 6; ++sweep)
        sweeps += swept(plan, all_well);
    EXPECT_EQ(sweeps.join(" | "), "7E8:0C 7E8:05 7E8:0F | 7E8:0C | 7E8:0C,0F | 7E8:0C,05 | 7E8:0C | 7E8:0C");
    request_plan rare({{"05", "7E8", true, 4}}, {6, false});
    EXPECT_EQ(swept(rare, all_well), "7E8:05");
    EXPECT_EQ(swept(rare, all_well), "7E8:05") << "a sweep asks for something";
}

} // namespace brivant
