#include "toolkit/mac_toolies.h"

#include "obd/ecu_names.h"
#include "obd/maker_values.h"
#include "obd/obd_messages.h"
#include "obd/pid_catalogue.h"
#include "obd/pid_translation.h"
#include "obd/trouble_codes.h"
#include "persistence/vehicles.h"

namespace brivant {

mac_toolies::mac_toolies(const adapter_facts& its_adapter, const car_state& its_car, user_defaults& settings,
                         database& store)
    : adapter(its_adapter), car(its_car), defaults(settings), db(store) {}

// --- replies -----------------------------------------------------------------------------------------------

obd_messages mac_toolies::pullObdMsgs(const QString& reply) const {
    return brivant::pullObdMsgs(reply, adapter.cur_protocol());
}

obd_groups mac_toolies::pullObdMsgsGrouped(const obd_messages& messages) const {
    return brivant::pullObdMsgsGrouped(messages, adapter.cur_protocol());
}

QString mac_toolies::l_pullOBDFromSingleGroupedMsg(const QStringList& bodies) const {
    return brivant::l_pullOBDFromSingleGroupedMsg(bodies, adapter.cur_protocol());
}

QString mac_toolies::l_pull_ECU(const QString& header) const {
    return brivant::l_pull_ECU(header, adapter.cur_protocol());
}

bool mac_toolies::isThisEngineHeader(const QString& header) const {
    return brivant::isThisEngineHeader(header, adapter.cur_protocol());
}

qsizetype mac_toolies::findEngineEcuIdx(const obd_groups& groups) const {
    return brivant::findEngineEcuIdx(groups, adapter.cur_protocol());
}

QString mac_toolies::encode_to_OBD(const QString& this_pid, double value) const {
    return brivant::encode_to_OBD(this_pid, value, units());
}

// --- supported PIDs ----------------------------------------------------------------------------------------

obd_groups mac_toolies::grab_pids_available() {
    return brivant::grab_pids_available(db, car.cur_veh_id());
}

bool mac_toolies::checkIfSameVehicle(const obd_groups& available) {
    return brivant::checkIfSameVehicle(db, car.cur_veh_id(), available, adapter.cur_protocol());
}

void mac_toolies::fixSamplePidsFornewVehicle(const obd_groups& available) {
    const QStringList samples = defaults.value(setting::sample_set.of_vehicle(car.cur_veh_id()));
    save_pids_2_sample_prefs(fixSamplePids(samples, available, adapter.cur_protocol()));
}

void mac_toolies::save_pids_2_sample_prefs(const QStringList& samples) {
    defaults.set(setting::sample_set.of_vehicle(car.cur_veh_id()), samples);
    defaults.synchronise();
}

bool mac_toolies::save_pids_available(const obd_groups& available) {
    return store_pids_available(db, car.cur_veh_id(), available);
}

// --- values and names --------------------------------------------------------------------------------------

QString mac_toolies::translateResponse(const QString& reply) const {
    return brivant::translateResponse(reply, units(), resources);
}

double mac_toolies::get_OBDVal(const QString& reply) const {
    return brivant::get_OBDVal(reply, units(), resources);
}

double mac_toolies::shown_number(const QString& reply) const {
    return sampled_number(reply, shown_reading(), resources);
}

QString mac_toolies::shown_units(const QString& pid) const {
    return sampled_unit(pid, shown_reading());
}

sample_reading mac_toolies::shown_reading() const {
    return {units(), standard_reading(), o2_banks_of(car.available_pids())};
}

double mac_toolies::get_PID_min_max(const QString& pid, bool get_max) const {
    return brivant::get_PID_min_max(pid, get_max, units());
}

QString mac_toolies::get_pid_name(const QString& pid, bool with_pid) const {
    return brivant::get_pid_name(pid, with_pid, resources);
}

QString mac_toolies::l_get_pid_name(const QString& pid, bool with_pid) const {
    return brivant::l_get_pid_name(pid, with_pid, resources);
}

QString mac_toolies::get_pid_name_with_pid(const QString& pid) const {
    return brivant::get_pid_name_with_pid(pid, resources, o2_banks_of(car.available_pids()));
}

QString mac_toolies::translateResponse_subaru(const QString& reply) const {
    return brivant::translateResponse_subaru(reply, units(), resources);
}

// --- trouble codes and readiness ---------------------------------------------------------------------------

obd_groups mac_toolies::l_workoutReadCodes(const reply& codes) const {
    return brivant::l_workoutReadCodes(codes);
}

QStringList mac_toolies::work_reply_to_error_codes_pid(const QString& mode, const QString& reply) const {
    return brivant::work_reply_to_error_codes_pid(mode, reply, adapter.protocol_description());
}

QList<readiness_row> mac_toolies::handle_readiness_codes(const QString& these_flags) const {
    return brivant::handle_readiness_codes(these_flags, resources);
}

// --- settings ----------------------------------------------------------------------------------------------

unit_system mac_toolies::units() const {
    return defaults.value(setting::metric_units) ? unit_system::metric : unit_system::imperial;
}

bool mac_toolies::standard_reading() const {
    return defaults.value(setting::standard_reading);
}

void mac_toolies::setDefaults() {
    defaults.store_first_values({setting::interface_kind, setting::wifi_ip, setting::wifi_port,
                                 setting::metric_units, setting::time_stamps, setting::sample_rate});
    defaults.choose(setting::log_runs, true); // on purpose not the value of a first start
    defaults.choose(setting::standard_reading, setting::standard_reading.first_value());
    save_pids_2_sample_prefs(setting::sample_set.first_value());
}

} // namespace brivant
