#include "tools/virtual_adapter/adapter_session.h"

namespace virtual_adapter {

namespace {
constexpr std::size_t most_waiting = 1000; // a client that sends and never waits is cut off here
} // namespace

adapter_session::adapter_session(std::shared_ptr<car> on, const adapter_options& options, const faults& what,
                                 observer seen, outside link)
    : m_adapter(std::move(on), options), m_faults(what), m_seen(std::move(seen)), m_link(std::move(link)) {
    m_adapter.refuse(what.refused);
    m_adapter.suffer(what.clone);
    if (options.time)
        m_line.emplace(*options.time);
}

void adapter_session::take(std::string_view text) {
    const double sent_ms = m_line ? m_link.now_ms() : 0;
    for (const char character : text)
        take(character, sent_ms);
}

void adapter_session::take(char character, double sent_ms) {
    const bool ignored = character == '\n' || character == '\0';
    if (!m_outbox.empty() && m_outbox.back().interruptible && !ignored) {
        interrupt(); // the character itself is lost
        return;
    }
    const double at_ms = m_line ? m_line->at_adapter(sent_ms) : 0;
    if (at_ms < m_busy_until_ms && !ignored) {
        interrupt_at(at_ms);
        return;
    }
    const std::optional<exchange> done = m_adapter.take(character, at_ms);
    if (!done)
        return;
    if (m_seen)
        m_seen(*done);
    if (m_line)
        deliver_in_time(*done, m_faults.pass(*done));
    else
        deliver(m_faults.pass(*done));
}

// Text that a fault has changed comes when the whole reply would have gone out.
void adapter_session::deliver_in_time(const exchange& done, const delivery& what) {
    const double end_ms = done.parts.back().at_ms;
    const bool is_request =
        !done.reply.empty() && !done.command.starts_with("AT") && !done.command.starts_with("ST");
    m_busy_until_ms = is_request ? end_ms + what.wait_ms : 0;
    exchange told = done;
    if (what.at_once + what.text != done.echo + done.reply) {
        told.echo.clear();
        told.reply = what.at_once + what.text;
        told.parts = {{end_ms, told.reply.size()}};
    }
    deliver_pieces(told, what.wait_ms);
    if (what.close) {
        delivery end;
        end.close = true;
        deliver(std::move(end));
    }
}

void adapter_session::deliver_pieces(const exchange& told, int later_ms) {
    for (timed_text& piece : m_line->to_client(told)) {
        delivery part;
        part.at_ms = piece.at_ms + later_ms;
        part.text = std::move(piece.text);
        deliver(std::move(part));
    }
}

// What the client has not received yet is lost.
void adapter_session::interrupt_at(double moment_ms) {
    m_busy_until_ms = 0;
    while (!m_outbox.empty() && m_outbox.back().at_ms > moment_ms)
        m_outbox.pop_back();
    m_waits = false;
    m_link.stop_waiting();
    deliver_pieces(m_adapter.stopped(moment_ms));
}

void adapter_session::interrupt() {
    m_outbox.pop_back();
    if (m_outbox.empty()) {
        m_waits = false;
        m_link.stop_waiting();
    }
    delivery stopped;
    stopped.text = m_adapter.stopped().reply;
    deliver(std::move(stopped));
}

void adapter_session::deliver(delivery what) {
    if (!what.at_once.empty()) {
        delivery first;
        first.text.swap(what.at_once);
        deliver(std::move(first));
    }
    m_outbox.push_back(std::move(what));
    if (m_outbox.size() > most_waiting) {
        m_outbox.clear();
        m_link.close();
        return;
    }
    send_due();
}

void adapter_session::waited() {
    m_waits = false;
    if (!m_outbox.empty())
        m_outbox.front().wait_ms = 0;
    send_due();
}

// Everything up to the next delivery that has to wait.
void adapter_session::send_due() {
    while (!m_waits && !m_outbox.empty()) {
        delivery& first = m_outbox.front();
        if (m_line && first.at_ms > m_link.now_ms()) {
            m_waits = true;
            m_link.wait_until(first.at_ms);
            return;
        }
        if (first.wait_ms > 0) {
            m_waits = true;
            m_link.wait(first.wait_ms);
            return;
        }
        first.interruptible = false;
        if (m_faults.what().split && first.text.size() > 1) {
            const std::string piece = first.text.substr(0, 1);
            first.text.erase(0, 1);
            m_waits = true;
            m_link.write(piece);
            m_link.wait(0);
            return;
        }
        const delivery due = std::move(first);
        m_outbox.pop_front();
        if (!due.text.empty())
            m_link.write(due.text);
        if (due.close) {
            m_outbox.clear();
            m_link.close();
        }
    }
}

} // namespace virtual_adapter
