#pragma once

#include <string>
#include <string_view>

namespace virtual_adapter {

// What is heard at one speed of bytes (8N1) that are sent back to back at another. Where no stop bit is found
// nothing is heard.
std::string heard_at(int reader_baud, std::string_view sent, int sender_baud);

} // namespace virtual_adapter
