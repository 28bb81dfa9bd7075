#include "app/diagnostics/verdict_band.h"

#include <QApplication>
#include <QEvent>
#include <QFontInfo>

namespace brivant {

namespace {

constexpr double display_size = 2.2; // of the text's
constexpr int lamp_size = 40;
constexpr int letters_for_all = 120;
const QString unknown = QStringLiteral("\u2013");

QColor colour_of(verdict::mood mood, const theme& look) {
    switch (mood) {
    case verdict::mood::fault: return look.red;
    case verdict::mood::good: return look.green;
    case verdict::mood::look_here: return look.amber;
    default: return look.muted;
    }
}

void colour(QLabel& label, const QColor& with) {
    label.setStyleSheet(QStringLiteral("color: %1").arg(with.name()));
}

} // namespace

verdict_band::verdict_band(const Ui::read_codes_view& its_ui) : ui(its_ui) {
    ui.verdict_card->installEventFilter(this);
}

bool verdict_band::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        fit();
    return QObject::eventFilter(watched, event);
}

// Without room for all, the car is left out: the bar above and the page of the vehicle tell it, too.
void verdict_band::fit() {
    const int letters = ui.verdict_card->width() / ui.verdict_card->fontMetrics().averageCharWidth();
    ui.verdict_of_car->setVisible(letters > letters_for_all);
}

void verdict_band::show(const verdict& told, const theme& look) {
    const bool is_good = told.is == verdict::mood::good;
    ui.verdict_answer->setText(is_good ? QStringLiteral("\u2713 ") + told.answer : told.answer);
    ui.verdict_answer->setAccessibleName(told.answer);
    colour(*ui.verdict_answer, colour_of(told.is, look));
    ui.verdict_more->setText(told.more);
    ui.verdict_more->setVisible(!told.more.isEmpty());
    ui.verdict_monitors->setText(told.monitors);
    ui.verdict_missing->setText(told.missing);
    theme::mark(*ui.verdict_missing, "warning", true);
    ui.verdict_monitors->setVisible(!told.monitors.isEmpty());
    ui.verdict_missing->setVisible(!told.missing.isEmpty());
    QStringList car;
    if (!told.vin.isEmpty())
        car += QStringLiteral("VIN ") + told.vin;
    if (!told.voltage.isEmpty())
        car += told.voltage;
    ui.verdict_vin->set_text(car.join(QStringLiteral(" \u00B7 ")));
    ui.verdict_vin->setVisible(!car.isEmpty());
}

void verdict_band::show_lamp(const car_status& status, bool is_known, const theme& look) {
    const bool on = is_known && status.mil;
    ui.mil_word->setText(!is_known ? unknown : on ? QStringLiteral("ON") : QStringLiteral("OFF"));
    theme::mark(*ui.mil_word, "warning", on);
    ui.code_count->setText(is_known ? QString::number(status.codes) : unknown);
    const QString picture = on ? QStringLiteral("mil_on.png") : QStringLiteral("mil_off.png");
    ui.mil_picture->setPixmap(look.enlarged(picture, lamp_size, ui.mil_picture->devicePixelRatioF()));
    ui.mil_picture->setAccessibleName(
        QStringLiteral("MIL Lamp: %1").arg(is_known ? ui.mil_word->text() : QStringLiteral("not known")));
}

void verdict_band::show_car(const QString& name, const QString& read_on) {
    ui.verdict_car->set_text(name);
    ui.verdict_car->setVisible(!name.isEmpty());
    ui.verdict_when->set_text(read_on);
    ui.verdict_when->setVisible(!read_on.isEmpty());
}

void verdict_band::look_changed() {
    QFont large = QApplication::font();
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * display_size));
    large.setWeight(QFont::DemiBold);
    ui.verdict_answer->setFont(large);
}

} // namespace brivant
