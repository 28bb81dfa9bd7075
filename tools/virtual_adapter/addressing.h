#pragma once

#include "tools/virtual_adapter/protocols.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace virtual_adapter {

// The ECUs that a request is for.
struct addressee {
    std::optional<std::uint32_t> only; // the address with which that ECU answers; none: every ECU

    bool reaches(std::uint32_t ecu) const { return !only || *only == ecu; }
};

// The header of the requests: "AT SH" and "AT CP".
struct request_header {
    std::uint8_t priority = 0x18;             // the first byte of 29 bits
    std::optional<std::uint32_t> three_bytes; // none: the header of the protocol, to every ECU

    // "7E0" and "DA10F1" change the three bytes, "18DA10F1" all four. False for anything else.
    bool set(std::string_view digits);
    addressee addressed(bus kind) const;
};

// The CAN identifiers that the adapter lets through.
struct receive_filter {
    std::uint32_t value = 0;
    std::uint32_t mask = 0;

    bool passes(std::uint32_t identifier) const { return ((identifier ^ value) & mask) == 0; }
};

// One filter for each width of the identifiers; at first the answers that the law knows.
struct receive_filters {
    receive_filter narrow{0x7E8, 0x7F8};
    receive_filter wide{0x18DAF100, 0x1FFFFF00};

    // "AT CRA", "AT CF" and "AT CM" without the AT; three digits are for 11 bits, eight for 29, X in "AT CRA"
    // is any digit. False for anything else.
    bool change(std::string_view command);
    bool pass(std::uint32_t identifier, bus kind) const {
        return kind == bus::can11   ? narrow.passes(identifier)
               : kind == bus::can29 ? wide.passes(identifier)
                                    : true;
    }

private:
    bool receive_only(std::string_view digits);
    receive_filter* of_width(std::size_t digits);
};

} // namespace virtual_adapter
