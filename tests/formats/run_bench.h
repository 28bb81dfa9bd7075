#pragma once

#include "tests/formats/run_items.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

inline run_head drive_head() {
    run_head head;
    head.start_ms = 1'367'417'047'123; // 2013-05-01 14:04:07.123 UTC
    head.vehicle = "Golf";
    head.version = "0.1.0";
    head.columns = {{"0C", "Engine RPM", "RPM"},
                    {"0D", "Vehicle speed", "kph"},
                    {"05", "Engine coolant temperature", "\u00B0 C"}};
    head.has_offsets = true;
    return head;
}

inline QByteArray written(run_format::kind what, const run_head& head, const QList<run_item>& items) {
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    const auto writer = make_run_writer(what, file);
    EXPECT_TRUE(write_run(*writer, head, items)) << writer->problem().toStdString();
    return file.data();
}

} // namespace brivant
