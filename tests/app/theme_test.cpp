#include "app/look/theme.h"
#include "tests/support/print_qt.h"

#include <cmath>
#include <gtest/gtest.h>

namespace brivant {

// Whether what the window shows can be seen: the contrast of each pair of colours that meet, by WCAG 2.

namespace {

double luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const double light = std::max(luminance(one), luminance(other));
    const double dark = std::min(luminance(one), luminance(other));
    return (light + 0.05) / (dark + 0.05);
}

} // namespace

TEST(theme, is_readable_light_and_dark) {
    for (const QColor& window : {QColor(Qt::white), QColor(Qt::black)}) {
        const theme look = theme::of(QPalette(window));
        for (const QColor& ground : {look.ground, look.card, look.field}) {
            for (const QColor& text : {look.text, look.muted, look.accent, look.amber, look.red, look.green})
                EXPECT_GE(contrast(text, ground), 4.5) << qPrintable(text.name() + " on " + ground.name());
            EXPECT_GE(contrast(look.field_edge, ground), 3.0)
                << qPrintable(look.field_edge.name() + " on " + ground.name());
        }
        EXPECT_GE(contrast(look.on_accent, look.accent), 4.5);
        EXPECT_GE(contrast(look.accent, look.accent_soft), 4.5);
        EXPECT_GE(contrast(look.text, look.accent_soft), 4.5);
        EXPECT_GE(contrast(look.amber, look.amber_soft), 4.5);
        EXPECT_GE(contrast(look.text, look.amber_soft), 4.5);
    }
}

} // namespace brivant
