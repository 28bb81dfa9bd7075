#pragma once

#include "tools/virtual_adapter/adapter_session.h"
#include "tools/virtual_adapter/exact_timer.h"

#include <QTimer>

namespace virtual_adapter {

// A session that waits on the event loop.
class running_session {
public:
    running_session(std::shared_ptr<car> on, const adapter_options& options, const faults& what,
                    adapter_session::observer seen, std::function<void(std::string_view text)> write,
                    std::function<void()> close);

    void take(std::string_view text) { m_session.take(text); }

private:
    QTimer m_timer;
    exact_timer m_exact_timer;
    adapter_session m_session;
};

} // namespace virtual_adapter
