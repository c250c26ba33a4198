#pragma once

#include "calendar/calendarevent.h"
#include "calendar/fuseaux.h"

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QLocale>
#include <QString>

// Plain records shared by the calendar widgets, the main window and printing.

// Dates and day names of the widgets are French whatever the machine's language.
[[nodiscard]] const QLocale &calendarLocale();

// The four ways of showing the book; the numbers are the ones the commands use.
enum class CalendarViewType { Day = 0, WorkWeek = 1, Week = 2, Month = 3 };

// Areas answered by the hit test. TimeScale is 4096, the value the main window
// tests for its time-scale menu; the others are ours.
enum CalendarHitArea : int {
    HitNothing = 0,
    HitDayCell = 1,        // a time cell of a day column
    HitAllDayBand = 2,     // the all-day band above the day columns
    HitDayHeader = 3,      // the date header of a day column
    HitEvent = 4,          // an appointment's body
    HitEventResizeBegin = 5,
    HitEventResizeEnd = 6,
    HitWeekDay = 7,        // a day box of the week view
    HitMonthDay = 8,       // a day box of the month view
    HitTimeScale = 4096,
};

// What lies under a point of the view.
struct CalendarHit
{
    CalendarEventPtr event;   // the appointment under the point, or none
    int area = HitNothing;
    QDateTime time;           // begin of the cell (time views) or the day at 00:00
    bool allDay = false;      // the point is in the all-day band or a day box
};

// The selected period of the view. An all-day selection ends at 00:00 of the
// day after its last day.
struct CalendarSelection
{
    QDateTime begin;
    QDateTime end;
    bool allDay = false;
    [[nodiscard]] bool isValid() const { return begin.isValid() && end.isValid(); }
    friend bool operator==(const CalendarSelection &, const CalendarSelection &) = default;
};

// One day-view cell about to be drawn: the handler may set the background.
struct DayViewCell
{
    QDateTime begin;
    QDateTime end;
    bool selected = false;
    QColor background;
};

// Operations the view asks about before doing them (guard) and before an
// edit (confirmation). The numbers follow the codes the main window's rules
// are written with: 1-4 drag and resize, 12-13 delete by keyboard, 14
// create in place.
enum CalendarEditOperation : int {
    OpDragMove = 1,
    OpDragCopy = 2,
    OpResizeBegin = 3,
    OpResizeEnd = 4,
    OpEditSubjectByF2 = 5,
    OpDeleteSelected = 12,
    OpDeleteEvent = 13,
    OpCreateInPlace = 14,
};

// Colours of the widgets for one of the four visual themes (0 "Office 2000",
// 1 "Office XP", 2 "Office 2003", 3 "Office 2013").
struct CalendarTheme
{
    int number = 3;
    QColor window;           // background outside working hours
    QColor workingHours;     // background of working-hour cells
    QColor gridLine;         // hour lines
    QColor gridSubLine;      // lines between the steps of an hour
    QColor timeScaleBack;
    QColor timeScaleText;
    QColor headerBack;
    QColor headerText;
    QColor todayHeaderBack;
    QColor selection;
    QColor allDayBand;
    QColor eventBorder;
    QColor eventText;
    QColor monthOtherMonth;  // month days outside the shown month
    QColor holidayHeaderBack; // day header of a public holiday, in every theme

    [[nodiscard]] static CalendarTheme forNumber(int number);
};

// How an appointment's block is drawn over the cell behind it, on the screen
// and on paper alike. The fill is the label's colour, made deeper when it
// would melt into the cell (rule colours and type colours come from the same
// pale palette); the text is dark or white, whichever reads on the fill. A
// timed appointment whose patient is in the waiting room (busy status 0) has
// a green bar and the mark before its subject; all-day ones have no
// presence to show.
struct EventBlockStyle
{
    QColor fill;
    QColor bar;       // the band down the block's left side
    QColor border;
    QColor text;
    bool waiting = false;
};
[[nodiscard]] EventBlockStyle EventBlockColors(const QColor &label, const QColor &cell, int busyStatus, bool allDay,
                                               const CalendarTheme &theme);
// The mark written before the subject of a waiting patient's appointment.
[[nodiscard]] QString WaitingRoomMark();
// How far apart two colours look, 0 (same) to about 765.
[[nodiscard]] int ColourDistance(const QColor &a, const QColor &b);

// Options of the calendar that last for the session only: every start
// begins with these values, and the advanced options and time zone dialogs
// change them.
// The days of the work week that holds a day: the days of the mask in the
// order of the week that begins on firstDayOfWeek (an empty mask counts as
// Monday to Friday).
[[nodiscard]] QList<QDate> WorkWeekDays(const QDate &anchor, int workDaysMask, int firstDayOfWeek);

// How the week and month views write an appointment's times: as a small
// clock face instead of digits, with the end time after the start, and on
// every day box of an appointment that runs over several days (otherwise the
// start on its first day and the end on its last).
struct DayBoxTimes
{
    bool asClock = false;
    bool endTime = false;
    bool startAlways = false;
    bool endAlways = false;
    friend bool operator==(const DayBoxTimes &, const DayBoxTimes &) = default;
};

// The times shown on an appointment's line in the box of one day (invalid:
// not shown). An all-day appointment shows none.
struct DayBoxLineTimes
{
    QTime start;
    QTime end;
};
[[nodiscard]] DayBoxLineTimes LineTimesForDay(const CalendarEvent &event, const QDate &day, const DayBoxTimes &options);

// The text of the tooltip of the calendar at a point: an appointment's hours
// and subject, its motive and the waiting room (none in tooltip mode 2), or over a selected free cell the
// "add new" hint; empty when there is nothing to say.
[[nodiscard]] QString CalendarTipText(const CalendarHit &hit, bool cellSelected, int toolTipsMode,
                                      bool enableTooltips, const QString &addNewText);

struct CalendarOptions
{
    // In-place editing of an appointment's subject and in-place creation.
    // Only F2 has an editor in this calendar (the others are kept off).
    bool editSubjectByMouseClick = false;
    bool editSubjectAfterResize = false;
    bool editSubjectByF2 = true;
    bool editSubjectByTab = false;
    bool inPlaceCreateEvent = false;
    // The minutes of every step on the day views' time scale, not only the
    // hours.
    bool showMinutes = true;
    // Kept for the dialogs; the drawing does not depend on them.
    bool useOutlookFontGlyphs = false;
    bool enablePrevNextEventButtons = false;
    // The current-time line (MarqueHeure, plus MarqueHeureImprimee).
    int timeMarkMode = 1;
    // Captions above the time scale and the second one, and the zone of the
    // second scale, drawn beside the first when it is shown.
    QString timeScaleCaption;
    QString additionalTimeScaleCaption;
    bool showAdditionalTimeZone = false;
    FuseauHoraire additionalTimeZone;
    // The days of the work-week view: bit 0 Sunday ... bit 6 Saturday
    // (Monday to Friday by default), shown from the first day of the week
    // (1 Sunday ... 7 Saturday).
    int workDaysMask = 0x3E;
    int firstDayOfWeek = 2;
    // Times on the lines of the week and month views.
    DayBoxTimes weekTimes;
    DayBoxTimes monthTimes;
    // The month view: Saturday and Sunday share one column; how many weeks
    // it shows from the week of the day shown (0: the weeks of its month).
    bool compressWeekendDays = false;
    int monthWeeksCount = 0;
    // The hint over a selected free cell ("txtOthAddNew"), shown while
    // tooltips of the calendar are on.
    bool enableTooltips = true;
    QString addNewText = QStringLiteral("Cliquer pour ajouter un rendez-vous");

    friend bool operator==(const CalendarOptions &, const CalendarOptions &) = default;
};
