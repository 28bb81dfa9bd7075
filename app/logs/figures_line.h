#pragma once

#include "logs/stored_figures.h"
#include "shell/program_core.h"

#include <QLabel>
#include <QTimer>

namespace brivant {

// What a stored run says of the drive, as far as it says something. It reads no more of the run than a moment
// allows, and is hidden while there is nothing to say.
class figures_line : public QLabel {
    Q_OBJECT

public:
    explicit figures_line(QWidget* parent = nullptr);

    // None empties it. The core outlives it.
    void show_log(program_core& core, const std::optional<log_header>& log);

private:
    void read_slice();

    std::optional<stored_figures> run;
    QTimer reading;
};

} // namespace brivant
