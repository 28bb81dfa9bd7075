#include "base/string_table.h"
#include "livedata/sampling_talk.h"

namespace brivant {

talk work_out_log(sampling_talk& car) {
    co_await car.ready_to_sample("Starting log");
    if (car.columns() == 0) { // none of the chosen PIDs is one of this car
        car.view.show_message(QString(), localised(QStringLiteral("DLG_noPIDs_CHOSEN")));
        throw left{};
    }
    co_await sample_for_ever(car);
}

talk work_out_boost(sampling_talk& car) {
    co_await car.ready_to_sample("Starting log");
    car.fit_set({QStringLiteral("33")}, QString());
    car.make_sure_all_are_supported();
    co_await sample_for_ever(car);
}

} // namespace brivant
