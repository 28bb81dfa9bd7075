#pragma once

#include "app/console/script_dialog.h"
#include "app/screen/screen_view.h"
#include "expert/expertCtrlr.h"
#include "ui_expertView.h"

namespace brivant {

// The expert console: the transcript, and the line in which commands are typed.
class expert_view : public screen_view {
    Q_OBJECT

public:
    explicit expert_view(const view_context& its_context);
    ~expert_view() override;

    task_controller* controller() override { return &console; }
    void start() override { clickSend(); }
    void stop() override;
    void reload(part what) override;
    void show_busy(bool) override { show_operation(); }
    void look_changed() override;

    void clickSend();
    // Asks for the values of a script, and runs it.
    void clickScript();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show_operation();
    void show_transcript();
    void show_anew();

    const Ui::expertView ui;
    expertCtrlr console;
    qint64 shown = 0; // the lines of the transcript up to this one are in the text
};

} // namespace brivant
