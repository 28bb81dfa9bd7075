#include "link/adapter_quirks.h"

namespace brivant {

namespace {

constexpr qsizetype most_commands = 64; // kept of one adapter

QString bare(const QString& command) {
    QString text = command.section(u'|', 0, 0).toUpper();
    return text.removeIf([](QChar c) { return c <= u' '; });
}

constexpr int silences_of_its_nature = 2;

bool can_be_done_without(const QString& command) {
    return command.startsWith(QLatin1String("AT")) && command != QLatin1String("ATZ") &&
           command != QLatin1String("ATE0");
}

// A voltage that is not known, or answers that are waited for less long.
bool is_extra(const QString& command) {
    return command == QLatin1String("ATRV") || command.startsWith(QLatin1String("ATST"));
}

} // namespace

bool adapter_quirks::link_fell_at_reset() {
    return !std::exchange(known[place.address()].reset_ends_link, true);
}

void adapter_quirks::answered(const QString& command) {
    if (!command.startsWith(QLatin1String("AT"), Qt::CaseInsensitive))
        return;
    const QString text = bare(command);
    knowledge& adapter = known[place.address()];
    adapter.silences_at.remove(text);
    if (adapter.answered.size() < most_commands)
        adapter.answered.insert(text);
}

void adapter_quirks::unanswered(const QString& command) {
    const QString text = bare(command);
    knowledge& adapter = known[place.address()];
    if (!adapter.answered.contains(text) && adapter.silences_at.size() < most_commands)
        adapter.silences_at[text] = {adapter.silences_at.value(text).times + 1, links};
}

bool adapter_quirks::falls_silent_at(const QString& command) const {
    const auto adapter = known.find(place.address());
    if (adapter == known.end() || adapter->silences_at.isEmpty())
        return false;
    const QString text = bare(command);
    const silence before = adapter->silences_at.value(text);
    return can_be_done_without(text) && (before.times >= silences_of_its_nature ||
                                         (is_extra(text) && before.times > 0 && links == before.on_link + 1));
}

} // namespace brivant
