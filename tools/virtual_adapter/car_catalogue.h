#pragma once

#include "tools/virtual_adapter/car.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace virtual_adapter {

// The names of the cars that are built in, ascending; "can11" is the usual one.
QStringList built_in_cars();

// The built-in car of that name, else the one that the file of that path describes. Null when there is none;
// `problem` then says what is wrong in one sentence.
std::shared_ptr<car> load_car(const QString& name_or_path, QString& problem);

} // namespace virtual_adapter
