#include "livedata/elm_commands.h"
#include "livedata/link_check.h"
#include "obd/reply_text.h"

#include <array>

namespace brivant {

namespace {

constexpr std::array line_lengths{32, 64, 128, 200};
constexpr int timed_commands = 20;
const QString who_are_you = QStringLiteral("AT I");
const QString a_greeting = QStringLiteral("ELM");

enum class answer { none, known, unknown };

answer answer_in(const reply& came, const QString& expected) {
    return string_has_Tokens(came.text(), expected) ? answer::known
           : came.text().contains(u'?')             ? answer::unknown
                                                    : answer::none;
}

// "AT      I": what comes before blanks is not carried out without what is behind them.
QString long_command(int length) {
    return QStringLiteral("AT") + QString(length - 3, u' ') + u'I';
}

} // namespace

talk check_commands(link_check& car) {
    reply came;
    co_await car.ask_adapter(who_are_you, a_greeting, came);
    if (answer_in(came, a_greeting) == answer::known)
        car.found.greeting = came.text().left(80);
    const auto commands = elm_commands();
    int tried = 0;
    for (const elm_command& one : commands) {
        const QString text = QLatin1String(one.text);
        try {
            co_await car.ask_adapter(text, QLatin1String(one.answer), came);
        } catch (const link_check::adapter_failed&) {
            car.found.unknown += text;
            throw;
        }
        switch (answer_in(came, QLatin1String(one.answer))) {
        case answer::known: car.found.known += text; break;
        case answer::unknown: car.found.unknown += text; break;
        default: break;
        }
        car.progress_of_part(static_cast<double>(++tried) / static_cast<double>(commands.size()));
    }
    co_await car.ask_adapter(made_up_command, QStringLiteral("OK"), came);
    car.found.says_ok_to_anything = answer_in(came, QStringLiteral("OK")) == answer::known;
    // Of chips with a command set of their own beside that one.
    const QString a_name = QStringLiteral("STN|OBDLink");
    co_await car.ask_adapter(QStringLiteral("STI"), a_name, came);
    if (answer_in(came, a_name) == answer::known)
        car.found.chip = came.text().left(80);
}

talk check_lines(link_check& car) {
    for (const int length : line_lengths) {
        reply came;
        car.found.too_long = length;
        co_await car.ask_adapter(long_command(length), a_greeting, came);
        if (answer_in(came, a_greeting) != answer::known)
            co_return;
        car.found.longest_line = length;
        car.found.too_long = 0;
    }
}

talk check_adapter_pace(link_check& car) {
    for (int i = 0; i < timed_commands; ++i) {
        reply came;
        co_await car.ask_adapter(who_are_you, a_greeting, came);
        const exchange_moments& when = car.link.moments();
        if (!came.is_none() && when.first_byte > 0)
            car.found.alone_ms += static_cast<double>(when.last_byte - when.asked) / 1000;
    }
}

} // namespace brivant
