#include "tools/virtual_adapter/addressing.h"

#include "tools/virtual_adapter/hex_digit.h"

#include <algorithm>
#include <string>

namespace virtual_adapter {

namespace {

constexpr addressee everybody{};
constexpr addressee nobody{UINT32_MAX};

constexpr std::size_t narrow_digits = 3;
constexpr std::size_t wide_digits = 8;

} // namespace

bool request_header::set(std::string_view digits) {
    const std::optional<std::uint32_t> number = hex_number(digits);
    if (!number || (digits.size() != narrow_digits && digits.size() != 6 && digits.size() != wide_digits))
        return false;
    three_bytes = *number & 0xFFFFFF;
    if (digits.size() == wide_digits)
        priority = std::uint8_t(*number >> 24);
    return true;
}

// SAE J1979 knows physical requests on CAN and ISO 14230 only.
addressee request_header::addressed(bus kind) const {
    if (!three_bytes)
        return everybody;
    const std::uint32_t low = *three_bytes;
    const std::uint32_t target = low >> 8 & 0xFF;
    switch (kind) {
    case bus::can11: {
        const std::uint32_t identifier = low & 0x7FF;
        if (identifier == 0x7DF)
            return everybody;
        return identifier >= 0x7E0 && identifier <= 0x7E7 ? addressee{identifier + 8} : nobody;
    }
    case bus::can29:
        if (priority != 0x18)
            return nobody;
        if (low == 0xDB33F1)
            return everybody;
        return (low & 0xFF00FF) == 0xDA00F1 ? addressee{0x18DAF100 | target} : nobody;
    case bus::kwp:
        switch (low >> 22) { // the two highest bits of the format byte; the lower ones are the length
        case 3: return target == 0x33 ? everybody : nobody;
        case 2: return {target};
        default: return nobody;
        }
    default: return target == 0x6A ? everybody : nobody;
    }
}

receive_filter* receive_filters::of_width(std::size_t digits) {
    return digits == narrow_digits ? &narrow : digits == wide_digits ? &wide : nullptr;
}

bool receive_filters::receive_only(std::string_view digits) {
    receive_filter* const filter = of_width(digits.size());
    std::string value(digits);
    std::string mask(digits);
    std::replace(value.begin(), value.end(), 'X', '0');
    for (char& c : mask)
        c = c == 'X' ? '0' : 'F';
    if (filter == nullptr || !hex_number(value))
        return false;
    *filter = {*hex_number(value), *hex_number(mask)};
    return true;
}

bool receive_filters::change(std::string_view command) {
    if (command == "CRA" || command == "AR") {
        *this = {};
        return true;
    }
    if (command.starts_with("CRA"))
        return receive_only(command.substr(3));
    if (!command.starts_with("CF") && !command.starts_with("CM"))
        return false;
    const std::string_view digits = command.substr(2);
    receive_filter* const filter = of_width(digits.size());
    const std::optional<std::uint32_t> number = hex_number(digits);
    if (filter == nullptr || !number)
        return false;
    (command[1] == 'F' ? filter->value : filter->mask) = *number;
    return true;
}

} // namespace virtual_adapter
