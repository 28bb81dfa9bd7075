#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>
#include <optional>
#include <string_view>

namespace brivant {

// A row of the table of settings.
struct setting_row {
    enum class kind { flag, number, text, texts };
    enum class set_by { person, program };
    struct bounds {
        qsizetype longest = 4096;                    // characters of a text
        std::optional<int> (*usable)(int) = nullptr; // what is made of a number, nothing of one of no use
    };

    const char* key; // in the settings file; "%d" is the number of a vehicle
    kind type;
    const char* first; // the value while the file holds none that can be used; commas between several texts
    set_by who;        // the person (in the preferences, or by "settings set"), or the program alone
    const char* words; // for the person: what a value is
    bounds bound;
    int vehicle = -1; // whose, where the key names one

    QString file_key() const;
    // A text as a value of this kind: "true", "5", "0D,11".
    QVariant value_of(const QString& text) const;
    QVariant first_value() const { return value_of(QLatin1String(first)); }
    // What the file holds, within bounds; an invalid value when it cannot be used.
    QVariant checked(const QVariant& stored) const;

    friend bool operator==(const setting_row& one, const setting_row& other) {
        return std::string_view(one.key) == other.key; // each source has literals of its own
    }
};

// What readers and writers of a setting name it by.
template <typename T>
struct typed_setting : setting_row {
    constexpr typed_setting(const char* its_key, const char* its_first, set_by its_setter,
                            const char* its_words, bounds its_bounds = {})
        : setting_row{its_key, kind_of_type(), its_first, its_setter, its_words, its_bounds} {}

    typed_setting of_vehicle(int id) const {
        typed_setting its_own = *this;
        its_own.vehicle = id;
        return its_own;
    }
    T first_value() const { return qvariant_cast<T>(setting_row::first_value()); }

private:
    static constexpr kind kind_of_type() {
        if constexpr (std::is_same_v<T, bool>)
            return kind::flag;
        else if constexpr (std::is_same_v<T, int>)
            return kind::number;
        else
            return std::is_same_v<T, QString> ? kind::text : kind::texts;
    }
};

// The table: every setting by the program's name for it.
namespace setting {

using flag = typed_setting<bool>;
using number = typed_setting<int>;
using text = typed_setting<QString>;
using texts = typed_setting<QStringList>;
inline constexpr auto person = setting_row::set_by::person;
inline constexpr auto program = setting_row::set_by::program;

// What is not Bluetooth is Wi-Fi, but for 0.
constexpr std::optional<int> link_number(int stored) {
    return stored == 0 ? std::nullopt : std::optional(stored == 5 ? 5 : 6);
}
constexpr std::optional<int> positive(int stored) {
    return stored > 0 ? std::optional(stored) : std::nullopt;
}

constexpr std::optional<int> speed_number(int stored) {
    return stored >= 0 && stored <= 2 ? std::optional(stored) : std::nullopt;
}

// Seconds, -1 for as fast as the adapter answers.
inline constexpr std::array sample_rates{-1, 10, 30, 60, 120, 300};

// clang-format off
inline constexpr number interface_kind    {"BV_interface",         "5",               person,
    "5 (Bluetooth) or 6 (Wi-Fi)", {.usable = link_number}};
inline constexpr text   link              {"BV_link",              "",                person,
    "a USB or Bluetooth LE adapter, which goes first: usb:/dev/..., ble:ADDRESS or any (that is there)",
    {.longest = 300}};
inline constexpr text   wifi_ip           {"wifi_IP",              "192.168.0.10",    person,
    "the address of the Wi-Fi adapter", {.longest = 64}}; // IPv6 whole, with the name of an interface
inline constexpr text   wifi_port         {"wifi_port",            "35000",           person,
    "its TCP port", {.longest = 10}};
inline constexpr flag   metric_units      {"BV_metric_units",      "false",           person,
    "true for metric units"};
inline constexpr flag   log_runs          {"BV_log_runs",          "false",           person,
    "true to store results and runs"};
inline constexpr flag   time_stamps       {"BV_log_timeStamp",     "false",           person,
    "true for the time of each sample in exports"};
inline constexpr number sample_rate       {"BV_sample_rate",       "-1",              person,
    "-1 (as fast as available) or one of these numbers of seconds: 10, 30, 60, 120, 300", {.usable = positive}};
inline constexpr number sampling_speed    {"BV_sampling_speed",    "0",               person,
    "how live data are asked for: 0 (one PID a request), 1 (fast, but gently) or 2 (as fast as the car allows)",
    {.usable = speed_number}};
inline constexpr texts  pid_rates         {"BV_pid_rates",         "",                person,
    "PIDs that a fast run asks for in one sweep of N: 05/10,2F/60"};
inline constexpr texts  known_adapters    {"BV_adapters",          "",                program,
    "the adapters that were used or named"};
inline constexpr texts  adapter_passports {"BV_adapter_passports", "",                program,
    "what adapters were found to be able to"};
inline constexpr flag   standard_reading  {"BV_standard_reading",  "false",           person,
    "true to show what SAE J1979 reads in the replies"};
inline constexpr flag   anonymous         {"BV_anonymous",         "false",           person,
    "true to leave only its first three characters of a VIN in reports and in the diagnostic log, and no "
    "position in exports"};
inline constexpr flag   store_position    {"BV_store_position",    "true",            person,
    "true to store with runs where the car is, while gpsd tells it"};
inline constexpr text   gpsd              {"BV_gpsd",              "localhost:2947",  person,
    "where gpsd answers: host:port", {.longest = 300}}; // an IPv6 address in brackets
inline constexpr text   bluetooth_address {"BV_last_BT",           "",                person,
    "the address of the Bluetooth adapter used last"};
inline constexpr text   bluetooth_name    {"Last_BT_device",       "",                person,
    "its name", {.longest = 100}};
inline constexpr text   update_server     {"BV_update_server",     "",                person,
    "where update-check asks"};
inline constexpr number current_vehicle   {"BV_cur_veh_id",        "-1",              person,
    "the number of a vehicle: vehicles list tells them", {.usable = positive}};
inline constexpr texts  sample_set        {"pidsSampleArray_%d",   "0D,11,0C,05",     person,
    "the sampled PIDs of vehicle N: 0D,11,0C|7E8"};
inline constexpr texts  older_sample_set  {"pidsArray",            "",                program,
    "the sampled PIDs of every vehicle, of an older version"};
inline constexpr texts  expert_history    {"BV_expert_history",    "",                program,
    "the commands typed last"};
inline constexpr texts  expert_script     {"obdScriptArray",       "01 {L},01,05,1",  program,
    "the script: template, from, to, loops"};
inline constexpr flag   greeted           {"BV_greeted",           "false",           program,
    "the card of the first start was shown"};
inline constexpr text   window_geometry   {"BV_window_geometry",   "",                program,
    "where the window stood"};
inline constexpr text   plot_geometry     {"BV_plot_geometry",     "",                program,
    "where the plot window stood"};
// clang-format on

inline constexpr std::array<const setting_row*, 27> all{&greeted,
                                                        &interface_kind,
                                                        &link,
                                                        &known_adapters,
                                                        &wifi_ip,
                                                        &wifi_port,
                                                        &metric_units,
                                                        &log_runs,
                                                        &time_stamps,
                                                        &sample_rate,
                                                        &sampling_speed,
                                                        &pid_rates,
                                                        &adapter_passports,
                                                        &standard_reading,
                                                        &anonymous,
                                                        &store_position,
                                                        &gpsd,
                                                        &bluetooth_address,
                                                        &bluetooth_name,
                                                        &update_server,
                                                        &current_vehicle,
                                                        &sample_set,
                                                        &older_sample_set,
                                                        &expert_history,
                                                        &expert_script,
                                                        &window_geometry,
                                                        &plot_geometry};

// The setting that a key of the file stands for.
std::optional<setting_row> with_key(const QString& key);

} // namespace setting

} // namespace brivant
