// Any text as the settings file, and as the four texts of a script: what is read from it is bounded, and a
// script that passes the checks sends commands that fit.
//
// An input is the file. Its first four lines are also taken for a script: template, from, to, loops.

#include "base/console_log.h"
#include "expert/expert_commands.h"
#include "shell/known_adapter.h"
#include "shell/preferences.h"
#include "tests/fuzz/must_hold.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

namespace brivant {

namespace {

void reading(const user_defaults& defaults) {
    for (const setting_row* row : setting::all) {
        const QVariant value = defaults.value_in_force(*row);
        must_hold(value.isValid(), "every setting has a value");
        must_hold(row->type != setting_row::kind::text || value.toString().size() <= row->bound.longest,
                  "a text is bounded");
    }
    const int kind = defaults.value(setting::interface_kind);
    must_hold(kind == 5 || kind == 6, "a link is Bluetooth or Wi-Fi");
    for (const known_adapter& one : known_adapters_in(defaults.value(setting::known_adapters)))
        must_hold(adapter_address::of(one.where.text()) == one.where, "a known adapter has an address");
    if (const auto link = adapter_address::of(defaults.value(setting::link)))
        must_hold(adapter_address::of(link->text()) == link, "a link is written and read again");
    for (const setting::text& typed : {setting::wifi_ip, setting::wifi_port}) {
        const QString text = defaults.value(typed);
        must_hold(preferences::address_problem(text).size() < 300 &&
                      preferences::port_problem(text).size() < 300,
                  "what is wrong is a sentence");
    }
}

void checking(const QStringList& values) {
    QStringList problems;
    const std::optional<expert_script> script = check_script(values, problems);
    must_hold(script.has_value() == problems.join(QString()).isEmpty(),
              "a script is good, or it is said why not");
    if (!script)
        return;
    must_hold(script->no_of_loops_script >= 1 && script->no_of_loops_script <= expert_script::most_loops &&
                  script->commands_in_all() >= 1 && script->last_byte() <= 0xFF,
              "a script ends");
    for (int byte = script->first_byte(); byte <= script->last_byte(); ++byte) {
        const QString command = script->command(byte);
        must_hold(command.size() < expert_script::longest_command && command_problem(command).isEmpty(),
                  "each of its commands can be sent");
        permanent_change(command);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/settings_fuzz-XXXXXX"));
    static const bool is_silent = (silence_console_log(), true);
    must_hold(is_silent && folder.isValid(), "there is a folder in memory");
    // A name of its own each time: the settings of a file are kept in memory as long as the process runs.
    static unsigned number = 0;
    const QString path = folder.filePath(QString::number(++number) + QStringLiteral(".ini"));
    QFile file(path);
    must_hold(file.open(QIODevice::WriteOnly), "the file can be written");
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();

    const user_defaults defaults(path);
    reading(defaults);
    checking(stored_script(defaults));
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checking(QString::fromUtf8(bytes).split(u'\n').mid(0, 4));
    QFile::remove(path);
    return 0;
}

} // namespace brivant
