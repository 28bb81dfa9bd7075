#include "terminal/links_run.h"

#include "persistence/vehicles.h"
#include "terminal/output.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace brivant {

namespace {

struct word_of_command {
    const char* word;
    int fewest, most; // words behind it
};
constexpr word_of_command words_known[] = {{"list", 0, 0},         {"find", 0, 20},  {"use", 1, 1},
                                           {"name", 1, 2},         {"forget", 1, 1}, {"prefer", 1, 1},
                                           {"no-preference", 1, 1}};

QList<adapter_search::candidate> candidates_of(const QList<known_adapter>& adapters) {
    QList<adapter_search::candidate> candidates;
    for (const known_adapter& one : adapters)
        candidates += {one.where, one.name};
    return candidates;
}

QJsonObject as_json(const link_row& row) {
    QJsonArray vehicles;
    for (const int id : row.vehicles)
        vehicles += id;
    return {{"address", row.where.text()},
            {"kind", word_of_link(row.where.kind)},
            {"name", row.name},
            {"what", row.what},
            {"state", row.state},
            {"last_used", row.last_used},
            {"in_use", row.is_in_force},
            {"known", row.is_known},
            {"likely", row.is_likely},
            {"vehicles", vehicles}};
}

QString as_line(const link_row& row) {
    QStringList parts{row.what, row.state};
    if (!row.last_used.isEmpty())
        parts += QStringLiteral("last used %1").arg(row.last_used);
    parts.removeAll(QString());
    return QStringLiteral("%1 %2  %3  %4\n")
        .arg(row.is_in_force ? QStringLiteral("*") : QStringLiteral(" "), row.where.text(), row.name,
             parts.join(QStringLiteral("; ")));
}

QString found_as_lines(const QList<probed_adapter>& adapters) {
    QString text;
    for (const probed_adapter& one : adapters)
        text += QStringLiteral("%1  %2  %3 (%4 s)\n")
                    .arg(one.where.text(), one.greeting, one.name)
                    .arg(one.milliseconds / 1000.0, 0, 'f', 1);
    return text;
}

} // namespace

links_run::links_run(program_core& its_core) : car_run(its_core), finder(make_transport, its_core.clock) {
    QObject::connect(&finder, &adapter_finder::changed, this, &links_run::follow);
    QObject::connect(&finder, &adapter_finder::finished, this,
                     [this] { print_links(!finder.adapters().isEmpty()); });
}

QString links_run::wrong_words(const QStringList& words) {
    const QString what = words.value(0, QStringLiteral("list"));
    const auto known =
        std::find_if(std::begin(words_known), std::end(words_known),
                     [&](const word_of_command& one) { return what == QLatin1String(one.word); });
    const int behind = std::max(0, static_cast<int>(words.size()) - 1);
    if (known == std::end(words_known))
        return QStringLiteral(
            "links list, links find [PORT...], links use ADAPTER|any, links name ADAPTER NAME, "
            "links forget ADAPTER, links prefer ADAPTER or links no-preference ADAPTER?");
    if (behind < known->fewest || behind > known->most)
        return QStringLiteral("links %1 needs %2.")
            .arg(what, known->most == 0 ? QStringLiteral("nothing behind it")
                                        : QStringLiteral("an adapter: links list "
                                                         "names them"));
    for (const QString& port : what == QLatin1String("find") ? words.sliced(1) : QStringList()) {
        if (!adapter_address::of(interface_serial, port))
            return QStringLiteral("%1 is no serial port: /dev/ttyUSB0 is one.").arg(port);
    }
    return {};
}

void links_run::start() {
    begin();
    const QStringList& words = core.options.arguments;
    const QString what = words.value(0, QStringLiteral("list"));
    if (what == QLatin1String("list"))
        return list();
    if (what == QLatin1String("find"))
        return find();
    const QString problem = change(what, words.value(1));
    if (!problem.isEmpty()) {
        tell(problem + u'\n');
        return Q_EMIT finished(1);
    }
    print_links(true);
}

void links_run::list() {
    around.ports = serial_ports();
    service.look([this](const bluetooth_surroundings& found) {
        around.devices = found.devices;
        print_links(true);
    });
}

void links_run::find() {
    on_stop([this] { print_links(false); });
    finder.start(candidates_of(delegate.adapters.known()), core.options.arguments.sliced(1));
}

void links_run::follow() {
    const QString sentence = finder.sentence();
    if (sentence != std::exchange(told, sentence))
        tell(sentence + u'\n');
}

// Why it was not done, "" when it was.
QString links_run::change(const QString& what, const QString& word) {
    adapter_list& adapters = delegate.adapters;
    if (what == QLatin1String("use") && word == QLatin1String("any"))
        return adapters.use_any() ? QString() : core.defaults.problem();
    const auto known = adapters.named(word);
    const auto address = known ? known->where : adapter_address::of(word).value_or(adapter_address());
    if (address.where.isEmpty() || (!known && what != QLatin1String("use") && what != QLatin1String("name")))
        return QStringLiteral(
                   "There is no adapter %1 in the list: links list shows its names, and links find looks "
                   "for others. An address is written usb:/dev/ttyUSB0, ble:00:1D:A5:68:98:8B, "
                   "bluetooth:00:1D:A5:68:98:8B or wifi:192.168.0.10:35000.")
            .arg(word);
    bool is_stored = true;
    if (what == QLatin1String("use"))
        is_stored = adapters.use(address, known ? known->name : QString());
    else if (what == QLatin1String("name"))
        is_stored = adapters.rename(lasting(address), core.options.arguments.value(2));
    else if (what == QLatin1String("forget"))
        is_stored = adapters.forget(address);
    else
        is_stored = adapters.prefer(address, core.car.cur_veh_id(), what == QLatin1String("prefer"));
    return is_stored ? QString() : core.defaults.problem();
}

void links_run::print_links(bool done) {
    around.answers = finder.answers();
    finder.stop();
    const QList<link_row> rows =
        link_rows(delegate.adapters, delegate.link, core.defaults.value(setting::adapter_passports), around);
    if (core.options.json) {
        QJsonArray links;
        for (const link_row& row : rows)
            links += as_json(row);
        print_json(QJsonObject{{"links", links},
                               {"any", delegate.adapters.takes_any()},
                               {"done", done},
                               {"messages", told.isEmpty() ? QJsonArray() : QJsonArray{told}}});
    } else if (core.options.arguments.value(0) == QLatin1String("find")) {
        print(found_as_lines(finder.adapters()));
    } else {
        QString text;
        for (const link_row& row : rows)
            text += as_line(row);
        if (delegate.adapters.takes_any())
            text += QStringLiteral("Whatever of the known ones is there is used.\n");
        print(text.isEmpty() ? QStringLiteral("No adapter is known yet: links find looks for one.\n") : text);
    }
    leave();
    Q_EMIT finished(done ? 0 : 1);
}

find_run::find_run(program_core& its_core) : terminal_run(its_core), finder(make_transport, its_core.clock) {
    QObject::connect(&finder, &adapter_finder::changed, this, [this] {
        const QString sentence = finder.sentence();
        if (sentence != std::exchange(told, sentence))
            tell(sentence + u'\n');
    });
    QObject::connect(&finder, &adapter_finder::finished, this, &find_run::take);
}

void find_run::start() {
    on_stop([this] {
        finder.stop();
        Q_EMIT finished(1);
    });
    finder.start(candidates_of(known_adapters_in(core.defaults.value(setting::known_adapters))), {});
}

void find_run::take() {
    const QList<probed_adapter> adapters = finder.adapters();
    if (adapters.size() > 1)
        tell(found_as_lines(adapters) +
             QStringLiteral("Name one of them: --wifi HOST:PORT, --bluetooth, --ble or --serial.\n"));
    if (adapters.size() == 1)
        core.found = adapters.first();
    Q_EMIT finished(core.found ? 0 : 1);
}

} // namespace brivant
