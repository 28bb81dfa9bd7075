#pragma once

#include "base/car_state.h"
#include "base/user_defaults.h"
#include "link/adapter_link.h"
#include "shell/known_adapter.h"

namespace brivant {

// The adapters of this computer and which of them the link goes to, for both programs. In force is, from the
// strongest: the one given on the command line, the one that the current vehicle prefers, "whatever is
// there", and the one chosen last. All that it is given outlives it.
class adapter_list : public QObject {
    Q_OBJECT

public:
    adapter_list(user_defaults& settings, adapter_place& its_place, adapter_link& its_link,
                 const car_state& its_car);

    // Puts what is stored in the place.
    void read_place();
    // The place was given for this run, and stays.
    void place_is_given(bool is_demo);

    // The one used last first.
    QList<known_adapter> known() const;
    // Of that address, or of that name in either case.
    std::optional<known_adapter> with(const adapter_address& where) const;
    std::optional<known_adapter> named(const QString& word) const;
    // The link goes there, or will.
    bool is_in_force(const adapter_address& where) const;
    // The link leads to the demo's car.
    bool leads_to_demo() const { return is_given && is_demo; }
    // Whatever of the known ones is there is taken.
    bool takes_any() const;

    // The link goes there from now on; an open one to another place is closed. `name`: what it calls itself.
    // False, here and below, when the settings file cannot be written.
    bool use(const adapter_address& where, const QString& name);
    bool use_any();
    // "" takes the person's name away.
    bool rename(const adapter_address& where, const QString& name);
    bool forget(const adapter_address& where);
    bool prefer(const adapter_address& where, int veh_id, bool is_preferred);

Q_SIGNALS:
    void changed();

private:
    bool change(const adapter_address& where, const std::function<void(known_adapter&)>& how);
    bool keep(const QList<known_adapter>& adapters);
    void lead_to(const adapter_address& where, const QString& name);
    QList<adapter_search::candidate> lead_before_opening();
    void note_use();

    user_defaults& defaults;
    adapter_place& place;
    adapter_link& link;
    const car_state& car;
    bool is_given = false;
    bool is_demo = false;
};

// The address under which a serial port is found again after it was unplugged; others as they are.
adapter_address lasting(adapter_address where);

} // namespace brivant
