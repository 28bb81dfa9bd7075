#include "tools/virtual_adapter/car_catalogue.h"

#include "tools/virtual_adapter/car_file.h"

#include <QDir>
#include <QFile>

static void init_cars_resource() {
    Q_INIT_RESOURCE(cars);
}

namespace virtual_adapter {

namespace {

constexpr qint64 most_read = 1 << 20;

} // namespace

QStringList built_in_cars() {
    init_cars_resource();
    QStringList names =
        QDir(QStringLiteral(":/cars")).entryList({QStringLiteral("*.car")}, QDir::Files, QDir::Name);
    for (QString& name : names)
        name.chop(4);
    return names;
}

std::shared_ptr<car> load_car(const QString& name_or_path, QString& problem) {
    const bool built_in = built_in_cars().contains(name_or_path);
    QFile file(built_in ? QStringLiteral(":/cars/%1.car").arg(name_or_path) : name_or_path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("\"%1\" is neither a car that is built in nor a file that can be read.")
                      .arg(name_or_path);
        return nullptr;
    }
    const QByteArray text = file.read(most_read);
    std::string mistake;
    std::optional<car_description> description =
        parse_car(std::string_view(text.constData(), std::size_t(text.size())), mistake);
    if (!description) {
        problem = QStringLiteral("%1, %2").arg(name_or_path, QString::fromStdString(mistake));
        return nullptr;
    }
    return std::make_shared<car>(std::move(*description));
}

} // namespace virtual_adapter
