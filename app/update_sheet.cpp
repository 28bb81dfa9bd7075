#include "app/update_sheet.h"

#include "app/look/theme.h"

#include <QDir>

namespace brivant {

namespace {

constexpr int card_width = 560;
constexpr int bar_parts = 1000;

QString megabytes(qint64 bytes) {
    constexpr double megabyte = 1e6;
    return QStringLiteral("%1 MB").arg(static_cast<double>(bytes) / megabyte, 0, 'f', 1);
}

} // namespace

update_sheet::update_sheet(QWidget& asked_by, program_core& its_core)
    : card_sheet(asked_by, QStringLiteral("Updates"), card_width), core(its_core) {
    lay_out();
    server.setText(core.defaults.value(setting::update_server));
    connect(&updates, &update_check::finished, this, &update_sheet::step_done);
    connect(&updates, &update_check::progress, this, &update_sheet::show_progress);
    connect(&server, &QLineEdit::textChanged, this, &update_sheet::show_state);
    connect(&server, &QLineEdit::returnPressed, this, &update_sheet::check);
    connect(close_button, &QPushButton::clicked, this, &update_sheet::close_sheet);
    connect(stop_button, &QPushButton::clicked, &updates, &update_check::stop);
    connect(check_button, &QPushButton::clicked, this, &update_sheet::check);
    connect(download_button, &QPushButton::clicked, this, &update_sheet::download);
}

void update_sheet::lay_out() {
    add_text(QStringLiteral("This is version " BV_VERSION
                            ". A server is asked for a newer one only from here, and "
                            "nothing that it sends is run."),
             "muted");
    QLabel* label = add_text(QStringLiteral("Address of the update server"), "caption");
    label->setBuddy(&server);
    server.setObjectName(QStringLiteral("update_server"));
    server.setAccessibleName(label->text());
    server.setPlaceholderText(QStringLiteral("https://example.org/brivant-lite"));
    content()->addWidget(&server);
    said = add_text(QString(), "muted");
    said->setObjectName(QStringLiteral("update_words"));
    said->setTextInteractionFlags(Qt::TextSelectableByMouse);
    content()->addWidget(&bar);
    close_button = add_button(QStringLiteral("Close"), "update_close", false);
    stop_button = add_button(QStringLiteral("Stop"), "update_stop", false);
    check_button = add_button(QStringLiteral("Check"), "update_check", true);
    download_button = add_button(QStringLiteral("Download"), "update_download", true);
}

void update_sheet::open_and_check() {
    const bool is_set = !server.text().trimmed().isEmpty();
    say(is_set
            ? QString()
            : QStringLiteral("No update server is set, so none was asked. Whoever gave you the program can "
                             "tell its address."),
        false);
    show_state();
    if (is_set) {
        open(*close_button);
        check();
    } else {
        open(server);
    }
}

void update_sheet::check() {
    const QString address = server.text().trimmed();
    if (const QString problem = update_server_problem(address); !problem.isEmpty()) {
        say(problem, true);
        return server.setFocus();
    }
    core.defaults.set(setting::update_server, address);
    say(QStringLiteral("The server is asked ..."), false);
    updates.check(address);
    show_state();
}

void update_sheet::download() {
    say(QStringLiteral("The archive is fetched ..."), false);
    updates.download(core.paths.documents);
    show_state();
}

void update_sheet::show_progress(qint64 received, qint64 total) {
    bar.set_progress(total > 0 ? static_cast<int>(bar_parts * received / total) : 0,
                     total > 0 ? bar_parts : 0);
    if (total > 0)
        say(QStringLiteral("%1 of %2").arg(megabytes(received), megabytes(total)), false);
}

void update_sheet::step_done(const QString& problem) {
    if (!problem.isEmpty())
        say(problem, true);
    else if (!updates.file().isEmpty())
        say(QStringLiteral(
                "Version %1 is in %2. Its size and SHA-256 are right. Close the program before you "
                "install it.")
                .arg(updates.found()->version.toString(), QDir::toNativeSeparators(updates.file())),
            false);
    else if (updates.is_newer())
        say(QStringLiteral("Version %1 is there (%2).")
                .arg(updates.found()->version.toString(), megabytes(updates.found()->size)),
            false);
    else
        say(QStringLiteral("This is the newest version."), false);
    show_state();
    (download_button->isHidden() ? close_button : download_button)->setFocus();
}

void update_sheet::show_state() {
    const bool runs = updates.is_running();
    const bool can_fetch = !runs && updates.is_newer() && updates.file().isEmpty();
    bar.set_running(runs);
    server.setEnabled(!runs);
    stop_button->setVisible(runs);
    download_button->setVisible(can_fetch);
    check_button->setVisible(!runs && !can_fetch);
    check_button->setEnabled(!server.text().trimmed().isEmpty());
    if (runs)
        stop_button->setFocus();
}

void update_sheet::say(const QString& sentence, bool is_problem) {
    theme::mark(*said, "role", is_problem ? QStringLiteral("problem") : QStringLiteral("muted"));
    said->setText(sentence);
    said->setAccessibleName(sentence);
}

} // namespace brivant
