#pragma once

#include <QList>
#include <QString>

// One label of the calendar: the appointment type of a practitioner, with the
// colour (0xBBGGRR) in which its appointments are drawn.
struct CalendarLabel
{
    int id = 0;
    QString name;
    quint32 color = 0xFFFFFF;

    friend bool operator==(const CalendarLabel &, const CalendarLabel &) = default;
};

using CalendarLabelList = QList<CalendarLabel>;
