#include "app/console/expert_view.h"

#include "app/sharing/share_menu.h"

#include <QKeyEvent>

namespace brivant {

namespace {
constexpr int empty_icon_size = 32;
} // namespace

expert_view::expert_view(const view_context& its_context)
    : screen_view(its_context), ui(laid_out_in<Ui::expertView>(*this)),
      console(context.core.car, context.link, context.core.toolies, context.window, context.core.defaults,
              context.core.expert) {
    ui.replyTxt->setMaximumBlockCount(transcript::most_lines);
    ui.replyTxt->setUndoRedoEnabled(false);
    ui.replyTxt->setFrameShape(QFrame::NoFrame);
    ui.command->installEventFilter(this);
    connect(ui.command, &QLineEdit::returnPressed, this, &expert_view::clickSend);
    connect(ui.send, &QPushButton::clicked, this, &expert_view::clickSend);
    connect(ui.stop, &QPushButton::clicked, this, &expert_view::stop);
    connect(ui.script, &QPushButton::clicked, this, &expert_view::clickScript);
    connect(&context.link, &adapter_link::condition_changed, this, &expert_view::show_operation);
    connect(ui.clear, &QPushButton::clicked, this, [this] { console.clickClear(); });
    add_share_menu(*ui.share, context.frame,
                   {QStringLiteral("transcript"), QStringLiteral("transcript"),
                    [this] { return console.session().lines.as_text(); }});
    begin_at(*ui.command);
    console.load();
}

expert_view::~expert_view() {
    console.operation_ended = nullptr;
}

void expert_view::clickSend() {
    ui.command->setFocus(); // first: a question takes it
    console.handle_a_send(ui.command->text());
}

void expert_view::clickScript() {
    if (console.is_running())
        return;
    auto* dialog = new script_dialog(*this, stored_script(context.core.defaults));
    connect(dialog, &script_dialog::accepted, this,
            [this](const QStringList& values) { console.start_script(values); });
    dialog->open();
}

void expert_view::stop() {
    if (console.is_running())
        console.stop();
}

void expert_view::reload(part what) {
    if (what == part::transcript)
        show_transcript();
    else if (what == part::sent)
        ui.command->clear();
    else if (what == part::operation)
        show_operation();
}

// --- the transcript ----------------------------------------------------------------------------------------

void expert_view::show_transcript() {
    const transcript& lines = console.session().lines;
    if (lines.is_empty()) {
        ui.replyTxt->clear();
        shown = lines.end();
    }
    QTextCursor end(ui.replyTxt->document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    bool is_first = shown <= lines.first();
    for (qint64 line = std::max(shown, lines.first()); line < lines.end(); ++line) {
        QTextCharFormat look;
        look.setForeground(lines.at(line).is_command ? context.frame.look().accent
                                                     : context.frame.look().text);
        look.setFontWeight(lines.at(line).is_command ? QFont::DemiBold : QFont::Normal);
        if (!is_first)
            end.insertBlock();
        is_first = false;
        end.insertText((lines.at(line).is_command ? QStringLiteral("> ") : QString()) + lines.at(line).text,
                       look);
    }
    end.endEditBlock();
    shown = lines.end();
    ui.replyTxt->moveCursor(QTextCursor::End);
    ui.replyTxt->moveCursor(QTextCursor::StartOfLine);
    ui.transcript_stack->setCurrentWidget(lines.is_empty() ? ui.transcript_empty : ui.transcript_filled);
    ui.clear->setEnabled(!lines.is_empty());
    ui.share->setEnabled(!lines.is_empty());
    show_operation();
}

void expert_view::show_anew() {
    ui.replyTxt->clear();
    shown = console.session().lines.first();
    show_transcript();
}

void expert_view::show_operation() {
    const bool runs = console.is_running();
    const bool had_focus = runs ? ui.send->hasFocus() || ui.script->hasFocus() : ui.stop->hasFocus();
    ui.send->setVisible(!runs);
    ui.stop->setVisible(runs);
    ui.script->setEnabled(!runs);
    if (had_focus)
        (runs ? static_cast<QWidget&>(*ui.stop) : *ui.command).setFocus();
    if (!runs)
        ui.note->clear();
    else if (console.is_script_running())
        ui.note->setText(QStringLiteral("Script: %1 of %2 answered")
                             .arg(console.commands_answered())
                             .arg(console.commands_in_all()));
    else
        ui.note->setText(QStringLiteral("Waiting for the answer"));
    ui.progress->set_running(runs);
    ui.progress->set_progress(console.commands_answered(),
                              runs && console.is_script_running() ? console.commands_in_all() : 0);
}

void expert_view::look_changed() {
    const theme& look = context.frame.look();
    ui.empty_icon->setPixmap(
        look.enlarged(QStringLiteral("obd_mode.png"), empty_icon_size, devicePixelRatioF()));
    ui.replyTxt->setFont(theme::fixed(font()));
    ui.command->setFont(theme::fixed(font()));
    show_anew();
}

bool expert_view::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui.command && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        command_history& history = console.session().history;
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            ui.command->setText(key == Qt::Key_Up ? history.older(ui.command->text())
                                                  : history.newer(ui.command->text()));
            return true;
        }
    }
    return screen_view::eventFilter(watched, event);
}

} // namespace brivant
