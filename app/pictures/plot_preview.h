#pragma once

#include "app/pictures/plotted_run.h"
#include "app/pictures/thumb_strip.h"

#include <QLabel>
#include <QTimer>
#include <optional>

namespace brivant {

// A small plot of a stored sampling run: a thumbnail for each PID, with its average. It reads no more of the
// run than a moment allows, and is hidden while there is nothing to draw.
class plot_preview : public QWidget {
    Q_OBJECT

public:
    explicit plot_preview(QWidget* parent = nullptr);

    // None empties it. The core outlives it.
    void show_log(program_core& core, const std::optional<log_header>& log);
    void set_look(const theme& its_look);

Q_SIGNALS:
    // A PID is wanted large, by its column in the log.
    void chosen(int column);
    // See thumbnail.
    void reading_chosen(bool standard);

private:
    void read_slice();

    std::optional<plotted_run> run;
    thumb_strip strip;
    QLabel note;
    theme look;
    QTimer reading;
};

} // namespace brivant
