#include "app/device_chooser.h"

#include "app/look/tables.h"
#include "app/look/theme.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace brivant {

namespace {

constexpr int card_width = 640;
constexpr int list_height = 264;
constexpr int row_height = 44;
constexpr int medallion_size = 72;
constexpr int icon_size = 40;
constexpr int list_page = 0;
constexpr int empty_page = 1;
enum list_column { name_column, address_column, kind_column, state_column, column_count };

QString kind_of(const bluetooth_device& device) {
    return device.is_le ? QStringLiteral("Bluetooth LE") : QStringLiteral("Bluetooth");
}

// Most devices of Bluetooth LE need no pairing, so that its lack tells nothing.
QString state_of(const bluetooth_device& device, const QString& last_address) {
    QString words = device.paired ? QStringLiteral("paired") : QStringLiteral("not paired");
    if (device.is_le && !device.paired)
        words = QStringLiteral("found");
    if (!device.is_le && device.paired && device.knows_services && !device.serial_port)
        words = QStringLiteral("no serial port");
    if (device.address == last_address)
        words += QStringLiteral(", last used");
    return words;
}

} // namespace

device_chooser::device_chooser(QWidget& asked_by, const theme& look, timers& clock, const QString& last_used,
                               const QString& why, answer its_answer)
    : card_sheet(asked_by, QStringLiteral("Choose the Bluetooth adapter"), card_width), scanner(clock),
      waiting(std::move(its_answer)), last_address(last_used.toUpper()), pages(new QStackedWidget),
      list(new QTableWidget(0, column_count)), more(new QPushButton), progress(new busy_bar) {
    setObjectName(QStringLiteral("device_chooser"));
    if (!why.isEmpty())
        theme::mark(*add_text(why, "body"), "warning", true);
    set_up_list();
    pages->addWidget(list);
    pages->addWidget(make_empty_page(look));
    pages->setFixedHeight(list_height);
    auto* found = new QVBoxLayout;
    found->setSpacing(theme::step);
    found->addWidget(pages);
    found->addWidget(progress);
    found->addWidget(more, 0, Qt::AlignLeft);
    content()->addLayout(found);
    sentence = add_text(QString(), "muted");
    sentence->setObjectName(QStringLiteral("device_sentence"));
    sentence->setMinimumHeight(sentence->fontMetrics().lineSpacing() * 2); // so that nothing jumps
    sentence->setAlignment(Qt::AlignTop | Qt::AlignLeft);

    more->setObjectName(QStringLiteral("device_more"));
    more->setCheckable(true);
    more->setAutoDefault(true);
    more->setToolTip(QStringLiteral("The devices that do not look like adapters (Alt+M)"));
    more->setAccessibleName(QStringLiteral("More devices, which do not look like adapters"));
    rescan = add_button(QStringLiteral("Rescan"), "device_rescan", false);
    rescan->setToolTip(QStringLiteral("Look for devices again (F5)"));
    take = add_button(QStringLiteral("Connect"), "device_connect", true);
    cancel = add_button(QStringLiteral("Cancel"), "device_cancel", false);
    connect(more, &QPushButton::toggled, this, &device_chooser::show_surroundings);
    connect(rescan, &QPushButton::clicked, &scanner, &bluetooth_scanner::start);
    connect(take, &QPushButton::clicked, this, &device_chooser::take_selected);
    connect(cancel, &QPushButton::clicked, this, &card_sheet::close_sheet);
    connect(this, &card_sheet::closed, this, &device_chooser::finish_without);
    connect(&scanner, &bluetooth_scanner::changed, this, &device_chooser::show_surroundings);
}

device_chooser::~device_chooser() {
    scanner.disconnect(this);
    finish_without();
}

void device_chooser::set_up_list() {
    list->setObjectName(QStringLiteral("device_list"));
    list->setAccessibleName(QStringLiteral("Bluetooth devices"));
    list->setHorizontalHeaderLabels(
        {QStringLiteral("Name"), QStringLiteral("Address"), QStringLiteral("Kind"), QStringLiteral("State")});
    list->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    make_list(*list, name_column, row_height);
    connect(list, &QTableWidget::itemSelectionChanged, this, &device_chooser::show_hint);
    connect(list, &QTableWidget::itemActivated, this, &device_chooser::take_selected);
}

QWidget* device_chooser::make_empty_page(const theme& look) {
    auto* page = new QWidget;
    auto* words = new QVBoxLayout(page);
    words->setSpacing(2 * theme::step);
    auto* icon = new QLabel;
    icon->setProperty("role", QStringLiteral("medallion"));
    icon->setFixedSize(medallion_size, medallion_size);
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(look.enlarged(QStringLiteral("bluetooth.png"), icon_size, devicePixelRatioF()));
    empty_text = new QLabel;
    empty_text->setObjectName(QStringLiteral("device_problem"));
    empty_note = new QLabel(QStringLiteral("The list comes by itself as soon as Bluetooth can be used."));
    empty_note->setProperty("role", QStringLiteral("muted"));
    words->addStretch();
    words->addWidget(icon, 0, Qt::AlignHCenter);
    for (QLabel* label : {empty_text, empty_note}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        words->addWidget(label);
    }
    words->addStretch();
    return page;
}

void device_chooser::open() {
    scanner.start();
    show_surroundings();
    const bool has_list = pages->currentIndex() == list_page;
    card_sheet::open(has_list ? static_cast<QWidget&>(*list) : rescan->isEnabled() ? *rescan : *cancel);
}

void device_chooser::show_surroundings() {
    const bool usable = scanner.now() != bluetooth_scanner::phase::unusable;
    const QList<bluetooth_device> rows = offered();
    const qsizetype others = scanner.devices().size() - rows.size();
    progress->set_running(scanner.now() == bluetooth_scanner::phase::asking ||
                          scanner.now() == bluetooth_scanner::phase::scanning);
    rescan->setEnabled(scanner.now() == bluetooth_scanner::phase::done || !usable);
    more->setEnabled(others > 0 || more->isChecked());
    more->setText(more->isChecked() ? QStringLiteral("&Fewer") : QStringLiteral("&More (%1)").arg(others));
    more->setVisible(usable);
    const bool has_others_only =
        scanner.now() == bluetooth_scanner::phase::done && rows.isEmpty() && others > 0;
    empty_text->setText(has_others_only
                            ? QStringLiteral("None of the devices around looks like an adapter. Plug it in, "
                                             "switch the ignition on, and look again; or choose among the "
                                             "others with More.")
                            : scanner.sentence());
    empty_note->setVisible(!usable);
    const int page = usable && !rows.isEmpty() ? list_page : empty_page;
    const bool list_came = page == list_page && page != pages->currentIndex();
    pages->setCurrentIndex(page);
    if (list_came)
        list->setFocus();
    show_devices(rows);
    show_hint();
}

// Those that can be an adapter, and the one used last; all when the person wants to see more.
QList<bluetooth_device> device_chooser::offered() const {
    QList<bluetooth_device> rows = scanner.devices();
    if (!more->isChecked())
        rows.removeIf([this](const bluetooth_device& device) {
            return !device.may_be_adapter && device.address != last_address;
        });
    return rows;
}

// The selection follows its device, wherever that stands now.
void device_chooser::show_devices(const QList<bluetooth_device>& rows) {
    if (shown == rows)
        return;
    const QString before = selected() ? selected()->address : QString();
    const QSignalBlocker quiet(list);
    shown = rows;
    list->setRowCount(static_cast<int>(shown.size()));
    list->clearSelection();
    for (int row = 0; row < shown.size(); ++row) {
        const bluetooth_device& device = shown.at(row);
        const QString texts[column_count] = {device.name, device.address, kind_of(device),
                                             state_of(device, last_address)};
        for (int at = 0; at < column_count; ++at)
            list->setItem(row, at, new QTableWidgetItem(texts[at]));
        if (device.address == before)
            list->setCurrentCell(row, name_column);
    }
    if (!selected())
        select_first_choice();
}

// The device used last, or else an adapter that is paired.
void device_chooser::select_first_choice() {
    auto found = std::find_if(shown.begin(), shown.end(), [this](const bluetooth_device& device) {
        return device.address == last_address;
    });
    if (found == shown.end())
        found = std::find_if(shown.begin(), shown.end(), [](const bluetooth_device& device) {
            return device.paired && device.serial_port;
        });
    if (found != shown.end())
        list->setCurrentCell(static_cast<int>(found - shown.begin()), name_column);
}

void device_chooser::show_hint() {
    const bluetooth_device* device = selected();
    const bool usable = pages->currentIndex() == list_page;
    take->setEnabled(usable && device);
    if (usable && device && !device->paired && !device->is_le)
        sentence->setText(QStringLiteral("%1 is not paired yet. %2.").arg(device->name, pairing_advice()));
    else
        sentence->setText(usable ? scanner.sentence() : QString());
}

const bluetooth_device* device_chooser::selected() const {
    const QModelIndexList rows = list->selectionModel()->selectedRows();
    return rows.isEmpty() || rows.first().row() >= shown.size() ? nullptr : &shown.at(rows.first().row());
}

void device_chooser::take_selected() {
    if (!take->isEnabled())
        return;
    const bluetooth_device chosen = *selected();
    scanner.stop(); // connecting is slow while the radio looks for devices
    const answer tell = std::exchange(waiting, nullptr);
    close_sheet();
    if (tell)
        tell(chosen.is_le ? chosen.where().text() : chosen.address, chosen.name);
}

void device_chooser::finish_without() {
    scanner.stop();
    if (const answer tell = std::exchange(waiting, nullptr))
        tell(QString(), QString());
}

void device_chooser::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F5)
        rescan->click();
    else
        card_sheet::keyPressEvent(event);
}

} // namespace brivant
