#include "app/screen/view_loader.h"

#include "app/look/busy_marks.h"
#include "app/look/elided_label.h"
#include "app/pictures/chart_picture.h"
#include "app/pictures/gauge_picture.h"
#include "app/pictures/o2_picture.h"
#include "app/pictures/plot_chart.h"
#include "app/pictures/plot_preview.h"
#include "app/pictures/thumb_strip.h"

#include <QFile>

// The resources of a static library are brought in by name, outside of any namespace.
static void bring_in_resources() {
    Q_INIT_RESOURCE(artwork);
    Q_INIT_RESOURCE(views);
}

namespace {

constexpr qint64 largest_description = 1 << 20;

template <class widget>
QWidget* make(QWidget* parent) {
    return new widget(parent);
}

struct own_widget {
    const char* name;
    QWidget* (*make)(QWidget* parent);
};
constexpr own_widget own_widgets[] = {
    {"busy_bar", make<busy_bar>},           {"elided_label", make<elided_label>},
    {"chart_picture", make<chart_picture>}, {"gauge_picture", make<gauge_picture>},
    {"o2_picture", make<o2_picture>},       {"thumb_strip", make<thumb_strip>},
    {"plot_chart", make<plot_chart>},       {"plot_preview", make<plot_preview>},
};

} // namespace

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
    for (const own_widget& own : own_widgets) {
        if (class_name != QLatin1String(own.name))
            continue;
        QWidget* widget = own.make(parent);
        widget->setObjectName(name);
        return widget;
    }
    return QUiLoader::createWidget(class_name, parent, name);
}
