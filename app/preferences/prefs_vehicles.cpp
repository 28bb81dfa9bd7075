#include "app/preferences/prefs_vehicles.h"

#include "app/look/painting.h"
#include "base/string_table.h"

#include <QHeaderView>

#include <algorithm>

namespace brivant {

namespace {
constexpr QSize photo_size{270, 152};
}

prefs_vehicles::prefs_vehicles(QWidget& its_view, const Ui::prefs& its_ui, const view_context& its_context)
    : context(its_context), list(context.core.vehicles), rows(list, context.core.db),
      delegate(context.frame.look()), view(its_view), ui(its_ui) {
    ui.vehicle_table->setModel(&rows);
    ui.vehicle_table->setItemDelegate(&delegate);
    ui.vehicle_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    ui.vehicle_table->verticalHeader()->setDefaultSectionSize(vehicle_delegate::row_height);
    ui.vehicle_photo->setFixedSize(photo_size);
    for (QLabel* label : {ui.vehicle_shown_name, ui.vehicle_facts, ui.vehicle_knowledge})
        label->setTextFormat(Qt::PlainText);
    ui.vehicle_use->setText(localised(QStringLiteral("LBL_SET_AS_CUR_VEH")));
    connect(ui.vehicle_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &prefs_vehicles::show_selected);
    connect(ui.vehicle_table, &QTableView::activated, this, [this] { ui.vehicle_edit->click(); });
    connect(ui.vehicle_add, &QPushButton::clicked, this, [this] { pop_4_car_data(vehicle()); });
    connect(ui.vehicle_edit, &QPushButton::clicked, this, [this] {
        if (const vehicle* one = selected())
            pop_4_car_data(*one);
    });
    connect(ui.vehicle_delete, &QPushButton::clicked, this, &prefs_vehicles::deleteCar);
    connect(ui.vehicle_use, &QPushButton::clicked, this, &prefs_vehicles::setCurrentCar);
    list.deletion_changed = [this] { show_deletion(); };
    load_vehicles();
    select(context.core.car.cur_veh_id());
}

// The table outlives the model and the delegate.
prefs_vehicles::~prefs_vehicles() {
    list.deletion_changed = nullptr;
    ui.vehicle_table->selectionModel()->disconnect(this);
    ui.vehicle_table->disconnect(this);
    ui.vehicle_table->setItemDelegate(nullptr);
}

void prefs_vehicles::load_vehicles() {
    const vehicle* before = selected();
    const int id = before ? before->id : -1;
    rows.reload();
    select(id);
}

const vehicle* prefs_vehicles::selected() const {
    const QModelIndexList chosen = ui.vehicle_table->selectionModel()->selectedRows();
    return chosen.isEmpty() ? nullptr : rows.at(chosen.first());
}

void prefs_vehicles::select(int veh_id) {
    ui.vehicle_table->clearSelection();
    for (int row = 0; row < rows.rowCount(); ++row) {
        if (rows.at(rows.index(row))->id == veh_id)
            ui.vehicle_table->selectRow(row);
    }
    show_selected();
}

// --- what the person does ----------------------------------------------------------------------------------

void prefs_vehicles::pop_4_car_data(const vehicle& prevVals) {
    const QImage present = prevVals.id < 0 ? QImage() : rows.photo_of(prevVals.id);
    auto* dialog = new vehicle_dialog(view, context, list, prevVals, present);
    connect(dialog, &vehicle_dialog::stored, this, &prefs_vehicles::stored);
    dialog->open();
}

void prefs_vehicles::stored(int veh_id, int mode) {
    rows.reload();
    select(mode == vehicle_dialog::add ? -1 : veh_id);
    if (list.is_current(veh_id))
        context.delegate.show_current_vehicle();
}

void prefs_vehicles::deleteCar() {
    const vehicle* one = selected();
    if (!one)
        return;
    if (rows.rowCount() == 1)
        return context.window.show_toast(localised(QStringLiteral("TOAST_CANNOT_DELETE_VEH_ITEM")));
    const QString question =
        fill(QStringLiteral("%@ %@(%@)?"),
             {localised(QStringLiteral("LBL_DELETE")), localised(QStringLiteral("LBL_VEHICLE")), one->name});
    context.frame.ask(question, localised(QStringLiteral("DLG_DEL_VEHICLE")),
                      {QStringLiteral("YES"), QStringLiteral("NO")}, [this, id = one->id](bool yes) {
                          if (yes)
                              delete_now(id);
                      });
}

void prefs_vehicles::delete_now(int veh_id) {
    const int current_before = context.core.car.cur_veh_id();
    if (list.is_current(veh_id))
        Q_EMIT about_to_change();
    const QString problem = list.deleteCar(veh_id);
    rows.reload();
    const bool changed = context.core.car.cur_veh_id() != current_before;
    select(changed ? context.core.car.cur_veh_id() : -1);
    if (changed) {
        context.delegate.show_current_vehicle();
        Q_EMIT current_changed();
    }
    tell(problem);
    if (list.deletion())
        show_deletion();
}

void prefs_vehicles::show_deletion() {
    const vehicle_deletion* deletion = list.deletion();
    context.window.show_status(deletion ? QStringLiteral("Deleting the vehicle: %1 of %2 logs")
                                              .arg(deletion->logs().cleared())
                                              .arg(deletion->logs().asked())
                                        : QStringLiteral("Ready"));
    if (deletion)
        return show_selected();
    load_vehicles();
}

void prefs_vehicles::setCurrentCar() {
    const vehicle* one = selected();
    if (!one)
        return;
    Q_EMIT about_to_change();
    const QString problem = list.setCurrentCar(one->id);
    load_vehicles();
    context.delegate.show_current_vehicle();
    Q_EMIT current_changed();
    tell(problem);
}

void prefs_vehicles::tell(const QString& problem) {
    if (!problem.isEmpty())
        context.frame.tell({QString(), problem});
}

// --- what is shown -----------------------------------------------------------------------------------------

QString prefs_vehicles::knowledge_of(const vehicle& one) const {
    const obd_groups ecus = grab_pids_available(context.core.db, one.id);
    qsizetype values = 0;
    for (const obd_group& ecu : ecus)
        values += ecu.pidSet.size();
    const QString read = ecus.isEmpty()
                             ? QStringLiteral("Not read yet.")
                             : QStringLiteral("Reports %1 PIDs, ECUs: %2.").arg(values).arg(ecus.size());
    const int logs = list.count_of_logs(one.id);
    return read + QStringLiteral("\nStored logs: %1.")
                      .arg(logs == 0 ? QStringLiteral("none") : QString::number(logs));
}

void prefs_vehicles::show_selected() {
    const vehicle* one = selected();
    const bool is_going = one && list.is_going(one->id);
    ui.vehicle_edit->setEnabled(one && !is_going);
    ui.vehicle_delete->setEnabled(one && !list.deletion());
    ui.vehicle_use->setEnabled(one && !is_going && !list.is_current(one->id));
    ui.vehicle_use->setToolTip(one && list.is_current(one->id) ? QStringLiteral("This is the current vehicle")
                                                               : QString());
    for (QLabel* part : {ui.vehicle_photo, ui.vehicle_facts, ui.vehicle_knowledge})
        part->setVisible(one);
    if (!one) {
        const QString problem = context.core.db.problem();
        ui.vehicle_shown_name->setText(rows.rowCount() > 0
                                           ? QStringLiteral("Select a vehicle to change it.")
                                           : QStringLiteral("No vehicles can be read. %1").arg(problem));
        theme::mark(*ui.vehicle_shown_name, "role", QStringLiteral("muted"));
        return;
    }
    theme::mark(*ui.vehicle_shown_name, "role", QStringLiteral("heading"));
    ui.vehicle_shown_name->setText(one->name);
    ui.vehicle_facts->setText(vehicle_rows::facts_of(*one));
    ui.vehicle_knowledge->setText(is_going ? QStringLiteral("It is being deleted.") : knowledge_of(*one));
    ui.vehicle_photo->setPixmap(
        rounded_picture(rows.photo_of(one->id), photo_size, ui.vehicle_photo->devicePixelRatioF()));
}

void prefs_vehicles::look_changed() {
    ui.vehicle_table->viewport()->update();
    show_selected();
}

} // namespace brivant
