#include "tools/virtual_adapter/running_session.h"

namespace virtual_adapter {

running_session::running_session(std::shared_ptr<car> on, const adapter_options& options, const faults& what,
                                 adapter_session::observer seen,
                                 std::function<void(std::string_view text)> write,
                                 std::function<void()> close)
    : m_exact_timer([this] { m_session.waited(); }),
      m_session(std::move(on), options, what, std::move(seen),
                {std::move(write), [this](int milliseconds) { m_timer.start(milliseconds); },
                 [this] {
                     m_timer.stop();
                     m_exact_timer.stop();
                 },
                 std::move(close), &exact_timer::now_ms,
                 [this](double moment_ms) { m_exact_timer.call_at(moment_ms); }}) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { m_session.waited(); });
}

} // namespace virtual_adapter
