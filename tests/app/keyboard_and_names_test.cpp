#include "tests/app/running_window.h"
#include "tests/support/print_qt.h"

#include <QAccessible>
#include <QApplication>
#include <QListView>
#include <QTabWidget>

namespace brivant {

// Every screen by keyboard alone, and for those who hear it instead of seeing it.

namespace {

using link_choice = launch_options::link_choice;

// A widget that the person can reach now, and that is no inner part of another.
bool is_control(const QWidget& widget) {
    return widget.focusPolicy() != Qt::NoFocus && !widget.focusProxy() && widget.isVisible() &&
           widget.isEnabled();
}

QString described(const QWidget& widget) {
    return QLatin1String(widget.metaObject()->className()) + u' ' + widget.objectName();
}

QString name_of(QWidget& widget) {
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&widget);
    return face ? face->text(QAccessible::Name).trimmed() : QString();
}

QStringList without_name(const QWidget& root) {
    QStringList found;
    for (QWidget* widget : root.findChildren<QWidget*>()) {
        if (is_control(*widget) && name_of(*widget).isEmpty())
            found += described(*widget);
    }
    return found;
}

// What the Tab key does not come to, starting at the widget that has the focus.
QStringList out_of_reach(running_window& program, const QWidget& root) {
    QSet<const QWidget*> seen;
    while (!seen.contains(QApplication::focusWidget())) {
        seen.insert(QApplication::focusWidget());
        program.press(Qt::Key_Tab);
    }
    QStringList found;
    for (const QWidget* widget : root.findChildren<QWidget*>()) {
        // Of buttons of which one is down, and of tabs, the arrow keys choose.
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool is_chosen_by_arrows = button && button->autoExclusive();
        const bool in_group = button && button->group() && !button->isChecked();
        if (is_control(*widget) && (widget->focusPolicy() & Qt::TabFocus) && !seen.contains(widget) &&
            !is_chosen_by_arrows && !in_group)
            found += described(*widget);
    }
    return found;
}

void check(running_window& program, const char* where, const QWidget* sheet = nullptr) {
    SCOPED_TRACE(where);
    QCoreApplication::processEvents(); // a layout shows what is new in it a moment later
    const QWidget& root = sheet ? *sheet : *program.window;
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(without_name(root).join(", "), QString());
    EXPECT_EQ(out_of_reach(program, root).join(", "), QString());
}

} // namespace

TEST(every_screen, is_worked_by_keyboard_and_named) {
    running_window program(link_choice::demo);
    program.press(Qt::Key_1, Qt::ControlModifier);
    check(program, "diagnostics, empty");
    program.press(Qt::Key_F5);
    ASSERT_TRUE(program.wait_until_idle());
    check(program, "diagnostics");
    auto& rail = program.part<QListView>("rail");
    for (int page = 1; page < rail.model()->rowCount(); ++page) {
        rail.setFocus();
        rail.setCurrentIndex(rail.model()->index(page, 0));
        check(program, qPrintable(rail.currentIndex().data().toString()));
    }
    for (const auto& [key, screen] : {std::pair(Qt::Key_2, "live data"), std::pair(Qt::Key_3, "console"),
                                      std::pair(Qt::Key_4, "logs"), std::pair(Qt::Key_5, "preferences")}) {
        program.press(key, Qt::ControlModifier);
        check(program, screen);
    }
    for (int tab : {1, 2}) {
        program.part<QTabWidget>("tabs").setCurrentIndex(tab);
        check(program, "preferences, another tab");
    }
    program.click("vehicle_add");
    check(program, "vehicle dialog", program.window->findChild<QWidget*>("vehicle_dialog"));
    program.press(Qt::Key_Escape);
    program.press(Qt::Key_F1);
    EXPECT_EQ(without_name(*program.window).join(", "), QString()) << "help";
}

} // namespace brivant
