#include "app/logs/export_progress.h"

#include "app/look/numbers.h"
#include "app/look/theme.h"
#include "base/work_a_moment.h"

#include <QHBoxLayout>
#include <algorithm>

namespace brivant {

namespace {

constexpr int lines_at_once = 100;
constexpr int slice_ms = 12; // below a frame of the screen
constexpr int bar_parts = 1000;
constexpr qsizetype most_named = 4;

// The paths, one a line; of many only the first.
QString listed(const QStringList& paths) {
    QString text = paths.first(std::min(paths.size(), most_named)).join(u'\n');
    if (paths.size() > most_named)
        text += QStringLiteral("\nand %1 more there").arg(paths.size() - most_named);
    return text;
}

} // namespace

export_progress::export_progress(program_core& its_core, QWidget* parent)
    : QFrame(parent), core(its_core), stop_button(QStringLiteral("Stop")) {
    setProperty("role", QStringLiteral("card"));
    setAccessibleName(QStringLiteral("Export"));
    title.setProperty("role", QStringLiteral("strong"));
    for (QLabel* label : {&title, &said}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setFocusPolicy(Qt::ClickFocus);
    }
    said.setObjectName(QStringLiteral("export_words"));
    stop_button.setObjectName(QStringLiteral("export_stop"));
    stop_button.setAccessibleName(QStringLiteral("Stop the export"));
    stop_button.setToolTip(QStringLiteral("Stop the export; the file that is being written goes (Esc)"));
    close_button.setText(QStringLiteral("\u2715"));
    close_button.setToolTip(QStringLiteral("Dismiss"));
    close_button.setAccessibleName(QStringLiteral("Dismiss what the export says"));

    auto* words = new QVBoxLayout;
    words->setSpacing(theme::step / 2);
    words->addWidget(&title);
    words->addWidget(&said);
    words->addWidget(&bar);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2 * theme::step, 3 * theme::step / 2, 2 * theme::step, 3 * theme::step / 2);
    row->setSpacing(2 * theme::step);
    row->addLayout(words, 1);
    row->addWidget(&stop_button, 0, Qt::AlignVCenter);
    row->addWidget(&close_button, 0, Qt::AlignTop);

    connect(&stop_button, &QPushButton::clicked, this, &export_progress::stop);
    connect(&close_button, &QToolButton::clicked, this, &QWidget::hide);
    connect(&slices, &QTimer::timeout, this, &export_progress::write_slice);
    hide();
}

export_settings export_progress::settings(const run_format* format) const {
    return {.documents = core.paths.documents,
            .application_folder = core.paths.application_folder,
            .units = core.toolies.units(),
            .by_standard = core.toolies.standard_reading(),
            .time_column = core.defaults.value(setting::time_stamps),
            .format = format};
}

void export_progress::start(const QList<int>& log_ids, bool as_txt, const run_format* format) {
    if (is_running() || log_ids.isEmpty())
        return;
    waiting = log_ids;
    asked = log_ids.size();
    as_text = as_txt;
    written.clear();
    exporting = std::make_unique<log_export>(core.db, lists, settings(format));
    theme::mark(said, "role", QVariant());
    title.show();
    bar.show();
    bar.set_running(true);
    stop_button.show();
    close_button.hide();
    show();
    begin_next();
}

void export_progress::begin_next() {
    if (!exporting->begin(waiting.takeFirst(), as_text))
        return fail();
    show_progress();
    slices.start(0);
}

void export_progress::write_slice() {
    const bool more = work_a_moment([this] { return exporting->step(lines_at_once); });
    show_progress();
    if (more)
        return;
    slices.stop();
    if (!exporting->succeeded())
        return fail();
    if (!written.contains(exporting->path())) // two logs of one second and type have one file
        written += exporting->path();
    if (!waiting.isEmpty())
        return begin_next();
    end(QString(), QStringLiteral("Exported to loggies folder in Documents\n\n") + listed(written), false);
}

void export_progress::show_progress() {
    const qint64 done = exporting->lines_written();
    const qint64 all = exporting->lines_announced();
    title.setText(asked == 1 ? QStringLiteral("Exporting")
                             : QStringLiteral("Exporting %1 of %2").arg(asked - waiting.size()).arg(asked));
    const QString lines = grouped(done);
    said.setText(all > done ? QStringLiteral("%1 of %2 lines").arg(lines, grouped(all))
                            : QStringLiteral("%1 lines").arg(lines));
    bar.set_progress(all > 0 ? static_cast<int>(bar_parts * std::min(done, all) / all) : 0,
                     all > 0 ? bar_parts : 0);
}

void export_progress::stop() {
    if (!is_running())
        return;
    exporting->stop();
    end(QStringLiteral("The export was stopped"),
        written.isEmpty() ? QStringLiteral("No file was written.") : files_before(), false);
}

QString export_progress::files_before() const {
    return QStringLiteral("Written before that:\n\n") + listed(written);
}

void export_progress::fail() {
    const QString sentence = exporting->problem();
    end(QStringLiteral("The log was not exported"),
        written.isEmpty() ? sentence : sentence + QStringLiteral("\n\n") + files_before(), true);
}

void export_progress::end(const QString& heading, const QString& sentence, bool is_problem) {
    slices.stop();
    exporting.reset();
    waiting.clear();
    title.setText(heading);
    title.setVisible(!heading.isEmpty());
    said.setText(sentence);
    theme::mark(said, "role", is_problem ? QVariant(QStringLiteral("problem")) : QVariant());
    bar.set_running(false);
    bar.hide();
    close_button.show();
    if (stop_button.hasFocus())
        close_button.setFocus();
    stop_button.hide();
    setAccessibleDescription(sentence);
    Q_EMIT finished();
}

} // namespace brivant
