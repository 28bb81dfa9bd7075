#include "app/pids/pid_chooser.h"

#include "app/look/tables.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace brivant {

namespace {

constexpr int row_height = 34;
constexpr int sheet_width = 920;
constexpr int empty_page = 0;
constexpr int lists_page = 1;

struct headed_card {
    QFrame* frame;
    QVBoxLayout* column;
    QLabel* count;
};

headed_card make_card(const QString& heading) {
    auto* frame = new QFrame;
    frame->setProperty("role", QStringLiteral("card"));
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(theme::step, theme::step, theme::step, theme::step);
    column->setSpacing(theme::step);
    auto* head = new QHBoxLayout;
    head->setContentsMargins(theme::step, theme::step / 2, theme::step, 0);
    auto* title = new QLabel(heading);
    title->setProperty("role", QStringLiteral("strong"));
    auto* count = new QLabel;
    count->setProperty("role", QStringLiteral("small"));
    head->addWidget(title);
    head->addStretch();
    head->addWidget(count);
    column->addLayout(head);
    return {frame, column, count};
}

QPushButton* make_button(const QString& text, const char* name, const QString& tool_tip) {
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(true);
    button->setToolTip(tool_tip);
    return button;
}

} // namespace

pid_chooser::pid_chooser(const view_context& its_context, QWidget* parent)
    : QWidget(parent), context(its_context), offered_rows(choice, context.frame.look(), nullptr),
      chosen_rows(choice, context.frame.look(), nullptr) {
    lay_out();
    connect(offered, &QTableView::clicked, this,
            [this](const QModelIndex& index) { toggle(offered_rows.item_at(index)); });
    connect(chosen->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &pid_chooser::show_counts);
    connect(up, &QPushButton::clicked, this, [this] { move_current(-1); });
    connect(down, &QPushButton::clicked, this, [this] { move_current(1); });
    connect(drop, &QPushButton::clicked, this, &pid_chooser::remove_current);
    show_vehicle();
}

// The tables outlive the models, and let go of their selection with them.
pid_chooser::~pid_chooser() {
    chosen->selectionModel()->disconnect(this);
}

QWidget* pid_chooser::make_empty_page() const {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setSpacing(theme::step);
    column->addStretch();
    const auto add = [column](const QString& text, const char* role) {
        auto* label = new QLabel(text);
        label->setProperty("role", QLatin1String(role));
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        column->addWidget(label);
        return label;
    };
    add(QStringLiteral("Available PIDs for this vehicle will list after an initial Read/Log"), "strong")
        ->setObjectName(QStringLiteral("pids_nothing_known"));
    add(QStringLiteral("Turn the ignition on and start a reading or a run (F5), or test the connection in "
                       "Preferences.\nUntil then a run samples %1.")
            .arg(first_names()),
        "muted");
    column->addStretch();
    return page;
}

// What a run samples of a vehicle for which nothing was chosen.
QString pid_chooser::first_names() const {
    QStringList names;
    const QStringList first = setting::sample_set.first_value();
    for (const QString& pid : first)
        names += context.core.toolies.get_pid_name_with_pid(pid);
    return names.join(QStringLiteral(", "));
}

void pid_chooser::lay_out() {
    pages = new QStackedWidget;
    pages->addWidget(make_empty_page());

    const headed_card left = make_card(QStringLiteral("Reported by this vehicle"));
    search = new QLineEdit;
    search->setObjectName(QStringLiteral("pid_search"));
    search->setPlaceholderText(QStringLiteral("Search by name, PID or ECU"));
    search->setAccessibleName(QStringLiteral("Search in the reported values"));
    search->setClearButtonEnabled(true);
    search->setMaxLength(64);
    search->installEventFilter(this);
    connect(search, &QLineEdit::textChanged, this, [this](const QString& words) {
        offered_rows.set_search(words);
        show_counts();
    });
    offered = new QTableView;
    offered->setObjectName(QStringLiteral("offered_pids"));
    set_up(*offered, offered_rows, QStringLiteral("Values that this vehicle reports"));
    left.column->addWidget(search);
    left.column->addWidget(offered, 1);
    offered_count = left.count;

    const headed_card right = make_card(QStringLiteral("Sampled, in this order"));
    chosen = new QTableView;
    chosen->setObjectName(QStringLiteral("chosen_pids"));
    set_up(*chosen, chosen_rows, QStringLiteral("Sampled values in their order"));
    note = new QLabel;
    note->setObjectName(QStringLiteral("pids_note"));
    note->setProperty("role", QStringLiteral("small"));
    note->setWordWrap(true);
    note->setMargin(theme::step);
    up = make_button(QStringLiteral("Up"), "pid_up", QStringLiteral("Ask for it earlier (Alt+Up)"));
    down = make_button(QStringLiteral("Down"), "pid_down", QStringLiteral("Ask for it later (Alt+Down)"));
    drop = make_button(QStringLiteral("Remove"), "pid_remove", QStringLiteral("Do not sample it (Delete)"));
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(theme::step);
    for (QPushButton* button : {up, down, drop})
        buttons->addWidget(button, 1);
    right.column->addWidget(chosen, 1);
    right.column->addWidget(note);
    right.column->addLayout(buttons);
    chosen_count = right.count;
    chosen_count->setObjectName(QStringLiteral("chosen_count"));

    auto* lists = new QWidget;
    auto* row = new QHBoxLayout(lists);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2 * theme::step);
    row->addWidget(left.frame, 5); // names stand beside their boxes there
    row->addWidget(right.frame, 4);
    pages->addWidget(lists);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(pages);
}

void pid_chooser::set_up(QTableView& table, pid_rows& rows, const QString& accessible_name) {
    table.setModel(&rows);
    table.setAccessibleName(accessible_name);
    make_list(table, pid_rows::name_column, row_height);
    table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table.installEventFilter(this);
}

void pid_chooser::show_vehicle() {
    choice =
        pid_choice(context.core.toolies.grab_pids_available(),
                   context.core.defaults.value(setting::sample_set.of_vehicle(context.core.car.cur_veh_id())),
                   context.core.toolies);
    offered_rows.reload_all();
    chosen_rows.reload(true);
    pages->setCurrentIndex(choice.available().isEmpty() ? empty_page : lists_page);
    for (QTableView* table : {offered, chosen}) {
        table->setColumnHidden(pid_rows::ecu_column, !choice.has_several_ecus());
        table->selectRow(0);
    }
    show_counts();
}

QWidget* pid_chooser::first() const {
    return choice.available().isEmpty() ? nullptr : offered;
}

void pid_chooser::look_changed() {
    offered->viewport()->update();
    chosen->viewport()->update();
}

// --- what the person does ----------------------------------------------------------------------------------

void pid_chooser::toggle(const QString& item) {
    if (const qsizetype place = choice.place_of(item); place >= 0) {
        choice.remove(item);
        store(place);
    } else if (choice.add(item)) {
        store(choice.chosen().size() - 1);
    }
}

void pid_chooser::remove_current() {
    const qsizetype place = chosen->currentIndex().row();
    if (choice.remove(chosen_rows.item_at(chosen->currentIndex())))
        store(place);
}

void pid_chooser::move_current(int places) {
    const qsizetype from = chosen->currentIndex().row();
    if (choice.move(from, from + places))
        store(from + places);
}

void pid_chooser::store(qsizetype current) {
    context.core.toolies.save_pids_2_sample_prefs(choice.items());
    if (!context.core.defaults.synchronise())
        context.frame.tell(
            {QStringLiteral("The choice cannot be kept"),
             context.core.defaults.problem() + QStringLiteral(" The choice holds until the program ends.")});
    offered_rows.reload(false);
    chosen_rows.reload(true);
    chosen->selectRow(static_cast<int>(std::min(current, choice.chosen().size() - 1)));
    show_counts();
    Q_EMIT changed();
}

void pid_chooser::show_counts() {
    const qsizetype all = choice.available().size();
    const int shown = offered_rows.rowCount();
    offered_count->setText(shown == all ? QStringLiteral("%1 values").arg(all)
                                        : QStringLiteral("%1 of %2 match").arg(shown).arg(all));
    const qsizetype count = choice.chosen().size();
    chosen_count->setText(QStringLiteral("%1 chosen").arg(count));
    if (count == 0) {
        note->setText(QStringLiteral("None chosen: a run samples %1.").arg(first_names()));
    } else if (choice.is_full()) {
        note->setText(
            QStringLiteral("No more than %1 can be sampled. Remove one to choose another.").arg(count));
    } else {
        note->setText(QStringLiteral("Each is asked for in turn: the fewer, the faster a run. Kept with this "
                                     "vehicle."));
    }
    const int row = chosen->currentIndex().row();
    up->setEnabled(row > 0);
    down->setEnabled(row >= 0 && row + 1 < count);
    drop->setEnabled(row >= 0);
}

bool pid_chooser::key_pressed(const QObject* table, int key, bool with_alt) {
    const bool down_key = key == Qt::Key_Down;
    if (table == chosen && with_alt && (key == Qt::Key_Up || down_key)) {
        move_current(down_key ? 1 : -1);
        return true;
    }
    if (table == chosen && (key == Qt::Key_Delete || key == Qt::Key_Backspace)) {
        remove_current();
        return true;
    }
    if (table == offered && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)) {
        toggle(offered_rows.item_at(offered->currentIndex()));
        return true;
    }
    if (table != offered && table != chosen && down_key) { // from the search into what it found
        offered->setFocus(Qt::TabFocusReason);
        offered->selectRow(0);
        return true;
    }
    return false;
}

bool pid_chooser::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* pressed = static_cast<QKeyEvent*>(event);
    if (key_pressed(watched, pressed->key(), pressed->modifiers() & Qt::AltModifier))
        return true;
    // Typing in a list searches.
    const QString typed = pressed->text();
    if (watched == search || typed.isEmpty() || !typed.at(0).isPrint() || typed == QLatin1String(" ") ||
        (pressed->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        return false;
    search->setFocus(Qt::OtherFocusReason);
    search->insert(typed);
    return true;
}

// --- on a card over the window -----------------------------------------------------------------------------

pid_sheet::pid_sheet(QWidget& asked_by, const view_context& its_context)
    : card_sheet(asked_by, QStringLiteral("Values of a Log Run"), sheet_width),
      chooser(new pid_chooser(its_context)) {
    content()->addWidget(chooser, 1);
    fill_room();
    done = add_button(QStringLiteral("Done"), "pids_done", true);
    connect(done, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(chooser, &pid_chooser::changed, this, &pid_sheet::changed);
}

void pid_sheet::open() {
    QWidget* list = chooser->first();
    card_sheet::open(list ? *list : *done);
}

} // namespace brivant
