#include "shell/photo_file.h"
#include "shell/vehicle_list.h"
#include "terminal/profile_command.h"

#include <QJsonArray>
#include <array>

namespace brivant {

namespace {

const QString usage = QStringLiteral("The words after vehicles are: list; add NAME, edit NUMBER, each with "
                                     "year=YYYY engine=TEXT photo=FILE (edit also "
                                     "name=TEXT); delete NUMBER; use NUMBER.");

struct value_word {
    const char* key;
    QString vehicle_values::*value; // null for the photo
    QString (*check)(const QString& text);
};

// clang-format off
constexpr std::array<value_word, 4> value_words{{
    {"name",   &vehicle_values::name,          vehicle_list::name_problem},
    {"year",   &vehicle_values::model_year,    vehicle_list::year_problem},
    {"engine", &vehicle_values::engine_volume, vehicle_list::volume_problem},
    {"photo",  nullptr,                        [](const QString&) { return QString(); }},
}};
// clang-format on

const value_word* find_value_word(const QString& word) {
    for (const value_word& one : value_words) {
        if (word.section(u'=', 0, 0) == QLatin1String(one.key) && word.contains(u'='))
            return &one;
    }
    return nullptr;
}

QString wrong_value_words(const QStringList& words) {
    for (const QString& word : words) {
        const value_word* known = find_value_word(word);
        if (!known)
            return usage;
        if (const QString problem = known->check(word.section(u'=', 1)); !problem.isEmpty())
            return problem;
    }
    return {};
}

bool is_number(const QString& word) {
    bool ok = false;
    return word.toInt(&ok) > 0 && ok;
}

QJsonObject as_json(const vehicle_list& list, const vehicle& one) {
    return {{"id", one.id},
            {"name", one.name},
            {"model_year", one.model_year},
            {"engine_volume", one.engine_volume},
            {"current", list.is_current(one.id)}};
}

command_result listed(vehicle_list& list) {
    command_result result;
    QJsonArray rows;
    for (const vehicle& one : list.load_vehicles()) {
        rows += as_json(list, one);
        result.text +=
            QStringLiteral("%1 %2  %3\n")
                .arg(QLatin1Char(list.is_current(one.id) ? '*' : ' '))
                .arg(one.id, 4)
                .arg(QStringList{one.name, one.model_year, one.engine_volume}.join(QLatin1String("  ")));
    }
    result.json.insert(QStringLiteral("vehicles"), rows);
    return result;
}

// A vehicle without an id is added. `words`: what is to be changed in it.
command_result saved(vehicle_list& list, database& db, const vehicle& before, const QStringList& words) {
    vehicle_values values{before.name, before.model_year, before.engine_volume};
    QImage photo;
    for (const QString& word : words) {
        const value_word& known = *find_value_word(word);
        const QString text = word.section(u'=', 1);
        if (known.value) {
            values.*known.value = text;
            continue;
        }
        const photo_file read = read_photo_file(text);
        if (read.photo.isNull())
            return {{}, {}, read.problem};
        photo = read.photo;
    }
    const vehicle_list::saved outcome = list.saveCurCarVals(before.id, values, photo);
    command_result result{{}, {}, outcome.problem};
    if (const auto now = vehicle_with_id(db, outcome.id)) {
        result.text = QStringLiteral("%1\n").arg(now->id);
        result.json.insert(QStringLiteral("vehicle"), as_json(list, *now));
    }
    return result;
}

} // namespace

QString wrong_vehicles_words(const QStringList& words, bool yes) {
    const QString what = words.value(0);
    const QString which = words.value(1);
    if (what == QLatin1String("list") && words.size() == 1)
        return {};
    if (what == QLatin1String("add") && words.size() >= 2) {
        const QString problem = vehicle_list::name_problem(which);
        return problem.isEmpty() ? wrong_value_words(words.sliced(2)) : problem;
    }
    if (!is_number(which))
        return usage;
    if (what == QLatin1String("edit") && words.size() >= 3)
        return wrong_value_words(words.sliced(2));
    if (what == QLatin1String("use") && words.size() == 2)
        return {};
    if (what != QLatin1String("delete") || words.size() != 2)
        return usage;
    return yes ? QString()
               : QStringLiteral(
                     "vehicles delete deletes the vehicle with its photo and all its stored logs. Say that "
                     "you want it: vehicles delete %1 --yes")
                     .arg(which);
}

command_result run_vehicles(const profile_context& context, const QStringList& words) {
    database& db = context.core.db;
    if (!db.problem().isEmpty())
        return {{}, {}, db.problem()};
    vehicle_list& list = context.core.vehicles;
    const QString what = words.value(0);
    if (what == QLatin1String("list"))
        return listed(list);
    if (what == QLatin1String("add")) {
        vehicle added;
        added.name = words.value(1);
        return saved(list, db, added, words.sliced(2));
    }
    const int id = words.value(1).toInt();
    const auto before = vehicle_with_id(db, id);
    if (!before)
        return {{}, {}, QStringLiteral("There is no vehicle with the number %1.").arg(id)};
    if (what == QLatin1String("edit"))
        return saved(list, db, *before, words.sliced(2));
    command_result result;
    result.problem = what == QLatin1String("use") ? list.setCurrentCar(id) : list.deleteCar(id);
    if (list.deletion())
        result.problem = list.finish_deletion();
    result.json.insert(QStringLiteral("vehicle"), as_json(list, *before));
    return result;
}

} // namespace brivant
