#include "tools/virtual_adapter/faults.h"

#include <algorithm>

namespace virtual_adapter {

namespace {

bool is_due(int count, int every) {
    return every > 0 && count % every == 0;
}

} // namespace

delivery fault_line::pass(const exchange& done) {
    ++m_commands;
    delivery made;
    if (m_faults.reset_closes && done.command == "ATZ") {
        made.close = true;
        return made;
    }
    const std::vector<std::string>& fatal = m_faults.hangs_on;
    m_hangs |= std::find(fatal.begin(), fatal.end(), done.command) != fatal.end();
    if (m_hangs || (m_faults.silent_from > 0 && m_commands >= m_faults.silent_from))
        return made;

    made.text = done.reply;
    if (m_faults.lose_line > 0 || m_faults.lose_every > 0)
        made.text = without_lost_lines(made.text);
    const bool is_spared = m_faults.garbage_spares_at && done.command.starts_with("AT");
    if (is_due(m_commands, m_faults.garbage_every) && !is_spared)
        made.text = with_garbage(std::move(made.text));
    if (m_commands == m_faults.late_reply) {
        made.wait_ms = m_faults.late_ms;
    } else if (m_faults.delay_ms > 0) {
        made.wait_ms = m_faults.delay_ms;
        made.interruptible = true;
    }
    if (made.interruptible)
        made.at_once = done.echo;
    else
        made.text.insert(0, done.echo);
    made.close = m_commands == m_faults.cut_after;

    made.text.insert(0, m_held);
    m_held.clear();
    if (m_commands == m_faults.glue_reply)
        m_held.swap(made.text);
    return made;
}

// A line is what holds text and ends in a return; the prompt is none.
std::string fault_line::without_lost_lines(const std::string& reply) {
    std::string kept;
    for (std::size_t start = 0; start < reply.size();) {
        std::size_t end = std::min(reply.find('\r', start), reply.size() - 1) + 1;
        if (end < reply.size() && reply[end] == '\n')
            ++end;
        const std::string_view line = std::string_view(reply).substr(start, end - start);
        start = end;
        const bool has_text = line.find_first_not_of("\r\n>") != std::string_view::npos;
        if (has_text && (++m_lines == m_faults.lose_line || is_due(m_lines, m_faults.lose_every)))
            continue;
        kept += line;
    }
    return kept;
}

std::string fault_line::with_garbage(std::string reply) const {
    reply.insert(reply.size() / 2, m_faults.garbage_inside);
    return m_faults.garbage_before + reply;
}

} // namespace virtual_adapter
