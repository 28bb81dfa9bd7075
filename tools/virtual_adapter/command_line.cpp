#include "tools/virtual_adapter/command_line.h"

#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/hex_digit.h"
#include "tools/virtual_adapter/kinds.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace virtual_adapter {

namespace {

constexpr int slowest_baud = 9600;
constexpr int fastest_baud = 2'000'000;
constexpr int most = 1'000'000; // of anything counted, and of milliseconds

struct option {
    const char* name;
    const char* value; // nullptr for a switch
    const char* fallback;
    const char* text;
};

// clang-format off
const option options[] = {
    {"port",           "N",       "35000",       "TCP port; 0 takes any free one."},
    {"listen",         "ADDRESS", "127.0.0.1",   "Address to listen on."},
    {"pty",            nullptr,   nullptr,       "A serial port (pseudo-terminal) instead: its path is printed."},
    {"car",            "CAR",     "can11",       "Name of a car that is built in, or a car file."},
    {"list-cars",      nullptr,   nullptr,       "Print the names of the cars that are built in."},
    {"still",          nullptr,   nullptr,       "The car keeps driving 60 km/h: values stay put."},
    {"log",            nullptr,   nullptr,       "Print every command and its reply on standard error."},
    {"banner",         "TEXT",    "ELM327 v1.5", "What AT Z and AT I answer."},
    {"kind",           "KIND",    "",            "Take time like elm327-v1.4, clone-2.1, wifi, ble or stn."},
    {"baud",           "N",       "",            "Serial speed of that kind and of --pty, 9600 to 2000000."},
    {"ecu-delay",      "MS,...",  "",            "What each ECU needs for an answer; the last is for all others."},
    {"ecu-spread",     "MS",      "",            "Up to that much more."},
    {"round-trip",     "MS",      "",            "What radio or network takes there and back."},
    {"jitter",         "MS",      "",            "Up to that much more."},
    {"clone-fault",    "FAULT",   "",            "A fault of cheap copies; may be given several times."},
    {"ceiling",        "SET",     "",            "Print the most values a second of these PIDs (0C,0D), and leave."},
    {"protocol",       "P",       "0",           "Protocol stored in the adapter: 0, 3, A6, ..."},
    {"padded",         nullptr,   nullptr,       "Show CAN frames with all eight bytes."},
    {"delay",          "MS",      "0",           "Work that long on each command; a character interrupts."},
    {"split",          nullptr,   nullptr,       "Send every byte by itself."},
    {"glue",           "N",       "0",           "Hold back the N-th reply and send it with the next."},
    {"lose-line",      "N",       "0",           "Lose the N-th line."},
    {"lose-every",     "N",       "0",           "Lose every N-th line."},
    {"garbage-before", "TEXT",    "",            "Send that in front of a reply."},
    {"garbage-inside", "TEXT",    "",            "Send that in the middle of a reply."},
    {"garbage-every",  "N",       "1",           "Garbage only in every N-th reply."},
    {"late",           "N:MS",    "",            "The N-th reply and all behind it are held up that long."},
    {"silent-from",    "N",       "0",           "No answer from the N-th command on."},
    {"cut-after",      "N",       "0",           "Close the link after the N-th answer."},
    {"refuse",         "COMMAND", "",            "Answer \"?\" to that command; may be given several times."},
    {"reset-closes",   nullptr,   nullptr,       "AT Z closes the link."},
    {"hangs-on",       "COMMAND", "",            "Fall silent at that command; may be given several times."},
};
// clang-format on

class reader {
public:
    reader() {
        m_parser.setApplicationDescription(
            QStringLiteral("An ELM327 adapter with a car behind it, on a TCP port or a serial port."));
        for (const option& o : options) {
            QCommandLineOption made(QLatin1String(o.name), QLatin1String(o.text));
            if (o.value != nullptr) {
                made.setValueName(QLatin1String(o.value));
                if (*o.fallback != '\0')
                    made.setDefaultValue(QLatin1String(o.fallback));
            }
            m_parser.addOption(made);
        }
        m_parser.addHelpOption();
        m_parser.addVersionOption();
    }

    wishes read(const QStringList& arguments) {
        if (!m_parser.parse(arguments))
            complain(m_parser.errorText());
        else if (!m_parser.positionalArguments().isEmpty())
            complain(QStringLiteral("Unexpected argument \"%1\".")
                         .arg(m_parser.positionalArguments().constFirst()));
        else if (is_set("help"))
            m_wish.print_and_leave = m_parser.helpText();
        else if (is_set("version"))
            m_wish.print_and_leave =
                QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion();
        else if (is_set("list-cars"))
            m_wish.print_and_leave = built_in_cars().join(u'\n');
        else
            read_values();
        return std::move(m_wish);
    }

private:
    void read_values() {
        m_wish.port = quint16(number("port", 65535));
        if (!m_wish.address.setAddress(text("listen")))
            complain(QStringLiteral("\"%1\" is not an address.").arg(text("listen")));
        m_wish.pty = is_set("pty");
        if (m_wish.pty && is_set("baud"))
            read_pty_speed();
        m_wish.car = text("car");
        m_wish.still = is_set("still");
        m_wish.log = is_set("log");

        if (is_set("kind"))
            read_kind();
        if (is_set("banner") || !is_set("kind"))
            m_wish.options.banner = text("banner").toStdString();
        read_timing();
        for (const QString& name : m_parser.values(QStringLiteral("clone-fault")))
            if (!m_wish.what.clone.add(name.toStdString()))
                complain(QStringLiteral("\"%1\" is not one of the faults %2.")
                             .arg(name, joined(clone_faults::names())));
        read_ceiling();
        m_wish.options.pad_single_frames = is_set("padded");
        read_protocol(text("protocol").toUpper());

        faults& what = m_wish.what;
        what.delay_ms = number("delay");
        what.split = is_set("split");
        what.glue_reply = number("glue");
        what.lose_line = number("lose-line");
        what.lose_every = number("lose-every");
        what.garbage_before = text("garbage-before").toStdString();
        what.garbage_inside = text("garbage-inside").toStdString();
        what.garbage_every = number("garbage-every");
        what.silent_from = number("silent-from");
        what.cut_after = number("cut-after");
        what.reset_closes = is_set("reset-closes");
        what.refused = commands("refuse");
        what.hangs_on = commands("hangs-on");
        if (const QStringList late = text("late").split(u':'); is_set("late")) {
            what.late_reply = checked(late.constFirst(), "late", most);
            what.late_ms = checked(late.constLast(), "late", most);
            if (late.size() != 2)
                complain(QStringLiteral("--late takes two numbers, N:MS."));
        }
    }

    std::vector<std::string> commands(const char* name) const {
        std::vector<std::string> made;
        for (const QString& command : m_parser.values(QLatin1String(name)))
            made.push_back(command.toUpper().remove(u' ').toStdString());
        return made;
    }

    static QString joined(const std::vector<std::string_view>& names) {
        QStringList words;
        for (const std::string_view name : names)
            words += QString::fromLatin1(name.data(), qsizetype(name.size()));
        return words.join(QStringLiteral(", "));
    }

    void read_kind() {
        if (const auto known = adapter_of_kind(text("kind").toStdString()))
            m_wish.options = *known;
        else
            complain(QStringLiteral("\"%1\" is not one of the kinds %2.")
                         .arg(text("kind"), joined(adapter_kinds())));
    }

    // Changes to the numbers of the kind.
    void read_timing() {
        for (const char* name : {"baud", "ecu-delay", "ecu-spread", "round-trip", "jitter", "ceiling"})
            if (is_set(name) && !m_wish.options.time && !(m_wish.pty && name == QLatin1String("baud")))
                return complain(QStringLiteral("--%1 needs --kind.").arg(QLatin1String(name)));
        if (!m_wish.options.time)
            return;
        timing& takes = *m_wish.options.time;
        if (is_set("baud") && (takes.baud = number("baud", fastest_baud)) < slowest_baud)
            complain(QStringLiteral("--baud: less than %1.").arg(slowest_baud));
        if (is_set("ecu-delay")) {
            takes.ecu_ms.clear();
            for (const QString& word : text("ecu-delay").split(u','))
                takes.ecu_ms.push_back(checked(word, "ecu-delay", most));
        }
        if (is_set("ecu-spread"))
            takes.ecu_spread_ms = number("ecu-spread");
        if (is_set("round-trip"))
            takes.round_trip_ms = number("round-trip");
        if (is_set("jitter"))
            takes.jitter_ms = number("jitter");
    }

    void read_pty_speed() {
        m_wish.pty_speed = number("baud", fastest_baud);
        if (!pty_adapter::knows_speed(m_wish.pty_speed))
            complain(QStringLiteral("--baud: a serial port has no speed \"%1\".").arg(text("baud")));
    }

    void read_ceiling() {
        m_wish.shows_ceiling = is_set("ceiling");
        if (!m_wish.shows_ceiling)
            return;
        for (const QString& word : text("ceiling").split(u',')) {
            const std::optional<std::uint32_t> pid = hex_number(word.trimmed().toUpper().toStdString());
            if (!pid || *pid > 0xFF)
                complain(QStringLiteral("--ceiling: \"%1\" is not a PID.").arg(word));
            else
                m_wish.ceiling_of.push_back(std::uint8_t(*pid));
        }
    }

    void read_protocol(QString number) {
        m_wish.options.stored_automatic = number.startsWith(u'A') && number.size() == 2;
        if (m_wish.options.stored_automatic)
            number.remove(0, 1);
        bool good = false;
        m_wish.options.stored_protocol = number.toInt(&good, 16);
        if (!good || number.size() != 1 ||
            (m_wish.options.stored_protocol != 0 && find_protocol(m_wish.options.stored_protocol) == nullptr))
            complain(QStringLiteral("\"%1\" is not a protocol.").arg(text("protocol")));
    }

    bool is_set(const char* name) const { return m_parser.isSet(QLatin1String(name)); }
    QString text(const char* name) const { return m_parser.value(QLatin1String(name)); }
    int number(const char* name, int highest = most) { return checked(text(name), name, highest); }

    int checked(const QString& word, const char* name, int highest) {
        bool good = false;
        const int value = word.toInt(&good);
        if (good && value >= 0 && value <= highest)
            return value;
        complain(QStringLiteral("--%1: \"%2\" is not a number from 0 to %3.")
                     .arg(QLatin1String(name), word)
                     .arg(highest));
        return 0;
    }

    void complain(const QString& what) {
        if (m_wish.mistake.isEmpty())
            m_wish.mistake = what;
    }

    QCommandLineParser m_parser;
    wishes m_wish;
};

} // namespace

wishes read_command_line(const QStringList& arguments) {
    return reader().read(arguments);
}

} // namespace virtual_adapter
