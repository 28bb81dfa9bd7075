#pragma once

#include "app/screen_view.h"

#include <QLabel>

// A screen that is not available yet: it says what it will do, and leads to the diagnostics.
class not_available_view : public screen_view {
    Q_OBJECT

public:
    // `name`: its description; `icon`: the artwork file shown above its words.
    not_available_view(const view_context& its_context, const QString& name, const QString& icon);

    void look_changed() override;

private:
    QString icon_file;
    QLabel& icon;
};
