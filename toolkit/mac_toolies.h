#pragma once

#include "base/adapter_facts.h"
#include "base/car_state.h"
#include "base/text_resources.h"
#include "base/user_defaults.h"
#include "obd/readiness.h"
#include "obd/readings/sampled_value.h"
#include "obd/reply.h"
#include "obd/supported_pids.h"
#include "persistence/database.h"

namespace brivant {

// The toolkit: everything that the controllers ask about replies, values, codes, vehicles and stored results,
// one line an operation. It reads what is known of adapter and car, and the user defaults, afresh and
// forwards to the pure modules and the database, which outlive it.
class mac_toolies {
public:
    mac_toolies(const adapter_facts& its_adapter, const car_state& its_car, user_defaults& settings,
                database& store);

    // Replies (obd/reply_text.h, obd/obd_messages.h, obd/ecu_names.h)
    obd_messages pullObdMsgs(const QString& reply) const;
    obd_groups pullObdMsgsGrouped(const obd_messages& messages) const;
    QString l_pullOBDFromSingleGroupedMsg(const QStringList& bodies) const;
    QString l_pull_ECU(const QString& header) const;
    bool isThisEngineHeader(const QString& header) const;
    qsizetype findEngineEcuIdx(const obd_groups& groups) const;
    QString encode_to_OBD(const QString& this_pid, double value) const;

    // Supported PIDs (obd/supported_pids.h)
    obd_groups grab_pids_available();
    bool checkIfSameVehicle(const obd_groups& available);
    void fixSamplePidsFornewVehicle(const obd_groups& available);
    void save_pids_2_sample_prefs(const QStringList& samples);
    // Stores the list with the current vehicle. False when it was not stored.
    bool save_pids_available(const obd_groups& available);

    // Values and names (obd/pid_translation.h, obd/pid_catalogue.h, obd/maker_values.h)
    QString translateResponse(const QString& reply) const;
    double get_OBDVal(const QString& reply) const;
    // Both in the reading that is shown (obd/readings/sampled_value.h).
    double shown_number(const QString& reply) const;
    QString shown_units(const QString& pid) const;
    sample_reading shown_reading() const;
    double get_PID_min_max(const QString& pid, bool get_max) const;
    QString get_pid_name(const QString& pid, bool with_pid) const;
    QString l_get_pid_name(const QString& pid, bool with_pid) const;
    QString get_pid_name_with_pid(const QString& pid) const;
    QString translateResponse_subaru(const QString& reply) const;

    // Trouble codes and readiness (obd/trouble_codes.h, obd/readiness.h)
    obd_groups l_workoutReadCodes(const reply& codes) const;
    QStringList work_reply_to_error_codes_pid(const QString& mode, const QString& reply) const;
    QList<readiness_row> handle_readiness_codes(const QString& these_flags) const;

    // Resource lists (base/text_resources.h)
    const text_resources& lists() const { return resources; }

    // Settings
    unit_system units() const;
    // True when results are shown as SAE J1979 reads the replies (obd/standard_reading).
    bool standard_reading() const;
    user_defaults& settings() const { return defaults; }
    // Writes the first values of what the preferences show.
    void setDefaults();

    // Vehicles and stored results (persistence/database.h, persistence/vehicles.h)
    database& store() { return db; }

private:
    const adapter_facts& adapter;
    const car_state& car;
    user_defaults& defaults;
    database& db;
    text_resources resources;
};

} // namespace brivant
