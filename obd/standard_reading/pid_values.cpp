#include "obd/standard_reading/pid_values.h"

#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_table.h"

#include <QMap>
#include <algorithm>
#include <cmath>

namespace {

constexpr int last_pid = 0xC4;
const QString data_missing = QStringLiteral("data bytes are missing");
const QString not_defined = QStringLiteral("a state that the standard does not define");
const QString no_formula = QStringLiteral("no standard formula for this PID here");
const QString nothing_there = QStringLiteral("the car marks every value of it as unsupported");

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

// An O2 sensor that takes no part in the trim sends FF for it.
bool is_unused_trim(const quantity_row& row, const QByteArray& data) {
    return row.pid == 0x14 && row.at == 1 && byte_at(data, 1) == 0xFF;
}

void take_quantities(int pid, const QByteArray& data, unit_system units, pid_value& value) {
    bool has_rows = false;
    for (const quantity_row& row : quantity_rows()) {
        if (row.pid != first_of_run(pid))
            continue;
        has_rows = true;
        const bool told_apart = row.support != always;
        if (told_apart && (data.isEmpty() || (byte_at(data, 0) >> row.support & 1) == 0))
            continue;
        if (data.size() < row.at + row.bytes) {
            // A second byte of some PIDs came with later cars: the first value stands alone without it.
            if (row.at == 0 || told_apart)
                value.absent = data_missing;
            continue;
        }
        if (is_unused_trim(row, data))
            continue;
        const shown_unit unit = shown_unit_of(row.unit, units);
        const bool converted = unit.factor != 1;
        value.quantities.append({QString::fromUtf8(row.name),
                                 number_at(data, row) * unit.factor + unit.offset,
                                 converted ? std::max(row.decimals, 1) : row.decimals, unit.name});
    }
    if (has_rows && value.quantities.isEmpty() && value.absent.isEmpty())
        value.absent = data.isEmpty() ? data_missing : nothing_there;
}

void take_states(int pid, const QByteArray& data, pid_value& value) {
    bool has_rows = false;
    for (const state_row& row : state_rows()) {
        if (row.pid != pid)
            continue;
        has_rows = true;
        if (data.size() > row.at && (byte_at(data, row.at) & row.mask) == row.value)
            value.states.append(QString::fromUtf8(row.text));
    }
    const bool lists_what_is_there = pid == 0x13 || pid == 0x1D || pid == 0x65;
    if (has_rows && value.states.isEmpty())
        value.absent = data.isEmpty() ? data_missing : lists_what_is_there ? QString() : not_defined;
    if (has_rows && lists_what_is_there && value.states.isEmpty() && value.absent.isEmpty())
        value.states.append(QStringLiteral("none"));
}

void take_monitors(const QByteArray& data, pid_value& value) {
    const monitor_status status = read_monitor_status(data);
    if (status.monitors.isEmpty()) {
        value.absent = data_missing;
        return;
    }
    value.states.append(status.mil ? QStringLiteral("MIL on") : QStringLiteral("MIL off"));
    value.states.append(QStringLiteral("%1 codes").arg(status.codes));
    for (const monitor& m : status.monitors)
        if (m.supported)
            value.states.append(m.name +
                                (m.complete ? QLatin1String(": complete") : QLatin1String(": not complete")));
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
    } else if (pid == 0x01 || pid == 0x41) {
        take_monitors(data, value);
    } else if (pid == 0x02) {
        if (data.size() < 2)
            value.absent = data_missing;
        else
            value.states.append(trouble_code_name(byte_at(data, 0), byte_at(data, 1)));
    } else {
        take_quantities(pid, data, units, value);
        take_states(pid, data, value);
        if (value.quantities.isEmpty() && value.states.isEmpty() && value.absent.isEmpty()) {
            value.absent = no_formula;
            value.is_undefined = true;
        }
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
    return decode_pid(byte_at(bytes, 1), bytes.mid(2), units);
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
        const bool is_word = shown != not_available && shown != QLatin1String("Invalid") && !is_raw(shown);
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
    static const QStringList spark = {QStringLiteral("Catalyst"),           QStringLiteral("Heated catalyst"),
                                      QStringLiteral("Evaporative system"), QStringLiteral("Secondary air"),
                                      QStringLiteral("A/C refrigerant"),    QStringLiteral("O2 sensor"),
                                      QStringLiteral("O2 sensor heater"),   QStringLiteral("EGR or VVT")};
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
