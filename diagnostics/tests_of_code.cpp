#include "diagnostics/tests_of_code.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

// Codes (their digits read as hexadecimal) by SAE J2012, monitor identifiers by SAE J1979.
struct system_tests {
    int first_code, last_code;
    int first_monitor, last_monitor;
};
// clang-format off
constexpr std::array systems{
    system_tests{0x0010, 0x0029, 0x35, 0x38}, // variable valve timing
    system_tests{0x0030, 0x0032, 0x41, 0x50}, // heaters of oxygen sensors
    system_tests{0x0036, 0x0038, 0x41, 0x50},
    system_tests{0x0042, 0x0044, 0x41, 0x50},
    system_tests{0x0050, 0x0064, 0x41, 0x50},
    system_tests{0x0130, 0x0167, 0x01, 0x12}, // oxygen sensors with their heaters
    system_tests{0x0130, 0x0167, 0x41, 0x50},
    system_tests{0x0170, 0x0175, 0x81, 0x84}, // fuel system
    system_tests{0x0234, 0x0234, 0x85, 0x86}, // boost pressure
    system_tests{0x0299, 0x0299, 0x85, 0x86},
    system_tests{0x0300, 0x0316, 0xA1, 0xB1}, // misfire
    system_tests{0x0400, 0x0409, 0x31, 0x34}, // exhaust gas recirculation
    system_tests{0x0410, 0x0419, 0x71, 0x74}, // secondary air
    system_tests{0x0420, 0x0439, 0x21, 0x24}, // catalyst, also a heated one
    system_tests{0x0420, 0x0439, 0x61, 0x64},
    system_tests{0x0440, 0x0459, 0x39, 0x3D}, // evaporative system
};
// clang-format on

} // namespace

tests_of_code tests_of_the_system(const QString& code, const QList<noted_row>& tests) {
    tests_of_code found;
    if (!code.startsWith(u'P'))
        return found;
    const int number = code.mid(1).toInt(nullptr, 16);
    for (const test_row& test : rows_of<test_row>(plain(tests))) {
        const int monitor = test.obdmid.toInt(nullptr, 16);
        const bool is_its = test.is_can && std::any_of(systems.begin(), systems.end(), [&](const auto& one) {
                                return number >= one.first_code && number <= one.last_code &&
                                       monitor >= one.first_monitor && monitor <= one.last_monitor;
                            });
        if (!is_its)
            continue;
        if (test.was_not_run()) {
            ++found.not_run;
            continue;
        }
        ++found.all;
        found.failed += test.passed ? 0 : 1;
    }
    return found;
}

QString in_words(const tests_of_code& tests) {
    if (tests.all + tests.not_run == 0)
        return {};
    const QString not_run =
        tests.not_run > 0 ? QStringLiteral("%1 not run since clearing").arg(tests.not_run) : QString();
    if (tests.all == 0)
        return QStringLiteral("Tests of this system: ") + not_run;
    const QString told =
        QStringLiteral("Tests of this system: %1 of %2 failed").arg(tests.failed).arg(tests.all);
    return not_run.isEmpty() ? told : told + QStringLiteral(", ") + not_run;
}

} // namespace brivant
