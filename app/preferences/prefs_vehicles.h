#pragma once

#include "app/preferences/prefs_vehicle_rows.h"
#include "app/preferences/vehicle_dialog.h"
#include "ui_prefs.h"

namespace brivant {

// The Vehicles tab: the list of them, the selected one with its photo, and what can be done with it.
class prefs_vehicles : public QObject {
    Q_OBJECT

public:
    // `ui` outlives it; its widgets are those whose names begin with "vehicle_".
    prefs_vehicles(QWidget& its_view, const Ui::prefs& its_ui, const view_context& its_context);
    ~prefs_vehicles() override;

    // Reads the vehicles anew.
    void load_vehicles();
    void look_changed();

Q_SIGNALS:
    // Another vehicle is about to become current: what runs for this one is to end.
    void about_to_change();
    // The current vehicle is another one, or what is known of it has changed.
    void current_changed();

private:
    const vehicle* selected() const;
    void select(int veh_id);
    void pop_4_car_data(const vehicle& prevVals);
    void stored(int veh_id, int mode);
    void deleteCar();
    void delete_now(int veh_id);
    void show_deletion();
    void setCurrentCar();
    void tell(const QString& problem);
    void show_selected();
    QString knowledge_of(const vehicle& one) const;

    view_context context;
    vehicle_list& list;
    vehicle_rows rows;
    vehicle_delegate delegate;

    QWidget& view;
    const Ui::prefs& ui;
};

} // namespace brivant
