#include "app/diagnostics/read_codes_view.h"

#include "app/diagnostics/pending_page.h"
#include "app/diagnostics/tests_page.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

struct rail_page {
    const char* title;
    const char* icon;
};

constexpr rail_page codes_entry{"Codes", "nav_codes.png"};

// clang-format off
constexpr result_words pending_words{
    "pending", part::pending, "Pending and freeze frame", "nav_pending.png",
    "Not read yet. Press Read (F5) with the ignition on.\n"
    "It reads faults seen but not yet confirmed, and what the engine was doing when a code was stored.",
    "No pending codes.", op_pending_freeze,
    [](readCodes& controller) { controller.readPendingFreezeCodes(); }};
constexpr result_words vehicle_words{
    "vehicle", part::vehicle, "Vehicle", "nav_vehicle.png",
    "Nothing read yet. Press Read (F5) with the ignition on.\n"
    "It reads battery voltage, identification number (VIN), control units, and the values that they report.",
    "Nothing was received.", op_vehicle_info,
    [](readCodes& controller) { controller.readVehicleInfo(); }};
constexpr result_words mode6_words{
    "mode6", part::mode6, "Mode 6", "nav_mode6.png",
    "No tests read yet. Press Read (F5) with the ignition on.\n"
    "It reads the tests that the car runs on itself, each result with its limits.",
    "No test results were received.", op_mode6,
    [](readCodes& controller) { controller.readMode6Support(); }};
constexpr result_words misfire_words{
    "misfire", part::misfire, "Misfire", "nav_misfire.png",
    "No counts read yet. Press Read (F5) with the ignition on.\n"
    "It reads the misfires counted by cylinder.",
    "No misfire counts were received.", op_misfire,
    [](readCodes& controller) { controller.readMisfire(); }};
constexpr result_words o2_words{
    "o2", part::o2, "O2 tests", "nav_o2.png",
    "No tests read yet. Press Read (F5) with the ignition on.\n"
    "It reads the test results of the oxygen sensors.",
    "No test results of oxygen sensors were received.", op_o2_tests,
    [](readCodes& controller) { controller.readO2(); }};
constexpr result_words extras_words{
    "extras", part::extras, "Extras", "nav_extras.png",
    "Nothing read yet. Press Read (F5) with the ignition on.\n"
    "It reads values of one maker, from a list of commands.",
    "Nothing was received.", op_extras,
    [](readCodes& controller) { controller.readXtras(); }};

constexpr std::array<rail_page, 7> rail_pages{{
    codes_entry,
    {pending_words.title, pending_words.icon},
    {vehicle_words.title, vehicle_words.icon},
    {mode6_words.title,   mode6_words.icon},
    {misfire_words.title, misfire_words.icon},
    {o2_words.title,      o2_words.icon},
    {extras_words.title,  extras_words.icon},
}};
// clang-format on

constexpr int codes_at = 0;
constexpr int pending_at = 1;
constexpr int mode6_at = 3;
constexpr int narrowest_rail = 200;
constexpr int widest_rail = 264;
constexpr int rail_icon_size = 20;

} // namespace

read_codes_view::read_codes_view(const view_context& its_context)
    : screen_view(its_context), ui(laid_out_in<Ui::read_codes_view>(*this)),
      codes_controller(context.core.car, context.link, context.core.toolies, context.window,
                       context.core.diagnostics, context.core.paths),
      codes(ui, context, codes_controller), report(*ui.report, context, codes_controller) {
    add_pages();
    for (const rail_page& page : rail_pages)
        ui.rail->addItem(QLatin1String(page.title));
    ui.rail->setIconSize({rail_icon_size, rail_icon_size});
    connect(ui.rail, &QListWidget::currentRowChanged, ui.pages, &QStackedWidget::setCurrentIndex);
    connect(ui.pages, &QStackedWidget::currentChanged, this, [this](int row) {
        report.show_page(row > codes_at ? others.at(static_cast<size_t>(row) - 1)->operation()
                                        : op_read_codes);
    });
    ui.rail->setCurrentRow(codes_at);
    connect(&codes.pane(), &code_pane::frame_asked_for, this, [this] { ui.rail->setCurrentRow(pending_at); });
    connect(&codes.pane(), &code_pane::tests_asked_for, this, [this] { ui.rail->setCurrentRow(mode6_at); });
    begin_at(*ui.read);
    connect(&context.link, &adapter_link::condition_changed, this, [this] {
        if (codes_controller.is_running())
            show_busy(true); // the link opened, or was lost
    });
    codes_controller.operation_ended = [this](bool done) {
        for (const auto& page : others)
            page->ended(codes_controller.cur_op(), done);
    };
}

// The widgets go last, and must not ask a controller that is gone.
read_codes_view::~read_codes_view() {
    ui.rail->disconnect(ui.pages);
    ui.pages->disconnect(this);
    codes_controller.operation_ended = nullptr;
}

template <class page, class... cells>
void read_codes_view::add_page(const result_words& words, cells&&... its_cells) {
    others.push_back(std::make_unique<page>(*ui.pages, context, codes_controller, words,
                                            std::forward<cells>(its_cells)...));
}

void read_codes_view::add_pages() {
    const auto text = [](const char* heading) { return QString::fromLatin1(heading); };
    add_page<pending_page>(pending_words);
    add_page<text_page>(vehicle_words, QStringList{text("PID"), text("Name"), text("Value")}, vehicle_cells);
    for (const result_words& words : {mode6_words, misfire_words, o2_words})
        add_page<tests_page>(words);
    add_page<text_page>(extras_words, QStringList{text("Label"), text("Value")}, extras_cells);
}

void read_codes_view::start() {
    const int row = ui.pages->currentIndex();
    if (row == codes_at)
        codes.start();
    else if (row > codes_at)
        others.at(static_cast<size_t>(row) - 1)->start();
}

void read_codes_view::stop() {
    if (codes_controller.is_running())
        codes_controller.stop();
}

void read_codes_view::reload(part what) {
    codes.reload(what);
    for (const auto& page : others)
        page->reload(what);
    report.show_operation();
}

void read_codes_view::show_busy(bool) {
    codes.show_operation();
    for (const auto& page : others)
        page->show_operation();
    report.show_operation();
}

void read_codes_view::look_changed() {
    for (int row = 0; row < ui.rail->count(); ++row)
        ui.rail->item(row)->setIcon(
            context.frame.look().icon(QLatin1String(rail_pages.at(static_cast<size_t>(row)).icon)));
    ui.rail->setFixedWidth(
        std::clamp(ui.rail->sizeHintForColumn(0) + 2 * theme::step, narrowest_rail, widest_rail));
    codes.look_changed();
    for (const auto& page : others)
        page->look_changed();
    report.show_operation();
}

} // namespace brivant
