#include "charts/gauge_range.h"

namespace brivant {

namespace {

struct range_row {
    int first_pid;
    int last_pid;
    gauge_scale metric;
    gauge_scale imperial;
};

// PIDs in decimal. What is not here reads from 0 to 100.
// clang-format off
constexpr range_row ranges[] = {
//   PIDs        metric            imperial
    {  5,   5, { -40,  260,    1}, { -40, 560,    1}},
    {  6,   9, {-100,  100,    1}, {-100, 100,    1}},
    { 10,  10, {   0,  800,    1}, {   0, 800,    1}},
    { 11,  11, {   0,  100,    1}, {   0, 300,    1}},
    { 12,  12, {   0,   10, 1000}, {   0,  10, 1000}},
    { 13,  13, {   0,  300,    1}, {   0, 200,    1}},
    { 14,  14, {-100,  100,    1}, {-100, 100,    1}},
    { 15,  15, { -40,  260,    1}, { -40, 560,    1}},
    { 16,  16, {   0,  200,    1}, {   0, 300,    1}},
    { 17,  19, {   0,  100,    1}, {   0, 100,    1}},
    { 20,  27, {   0,    2,    1}, {   0,   2,    1}},
    { 28,  33, {   0,  100,    1}, {   0, 100,    1}},
    { 34,  34, {   0,   10, 1000}, {   0,   2, 1000}},
    { 35,  35, {   0, 1000, 1000}, {   0, 500, 1000}},
    { 36,  43, {   0,   10,    1}, {   0,  10,    1}},
    { 44,  44, {   0,  100,    1}, {   0, 100,    1}},
    { 45,  45, {-100,  100,    1}, {-100, 100,    1}},
    { 46,  49, {   0,  100,    1}, {   0, 100,    1}},
    { 50,  50, { -10,   10, 1000}, { -50,  50,    1}},
    { 51,  51, {   0,  100,    1}, {   0, 300,    1}},
    { 52,  59, {-150,  150,    1}, {-150, 150,    1}},
    { 60,  63, {   0,   10, 1000}, {   0,  10, 1000}},
    { 64,  66, {   0,  100,    1}, {   0, 100,    1}},
    { 67,  67, {   0,   50, 1000}, {   0,  50, 1000}},
    { 70,  70, { -40,  260,    1}, { -40, 560,    1}},
    {229, 229, {-160,  240,    1}, { -20,  30,    1}},
};
// clang-format on

} // namespace

gauge_scale gauge_range(int pid, bool metric) {
    for (const range_row& row : ranges)
        if (pid >= row.first_pid && pid <= row.last_pid)
            return metric ? row.metric : row.imperial;
    return {0, 100, 1};
}

} // namespace brivant
