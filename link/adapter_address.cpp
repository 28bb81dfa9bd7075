#include "link/adapter_address.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace brivant {

namespace {

constexpr qsizetype longest_host = 64; // IPv6 whole, with the name of an interface
constexpr qsizetype longest_port = 255;
constexpr int highest_tcp_port = 65535;
constexpr int highest_speed = 4'000'000;

struct kind_word {
    int kind;
    const char* word;
};
constexpr std::array<kind_word, 4> kinds{{{interface_wifi, "wifi"},
                                          {interface_bluetooth, "bluetooth"},
                                          {interface_le, "ble"},
                                          {interface_serial, "usb"}}};

bool is_one_word(const QString& text, qsizetype longest) {
    return !text.isEmpty() && text.size() <= longest &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isPrint() && !c.isSpace(); });
}

// Decimal digits alone; 0 for what is none or out of bounds.
int number_of(const QString& digits, int highest) {
    const bool is_short = !digits.isEmpty() && digits.size() <= 10;
    const bool is_number =
        is_short && std::all_of(digits.begin(), digits.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    const qlonglong number = is_number ? digits.toLongLong() : 0;
    return number <= highest ? static_cast<int>(number) : 0;
}

std::optional<adapter_address> wifi_of(const QString& text) {
    adapter_address found{.kind = interface_wifi, .where = text.section(u':', 0, -2)};
    found.number = number_of(text.section(u':', -1), highest_tcp_port);
    if (found.where.startsWith(u'[') && found.where.endsWith(u']'))
        found.where = found.where.sliced(1).chopped(1);
    if (found.number == 0 || !is_one_word(found.where, longest_host))
        return std::nullopt;
    return found;
}

// Where "/dev/..." has a colon, as the names by path do, only what follows the last one can be a speed.
std::optional<adapter_address> serial_of(const QString& text) {
    adapter_address found{.kind = interface_serial, .where = text};
    if (const int speed = number_of(text.section(u':', -1), highest_speed);
        text.contains(u':') && speed >= 1200) {
        found.where = text.section(u':', 0, -2);
        found.number = speed;
    }
    if (!is_one_word(found.where, longest_port) || !found.where.startsWith(QLatin1String("/dev/")) ||
        found.where.contains(QLatin1String("/../")))
        return std::nullopt;
    return found;
}

} // namespace

QString adapter_address::key() const {
    return kind == interface_wifi ? where + u':' + QString::number(number) : where;
}

QString adapter_address::text() const {
    const auto known =
        std::find_if(kinds.begin(), kinds.end(), [&](const kind_word& one) { return one.kind == kind; });
    if (known == kinds.end() || where.isEmpty())
        return {};
    QString place = where;
    if (kind == interface_wifi && where.contains(u':'))
        place = u'[' + where + u']';
    if (number != 0)
        place += u':' + QString::number(number);
    return QLatin1String(known->word) + u':' + place;
}

std::optional<adapter_address> adapter_address::of(const QString& text) {
    for (const kind_word& one : kinds) {
        if (text.section(u':', 0, 0) == QLatin1String(one.word))
            return of(one.kind, text.section(u':', 1));
    }
    return std::nullopt;
}

std::optional<adapter_address> adapter_address::of(int kind, const QString& text) {
    if (kind == interface_wifi)
        return wifi_of(text);
    if (kind == interface_serial)
        return serial_of(text);
    if ((kind != interface_bluetooth && kind != interface_le) || !is_bluetooth_address(text))
        return std::nullopt;
    return adapter_address{.kind = kind, .where = text.toUpper()};
}

bool is_bluetooth_address(const QString& text) {
    static const QRegularExpression shape(QStringLiteral("\\A[0-9A-Fa-f]{2}(:[0-9A-Fa-f]{2}){5}\\z"));
    return shape.match(text).hasMatch();
}

} // namespace brivant
