#include "calendar/view/monthpane.h"

#include "calendar/view/calendarview.h"
#include "shell/base/horloge.h"
#include "shell/base/joursferies.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

// Dark label colours take white text.
QColor textOn(const QColor &back, const QColor &normal)
{
    return back.lightness() < 110 ? QColor(Qt::white) : normal;
}

// a with a share t of b.
QColor blend(const QColor &a, const QColor &b, qreal t)
{
    return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * t, a.greenF() + (b.greenF() - a.greenF()) * t,
                            a.blueF() + (b.blueF() - a.blueF()) * t);
}

} // namespace

// ---------------------------------------------------------------- DayBoxPane

DayBoxPane::DayBoxPane(CalendarView *view, QWidget *parent) : CalendarPane(view, parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(false);
}

void DayBoxPane::setDays(const QList<QDate> &days)
{
    m_days = days;
    relayout();
}

void DayBoxPane::eventsChanged() { relayout(); }

void DayBoxPane::setScrollingEnabled(bool vertical, bool) { m_scrolling = vertical; }

int DayBoxPane::lineHeight() const { return fontMetrics().height() + 4; }

bool DayBoxPane::isSelectedDay(const QDate &day) const
{
    const CalendarSelection s = m_view->selection();
    if (!s.isValid())
        return false;
    return day >= s.begin.date() && QDateTime(day, QTime(0, 0)) < s.end;
}

void DayBoxPane::paintBox(QPainter &p, const Box &b, const QColor &back, const QColor &headerBack,
                          Qt::Alignment dateSide, const QString &more, bool dim) const
{
    const CalendarTheme &theme = m_view->themeColors();
    const bool selected = isSelectedDay(b.day);
    const bool today = b.day == Horloge::aujourdhui();
    // A selected day is tinted, and its date line takes the selection colour.
    p.fillRect(b.rect, selected ? blend(back, theme.selection, 0.22) : back);
    // A public holiday is tinted and named on the side away from the date.
    const QString holiday = NomJourFerie(b.day);
    QColor head = headerBack;
    if (selected)
        head = theme.selection;
    else if (today)
        head = theme.todayHeaderBack;
    else if (!holiday.isEmpty())
        head = theme.holidayHeaderBack;
    if (head.isValid())
        p.fillRect(b.header, head);
    QFont f = font();
    f.setBold(today || b.day.day() == 1);
    p.setFont(f);
    QColor text = head.isValid() ? textOn(head, theme.headerText) : theme.headerText;
    if (dim && !selected)
        text = blend(text, back, 0.45);
    p.setPen(text);
    const QRect line = b.header.adjusted(5, 0, -5, 0);
    p.drawText(line, Qt::AlignVCenter | dateSide, QFontMetrics(f).elidedText(b.headerText, Qt::ElideRight, line.width()));
    const int dateWidth = QFontMetrics(f).horizontalAdvance(b.headerText) + 8;
    p.setFont(font());
    const QString other = holiday.isEmpty() ? more : more.isEmpty() ? holiday : holiday + u' ' + more;
    if (!other.isEmpty()) {
        const QColor ink = holiday.isEmpty() ? theme.eventBorder : theme.headerText;
        p.setPen(head.isValid() ? textOn(head, ink) : ink);
        p.drawText(line, Qt::AlignVCenter | (dateSide & Qt::AlignRight ? Qt::AlignLeft : Qt::AlignRight),
                   fontMetrics().elidedText(other, Qt::ElideMiddle, std::max(0, line.width() - dateWidth)));
    }
}

void DayBoxPane::paintToday(QPainter &p) const
{
    // Today is framed, whatever is selected.
    const CalendarTheme &theme = m_view->themeColors();
    const QDate today = Horloge::aujourdhui();
    for (const Box &b : std::as_const(m_boxes)) {
        if (b.day != today)
            continue;
        p.setPen(QPen(theme.todayHeaderBack.darker(135), 2));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(b.rect).adjusted(1, 1, -1, -1));
    }
}

QString DayBoxPane::timesText(const DayBoxLineTimes &times)
{
    const QString format = QStringLiteral("HH:mm");
    if (times.start.isValid() && times.end.isValid())
        return times.start.toString(format) + u'-' + times.end.toString(format);
    if (times.end.isValid())
        return u'-' + times.end.toString(format);
    return times.start.isValid() ? times.start.toString(format) : QString();
}

int DayBoxPane::paintTimes(QPainter &p, const QRect &r, const DayBoxLineTimes &times) const
{
    if (!lineTimes().asClock) {
        const QString text = timesText(times);
        if (text.isEmpty())
            return 0;
        QFont f = font();
        f.setBold(true);
        p.setFont(f);
        p.drawText(r, Qt::AlignVCenter | Qt::AlignLeft, text);
        p.setFont(font());
        return QFontMetrics(f).horizontalAdvance(text + u' ');
    }
    // A clock face for each time shown, hands at the hour and minute.
    const int d = std::max(7, r.height() - 3);
    int x = r.left();
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    for (const QTime &t : {times.start, times.end}) {
        if (!t.isValid())
            continue;
        const QRectF face(x + 0.5, r.top() + (r.height() - d) / 2.0 + 0.5, d - 1, d - 1);
        p.setPen(QPen(p.pen().color(), 1));
        p.setBrush(Qt::white);
        p.drawEllipse(face);
        const QPointF c = face.center();
        const auto hand = [&](qreal turns, qreal length) {
            const qreal a = turns * 2 * M_PI;
            p.drawLine(c, c + QPointF(std::sin(a), -std::cos(a)) * length * face.width() / 2);
        };
        hand((t.hour() % 12 + t.minute() / 60.0) / 12.0, 0.55);
        hand(t.minute() / 60.0, 0.85);
        x += d + 2;
    }
    p.restore();
    return x == r.left() ? 0 : x - r.left() + 3;
}

void DayBoxPane::resizeEvent(QResizeEvent *event)
{
    CalendarPane::resizeEvent(event);
    relayout();
}

void DayBoxPane::relayout()
{
    m_boxes.clear();
    for (const QDate &d : std::as_const(m_days))
        m_boxes.append(Box{d, {}, {}, {}, {}});
    placeBoxes();

    // The appointments of the shown days, as the view last read them.
    m_events.clear();
    QList<MonthLayoutItem> items;
    if (!m_days.isEmpty()) {
        const QDateTime from(m_days.first(), QTime(0, 0));
        const QDateTime to(m_days.last().addDays(1), QTime(0, 0));
        for (const CalendarEventPtr &e : m_view->shownEvents()) {
            if (!e || e->StartDateTime() >= to || (e->EndDateTime() > e->StartDateTime() ? e->EndDateTime() <= from
                                                                                           : e->StartDateTime() < from))
                continue;
            m_events.append(e);
            items.append({e->EventID(), e->StartDateTime(), e->EndDateTime(), e->IsAllDayEvent()});
        }
    }

    const int lh = lineHeight();
    QList<int> capacity;
    for (const Box &b : std::as_const(m_boxes))
        capacity.append(std::max(0, (b.body.height() - 2) / lh));
    const QList<MonthLayoutDay> layout = LayoutMonthDays(m_days, items, capacity, daysPerRow());

    // A bar runs on from box i-1 into box i only where the two stand side by
    // side on one line (not from Saturday down to Sunday in a shared column).
    const auto joined = [this](int i) {
        return i > 0 && i < m_boxes.size() && i % daysPerRow() != 0
               && m_boxes.at(i).rect.top() == m_boxes.at(i - 1).rect.top()
               && m_boxes.at(i).rect.left() == m_boxes.at(i - 1).rect.right() + 1;
    };
    m_lines.clear();
    m_overflow.clear();
    for (int i = 0; i < layout.size(); ++i) {
        const Box &b = m_boxes.at(i);
        QList<Line> lines;
        for (MonthLayoutLine l : layout.at(i).lines) {
            QRect r(b.body.left() + 2, b.body.top() + 1 + l.lane * lh, b.body.width() - 4, lh - 2);
            if (l.bar) {
                // Bars reach the edges of the boxes they run on into, and are
                // drawn whole from the first box of each stretch.
                if (l.continuesBefore && joined(i))
                    r.setLeft(b.rect.left());
                if (l.continuesAfter && joined(i + 1))
                    r.setRight(b.rect.right() + 1);
                l.spanInRow = l.continuesBefore && joined(i) ? 0 : 1;
                for (int j = i + 1; l.spanInRow > 0 && joined(j) && j < layout.size(); ++j) {
                    const auto &next = layout.at(j).lines;
                    if (std::none_of(next.begin(), next.end(), [&](const MonthLayoutLine &n) { return n.item == l.item; }))
                        break;
                    ++l.spanInRow;
                }
            }
            lines.append({l, r});
        }
        m_lines.append(lines);
        m_overflow.append(layout.at(i).overflow);
    }
    update();
}

QRect DayBoxPane::eventRect(const CalendarEventPtr &event, const QDate &day) const
{
    const int i = m_days.indexOf(day);
    if (i < 0 || i >= m_lines.size())
        return {};
    // The view reads new records on every populate: a record kept from
    // before is known by its key and start.
    for (const Line &l : m_lines.at(i)) {
        const CalendarEventPtr &e = m_events.at(l.line.item);
        if (e == event
            || (event && e->EventID() == event->EventID() && e->StartDateTime() == event->StartDateTime()))
            return l.rect;
    }
    return {};
}

int DayBoxPane::overflow(const QDate &day) const
{
    const int i = m_days.indexOf(day);
    return i < 0 || i >= m_overflow.size() ? 0 : m_overflow.at(i);
}

CalendarHit DayBoxPane::hitTest(const QPoint &pos) const
{
    CalendarHit hit;
    for (int i = 0; i < m_boxes.size(); ++i) {
        const Box &b = m_boxes.at(i);
        if (!b.rect.contains(pos))
            continue;
        hit.area = boxArea();
        hit.time = QDateTime(b.day, QTime(0, 0));
        hit.allDay = true;
        if (i < m_lines.size()) {
            for (const Line &l : m_lines.at(i)) {
                if (l.rect.contains(pos)) {
                    hit.area = HitEvent;
                    hit.event = m_events.at(l.line.item);
                    break;
                }
            }
        }
        break;
    }
    return hit;
}

void DayBoxPane::selectAt(const QPoint &pos, bool add)
{
    const CalendarHit hit = hitTest(pos);
    if (hit.area == HitNothing)
        return;
    const CalendarSelection day{hit.time, hit.time.addDays(1), true};
    QList<CalendarEventPtr> events;
    if (add)
        events = m_view->selectedEvents();
    if (hit.event) {
        if (add && events.contains(hit.event))
            events.removeAll(hit.event);
        else
            events.append(hit.event);
    }
    m_view->selectFromPane(day, events);
}

void DayBoxPane::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        selectAt(event->position().toPoint(), event->modifiers().testFlag(Qt::ControlModifier));
    } else if (event->button() == Qt::RightButton) {
        // A right click acts on what it points at: select it first, unless
        // it is already part of the selection.
        const CalendarHit hit = hitTest(event->position().toPoint());
        if (!hit.event || !m_view->isEventSelected(hit.event))
            selectAt(event->position().toPoint(), false);
        emit rightClicked(event->position().toPoint());
    }
    event->accept();
}

void DayBoxPane::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked(event->position().toPoint());
    event->accept();
}

void DayBoxPane::wheelEvent(QWheelEvent *event)
{
    const int dy = event->angleDelta().y();
    if (!m_scrolling || dy == 0 || m_days.isEmpty()) {
        event->ignore();
        return;
    }
    m_view->ShowDay(stepDay(dy > 0 ? -1 : 1));
    event->accept();
}

void DayBoxPane::paintLines(QPainter &p) const
{
    const CalendarTheme &theme = m_view->themeColors();
    for (int i = 0; i < m_lines.size() && i < m_boxes.size(); ++i) {
        const QDate day = m_boxes.at(i).day;
        for (const Line &l : m_lines.at(i)) {
            if (l.line.bar && l.line.spanInRow == 0)
                continue; // drawn from its first box of the row
            p.save();
            paintLine(p, l, i, day, theme);
            p.restore();
        }
    }
}

void DayBoxPane::paintLine(QPainter &p, const Line &l, int i, const QDate &day, const CalendarTheme &theme) const
{
    const CalendarEventPtr &e = m_events.at(l.line.item);
    const EventBlockStyle style = EventBlockColors(m_view->labelColor(e->LabelID()), theme.workingHours, e->BusyStatus(),
                                                   e->IsAllDayEvent(), theme);
    const QColor label = style.fill;
    const bool selected = m_view->isEventSelected(e);
    const QRect r = l.rect;
    if (l.line.bar) {
        // One bar over all the boxes of the row it crosses, rounded only
        // where the appointment begins or ends.
        QRect whole = r;
        bool goesOn = l.line.continuesAfter;
        for (int k = 1; k < l.line.spanInRow && i + k < m_lines.size(); ++k)
            for (const Line &next : m_lines.at(i + k))
                if (next.line.item == l.line.item) {
                    whole.setRight(next.rect.right());
                    goesOn = next.line.continuesAfter;
                }
        const QRectF body = QRectF(whole).adjusted(0.5, 0.5, -0.5, -0.5);
        const qreal radius = 3;
        QPainterPath path;
        path.addRoundedRect(body, radius, radius);
        if (l.line.continuesBefore)
            path.addRect(QRectF(body.left(), body.top(), 2 * radius, body.height()));
        if (goesOn)
            path.addRect(QRectF(body.right() - 2 * radius, body.top(), 2 * radius, body.height()));
        path.setFillRule(Qt::WindingFill);
        path = path.simplified();
        const QColor back = selected ? theme.selection.darker(115) : label;
        p.setRenderHint(QPainter::Antialiasing);
        p.fillPath(path, back);
        p.setPen(QPen(selected ? theme.eventText : theme.eventBorder, selected ? 1.5 : 1));
        p.drawPath(path);
        p.setRenderHint(QPainter::Antialiasing, false);

        QRect text = whole.adjusted(5, 0, -4, 0);
        p.setPen(textOn(back, theme.eventText));
        if (l.line.continuesBefore) {
            p.drawText(text, Qt::AlignVCenter | Qt::AlignLeft, QStringLiteral("« "));
            text.setLeft(text.left() + fontMetrics().horizontalAdvance(QStringLiteral("« ")));
        }
        text.setLeft(text.left() + paintTimes(p, text, LineTimesForDay(*e, day, lineTimes())));
        QString s = e->Subject();
        if (goesOn)
            s.append(QStringLiteral(" »"));
        p.drawText(text, Qt::AlignVCenter | Qt::AlignLeft, fontMetrics().elidedText(s, Qt::ElideRight, text.width()));
    } else {
        // A timed appointment: a marker in its label's colour, then the
        // time and the subject.
        if (selected) {
            p.fillRect(r, theme.selection);
            p.setPen(theme.eventBorder);
            p.drawRect(r.adjusted(0, 0, -1, -1));
        }
        const int m = std::max(6, r.height() - 8);
        const QRect marker(r.left() + 3, r.top() + (r.height() - m) / 2, m, m);
        p.fillRect(marker, style.waiting ? style.bar : label);
        p.setPen(theme.eventBorder);
        p.drawRect(marker.adjusted(0, 0, -1, -1));
        const QRect text = r.adjusted(marker.width() + 7, 0, -2, 0);
        p.setPen(selected ? textOn(theme.selection, theme.eventText) : theme.eventText);
        const QRect rest = text.adjusted(paintTimes(p, text, LineTimesForDay(*e, day, lineTimes())), 0, 0, 0);
        p.drawText(rest, Qt::AlignVCenter | Qt::AlignLeft,
                   fontMetrics().elidedText((style.waiting ? WaitingRoomMark() : QString()) + e->Subject(), Qt::ElideRight,
                                            rest.width()));
    }
}

// ----------------------------------------------------------------- MonthPane

MonthPane::MonthPane(CalendarView *view, QWidget *parent) : DayBoxPane(view, parent) {}

QList<QDate> MonthPane::daysFor(const QDate &anchor) const
{
    const int weeks = m_view->options().monthWeeksCount;
    if (weeks >= 2 && weeks <= 6) {
        const QDate monday = anchor.addDays(1 - anchor.dayOfWeek());
        QList<QDate> days;
        for (int i = 0; i < 7 * weeks; ++i)
            days.append(monday.addDays(i));
        return days;
    }
    const QDate first(anchor.year(), anchor.month(), 1);
    const QDate last = first.addMonths(1).addDays(-1);
    QDate day = first.addDays(1 - first.dayOfWeek());
    const QDate end = last.addDays(7 - last.dayOfWeek());
    QList<QDate> days;
    for (; day <= end; day = day.addDays(1))
        days.append(day);
    return days;
}

QString MonthPane::dayLabel(const QDate &day)
{
    if (day.day() != 1)
        return calendarLocale().toString(day, QStringLiteral("d"));
    if (day.month() == 1)
        return calendarLocale().toString(day, QStringLiteral("MMMM d"));
    return calendarLocale().toString(day, QStringLiteral("MMM d"));
}

int MonthPane::shownMonth() const
{
    // The first week may start in the month before; the middle day never does.
    return m_days.isEmpty() ? 0 : m_days.at(m_days.size() / 2).month();
}

const DayBoxTimes &MonthPane::lineTimes() const { return m_view->options().monthTimes; }

bool MonthPane::weekendShared() const { return m_view->options().compressWeekendDays; }

QDate MonthPane::stepDay(int direction) const
{
    // A chosen number of weeks scrolls by a week, the whole month by a month.
    if (m_view->options().monthWeeksCount >= 2)
        return m_days.first().addDays(7 * direction);
    const QDate middle = m_days.at(m_days.size() / 2);
    return QDate(middle.year(), middle.month(), 1).addMonths(direction);
}

void MonthPane::placeBoxes()
{
    const int rows = std::max<int>(1, int((m_boxes.size() + 6) / 7));
    const int band = fontMetrics().height() + 8;
    // A narrow column of ISO week numbers on the left when there is room.
    m_weekColumn = width() >= 420 ? fontMetrics().horizontalAdvance(QStringLiteral("S88")) + 8 : 0;
    m_weekdayBand = QRect(m_weekColumn, 0, width() - m_weekColumn, band);
    const int top = band;
    const int h = std::max(0, height() - top);
    const int w = width() - m_weekColumn;
    const int header = fontMetrics().height() + 4;
    const bool shared = weekendShared();
    const int columns = shared ? 6 : 7;
    for (int i = 0; i < m_boxes.size(); ++i) {
        const int row = i / 7;
        const int col = std::min(i % 7, columns - 1);
        const int x0 = m_weekColumn + col * w / columns;
        const int x1 = m_weekColumn + (col + 1) * w / columns;
        int y0 = top + row * h / rows;
        int y1 = top + (row + 1) * h / rows;
        if (shared && i % 7 >= 5) {
            // Saturday above, Sunday below.
            const int middle = (y0 + y1) / 2;
            (i % 7 == 5 ? y1 : y0) = middle;
        }
        Box &b = m_boxes[i];
        b.rect = QRect(x0, y0, x1 - x0, y1 - y0);
        b.header = QRect(x0, y0, x1 - x0, std::min(header, y1 - y0));
        b.body = QRect(x0, b.header.bottom() + 1, x1 - x0, std::max(0, y1 - b.header.bottom() - 1));
        b.headerText = dayLabel(b.day);
    }
}

void MonthPane::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const CalendarTheme &theme = m_view->themeColors();
    p.fillRect(rect(), theme.workingHours);

    // Weekday names, long when they fit.
    p.fillRect(m_weekdayBand, theme.headerBack);
    QFont bold = font();
    bold.setBold(true);
    int widest = 0;
    for (int d = 1; d <= 7; ++d)
        widest = std::max(widest, QFontMetrics(bold).horizontalAdvance(calendarLocale().dayName(d)));
    const bool longNames = widest + 8 <= m_weekdayBand.width() / 7;
    p.setFont(bold);
    p.setPen(theme.headerText);
    const QLocale::FormatType format = longNames && !weekendShared() ? QLocale::LongFormat : QLocale::ShortFormat;
    for (int col = 0; col < 7 && col < m_boxes.size(); ++col) {
        const QRect &box = m_boxes.at(col).rect;
        QString name = calendarLocale().dayName(col + 1, format);
        if (weekendShared() && col == 5)
            name += u'/' + calendarLocale().dayName(7, format);
        else if (weekendShared() && col == 6)
            continue;
        p.drawText(QRect(box.left(), m_weekdayBand.top(), box.width(), m_weekdayBand.height()), Qt::AlignCenter, name);
    }
    p.setFont(font());
    if (m_weekColumn > 0) {
        p.fillRect(QRect(0, 0, m_weekColumn, height()), theme.headerBack);
        p.setPen(theme.headerText);
        for (int i = 0; i < m_boxes.size(); i += 7) {
            const QRect &box = m_boxes.at(i).rect;
            p.drawText(QRect(0, box.top(), m_weekColumn, m_boxes.at(i).header.height()), Qt::AlignCenter,
                       QStringLiteral("S%1").arg(m_boxes.at(i).day.weekNumber()));
        }
    }

    // Whole months shade the days of their neighbours; a number of weeks
    // shows every day alike.
    const int month = m_view->options().monthWeeksCount >= 2 ? 0 : shownMonth();
    for (const Box &b : std::as_const(m_boxes)) {
        const bool other = month != 0 && b.day.month() != month;
        const int more = overflow(b.day);
        paintBox(p, b, other ? theme.monthOtherMonth : theme.workingHours, QColor(), Qt::AlignLeft,
                 more > 0 ? QStringLiteral("+%1").arg(more) : QString(), other);
    }
    // Grid, then the lines over it (bars run across the box borders).
    p.setPen(theme.gridLine);
    for (int i = 0; i < m_boxes.size(); ++i) {
        const QRect &r = m_boxes.at(i).rect;
        p.drawLine(r.topLeft(), r.topRight());
        if (i % 7 != 0 || m_weekColumn > 0)
            p.drawLine(r.topLeft(), r.bottomLeft());
    }
    p.drawLine(m_weekdayBand.bottomLeft(), m_weekdayBand.bottomRight());
    p.drawRect(rect().adjusted(0, 0, -1, -1));
    paintLines(p);
    paintToday(p);
}
