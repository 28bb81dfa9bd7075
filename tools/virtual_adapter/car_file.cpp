#include "tools/virtual_adapter/car_file.h"

#include "tools/virtual_adapter/file_words.h"
#include "tools/virtual_adapter/live_values.h"
#include "tools/virtual_adapter/protocols.h"

#include <algorithm>
#include <cmath>

namespace virtual_adapter {

namespace {

constexpr std::size_t largest_file = 65536;
constexpr std::size_t most_ecus = 8;
constexpr std::size_t most_codes = 100;
constexpr std::size_t most_records = 100; // of one monitor
constexpr std::size_t most_items = 8;     // calibrations, verification numbers
constexpr std::size_t vin_length = 17;
constexpr std::size_t legacy_data = 5; // of seven bytes, two are service and identifier

bool is_group(std::uint8_t identifier) {
    return (identifier & 0x1F) == 0;
}

bool on_can(const car_description& car) {
    return is_can(find_protocol(car.protocol_number)->kind);
}

std::size_t most_data(const car_description& car, std::size_t can_data, std::size_t taken) {
    return on_can(car) ? can_data : legacy_data - taken;
}

template <class list>
void expect_at_most(std::size_t most, const list& items, const std::string& what) {
    expect(items.size() <= most, "more than " + std::to_string(most) + ' ' + what);
}

// The check digit (ninth place) of a vehicle identification number; 0 when it is none.
char vin_check_digit(std::string_view vin) {
    // The last digit of a character's place is its value.
    constexpr std::string_view characters = "0123456789 ABCDEFGH  JKLMN P R  STUVWXYZ";
    constexpr int weights[vin_length] = {8, 7, 6, 5, 4, 3, 2, 10, 0, 9, 8, 7, 6, 5, 4, 3, 2};
    if (vin.size() != vin_length || vin.find_first_not_of(characters) != std::string_view::npos ||
        vin.find(' ') != std::string_view::npos)
        return 0;
    int sum = 0;
    for (std::size_t i = 0; i < vin_length; ++i)
        sum += int(characters.find(vin[i]) % 10) * weights[i];
    return "0123456789X"[sum % 11];
}

// --- lines of the car --------------------------------------------------------------------------------------

void protocol_line(car_description& car, file_words& words) {
    car.protocol_number = int(words.hex("the protocol", 1));
    expect(car.protocol_number >= 1 && car.protocol_number <= 9, "the protocol is not one of 1 to 9");
}

void adapter_line(car_description& car, file_words& words) {
    std::string command;
    do
        command += words.next("the command");
    while (!words.at_end());
    car.adapter_refuses.push_back(command);
}

void engine_line(car_description& car, file_words& words) {
    car.engine.diesel = words.choice("diesel", "petrol");
    car.engine.displacement_l = words.number("the displacement", 0, 20);
    if (!words.at_end())
        car.engine.boost_kpa = words.number("the boost", 0, 150);
}

void ecu_line(car_description& car, file_words& words) {
    expect(car.protocol_number != 0, "the \"protocol\" line must stand before the first \"ecu\" line");
    ecu made;
    switch (find_protocol(car.protocol_number)->kind) {
    case bus::can11:
        made.address = words.hex("the response address", 3);
        expect(made.address >= 0x7E8 && made.address <= 0x7EF,
               "the response address is not one of 7E8 to 7EF");
        break;
    case bus::can29:
        made.address = words.hex("the response address", 8);
        expect(made.address >> 8 == 0x18DAF1, "the response address does not begin with 18DAF1");
        break;
    default: made.address = words.hex("the address", 2); break;
    }
    expect(std::none_of(car.ecus.begin(), car.ecus.end(),
                        [&](const ecu& one) { return one.address == made.address; }),
           "an ECU of that address stands above");
    made.pids[0x01] = {};
    car.ecus.push_back(std::move(made));
    expect_at_most(most_ecus, car.ecus, "ECUs");
}

// --- lines of an ECU ---------------------------------------------------------------------------------------

void pid_line(const car_description& car, ecu& unit, file_words& words) {
    const std::uint8_t pid = words.byte("the PID");
    expect(!is_group(pid) && pid != 0x01,
           "that PID follows from the others (00, 20, ...) or from the monitors (01)");
    pid_value made{.live = words.take("live"), .constant = {}};
    expect(!made.live || has_live_value(pid), "the drive cycle has no value for that PID");
    if (!made.live)
        made.constant = words.rest_as_bytes("the value", most_data(car, 32, 0));
    expect(unit.pids.emplace(pid, made).second, "that PID stands above");
}

void add_codes(std::vector<trouble_code>& codes, file_words& words) {
    do
        codes.push_back(words.code());
    while (!words.at_end());
    expect_at_most(most_codes, codes, "codes");
}

void permanent_line(const car_description& car, ecu& unit, file_words& words) {
    expect(on_can(car), "permanent codes exist on CAN only");
    add_codes(unit.permanent, words);
}

void freeze_code_line(const car_description&, ecu& unit, file_words& words) {
    expect(!unit.frame, "the ECU has a freeze frame already");
    unit.frame.emplace();
    if (!words.take("none"))
        unit.frame->code = words.code();
}

void freeze_line(const car_description& car, ecu& unit, file_words& words) {
    const std::uint8_t pid = words.byte("the PID");
    expect(!is_group(pid) && pid != 0x02,
           "that PID follows from the others (00, 20, ...) or from the code (02)");
    expect(unit.frame && unit.frame->code != 0, "a \"freeze_code\" line must stand above");
    const bytes value = words.rest_as_bytes("the value", most_data(car, 16, 1));
    expect(unit.frame->values.emplace(pid, value).second, "that PID stands above");
}

void vin_line(const car_description&, ecu& unit, file_words& words) {
    if (words.take("unprogrammed"))
        return unit.vin.assign(vin_length, 0xFF);
    const std::string vin = words.text("the VIN", vin_length);
    const char digit = vin_check_digit(vin);
    expect(digit != 0, "a VIN has 17 capital letters and digits without I, O and Q");
    expect(vin[8] == digit, std::string("the check digit of the VIN (ninth place) should be ") + digit);
    unit.vin.assign(vin.begin(), vin.end());
}

// Twenty bytes: four of the acronym, a dash, fifteen of the name, filled with zeros.
void name_line(const car_description&, ecu& unit, file_words& words) {
    unit.name = words.next("the acronym");
    expect(unit.name.size() <= 4, "the acronym is longer than 4 characters");
    unit.name.resize(4);
    unit.name += '-' + words.text("the name", 15);
    unit.name.resize(20);
}

void test_line(const car_description& car, ecu& unit, file_words& words) {
    const std::uint8_t monitor = words.byte("the OBDMID");
    expect(on_can(car), "\"test\" is for CAN, \"limit\" for the older protocols");
    expect(!is_group(monitor), "OBDMID 00, 20, ... follow from the others");
    // In the order of the words.
    unit.monitors[monitor].push_back({words.byte("the test ID"), words.byte("the unit and scaling ID"),
                                      words.word("the value"), words.word("the minimum"),
                                      words.word("the maximum")});
    expect_at_most(most_records, unit.monitors[monitor], "records");
}

void limit_line(const car_description& car, ecu& unit, file_words& words) {
    const std::uint8_t test = words.byte("the test ID");
    expect(!on_can(car), "\"limit\" is for the older protocols, \"test\" for CAN");
    const limit_record made{words.byte("the component ID"), words.choice("min", "max"),
                            words.word("the value"), words.word("the limit")};
    expect(!is_group(test) && made.component <= 0x7F,
           "test IDs 00, 20, ... follow from the others; a component ID goes to 7F");
    unit.test_limits[test].push_back(made);
    expect_at_most(most_records, unit.test_limits[test], "results");
}

void data_line(const car_description& car, ecu& unit, file_words& words) {
    const std::uint16_t identifier = words.word("the identifier");
    const std::size_t most = most_data(car, 200, 1);
    bytes made;
    if (words.begins_with('"')) {
        const std::string text = words.text("the data", most + 2);
        expect(text.size() > 2 && text.back() == '"', "a text stands between two quotation marks");
        made.assign(text.begin() + 1, text.end() - 1);
    } else {
        made = words.rest_as_bytes("the data", most);
    }
    expect(unit.data.emplace(identifier, made).second, "that identifier stands above");
}

void refuse_line(const car_description&, ecu& unit, file_words& words) {
    refusal made;
    if (!words.take("*"))
        made.service = words.byte("the service");
    made.code = words.byte("the response code");
    unit.refusals.push_back(made);
}

template <class take>
struct keyword {
    std::string_view name;
    take read;
};
using car_line = void (*)(car_description& car, file_words& w);
using unit_line = void (*)(const car_description& car, ecu& unit, file_words& w);

// clang-format off
constexpr keyword<car_line> car_lines[] = {
    {"name",              [](auto& car, auto& w) { car.name = w.text("the name", 60); }},
    {"protocol",          protocol_line},
    {"battery",           [](auto& car, auto& w) {
                              car.battery_tenths = int(std::lround(w.number("the voltage", 0, 40) * 10)); }},
    {"adapter_refuses",   adapter_line},
    {"ignition",          [](auto& car, auto& w) { car.ignition = w.choice("on", "off"); }},
    {"engine",            engine_line},
    {"engine_runs",       [](auto& car, auto& w) { car.engine_runs = w.choice("yes", "no"); }},
    {"padding",           [](auto& car, auto& w) { car.padding = w.byte("the padding"); }},
    {"pad_single_frames", [](auto& car, auto& w) { car.pads_single_frames = w.choice("yes", "no"); }},
    {"fuel_level",        [](auto& car, auto& w) { car.fuel_level = w.number("the fuel level", 0, 100) / 100; }},
    {"mil_distance",      [](auto& car, auto& w) { car.mil_km = w.number("the distance", 0, 65535); }},
    {"cleared_distance",  [](auto& car, auto& w) { car.cleared_km = w.number("the distance", 0, 65535); }},
};

constexpr keyword<unit_line> unit_lines[] = {
    {"readiness",   [](auto&, auto& unit, auto& w) {
                        for (auto& one : unit.readiness) one = w.byte("a readiness byte"); }},
    {"mil",         [](auto&, auto& unit, auto& w) { unit.mil = w.choice("on", "off"); }},
    {"pid",         pid_line},
    {"code",        [](auto&, auto& unit, auto& w) { add_codes(unit.codes, w); }},
    {"pending",     [](auto&, auto& unit, auto& w) { add_codes(unit.pending, w); }},
    {"permanent",   permanent_line},
    {"freeze_code", freeze_code_line},
    {"freeze",      freeze_line},
    {"vin",         vin_line},
    {"calibration", [](auto&, auto& unit, auto& w) {
                        unit.calibrations.push_back(w.text("the calibration", 16));
                        expect_at_most(most_items, unit.calibrations, "calibrations"); }},
    {"cvn",         [](auto&, auto& unit, auto& w) {
                        unit.verification_numbers.push_back(w.hex("the verification number", 8));
                        expect_at_most(most_items, unit.verification_numbers, "verification numbers"); }},
    {"ecu_name",    name_line},
    {"test",        test_line},
    {"limit",       limit_line},
    {"data",        data_line},
    {"refuse",      refuse_line},
};
// clang-format on

void read_line(car_description& car, file_words words) {
    if (words.at_end())
        return;
    const std::string name(words.next("a keyword"));
    const auto named = [&](const auto& row) { return row.name == name; };
    const auto* of_car = std::ranges::find_if(car_lines, named);
    const auto* of_unit = std::ranges::find_if(unit_lines, named);
    if (name == "ecu") {
        ecu_line(car, words);
    } else if (of_car != std::end(car_lines)) {
        expect(car.ecus.empty(), '"' + name + "\" belongs above the first \"ecu\" line");
        of_car->read(car, words);
    } else {
        expect(of_unit != std::end(unit_lines), "no such keyword: \"" + name.substr(0, 40) + '"');
        expect(!car.ecus.empty(), '"' + name + "\" belongs below an \"ecu\" line");
        of_unit->read(car, car.ecus.back(), words);
    }
    words.expect_end();
}

} // namespace

std::optional<car_description> parse_car(std::string_view text, std::string& problem) {
    int number = 1;
    try {
        expect(text.size() <= largest_file,
               "the file is larger than " + std::to_string(largest_file) + " bytes");
        car_description car;
        for (; !text.empty(); ++number) {
            const std::string_view line = text.substr(0, text.find('\n'));
            read_line(car, file_words(line.substr(0, line.find('#'))));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
        }
        expect(!car.ecus.empty(), "the car has no \"ecu\" line");
        return car;
    } catch (const mistake& found) {
        problem = "line " + std::to_string(number) + ": " + found.reason;
        return std::nullopt;
    }
}

} // namespace virtual_adapter
