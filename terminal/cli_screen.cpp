#include "terminal/cli_screen.h"

#include "terminal/bluetooth_scan_run.h"
#include "terminal/output.h"

#include <QJsonArray>
#include <unistd.h>

namespace brivant {

namespace {

constexpr qsizetype most_shown = 1000;

} // namespace

QJsonObject cli_screen::with_messages(QJsonObject result, bool done) const {
    result.insert(QStringLiteral("done"), done);
    result.insert(QStringLiteral("messages"), QJsonArray::fromStringList(shown));
    return result;
}

void cli_screen::show(const QString& text) {
    const QString line = text.trimmed().replace(QLatin1Char('\r'), QLatin1Char('\n')); // the lines of a reply
    if (line.isEmpty() || (!shown.isEmpty() && shown.last() == line))
        return;
    shown += line;
    if (shown.size() > most_shown)
        shown.removeFirst(); // of a run that lasts for days
    tell(line + QLatin1Char('\n'));
}

void cli_screen::show_status(const QString& text) {
    if (shows_every_reply || !text.startsWith(QLatin1String("Got proper reply")))
        show(text);
}

void cli_screen::show_message(const QString& title, const QString& text) {
    show(title.isEmpty() ? text : title + QStringLiteral("\n") + text);
}

void cli_screen::beep() {
    if (isatty(STDERR_FILENO))
        tell(QStringLiteral("\a"));
}

// Without a terminal to ask at, the operation goes on: the person who wrote the script wants its result.
void cli_screen::ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) {
    show(title.trimmed() + QLatin1Char('\n') + text);
    if (yes || !isatty(STDIN_FILENO)) {
        show(QStringLiteral("Answered: Yes"));
        return answer(true);
    }
    tell(QStringLiteral("[yes/no] "));
    waiting = std::move(answer);
    input = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    connect(input.get(), &QSocketNotifier::activated, this, &cli_screen::take_answer);
}

void cli_screen::choose_device(const QString& why,
                               std::function<void(const QString& address, const QString& name)> answer) {
    show(why);
    bluetooth.look([this, answer](const bluetooth_surroundings& surroundings) {
        show(why_unusable(surroundings.condition));
        if (!surroundings.devices.isEmpty())
            show(QStringLiteral("These devices are known:\n") + devices_as_text(surroundings.devices));
        show(QStringLiteral("Name the adapter: --bluetooth ADDRESS or --ble ADDRESS (brivant-cli "
                            "bluetooth-scan lists the devices "
                            "around), or --wifi HOST:PORT."));
        answer(QString(), QString());
    });
}

void cli_screen::take_answer() {
    char typed[64];
    const ssize_t size = read(STDIN_FILENO, typed, sizeof typed);
    const bool is_yes = size > 0 && (typed[0] == 'y' || typed[0] == 'Y');
    const bool is_no = size <= 0 || typed[0] == 'n' || typed[0] == 'N';
    if (!is_yes && !is_no)
        return tell(QStringLiteral("[yes/no] "));
    input->setEnabled(false);
    input.release()->deleteLater(); // it is the sender
    const auto answer = std::exchange(waiting, nullptr);
    answer(is_yes);
}

} // namespace brivant
