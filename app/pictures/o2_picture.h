#pragma once

#include "app/look/theme.h"
#include "charts/drawO2Sensors.h"

#include <QWidget>

namespace brivant {

// Shows the schematic of the exhaust, as large as its room allows. A click on a sensor chooses it.
class o2_picture : public QWidget {
    Q_OBJECT

public:
    explicit o2_picture(QWidget* parent = nullptr);

    drawO2Sensors& picture() { return sensors; }
    void set_look(const theme& its_look);

Q_SIGNALS:
    void sensor_chosen(int sensor);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QRectF place() const;

    drawO2Sensors sensors;
    o2_picture_look colours;
};

} // namespace brivant
