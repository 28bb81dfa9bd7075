#include "shell/launch_options.h"

#include "formats/run_writer.h"
#include <algorithm>

namespace brivant {

namespace {

struct flag {
    const char* name;
    bool launch_options::*member;
};
constexpr flag flags[] = {{"--anonymous", &launch_options::anonymous},
                          {"--json", &launch_options::json},
                          {"--log", &launch_options::log},
                          {"--standard-reading", &launch_options::standard_reading},
                          {"--txt", &launch_options::as_text},
                          {"--yes", &launch_options::yes},
                          {"--help", &launch_options::help},
                          {"-h", &launch_options::help},
                          {"--version", &launch_options::version}};

struct given_link {
    const char* option;
    int kind;
    const char* form;
};
constexpr given_link given_links[] = {
    {"--wifi", interface_wifi,
     "HOST:PORT with a port from 1 to 65535, for example --wifi 192.168.0.10:35000"},
    {"--bluetooth", interface_bluetooth,
     "the address of a device, for example --bluetooth 00:1D:A5:68:98:8B"},
    {"--ble", interface_le, "the address of a device, for example --ble 00:1D:A5:68:98:8B"},
    {"--serial", interface_serial,
     "the device of a port, for example --serial /dev/ttyUSB0 or --serial /dev/ttyUSB0:115200"},
};

// One word that begins with "-". `value` is what stands after "=", or the next word for options that need
// one.
class option_words {
public:
    option_words(const QStringList& words, launch_options& target, QString& its_problem)
        : arguments(words), options(target), problem(its_problem) {}

    bool take_all() {
        for (index = 0; index < arguments.size(); ++index) {
            if (!take(arguments.at(index)))
                return false;
        }
        return true;
    }

private:
    bool take(const QString& word) {
        bool is_number = false;
        word.toInt(&is_number); // "-1" is a value
        if (is_number || !word.startsWith(QLatin1Char('-')))
            return take_command(word);
        const QString name = word.section(QLatin1Char('='), 0, 0);
        if (is_word_of_a_run(name))
            return take_word_of_a_run(word, name);
        if (const given_link* kind = kind_of_link(name))
            return choose_link(launch_options::link_choice::given) && take_address(*kind, value_of(word));
        if (name == QLatin1String("--demo"))
            return choose_link(launch_options::link_choice::demo) && take_car(word);
        if (name == QLatin1String("--profile"))
            return take_profile(value_of(word));
        if (name == QLatin1String("--format"))
            return take_format(value_of(word));
        if (name != word)
            return wrong(QStringLiteral("There is no option %1.").arg(word));
        if (name == QLatin1String("--simulate"))
            return choose_link(launch_options::link_choice::simulate);
        if (name == QLatin1String("--find"))
            return choose_link(launch_options::link_choice::find);
        if (name == QLatin1String("--metric") || name == QLatin1String("--imperial"))
            return take_units(name == QLatin1String("--metric"));
        for (const flag& known : flags) {
            if (name == QLatin1String(known.name))
                return options.*known.member = true;
        }
        return wrong(QStringLiteral("There is no option %1.").arg(name));
    }

    QString value_of(const QString& word) {
        const qsizetype equals = word.indexOf(QLatin1Char('='));
        if (equals >= 0)
            return word.sliced(equals + 1);
        return index + 1 < arguments.size() ? arguments.at(++index) : QString();
    }

    // The options of a sampling run stand behind its command, which reads them itself.
    bool is_word_of_a_run(const QString& name) const {
        static const QStringList names{"--pids", "--sweeps", "--seconds", "--rate",   "--store",
                                       "--fast", "--gentle", "--when",    "--before", "--until"};
        return !options.command.isEmpty() && names.contains(name);
    }

    bool take_word_of_a_run(const QString& word, const QString& name) {
        options.arguments += word;
        const bool is_alone = name == QLatin1String("--store") || name == QLatin1String("--fast") ||
                              name == QLatin1String("--gentle");
        if (word == name && !is_alone)
            options.arguments += value_of(word);
        return true;
    }

    bool take_command(const QString& word) {
        if (options.command.isEmpty())
            options.command = word;
        else
            options.arguments += word;
        return true;
    }

    bool choose_link(launch_options::link_choice choice) {
        if (options.link != launch_options::link_choice::as_stored)
            return wrong(
                QStringLiteral("Only one of --wifi, --bluetooth, --ble, --serial, --find, --demo and "
                               "--simulate can be chosen."));
        options.link = choice;
        return true;
    }

    static const given_link* kind_of_link(const QString& name) {
        const auto found =
            std::find_if(std::begin(given_links), std::end(given_links),
                         [&](const given_link& one) { return name == QLatin1String(one.option); });
        return found == std::end(given_links) ? nullptr : found;
    }

    bool take_address(const given_link& kind, const QString& text) {
        const auto address = adapter_address::of(kind.kind, text);
        if (!address)
            return wrong(
                QStringLiteral("%1 needs %2.").arg(QLatin1String(kind.option), QLatin1String(kind.form)));
        options.address = *address;
        return true;
    }

    bool take_car(const QString& word) {
        if (word.contains(QLatin1Char('=')))
            options.demo_car = word.section(QLatin1Char('='), 1);
        return !options.demo_car.isEmpty() || wrong(QStringLiteral("--demo= needs the name of a car."));
    }

    bool take_profile(const QString& folder) {
        options.profile = folder;
        return !folder.isEmpty() || wrong(QStringLiteral("--profile needs a folder."));
    }

    bool take_format(const QString& word) {
        options.format = word;
        if (run_format_of(word))
            return true;
        QStringList words;
        for (const run_format& one : run_formats())
            words += QLatin1String(one.word);
        return wrong(QStringLiteral("--format needs one of %1.").arg(words.join(QStringLiteral(", "))));
    }

    bool take_units(bool metric) {
        if (options.metric && *options.metric != metric)
            return wrong(QStringLiteral("Only one of --metric and --imperial can be chosen."));
        options.metric = metric;
        return true;
    }

    bool wrong(const QString& sentence) {
        problem = sentence;
        return false;
    }

    const QStringList& arguments;
    launch_options& options;
    QString& problem;
    qsizetype index = 0;
};

} // namespace

std::optional<launch_options> parse_launch_options(const QStringList& arguments, QString& problem) {
    launch_options options;
    if (!option_words(arguments, options, problem).take_all())
        return std::nullopt;
    return options;
}

QString launch_options_usage() {
    return QStringLiteral(
        "The link:\n"
        "  --wifi HOST:PORT      a Wi-Fi adapter (otherwise the link chosen in the preferences)\n"
        "  --bluetooth ADDRESS   a Bluetooth adapter\n"
        "  --ble ADDRESS         a Bluetooth LE adapter\n"
        "  --serial PORT[:BAUD]  a USB adapter, by its device; without BAUD the speed is found out\n"
        "  --find                whichever adapter is found\n"
        "  --demo[=CAR]          a car and an adapter inside the program; nothing is kept\n"
        "  --simulate            a stand-in adapter with a few fixed answers\n"
        "\nOther options:\n"
        "  --profile DIR         settings, documents and database below DIR\n"
        "  --metric, --imperial  the units of values\n"
        "  --standard-reading    results as SAE J1979 reads the car's replies\n"
        "  --anonymous           no VIN in reports and in the diagnostic log, but its maker's part\n"
        "  --log                 results are stored, whatever the preference says\n"
        "  --version, --help\n");
}

} // namespace brivant
