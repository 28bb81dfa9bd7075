#pragma once

#include "app/look/card_sheet.h"
#include "app/screen/screen_view.h"
#include "shell/photo_reading.h"
#include "shell/vehicle_list.h"

#include <QGridLayout>
#include <QLineEdit>

namespace brivant {

// Adds or edits a vehicle, on a card over the window. A value that cannot be stored keeps it open, with the
// reason beside the field; a picture file may be chosen, or dropped anywhere on it.
class vehicle_dialog : public card_sheet {
    Q_OBJECT

public:
    enum veh_mode { add = 4, edit = 5 };

    // `what`: the vehicle to edit; without an id one is added. The list and the context outlive it.
    vehicle_dialog(QWidget& asked_by, const view_context& its_context, vehicle_list& its_list,
                   const vehicle& what, const QImage& its_photo);

    void open();
    // Shows the picture of the file as soon as it is read, to be stored with OK; or says why it cannot be
    // taken.
    void take_photo_file(const QString& file);

Q_SIGNALS:
    // Stored; `mode` tells how it was asked for.
    void stored(int veh_id, int mode);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // A field with its label, and below it what is wrong with its text.
    struct field {
        QLineEdit* line;
        QLabel* problem;
        QString (*check)(const QString& text);
        QString before; // stays good, whatever it is: it may be older than the check
    };

    void add_photo(QGridLayout& grid);
    field add_field(QGridLayout& grid, const QString& label, const char* name, const QString& placeholder,
                    const QString& text, QString (*check)(const QString&));
    // False when it is wrong; `strict`: a text that was not touched yet is told too.
    bool check_field(const field& one, bool strict);
    void choose_photo();
    void take_photo(const photo_file& read);
    void show_photo(const QImage& image);
    void tell(QLabel& label, const QString& problem);
    void save();

    view_context context;
    vehicle_list& list;
    const int mode;
    int veh_id;
    photo_reading reading;
    QImage new_photo;
    QLabel* photo = nullptr;
    QLabel* photo_problem = nullptr;
    QPushButton* photo_button = nullptr;
    field name{};
    field year{};
    field volume{};
};

} // namespace brivant
