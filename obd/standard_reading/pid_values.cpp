#include "obd/standard_reading/pid_values.h"

#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_table.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int last_pid = 0xC4;
constexpr int since_cleared = 0x01; // the two PIDs of monitor status
constexpr int this_drive_cycle = 0x41;
const QString data_missing = QStringLiteral("data bytes are missing");
const QString not_defined = QStringLiteral("a state that the standard does not define");
const QString no_formula = QStringLiteral("not decoded here");
const QString nothing_there = QStringLiteral("the car marks every value of it as unsupported or unavailable");

int byte_at(const QByteArray& bytes, qsizetype at) {
    return static_cast<unsigned char>(bytes.at(at));
}

// The row as the car scales it, when it tells a greatest value other than the usual one.
quantity_row scaled_by(const full_scales& scales, quantity_row row) {
    const double full = row.pid == 0x0B                    ? scales.manifold_pressure
                        : row.pid == 0x10                  ? scales.air_flow
                        : row.unit == in_unit::volt        ? scales.o2_voltage
                        : row.unit == in_unit::milliampere ? scales.o2_current
                                                           : scales.lambda;
    const bool is_scaled =
        row.pid == 0x0B || row.pid == 0x10 || row.pid == 0x24 || row.pid == 0x34 || row.pid == 0x44;
    if (!is_scaled || full == 0)
        return row;
    constexpr double current_of_nothing = 0x8000;
    const bool is_current = row.unit == in_unit::milliampere;
    row.factor = full / (is_current ? current_of_nothing : row.bytes == 1 ? 0xFF : 0xFFFF);
    row.offset = is_current ? -full : 0;
    return row;
}

double number_at(const QByteArray& data, const quantity_row& row) {
    quint64 raw = 0;
    for (int i = 0; i < row.bytes; ++i)
        raw = raw << 8 | static_cast<unsigned>(byte_at(data, row.at + i));
    const auto sign = quint64(1) << (8 * row.bytes - 1);
    const auto number = row.is_signed && (raw & sign) != 0
                            ? static_cast<double>(raw) - 2.0 * static_cast<double>(sign)
                            : static_cast<double>(raw);
    return number * row.factor + row.offset;
}

// What the rows of a PID found in its data.
struct found_rows {
    bool any = false;
    bool supported = false;
    bool missing = false; // the data ends before a value that should be there
};

bool is_marked(int support, const QByteArray& data) {
    return support == always || (!data.isEmpty() && (byte_at(data, 0) >> support & 1) != 0);
}

// The second byte of a fuel trim, for bank 3 or 4, is sent by cars that have one. Longer data is filled up.
bool is_for_more_banks(const quantity_row& row) {
    return row.at == 1 && ((row.pid >= 0x06 && row.pid <= 0x09) || (row.pid >= 0x55 && row.pid <= 0x58));
}

// What stands in the place of a value that there is not.
bool is_left_out(const quantity_row& row, const QByteArray& data) {
    switch (row.pid) {
    case 0x14: return row.at == 1 && byte_at(data, 1) == 0xFF; // the sensor takes no part in the trim
    case 0x4F:
    case 0x50: return byte_at(data, row.at) == 0; // the usual range
    case 0x83:
    case 0xA1:
    case 0xA7:
    case 0xA8: return (byte_at(data, 0) >> (4 + row.support) & 1) != 0; // the sensor is not ready
    default: break;
    }
    const bool is_counter = row.unit == in_unit::hour || (row.unit == in_unit::second && row.bytes == 4);
    return is_counter && data.mid(row.at, row.bytes) == QByteArray(row.bytes, '\xFF'); // not available
}

found_rows take_quantities(int pid, const QByteArray& data, const value_reading& reading, pid_value& value) {
    found_rows found;
    for (const quantity_row& as_usual : quantity_rows()) {
        if (as_usual.pid != first_of_run(pid))
            continue;
        const quantity_row row = scaled_by(reading.scales, as_usual);
        found.any = true;
        if (!is_marked(row.support, data) || (is_for_more_banks(row) && data.size() != row.at + 1))
            continue;
        found.supported = true;
        found.missing |= data.size() < row.at + row.bytes;
        if (found.missing || is_left_out(row, data))
            continue;
        const shown_unit unit = shown_unit_of(row.unit, reading.units);
        value.quantities.append({QString::fromUtf8(row.name),
                                 number_at(data, row) * unit.factor + unit.offset,
                                 std::max(row.decimals, unit.decimals), unit.name});
    }
    return found;
}

// PIDs whose data lists, bit by bit, what is there.
bool is_list(int pid) {
    return pid == 0x13 || pid == 0x1D || pid == 0x7D || pid == 0x7E;
}

found_rows take_states(int pid, const QByteArray& data, pid_value& value) {
    constexpr int whole_byte = 0xFF;
    found_rows found;
    unsigned whole = 0; // bit n: byte n stands for one state
    unsigned known = 0; // and that state is in the table
    for (const state_row& row : state_rows()) {
        if (row.pid != pid)
            continue;
        found.any = true;
        if (!is_marked(row.support, data))
            continue;
        found.supported = true;
        if (data.size() <= row.at) {
            found.missing |= row.at == 0 || row.support != always;
            continue;
        }
        const bool holds = (byte_at(data, row.at) & row.mask) == row.value;
        if (holds && *row.text != 0)
            value.states.append(QString::fromUtf8(row.text));
        if (row.mask == whole_byte)
            whole |= 1U << row.at;
        if (holds)
            known |= 1U << row.at;
    }
    if (!value.states.isEmpty() && value.quantities.isEmpty() && (whole & ~known) != 0)
        value.states.append(not_defined);
    if (is_list(pid) && value.states.isEmpty())
        value.states.append(QStringLiteral("none"));
    return found;
}

// Data that is cut is not read in part.
void take_values(int pid, const QByteArray& data, const value_reading& reading, pid_value& value) {
    const found_rows quantities = take_quantities(pid, data, reading, value);
    const found_rows states = take_states(pid, data, value);
    const bool is_empty = value.quantities.isEmpty() && value.states.isEmpty();
    value.is_undefined = !quantities.any && !states.any;
    if (value.is_undefined)
        value.absent = no_formula;
    else if (data.isEmpty() || quantities.missing || states.missing)
        value = {{}, {}, data_missing, false};
    else if (is_empty)
        value.absent = states.supported ? not_defined : nothing_there;
}

void take_monitors(int pid, const QByteArray& data, pid_value& value) {
    const monitor_status status = read_monitor_status(data);
    if (status.monitors.isEmpty()) {
        value.absent = data_missing;
        return;
    }
    if (pid == since_cleared) {
        value.states.append(status.mil ? QStringLiteral("MIL on") : QStringLiteral("MIL off"));
        value.states.append(status.codes == 1 ? QStringLiteral("1 code")
                                              : QStringLiteral("%1 codes").arg(status.codes));
    }
    for (const monitor& m : status.monitors)
        if (m.supported)
            value.states.append(m.name +
                                (m.complete ? QLatin1String(": complete") : QLatin1String(": not complete")));
    if (value.states.isEmpty())
        value.states.append(QStringLiteral("none"));
}

void take_supported(int pid, const QByteArray& data, pid_value& value) {
    constexpr int pids = 32;
    if (data.size() < pids / 8) {
        value.absent = data_missing;
        return;
    }
    for (int i = 0; i < pids; ++i)
        if ((byte_at(data, i / 8) >> (7 - i % 8) & 1) != 0)
            value.states.append(QStringLiteral("%1").arg(pid + 1 + i, 2, 16, QLatin1Char('0')).toUpper());
    if (value.states.isEmpty())
        value.states.append(QStringLiteral("none"));
}

void take_freezing_code(const QByteArray& data, pid_value& value) {
    if (data.size() < 2)
        value.absent = data_missing;
    else if (data.startsWith(QByteArray(2, '\0')))
        value.states.append(QStringLiteral("no freeze frame is stored"));
    else
        value.states.append(trouble_code_name(byte_at(data, 0), byte_at(data, 1)));
}

} // namespace

pid_value decode_pid(int pid, const QByteArray& data, const value_reading& reading) {
    constexpr int group = 0x20;
    pid_value value;
    if (pid < 0 || pid > last_pid) {
        value.absent = no_formula;
        value.is_undefined = true;
    } else if (pid % group == 0) {
        take_supported(pid, data, value);
    } else if (pid == since_cleared || pid == this_drive_cycle) {
        take_monitors(pid, data, value);
    } else if (pid == 0x02) {
        take_freezing_code(data, value);
    } else {
        take_values(pid, data, reading, value);
    }
    return value;
}

pid_value read_pid_value(const QString& reply, const value_reading& reading) {
    constexpr int current_data = 0x41;
    constexpr int freeze_frame = 0x42;
    const QString digits = QString(reply).remove(u' ');
    const bool whole = digits.size() % 2 == 0 && digits.size() >= 4 &&
                       std::all_of(digits.begin(), digits.end(),
                                   [](QChar c) { return c < QChar(0x80) && isxdigit(c.toLatin1()) != 0; });
    const QByteArray bytes = whole ? QByteArray::fromHex(digits.toLatin1()) : QByteArray();
    if (bytes.size() < 2 || (byte_at(bytes, 0) != current_data && byte_at(bytes, 0) != freeze_frame))
        return {{}, {}, QStringLiteral("no answer to this PID"), false};
    const qsizetype data_at = byte_at(bytes, 0) == freeze_frame ? 3 : 2; // behind the frame's number
    return decode_pid(byte_at(bytes, 1), bytes.mid(data_at), reading);
}

void take_full_scales(int pid, const QByteArray& data, full_scales& scales) {
    constexpr int tens = 10;
    if (pid == 0x4F && data.size() >= 4)
        scales = {double(byte_at(data, 0)), double(byte_at(data, 1)), double(byte_at(data, 2)),
                  double(tens * byte_at(data, 3)), scales.air_flow};
    else if (pid == 0x50 && !data.isEmpty())
        scales.air_flow = tens * byte_at(data, 0);
}

monitor_status read_monitor_status(const QByteArray& data) {
    if (data.size() < 4)
        return {};
    constexpr int mil_bit = 0x80;
    constexpr int compression_bit = 3;
    constexpr int incomplete_shift = 4;
    const auto bit = [&data](int byte, int number) { return (byte_at(data, byte) >> number & 1) != 0; };
    static const QStringList continuous = {QStringLiteral("Misfire"), QStringLiteral("Fuel system"),
                                           QStringLiteral("Components")};
    static const QStringList spark = {QStringLiteral("Catalyst"),
                                      QStringLiteral("Heated catalyst"),
                                      QStringLiteral("Evaporative system"),
                                      QStringLiteral("Secondary air"),
                                      QStringLiteral("A/C refrigerant or GPF"),
                                      QStringLiteral("O2 sensor"),
                                      QStringLiteral("O2 sensor heater"),
                                      QStringLiteral("EGR or VVT")};
    static const QStringList compression = {QStringLiteral("NMHC catalyst"),
                                            QStringLiteral("NOx aftertreatment"),
                                            QString(),
                                            QStringLiteral("Boost pressure"),
                                            QString(),
                                            QStringLiteral("Exhaust gas sensor"),
                                            QStringLiteral("PM filter"),
                                            QStringLiteral("EGR or VVT")};
    monitor_status status{(byte_at(data, 0) & mil_bit) != 0, byte_at(data, 0) & ~mil_bit, {}};
    for (int i = 0; i < continuous.size(); ++i)
        status.monitors.append({continuous[i], bit(1, i), !bit(1, i + incomplete_shift)});
    const QStringList& names = bit(1, compression_bit) ? compression : spark;
    for (int i = 0; i < names.size(); ++i)
        if (!names[i].isEmpty())
            status.monitors.append({names[i], bit(2, i), !bit(3, i)});
    return status;
}

} // namespace brivant
