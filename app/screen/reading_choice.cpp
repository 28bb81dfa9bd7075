#include "app/screen/reading_choice.h"

namespace brivant {

void choose_reading(const view_context& context, bool standard) {
    context.core.defaults.choose(setting::standard_reading, standard);
    if (!context.core.defaults.synchronise())
        context.frame.tell(
            {QStringLiteral("The choice cannot be kept"),
             context.core.defaults.problem() + QStringLiteral(" It holds until the program ends.")});
    context.window.reload(part::reading);
}

} // namespace brivant
