#include "app/first_start_sheet.h"

#include "app/look/theme.h"

namespace brivant {

namespace {

constexpr int card_width = 640;

} // namespace

bool first_start_sheet::is_due(const program_core& core) {
    return core.options.link == launch_options::link_choice::as_stored &&
           !core.defaults.value(setting::greeted) && !core.defaults.has(setting::bluetooth_address) &&
           core.defaults.value(setting::known_adapters).isEmpty();
}

first_start_sheet::first_start_sheet(QWidget& asked_by, program_core& its_core)
    : card_sheet(asked_by, QStringLiteral("Welcome to Brivant Lite"), card_width), core(its_core),
      metric(new QRadioButton(QStringLiteral("km/h, \u00b0C, litres"))),
      imperial(new QRadioButton(QStringLiteral("mph, \u00b0F, gallons"))) {
    setObjectName(QStringLiteral("first_start"));
    add_text(QStringLiteral("How does your adapter reach this computer?"), "body");
    offer("first_find", QStringLiteral("Find it for me"),
          QStringLiteral("Plug it in and switch the ignition on: Wi-Fi, USB and Bluetooth are asked"),
          &first_start_sheet::find_wanted);
    offer("first_links", QStringLiteral("Bluetooth or USB"), QStringLiteral("Choose it in the list of links"),
          &first_start_sheet::links_wanted);
    offer("first_wifi", QStringLiteral("Wi-Fi"), QStringLiteral("Join the adapter's network first"),
          &first_start_sheet::wifi_wanted);
    offer("first_demo", QStringLiteral("I have none yet"), QStringLiteral("Look around with a demo car"),
          &first_start_sheet::demo_wanted);
    add_text(QStringLiteral("Units"), "caption");
    auto* units = new QHBoxLayout;
    metric->setObjectName(QStringLiteral("first_metric"));
    imperial->setObjectName(QStringLiteral("first_imperial"));
    (core.defaults.value(setting::metric_units) ? metric : imperial)->setChecked(true);
    units->addWidget(metric);
    units->addWidget(imperial);
    units->addStretch();
    content()->addLayout(units);
    QPushButton* later = add_button(QStringLiteral("Later"), "first_later", false);
    connect(later, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(this, &card_sheet::closed, this, &first_start_sheet::keep_units);
}

void first_start_sheet::offer(const char* name, const QString& text, const QString& words,
                              void (first_start_sheet::*wanted)()) {
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAccessibleDescription(words);
    button->setMinimumWidth(card_width / 3);
    theme::mark(*button, "large", true);
    auto* about = new QLabel(words);
    about->setProperty("role", QStringLiteral("muted"));
    about->setWordWrap(true);
    auto* row = new QHBoxLayout;
    row->setSpacing(2 * theme::step);
    row->addWidget(button);
    row->addWidget(about, 1);
    content()->addLayout(row);
    if (!first)
        first = button;
    connect(button, &QPushButton::clicked, this, [this, wanted] {
        close_sheet();
        Q_EMIT(this->*wanted)();
    });
}

void first_start_sheet::open_first() {
    open(*first);
}

// However it is left, it does not come again.
void first_start_sheet::keep_units() {
    core.defaults.set(setting::greeted, true);
    const bool changes = core.defaults.value(setting::metric_units) != metric->isChecked();
    if (changes)
        core.defaults.choose(setting::metric_units, metric->isChecked());
    core.defaults.synchronise();
    if (changes)
        Q_EMIT units_chosen();
}

} // namespace brivant
