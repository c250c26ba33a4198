#include "calendar/view/weekpane.h"

#include "calendar/view/calendarview.h"

#include <QPainter>

WeekPane::WeekPane(CalendarView *view, QWidget *parent) : DayBoxPane(view, parent) {}

QList<QDate> WeekPane::daysFor(const QDate &anchor) const
{
    const QDate monday = anchor.addDays(1 - anchor.dayOfWeek());
    QList<QDate> days;
    for (int i = 0; i < 7; ++i)
        days.append(monday.addDays(i));
    return days;
}

QString WeekPane::headerText(const QDate &day)
{
    return calendarLocale().toString(day, QStringLiteral("ddd, dd MMMM"));
}

QDate WeekPane::stepDay(int direction) const { return m_days.first().addDays(7 * direction); }

const DayBoxTimes &WeekPane::lineTimes() const { return m_view->options().weekTimes; }

void WeekPane::placeBoxes()
{
    const int header = fontMetrics().height() + 6;
    const int w = width();
    const int h = height();
    // Each day takes slots of a sixth of the height: three days on the left;
    // two days and the shared weekend box on the right.
    static constexpr int sixths[7][2] = {{0, 2}, {2, 4}, {4, 6}, {0, 2}, {2, 4}, {4, 5}, {5, 6}};
    for (int i = 0; i < m_boxes.size() && i < 7; ++i) {
        Box &b = m_boxes[i];
        const int col = i < 3 ? 0 : 1;
        const int from = sixths[i][0];
        const int to = sixths[i][1];
        const int x0 = col * w / 2;
        const int x1 = (col + 1) * w / 2;
        const int y0 = from * h / 6;
        const int y1 = to * h / 6;
        b.rect = QRect(x0, y0, x1 - x0, y1 - y0);
        b.header = QRect(x0, y0, x1 - x0, std::min(header, y1 - y0));
        b.body = QRect(x0, b.header.bottom() + 1, x1 - x0, std::max(0, y1 - b.header.bottom() - 1));
        b.headerText = headerText(b.day);
    }
}

void WeekPane::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const CalendarTheme &theme = m_view->themeColors();
    p.fillRect(rect(), theme.workingHours);
    for (const Box &b : std::as_const(m_boxes)) {
        // "…": more appointments than lines; the day view shows them all.
        paintBox(p, b, theme.workingHours, theme.headerBack, Qt::AlignRight,
                 overflow(b.day) > 0 ? QStringLiteral("…") : QString(), false);
        p.setPen(theme.gridLine);
        p.drawLine(b.header.bottomLeft(), b.header.bottomRight());
        p.drawRect(b.rect.adjusted(0, 0, -1, -1));
    }
    paintLines(p);
    paintToday(p);
}
