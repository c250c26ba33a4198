#include "calendar/view/daypane.h"

#include "calendar/view/calendarview.h"
#include "calendar/view/daylayout.h"
#include "calendar/view/monthlayout.h"
#include "shell/base/horloge.h"
#include "shell/base/joursferies.h"
#include "shell/base/prompt.h"
#include "calendar/marqueheure.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kEdge = 4;       // pixels of an appointment's top and bottom edges that resize it
constexpr int kRightGap = 6;   // free strip at the right of a column, to reach the cells
constexpr int kLeftBar = 5;    // the darker bar at the left of an appointment
const QColor kTimeMark(224, 96, 16);

// Minutes from 00:00 of day to a moment, clipped to the day (0 to 1440).
int minutesInDay(const QDate &day, const QDateTime &moment)
{
    if (moment.date() < day)
        return 0;
    if (moment.date() > day)
        return 24 * 60;
    const QTime t = moment.time();
    return t.hour() * 60 + t.minute();
}

QDateTime atMinute(const QDate &day, int minute)
{
    if (minute >= 24 * 60)
        return QDateTime(day.addDays(1), QTime(0, 0));
    return QDateTime(day, QTime(minute / 60, minute % 60));
}

// Appointments of the band: the all-day ones and those of a day or more.
bool inBand(const CalendarEventPtr &e)
{
    return e->IsAllDayEvent() || e->StartDateTime().secsTo(e->EndDateTime()) >= 24 * 3600;
}

// The day header in French, whatever the machine's language, shorter as the
// column narrows. A public holiday's name follows the date while it fits.
QString dayTitle(const QDate &day, const QFontMetrics &fm, int width, const QString &holiday = {})
{
    // The long form first, then shorter ones as the column narrows.
    const std::initializer_list<const char *> formats = {"ddd, dd MMMM", "ddd dd MMM", "ddd d", "d/MM"};
    if (!holiday.isEmpty()) {
        for (const char *format : formats) {
            const QString text = calendarLocale().toString(day, QLatin1String(format)) + QStringLiteral(" – ") + holiday;
            if (fm.horizontalAdvance(text) <= width)
                return text;
        }
    }
    for (const char *format : formats) {
        const QString text = calendarLocale().toString(day, QLatin1String(format));
        if (fm.horizontalAdvance(text) <= width)
            return text;
    }
    return QString::number(day.day());
}

// Word-wrapped text in a rectangle; the last line that fits is cut with an
// ellipsis when text remains.
void drawWrapped(QPainter &p, const QRect &r, const QString &text)
{
    const QFontMetrics fm = p.fontMetrics();
    const int lineHeight = fm.height();
    const int maxLines = std::max(1, r.height() / lineHeight);
    const QStringList paragraphs = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    int lines = 0;
    int y = r.top() + fm.ascent();
    for (qsizetype k = 0; k < paragraphs.size(); ++k) {
        const QString &par = paragraphs.at(k);
        QTextLayout layout(par, p.font());
        layout.beginLayout();
        for (;;) {
            QTextLine line = layout.createLine();
            if (!line.isValid())
                break;
            line.setLineWidth(r.width());
            ++lines;
            const bool moreText = line.textStart() + line.textLength() < par.size() || k + 1 < paragraphs.size();
            if (lines == maxLines && moreText) {
                const QString rest = par.mid(line.textStart()) + (k + 1 < paragraphs.size() ? QStringLiteral(" …") : QString());
                p.drawText(r.left(), y, fm.elidedText(rest.simplified(), Qt::ElideRight, r.width()));
                layout.endLayout();
                return;
            }
            // A word longer than the box is cut, not drawn over the neighbour.
            p.drawText(r.left(), y, fm.elidedText(par.mid(line.textStart(), line.textLength()).trimmed(), Qt::ElideRight, r.width()));
            y += lineHeight;
        }
        layout.endLayout();
        if (lines >= maxLines)
            return;
    }
}

} // namespace

DayPane::DayPane(CalendarView *view, QWidget *parent) : CalendarPane(view, parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    m_scrollBar = new QScrollBar(Qt::Vertical, this);
    m_scrollBar->setFocusPolicy(Qt::NoFocus);
    connect(m_scrollBar, &QScrollBar::valueChanged, this, [this](int value) {
        if (value == m_scroll)
            return;
        m_scroll = value;
        update();
    });
    // The current-time line moves with the clock.
    auto *clock = new QTimer(this);
    clock->setInterval(30 * 1000);
    connect(clock, &QTimer::timeout, this, [this] {
        if (ChoixMarqueHeure(m_view->options().timeMarkMode) != MarqueHeure::Jamais)
            update();
    });
    clock->start();
    relayout();
}

QList<QDate> DayPane::daysFor(const QDate &anchor) const
{
    if (m_view->viewType() == CalendarViewType::Day)
        return {anchor};
    // The work days of the week holding the day (a day off shows the work
    // week it falls in).
    const CalendarOptions &o = m_view->options();
    return WorkWeekDays(anchor, o.workDaysMask, o.firstDayOfWeek);
}

void DayPane::setDays(const QList<QDate> &days)
{
    finishSubjectEdit(false);
    m_days = days;
    // Anchors of a mouse selection belong to the days that were on show.
    m_anchorCell = QDateTime();
    m_anchorDay = -1;
    m_drag = Drag::None;
    m_dragEvent.clear();
    if (!m_scrollPlaced) {
        // The first time, the working day begins at the top.
        const QTime begin = m_view->workDayBegin();
        m_scroll = (begin.hour() * 60 + begin.minute()) / scale() * m_rowHeight;
        m_scrollPlaced = true;
    }
    relayout();
}

void DayPane::eventsChanged()
{
    relayout();
    update();
}

int DayPane::scale() const { return std::max(1, m_view->timeScale()); }

int DayPane::scrollPosition() const { return m_scroll; }

void DayPane::setScrollPosition(int pixels)
{
    m_scrollPlaced = true;
    m_scroll = std::clamp(pixels, 0, maxScroll());
    updateScrollBar();
    update();
}

void DayPane::setScrollingEnabled(bool vertical, bool horizontal)
{
    // The columns always fit the width: there is nothing to scroll sideways.
    Q_UNUSED(horizontal)
    m_verticalScrolling = vertical;
    relayout();
    update();
}

void DayPane::timeScaleChanged(int oldScale)
{
    const int topMinute = oldScale > 0 ? m_scroll * oldScale / std::max(1, m_rowHeight) : 0;
    relayout();
    m_scroll = std::clamp(topMinute / scale() * m_rowHeight, 0, maxScroll());
    updateScrollBar();
    update();
}

void DayPane::ensureVisible(const QDateTime &time)
{
    if (!time.isValid())
        return;
    const int y = (time.time().hour() * 60 + time.time().minute()) / scale() * m_rowHeight;
    const int visible = std::max(0, height() - bodyTop());
    if (visible < m_rowHeight)
        m_scroll = y; // not laid out yet: the cell goes to the top
    else if (y < m_scroll)
        m_scroll = y;
    else if (y + m_rowHeight > m_scroll + visible)
        m_scroll = y + m_rowHeight - visible;
    m_scroll = std::clamp(m_scroll, 0, maxScroll());
    m_scrollPlaced = true;
    updateScrollBar();
    update();
}

QRect DayPane::bodyRect() const
{
    return QRect(m_timeWidth, bodyTop(), columnsWidth(), std::max(0, height() - bodyTop()));
}

QRect DayPane::allDayBandRect() const { return QRect(m_timeWidth, m_headerHeight, columnsWidth(), m_bandHeight); }

QRect DayPane::timeScaleRect() const { return QRect(0, bodyTop(), m_timeWidth, std::max(0, height() - bodyTop())); }

int DayPane::columnsWidth() const
{
    // The bar's own visibility also depends on the window being shown: the
    // layout follows the switch alone, so that it is the same before and after.
    const int bar = m_verticalScrolling ? m_scrollBar->sizeHint().width() : 0;
    return std::max(0, width() - m_timeWidth - bar);
}

int DayPane::columnLeft(int day) const
{
    const int n = std::max(1, static_cast<int>(m_days.size()));
    return m_timeWidth + day * columnsWidth() / n;
}

int DayPane::columnRight(int day) const { return columnLeft(day + 1); }

int DayPane::dayAt(int x) const
{
    if (x < m_timeWidth || x >= m_timeWidth + columnsWidth())
        return -1;
    for (int i = 0; i < m_days.size(); ++i) {
        if (x < columnRight(i))
            return i;
    }
    return -1;
}

int DayPane::minuteAt(int y) const
{
    const int contentY = std::clamp(y - bodyTop() + m_scroll, 0, std::max(0, contentHeight() - 1));
    return contentY * scale() / m_rowHeight;
}

QDateTime DayPane::cellBegin(int day, int row) const { return atMinute(m_days.at(day), row * scale()); }

int DayPane::maxScroll() const { return std::max(0, contentHeight() - std::max(0, height() - bodyTop())); }

QRect DayPane::cellRect(const QDateTime &begin) const
{
    const int day = static_cast<int>(m_days.indexOf(begin.date()));
    if (day < 0)
        return {};
    const int row = (begin.time().hour() * 60 + begin.time().minute()) / scale();
    return QRect(columnLeft(day), bodyTop() - m_scroll + row * m_rowHeight, columnRight(day) - columnLeft(day),
                 m_rowHeight);
}

QRect DayPane::shownRect(const Box &box) const
{
    return box.allDay ? box.rect : box.rect.translated(0, bodyTop() - m_scroll);
}

QRect DayPane::eventRect(const CalendarEventPtr &event) const
{
    for (const Box &b : m_boxes) {
        if (b.event == event)
            return shownRect(b);
    }
    return {};
}

bool DayPane::isWorkingTime(const QDate &day, int minute) const
{
    if (day.dayOfWeek() > 5)
        return false;
    const QTime begin = m_view->workDayBegin();
    const QTime end = m_view->workDayEnd();
    return minute >= begin.hour() * 60 + begin.minute() && minute < end.hour() * 60 + end.minute();
}

void DayPane::relayout()
{
    const QFontMetrics fm(font());
    m_rowHeight = std::max(fm.height() + 5, 18);
    m_headerHeight = fm.height() + 10;
    m_bandRowHeight = fm.height() + 6;
    QFont big = font();
    big.setBold(true);
    big.setPixelSize(std::max(1, fm.height() * 3 / 2));
    m_scaleWidth = QFontMetrics(big).horizontalAdvance(QStringLiteral("00")) + fm.horizontalAdvance(QStringLiteral("00")) + 16;
    const CalendarOptions &options = m_view->options();
    m_timeWidth = options.showAdditionalTimeZone ? 2 * m_scaleWidth : m_scaleWidth;
    // The second scale is shifted by the difference of the zones on the
    // first shown day.
    m_additionalOffset = options.showAdditionalTimeZone && !m_days.isEmpty()
                             ? DecalageEntre(m_view->currentTimeZone(), options.additionalTimeZone,
                                             QDateTime(m_days.first(), QTime(12, 0)))
                             : 0;

    m_boxes.clear();
    const QList<CalendarEventPtr> &events = m_view->shownEvents();
    const int n = static_cast<int>(m_days.size());

    // All-day band: each appointment over its run of shown days, in the
    // first row free over that run.
    QList<QList<int>> rowEnds; // per row, the last day index taken
    int bandRows = 0;
    for (const CalendarEventPtr &e : events) {
        if (!inBand(e) || n == 0)
            continue;
        const MonthLayoutItem span{0, e->StartDateTime(), e->EndDateTime(), e->IsAllDayEvent()};
        const QDate first = MonthLayoutFirstDay(span);
        const QDate last = MonthLayoutLastDay(span);
        if (last < m_days.first() || first > m_days.last())
            continue;
        const int from = first < m_days.first() ? 0 : static_cast<int>(m_days.indexOf(first));
        const int to = last > m_days.last() ? n - 1 : static_cast<int>(m_days.indexOf(last));
        if (from < 0 || to < 0)
            continue;
        int row = 0;
        for (; row < rowEnds.size(); ++row) {
            if (std::all_of(rowEnds[row].begin(), rowEnds[row].end(), [&](int d) { return d < from || d > to; }))
                break;
        }
        if (row == rowEnds.size())
            rowEnds.append(QList<int>());
        for (int d = from; d <= to; ++d)
            rowEnds[row].append(d);
        bandRows = std::max(bandRows, row + 1);
        Box b;
        b.event = e;
        b.allDay = true;
        b.rect = QRect(columnLeft(from) + 2, m_headerHeight + 2 + row * m_bandRowHeight,
                       columnRight(to) - columnLeft(from) - 4, m_bandRowHeight - 2);
        m_boxes.append(b);
    }
    m_bandHeight = std::max(1, bandRows) * m_bandRowHeight + 4;

    // Timed appointments, laid out day by day.
    const int minMinutes = std::max(1, ((fm.height() + 4) * scale() + m_rowHeight - 1) / m_rowHeight);
    for (int d = 0; d < n; ++d) {
        const QDate day = m_days.at(d);
        const QDateTime dayStart(day, QTime(0, 0));
        const QDateTime dayEnd(day.addDays(1), QTime(0, 0));
        QList<CalendarEventPtr> ofDay;
        QList<DayLayoutItem> items;
        for (const CalendarEventPtr &e : events) {
            if (inBand(e))
                continue;
            const QDateTime s = e->StartDateTime();
            const QDateTime f = e->EndDateTime();
            const bool touches = (s < dayEnd && f > dayStart) || (s >= dayStart && s < dayEnd);
            if (!touches)
                continue;
            items.append({static_cast<int>(ofDay.size()), minutesInDay(day, s), std::max(minutesInDay(day, s), minutesInDay(day, f))});
            ofDay.append(e);
        }
        const QList<DayLayoutPlace> places = LayoutDayEvents(items, minMinutes);
        const int left = columnLeft(d) + 1;
        const int width = std::max(4, columnRight(d) - columnLeft(d) - kRightGap);
        for (const DayLayoutPlace &pl : places) {
            Box b;
            b.event = ofDay.at(pl.id);
            const int x0 = left + pl.column * width / pl.columns;
            const int x1 = left + (pl.column + 1) * width / pl.columns;
            const int y0 = pl.shownStart * m_rowHeight / scale();
            const int y1 = std::min(pl.shownEnd, 24 * 60) * m_rowHeight / scale();
            b.rect = QRect(x0, y0, std::max(3, x1 - x0 - 1), std::max(3, y1 - y0));
            m_boxes.append(b);
        }
    }
    updateScrollBar();
}

void DayPane::updateScrollBar()
{
    const int visible = std::max(0, height() - bodyTop());
    const int barWidth = m_scrollBar->sizeHint().width();
    m_scrollBar->setGeometry(width() - barWidth, bodyTop(), barWidth, visible);
    m_scrollBar->setVisible(m_verticalScrolling);
    m_scroll = std::clamp(m_scroll, 0, maxScroll());
    const QSignalBlocker blocker(m_scrollBar);
    m_scrollBar->setRange(0, maxScroll());
    m_scrollBar->setPageStep(std::max(1, visible));
    m_scrollBar->setSingleStep(m_rowHeight);
    m_scrollBar->setValue(m_scroll);
}

void DayPane::resizeEvent(QResizeEvent *event)
{
    CalendarPane::resizeEvent(event);
    relayout();
}

// ---------------------------------------------------------------- painting

void DayPane::paintEvent(QPaintEvent *event)
{
    QPainter p(this);
    const CalendarTheme &t = m_view->themeColors();
    const QRect clip = event->rect();
    p.fillRect(rect(), t.window);
    paintCells(p, clip);
    paintTimeMark(p);
    paintTimeScale(p);
    paintHeader(p, clip);
    paintCaptions(p);
    paintAllDayBand(p);
    paintDragGhost(p);
}

void DayPane::paintHeader(QPainter &p, const QRect &clip)
{
    const CalendarTheme &t = m_view->themeColors();
    p.fillRect(QRect(0, 0, width(), bodyTop()), t.timeScaleBack);
    const QDate today = Horloge::aujourdhui();
    const QFontMetrics fm(font());
    for (int d = 0; d < m_days.size(); ++d) {
        const QRect r(columnLeft(d), 0, columnRight(d) - columnLeft(d), m_headerHeight);
        if (!r.intersects(clip))
            continue;
        const QString holiday = NomJourFerie(m_days.at(d));
        p.fillRect(r, m_days.at(d) == today ? t.todayHeaderBack : holiday.isEmpty() ? t.headerBack : t.holidayHeaderBack);
        p.setPen(t.gridLine);
        p.drawLine(r.topLeft(), r.bottomLeft());
        p.drawLine(r.bottomLeft(), r.bottomRight());
        p.setPen(t.headerText);
        p.drawText(r.adjusted(4, 0, -4, 0), Qt::AlignCenter, dayTitle(m_days.at(d), fm, r.width() - 8, holiday));
    }
}

void DayPane::paintAllDayBand(QPainter &p)
{
    const CalendarTheme &t = m_view->themeColors();
    const CalendarSelection sel = m_view->selection();
    for (int d = 0; d < m_days.size(); ++d) {
        const QRect r(columnLeft(d), m_headerHeight, columnRight(d) - columnLeft(d), m_bandHeight);
        const QDateTime dayStart(m_days.at(d), QTime(0, 0));
        const bool selected = sel.allDay && sel.isValid() && dayStart >= sel.begin && dayStart < sel.end;
        p.fillRect(r, selected ? t.selection : t.allDayBand);
        p.setPen(t.gridLine);
        p.drawLine(r.topLeft(), r.bottomLeft());
        p.drawLine(r.bottomLeft(), r.bottomRight());
    }
    for (const Box &b : std::as_const(m_boxes)) {
        if (b.allDay)
            paintEventBox(p, b.event, b.rect, false);
    }
}

void DayPane::paintCells(QPainter &p, const QRect &clip)
{
    const QRect body = bodyRect();
    const QRect area = body.intersected(clip);
    if (area.isEmpty() || m_days.isEmpty())
        return;
    const CalendarTheme &t = m_view->themeColors();
    const CalendarView::CellPainter &painter = m_view->cellPainter();
    const CalendarSelection sel = m_view->selection();
    const bool timeSelection = sel.isValid() && !sel.allDay;
    const int rows = rowCount();
    const int firstRow = std::max(0, (area.top() - bodyTop() + m_scroll) / m_rowHeight);
    const int lastRow = std::min(rows - 1, (area.bottom() - bodyTop() + m_scroll) / m_rowHeight);
    const int rowsPerHour = std::max(1, 60 / scale());

    p.save();
    p.setClipRect(area);
    for (int d = 0; d < m_days.size(); ++d) {
        const int left = columnLeft(d);
        const int right = columnRight(d);
        if (right <= area.left() || left > area.right())
            continue;
        const QDate day = m_days.at(d);
        for (int row = firstRow; row <= lastRow; ++row) {
            DayViewCell cell;
            cell.begin = cellBegin(d, row);
            cell.end = atMinute(day, (row + 1) * scale());
            cell.selected = timeSelection && cell.begin >= sel.begin && cell.begin < sel.end;
            cell.background = isWorkingTime(day, row * scale()) ? t.workingHours : t.window;
            if (painter)
                painter(cell);
            const int y = bodyTop() - m_scroll + row * m_rowHeight;
            const QRect r(left, y, right - left, m_rowHeight);
            p.fillRect(r, cell.selected ? t.selection : cell.background);
            p.setPen((row + 1) % rowsPerHour == 0 ? t.gridLine : t.gridSubLine);
            p.drawLine(left, r.bottom(), right - 1, r.bottom());
        }
        p.setPen(t.gridLine);
        p.drawLine(left, body.top(), left, body.bottom());
    }
    for (const Box &b : std::as_const(m_boxes)) {
        if (b.allDay)
            continue;
        const QRect r = shownRect(b);
        if (r.intersects(area))
            paintEventBox(p, b.event, r, false);
    }
    p.restore();
}

void DayPane::paintTimeScale(QPainter &p)
{
    const QRect r = timeScaleRect();
    p.fillRect(r, m_view->themeColors().timeScaleBack);
    // The second scale stands at the left, the main one beside the cells.
    if (m_timeWidth > m_scaleWidth)
        paintScale(p, QRect(r.left(), r.top(), m_scaleWidth, r.height()), m_additionalOffset);
    paintScale(p, QRect(r.left() + m_timeWidth - m_scaleWidth, r.top(), m_scaleWidth, r.height()), 0);
}

void DayPane::paintScale(QPainter &p, const QRect &r, int offset)
{
    const CalendarTheme &t = m_view->themeColors();
    const bool showMinutes = m_view->options().showMinutes;
    p.save();
    p.setClipRect(r);
    QFont hourFont = font();
    hourFont.setBold(true);
    const int rowsPerHour = std::max(1, 60 / scale());
    const QFontMetrics fm(font());
    hourFont.setPixelSize(std::clamp(rowsPerHour * m_rowHeight - 6, fm.height(), fm.height() * 3 / 2));
    QFont small = font();
    const int firstRow = std::max(0, m_scroll / m_rowHeight);
    const int lastRow = std::min(rowCount() - 1, (m_scroll + r.height()) / m_rowHeight);
    const int split = r.right() - fm.horizontalAdvance(QStringLiteral("00")) - 6;
    for (int row = firstRow; row <= lastRow; ++row) {
        const int y = r.top() - m_scroll + row * m_rowHeight;
        const int minute = row * scale();
        // The time this row stands for on this scale's clock.
        const int shown = ((minute + offset) % (24 * 60) + 24 * 60) % (24 * 60);
        const QString minutes = QStringLiteral("%1").arg(shown % 60, 2, 10, QLatin1Char('0'));
        p.setPen(t.gridLine);
        if ((row + 1) % rowsPerHour == 0)
            p.drawLine(r.left() + 4, y + m_rowHeight - 1, r.right() - 2, y + m_rowHeight - 1);
        else
            p.drawLine(split, y + m_rowHeight - 1, r.right() - 2, y + m_rowHeight - 1);
        p.setPen(t.timeScaleText);
        // Steps that do not divide the hour (45, 90 minutes) put the hour on
        // every row.
        if (minute % 60 == 0 || 60 % scale() != 0) {
            p.setFont(hourFont);
            p.drawText(QRect(r.left(), y + 1, split - r.left(), rowsPerHour * m_rowHeight - 2), Qt::AlignRight | Qt::AlignTop,
                       QString::number(shown / 60));
            p.setFont(small);
            p.drawText(QRect(split + 2, y + 1, r.right() - split - 2, m_rowHeight), Qt::AlignLeft | Qt::AlignTop, minutes);
        } else if (showMinutes && m_rowHeight >= fm.height()) {
            p.setFont(small);
            p.drawText(QRect(split + 2, y + 1, r.right() - split - 2, m_rowHeight), Qt::AlignLeft | Qt::AlignTop, minutes);
        }
    }
    p.setPen(t.gridLine);
    p.drawLine(r.right(), r.top(), r.right(), r.bottom());
    p.restore();
}

void DayPane::paintCaptions(QPainter &p)
{
    const CalendarOptions &options = m_view->options();
    const QFontMetrics fm(font());
    const int top = bodyTop() - fm.height() - 2;
    auto caption = [&](int left, const QString &text) {
        if (text.isEmpty())
            return;
        const QRect r(left + 2, top, m_scaleWidth - 4, fm.height());
        p.drawText(r, Qt::AlignCenter, fm.elidedText(text, Qt::ElideRight, r.width()));
    };
    p.save();
    p.setPen(m_view->themeColors().timeScaleText);
    if (m_timeWidth > m_scaleWidth)
        caption(0, options.additionalTimeScaleCaption);
    caption(m_timeWidth - m_scaleWidth, options.timeScaleCaption);
    p.restore();
}

void DayPane::paintTimeMark(QPainter &p)
{
    const int mode = m_view->options().timeMarkMode;
    const QDateTime now = Horloge::maintenant();
    const int y = bodyTop() - m_scroll + (now.time().hour() * 60 + now.time().minute()) * m_rowHeight / scale();
    if (y < bodyTop() || y >= height())
        return;
    p.save();
    p.setPen(QPen(kTimeMark, 2));
    for (int d = 0; d < m_days.size(); ++d) {
        if (MarqueHeureSurJour(mode, m_days.at(d), now.date(), false))
            p.drawLine(columnLeft(d), y, columnRight(d) - 1, y);
    }
    p.restore();
}

QColor DayPane::cellBackground(const QDateTime &at) const
{
    const CalendarTheme &t = m_view->themeColors();
    if (!at.isValid())
        return t.allDayBand;
    const int minute = at.time().hour() * 60 + at.time().minute();
    DayViewCell cell;
    cell.begin = atMinute(at.date(), minute / scale() * scale());
    cell.end = cell.begin.addSecs(60 * scale());
    cell.background = isWorkingTime(at.date(), minute) ? t.workingHours : t.window;
    if (const CalendarView::CellPainter &painter = m_view->cellPainter())
        painter(cell);
    return cell.background;
}

void DayPane::paintEventBox(QPainter &p, const CalendarEventPtr &event, const QRect &r, bool ghost)
{
    const CalendarTheme &t = m_view->themeColors();
    const EventBlockStyle style = EventBlockColors(m_view->labelColor(event->LabelID()),
                                                   event->IsAllDayEvent() ? t.allDayBand : cellBackground(event->StartDateTime()),
                                                   event->BusyStatus(), event->IsAllDayEvent(), t);
    QColor fill = style.fill;
    if (ghost)
        fill.setAlpha(170);
    const bool selected = m_view->isEventSelected(event);
    p.fillRect(r, fill);
    // A waiting patient's bar is twice as wide, so that it shows at a glance.
    const int bar = std::min(style.waiting ? 2 * kLeftBar : kLeftBar, r.width());
    p.fillRect(QRect(r.left(), r.top(), bar, r.height()), style.bar);
    p.setPen(QPen(selected ? t.headerText : style.border, selected ? 2 : 1));
    p.drawRect(selected ? r.adjusted(1, 1, -1, -1) : r.adjusted(0, 0, -1, -1));
    // The motive follows the subject on the same line when the block has
    // room for one line only.
    const QRect textRect = r.adjusted(bar + 3, 2, -3, -2);
    const bool oneLine = textRect.height() < 2 * p.fontMetrics().height();
    QString text = (style.waiting ? WaitingRoomMark() : QString()) + event->Subject();
    if (!event->Location().isEmpty())
        text += (oneLine ? QStringLiteral(" - ") : QStringLiteral("\n")) + event->Location();
    p.setPen(style.text);
    drawWrapped(p, textRect, text);
}

void DayPane::paintDragGhost(QPainter &p)
{
    if ((m_drag != Drag::Move && m_drag != Drag::ResizeBegin && m_drag != Drag::ResizeEnd) || !m_newStart.isValid())
        return;
    if (m_dragAllDay) {
        const QDate first = m_newStart.date();
        const int from = static_cast<int>(m_days.indexOf(first));
        if (from < 0)
            return;
        const int span = std::max(0, static_cast<int>(m_newStart.daysTo(m_newEnd)) - 1);
        const int to = std::min(static_cast<int>(m_days.size()) - 1, from + span);
        paintEventBox(p, m_dragEvent, QRect(columnLeft(from) + 2, m_headerHeight + 2, columnRight(to) - columnLeft(from) - 4,
                                            m_bandRowHeight - 2),
                      true);
        return;
    }
    p.save();
    p.setClipRect(bodyRect());
    for (int d = 0; d < m_days.size(); ++d) {
        const QDate day = m_days.at(d);
        const QDateTime dayStart(day, QTime(0, 0));
        if (!(m_newStart < dayStart.addDays(1) && m_newEnd > dayStart))
            continue;
        const int y0 = minutesInDay(day, m_newStart) * m_rowHeight / scale();
        const int y1 = minutesInDay(day, m_newEnd) * m_rowHeight / scale();
        const QRect r(columnLeft(d) + 1, bodyTop() - m_scroll + y0, columnRight(d) - columnLeft(d) - kRightGap,
                      std::max(3, y1 - y0));
        paintEventBox(p, m_dragEvent, r, true);
    }
    p.restore();
}

// --------------------------------------------------------------- hit test

const DayPane::Box *DayPane::boxAt(const QPoint &pos, int *edge) const
{
    // Last drawn is on top.
    for (auto it = m_boxes.crbegin(); it != m_boxes.crend(); ++it) {
        const QRect r = shownRect(*it);
        if (!r.contains(pos))
            continue;
        if (!it->allDay && pos.y() >= bodyTop()) {
            if (pos.y() < r.top() + kEdge)
                *edge = -1;
            else if (pos.y() > r.bottom() - kEdge)
                *edge = 1;
            else
                *edge = 0;
            return &*it;
        }
        if (it->allDay && pos.y() < bodyTop()) {
            *edge = 0;
            return &*it;
        }
    }
    return nullptr;
}

CalendarHit DayPane::hitTest(const QPoint &pos) const
{
    CalendarHit hit;
    if (!rect().contains(pos) || m_days.isEmpty())
        return hit;
    const int day = dayAt(pos.x());
    if (pos.y() >= bodyTop() && pos.x() < m_timeWidth) {
        hit.area = HitTimeScale;
        hit.time = atMinute(m_days.first(), minuteAt(pos.y()) / scale() * scale());
        return hit;
    }
    if (day < 0)
        return hit;
    const QDateTime dayStart(m_days.at(day), QTime(0, 0));
    if (pos.y() < m_headerHeight) {
        hit.area = HitDayHeader;
        hit.time = dayStart;
        return hit;
    }
    int edge = 0;
    const Box *box = boxAt(pos, &edge);
    if (pos.y() < bodyTop()) {
        hit.area = box ? HitEvent : HitAllDayBand;
        hit.event = box ? box->event : CalendarEventPtr();
        hit.time = dayStart;
        hit.allDay = true;
        return hit;
    }
    hit.time = atMinute(m_days.at(day), minuteAt(pos.y()) / scale() * scale());
    if (box) {
        hit.event = box->event;
        hit.area = edge < 0 ? HitEventResizeBegin : edge > 0 ? HitEventResizeEnd : HitEvent;
        return hit;
    }
    hit.area = HitDayCell;
    return hit;
}

// ------------------------------------------------------------------ mouse

void DayPane::selectCells(const QDateTime &from, const QDateTime &to)
{
    CalendarSelection s;
    s.begin = std::min(from, to);
    s.end = std::max(from, to).addSecs(60 * scale());
    m_view->selectFromPane(s, {});
}

void DayPane::selectDays(int from, int to)
{
    CalendarSelection s;
    s.begin = QDateTime(m_days.at(std::min(from, to)), QTime(0, 0));
    s.end = QDateTime(m_days.at(std::max(from, to)).addDays(1), QTime(0, 0));
    s.allDay = true;
    m_view->selectFromPane(s, {});
}

void DayPane::selectEventAt(const CalendarHit &hit, bool add)
{
    QList<CalendarEventPtr> events;
    if (add) {
        events = m_view->selectedEvents();
        if (events.contains(hit.event)) {
            events.removeAll(hit.event);
            m_view->selectFromPane(m_view->selection(), events);
            return;
        }
    }
    events.append(hit.event);
    CalendarSelection s;
    s.begin = hit.time;
    s.end = hit.allDay ? hit.time.addDays(1) : hit.time.addSecs(60 * scale());
    s.allDay = hit.allDay;
    m_view->selectFromPane(s, events);
}

void DayPane::mousePressEvent(QMouseEvent *event)
{
    m_view->setFocus(Qt::MouseFocusReason);
    const QPoint pos = event->position().toPoint();
    const CalendarHit hit = hitTest(pos);
    m_drag = Drag::None;
    m_dragEvent.clear();
    m_newStart = m_newEnd = QDateTime();
    m_pressPos = pos;

    if (event->button() == Qt::RightButton) {
        if (hit.event) {
            if (!m_view->isEventSelected(hit.event))
                selectEventAt(hit, false);
        } else if (hit.area == HitDayCell) {
            const CalendarSelection sel = m_view->selection();
            if (!(sel.isValid() && !sel.allDay && hit.time >= sel.begin && hit.time < sel.end))
                selectCells(hit.time, hit.time);
        } else if (hit.area == HitAllDayBand) {
            const int day = dayAt(pos.x());
            selectDays(day, day);
        }
        emit rightClicked(pos);
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;

    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    if (hit.event) {
        if (!(m_view->isEventSelected(hit.event) && !ctrl))
            selectEventAt(hit, ctrl);
        m_dragEvent = hit.event;
        m_dragAllDay = hit.allDay;
        m_grabSeconds = hit.allDay ? 0 : hit.event->StartDateTime().secsTo(atMinute(hit.time.date(), minuteAt(pos.y())));
        m_drag = Drag::Pending;
        m_anchorDay = dayAt(pos.x());
        // The kind of drag follows the part of the box pressed.
        m_pendingKind = hit.area == HitEventResizeBegin ? Drag::ResizeBegin
                        : hit.area == HitEventResizeEnd ? Drag::ResizeEnd
                                                        : Drag::Move;
        // Moving with Ctrl held copies the appointment instead.
        m_dragCopy = ctrl && m_pendingKind == Drag::Move;
        return;
    }
    switch (hit.area) {
    case HitDayCell:
        if (shift && m_anchorCell.isValid())
            selectCells(m_anchorCell, hit.time);
        else {
            m_anchorCell = hit.time;
            selectCells(hit.time, hit.time);
        }
        m_drag = Drag::Select;
        break;
    case HitAllDayBand:
    case HitDayHeader: {
        const int day = dayAt(pos.x());
        if (shift && m_anchorDay >= 0 && m_anchorDay < m_days.size())
            selectDays(m_anchorDay, day);
        else {
            m_anchorDay = day;
            selectDays(day, day);
        }
        m_drag = Drag::SelectAllDay;
        break;
    }
    default:
        break;
    }
}

void DayPane::trackDrag(const QPoint &pos)
{
    const CalendarEventPtr e = m_dragEvent;
    const int step = scale();
    int day = dayAt(pos.x());
    if (day < 0)
        day = pos.x() < m_timeWidth ? 0 : static_cast<int>(m_days.size()) - 1;
    const QDate target = m_days.at(day);
    const qint64 duration = e->StartDateTime().secsTo(e->EndDateTime());

    if (m_dragAllDay) {
        // Whole days: the appointment follows the column under the mouse.
        const int from = std::max(0, m_anchorDay);
        const qint64 shift = m_days.at(from).daysTo(target);
        m_newStart = e->StartDateTime().addDays(shift);
        m_newEnd = e->EndDateTime().addDays(shift);
        return;
    }
    const int minute = minuteAt(pos.y());
    switch (m_drag) {
    case Drag::Move: {
        const int grabMinutes = static_cast<int>(m_grabSeconds / 60);
        const int begin = std::clamp(
            static_cast<int>(std::lround(double(minute - grabMinutes) / step)) * step, 0, 24 * 60 - step);
        m_newStart = atMinute(target, begin);
        m_newEnd = m_newStart.addSecs(duration);
        break;
    }
    case Drag::ResizeBegin:
    case Drag::ResizeEnd: {
        // Minutes from the 00:00 of the column under the pointer.
        const QDateTime dayStart(target, QTime(0, 0));
        const int start = static_cast<int>(dayStart.secsTo(e->StartDateTime()) / 60);
        const int end = static_cast<int>(dayStart.secsTo(e->EndDateTime()) / 60);
        const bool begin = m_drag == Drag::ResizeBegin;
        const QDateTime edge = dayStart.addSecs(60 * ResizedEdgeMinute(start, end, begin, minute, step));
        m_newStart = begin ? edge : e->StartDateTime();
        m_newEnd = begin ? e->EndDateTime() : edge;
        break;
    }
    default:
        break;
    }
}

void DayPane::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (!(event->buttons() & Qt::LeftButton)) {
        // Show what a press here would do.
        int edge = 0;
        const Box *box = pos.y() >= bodyTop() ? boxAt(pos, &edge) : nullptr;
        setCursor(box && edge != 0 ? Qt::SizeVerCursor : Qt::ArrowCursor);
        return;
    }
    // Scroll when the mouse is held near the top or the bottom of the body.
    if (m_drag != Drag::None && m_drag != Drag::SelectAllDay && m_drag != Drag::Refused && !m_dragAllDay) {
        if (pos.y() < bodyTop() + 4 && m_scroll > 0)
            setScrollPosition(m_scroll - m_rowHeight);
        else if (pos.y() > height() - 4 && m_scroll < maxScroll())
            setScrollPosition(m_scroll + m_rowHeight);
    }
    switch (m_drag) {
    case Drag::Select: {
        const int day = dayAt(pos.x());
        if (day >= 0 && m_anchorCell.isValid())
            selectCells(m_anchorCell, atMinute(m_days.at(day), minuteAt(pos.y()) / scale() * scale()));
        break;
    }
    case Drag::SelectAllDay: {
        const int day = dayAt(pos.x());
        if (day >= 0 && m_anchorDay >= 0)
            selectDays(m_anchorDay, day);
        break;
    }
    case Drag::Pending: {
        if ((pos - m_pressPos).manhattanLength() < QApplication::startDragDistance())
            break;
        const int operation = m_pendingKind == Drag::ResizeBegin ? OpResizeBegin
                              : m_pendingKind == Drag::ResizeEnd ? OpResizeEnd
                              : m_dragCopy                       ? OpDragCopy
                                                                 : OpDragMove;
        if (m_view->isOperationRefused(operation, {m_dragEvent})) {
            m_drag = Drag::Refused;
            break;
        }
        m_drag = m_dragAllDay ? Drag::Move : m_pendingKind;
        trackDrag(pos);
        update();
        break;
    }
    case Drag::Move:
    case Drag::ResizeBegin:
    case Drag::ResizeEnd:
        trackDrag(pos);
        update();
        break;
    default:
        break;
    }
}

void DayPane::mouseReleaseEvent(QMouseEvent *event)
{
    const Drag drag = m_drag;
    m_drag = Drag::None;
    if (event->button() != Qt::LeftButton)
        return;
    if (drag == Drag::Move || drag == Drag::ResizeBegin || drag == Drag::ResizeEnd) {
        trackDrag(event->position().toPoint());
        const CalendarEventPtr e = m_dragEvent;
        const QDateTime start = m_newStart;
        const QDateTime end = m_newEnd;
        m_dragEvent.clear();
        m_newStart = m_newEnd = QDateTime();
        if (e && start.isValid() && end.isValid() && m_dragCopy) {
            m_view->addCopyOfEvent(e, start, end);
        } else if (e && start.isValid() && end.isValid() && (start != e->StartDateTime() || end != e->EndDateTime())) {
            e->setStartDateTime(start);
            e->setEndDateTime(end);
            m_view->commitChangedEvent(e);
        }
        update();
        return;
    }
    m_dragEvent.clear();
    m_newStart = m_newEnd = QDateTime();
}

void DayPane::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // The receiver may open a modal editor: no drag survives it.
    m_drag = Drag::None;
    m_dragEvent.clear();
    emit doubleClicked(event->position().toPoint());
}

void DayPane::wheelEvent(QWheelEvent *event)
{
    if (!m_verticalScrolling) {
        event->ignore();
        return;
    }
    const int steps = event->angleDelta().y() / 120;
    if (steps != 0)
        setScrollPosition(m_scroll - steps * 3 * m_rowHeight);
    event->accept();
}

// ------------------------------------------------------- in-place editing

bool DayPane::editSubject(const CalendarEventPtr &event)
{
    if (!event)
        return false;
    finishSubjectEdit(false);
    if (!inBand(event))
        ensureVisible(event->StartDateTime());
    QRect r = eventRect(event);
    if (r.isEmpty())
        return false;
    if (!m_subjectEditor) {
        m_subjectEditor = new QLineEdit(this);
        m_subjectEditor->setObjectName(QStringLiteral("subjectEditor"));
        m_subjectEditor->installEventFilter(this);
        connect(m_subjectEditor, &QLineEdit::returnPressed, this, [this] { finishSubjectEdit(true); });
    }
    m_editedEvent = event;
    // Over the top of the box, as high as a line of text needs.
    r.setHeight(m_subjectEditor->sizeHint().height());
    if (!inBand(event))
        r.moveTop(std::clamp(r.top(), bodyTop(), std::max(bodyTop(), height() - r.height())));
    m_subjectEditor->setGeometry(r.adjusted(kLeftBar, 0, 0, 0));
    m_subjectEditor->setText(event->Subject());
    m_subjectEditor->selectAll();
    m_subjectEditor->show();
    m_subjectEditor->setFocus(Qt::OtherFocusReason);
    return true;
}

QLineEdit *DayPane::subjectEditor() const
{
    return m_subjectEditor && m_subjectEditor->isVisible() ? m_subjectEditor : nullptr;
}

void DayPane::finishSubjectEdit(bool save)
{
    if (!m_subjectEditor || !m_editedEvent || m_finishingEdit)
        return;
    m_finishingEdit = true;
    const CalendarEventPtr event = m_editedEvent;
    const QString text = m_subjectEditor->text();
    if (save && text != event->Subject()) {
        const QString before = event->Subject();
        event->setSubject(text);
        if (!m_view->commitChangedEvent(event)) {
            // The text stays in the editor for another try.
            event->setSubject(before);
            Prompt::informer(QStringLiteral("Tavonel"),
                             QStringLiteral("Le sujet du rendez-vous n'a pas pu être enregistré. Le texte saisi reste "
                                            "affiché : validez à nouveau ou appuyez sur Echap pour abandonner."),
                             Prompt::Icone::Exclamation);
            m_subjectEditor->setFocus(Qt::OtherFocusReason);
            m_finishingEdit = false;
            return;
        }
    }
    m_editedEvent.clear();
    const bool hadFocus = m_subjectEditor->hasFocus();
    m_subjectEditor->hide();
    if (hadFocus)
        m_view->setFocus(Qt::OtherFocusReason);
    m_finishingEdit = false;
    update();
}

bool DayPane::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_subjectEditor) {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent *>(event)->key();
            if (key == Qt::Key_Escape)
                finishSubjectEdit(false);
            // F2 again would reach the view and open the editor afresh over
            // what was typed.
            if (key == Qt::Key_Escape || key == Qt::Key_F2)
                return true;
        }
        if (event->type() == QEvent::FocusOut) {
            // Another place of the window takes the focus: the text is kept.
            // A window or a menu coming over it leaves the editor open.
            const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
                finishSubjectEdit(true);
        }
    }
    return CalendarPane::eventFilter(watched, event);
}
