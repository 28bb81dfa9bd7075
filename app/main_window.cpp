#include "app/main_window.h"

#include "app/console/expert_view.h"
#include "app/diagnostics/read_codes_view.h"
#include "app/first_start_sheet.h"
#include "app/livedata/actions_view.h"
#include "app/logs/logs_view.h"
#include "app/preferences/prefs_view.h"
#include "app/preferences/vehicle_dialog.h"
#include "app/screen/link_report.h"
#include "app/update_sheet.h"
#include "base/string_table.h"

#include <QApplication>
#include <QCloseEvent>
#include <QProcess>
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

void main_window::ask_yes_no(const QString& title, const QString& text, std::function<void(bool)> answer) {
    ask(title, text, question_sheet::usual_answers(), std::move(answer));
}

void main_window::ask(const QString& title, const QString& text, const question_sheet::answers& words,
                      std::function<void(bool)> answer) {
    help.hide();
    sheet.ask(title, text, std::move(answer), words);
}

void main_window::ask_same_car(const QString& title, const QString& text, std::function<void(bool)> answer) {
    question_sheet::answers words = question_sheet::usual_answers();
    words.third = QStringLiteral("New vehicle...");
    help.hide();
    sheet.ask(title, text, std::move(answer), words, [this] { add_vehicle(); });
}

// The car gets a record of its own, which is current from then on; what was asked is started anew.
void main_window::add_vehicle() {
    if (!view)
        return;
    auto* dialog = new vehicle_dialog(*view, for_screens(), core.vehicles, vehicle(), QImage());
    connect(
        dialog, &vehicle_dialog::stored, this,
        [this](int veh_id) {
            choose_vehicle(veh_id);
            show_status(QStringLiteral("The new vehicle is the current one. Start again (F5)"));
        },
        Qt::QueuedConnection);
    dialog->open();
}

void main_window::choose_vehicle(int veh_id) {
    const QString problem = core.vehicles.setCurrentCar(veh_id);
    delegate.show_current_vehicle();
    delegate.switch_to(delegate.current_screen()); // what it shows is the other car's
    if (!problem.isEmpty())
        show_message(QString(), problem);
}

void main_window::choose_device(const QString& why, device_chooser::answer answer) {
    help.hide();
    refuse_questions();
    const auto tell_choice = [this, answer = std::move(answer)](const QString& address, const QString& name) {
        if (address.isEmpty() && !delegate.link.is_connected())
            status.set_status(QStringLiteral("Ready")); // what was starting does not start
        answer(address, name);
    };
    chooser = new device_chooser(area, colours, core.clock, core.place.bt_address(), why, tell_choice);
    chooser->open();
}

void main_window::open_links() {
    if (!view || links || sheet.is_open() || chooser)
        return;
    help.hide();
    links = new links_sheet(area, core, delegate);
    connect(links, &links_sheet::chosen, this, [this](const QString& name) {
        show_surroundings();
        show_status(QStringLiteral("%1 is used from now on. Start with F5").arg(name));
    });
    connect(links, &links_sheet::check_wanted, this, &main_window::open_check, Qt::QueuedConnection);
    links->open();
    if (core.options.link == launch_options::link_choice::find && !core.found)
        links->find();
}

void main_window::open_check() {
    if (!view || check)
        return;
    check = new check_sheet(area, core, delegate, [this] { return current_controller(); });
    check->open_and_check();
}

void main_window::refuse_questions() {
    if (check)
        check->close_sheet();
    if (links)
        links->close_sheet();
    sheet.refuse();
    if (chooser)
        chooser->close_sheet();
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

void main_window::toggle_help() {
    if (help.isVisible())
        help.hide();
    else if (!sheet.is_open())
        delegate.do_help_button();
}

void main_window::grant(tool_strip::wish what) {
    using wish = tool_strip::wish;
    switch (what) {
    case wish::links: return open_links();
    case wish::full_screen: return setWindowState(windowState() ^ Qt::WindowFullScreen);
    case wish::help: return toggle_help();
    case wish::keys:
        return pop_helpy(localised(QStringLiteral("BV_KEYS_TITLE")), localised(QStringLiteral("BV_KEYS")),
                         QStringLiteral("help.png"));
    case wish::updates: return open_updates();
    case wish::about:
        return pop_helpy(localised(QStringLiteral("BV_ABOUT_TITLE")),
                         fill(localised(QStringLiteral("BV_ABOUT")), {QStringLiteral(BV_VERSION)}),
                         QStringLiteral("brivant-lite-64.png"));
    case wish::quit: close();
    }
}

// In a window of its own, which keeps nothing: the person's vehicle and logs are not the demo car's.
void main_window::open_demo(const QString& car) {
    if (QProcess::startDetached(QCoreApplication::applicationFilePath(), {QStringLiteral("--demo=") + car}))
        show_status(QStringLiteral("The demo car %1 opens in a window of its own").arg(car));
    else
        show_message(QString(), QStringLiteral("The demo cannot be started."));
}

void main_window::greet() {
    auto* greeting = new first_start_sheet(area, core);
    connect(greeting, &first_start_sheet::find_wanted, this, [this] {
        open_links();
        if (links)
            links->find();
    });
    connect(greeting, &first_start_sheet::links_wanted, this, &main_window::open_links);
    connect(greeting, &first_start_sheet::wifi_wanted, this, [this] {
        delegate.adapters.use({interface_wifi, core.place.wifi_ip(), core.place.wifi_port().toUShort()},
                              QString());
        go_to(screen_kind::preferences);
    });
    connect(greeting, &first_start_sheet::demo_wanted, this, [this] { open_demo(QStringLiteral("can11")); });
    connect(greeting, &first_start_sheet::units_chosen, this,
            [this] { delegate.switch_to(delegate.current_screen()); });
    greeting->open_first();
}

void main_window::open_updates() {
    help.hide();
    refuse_questions();
    (new update_sheet(area, core))->open_and_check();
}

void main_window::pop_helpy(const QString& title, const QString& html, const QString& icon) {
    help.show_help(title, html, icon, colours);
}

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
