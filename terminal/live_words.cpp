#include "terminal/live_words.h"

#include "obd/supported_pids.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

constexpr std::array<const char*, 4> commands{"log", "fuel", "o2", "boost"}; // in the order of the modes
constexpr qint64 most_sweeps = 1'000'000'000;
constexpr qint64 most_seconds = 2'000'000; // 23 days
constexpr qint64 slowest_rate = 86'400;
constexpr qint64 most_before = 600;
constexpr qsizetype most_pids = 64;

// Takes "--name VALUE" and "--name=VALUE" one after the other.
class word_taker {
public:
    word_taker(live_words& target, QString& its_problem) : asked(target), problem(its_problem) {}

    bool take_all(const QStringList& words) {
        for (qsizetype i = 0; i < words.size(); ++i) {
            const QString name = words.at(i).section(u'=', 0, 0);
            if (words.at(i) == QLatin1String("--store")) {
                asked.store = true;
                continue;
            }
            if (words.at(i) == QLatin1String("--fast") || words.at(i) == QLatin1String("--gentle")) {
                asked.speed = words.at(i) == QLatin1String("--fast") ? 2 : 1;
                continue;
            }
            const bool joined = name != words.at(i);
            const QString value = joined ? words.at(i).section(u'=', 1) : words.value(++i);
            if (!take(name, value))
                return false;
        }
        return put_trigger_together();
    }

private:
    bool take(const QString& name, const QString& value) {
        if (name == QLatin1String("--pids"))
            return take_pids(value);
        if (name == QLatin1String("--when"))
            return take_limit(name, value, when);
        if (name == QLatin1String("--until"))
            return take_limit(name, value, until);
        qint64 number = 0;
        if (name == QLatin1String("--before") && take_number(name, value, 1, most_before, number)) {
            before = static_cast<int>(number);
            return true;
        }
        if (name == QLatin1String("--sweeps")) {
            return take_number(name, value, 1, most_sweeps, asked.sweeps);
        } else if (name == QLatin1String("--seconds") && take_number(name, value, 1, most_seconds, number)) {
            asked.seconds = static_cast<int>(number);
            return true;
        } else if (name == QLatin1String("--rate") && take_number(name, value, -1, slowest_rate, number)) {
            asked.rate = static_cast<int>(number);
            return true;
        }
        if (problem.isEmpty())
            problem = QStringLiteral("What is %1? A run takes --pids, --sweeps, --seconds, --rate, --fast, "
                                     "--gentle, --store, --when, --before and --until.")
                          .arg(name);
        return false;
    }

    bool take_number(const QString& name, const QString& value, qint64 least, qint64 most, qint64& number) {
        bool ok = false;
        number = value.toLongLong(&ok);
        if (ok && number >= least && number <= most)
            return true;
        problem = QStringLiteral("%1 needs a number from %2 to %3.").arg(name).arg(least).arg(most);
        return false;
    }

    bool take_limit(const QString& name, const QString& value, std::optional<pid_limit>& limit) {
        limit = pid_limit_of(value);
        if (limit)
            return true;
        problem =
            QStringLiteral("%1 needs a PID, < or >, and a number, for example %1 \"0C>4000\".").arg(name);
        return false;
    }

    // They belong together, and to what is sampled.
    bool put_trigger_together() {
        if (!when && (until || before > 0))
            problem = QStringLiteral("--before and --until belong to --when.");
        else if (when && asked.store)
            problem = QStringLiteral("Only one of --store and --when can be chosen.");
        if (when)
            asked.trigger = store_trigger{*when, until, before};
        for (const auto& limit : {when, until})
            if (limit && !asked.pids.isEmpty() && !asked.pids.contains(limit->pid))
                problem = QStringLiteral("%1 is not among --pids.").arg(limit->pid);
        return problem.isEmpty();
    }

    bool take_pids(const QString& value) {
        for (const QString& piece : value.split(u',')) {
            const QString pid = piece.trimmed().toUpper();
            const auto item = split_sample_item(pid);
            // A range PID holds a map.
            const bool asks_for_a_value = item && item->pid == pid && pid.toInt(nullptr, 16) % 0x20 != 0;
            if (!asks_for_a_value || asked.pids.size() >= most_pids) {
                problem = QStringLiteral(
                    "--pids needs PIDs of two hexadecimal digits with commas between them, for "
                    "example --pids 0C,0D,11.");
                return false;
            }
            if (!asked.pids.contains(pid))
                asked.pids += pid;
        }
        return true;
    }

    live_words& asked;
    std::optional<pid_limit> when;
    std::optional<pid_limit> until;
    int before = 0;
    QString& problem;
};

} // namespace

bool is_live_command(const QString& command) {
    return std::any_of(commands.begin(), commands.end(),
                       [&](const char* name) { return QLatin1String(name) == command; });
}

std::optional<live_words> parse_live_words(const QString& command, const QStringList& words,
                                           QString& problem) {
    live_words asked;
    while (QLatin1String(commands[static_cast<size_t>(asked.mode)]) != command)
        ++asked.mode;
    if (!word_taker(asked, problem).take_all(words))
        return std::nullopt;
    if (asked.mode != 0 && !asked.pids.isEmpty())
        problem = QStringLiteral("%1 has PIDs of its own: --pids belongs to log.").arg(command);
    if (asked.sweeps > 0 && asked.seconds > 0)
        problem = QStringLiteral("Only one of --sweeps and --seconds can be chosen.");
    return problem.isEmpty() ? std::optional(asked) : std::nullopt;
}

QString live_commands_usage() {
    return QStringLiteral(
        "  log [--pids 0C,0D,...]\n"
        "                        live values as CSV, one line a sweep, until Ctrl-C; all PIDs in turn\n"
        "  fuel, boost, o2       the same for fuel economy, boost pressure, oxygen sensors\n"
        "      --sweeps N, --seconds S  how long a run lasts\n"
        "      --fast, --gentle  several values a request, as fast as the car allows, or with pauses\n"
        "      --store, --rate SECONDS  keep the sweeps in the database, all or one in so many seconds\n"
        "      --when \"0C>4000\" [--before S] [--until \"0C<1000\"]\n"
        "                        keep a log of each time that this comes true, with S seconds before it\n"
        "      a line on standard input, or SIGUSR1, puts a mark into the run\n");
}

} // namespace brivant
