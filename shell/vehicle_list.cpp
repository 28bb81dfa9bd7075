#include "shell/vehicle_list.h"

#include "base/string_table.h"

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

} // namespace

vehicle_list::vehicle_list(car_state& its_car, mac_toolies& its_toolies)
    : car(its_car), defaults(its_toolies.settings()), db(its_toolies.store()) {}

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
    const int stored = db.add_update_DB({values.name, values.model_year, values.engine_volume},
                                        vehicles_table, is_new ? QString() : QString::number(veh_id));
    if (stored <= 0)
        return {-1, db.problem()};
    const int id = is_new ? stored : veh_id;
    if (photo.isNull() || store_vehicle_photo(db, id, photo) > 0)
        return {id, {}};
    return {id, QStringLiteral("The vehicle is stored, but its photo is not. %1").arg(db.problem())};
}

QString vehicle_list::deleteCar(int veh_id) {
    const QList<vehicle> vehicles = load_vehicles();
    const auto has_id = [veh_id](const vehicle& one) { return one.id == veh_id; };
    if (std::none_of(vehicles.begin(), vehicles.end(), has_id))
        return no_such_vehicle(veh_id);
    if (vehicles.size() == 1)
        return localised(QStringLiteral("TOAST_CANNOT_DELETE_VEH_ITEM"));
    const bool all_gone = delete_vehicle(db, veh_id);
    const QString problem = all_gone ? QString() : db.problem();
    const QList<vehicle> left = load_vehicles();
    if (std::any_of(left.begin(), left.end(), has_id))
        return problem;
    defaults.remove(setting::sample_set.of_vehicle(veh_id));
    const QString not_kept =
        is_current(veh_id) && !left.isEmpty() ? make_current(left.first().id) : QString();
    return problem.isEmpty() ? not_kept : problem;
}

QString vehicle_list::setCurrentCar(int veh_id) {
    return vehicle_with_id(db, veh_id) ? make_current(veh_id) : no_such_vehicle(veh_id);
}

QString vehicle_list::make_current(int veh_id) {
    car.make_current(veh_id, grab_pids_available(db, veh_id));
    if (current_changed)
        current_changed();
    defaults.set(setting::current_vehicle, veh_id);
    return defaults.synchronise()
               ? QString()
               : QStringLiteral("The vehicle is current until the program ends: the settings "
                                "file cannot be written.");
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
