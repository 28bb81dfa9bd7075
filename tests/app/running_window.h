#pragma once

#include "app/look/tables.h"
#include "app/main_window.h"

#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <optional>

namespace brivant {

// The whole program around a window, started as main() does it, with a profile of its own.
struct running_window {
    static launch_options with(launch_options::link_choice link, const QString& profile,
                               const QString& car = "can11") {
        launch_options options;
        options.link = link;
        options.demo_car = car;
        options.profile = profile;
        return options;
    }

    QTemporaryDir folder;
    program_core core;
    std::optional<main_window> window;

    explicit running_window(launch_options::link_choice link = launch_options::link_choice::as_stored,
                            const QString& car = "can11", int answer_ms = 0)
        : core(with(link, folder.path(), car)) {
        QString problem;
        EXPECT_TRUE(core.start_demo(problem, answer_ms)) << problem.toStdString();
        core.defaults.set(setting::greeted, true);
        window.emplace(core);
        window->start();
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*window));
    }

    template <class T>
    T& part(const char* name = nullptr) {
        T* found = window->findChild<T*>(name ? QLatin1String(name) : QString());
        if (!found)
            throw std::runtime_error(name ? name : "part");
        return *found;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }
    void click(const char* button) { part<QPushButton>(button).click(); }

    QString text_of(const char* label) { return part<QLabel>(label).text(); }

    QStringList rows_of(const char* table_name) {
        auto& table = part<QTableView>(table_name);
        table.selectAll();
        return selected_rows_as_text(table).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    // An operation that was started has ended.
    bool wait_until_idle() {
        return QTest::qWaitFor([this] { return part<QPushButton>("stop").isHidden(); }, 20000);
    }
    link_words::condition link() { return part<link_mark>().link().now; }
};

} // namespace brivant
