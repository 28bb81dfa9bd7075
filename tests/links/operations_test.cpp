#include "tests/fault_matrix/faults_under_test.h"
#include "tests/fault_matrix/real_link_bench.h"
#include "tests/links/far_end.h"

namespace brivant {

// Every operation over every kind of link, as it is and with every fault of the virtual adapter. Each applies
// to every link: none of them hides a byte, a pause or a loss from the program. BV_EVERY_LINK asks for the
// faults at every operation instead of some.

namespace {

constexpr int longest_run_ms = 4000;

struct outcome {
    QString ended;
    QStringList values;
    bool operator==(const outcome&) const = default;
};

// A person ends what has no end of its own: a run, and what waits for its link to come back.
outcome run(real_link_bench& bench, const operation_row& operation) {
    operation.start(bench);
    QTimer person;
    person.callOnTimeout([&] {
        if (bench.live_controller.is_running())
            bench.live_controller.stop();
        if (bench.console.is_running())
            bench.console.stop();
    });
    person.start(longest_run_ms);
    EXPECT_TRUE(bench.pump()) << "does not end";
    return {bench.ended, values_of(operation, bench)};
}

// The delays are as short as the bench's time-outs.
virtual_adapter::faults quickened(virtual_adapter::faults what) {
    what.delay_ms /= quick_timers::faster;
    what.late_ms /= quick_timers::faster;
    return what;
}

std::vector<operation_row> operations_with_faults() {
    std::vector<operation_row> rows;
    for (const operation_row& operation : operations) {
        const QString name = operation.name;
        if (qEnvironmentVariableIsSet("BV_EVERY_LINK") || name == "read" || name == "extras" ||
            name == "log run")
            rows.push_back(operation);
    }
    return rows;
}

QString losses_told(const real_link_bench& bench) {
    for (const check_row& row : bench.checking.rows())
        if (row.title == "Losses")
            return row.words;
    return {};
}

class over_every_link : public testing::TestWithParam<link_kind> {};

class faults_over_every_link : public testing::TestWithParam<std::tuple<link_kind, operation_row>> {
protected:
    faults_over_every_link() : operation(std::get<1>(GetParam())), adapter(std::get<0>(GetParam())) {
        clean = with(fault_rows[0]);
        EXPECT_EQ(clean.ended, "done");
    }
    outcome with(const fault_row& fault) {
        adapter.plug_in(car_for("can11", fault), quickened(fault.what));
        real_link_bench bench(adapter.address());
        const outcome made = run(bench, operation);
        judge(fault, made, bench);
        return made;
    }
    void judge(const fault_row& fault, const outcome& made, real_link_bench& bench) {
        if (&fault == &fault_rows[0])
            return;
        EXPECT_FALSE(bench.view.is_busy);
        for (const QString& row : made.values)
            EXPECT_TRUE(is_of_the_car(fault, row, clean.values))
                << "the car did not send " << row.toStdString();
        if (operation.name == QString("clear") && made.ended == "done") {
            EXPECT_TRUE(all_codes_gone(*adapter.car));
        }
        if (fault.is_mended && !is_fuel_at_a_time_out(fault, operation) && !stays_hung(fault)) {
            EXPECT_EQ(made.ended, "done") << bench.view.events.join('\n').toStdString();
            EXPECT_EQ(made.values, clean.values);
        }
        if (stays_hung(fault)) {
            EXPECT_TRUE(bench.view.events.join('\n').contains("unplug it and plug it in again"));
        }
        if (made == clean || !fault.what.hangs_on.empty() || !fault.what.refused.empty())
            return;
        bench.link.disconnect();
        adapter.plug_in(steady_car("can11"));
        EXPECT_EQ(run(bench, operation).ended, "done") << "behind it";
    }

    // A new connection resets the virtual adapter; what hangs on a cable does so until its plug is pulled.
    bool stays_hung(const fault_row& fault) const {
        return adapter.address().kind == interface_serial && fault.what.clone.hangs_on_groups &&
               operation.name == QString("check");
    }

    const operation_row operation;
    far_end adapter;
    outcome clean;
};

std::string plain(QString name) {
    return name.remove(QRegularExpression("\\W")).toStdString();
}

} // namespace

TEST_P(over_every_link, operations_come_to_the_same) {
    far_end wifi(link_kinds[0]), other(GetParam());
    for (const operation_row& operation : operations) {
        SCOPED_TRACE(operation.name);
        outcome made[2];
        for (far_end* const end : {&wifi, &other}) {
            end->plug_in(steady_car("can11"));
            real_link_bench bench(end->address());
            made[end == &other] = run(bench, operation);
            EXPECT_EQ(bench.ended, "done") << bench.view.events.join('\n').toStdString();
            EXPECT_TRUE(bench.link.is_connected());
            EXPECT_EQ(all_codes_gone(*end->car), operation.name == QString("clear"));
            if (operation.name == QString("check")) {
                EXPECT_TRUE(losses_told(bench).startsWith("none in ")) << losses_told(bench).toStdString();
            }
        }
        EXPECT_EQ(made[0].values, made[1].values);
    }
}

TEST_P(faults_over_every_link, do_no_more_than_without_sockets) {
    for (const fault_row& fault : fault_rows) {
        SCOPED_TRACE(fault.name);
        with(fault);
    }
}

INSTANTIATE_TEST_SUITE_P(links, over_every_link, testing::ValuesIn(link_kinds.begin() + 1, link_kinds.end()),
                         [](const auto& its) { return its.param.name; });
INSTANTIATE_TEST_SUITE_P(links, faults_over_every_link,
                         testing::Combine(testing::ValuesIn(link_kinds),
                                          testing::ValuesIn(operations_with_faults())),
                         [](const auto& its) {
                             return std::string(std::get<0>(its.param).name) + "_" +
                                    plain(std::get<1>(its.param).name);
                         });

} // namespace brivant
