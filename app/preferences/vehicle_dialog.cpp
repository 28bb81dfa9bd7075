#include "app/preferences/vehicle_dialog.h"

#include "app/look/painting.h"

#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QStandardPaths>

#include <array>

namespace brivant {

namespace {

constexpr int dialog_width = 520;
constexpr int label_width = 96;
constexpr QSize photo_size{192, 128};
constexpr int longest_typed = 200;

// The one file of a drag, "" when it is something else.
QString file_of(const QMimeData& what) {
    const QList<QUrl> urls = what.urls();
    return urls.size() == 1 && urls.first().isLocalFile() ? urls.first().toLocalFile() : QString();
}

} // namespace

vehicle_dialog::vehicle_dialog(QWidget& asked_by, const view_context& its_context, vehicle_list& its_list,
                               const vehicle& what, const QImage& its_photo)
    : card_sheet(asked_by, what.id < 0 ? QStringLiteral("Add Vehicle") : QStringLiteral("Edit Vehicle"),
                 dialog_width),
      context(its_context), list(its_list), mode(what.id < 0 ? add : edit), veh_id(what.id) {
    setObjectName(QStringLiteral("vehicle_dialog"));
    setAcceptDrops(true);
    connect(&reading, &photo_reading::done, this, &vehicle_dialog::take_photo);
    add_text(QStringLiteral("Enter car values "), "muted");
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2 * theme::step);
    grid->setVerticalSpacing(theme::step / 2);
    grid->setColumnMinimumWidth(0, label_width);
    grid->setColumnStretch(1, 1);
    content()->addLayout(grid);
    add_photo(*grid);
    name = add_field(*grid, QStringLiteral("Nickname:"), "vehicle_name", QStringLiteral("My cool car"),
                     what.name, vehicle_list::name_problem);
    year = add_field(*grid, QStringLiteral("Model Year:"), "vehicle_year", QStringLiteral("yyyy"),
                     what.model_year, vehicle_list::year_problem);
    volume = add_field(*grid, QStringLiteral("Eng Displ:"), "vehicle_volume", QStringLiteral("x.y Lts."),
                       what.engine_volume, vehicle_list::volume_problem);
    show_photo(its_photo);
    connect(add_button(QStringLiteral("OK"), "vehicle_ok", true), &QPushButton::clicked, this,
            &vehicle_dialog::save);
    connect(add_button(QStringLiteral("Cancel"), "vehicle_cancel", false), &QPushButton::clicked, this,
            &card_sheet::close_sheet);
}

void vehicle_dialog::add_photo(QGridLayout& grid) {
    auto* label = new QLabel(QStringLiteral("Avatar:"));
    photo = new QLabel;
    photo->setObjectName(QStringLiteral("vehicle_avatar"));
    photo->setFixedSize(photo_size);
    photo->setAccessibleName(QStringLiteral("Photo of the vehicle"));
    photo_button = new QPushButton(QStringLiteral("Choose picture..."));
    photo_button->setObjectName(QStringLiteral("vehicle_choose_photo"));
    photo_button->setAutoDefault(true);
    connect(photo_button, &QPushButton::clicked, this, &vehicle_dialog::choose_photo);
    photo_problem = new QLabel;
    photo_problem->setObjectName(QStringLiteral("vehicle_photo_problem"));
    photo_problem->setTextFormat(Qt::PlainText);
    photo_problem->setWordWrap(true);
    tell(*photo_problem, {});

    auto* beside = new QVBoxLayout;
    beside->setSpacing(theme::step);
    beside->addStretch();
    beside->addWidget(photo_button, 0, Qt::AlignLeft);
    beside->addStretch();
    auto* row = new QHBoxLayout;
    row->setSpacing(2 * theme::step);
    row->addWidget(photo);
    row->addLayout(beside, 1);
    grid.addWidget(label, 0, 0, Qt::AlignTop);
    grid.addLayout(row, 0, 1);
    grid.addWidget(photo_problem, 1, 1);
}

vehicle_dialog::field vehicle_dialog::add_field(QGridLayout& grid, const QString& label,
                                                const char* object_name, const QString& placeholder,
                                                const QString& text, QString (*check)(const QString&)) {
    field one{new QLineEdit(text), new QLabel, check, text};
    one.line->setObjectName(QLatin1String(object_name));
    one.line->setPlaceholderText(placeholder);
    one.line->setMaxLength(longest_typed);
    one.problem->setObjectName(QLatin1String(object_name) + QStringLiteral("_problem"));
    one.problem->setProperty("role", QStringLiteral("problem"));
    one.problem->setTextFormat(Qt::PlainText);
    one.problem->setWordWrap(true);
    one.problem->hide();
    auto* its_label = new QLabel(label);
    its_label->setBuddy(one.line);
    one.line->setAccessibleName(label.chopped(1));
    const int row = grid.rowCount();
    grid.setRowMinimumHeight(row, 1);
    grid.addWidget(its_label, row, 0);
    grid.addWidget(one.line, row, 1);
    grid.addWidget(one.problem, row + 1, 1);
    connect(one.line, &QLineEdit::textEdited, this, [this, one] { check_field(one, false); });
    connect(one.line, &QLineEdit::returnPressed, this, &vehicle_dialog::save);
    return one;
}

void vehicle_dialog::open() {
    card_sheet::open(*name.line);
    name.line->selectAll();
}

bool vehicle_dialog::check_field(const field& one, bool strict) {
    const bool is_as_before = veh_id >= 0 && !one.before.isEmpty() && one.line->text() == one.before;
    const QString problem = is_as_before ? QString() : one.check(one.line->text());
    // Who has just begun to type a year is not told that it is too short.
    const bool is_on_its_way = one.line == year.line && one.line->text().size() < 4;
    if (strict || !is_on_its_way || problem.isEmpty())
        tell(*one.problem, problem);
    return problem.isEmpty();
}

void vehicle_dialog::tell(QLabel& label, const QString& problem) {
    if (&label == photo_problem) { // the room of the help stays
        theme::mark(label, "role", problem.isEmpty() ? QStringLiteral("small") : QStringLiteral("problem"));
        label.setText(problem.isEmpty() ? QStringLiteral("Or drop a picture file here.") : problem);
        return;
    }
    label.setText(problem);
    label.setVisible(!problem.isEmpty());
}

// --- the picture -------------------------------------------------------------------------------------------

void vehicle_dialog::choose_photo() {
    auto* dialog = new QFileDialog(this, QStringLiteral("Picture of the vehicle"), QString(),
                                   QStringLiteral("Pictures (%1);;All files (*)").arg(photo_file_patterns()));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    dialog->setDirectory(QDir(pictures).exists() ? pictures : QDir::homePath());
    connect(dialog, &QFileDialog::fileSelected, this, &vehicle_dialog::take_photo_file);
    dialog->open();
}

void vehicle_dialog::take_photo_file(const QString& file) {
    reading.begin(file);
    photo_problem->setText(QStringLiteral("The picture is read ..."));
}

void vehicle_dialog::take_photo(const photo_file& read) {
    tell(*photo_problem, read.problem);
    if (read.photo.isNull())
        return;
    new_photo = read.photo;
    show_photo(new_photo);
}

void vehicle_dialog::show_photo(const QImage& image) {
    const QImage shown = image.isNull() ? QImage(QStringLiteral(":/artwork/car_base2@2x.png")) : image;
    photo->setPixmap(rounded_picture(shown, photo_size, devicePixelRatioF()));
}

void vehicle_dialog::dragEnterEvent(QDragEnterEvent* event) {
    if (!file_of(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void vehicle_dialog::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    take_photo_file(file_of(*event->mimeData()));
}

// --- OK ----------------------------------------------------------------------------------------------------

void vehicle_dialog::save() {
    const std::array fields{name, year, volume};
    const QLineEdit* wrong = nullptr;
    for (const field& one : fields) {
        if (!check_field(one, true) && !wrong) {
            wrong = one.line;
            one.line->setFocus(Qt::OtherFocusReason);
        }
    }
    if (wrong || reading.is_running()) // the picture belongs to it
        return;
    const vehicle_list::saved saved = list.saveCurCarVals(
        veh_id, {name.line->text().trimmed(), year.line->text(), volume.line->text().trimmed()}, new_photo);
    if (saved.id > 0) {
        veh_id = saved.id; // another OK stores what is left of it
        Q_EMIT stored(saved.id, mode);
    }
    if (saved.problem.isEmpty())
        return close_sheet();
    if (saved.id > 0)
        return tell(*photo_problem, saved.problem);
    tell(*name.problem, saved.problem);
    name.line->setFocus(Qt::OtherFocusReason);
}

} // namespace brivant
