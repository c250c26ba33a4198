#include "calendar/view/datepicker.h"

#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/monthlayout.h"
#include "shell/base/joursferies.h"

#include <QTextCharFormat>

DatePicker::DatePicker(QWidget *parent) : QCalendarWidget(parent)
{
    setObjectName(QStringLiteral("wndDatePicker"));
    setLocale(calendarLocale());
    setFirstDayOfWeek(Qt::Monday);
    setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
    setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
    setGridVisible(false);

    connect(this, &QCalendarWidget::clicked, this, &DatePicker::dayChosen);
    connect(this, &QCalendarWidget::activated, this, &DatePicker::dayChosen);
    connect(this, &QCalendarWidget::selectionChanged, this, [this] { dayChosen(selectedDate()); });
    connect(this, &QCalendarWidget::currentPageChanged, this, [this] { RedrawControl(); });
}

void DatePicker::AttachToCalendar(CalendarView *view)
{
    for (const QMetaObject::Connection &c : std::as_const(m_viewLinks))
        disconnect(c);
    m_viewLinks.clear();
    m_view = view;
    for (DatePicker *f : std::as_const(m_followers))
        f->m_view = view;
    if (view) {
        m_viewLinks.append(connect(view, &CalendarView::viewChanged, this, &DatePicker::followView));
        m_viewLinks.append(connect(view, &CalendarView::eventsEdited, this, &DatePicker::RedrawControl));
    }
    followView();
}

void DatePicker::setFollowerCount(int count)
{
    while (m_followers.size() > count)
        delete m_followers.takeLast();
    while (m_followers.size() < count) {
        auto *f = new DatePicker(parentWidget());
        f->setObjectName(QStringLiteral("wndDatePicker(%1)").arg(m_followers.size() + 1));
        f->m_leader = this;
        f->m_offset = static_cast<int>(m_followers.size()) + 1;
        f->m_view = m_view;
        // The chosen day is the leader's to show: the followers draw their
        // own selection as any other day (a click still chooses it).
        QPalette sansSelection = f->palette();
        sansSelection.setColor(QPalette::Highlight, sansSelection.color(QPalette::Base));
        sansSelection.setColor(QPalette::HighlightedText, sansSelection.color(QPalette::Text));
        f->setPalette(sansSelection);
        const QDate page = QDate(yearShown(), monthShown(), 1).addMonths(f->m_offset);
        f->setCurrentPage(page.year(), page.month());
        // The pages move together, whichever picker was moved.
        connect(this, &QCalendarWidget::currentPageChanged, f, [f](int year, int month) {
            const QDate d = QDate(year, month, 1).addMonths(f->m_offset);
            f->setCurrentPage(d.year(), d.month());
        });
        connect(f, &QCalendarWidget::currentPageChanged, this, [this, f](int year, int month) {
            const QDate d = QDate(year, month, 1).addMonths(-f->m_offset);
            setCurrentPage(d.year(), d.month());
        });
        m_followers.append(f);
        f->m_shown = m_shown;
        f->RedrawControl();
        f->show();
    }
}

void DatePicker::followView()
{
    m_shown.clear();
    if (m_view) {
        for (int i = 0; i < m_view->shownDaysCount(); ++i)
            m_shown.append(m_view->shownDay(i));
    }
    if (!m_shown.isEmpty()) {
        // The day the view was brought to when it is on show (a month view
        // starts in the month before), otherwise the first day shown.
        const QDate chosen = m_view->selection().begin.date();
        const QDate day = chosen.isValid() && m_shown.contains(chosen) ? chosen : m_shown.first();
        const int page = yearShown() * 12 + monthShown();
        for (DatePicker *f : std::as_const(m_followers))
            f->m_shown = m_shown;
        // A day chosen in a following month leaves the pages where they are.
        const int dayPage = day.year() * 12 + day.month();
        if (dayPage > page && dayPage <= page + m_followers.size()) {
            RedrawControl();
            return;
        }
        m_following = true;
        setSelectedDate(day);
        m_following = false;
        if (yearShown() * 12 + monthShown() != page)
            return; // the page change has read the month already
    }
    RedrawControl();
}

void DatePicker::dayChosen(const QDate &day)
{
    if (m_following || !m_view || !day.isValid())
        return;
    if (m_shown.contains(day) && m_view->selection().begin.date() == day)
        return;
    m_view->ShowDay(day);
}

void DatePicker::watchProvider()
{
    CalendarDataProvider *provider = m_view ? m_view->dataProvider() : nullptr;
    if (provider == m_provider)
        return;
    for (const QMetaObject::Connection &c : std::as_const(m_providerLinks))
        disconnect(c);
    m_providerLinks.clear();
    m_provider = provider;
    if (provider) {
        m_providerLinks.append(connect(provider, &CalendarDataProvider::eventAdded, this, &DatePicker::RedrawControl));
        m_providerLinks.append(connect(provider, &CalendarDataProvider::eventChanged, this, &DatePicker::RedrawControl));
        m_providerLinks.append(connect(provider, &CalendarDataProvider::eventDeleted, this, &DatePicker::RedrawControl));
    }
}

void DatePicker::RedrawControl()
{
    watchProvider();
    const QDate first(yearShown(), monthShown(), 1);
    const QDate last = first.addMonths(1).addDays(-1);
    const bool open = m_provider && m_provider->IsOpen();
    const StoreMark mark = open ? m_provider->DataMark() : StoreMark{};
    // The same month of the same data is not read again.
    if (!open || first != m_monthRead || !mark.sameAs(m_markRead)) {
        m_busy.clear();
        m_monthRead = QDate();
        m_markRead = {};
        if (open) {
            for (const CalendarEventPtr &e : m_provider->RetrieveEvents(first, last)) {
                if (!e)
                    continue;
                // Every day the appointment covers, as the month view counts them.
                const MonthLayoutItem span{0, e->StartDateTime(), e->EndDateTime(), e->IsAllDayEvent()};
                const QDate from = MonthLayoutFirstDay(span);
                const QDate to = MonthLayoutLastDay(span);
                for (QDate d = std::max(from, first); d <= std::min(to, last); d = d.addDays(1))
                    m_busy.insert(d);
            }
            if (!m_provider->LastReadFailed()) {
                m_monthRead = first;
                m_markRead = mark;
            }
        }
    }
    applyFormats();
    for (DatePicker *f : std::as_const(m_followers))
        f->RedrawControl();
}

DatePickerColumn::DatePickerColumn(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("colonnePicker"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_picker = new DatePicker(this);
    setFixedWidth(m_picker->sizeHint().width());
}

void DatePickerColumn::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int h = m_picker->sizeHint().height();
    m_picker->setGeometry(0, 0, width(), h);
    // Whole months only; the height left over is shared between them.
    const int count = std::max(1, height() / h);
    m_picker->setFollowerCount(count - 1);
    const int each = height() / count;
    m_picker->setGeometry(0, 0, width(), each);
    for (int i = 0; i < m_picker->followers().size(); ++i)
        m_picker->followers().at(i)->setGeometry(0, (i + 1) * each, width(), each);
}

void DatePicker::applyFormats()
{
    // Followers have no highlight colour of their own (see setFollowerCount).
    const QPalette &couleurs = m_leader ? m_leader->palette() : palette();
    const QColor base = couleurs.color(QPalette::Base);
    const QColor mark = couleurs.color(QPalette::Highlight);
    // Drawn again only when something they show has changed.
    Marques marques{m_shown, m_busy, base.rgba(), mark.rgba()};
    if (m_drawn == marques)
        return;
    m_drawn = std::move(marques);
    // Clears every format set before, then marks the shown range and the
    // days with appointments.
    setDateTextFormat(QDate(), QTextCharFormat());
    const QColor range = QColor::fromRgbF(base.redF() * 0.8 + mark.redF() * 0.2, base.greenF() * 0.8 + mark.greenF() * 0.2,
                                          base.blueF() * 0.8 + mark.blueF() * 0.2);
    for (const QDate &d : std::as_const(m_shown)) {
        QTextCharFormat f = dateTextFormat(d);
        f.setBackground(range);
        setDateTextFormat(d, f);
    }
    for (const QDate &d : std::as_const(m_busy)) {
        QTextCharFormat f = dateTextFormat(d);
        f.setFontWeight(QFont::Bold);
        setDateTextFormat(d, f);
    }
    // Public holidays in the red of the weekend, around the year shown (the
    // following months may cross into the next one).
    for (int annee = yearShown() - 1; annee <= yearShown() + 1; ++annee) {
        for (const JourFerie &j : JoursFeries(annee, FeriesAlsaceMoselle())) {
            QTextCharFormat f = dateTextFormat(j.date);
            f.setForeground(QColor(200, 30, 30));
            setDateTextFormat(j.date, f);
        }
    }
}
