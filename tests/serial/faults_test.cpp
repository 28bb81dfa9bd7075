#include "tests/fault_matrix/faults_under_test.h"
#include "tests/fault_matrix/real_link_bench.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

// Every fault of the virtual adapter at the end of a serial port: what it cuts off is plugged in again soon.

namespace {

constexpr int plugged_in_again_ms = 50;
constexpr int longest_run_ms = 4000;

// The delays are as short as the bench's time-outs.
virtual_adapter::faults quickened(virtual_adapter::faults what) {
    what.delay_ms /= quick_timers::faster;
    what.late_ms /= quick_timers::faster;
    return what;
}

struct outcome {
    QString ended;
    QStringList values;
    bool operator==(const outcome&) const = default;
};

class faults_over_usb : public testing::TestWithParam<fault_row> {
protected:
    faults_over_usb() {
        adapter.set_link(folder.filePath("usb-adapter"));
        unplugged.setSingleShot(true);
        unplugged.setInterval(plugged_in_again_ms);
        unplugged.callOnTimeout([this] { adapter.plug_in(car); });
        QObject::connect(&adapter, &pty_adapter::unplugged, &unplugged, qOverload<>(&QTimer::start));
    }
    void plug_in(const fault_row& fault) {
        car = car_for("can11", fault);
        adapter.set_faults(quickened(fault.what));
        adapter.plug_in(car);
        unplugged.stop();
    }
    outcome run(const operation_row& operation, real_link_bench& bench) const {
        operation.start(bench);
        QTimer person;
        person.setSingleShot(true);
        person.callOnTimeout([&] {
            if (bench.live_controller.is_running())
                bench.live_controller.stop();
        });
        person.start(longest_run_ms);
        EXPECT_TRUE(bench.pump()) << operation.name << " does not end at " << GetParam().name;
        return {bench.ended, values_of(operation, bench)};
    }

    QTemporaryDir folder;
    std::shared_ptr<virtual_adapter::car> car;
    pty_adapter adapter;
    QTimer unplugged;
    const adapter_address address{interface_serial, folder.filePath("usb-adapter"), 38400};
};

} // namespace

TEST_P(faults_over_usb, do_no_more_than_over_other_links) {
    const fault_row& fault = GetParam();
    for (const operation_row& operation : operations) {
        const QString name = operation.name;
        if (name != "read" && name != "extras" && name != "log run")
            continue;
        plug_in(fault_rows[0]);
        real_link_bench first(address);
        const outcome clean = run(operation, first);
        EXPECT_EQ(clean.ended, "done");
        first.link.disconnect();

        plug_in(fault);
        real_link_bench bench(address);
        const outcome made = run(operation, bench);
        EXPECT_FALSE(bench.view.is_busy);
        for (const QString& row : made.values)
            EXPECT_TRUE(is_of_the_car(fault, row, clean.values))
                << operation.name << ": the car did not send " << row.toStdString();
        if (fault.is_mended) {
            EXPECT_EQ(made.ended, "done") << operation.name << bench.view.events.join('\n').toStdString();
            EXPECT_EQ(made.values, clean.values) << operation.name;
        }
        if (made == clean || !fault.what.hangs_on.empty() || !fault.what.refused.empty())
            continue;
        bench.link.disconnect();
        plug_in(fault_rows[0]);
        EXPECT_EQ(run(operation, bench).ended, "done") << operation.name << " behind it";
    }
}

INSTANTIATE_TEST_SUITE_P(faults, faults_over_usb, testing::ValuesIn(fault_rows), [](const auto& its) {
    return QString(its.param.name).remove(QRegularExpression("\\W")).toStdString();
});

} // namespace brivant
