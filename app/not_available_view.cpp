#include "app/not_available_view.h"

#include <QPushButton>

namespace {
constexpr int icon_size = 32;
}

not_available_view::not_available_view(const view_context& its_context, const QString& name,
                                       const QString& file)
    : screen_view(its_context, name), icon_file(file), icon(part<QLabel>("icon")) {
    auto& way_on = part<QPushButton>("open_diagnostics");
    connect(&way_on, &QPushButton::clicked, this, [this] { context.frame.go_to(screen_kind::diagnostics); });
    setFocusProxy(&way_on);
}

void not_available_view::look_changed() {
    icon.setPixmap(context.frame.look().icon(icon_file).pixmap(icon_size));
}
