#include "calendar/view/viewtypes.h"

#include <algorithm>
#include <cmath>

const QLocale &calendarLocale()
{
    static const QLocale french(QLocale::French, QLocale::France);
    return french;
}

CalendarTheme CalendarTheme::forNumber(int number)
{
    CalendarTheme t;
    t.number = std::clamp(number, 0, 3);
    t.holidayHeaderBack = QColor(246, 190, 178);
    switch (t.number) {
    case 0: // classic grey and navy
        t.window = QColor(212, 208, 200);
        t.workingHours = QColor(255, 255, 213);
        t.gridLine = QColor(128, 128, 128);
        t.gridSubLine = QColor(190, 186, 178);
        t.timeScaleBack = QColor(212, 208, 200);
        t.timeScaleText = QColor(0, 0, 0);
        t.headerBack = QColor(212, 208, 200);
        t.headerText = QColor(0, 0, 0);
        t.todayHeaderBack = QColor(238, 194, 99);
        t.selection = QColor(10, 36, 106);
        t.allDayBand = QColor(128, 128, 128);
        t.eventBorder = QColor(0, 0, 0);
        t.eventText = QColor(0, 0, 0);
        t.monthOtherMonth = QColor(192, 192, 192);
        break;
    case 1: // light grey and steel blue
        t.window = QColor(240, 240, 236);
        t.workingHours = QColor(255, 255, 255);
        t.gridLine = QColor(166, 166, 150);
        t.gridSubLine = QColor(222, 222, 212);
        t.timeScaleBack = QColor(236, 233, 216);
        t.timeScaleText = QColor(48, 48, 48);
        t.headerBack = QColor(222, 220, 206);
        t.headerText = QColor(0, 0, 0);
        t.todayHeaderBack = QColor(255, 210, 120);
        t.selection = QColor(182, 189, 210);
        t.allDayBand = QColor(190, 190, 176);
        t.eventBorder = QColor(64, 64, 64);
        t.eventText = QColor(0, 0, 0);
        t.monthOtherMonth = QColor(228, 228, 220);
        break;
    case 2: // blue
        t.window = QColor(230, 237, 247);
        t.workingHours = QColor(255, 255, 255);
        t.gridLine = QColor(141, 174, 217);
        t.gridSubLine = QColor(213, 225, 241);
        t.timeScaleBack = QColor(227, 239, 255);
        t.timeScaleText = QColor(21, 66, 139);
        t.headerBack = QColor(196, 218, 250);
        t.headerText = QColor(21, 66, 139);
        t.todayHeaderBack = QColor(255, 213, 141);
        t.selection = QColor(169, 199, 240);
        t.allDayBand = QColor(165, 191, 225);
        t.eventBorder = QColor(59, 97, 156);
        t.eventText = QColor(0, 0, 0);
        t.monthOtherMonth = QColor(214, 226, 244);
        break;
    default: // flat white and light blue
        t.window = QColor(245, 245, 245);
        t.workingHours = QColor(255, 255, 255);
        t.gridLine = QColor(213, 213, 213);
        t.gridSubLine = QColor(234, 234, 234);
        t.timeScaleBack = QColor(255, 255, 255);
        t.timeScaleText = QColor(68, 68, 68);
        t.headerBack = QColor(255, 255, 255);
        t.headerText = QColor(68, 68, 68);
        t.todayHeaderBack = QColor(205, 230, 247);
        t.selection = QColor(205, 230, 247);
        t.allDayBand = QColor(240, 240, 240);
        t.eventBorder = QColor(140, 140, 140);
        t.eventText = QColor(38, 38, 38);
        t.monthOtherMonth = QColor(240, 240, 240);
        break;
    }
    return t;
}

QList<QDate> WorkWeekDays(const QDate &anchor, int workDaysMask, int firstDayOfWeek)
{
    const int masque = (workDaysMask & 0x7F) ? (workDaysMask & 0x7F) : 0x3E;
    const int premier = firstDayOfWeek >= 1 && firstDayOfWeek <= 7 ? firstDayOfWeek : 2;
    // Qt numbers Monday 1 ... Sunday 7; ours Sunday 1 ... Saturday 7.
    const int jourAncre = anchor.dayOfWeek() % 7 + 1;
    const QDate debut = anchor.addDays(-((jourAncre - premier + 7) % 7));
    QList<QDate> jours;
    for (int i = 0; i < 7; ++i) {
        const QDate d = debut.addDays(i);
        if (masque & (1 << (d.dayOfWeek() % 7)))
            jours.append(d);
    }
    return jours;
}

DayBoxLineTimes LineTimesForDay(const CalendarEvent &event, const QDate &day, const DayBoxTimes &options)
{
    DayBoxLineTimes times;
    if (event.IsAllDayEvent())
        return times;
    const QDateTime start = event.StartDateTime();
    const QDateTime end = event.EndDateTime();
    // An appointment ending at 00:00 ends with the day before.
    const QDate lastDay = end.time() == QTime(0, 0) && end.date() > start.date() ? end.date().addDays(-1) : end.date();
    if (start.date() == day || options.startAlways)
        times.start = start.time();
    if ((options.endTime && lastDay == day) || options.endAlways)
        times.end = end.time();
    return times;
}

QString CalendarTipText(const CalendarHit &hit, bool cellSelected, int toolTipsMode, bool enableTooltips,
                        const QString &addNewText)
{
    if (hit.event) {
        if (toolTipsMode == 2)
            return {};
        const CalendarEvent &e = *hit.event;
        QString text = e.StartDateTime().toString(QStringLiteral("HH:mm")) + u'-' + e.EndDateTime().toString(QStringLiteral("HH:mm"))
                       + u' ' + e.Subject().simplified();
        // The motive, and where the patient is.
        if (!e.Location().simplified().isEmpty())
            text += u'\n' + e.Location().simplified();
        if (!e.IsAllDayEvent() && e.BusyStatus() == 0)
            text += QStringLiteral("\nEn salle d'attente");
        return text;
    }
    const bool cell = hit.area == HitDayCell || hit.area == HitAllDayBand || hit.area == HitWeekDay || hit.area == HitMonthDay;
    return enableTooltips && cell && cellSelected ? addNewText : QString();
}

int ColourDistance(const QColor &a, const QColor &b)
{
    // Red-mean weighting: closer to what the eye sees than plain RGB.
    const int rm = (a.red() + b.red()) / 2;
    const int dr = a.red() - b.red();
    const int dg = a.green() - b.green();
    const int db = a.blue() - b.blue();
    return static_cast<int>(std::sqrt(((512 + rm) * dr * dr >> 8) + 4 * dg * dg + ((767 - rm) * db * db >> 8)) / 3);
}

QString WaitingRoomMark() { return QStringLiteral("\u2714 "); }

EventBlockStyle EventBlockColors(const QColor &label, const QColor &cell, int busyStatus, bool allDay,
                                 const CalendarTheme &theme)
{
    EventBlockStyle s;
    s.fill = label.isValid() ? label : QColor(Qt::white);
    // Deepen, step by step, a fill that the cell would swallow.
    const bool lightCell = cell.isValid() && cell.lightness() > 128;
    for (int step = 0; step < 8 && cell.isValid() && ColourDistance(s.fill, cell) < 70; ++step) {
        const int l = std::clamp(s.fill.lightness() + (lightCell ? -22 : 22), 0, 255);
        s.fill = QColor::fromHsl(s.fill.hslHue(), s.fill.hslSaturation(), l);
    }
    // Perceived brightness, not HSL lightness: cyan and yellow are bright.
    const int luma = (299 * s.fill.red() + 587 * s.fill.green() + 114 * s.fill.blue()) / 1000;
    s.text = luma < 140 ? QColor(Qt::white) : theme.eventText;
    s.border = s.fill.darker(170);
    s.waiting = !allDay && busyStatus == 0;
    s.bar = s.waiting ? QColor(0x1E, 0x9E, 0x3C) : s.fill.darker(160);
    return s;
}
