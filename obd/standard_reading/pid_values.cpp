#include "obd/standard_reading/pid_values.h"

#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_table.h"

#include <QMap>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr int last_pid = 0xC4;
constexpr int since_cleared = 0x01; // the two PIDs of monitor status
constexpr int this_drive_cycle = 0x41;
const QString data_missing = QStringLiteral("data bytes are missing");
const QString not_defined = QStringLiteral("a state that the standard does not define");
const QString no_formula = QStringLiteral("no standard formula for this PID here");
const QString nothing_there = QStringLiteral("the car marks every value of it as unsupported or unavailable");

int byte_at(const QByteArray& bytes, qsizetype at) {
    return static_cast<unsigned char>(bytes.at(at));
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
    default: return false;
    }
}

found_rows take_quantities(int pid, const QByteArray& data, unit_system units, pid_value& value) {
    found_rows found;
    for (const quantity_row& row : quantity_rows()) {
        if (row.pid != first_of_run(pid))
            continue;
        found.any = true;
        if (!is_marked(row.support, data) || (is_for_more_banks(row) && data.size() != row.at + 1))
            continue;
        found.supported = true;
        found.missing |= data.size() < row.at + row.bytes;
        if (found.missing || is_left_out(row, data))
            continue;
        const shown_unit unit = shown_unit_of(row.unit, units);
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
void take_values(int pid, const QByteArray& data, unit_system units, pid_value& value) {
    const found_rows quantities = take_quantities(pid, data, units, value);
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

// A number and the unit behind it, as a shown text has them.
struct shown_number {
    double value = 0;
    QString unit;
};

// One spelling for a unit: without blanks, quotes and slashes at its ends, in lower case.
QString plain_unit(const QString& unit) {
    static const QMap<QString, QString> same = {
        {QStringLiteral("kppa"), QStringLiteral("kpa")}, {QStringLiteral("gm/s"), QStringLiteral("g/s")},
        {QStringLiteral("kms"), QStringLiteral("km")},   {QStringLiteral("mls"), QStringLiteral("mi")},
        {QStringLiteral("°"), QStringLiteral("deg")},    {QStringLiteral("°c"), QStringLiteral("c")},
        {QStringLiteral("°f"), QStringLiteral("f")},     {QStringLiteral("hours"), QStringLiteral("h")},
        {QStringLiteral("hrs"), QStringLiteral("h")},    {QStringLiteral("mins"), QStringLiteral("min")},
        {QStringLiteral("secs"), QStringLiteral("s")}};
    QString plain = unit.toLower().remove(u'\'').remove(u' ');
    while (plain.startsWith(u'/') || plain.startsWith(u','))
        plain.remove(0, 1);
    while (plain.endsWith(u'/') || plain.endsWith(u','))
        plain.chop(1);
    return same.value(plain, plain);
}

QList<shown_number> numbers_of(const QString& shown) {
    QList<shown_number> numbers;
    for (const QString& word : shown.split(u' ', Qt::SkipEmptyParts)) {
        bool is_number = false;
        const double value = word.toDouble(&is_number);
        if (is_number)
            numbers.append(shown_number{value, QString()});
        else if (!numbers.isEmpty())
            numbers.last().unit += word;
    }
    for (shown_number& number : numbers)
        number.unit = plain_unit(number.unit);
    return numbers;
}

double seconds_in(const QString& unit) {
    return unit == QLatin1String("s")      ? 1
           : unit == QLatin1String("min")  ? 60
           : unit == QLatin1String("h")    ? 3600
           : unit == QLatin1String("days") ? 86400
                                           : 0;
}

// "2 days 3 'hrs' 5 'mins'" as seconds.
QList<shown_number> time_added_up(const QList<shown_number>& numbers) {
    double seconds = 0;
    for (const shown_number& number : numbers) {
        if (seconds_in(number.unit) == 0)
            return numbers;
        seconds += number.value * seconds_in(number.unit);
    }
    return numbers.isEmpty() ? numbers : QList<shown_number>{{seconds, QStringLiteral("s")}};
}

// A reply that was not translated at all.
bool is_raw(const QString& shown) {
    return shown.startsWith(u'4') && std::all_of(shown.begin(), shown.end(), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
           });
}

bool nearly(double a, double b, int decimals) {
    constexpr double conversions = 0.01;
    const double rounding = 0.6 * std::pow(10.0, -std::min(decimals, 2));
    return std::abs(a - b) <= std::max(rounding, conversions * std::abs(b));
}

} // namespace

pid_value decode_pid(int pid, const QByteArray& data, unit_system units) {
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
        take_values(pid, data, units, value);
    }
    return value;
}

pid_value read_pid_value(const QString& reply, unit_system units) {
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
    return decode_pid(byte_at(bytes, 1), bytes.mid(data_at), units);
}

QString pid_value_text(const pid_value& value) {
    QStringList texts;
    for (const quantity& q : value.quantities) {
        const QString number = QString::number(q.value, 'f', q.decimals);
        texts.append((q.name.isEmpty() ? QString() : q.name + u' ') + number +
                     (q.unit.isEmpty() ? QString() : u' ' + q.unit));
    }
    texts.append(value.states);
    return texts.isEmpty() ? QStringLiteral("(%1)").arg(value.absent) : texts.join(QLatin1String(", "));
}

bool says_the_same(const QString& shown, const pid_value& standard) {
    const QList<shown_number> numbers = numbers_of(shown);
    if (standard.quantities.isEmpty()) {
        const bool is_word = shown != not_available && shown != QLatin1String("Invalid") &&
                             shown != QLatin1String("Reserved") && !is_raw(shown);
        return standard.states.isEmpty() ? shown == not_available || shown == no_reply : is_word;
    }
    QList<shown_number> wanted;
    for (const quantity& q : standard.quantities)
        wanted.append({q.value, plain_unit(q.unit)});
    const QList<shown_number> have = time_added_up(numbers);
    wanted = time_added_up(wanted);
    if (have.size() != wanted.size())
        return false;
    for (qsizetype i = 0; i < have.size(); ++i)
        if (have[i].unit != wanted[i].unit ||
            !nearly(have[i].value, wanted[i].value, standard.quantities.value(i).decimals))
            return false;
    return true;
}

QString other_value_text(const QString& shown, const QString& reply, unit_system units) {
    const pid_value standard = read_pid_value(reply, units);
    return standard.is_undefined || says_the_same(shown, standard) ? QString() : pid_value_text(standard);
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
