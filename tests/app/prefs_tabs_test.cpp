#include "tests/app/running_window.h"

#include "app/pids/pid_chooser.h"
#include "app/preferences/vehicle_dialog.h"
#include "persistence/vehicles.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <QCheckBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QRadioButton>
#include <QTabWidget>

namespace brivant {

namespace {

struct preferences_tabs : running_window {
    explicit preferences_tabs(int tab,
                              launch_options::link_choice link = launch_options::link_choice::as_stored)
        : running_window(link) {
        window->choose_screen(screen_kind::preferences);
        show_tab(tab);
        QCoreApplication::processEvents(); // a layout shows what is new in it a moment later
    }

    void show_tab(int tab) { part<QTabWidget>("tabs").setCurrentIndex(tab); }
    QLineEdit& field(const char* name) { return part<QLineEdit>(name); }
    QString text(const char* label) { return part<QLabel>(label).text(); }
    bool is_shown(const char* name) { return part<QWidget>(name).isVisible(); }
    vehicle_dialog* dialog() {
        auto* open = window->findChild<vehicle_dialog*>();
        return open && open->isVisible() ? open : nullptr;
    }
    void select_vehicle(int row) { part<QTableView>("vehicle_table").selectRow(row); }
    QString vehicle_names() {
        QStringList names;
        for (const vehicle& one : all_vehicles(core.db))
            names += one.name;
        return names.join(", ");
    }
    QString shown_vehicle() {
        for (elided_label* label : window->findChildren<elided_label*>()) {
            if (vehicle_names().split(", ").contains(label->full_text()))
                return label->full_text();
        }
        return {};
    }
    int photo_rows() {
        return static_cast<int>(core.db.retrieve_from_DB("SELECT VEH_ID FROM VEH_IMAGES").size());
    }
    QString picture(const char* name) {
        QImage image(320, 200, QImage::Format_RGB32);
        image.fill(Qt::blue);
        const QString path = folder.filePath(QLatin1String(name));
        EXPECT_TRUE(image.save(path));
        return path;
    }
    void add_vehicle(const char* name) {
        click("vehicle_add");
        field("vehicle_name").setText(QLatin1String(name));
        click("vehicle_ok");
        EXPECT_EQ(dialog(), nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QStringList stored_set(int veh_id) { return core.defaults.value(setting::sample_set.of_vehicle(veh_id)); }
};

constexpr int pids_tab = 1;
constexpr int vehicles_tab = 2;

} // namespace

TEST(vehicles_tab, a_car_that_is_another_one_gets_a_record_of_its_own) {
    preferences_tabs program(vehicles_tab);
    std::optional<bool> answer;
    program.window->ask_same_car("Which car?", "Is it the same?", [&](bool yes) { answer = yes; });
    program.click("third_answer");
    EXPECT_EQ(answer, false);
    program.field("vehicle_name").setText("Van");
    program.click("vehicle_ok");
    EXPECT_TRUE(QTest::qWaitFor([&] { return program.shown_vehicle() == "Van"; }));
    EXPECT_EQ(program.core.defaults.value(setting::current_vehicle), 2);
}

TEST(vehicles_tab, the_only_vehicle_stays_and_a_deleted_current_one_hands_over) {
    preferences_tabs program(vehicles_tab);
    auto& sheet = program.part<question_sheet>();
    program.click("vehicle_delete");
    EXPECT_FALSE(sheet.is_open());
    EXPECT_TRUE(program.part<QLabel>("toast").isVisible());

    program.add_vehicle("Van");
    EXPECT_TRUE(program.part<QTableView>("vehicle_table").selectionModel()->selectedRows().isEmpty());
    EXPECT_FALSE(program.part<QPushButton>("vehicle_delete").isEnabled());
    program.select_vehicle(1);
    program.click("vehicle_use");
    EXPECT_EQ(program.shown_vehicle(), "Van");
    EXPECT_EQ(program.core.defaults.value(setting::current_vehicle), 2);
    EXPECT_FALSE(program.part<QPushButton>("vehicle_use").isEnabled());

    program.click("vehicle_delete");
    ASSERT_TRUE(sheet.is_open());
    QStringList words;
    for (const auto* button : sheet.findChildren<QPushButton*>())
        if (!button->isHidden())
            words += button->text();
    EXPECT_EQ(words.join(QLatin1Char(' ')), "YES NO");
    program.press(Qt::Key_Return); // No
    EXPECT_EQ(program.vehicle_names(), "Cur Veh., Van");
    program.click("vehicle_delete");
    program.press(Qt::Key_Tab);
    program.press(Qt::Key_Return);
    EXPECT_EQ(program.vehicle_names(), "Cur Veh.");
    EXPECT_EQ(program.shown_vehicle(), "Cur Veh.");
    EXPECT_EQ(program.core.car.cur_veh_id(), 1);
    EXPECT_EQ(program.core.defaults.value(setting::current_vehicle), 1);
}

TEST(vehicle_dialog, stays_open_with_the_reason_until_its_values_can_be_stored) {
    preferences_tabs program(vehicles_tab);
    program.click("vehicle_add");
    ASSERT_NE(program.dialog(), nullptr);
    program.press(Qt::Key_F5); // the keys of the window rest
    program.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(program.window->current_screen(), screen_kind::preferences);
    program.click("vehicle_ok");
    EXPECT_TRUE(program.is_shown("vehicle_name_problem"));

    QTest::keyClicks(&program.field("vehicle_year"), "1");
    EXPECT_FALSE(program.is_shown("vehicle_year_problem")) << "it is being typed";
    QTest::keyClicks(&program.field("vehicle_year"), "20x");
    EXPECT_TRUE(program.is_shown("vehicle_year_problem"));
    program.field("vehicle_year").setText("2019");
    QTest::keyClicks(&program.field("vehicle_name"), "Ann's car");
    program.press(Qt::Key_Return);
    EXPECT_EQ(program.dialog(), nullptr);
    EXPECT_EQ(program.vehicle_names(), "Cur Veh., Ann's car");
    program.select_vehicle(1);
    EXPECT_EQ(program.text("vehicle_facts"), "2019");

    // What an older version stored freely stays as it is, and does not keep the name from being changed.
    ASSERT_EQ(program.core.db.add_update_DB({"Van", "MY 12", "big"}, "VEHICLES", "2"), 1);
    program.window->choose_screen(screen_kind::logs);
    program.window->choose_screen(screen_kind::preferences);
    program.show_tab(vehicles_tab);
    program.select_vehicle(1);
    program.click("vehicle_edit");
    program.field("vehicle_volume").setText("bigger");
    program.press(Qt::Key_Return);
    EXPECT_TRUE(program.is_shown("vehicle_volume_problem"));
    program.field("vehicle_volume").setText("big");
    program.field("vehicle_name").setText("Car of Ann");
    program.press(Qt::Key_Return);
    EXPECT_EQ(program.dialog(), nullptr);
    EXPECT_EQ(program.text("vehicle_facts"), "MY 12 \u00b7 big");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    program.click("vehicle_edit");
    program.field("vehicle_name").setText("Nobody");
    program.press(Qt::Key_Escape);
    EXPECT_EQ(program.dialog(), nullptr);
    EXPECT_EQ(program.vehicle_names(), "Cur Veh., Car of Ann");
}

TEST(vehicle_dialog, takes_a_dropped_picture_and_refuses_others) {
    preferences_tabs program(vehicles_tab);
    program.click("vehicle_edit");
    const auto drop = [&program](const QString& file) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(program.dialog(), &enter);
        QDropEvent event(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(program.dialog(), &event);
        program.click("vehicle_ok"); // which waits for the picture
        EXPECT_NE(program.dialog(), nullptr);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return program.text("vehicle_photo_problem") != "The picture is read ..."; }));
    };
    const auto shown = [&program] { return program.part<QLabel>("vehicle_avatar").pixmap().toImage(); };
    const QImage before = shown();
    drop(program.core.db.path());
    EXPECT_TRUE(program.text("vehicle_photo_problem").contains("is no picture"));
    EXPECT_EQ(shown(), before);
    drop(program.picture("blue.png"));
    EXPECT_FALSE(program.text("vehicle_photo_problem").contains("is no picture"));
    EXPECT_NE(shown(), before);
    EXPECT_EQ(program.photo_rows(), 0) << "not before OK";
    program.click("vehicle_ok");
    EXPECT_EQ(program.photo_rows(), 1); // an edited vehicle without a photo row gets one
    EXPECT_EQ(photo_of_vehicle(program.core.db, 1).width(), 270);
}

TEST(pids_tab, keeps_the_order_of_each_vehicle) {
    preferences_tabs program(pids_tab);
    auto& chooser = program.part<pid_chooser>();
    EXPECT_TRUE(program.is_shown("pids_nothing_known"));
    EXPECT_EQ(program.text("pids_nothing_known"),
              "Available PIDs for this vehicle will list after an initial Read/Log");
    store_pids_available(program.core.db, 1, {{"7E8", {"05", "0C", "0D", "11", "20"}}, {"7E9", {"0D"}}});
    program.core.defaults.set(setting::sample_set.of_vehicle(1), QStringList{"0D", "0C"});
    chooser.show_vehicle();
    ASSERT_TRUE(program.is_shown("offered_pids"));

    auto& offered = program.part<QTableView>("offered_pids");
    auto& chosen = program.part<QTableView>("chosen_pids");
    QTest::keyClicks(&offered, "trans"); // typing in a list searches
    EXPECT_EQ(program.field("pid_search").text(), "trans");
    QTest::keyClick(&program.field("pid_search"), Qt::Key_Down);
    ASSERT_EQ(offered.model()->rowCount(), 1);
    QTest::keyClick(&offered, Qt::Key_Space);
    EXPECT_EQ(program.stored_set(1), (QStringList{"0D|7E8", "0C|7E8", "0D|7E9"}));
    EXPECT_EQ(chosen.currentIndex().row(), 2);
    QTest::keyClick(&chosen, Qt::Key_Up, Qt::AltModifier);
    program.click("pid_up");
    EXPECT_EQ(program.stored_set(1), (QStringList{"0D|7E9", "0D|7E8", "0C|7E8"}));
    EXPECT_FALSE(program.part<QPushButton>("pid_up").isEnabled());
    program.field("pid_search").clear();
    offered.selectRow(1);
    QTest::keyClick(&offered, Qt::Key_Return); // takes away what stands there
    QTest::keyClick(&chosen, Qt::Key_Delete);
    EXPECT_EQ(program.stored_set(1), (QStringList{"0D|7E9"}));
    EXPECT_EQ(program.text("chosen_count"), "1 chosen");

    program.show_tab(vehicles_tab);
    program.add_vehicle("Van");
    program.select_vehicle(1);
    program.click("vehicle_use");
    EXPECT_TRUE(chooser.shown().available().isEmpty());
    EXPECT_EQ(chooser.shown().items(), setting::sample_set.first_value());
    program.select_vehicle(0);
    program.click("vehicle_use");
    EXPECT_EQ(chooser.shown().items(), (QStringList{"0D|7E9"}));
    program.click("set_defaults");
    program.press(Qt::Key_Tab);
    program.press(Qt::Key_Return);
    EXPECT_EQ(program.stored_set(1), setting::sample_set.first_value());
    EXPECT_EQ(program.text("chosen_count"), "4 chosen");
}

TEST(vehicles_tab, another_vehicle_leaves_nothing_of_the_other_one_at_the_link_mark) {
    preferences_tabs program(0, launch_options::link_choice::demo);
    program.press(Qt::Key_F5);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !program.is_shown("test_stop"); }, 20000));
    const auto words = [&] { return program.part<link_mark>().link(); };
    EXPECT_TRUE(words().protocol.contains("CAN"));
    program.show_tab(vehicles_tab);
    program.add_vehicle("Van");
    program.select_vehicle(1);
    program.click("vehicle_use");
    EXPECT_EQ(program.link(), link_words::condition::open);
    EXPECT_EQ(words().protocol, QString());
    EXPECT_FALSE(words().details.contains("CAN"));
}

TEST(connection_test, tells_what_answered) {
    preferences_tabs program(0, launch_options::link_choice::demo);
    const auto ended = [&] { return QTest::qWaitFor([&] { return !program.is_shown("test_stop"); }, 20000); };
    program.press(Qt::Key_F5);
    EXPECT_TRUE(program.is_shown("test_stop"));
    ASSERT_TRUE(ended());
    EXPECT_EQ(program.text("test_title"), "Adapter and car answer");
    for (const char* part : {"ELM327v1.5", "CAN (11 bit ID, 500 kbaud)", "7E8 (Eng.)"})
        EXPECT_TRUE(program.text("test_text").contains(QLatin1String(part))) << part;
    EXPECT_EQ(program.part<notice_banner>().count(), 0);
    EXPECT_FALSE(program.part<pid_chooser>().shown().available().isEmpty()) << "the vehicle is known now";

    program.press(Qt::Key_F5); // on the open link the adapter is asked again
    EXPECT_TRUE(program.is_shown("test_stop"));
    program.press(Qt::Key_Escape);
    EXPECT_FALSE(program.is_shown("test_stop"));
    EXPECT_EQ(program.text("test_title"), "Stopped");

    program.press(Qt::Key_F5);
    program.part<QRadioButton>("wifi").click(); // another link, to the stored address
    EXPECT_FALSE(program.is_shown("test_stop"));
    EXPECT_EQ(program.link(), link_words::condition::closed);
    program.field("address").setText("192.168.0.300");
    program.press(Qt::Key_F5);
    EXPECT_FALSE(program.is_shown("test_stop")) << "the address is wrong";
    EXPECT_TRUE(program.is_shown("address_problem"));
    program.part<QRadioButton>("bluetooth").click();
    EXPECT_FALSE(program.is_shown("test_result")) << "it was about another link";
}

TEST(connection_test, tells_which_of_them_did_not_answer) {
    const std::tuple<int, QString, const char*> rows[] = {
        {1, "can11", "There is a link, but no adapter answers"},
        {0, BV_TESTS "/terminal/ignition_off.car", "The adapter answers, the car does not"},
    };
    for (const auto& [cut_after, car, title] : rows) {
        virtual_adapter_server server;
        QString problem;
        server.set_faults({.cut_after = cut_after});
        const quint16 port = server.start(virtual_adapter::load_car(car, problem));
        ASSERT_NE(port, 0) << problem.toStdString();
        preferences_tabs program(0);
        program.part<QRadioButton>("wifi").click();
        program.field("address").setText("127.0.0.1");
        program.field("port").setText(QString::number(port));
        program.click("test_start");
        ASSERT_TRUE(QTest::qWaitFor([&] { return !program.is_shown("test_stop"); }, 40000));
        EXPECT_EQ(program.text("test_title"), title) << program.text("test_text").toStdString();
    }
}

} // namespace brivant
