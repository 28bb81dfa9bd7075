#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QString>
#include <QVariant>

class QWidget;

namespace brivant {

// The colours, sizes and pictures of the window, in a light and a dark version. Which one holds is taken from
// the palette of the desktop. Distances are multiples of `step` pixels; there are three sizes of text.
struct theme {
    static constexpr int step = 8;

    bool dark = false;
    QColor ground, card, field, edge, field_edge;
    QColor text, muted;
    QColor accent, on_accent, accent_soft;
    QColor amber, amber_soft;
    QColor red, green;

    // `system`: the palette of the desktop, not one that this theme made.
    static theme of(const QPalette& system);

    QPalette palette() const;
    // `body`: the font of the desktop, from which the other sizes follow.
    QString style_sheet(const QFont& body) const;

    // The resource path of an artwork file ("diags.png"), its dark version where there is one and this is
    // dark.
    QString picture(const QString& file) const;
    QIcon icon(const QString& file) const;
    // The picture at another size than it was drawn for. `ratio`: pixels of the device to one of the window.
    QPixmap enlarged(const QString& file, int size, double ratio) const;

    // Gives a widget a property that the style sheet asks for ("role", "warning").
    static void mark(QWidget& widget, const char* property, const QVariant& value);
    // The words of a tool tip that must not be taken for HTML: texts from the adapter, the car or a file.
    static QString plain_tool_tip(const QString& text);
    // The smallest of the three sizes.
    static QFont small(const QFont& body);
    // Letters of one width, as large as those of `body`.
    static QFont fixed(const QFont& body);
    // The font for numbers that change in place: that of the desktop when its digits are all equally wide.
    static QFont figures(const QFont& body);
};

} // namespace brivant
