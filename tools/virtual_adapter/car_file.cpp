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

// Reads line after line into the description. Every line_* function takes the words behind its keyword.
class reader {
public:
    void line(std::string_view text);
    car_description finish();

private:
    using take = void (*)(reader&, file_words&);
    struct keyword {
        std::string_view name;
        bool of_an_ecu;
        take read;
    };
    static const keyword keywords[];

    bool can() const { return is_can(find_protocol(m_car.protocol_number)->kind); }
    ecu& unit() { return m_car.ecus.back(); }
    std::size_t most_data(std::size_t on_can, std::size_t taken) const {
        return can() ? on_can : legacy_data - taken;
    }

    void protocol_line(file_words& words);
    void adapter_line(file_words& words);
    void ecu_line(file_words& words);
    void engine_line(file_words& words);
    void pid_line(file_words& words);
    void codes_line(file_words& words, std::vector<trouble_code>& codes);
    void freeze_code_line(file_words& words);
    void freeze_line(file_words& words);
    void vin_line(file_words& words);
    void name_line(file_words& words);
    void test_line(file_words& words);
    void limit_line(file_words& words);
    void data_line(file_words& words);
    void refuse_line(file_words& words);

    car_description m_car;
};

// clang-format off
const reader::keyword reader::keywords[] = {
    {"name",              false, [](auto& r, auto& w) { r.m_car.name = w.text("the name", 60); }},
    {"protocol",          false, [](auto& r, auto& w) { r.protocol_line(w); }},
    {"battery",           false,
     [](auto& r, auto& w) { r.m_car.battery_tenths = int(std::lround(w.number("the voltage", 0, 40) * 10)); }},
    {"adapter_refuses",   false, [](auto& r, auto& w) { r.adapter_line(w); }},
    {"ignition",          false, [](auto& r, auto& w) { r.m_car.ignition = w.choice("on", "off"); }},
    {"engine",            false, [](auto& r, auto& w) { r.engine_line(w); }},
    {"engine_runs",       false, [](auto& r, auto& w) { r.m_car.engine_runs = w.choice("yes", "no"); }},
    {"padding",           false, [](auto& r, auto& w) { r.m_car.padding = w.byte("the padding"); }},
    {"pad_single_frames", false,
     [](auto& r, auto& w) { r.m_car.pads_single_frames = w.choice("yes", "no"); }},
    {"fuel_level",        false,
     [](auto& r, auto& w) { r.m_car.fuel_level = w.number("the fuel level", 0, 100) / 100; }},
    {"mil_distance",      false,
     [](auto& r, auto& w) { r.m_car.mil_km = w.number("the distance", 0, 65535); }},
    {"cleared_distance",  false,
     [](auto& r, auto& w) { r.m_car.cleared_km = w.number("the distance", 0, 65535); }},
    {"ecu",               false, [](auto& r, auto& w) { r.ecu_line(w); }},
    {"readiness",         true,
     [](auto& r, auto& w) { for (auto& one : r.unit().readiness) one = w.byte("a readiness byte"); }},
    {"mil",               true,  [](auto& r, auto& w) { r.unit().mil = w.choice("on", "off"); }},
    {"pid",               true,  [](auto& r, auto& w) { r.pid_line(w); }},
    {"code",              true,  [](auto& r, auto& w) { r.codes_line(w, r.unit().codes); }},
    {"pending",           true,  [](auto& r, auto& w) { r.codes_line(w, r.unit().pending); }},
    {"permanent",         true,  [](auto& r, auto& w) { r.codes_line(w, r.unit().permanent); }},
    {"freeze_code",       true,  [](auto& r, auto& w) { r.freeze_code_line(w); }},
    {"freeze",            true,  [](auto& r, auto& w) { r.freeze_line(w); }},
    {"vin",               true,  [](auto& r, auto& w) { r.vin_line(w); }},
    {"calibration",       true,
     [](auto& r, auto& w) { r.unit().calibrations.push_back(w.text("the calibration", 16)); }},
    {"cvn",               true,
     [](auto& r, auto& w) { r.unit().verification_numbers.push_back(w.hex("the verification number", 8)); }},
    {"ecu_name",          true,  [](auto& r, auto& w) { r.name_line(w); }},
    {"test",              true,  [](auto& r, auto& w) { r.test_line(w); }},
    {"limit",             true,  [](auto& r, auto& w) { r.limit_line(w); }},
    {"data",              true,  [](auto& r, auto& w) { r.data_line(w); }},
    {"refuse",            true,  [](auto& r, auto& w) { r.refuse_line(w); }},
};
// clang-format on

void reader::line(std::string_view text) {
    file_words words(text.substr(0, text.find('#')));
    if (words.at_end())
        return;
    const std::string_view name = words.next("a keyword");
    const auto* found = std::find_if(std::begin(keywords), std::end(keywords),
                                     [&](const keyword& k) { return k.name == name; });
    if (found == std::end(keywords))
        throw mistake{"no such keyword: \"" + std::string(name.substr(0, 40)) + '"'};
    if (found->of_an_ecu && m_car.ecus.empty())
        throw mistake{"\"" + std::string(name) + "\" belongs below an \"ecu\" line"};
    if (!found->of_an_ecu && found->name != "ecu" && !m_car.ecus.empty())
        throw mistake{"\"" + std::string(name) + "\" belongs above the first \"ecu\" line"};
    found->read(*this, words);
    words.expect_end();
}

car_description reader::finish() {
    if (m_car.ecus.empty())
        throw mistake{"the car has no \"ecu\" line"};
    for (const ecu& one : m_car.ecus)
        if (one.calibrations.size() > most_items || one.verification_numbers.size() > most_items)
            throw mistake{"an ECU has more than " + std::to_string(most_items) + " calibrations"};
    return std::move(m_car);
}

void reader::protocol_line(file_words& words) {
    m_car.protocol_number = int(words.hex("the protocol", 1));
    if (m_car.protocol_number < 1 || m_car.protocol_number > 9)
        throw mistake{"the protocol is not one of 1 to 9"};
}

void reader::adapter_line(file_words& words) {
    std::string command;
    do
        command += words.next("the command");
    while (!words.at_end());
    m_car.adapter_refuses.push_back(std::move(command));
}

void reader::ecu_line(file_words& words) {
    if (m_car.protocol_number == 0)
        throw mistake{"the \"protocol\" line must stand before the first \"ecu\" line"};
    if (m_car.ecus.size() == most_ecus)
        throw mistake{"more than " + std::to_string(most_ecus) + " ECUs"};
    ecu made;
    switch (find_protocol(m_car.protocol_number)->kind) {
    case bus::can11:
        made.address = words.hex("the response address", 3);
        if (made.address < 0x7E8 || made.address > 0x7EF)
            throw mistake{"the response address is not one of 7E8 to 7EF"};
        break;
    case bus::can29:
        made.address = words.hex("the response address", 8);
        if (made.address >> 8 != 0x18DAF1)
            throw mistake{"the response address does not begin with 18DAF1"};
        break;
    default: made.address = words.hex("the address", 2); break;
    }
    if (std::any_of(m_car.ecus.begin(), m_car.ecus.end(),
                    [&](const ecu& one) { return one.address == made.address; }))
        throw mistake{"an ECU of that address stands above"};
    made.pids[0x01] = {};
    m_car.ecus.push_back(std::move(made));
}

void reader::engine_line(file_words& words) {
    m_car.engine.diesel = words.choice("diesel", "petrol");
    m_car.engine.displacement_l = words.number("the displacement", 0, 20);
    if (!words.at_end())
        m_car.engine.boost_kpa = words.number("the boost", 0, 150);
}

void reader::pid_line(file_words& words) {
    const std::uint8_t pid = words.byte("the PID");
    if (is_group(pid) || pid == 0x01)
        throw mistake{"that PID follows from the others (00, 20, ...) or from the monitors (01)"};
    pid_value made;
    file_words ahead = words;
    if (!ahead.at_end() && ahead.next("a value") == "live") {
        if (!has_live_value(pid))
            throw mistake{"the drive cycle has no value for that PID"};
        made.live = true;
        words = ahead;
    } else {
        made.constant = words.rest_as_bytes("the value", most_data(32, 0));
    }
    if (!unit().pids.emplace(pid, std::move(made)).second)
        throw mistake{"that PID stands above"};
}

void reader::codes_line(file_words& words, std::vector<trouble_code>& codes) {
    if (&codes == &unit().permanent && !can())
        throw mistake{"permanent codes exist on CAN only"};
    do
        codes.push_back(words.code());
    while (!words.at_end());
    if (codes.size() > most_codes)
        throw mistake{"more than " + std::to_string(most_codes) + " codes"};
}

void reader::freeze_code_line(file_words& words) {
    if (unit().frame)
        throw mistake{"the ECU has a freeze frame already"};
    file_words ahead = words;
    freeze_frame made;
    if (!ahead.at_end() && ahead.next("a code") == "none")
        words = ahead;
    else
        made.code = words.code();
    unit().frame = std::move(made);
}

void reader::freeze_line(file_words& words) {
    const std::uint8_t pid = words.byte("the PID");
    if (is_group(pid) || pid == 0x02)
        throw mistake{"that PID follows from the others (00, 20, ...) or from the code (02)"};
    if (!unit().frame || unit().frame->code == 0)
        throw mistake{"a \"freeze_code\" line must stand above"};
    if (!unit().frame->values.emplace(pid, words.rest_as_bytes("the value", most_data(16, 1))).second)
        throw mistake{"that PID stands above"};
}

void reader::vin_line(file_words& words) {
    const std::string vin = words.text("the VIN", vin_length);
    if (vin == "unprogrammed") {
        unit().vin.assign(vin_length, 0xFF);
        return;
    }
    if (vin.size() != vin_length || vin_check_digit(vin) == 0)
        throw mistake{"a VIN has 17 capital letters and digits without I, O and Q"};
    if (vin[8] != vin_check_digit(vin))
        throw mistake{std::string("the check digit of the VIN (ninth place) should be ") +
                      vin_check_digit(vin)};
    unit().vin.assign(vin.begin(), vin.end());
}

// Twenty bytes: four of the acronym, a dash, fifteen of the name, filled with zeros.
void reader::name_line(file_words& words) {
    std::string made(words.next("the acronym"));
    if (made.size() > 4)
        throw mistake{"the acronym is longer than 4 characters"};
    made.resize(4);
    made += '-' + words.text("the name", 15);
    made.resize(20);
    unit().name = made;
}

void reader::test_line(file_words& words) {
    const std::uint8_t monitor = words.byte("the OBDMID");
    if (!can())
        throw mistake{"\"test\" is for CAN, \"limit\" for the older protocols"};
    if (is_group(monitor))
        throw mistake{"OBDMID 00, 20, ... follow from the others"};
    test_record made;
    made.test_id = words.byte("the test ID");
    made.unit_and_scaling = words.byte("the unit and scaling ID");
    made.value = words.word("the value");
    made.minimum = words.word("the minimum");
    made.maximum = words.word("the maximum");
    unit().monitors[monitor].push_back(made);
    if (unit().monitors[monitor].size() > most_records)
        throw mistake{"more than " + std::to_string(most_records) + " records"};
}

void reader::limit_line(file_words& words) {
    const std::uint8_t test = words.byte("the test ID");
    if (can())
        throw mistake{"\"limit\" is for the older protocols, \"test\" for CAN"};
    limit_record made;
    made.component = words.byte("the component ID");
    if (is_group(test) || made.component > 0x7F)
        throw mistake{"test IDs 00, 20, ... follow from the others; a component ID goes to 7F"};
    made.is_minimum = words.choice("min", "max");
    made.value = words.word("the value");
    made.limit = words.word("the limit");
    unit().test_limits[test].push_back(made);
    if (unit().test_limits[test].size() > most_records)
        throw mistake{"more than " + std::to_string(most_records) + " results"};
}

void reader::data_line(file_words& words) {
    const std::uint16_t identifier = words.word("the identifier");
    const std::size_t most = most_data(200, 1);
    file_words ahead = words;
    bytes made;
    if (const std::string text = ahead.text("the data", 700); text.front() == '"') {
        if (text.size() < 3 || text.back() != '"')
            throw mistake{"a text stands between two quotation marks"};
        made.assign(text.begin() + 1, text.end() - 1);
        if (made.size() > most)
            throw mistake{"the data has more than " + std::to_string(most) + " bytes"};
        words = ahead;
    } else {
        made = words.rest_as_bytes("the data", most);
    }
    if (!unit().data.emplace(identifier, std::move(made)).second)
        throw mistake{"that identifier stands above"};
}

void reader::refuse_line(file_words& words) {
    refusal made;
    file_words ahead = words;
    if (!ahead.at_end() && ahead.next("the service") == "*")
        words = ahead;
    else
        made.service = words.byte("the service");
    made.code = words.byte("the response code");
    unit().refusals.push_back(made);
}

} // namespace

std::optional<car_description> parse_car(std::string_view text, std::string& problem) {
    int number = 1;
    try {
        if (text.size() > largest_file)
            throw mistake{"the file is larger than " + std::to_string(largest_file) + " bytes"};
        reader car;
        for (; !text.empty(); ++number) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            car.line(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        return car.finish();
    } catch (const mistake& found) {
        problem = "line " + std::to_string(number) + ": " + found.reason;
        return std::nullopt;
    }
}

char vin_check_digit(std::string_view vin) {
    // Values of A to Z; 0 marks the letters that are not used.
    static constexpr int letters[] = {1, 2, 3, 4, 5, 6, 7, 8, 0, 1, 2, 3, 4,
                                      5, 0, 7, 0, 9, 2, 3, 4, 5, 6, 7, 8, 9};
    static constexpr int weights[] = {8, 7, 6, 5, 4, 3, 2, 10, 0, 9, 8, 7, 6, 5, 4, 3, 2};
    if (vin.size() != vin_length)
        return 0;
    int sum = 0;
    for (std::size_t i = 0; i < vin_length; ++i) {
        const char c = vin[i];
        const bool letter = c >= 'A' && c <= 'Z';
        if (!letter && (c < '0' || c > '9'))
            return 0;
        const int value = letter ? letters[c - 'A'] : c - '0';
        if (letter && value == 0)
            return 0;
        sum += value * weights[i];
    }
    return "0123456789X"[sum % 11];
}

} // namespace virtual_adapter
