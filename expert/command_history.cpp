#include "expert/command_history.h"

#include "expert/expert_commands.h"

namespace brivant {

command_history::command_history(user_defaults& settings) : defaults(settings) {
    const QStringList stored = defaults.value(setting::expert_history);
    for (const QString& command : stored) {
        if (command_problem(command).isEmpty())
            commands += command;
    }
    commands = commands.last(std::min(commands.size(), most_commands));
    place = commands.size();
}

void command_history::add(const QString& command) {
    commands.removeAll(command);
    commands += command;
    if (commands.size() > most_commands)
        commands.removeFirst();
    place = commands.size();
    draft.clear();
    defaults.set(setting::expert_history, commands);
}

QString command_history::older(const QString& typed) {
    if (place == 0)
        return typed;
    if (place == commands.size())
        draft = typed;
    return commands.at(--place);
}

QString command_history::newer(const QString& typed) {
    if (place == commands.size())
        return typed;
    return ++place == commands.size() ? draft : commands.at(place);
}

} // namespace brivant
