#pragma once

#include "app/look/elided_label.h"
#include "shell/vehicle_list.h"

#include <QImage>
#include <QToolButton>

namespace brivant {

// The current vehicle at the top of the window, with its picture. A click lists the vehicles: one is chosen
// there, or a new one added.
class vehicle_button : public QToolButton {
    Q_OBJECT

public:
    explicit vehicle_button(vehicle_list& its_vehicles, QWidget* parent = nullptr);

    void show_vehicle(const QString& name, const QImage& image);
    // The small line below the name.
    void set_note(const QString& note, bool as_chip);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void chosen(int veh_id);
    void new_one_wanted();
    void all_wanted();

private:
    void offer_vehicles();

    vehicle_list& vehicles;
    QLabel picture;
    elided_label name;
    QLabel note;
};

} // namespace brivant
