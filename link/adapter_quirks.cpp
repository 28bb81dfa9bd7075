#include "link/adapter_quirks.h"

namespace brivant {

namespace {

constexpr qsizetype most_commands = 64; // kept of one adapter

QString bare(const QString& command) {
    QString text = command.section(u'|', 0, 0).toUpper();
    return text.removeIf([](QChar c) { return c <= u' '; });
}

// How often an adapter has to be silent at a command before that is taken for its nature; 0 for never.
int silences_needed(const QString& command) {
    if (!command.startsWith(QLatin1String("AT")) || command == QLatin1String("ATZ") ||
        command == QLatin1String("ATE0"))
        return 0;
    const bool is_extra = command == QLatin1String("ATRV") || command.startsWith(QLatin1String("ATST"));
    return is_extra ? 1 : 2;
}

} // namespace

QString adapter_quirks::current_adapter() const {
    return place.interface_kind() == interface_bluetooth ? place.bt_address()
                                                         : place.wifi_ip() + u':' + place.wifi_port();
}

bool adapter_quirks::link_fell_at_reset() {
    return !std::exchange(known[current_adapter()].reset_ends_link, true);
}

void adapter_quirks::answered(const QString& command) {
    if (!command.startsWith(QLatin1String("AT"), Qt::CaseInsensitive))
        return;
    const QString text = bare(command);
    knowledge& adapter = known[current_adapter()];
    adapter.silences_at.remove(text);
    if (adapter.answered.size() < most_commands)
        adapter.answered.insert(text);
}

void adapter_quirks::unanswered(const QString& command) {
    const QString text = bare(command);
    knowledge& adapter = known[current_adapter()];
    if (!adapter.answered.contains(text) && adapter.silences_at.size() < most_commands)
        ++adapter.silences_at[text];
}

bool adapter_quirks::falls_silent_at(const QString& command) const {
    const auto adapter = known.find(current_adapter());
    if (adapter == known.end() || adapter->silences_at.isEmpty())
        return false;
    const QString text = bare(command);
    const int needed = silences_needed(text);
    return needed > 0 && adapter->silences_at.value(text) >= needed;
}

} // namespace brivant
