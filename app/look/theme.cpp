#include "app/look/theme.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace brivant {

namespace {

constexpr double heading_size = 1.4;
constexpr double small_size = 0.85;
constexpr int smallest_legible = 11; // pixels

// clang-format off
theme light() {
    theme t;
    t.ground  = 0xeef1f4; t.card      = 0xffffff; t.field       = 0xffffff;
    t.edge    = 0xd8dfe5; t.field_edge = 0x7c8894;
    t.text    = 0x24303b; t.muted     = 0x5a6672;
    t.accent  = 0x12736a; t.on_accent = 0xffffff; t.accent_soft = 0xd9eeeb;
    t.amber   = 0x9a5b00; t.amber_soft = 0xfff3dc;
    t.red     = 0xb3322a; t.green     = 0x1d7a3c;
    return t;
}

theme night() {
    theme t;
    t.dark    = true;
    t.ground  = 0x1b1f24; t.card      = 0x262c33; t.field       = 0x1b1f24;
    t.edge    = 0x3a434d; t.field_edge = 0x7a8693;
    t.text    = 0xe3e8ed; t.muted     = 0xa0acb8;
    t.accent  = 0x45c2b5; t.on_accent = 0x0d211f; t.accent_soft = 0x23443f;
    t.amber   = 0xf5b44b; t.amber_soft = 0x3d3220;
    t.red     = 0xff8a80; t.green     = 0x74d694;
    return t;
}
// clang-format on

constexpr const char* sheet = R"(
brivant--main_window, #main_area { background: {ground}; }
QLabel { color: {text}; background: transparent; }
QCheckBox, QRadioButton { color: {text}; spacing: 8px; padding: 2px; }
QCheckBox:focus, QRadioButton:focus { text-decoration: underline; }
QCheckBox::indicator, QRadioButton::indicator, QTableView::indicator { width: 16px; height: 16px;
    background: {field}; border: 1px solid {field_edge}; }
QCheckBox::indicator, QTableView::indicator { border-radius: 4px; }
QRadioButton::indicator { border-radius: 9px; }
QCheckBox::indicator:checked, QTableView::indicator:checked { background: {accent}; border-color: {accent};
    image: url({check}); }
QRadioButton::indicator:checked { width: 8px; height: 8px; background: {on_accent};
    border: 5px solid {accent}; }
QCheckBox::indicator:focus, QCheckBox::indicator:hover, QRadioButton::indicator:focus,
QRadioButton::indicator:hover { border-color: {accent}; }
QLabel:disabled, QCheckBox:disabled, QRadioButton:disabled { color: {muted}; }
*[role="heading"] { font-size: {heading}px; font-weight: 600; }
*[role="strong"] { font-weight: 600; }
*[role="small"] { font-size: {small}px; color: {muted}; }
*[role="caption"] { font-size: {small}px; color: {muted}; font-weight: 600; }
*[role="muted"] { color: {muted}; }
*[warning="true"] { color: {amber}; }
*[role="problem"] { color: {red}; }
*[role="chip"] { font-size: {small}px; font-weight: 600; color: {accent}; background: {accent_soft};
    border-radius: 7px; padding: 1px 8px 2px 8px; }
*[role="medallion"] { background: {accent_soft}; border-radius: 36px; }
brivant--busy_ring, brivant--busy_bar { color: {accent}; }
QFrame[role="card"] { background: {card}; border: 1px solid {edge}; border-radius: 10px; }
QFrame[role="strip"] { background: {card}; border: none; }
QFrame[role="line"] { background: {edge}; border: none; }

QPushButton { background: {card}; color: {text}; border: 1px solid {field_edge}; border-radius: 8px;
    padding: 7px 15px; min-height: 20px; outline: 0; }
QPushButton:hover { border-color: {accent}; }
QPushButton:pressed { background: {accent_soft}; }
QPushButton:focus { border: 2px solid {accent}; padding: 6px 14px; }
QPushButton:disabled { color: {field_edge}; border-color: {edge}; }
QPushButton[role="primary"] { background: {accent}; color: {on_accent}; border-color: {accent};
    font-weight: 600; }
QPushButton[role="primary"]:focus { border: 2px solid {text}; }
QPushButton[role="primary"]:disabled { background: {edge}; color: {muted}; border-color: {edge}; }
QPushButton[large="true"] { min-height: 28px; padding: 9px 23px; }
QPushButton[large="true"]:focus { padding: 8px 22px; }

QToolButton { background: transparent; color: {text}; border: 2px solid transparent; border-radius: 8px;
    padding: 4px; }
QToolButton:hover { background: {accent_soft}; }
QToolButton:disabled { color: {field_edge}; background: transparent; }
QToolButton:focus { border-color: {accent}; }
QToolButton[role="link"] { color: {accent}; }
QToolButton[role="screen"] { color: {muted}; padding: 2px 8px; }
QToolButton[current="true"] { color: {text}; font-weight: 600; }

QTableView { background: {card}; border: 1px solid transparent; border-radius: 3px; outline: 0;
    gridline-color: {edge}; color: {text}; }
QTableView:focus { border-color: {accent}; }
QTableView::item { border: none; border-bottom: 1px solid {edge}; padding: 2px 8px; }
QTableView::item:selected { background: {accent_soft}; color: {text}; }
QHeaderView { background: {card}; border: none; }
QHeaderView::section { background: {card}; color: {muted}; border: none;
    border-bottom: 1px solid {field_edge}; padding: 8px 11px; font-size: {small}px; font-weight: 600; }

QLineEdit, QComboBox { background: {field}; color: {text}; border: 1px solid {field_edge}; border-radius: 6px;
    padding: 5px 9px; min-height: 20px; selection-background-color: {accent}; selection-color: {on_accent}; }
QLineEdit:focus, QComboBox:focus { border: 2px solid {accent}; padding: 4px 8px; }
QComboBox::drop-down { border: none; width: 28px; }
QComboBox::down-arrow { image: url(:/artwork/chevron.png); width: 12px; height: 12px; }

QLineEdit[large="true"] { min-height: 22px; }

QPlainTextEdit[role="plain"] { background: {card}; color: {text}; border: none;
    selection-background-color: {accent}; selection-color: {on_accent}; }
QSplitter::handle { background: transparent; }
QFrame[role="segments"] { background: {card}; border: 1px solid {field_edge}; border-radius: 8px; }
QPushButton[role="segment"] { background: transparent; border: 2px solid transparent; border-radius: 6px;
    color: {muted}; padding: 4px 10px; }
QPushButton[role="segment"]:hover { color: {text}; }
QPushButton[role="segment"]:checked { background: {accent_soft}; color: {text}; }
QPushButton[role="segment"]:focus { border-color: {accent}; padding: 4px 10px; }

QListView#rail { background: transparent; border: none; outline: 0; }
QListView#rail::item { color: {text}; border: 2px solid transparent; border-radius: 8px; padding: 8px 6px; }
QListView#rail::item:hover { background: {card}; }
QListView#rail::item:selected { background: {accent_soft}; color: {text}; }
QListView#rail:focus::item:selected { border-color: {accent}; }

QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; border: none; }
QTabWidget::pane { border: none; }
QTabBar { background: transparent; qproperty-drawBase: 0; outline: 0; }
QTabBar::tab { background: transparent; color: {muted}; border: none; border-bottom: 3px solid transparent;
    padding: 8px 16px; margin-right: 8px; }
QTabBar::tab:selected { color: {text}; border-bottom-color: {accent}; font-weight: 600; }
QTabBar::tab:focus { color: {accent}; border-bottom-color: {text}; }

QAbstractScrollArea::corner { background: transparent; border: none; }
QScrollBar:vertical { background: transparent; width: 12px; margin: 2px; }
QScrollBar:horizontal { background: transparent; height: 12px; margin: 2px; }
QScrollBar::handle { background: {field_edge}; border-radius: 4px; min-height: 32px; min-width: 32px; }
QScrollBar::add-line, QScrollBar::sub-line, QScrollBar::add-page, QScrollBar::sub-page { background: none;
    border: none; width: 0; height: 0; }

QSlider { min-height: 28px; }
QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: {field_edge}; }
QSlider::sub-page:horizontal { height: 4px; border-radius: 2px; background: {accent}; }
QSlider::handle:horizontal { width: 16px; height: 16px; margin: -8px 0; border-radius: 10px;
    background: {card}; border: 2px solid {accent}; }
QSlider::handle:horizontal:focus, QSlider::handle:horizontal:hover { background: {accent}; }

QToolTip { background: {card}; color: {text}; border: 1px solid {field_edge}; padding: 4px; }
QMenu { background: {card}; color: {text}; border: 1px solid {field_edge}; padding: 4px; }
QMenu::item { padding: 6px 24px 6px 12px; border-radius: 4px; }
QMenu::item:selected { background: {accent_soft}; }
QComboBox QAbstractItemView { background: {field}; color: {text}; selection-background-color: {accent_soft};
    selection-color: {text}; outline: 0; }

brivant--reading_bar[weighs="true"] { background: {amber_soft}; border: 1px solid {amber}; border-radius: 10px; }
QFrame#notice_card { background: {amber_soft}; border: 1px solid {amber}; border-radius: 10px; }
QLabel#notice_mark { background: {amber}; color: {card}; border-radius: 12px; font-weight: 700; }
QFrame#toast_card { background: {toast}; border-radius: 12px; }
QFrame#toast_card QLabel, QFrame#toast_card busy_ring { color: {on_toast}; }
brivant--help_panel > QFrame { background: {card}; border: 1px solid {edge}; border-radius: 10px; }
QTextBrowser[role="detail"] { background: {card}; color: {text}; border: none; }
brivant--help_panel QTextBrowser { background: {card}; color: {text}; border: none; }
)";

} // namespace

theme theme::of(const QPalette& system) {
    return system.color(QPalette::Window).lightness() < 128 ? night() : light();
}

QPalette theme::palette() const {
    QPalette colours;
    const auto set = [&colours](QPalette::ColorRole role, const QColor& colour) {
        colours.setColor(role, colour);
    };
    set(QPalette::Window, ground);
    set(QPalette::WindowText, text);
    set(QPalette::Base, field);
    set(QPalette::AlternateBase, ground);
    set(QPalette::Text, text);
    set(QPalette::PlaceholderText, muted);
    set(QPalette::Button, card);
    set(QPalette::ButtonText, text);
    set(QPalette::ToolTipBase, card);
    set(QPalette::ToolTipText, text);
    set(QPalette::BrightText, red);
    set(QPalette::Highlight, accent);
    set(QPalette::HighlightedText, on_accent);
    set(QPalette::Link, accent);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colours.setColor(QPalette::Disabled, role, muted);
    return colours;
}

QString theme::style_sheet(const QFont& body) const {
    const int size = QFontInfo(body).pixelSize();
    QString text_of_sheet = QString::fromLatin1(sheet);
    const auto fill_in = [&](const char* name, const QString& value) {
        text_of_sheet.replace(QLatin1Char('{') + QLatin1String(name) + QLatin1Char('}'), value);
    };
    fill_in("ground", ground.name());
    fill_in("card", card.name());
    fill_in("field", field.name());
    fill_in("edge", edge.name());
    fill_in("field_edge", field_edge.name());
    fill_in("text", text.name());
    fill_in("muted", muted.name());
    fill_in("accent", accent.name());
    fill_in("on_accent", on_accent.name());
    fill_in("accent_soft", accent_soft.name());
    fill_in("amber", amber.name());
    fill_in("amber_soft", amber_soft.name());
    fill_in("red", red.name());
    fill_in("check", picture(QStringLiteral("check.png")));
    fill_in("toast",
            dark ? QStringLiteral("rgba(227, 232, 237, 238)") : QStringLiteral("rgba(36, 48, 59, 235)"));
    fill_in("on_toast", dark ? ground.name() : card.name());
    fill_in("heading", QString::number(qRound(size * heading_size)));
    fill_in("small", QString::number(small(body).pixelSize()));
    return text_of_sheet;
}

QString theme::picture(const QString& file) const {
    const QString folder = QStringLiteral(":/artwork/");
    if (dark) {
        const qsizetype dot = file.lastIndexOf(QLatin1Char('.'));
        QString for_dark = folder + file.left(dot) + QStringLiteral("_dark") + file.mid(dot);
        if (dot > 0 && QFile::exists(for_dark))
            return for_dark;
    }
    return folder + file;
}

QPixmap theme::enlarged(const QString& file, int size, double ratio) const {
    QString large = picture(file);
    large.insert(large.lastIndexOf(QLatin1Char('.')), QStringLiteral("@2x"));
    const int pixels = qRound(size * ratio);
    QPixmap pixmap = QPixmap::fromImage(
        QImage(large).scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QIcon theme::icon(const QString& file) const {
    QIcon icon(picture(file));
    icon.addFile(picture(file), {}, QIcon::Selected); // otherwise it is tinted where it is selected
    return icon;
}

void theme::mark(QWidget& widget, const char* property, const QVariant& value) {
    if (widget.property(property) == value)
        return;
    widget.setProperty(property, value);
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

QString theme::plain_tool_tip(const QString& text) {
    if (text.isEmpty())
        return {};
    return QStringLiteral("<qt>") + text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")) +
           QStringLiteral("</qt>");
}

QFont theme::small(const QFont& body) {
    QFont font = body;
    font.setPixelSize(std::max(smallest_legible, qRound(QFontInfo(body).pixelSize() * small_size)));
    return font;
}

QFont theme::fixed(const QFont& body) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(body.pointSizeF() > 0 ? body.pointSizeF() : font.pointSizeF());
    return font;
}

QFont theme::figures(const QFont& body) {
    const QFontMetrics metrics(body);
    const QString digits = QStringLiteral("0123456789");
    const bool all_equal = std::all_of(digits.begin(), digits.end(), [&](QChar digit) {
        return metrics.horizontalAdvance(digit) == metrics.horizontalAdvance(QLatin1Char('0'));
    });
    return all_equal ? body : fixed(body);
}

} // namespace brivant
