#include "app/first_start_sheet.h"
#include "app/main_window.h"
#include "app/preferences/vehicle_dialog.h"
#include "app/update_sheet.h"
#include "base/string_table.h"

#include <QApplication>
#include <QProcess>

namespace brivant {

// What the window shows over its screens: questions, choices, and what the menu offers.

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

} // namespace brivant
