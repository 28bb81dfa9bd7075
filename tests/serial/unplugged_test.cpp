#include "tests/fault_matrix/real_link_bench.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

// Every operation over a serial port whose plug is pulled out in the middle.

namespace {

class usb_adapter {
public:
    usb_adapter() {
        adapter.set_link(path);
        adapter.set_speed(115200);
        adapter.set_observer([this](const virtual_adapter::exchange&) {
            if (++commands == pulled_at)
                QTimer::singleShot(0, &adapter, [this] { adapter.unplug(); });
        });
        plug_in();
    }
    // The car's codes are as they were.
    void plug_in() { adapter.plug_in(steady_car("can11")); }
    adapter_address address() const { return {interface_serial, path, 115200}; }

    int commands = 0;
    int pulled_at = 0;
    pty_adapter adapter;

private:
    QTemporaryDir folder;
    const QString path = folder.filePath("usb-adapter");
};

struct outcome {
    QString ended;
    QStringList values;
};

outcome run(real_link_bench& bench, const operation_row& operation) {
    operation.start(bench);
    EXPECT_TRUE(bench.pump()) << operation.name;
    return {bench.ended, values_of(operation, bench)};
}

class over_usb : public testing::TestWithParam<operation_row> {
protected:
    // Over the next link: a script, and a run that has a sweep already.
    static bool goes_on(const QString& name, bool has_sweeps) {
        const bool is_run = name.endsWith("run") || name == "fuel" || name == "boost";
        return name == "console" || (is_run && has_sweeps);
    }
};

} // namespace

// While the adapter is set up, and near the end of the work.
TEST_P(over_usb, the_plug_is_pulled_out) {
    usb_adapter usb;
    int all = 0;
    QStringList values;
    {
        real_link_bench bench(usb.address());
        values = run(bench, GetParam()).values;
        all = std::exchange(usb.commands, 0);
    }
    for (const int when : {3, all - 2}) {
        usb.plug_in();
        usb.commands = 0;
        usb.pulled_at = when;
        real_link_bench bench(usb.address());
        GetParam().start(bench);
        ASSERT_TRUE(bench.pump([&] { return bench.link.is_reconnecting(); })) << when;
        EXPECT_FALSE(usb.adapter.is_plugged_in());
        EXPECT_FALSE(bench.link.is_connected());
        if (!goes_on(GetParam().name, when > 3)) {
            EXPECT_EQ(bench.ended, "failed") << when;
            EXPECT_FALSE(bench.link.is_opening());
            EXPECT_FALSE(bench.view.is_busy);
            EXPECT_TRUE(bench.view.last("message").contains("is still plugged in, then start again.") ||
                        bench.view.last("status").endsWith(" lost"))
                << bench.view.events.join('\n').toStdString();
            continue;
        }
        EXPECT_TRUE(bench.view.last("status").startsWith("Connection lost. Trying again"))
            << bench.view.events.join('\n').toStdString();
        usb.plug_in();
        EXPECT_TRUE(bench.pump()) << when;
        EXPECT_EQ(bench.ended, "done") << when << bench.view.events.join('\n').toStdString();
        EXPECT_TRUE(bench.link.is_connected());
        EXPECT_EQ(values_of(GetParam(), bench), values) << when;
    }
}

INSTANTIATE_TEST_SUITE_P(operations, over_usb, testing::ValuesIn(operations), [](const auto& its) {
    return QString(its.param.name).replace(' ', '_').toStdString();
});

} // namespace brivant
