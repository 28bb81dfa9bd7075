#include "expert/expert_commands.h"

#include "obd/reply_text.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

constexpr qsizetype longest_typed = 250;
const QString place_of_byte = QStringLiteral("{L}");

struct permanent_command {
    QLatin1String start; // without blanks, in upper case
    const char* what;
};

// clang-format off
constexpr std::array<permanent_command, 3> permanent_commands{{
    {QLatin1String("04"),    "clears the trouble codes, the freeze frame and the test results in the car"},
    {QLatin1String("ATPP"),  "changes a setting that the adapter keeps; a wrong one can make it unusable"},
    {QLatin1String("ATBRD"), "changes the speed at which the adapter talks; a wrong one cuts the link to it"},
}};
// clang-format on

bool is_sendable(QChar character) {
    return character >= u' ' && character <= u'~';
}

QString template_problem(const QString& text, const expert_script& script) {
    if (text.isEmpty())
        return QStringLiteral("Enter a command, for example 01 {L}.");
    const QString problem = command_problem(text);
    if (problem.isEmpty() && script.command(0).size() >= expert_script::longest_command)
        return QStringLiteral(
            "Too long: with the byte in the place of {L} a script's command has at most 19 characters.");
    return problem;
}

QString byte_problem(const QString& text) {
    return is_hex(text) && text.size() <= 2
               ? QString()
               : QStringLiteral("Enter one byte, 00 to FF: one or two of the digits 0 to 9 and A to F.");
}

} // namespace

QString command_problem(const QString& command) {
    if (command.trimmed().isEmpty())
        return QStringLiteral("There is no command.");
    if (command.size() > longest_typed)
        return QStringLiteral("The command is longer than %1 characters.").arg(longest_typed);
    if (!std::all_of(command.begin(), command.end(), is_sendable))
        return QStringLiteral(
            "The command holds a character that no adapter understands. Use plain letters, digits "
            "and signs.");
    return {};
}

QString permanent_change(const QString& command) {
    QString bare = command.toUpper();
    bare.removeIf([](QChar character) { return character <= u' '; });
    if (bare == QLatin1String("ATPPS"))
        return {}; // only shows the settings
    const auto found = std::find_if(permanent_commands.begin(), permanent_commands.end(),
                                    [&](const permanent_command& row) { return bare.startsWith(row.start); });
    return found == permanent_commands.end() ? QString() : QString::fromLatin1(found->what);
}

QString expert_script::command(int byte) const {
    return QString(obdCmd_script).replace(place_of_byte, convertByte2HexStr(static_cast<unsigned>(byte)));
}

int expert_script::first_byte() const {
    return static_cast<int>(convertStr2Byte(fromByte_script));
}

int expert_script::last_byte() const {
    return std::max(first_byte(), static_cast<int>(convertStr2Byte(toByte_script)));
}

std::optional<expert_script> check_script(const QStringList& values, QStringList& problems) {
    expert_script script;
    script.obdCmd_script = values.value(0).trimmed();
    script.fromByte_script = values.value(1).trimmed();
    script.toByte_script = values.value(2).trimmed();
    bool is_number = false;
    script.no_of_loops_script = values.value(3).trimmed().toInt(&is_number);
    const bool loops_are_good =
        is_number && script.no_of_loops_script >= 1 && script.no_of_loops_script <= expert_script::most_loops;

    problems = {template_problem(script.obdCmd_script, script), byte_problem(script.fromByte_script),
                byte_problem(script.toByte_script),
                loops_are_good
                    ? QString()
                    : QStringLiteral("Enter a number from 1 to %1.").arg(expert_script::most_loops)};
    const bool good =
        std::all_of(problems.begin(), problems.end(), [](const QString& text) { return text.isEmpty(); });
    return good ? std::optional(script) : std::nullopt;
}

QStringList stored_script(const user_defaults& defaults) {
    QStringList problems;
    const QStringList stored = defaults.value(setting::expert_script);
    return stored.size() == 4 && check_script(stored, problems) ? stored
                                                                : setting::expert_script.first_value();
}

void store_script(user_defaults& defaults, const QStringList& values) {
    defaults.set(setting::expert_script, values);
}

} // namespace brivant
