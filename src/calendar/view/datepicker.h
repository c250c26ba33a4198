#pragma once

#include "calendar/calendarstore.h"

#include <QCalendarWidget>
#include <QColor>
#include <QWidget>
#include <QDate>
#include <QList>
#include <QPointer>
#include <QSet>

#include <optional>

class CalendarDataProvider;
class CalendarView;

// The month calendar beside the book (wndDatePicker): it follows the days the
// view shows, a click brings the clicked day on show in the view, and days
// that hold an appointment are drawn in bold. Weeks start on Monday and carry
// their ISO number; names are French whatever the machine's language.
class DatePicker final : public QCalendarWidget
{
    Q_OBJECT

public:
    explicit DatePicker(QWidget *parent = nullptr);

    // Follows and drives this view from now on (nullptr detaches).
    void AttachToCalendar(CalendarView *view);
    // Reads again which days of the shown month hold appointments, when it
    // is another month or the store may have changed since the last read;
    // redraws the marks that changed.
    void RedrawControl();

    // Days of the shown month found holding an appointment at the last read.
    [[nodiscard]] const QSet<QDate> &busyDays() const { return m_busy; }

    // The months after this one, shown below it: each follows this picker's
    // page at its distance, and moving any of them moves them all.
    void setFollowerCount(int count);
    [[nodiscard]] const QList<DatePicker *> &followers() const { return m_followers; }

private:
    void followView();
    void dayChosen(const QDate &day);
    void watchProvider();
    void applyFormats();

    QPointer<CalendarView> m_view;
    QPointer<CalendarDataProvider> m_provider;
    QList<QMetaObject::Connection> m_viewLinks;
    QList<QMetaObject::Connection> m_providerLinks;
    QList<QDate> m_shown;   // the days the view shows
    QSet<QDate> m_busy;
    // The month of the last read that succeeded and the store's mark taken
    // just before it.
    QDate m_monthRead;
    StoreMark m_markRead;
    // What the formats were last drawn from.
    struct Marques
    {
        QList<QDate> shown;
        QSet<QDate> busy;
        QRgb base = 0;
        QRgb mark = 0;
        bool operator==(const Marques &) const = default;
    };
    std::optional<Marques> m_drawn;
    // Set while the picker moves itself to follow the view, so that its own
    // selection signals are not sent back to the view.
    bool m_following = false;
    QList<DatePicker *> m_followers;
    QPointer<DatePicker> m_leader;
    int m_offset = 0;   // months after the leader's page
};

// The column at the right of the book: the picker and, below it, as many
// following months as the height holds, so that no space is left empty.
class DatePickerColumn final : public QWidget
{
    Q_OBJECT

public:
    explicit DatePickerColumn(QWidget *parent = nullptr);
    [[nodiscard]] DatePicker *picker() const { return m_picker; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    DatePicker *m_picker = nullptr;
};
