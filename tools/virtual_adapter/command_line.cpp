#include "tools/virtual_adapter/command_line.h"

#include "tools/virtual_adapter/car_catalogue.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace virtual_adapter {

namespace {

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
    {"car",            "CAR",     "can11",       "Name of a car that is built in, or a car file."},
    {"list-cars",      nullptr,   nullptr,       "Print the names of the cars that are built in."},
    {"still",          nullptr,   nullptr,       "The car keeps driving 60 km/h: values stay put."},
    {"log",            nullptr,   nullptr,       "Print every command and its reply on standard error."},
    {"banner",         "TEXT",    "ELM327 v1.5", "What AT Z and AT I answer."},
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
            QStringLiteral("An ELM327 adapter with a car behind it, on a TCP port."));
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
        m_wish.car = text("car");
        m_wish.still = is_set("still");
        m_wish.log = is_set("log");

        m_wish.options.banner = text("banner").toStdString();
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
