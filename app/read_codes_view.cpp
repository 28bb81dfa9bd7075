#include "app/read_codes_view.h"

#include <algorithm>
#include <array>

namespace {

struct rail_page {
    const char* name;
    const char* icon;
    const char* not_yet; // what the page will do, null for one that is there
};

// clang-format off
constexpr std::array<rail_page, 7> rail_pages{{
    {"Codes",                    "nav_codes.png",   nullptr},
    {"Pending and freeze frame", "nav_pending.png",
     "faults seen but not yet confirmed, and what the engine was doing when a code was stored."},
    {"Vehicle",                  "nav_vehicle.png",
     "battery voltage, identification number (VIN), control units, and the values that they report."},
    {"Mode 6",                   "nav_mode6.png",
     "the tests that the car runs on itself, each result with its limits."},
    {"Misfire",                  "nav_misfire.png", "misfires counted by cylinder."},
    {"O2 tests",                 "nav_o2.png",      "the test results of the oxygen sensors."},
    {"Extras",                   "nav_extras.png",  "values of one maker, from a list of commands."},
}};
// clang-format on

constexpr int codes_at = 0;
constexpr int later_at = 1;
constexpr int narrowest_rail = 200;
constexpr int widest_rail = 264;
constexpr int rail_icon_size = 20;
constexpr int page_icon_size = 32;

const rail_page& page_of(int row) {
    return rail_pages[static_cast<size_t>(std::clamp(row, 0, static_cast<int>(rail_pages.size()) - 1))];
}

} // namespace

read_codes_view::read_codes_view(const view_context& its_context)
    : screen_view(its_context, QStringLiteral("read_codes_view")),
      toolies(context.core.state, context.core.defaults, context.core.db),
      codes_controller(context.core.state, context.delegate, toolies, context.window,
                       context.core.diagnostics, context.core.paths),
      rail(part<QListWidget>("rail")), pages(part<QStackedWidget>("pages")),
      codes(*this, context, codes_controller) {
    part<QLabel>("later_title");
    part<QLabel>("later_text");
    part<QLabel>("later_icon");
    for (const rail_page& page : rail_pages)
        rail.addItem(QLatin1String(page.name));
    rail.setIconSize({rail_icon_size, rail_icon_size});
    connect(&rail, &QListWidget::currentRowChanged, this, &read_codes_view::show_page);
    rail.setCurrentRow(codes_at);
    setFocusProxy(&part<QPushButton>("read"));
}

// The widgets go last, and must not ask a controller that is gone.
read_codes_view::~read_codes_view() {
    rail.disconnect(this);
}

void read_codes_view::show_page(int row) {
    const rail_page& page = page_of(row);
    pages.setCurrentIndex(page.not_yet ? later_at : codes_at);
    if (!page.not_yet)
        return;
    part<QLabel>("later_title").setText(QLatin1String(page.name));
    part<QLabel>("later_text")
        .setText(QStringLiteral("Not available yet: %1").arg(QLatin1String(page.not_yet)));
    part<QLabel>("later_icon")
        .setPixmap(
            context.frame.look().enlarged(QLatin1String(page.icon), page_icon_size, devicePixelRatioF()));
}

void read_codes_view::start() {
    if (pages.currentIndex() == codes_at)
        codes.start();
}

void read_codes_view::stop() {
    if (codes_controller.is_running())
        codes_controller.stop();
}

void read_codes_view::look_changed() {
    for (int row = 0; row < rail.count(); ++row)
        rail.item(row)->setIcon(context.frame.look().icon(QLatin1String(page_of(row).icon)));
    rail.setFixedWidth(std::clamp(rail.sizeHintForColumn(0) + 2 * theme::step, narrowest_rail, widest_rail));
    show_page(rail.currentRow());
    codes.look_changed();
}
