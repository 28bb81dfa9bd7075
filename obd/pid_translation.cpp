#include "obd/pid_translation.h"

#include "base/console_log.h"
#include "base/text_resources.h"
#include "obd/number_text.h"

#include <QVarLengthArray>
#include <array>
#include <charconv>
#include <limits>
#include <string_view>

namespace brivant {

namespace {

// The ambient pressure that boost is shown against.
constexpr double ambient_kpa = 101;

// What stands behind mode byte and PID in a reply.
struct reply_data {
    qsizetype bytes = 0; // whole data bytes, at most 4 are counted
    int A = 0;           // first data byte
    int B = 0;           // second data byte
    int W = 0;           // A x 256 + B
    int M = 0;           // the same as sign and magnitude
    double D = 0;        // all data digits as one unsigned 32-bit number
    int N1 = 0;          // data characters 0-3 as a decimal number, which ends at the first digit A-F
    int N2 = 0;          // data characters 4-7 likewise
};
using in = const reply_data&;

// A printf format with one number: "%d" or "%.<digit>f" between two texts, in which "%" stands for itself.
struct number_format {
    std::u16string_view before;
    std::u16string_view after;
    int decimals = 0;

    constexpr number_format() = default;
    consteval explicit number_format(std::u16string_view text) {
        const size_t at = text.find(u'%');
        const bool whole = text.at(at + 1) == u'd';
        if (!whole && (text.at(at + 1) != u'.' || text.at(at + 3) != u'f'))
            throw "neither %d nor %.<digit>f";
        before = text.substr(0, at);
        decimals = whole ? 0 : text.at(at + 2) - u'0';
        after = text.substr(at + (whole ? 2 : 4));
    }
};

// A number of the shown text, and how it is printed.
struct piece {
    int bytes = 0; // data bytes that the number needs; 0 marks the end of a row's pieces
    double (*value)(in) = nullptr;
    number_format format;

    constexpr piece() = default;
    template <typename formula>
    consteval piece(int needed, formula, std::u16string_view text)
        : bytes(needed), value([](in d) -> double { return formula{}(d); }), format(text) {}
};

enum shown_in { metric, imperial, both };

struct number_row {
    int first_pid;
    int last_pid;
    shown_in units;
    piece pieces[3];
};

// One row a PID (or a run of PIDs) and unit system: the data bytes that are needed, the value, its format.
// PIDs that stand in no table (13, 1D, 20, 21, 40, 41, 4F, 50 ...) have no translation.
// clang-format off
constexpr number_row number_rows[] = {
//   PIDs        shown in   bytes, value                                          format
    {0x04, 0x04, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.2f  %"}}},
    {0x05, 0x05, metric,   {{1, [](in d) { return d.A - 40; },                    u"%d.0 ° C"}}},
    {0x05, 0x05, imperial, {{1, [](in d) { return (d.A - 40) * 1.8 + 32; },       u"%.2f ° F"}}},
    {0x06, 0x09, both,     {{1, [](in d) { return d.A * 0.78125 - 100; },         u"%.2f  %"}}},
    {0x0A, 0x0A, metric,   {{1, [](in d) { return d.A * 3; },                     u"%.1f  KPa"}}},
    {0x0A, 0x0A, imperial, {{1, [](in d) { return d.A * 3 * 0.145; },             u"%.1f  psi"}}},
    {0x0B, 0x0B, metric,   {{1, [](in d) { return d.A; },                         u"%d  KPa"}}},
    {0x0B, 0x0B, imperial, {{1, [](in d) { return d.A * 0.295; },                 u"%.1f  in.Hg"}}},
    {0x0C, 0x0C, both,     {{2, [](in d) { return d.W * 0.25; },                  u"%.2f RPM"}}},
    // Odd on purpose: all data digits in one unit system, the first byte in the other.
    {0x0D, 0x0D, metric,   {{1, [](in d) { return d.D; },                         u"%.2f  Km/h"}}},
    {0x0D, 0x0D, imperial, {{1, [](in d) { return d.A / 1.6; },                   u"%.2f mph"}}},
    {0x0E, 0x0E, both,     {{1, [](in d) { return (d.A - 128) * 0.5; },           u"%.1f  deg"}}},
    {0x0F, 0x0F, metric,   {{1, [](in d) { return d.A - 40; },                    u"%d.0 ° C"}}},
    {0x0F, 0x0F, imperial, {{1, [](in d) { return (d.A - 40) * 1.8 + 32; },       u"%.2f ° F"}}},
    {0x10, 0x10, metric,   {{2, [](in d) { return d.W * 0.01; },                  u"%.2f  gm/s"}}},
    {0x10, 0x10, imperial, {{2, [](in d) { return d.W * 0.01 / 7.5; },            u"%.2f  lb/min"}}},
    {0x11, 0x11, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.2f  %"}}},
    {0x14, 0x1B, both,     {{1, [](in d) { return d.A * 0.005; },                 u"%.3f  V"},
                            {2, [](in d) { return d.B * 0.78125 - 100; },         u" / %.2f  %"}}},
    {0x1F, 0x1F, both,     {{2, [](in d) { return d.W / 3600; },                  u"%d 'Hours'"},
                            {2, [](in d) { return d.W % 3600 / 60; },             u" %d 'mins'"},
                            {2, [](in d) { return d.W % 60; },                    u" %d 'secs'"}}},
    {0x22, 0x22, metric,   {{2, [](in d) { return d.W * 10 * 0.0078125; },        u"%.1f KPa"}}},
    // Odd on purpose: the quotient by 128 loses its remainder before scaling.
    {0x22, 0x22, imperial, {{2, [](in d) { return (d.W * 10 >> 7) * 0.145; },     u"%.1f psi"}}},
    {0x23, 0x23, metric,   {{2, [](in d) { return d.W * 10; },                    u"%.1f KPa"}}},
    {0x23, 0x23, imperial, {{2, [](in d) { return d.W * 10 * 0.145; },            u"%.1f psi"}}},
    // Odd on purpose: hexadecimal text read as decimal numbers.
    {0x24, 0x2B, both,     {{4, [](in d) { return d.N2 * 0.0001220703125; },      u"%.3f V"},
                            {2, [](in d) { return d.N1 * 0.000030517578125; },    u" %.3f  "}}},
    {0x2C, 0x2C, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.2f %"}}},
    {0x2D, 0x2D, both,     {{1, [](in d) { return d.A * 0.78125 - 100; },         u"%.2f  %"}}},
    {0x2E, 0x2F, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.2f %"}}},
    // Odd on purpose: a count of warm-ups that carries a percent sign.
    {0x30, 0x30, both,     {{1, [](in d) { return d.A; },                         u"%d %"}}},
    // Odd on purpose: the low byte alone.
    {0x31, 0x31, metric,   {{2, [](in d) { return d.B; },                         u"%.2f Kms"}}},
    {0x31, 0x31, imperial, {{2, [](in d) { return d.B / 1.6; },                   u"%.2f mls"}}},
    // Odd on purpose: sign and magnitude, and pascals times 145.
    {0x32, 0x32, metric,   {{2, [](in d) { return d.M; },                         u"%.1f Pa"}}},
    {0x32, 0x32, imperial, {{2, [](in d) { return d.M * 145.0; },                 u"%.1f psi"}}},
    // Odd on purpose: the unit's spelling.
    {0x33, 0x33, metric,   {{1, [](in d) { return d.A; },                         u"%.1f KPPa"}}},
    {0x33, 0x33, imperial, {{1, [](in d) { return d.A * 0.145; },                 u"%.1f psi"}}},
    // Odd on purpose: hexadecimal text read as decimal numbers.
    {0x34, 0x3B, both,     {{4, [](in d) { return d.N2 / 256 - 128; },            u"%.3f mA"},
                            {2, [](in d) { return d.N1 * 0.000030517578125; },    u" %.3f "}}},
    // Odd on purpose: the first byte alone, tenths cut off; the imperial formula is no conversion of it.
    {0x3C, 0x3F, metric,   {{1, [](in d) { return d.A / 10 - 40; },               u"%.1f C"}}},
    {0x3C, 0x3F, imperial, {{1, [](in d) { return d.A * 1.8 / 10 - 40; },         u"%.1f F"}}},
    // Odd on purpose, 42 and 43: hexadecimal text read as decimal numbers.
    {0x42, 0x42, both,     {{2, [](in d) { return d.N1 / 1000.0; },               u"%.3f V"}}},
    {0x43, 0x43, both,     {{2, [](in d) { return d.N1 * 100 / 255.0; },          u"%.3f %"}}},
    // Odd on purpose: the first byte alone.
    {0x44, 0x44, both,     {{1, [](in d) { return d.A * 0.000030517578125; },     u"%.3f  "}}},
    {0x45, 0x45, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.1f %"}}},
    {0x46, 0x46, metric,   {{1, [](in d) { return d.A - 40; },                    u"%.1f C"}}},
    {0x46, 0x46, imperial, {{1, [](in d) { return (d.A - 40) * 1.8 + 32; },       u"%.1f F"}}},
    {0x47, 0x4C, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.1f %"}}},
    {0x4D, 0x4E, both,     {{2, [](in d) { return d.W / 1440; },                  u"%d days"},
                            {2, [](in d) { return d.W % 1440 / 60; },             u" %d 'hrs'"},
                            {2, [](in d) { return d.W % 60; },                    u" %d 'mins' "}}},
    {0x52, 0x52, both,     {{1, [](in d) { return d.A * 100 / 255.0; },           u"%.1f %"}}},
    // Made by the program itself: fuel economy and boost.
    {0xE4, 0xE4, metric,   {{1, [](in d) { return d.D / 100; },                   u"%.2f kpl"}}},
    // Odd on purpose: miles alone are converted, litres stay.
    {0xE4, 0xE4, imperial, {{1, [](in d) { return d.D / 100 / 1.609344; },        u"%.2f mpg"}}},
    {0xE5, 0xE5, metric,   {{1, [](in d) { return d.A - ambient_kpa; },           u"%.2f KPa"}}},
    {0xE5, 0xE5, imperial, {{1, [](in d) { return (d.A - ambient_kpa) / 6.895; }, u"%.2f psi"}}},
};

// PIDs whose first data byte stands for a state.
constexpr int any_other = -1;
struct state_row {
    unsigned pid;
    int A;
    std::u16string_view text;
};
constexpr state_row state_rows[] = {
    {0x03, 1,         u"Open Loop - not ready for Close"},
    {0x03, 2,         u"Close Loop - Using O2 snsr as feedback"},
    {0x03, 4,         u"Open Loop - due to driving cond"},
    {0x03, 8,         u"Open Loop - due to syst fault"},
    {0x03, 16,        u"Close Loop - fault with a O2 snsr"},
    {0x03, any_other, u"N/A"},
    {0x12, 4,         u"atmosphere/off"},
    {0x12, 2,         u"DownStream 1st cat"},
    {0x12, 1,         u"UpStream 1st cat"},
    {0x12, any_other, u"Invalid"},
    {0x1E, 1,         u"Power Take-off Active"},
    {0x1E, any_other, u"Power Take-off Not Active"},
};

// PIDs whose first data byte, less one, is a line of a list.
struct list_row {
    unsigned pid;
    const char* list;
};
constexpr list_row list_rows[] = {
    {0x1C, "OBD_MODES"},
    {0x51, "OBD_FUEL_TYPE"},
};
// clang-format on

constexpr unsigned char no_row = 255;
using row_of_pid = std::array<unsigned char, 256>;

// Which row stands for a PID. Does not compile when a PID stands twice.
consteval row_of_pid index_rows(shown_in units) {
    row_of_pid index;
    index.fill(no_row);
    for (size_t row = 0; row < std::size(number_rows); ++row) {
        const number_row& r = number_rows[row];
        if (r.units != both && r.units != units)
            continue;
        for (int pid = r.first_pid; pid <= r.last_pid; ++pid) {
            if (index.at(static_cast<size_t>(pid)) != no_row)
                throw "a PID stands twice";
            index.at(static_cast<size_t>(pid)) = static_cast<unsigned char>(row);
        }
    }
    return index;
}
constexpr row_of_pid metric_rows = index_rows(metric);
constexpr row_of_pid imperial_rows = index_rows(imperial);

// The first line of a reply without blanks and prompt: its length, and as many characters as any row reads.
struct reply_line {
    std::array<QChar, 12> characters;
    qsizetype length = 0;

    explicit reply_line(QStringView reply) {
        for (const QChar c : reply.trimmed()) {
            if (c == u'\r' && length > 0)
                break;
            if (c == u'\r' || c == u' ' || c == u'>')
                continue;
            if (length < static_cast<qsizetype>(characters.size()))
                characters[static_cast<size_t>(length)] = c;
            ++length;
        }
    }
    QStringView text() const {
        return {characters.data(), std::min<qsizetype>(length, static_cast<qsizetype>(characters.size()))};
    }
};

// A byte counts only when both its digits are there and are hex digits. Digits past the eighth do not fit
// D's 32 bits and are left out.
reply_data read_data(QStringView data) {
    reply_data d;
    while (hex_byte(data, 2 * d.bytes) >= 0)
        ++d.bytes;
    if (d.bytes >= 1)
        d.A = hex_byte(data, 0);
    if (d.bytes >= 2)
        d.B = hex_byte(data, 2);
    d.W = d.A * 256 + d.B;
    d.M = d.W < 0x8000 ? d.W : 0x8000 - d.W;
    for (qsizetype i = 0; i < data.size() && hex_digit(data[i]) >= 0; ++i)
        d.D = d.D * 16 + hex_digit(data[i]);
    d.N1 = leading_decimal(data.first(std::min<qsizetype>(data.size(), 4)));
    d.N2 = leading_decimal(data.sliced(std::min<qsizetype>(data.size(), 4)));
    return d;
}

QString not_decoded(const QString& reason) {
    console_log(QLatin1String("translate_response: ") + reason);
    return not_available;
}

// The row's pieces one behind the other. The reply must hold the data of the first; a later one whose data is
// missing is left out.
QString print_numbers(const number_row& row, const reply_data& d) {
    QVarLengthArray<char16_t, 96> text;
    for (const piece& p : row.pieces) {
        if (p.bytes == 0 || p.bytes > d.bytes)
            break;
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, p.value(d), std::chars_format::fixed,
                                       p.format.decimals);
        text.append(p.format.before.data(), static_cast<qsizetype>(p.format.before.size()));
        for (const char* digit = digits; digit != end.ptr; ++digit)
            text.append(static_cast<char16_t>(*digit));
        text.append(p.format.after.data(), static_cast<qsizetype>(p.format.after.size()));
    }
    if (text.isEmpty())
        return not_decoded("data bytes are missing");
    return QString::fromUtf16(text.constData(), text.size());
}

} // namespace

QString translateResponse(const QString& reply, unit_system units, const text_resources& lists) {
    const reply_line line(reply);
    const QStringView text = line.text();
    // "-1", "" and "?" are among the short ones.
    if (line.length < 5 || hex_digit(text[0]) < 0)
        return no_reply;
    const int pid = hex_byte(text, 2);
    if (pid < 0) // an adapter's word such as "BUSINIT:ERROR"
        return reply;
    const reply_data d = read_data(text.sliced(4));

    const row_of_pid& rows = units == unit_system::metric ? metric_rows : imperial_rows;
    if (const unsigned char row = rows[static_cast<size_t>(pid)]; row != no_row)
        return print_numbers(number_rows[row], d);
    for (const state_row& row : state_rows) {
        if (row.pid != static_cast<unsigned>(pid))
            continue;
        if (d.bytes == 0)
            return not_decoded("data bytes are missing");
        if (row.A == d.A || row.A == any_other)
            return QString::fromUtf16(row.text.data(), static_cast<qsizetype>(row.text.size()));
    }
    for (const list_row& row : list_rows) {
        if (row.pid != static_cast<unsigned>(pid))
            continue;
        const std::optional<QString> entry = lists.line(QLatin1String(row.list), d.A - 1);
        return entry ? *entry : not_decoded("no such line in the list");
    }
    return reply;
}

double get_OBDVal(const QString& reply, unit_system units, const text_resources& lists) {
    const QString text = translateResponse(reply, units, lists);
    if (text.contains(no_reply))
        return std::numeric_limits<double>::quiet_NaN();
    // The whole first piece has to be a number: "4113033F" and "N/A" give 0. So does "41010007E200", a raw
    // reply whose E is no exponent.
    const qsizetype blank = text.indexOf(QLatin1Char(' '));
    const QByteArray piece = QStringView(text).first(blank < 0 ? text.size() : blank).toLatin1();
    double value = 0;
    const auto [end, error] = std::from_chars(piece.begin(), piece.end(), value, std::chars_format::fixed);
    return error == std::errc() && end == piece.end() ? value : 0;
}

} // namespace brivant
