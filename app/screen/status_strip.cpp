#include "app/screen/status_strip.h"

#include <QHBoxLayout>

namespace brivant {

namespace {

constexpr int least_height = 36;
constexpr int widest_protocol = 360;

} // namespace

status_strip::status_strip(QWidget* parent) : QFrame(parent) {
    setProperty("role", QStringLiteral("strip"));
    setMinimumHeight(least_height);
    ring.hide();
    status.setObjectName(QStringLiteral("status"));
    status.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    protocol.setProperty("role", QStringLiteral("muted"));
    protocol.setMaximumWidth(widest_protocol);
    protocol.hide();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2 * theme::step, 0, 2 * theme::step, 0);
    row->setSpacing(theme::step);
    row->addWidget(&ring);
    row->addWidget(&status, 1);
    row->addSpacing(2 * theme::step);
    row->addWidget(&protocol);
}

} // namespace brivant
