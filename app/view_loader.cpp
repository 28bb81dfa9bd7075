#include "app/view_loader.h"

#include "app/busy_marks.h"

#include <QFile>

// The resources of a static library are brought in by name, outside of any namespace.
static void bring_in_resources() {
    Q_INIT_RESOURCE(artwork);
    Q_INIT_RESOURCE(views);
}

namespace {
constexpr qint64 largest_description = 1 << 20;
}

view_loader::view_loader(const QString& its_folder) : folder(its_folder) {
    bring_in_resources();
    setLanguageChangeEnabled(false);
    setTranslationEnabled(false);
}

QWidget* view_loader::load_view(const QString& name, QWidget* parent) {
    QFile file(folder + QLatin1Char('/') + name + QStringLiteral(".ui"));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largest_description)
        throw broken_view(QStringLiteral("The description %1.ui of the screen cannot be read.").arg(name));
    QWidget* view = load(&file, parent);
    if (!view)
        throw broken_view(QStringLiteral("The description %1.ui of the screen is damaged: %2")
                              .arg(name, errorString().trimmed()));
    return view;
}

QWidget* view_loader::createWidget(const QString& class_name, QWidget* parent, const QString& name) {
    if (class_name != QLatin1String("busy_bar"))
        return QUiLoader::createWidget(class_name, parent, name);
    auto* bar = new busy_bar(parent);
    bar->setObjectName(name);
    return bar;
}
