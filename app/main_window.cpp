#include "app/main_window.h"

#include "app/console/expert_view.h"
#include "app/diagnostics/read_codes_view.h"
#include "app/first_start_sheet.h"
#include "app/livedata/actions_view.h"
#include "app/logs/logs_view.h"
#include "app/preferences/prefs_view.h"
#include "app/screen/link_report.h"
#include "base/string_table.h"

#include <QApplication>
#include <QCloseEvent>
#include <QShortcut>

namespace brivant {

namespace {

constexpr QSize first_size{1180, 760};
constexpr QSize smallest_size{800, 560};

QFrame* thin_line() {
    auto* line = new QFrame;
    line->setProperty("role", QStringLiteral("line"));
    line->setFixedHeight(1);
    return line;
}

} // namespace

main_window::main_window(program_core& its_core)
    : core(its_core), delegate(core.place, core.adapter, core.car, core.toolies, core.clock, *this),
      tools(its_core.vehicles), toast(&area), help(&area), sheet(this) {
    lay_out();
    add_keys();
    apply_look();
    restore_place();
    connect(&tools, &tool_strip::chosen, this, &main_window::choose_screen);
    connect(&tools, &tool_strip::wished, this, &main_window::grant);
    connect(&tools, &tool_strip::demo_wanted, this, &main_window::open_demo);
    connect(&tools.link(), &link_mark::clicked, this, &main_window::open_links);
    connect(&tools.vehicle(), &vehicle_button::chosen, this, &main_window::choose_vehicle);
    connect(&tools.vehicle(), &vehicle_button::new_one_wanted, this, &main_window::add_vehicle);
    connect(&tools.vehicle(), &vehicle_button::all_wanted, this, [this] { go_to(screen_kind::preferences); });
    connect(&delegate.link, &adapter_link::condition_changed, this, &main_window::show_surroundings);
    connect(&delegate.link, &adapter_link::start_went_on, this, &main_window::show_surroundings);
    qApp->installEventFilter(this);
}

main_window::~main_window() {
    qApp->removeEventFilter(this);
    core.vehicles.current_changed = nullptr;
    core.vehicles.deletion_failed = nullptr;
    refuse_questions();
    delegate.applicationWillTerminate();
    const auto last = std::move(view); // while it goes, nobody is told of what it does
}

void main_window::lay_out() {
    area.setObjectName(QStringLiteral("main_area"));
    area_room = new QVBoxLayout(&area);
    area_room->setContentsMargins(0, 0, 0, 0);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(&tools);
    column->addWidget(thin_line());
    column->addWidget(&banner);
    column->addWidget(&area, 1);
    column->addWidget(thin_line());
    column->addWidget(&status);
    setMinimumSize(smallest_size);
}

void main_window::add_keys() {
    const auto on_key = [this](const QKeySequence& key, auto what) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, what);
    };
    on_key(Qt::CTRL | Qt::Key_L, [this] { grant(tool_strip::wish::links); });
    on_key(Qt::Key_F11, [this] { grant(tool_strip::wish::full_screen); });
    on_key(Qt::Key_Question, [this] { grant(tool_strip::wish::keys); });
    on_key(Qt::CTRL | Qt::Key_Q, [this] { grant(tool_strip::wish::quit); });
    on_key(Qt::Key_F1, [this] { toggle_help(); });
    on_key(Qt::Key_Escape, [this] { escape(); });
    on_key(Qt::Key_F5, [this] {
        if (view && !sheet.is_open())
            view->start();
    });
    for (int i = 0; const auto kind = tool_strip::screen_at(i); ++i)
        on_key(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i), [this, kind] { choose_screen(*kind); });
}

void main_window::start() {
    core.choose_link(delegate.adapters);
    started_with = core.place.now();
    if (!core.folder_problem().isEmpty())
        show_message(QString(), core.folder_problem());
    core.vehicles.current_changed = [this] {
        delegate.link.set_up_next_time(false);
    }; // its record is to be read
    core.vehicles.deletion_failed = [this](const QString& problem) {
        tell({QString(), problem, {}, nullptr, notice::life::until_dismissed});
    };
    delegate.applicationDidFinishLaunching(this);
    show_surroundings();
    if (core.options.link == launch_options::link_choice::find)
        open_links();
    else if (first_start_sheet::is_due(core))
        greet();
}

// --- screens -----------------------------------------------------------------------------------------------

void main_window::choose_screen(screen_kind kind) {
    if (!view || kind != delegate.current_screen())
        delegate.switch_to(kind);
}

void main_window::go_to(screen_kind kind) {
    QMetaObject::invokeMethod(
        this, [this, kind] { choose_screen(kind); }, Qt::QueuedConnection);
}

std::unique_ptr<screen_view> main_window::make_view(screen_kind kind) {
    const view_context context = for_screens();
    switch (kind) {
    case screen_kind::diagnostics: return std::make_unique<read_codes_view>(context);
    case screen_kind::preferences: return std::make_unique<prefs_view>(context);
    case screen_kind::expert: return std::make_unique<expert_view>(context);
    case screen_kind::logs: return std::make_unique<logs_view>(context);
    default: return std::make_unique<actions_view>(context);
    }
}

void main_window::open_screen(screen_kind kind) {
    refuse_questions();
    std::unique_ptr<screen_view> next = make_view(kind);
    help.hide();
    toast.show_text(QString());
    banner.drop(notice::life::while_on_screen);
    banner.drop(notice::life::of_operation_on_screen);
    area_room->addWidget(next.get());
    next->look_changed();
    view.swap(next);
    next.reset();
    view->take_focus();
    status.set_busy(false);
    toast.set_busy(false);
    status.set_status(QStringLiteral("Ready"));
}

void main_window::savePrefs() {
    if (view)
        view->save();
}

void main_window::regain_focus() {
    if (view)
        view->regain_focus();
}

void main_window::set_window_title(const QString& title) {
    setWindowTitle(is_demo() ? QStringLiteral("%1 \u2013 Demo car").arg(title) : title);
}

// --- what the controllers tell -----------------------------------------------------------------------------

void main_window::show_status(const QString& text) {
    status.set_status(text);
}

// A link that never opened is told in passing; the reason has to stay where the results would have come.
void main_window::show_toast(const QString& text) {
    toast.show_text(text);
    if (current_screen() != screen_kind::preferences && // where a trial of the link shows it itself
        text == localised(QStringLiteral("TOAST_WIFI_CONN_FAILED")))
        tell({QString(), text, QStringLiteral("Preferences"), [this] { go_to(screen_kind::preferences); },
              notice::life::until_next_operation});
}

void main_window::show_busy(bool busy) {
    if (busy)
        for (const auto ended : {notice::life::until_next_operation, notice::life::of_operation_on_screen})
            banner.drop(ended);
    status.set_busy(busy);
    toast.set_busy(busy);
    if (view)
        view->show_busy(busy);
}

void main_window::show_message(const QString& title, const QString& text) {
    // What was told before there was a screen is about the program.
    auto stays = notice::life::until_dismissed;
    if (view)
        stays = view->controller() ? notice::life::of_operation_on_screen : notice::life::while_on_screen;
    if (stays == notice::life::while_on_screen)
        banner.drop(stays);
    tell({title, text, {}, nullptr, stays});
}

void main_window::reload(part what) {
    if (view)
        view->reload(what);
}

void main_window::beep() {
    QApplication::beep();
}

void main_window::show_surroundings() {
    const link_words words = report_link(delegate.link, core.car, core.toolies, is_demo());
    tools.link().set_link(words);
    status.set_protocol(words.protocol);
    tools.vehicle().set_note(is_demo() ? QStringLiteral("Demo car") : QStringLiteral("Current vehicle"),
                             is_demo());
}

bool main_window::is_demo() const {
    return core.options.link == launch_options::link_choice::demo && link_is_as_started();
}

// --- help and keys -----------------------------------------------------------------------------------------

void main_window::escape() {
    if (sheet.is_open())
        sheet.refuse();
    else if (help.isVisible())
        help.hide();
    else if (view)
        view->stop();
}

// --- the window itself -------------------------------------------------------------------------------------

void main_window::apply_look() {
    colours = theme::of(QApplication::palette());
    setPalette(colours.palette());
    setStyleSheet(colours.style_sheet(QApplication::font()));
    tools.set_look(colours);
    help.hide();
    if (view)
        view->look_changed();
}

void main_window::restore_place() {
    resize(first_size);
    const QString stored = core.defaults.value(setting::window_geometry);
    if (!stored.isEmpty())
        restoreGeometry(QByteArray::fromBase64(stored.toLatin1()));
}

bool main_window::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        apply_look();
    return QWidget::eventFilter(watched, event);
}

void main_window::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange)
        return;
    if (isActiveWindow())
        delegate.handly();
    else
        delegate.handly2();
}

void main_window::closeEvent(QCloseEvent* event) {
    refuse_questions();
    savePrefs();
    delegate.handleQuitEvent();
    core.defaults.set(setting::window_geometry, QString::fromLatin1(saveGeometry().toBase64()));
    core.defaults.synchronise();
    event->accept();
}

} // namespace brivant
