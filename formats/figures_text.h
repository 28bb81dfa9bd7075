#pragma once

#include "formats/drive_figures.h"

namespace brivant {

// A figure of a drive as a person reads it.
struct figure_text {
    QString name;  // "Distance"
    QString value; // "12.345 km", or why there is none
    bool is_known = true;
};

// Those of the drive, without those of each column.
QList<figure_text> figures_of_drive(const drive_figures& figures);
// All of them, a line each.
QString figures_as_text(const drive_figures& figures);

} // namespace brivant
