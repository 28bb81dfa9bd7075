#include "app/screen/screen_view.h"

#include <QVBoxLayout>

screen_view::screen_view(const view_context& its_context, const QString& name) : context(its_context) {
    auto* room = new QVBoxLayout(this);
    room->setContentsMargins(0, 0, 0, 0);
    root = context.loader.load_view(name, this);
    room->addWidget(root);
}
