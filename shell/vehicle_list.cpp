#include "shell/vehicle_list.h"

#include "base/string_table.h"
#include "base/work_a_moment.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype longest_name = 60;
constexpr qsizetype longest_volume = 20;
constexpr int first_year = 1900;
constexpr int last_year = 2099;

const QString vehicles_table = QStringLiteral("VEHICLES");

bool has_control_characters(const QString& text) {
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.category() == QChar::Other_Control; });
}

QString no_such_vehicle(int veh_id) {
    return QStringLiteral("There is no vehicle with the number %1.").arg(veh_id);
}

// The statements for the values take no apostrophe; the keyed update does.
int store_values(database& db, int veh_id, const vehicle_values& values) {
    const QStringList texts{values.name, values.model_year, values.engine_volume};
    QStringList plain = texts;
    plain.replaceInStrings(QStringLiteral("'"), QString());
    const bool is_new = veh_id < 0;
    if (is_new || plain == texts) {
        const int stored =
            db.add_update_DB(plain, vehicles_table, is_new ? QString() : QString::number(veh_id));
        if (stored <= 0 || plain == texts)
            return stored;
        veh_id = stored;
    }
    return db.update_tableInDB2(
               {QStringLiteral("NAME"), QStringLiteral("MODEL_YEAR"), QStringLiteral("ENG_VOL")}, texts,
               vehicles_table, QStringLiteral("VEH_ID"), QString::number(veh_id))
               ? veh_id
               : -1;
}

} // namespace

vehicle_list::vehicle_list(car_state& its_car, mac_toolies& its_toolies, timers& time_source)
    : car(its_car), defaults(its_toolies.settings()), db(its_toolies.store()), clock(time_source) {}

QList<vehicle> vehicle_list::load_vehicles() {
    return all_vehicles(db);
}

int vehicle_list::count_of_logs(int veh_id) const {
    const auto rows =
        db.retrieve_from_DB(QStringLiteral("SELECT COUNT(*) FROM LOGGIES where VEH_ID = %1").arg(veh_id));
    return rows.isEmpty() ? 0 : rows.first().value(0).toInt();
}

vehicle_list::saved vehicle_list::saveCurCarVals(int veh_id, const vehicle_values& values,
                                                 const QImage& photo) {
    const bool is_new = veh_id < 0;
    if (!is_new && !vehicle_with_id(db, veh_id))
        return {-1, no_such_vehicle(veh_id)};
    int id = veh_id;
    const bool is_stored = db.change([&](sqlite_connection&) {
        const int stored = store_values(db, veh_id, values);
        id = is_new ? stored : veh_id;
        return stored > 0 && (photo.isNull() || store_vehicle_photo(db, id, photo) > 0);
    });
    return is_stored ? saved{id, {}} : saved{-1, db.problem()};
}

QString vehicle_list::deleteCar(int veh_id) {
    const QList<vehicle> vehicles = load_vehicles();
    const auto has_id = [veh_id](const vehicle& one) { return one.id == veh_id; };
    if (std::none_of(vehicles.begin(), vehicles.end(), has_id))
        return no_such_vehicle(veh_id);
    if (vehicles.size() == 1)
        return localised(QStringLiteral("TOAST_CANNOT_DELETE_VEH_ITEM"));
    if (going)
        return QStringLiteral("Wait until the other vehicle is deleted.");
    going = std::make_unique<vehicle_deletion>(db, veh_id);
    if (!work_a_moment([this] { return going->step(); }))
        return end_deletion();
    next_slice = clock.one_shot(0, [this] { delete_slice(); });
    return hand_over(veh_id);
}

void vehicle_list::delete_slice() {
    const bool more = work_a_moment([this] { return going->step(); });
    if (more)
        next_slice = clock.one_shot(0, [this] { delete_slice(); });
    const QString problem = more ? QString() : end_deletion();
    if (deletion_changed)
        deletion_changed();
    if (!problem.isEmpty() && deletion_failed)
        deletion_failed(problem);
}

QString vehicle_list::finish_deletion() {
    if (!going)
        return {};
    while (going->step()) {
    }
    return end_deletion();
}

QString vehicle_list::end_deletion() {
    next_slice.reset();
    const auto ended = std::move(going);
    if (ended->has_failed())
        return db.problem();
    defaults.remove(setting::sample_set.of_vehicle(ended->veh_id()));
    return hand_over(ended->veh_id());
}

// The vehicle is gone or going.
QString vehicle_list::hand_over(int veh_id) {
    if (!is_current(veh_id))
        return {};
    for (const vehicle& one : load_vehicles()) {
        if (one.id != veh_id)
            return make_current(one.id);
    }
    return {};
}

QString vehicle_list::setCurrentCar(int veh_id) {
    if (is_going(veh_id))
        return QStringLiteral("This vehicle is being deleted.");
    return vehicle_with_id(db, veh_id) ? make_current(veh_id) : no_such_vehicle(veh_id);
}

QString vehicle_list::make_current(int veh_id) {
    car.make_current(veh_id, grab_pids_available(db, veh_id));
    if (current_changed)
        current_changed();
    defaults.set(setting::current_vehicle, veh_id);
    return defaults.synchronise()
               ? QString()
               : QStringLiteral("The vehicle is current until the program ends. ") + defaults.problem();
}

QString vehicle_list::name_problem(const QString& name) {
    if (name.trimmed().isEmpty())
        return QStringLiteral("Give the vehicle a name.");
    if (has_control_characters(name))
        return QStringLiteral("A name has letters, digits and signs only.");
    if (name.size() > longest_name)
        return QStringLiteral("A name has at most %1 characters.").arg(longest_name);
    return {};
}

QString vehicle_list::year_problem(const QString& year) {
    const bool digits = year.size() == 4 &&
                        std::all_of(year.begin(), year.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    const int number = digits ? year.toInt() : 0;
    return year.isEmpty() || (number >= first_year && number <= last_year)
               ? QString()
               : QStringLiteral("A model year has four digits, for example 2012.");
}

QString vehicle_list::volume_problem(const QString& volume) {
    if (volume.isEmpty())
        return {};
    if (volume.size() > longest_volume || has_control_characters(volume))
        return QStringLiteral("A displacement has at most %1 characters.").arg(longest_volume);
    qsizetype digits = 0;
    while (digits < volume.size() && QStringLiteral("0123456789.,").contains(volume.at(digits)))
        ++digits;
    bool is_number = false;
    QString(volume.first(digits)).replace(u',', u'.').toDouble(&is_number);
    return is_number ? QString()
                     : QStringLiteral("A displacement begins with a number, for example 3.0 Lts.");
}

} // namespace brivant
