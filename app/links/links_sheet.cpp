#include "app/links/links_sheet.h"

#include "app/look/tables.h"
#include "persistence/vehicles.h"

#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

namespace brivant {

namespace {

constexpr int card_width = 960;
constexpr int list_height = 300;
constexpr int least_list_height = 130;
constexpr int row_height = 44;
constexpr int look_every_ms = 2000;
enum column { name_column, kind_column, what_column, used_column, state_column, column_count };

} // namespace

links_sheet::links_sheet(QWidget& asked_by, program_core& its_core, Bv_lite_delegate& its_delegate)
    : card_sheet(asked_by, QStringLiteral("Links to adapters"), card_width), core(its_core),
      delegate(its_delegate), adapters(its_delegate.adapters), finder(make_transport, its_core.clock),
      list(new QTableWidget(0, column_count)), progress(new busy_bar) {
    setObjectName(QStringLiteral("links_sheet"));
    lay_out();
    connect(&finder, &adapter_finder::changed, this, &links_sheet::show_rows);
    connect(&finder, &adapter_finder::finished, this, &links_sheet::show_rows);
    connect(&adapters, &adapter_list::changed, this, &links_sheet::show_rows);
    connect(&delegate.link, &adapter_link::condition_changed, this, &links_sheet::show_rows);
    connect(&delegate.link, &adapter_link::start_went_on, this, &links_sheet::show_state);
    connect(list, &QTableWidget::itemSelectionChanged, this, &links_sheet::show_state);
    connect(list, &QTableWidget::itemActivated, this, &links_sheet::use_selected);
    connect(list, &QTableWidget::itemChanged, this, &links_sheet::note_tick);
    connect(name, &QLineEdit::editingFinished, this, &links_sheet::rename_selected);
    connect(search, &QPushButton::clicked, this, &links_sheet::find_or_stop);
    connect(use, &QPushButton::clicked, this, &links_sheet::use_selected);
    connect(forget, &QPushButton::clicked, this, [this] {
        if (const link_row* row = selected())
            tell_unless(adapters.forget(row->where));
    });
    connect(check, &QPushButton::clicked, this, [this] {
        close_sheet();
        Q_EMIT check_wanted();
    });
    connect(done, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(any, &QCheckBox::clicked, this, [this](bool is_on) {
        const adapter_address here = core.place.now();
        tell_unless(is_on ? adapters.use_any() : adapters.use(here, core.place.device_called()));
    });
    connect(preferred, &QCheckBox::clicked, this, [this](bool is_on) {
        if (const link_row* row = selected())
            tell_unless(adapters.prefer(row->where, core.car.cur_veh_id(), is_on));
    });
    connect(more, &QCheckBox::clicked, this, &links_sheet::show_rows);
}

void links_sheet::lay_out() {
    list->setObjectName(QStringLiteral("links_list"));
    list->setAccessibleName(QStringLiteral("Adapters"));
    list->setHorizontalHeaderLabels({QStringLiteral("Adapter"), QStringLiteral("Link"),
                                     QStringLiteral("What it is"), QStringLiteral("Last used"),
                                     QStringLiteral("State")});
    list->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    make_list(*list, what_column, row_height);
    list->setMinimumHeight(least_list_height);
    list->setMaximumHeight(list_height);
    content()->addWidget(list);
    content()->addWidget(progress);
    sentence = add_text(QString(), "muted");
    sentence->setObjectName(QStringLiteral("links_sentence"));
    sentence->setMinimumHeight(sentence->fontMetrics().lineSpacing() * 2); // so that nothing jumps
    sentence->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    name = new QLineEdit;
    name->setObjectName(QStringLiteral("links_name"));
    name->setAccessibleName(QStringLiteral("Name of the chosen adapter"));
    name->setMaxLength(60);
    auto* name_row = new QHBoxLayout;
    auto* caption = new QLabel(QStringLiteral("Name"));
    caption->setBuddy(name);
    name_row->addWidget(caption);
    name_row->addWidget(name, 1);
    content()->addLayout(name_row);
    any = new QCheckBox(QStringLiteral("Use whatever of the known adapters is there"));
    preferred = new QCheckBox;
    more = new QCheckBox(QStringLiteral("Show devices that are hardly adapters, too"));
    int number = 0;
    for (QCheckBox* box : {any, preferred, more}) {
        box->setObjectName(QStringLiteral("links_box_%1").arg(++number));
        content()->addWidget(box);
    }
    search = add_button(QStringLiteral("Find my adapter"), "links_find", false);
    search->setToolTip(
        QStringLiteral("Ask everywhere where an adapter may be: Wi-Fi, Bluetooth, and the serial ports "
                       "that are known or ticked (F5)"));
    forget = add_button(QStringLiteral("Forget"), "links_forget", false);
    check = add_button(QStringLiteral("Check..."), "links_check", false);
    check->setToolTip(
        QStringLiteral("Find out what the adapter in use can do, and whether it is what it says"));
    use = add_button(QStringLiteral("Use this one"), "links_use", true);
    done = add_button(QStringLiteral("Close"), "links_close", false);
}

void links_sheet::open() {
    next_look = core.clock.repeating(look_every_ms, [this] { look_around(); });
    look_around();
    card_sheet::open(*list);
}

// What is plugged in or paired shows by itself; nothing is asked.
void links_sheet::look_around() {
    around.ports = serial_ports();
    show_rows();
    service.look([this](const bluetooth_surroundings& found) {
        around.devices = found.devices;
        show_rows();
    });
}

void links_sheet::find() {
    QList<adapter_search::candidate> candidates;
    for (const known_adapter& one : adapters.known())
        candidates += {one.where, one.name};
    if (delegate.link.is_connected()) // which holds its port or its device
        candidates.removeIf(
            [&](const adapter_search::candidate& one) { return adapters.is_in_force(one.where); });
    finder.start(candidates, QStringList(ticked.begin(), ticked.end()));
}

void links_sheet::find_or_stop() {
    if (!finder.is_running())
        return find();
    finder.stop();
    show_rows();
}

// --- the list ----------------------------------------------------------------------------------------------

// The selection follows its adapter, wherever that stands now.
void links_sheet::show_rows() {
    around.answers = finder.answers();
    const std::optional<adapter_address> before =
        selected() ? std::optional(selected()->where) : std::nullopt;
    rows = link_rows(adapters, delegate.link, core.defaults.value(setting::adapter_passports), around);
    if (!more->isChecked())
        rows.removeIf(
            [](const link_row& row) { return !row.is_likely && row.where.kind != interface_serial; });
    is_filling = true;
    list->setRowCount(static_cast<int>(rows.size()));
    for (int at = 0; at < rows.size(); ++at) {
        show_row(at, rows.at(at));
        if (before && rows.at(at).where.key() == before->key())
            list->setCurrentCell(at, name_column);
    }
    is_filling = false;
    if (!before && !rows.isEmpty())
        list->setCurrentCell(0, name_column);
    show_state();
}

void links_sheet::show_row(int at, const link_row& row) {
    const QString texts[column_count] = {row.name, word_of_link(row.where.kind), row.what, row.last_used,
                                         row.state};
    for (int cell = 0; cell < column_count; ++cell) {
        auto* item = list->item(at, cell);
        if (!item)
            list->setItem(at, cell, item = new QTableWidgetItem);
        item->setText(texts[cell]);
        item->setToolTip(cell == name_column ? row.where.text() : texts[cell]);
        QFont font = list->font();
        font.setBold(row.is_in_force && cell == name_column);
        item->setFont(font);
        item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        item->setData(Qt::CheckStateRole, QVariant());
    }
    if (row.where.kind == interface_serial && !row.is_known) {
        QTableWidgetItem& port = *list->item(at, name_column);
        port.setFlags(port.flags() | Qt::ItemIsUserCheckable);
        port.setCheckState(ticked.contains(row.where.where) ? Qt::Checked : Qt::Unchecked);
        port.setToolTip(
            QStringLiteral("Ticked, this port is asked too. It may lead to a printer or another device."));
    }
}

void links_sheet::note_tick(QTableWidgetItem* item) {
    if (is_filling || item->column() != name_column || item->row() >= rows.size())
        return;
    const QString port = rows.at(item->row()).where.where;
    if (item->checkState() == Qt::Checked)
        ticked.insert(port);
    else
        ticked.remove(port);
}

void links_sheet::rename_selected() {
    const link_row* row = selected();
    if (row && row->is_known && name->text() != row->name)
        tell_unless(adapters.rename(row->where, name->text()));
}

const link_row* links_sheet::selected() const {
    const QModelIndexList chosen = list->selectionModel()->selectedRows();
    return chosen.isEmpty() || chosen.first().row() >= rows.size() ? nullptr : &rows.at(chosen.first().row());
}

void links_sheet::show_state() {
    const link_row* row = selected();
    const bool runs = finder.is_running();
    progress->set_running(runs);
    search->setText(runs ? QStringLiteral("Stop looking") : QStringLiteral("Find my adapter"));
    use->setEnabled(row && !(row->is_in_force && !adapters.takes_any()));
    name->setEnabled(row && row->is_known);
    if (!name->hasFocus() || !row)
        name->setText(row ? row->name : QString());
    forget->setEnabled(row && row->is_known);
    check->setEnabled(row && row->is_in_force);
    any->setChecked(adapters.takes_any());
    any->setEnabled(any->isChecked() || !adapters.known().isEmpty());
    const auto vehicle = vehicle_with_id(core.db, core.car.cur_veh_id());
    preferred->setText(QStringLiteral("Always use this one for %1").arg(vehicle ? vehicle->name : QString()));
    preferred->setVisible(vehicle && row && row->is_known);
    preferred->setChecked(row && row->vehicles.contains(core.car.cur_veh_id()));
    const start_steps& start = delegate.link.start();
    if (runs || !finder.answers().isEmpty())
        sentence->setText(finder.sentence());
    else if (delegate.link.is_opening() || (delegate.link.is_connected() && !start.is_over()))
        sentence->setText(start.sentence());
    else if (row && row->where.kind == interface_bluetooth && row->state == QLatin1String("not paired"))
        sentence->setText(QStringLiteral("%1 is not paired yet. %2.").arg(row->name, pairing_advice()));
    else if (rows.isEmpty())
        sentence->setText(
            QStringLiteral("No adapter is known yet. Plug it in, switch the ignition on, and press "
                           "\u201cFind my adapter\u201d."));
    else
        sentence->setText(delegate.link.is_connected() ? start.sentence() : QString());
}

void links_sheet::use_selected() {
    if (!use->isEnabled())
        return;
    const link_row row = *selected();
    finder.stop();
    const bool is_stored = adapters.use(row.where, row.name == row.where.where ? QString() : row.name);
    tell_unless(is_stored);
    if (!is_stored)
        return;
    Q_EMIT chosen(row.name);
    close_sheet();
}

void links_sheet::tell_unless(bool is_stored) {
    if (!is_stored)
        sentence->setText(core.defaults.problem());
}

void links_sheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F5)
        search->click();
    else
        card_sheet::keyPressEvent(event);
}

} // namespace brivant
