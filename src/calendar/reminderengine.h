#pragma once

#include "calendar/calendarevent.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QTimer>

#include <optional>

class CalendarDataProvider;

// One due reminder: the appointment (for a series, the occurrence or its
// exception) and when it fires.
struct Reminder
{
    CalendarEventPtr Event;
    int MinutesBeforeStart = 0;
    // Start of the appointment, and the moment the reminder is due (its
    // start less the minutes, or the end of a snooze).
    QDateTime StartTime;
    QDateTime NextReminderTime;
    // What tells two reminders apart across polls: the row of the
    // appointment (the master for a series) and the occurrence's own start.
    int KeyEventID = 0;
    QDateTime KeyOccurrence;

    [[nodiscard]] bool isNull() const { return !Event; }
    // The same as text, for claims and lists of what was done: the row's
    // key, and for an occurrence of a series the series' key with the
    // occurrence's start, so that one occurrence never stands for another.
    [[nodiscard]] QString key() const
    {
        if (KeyOccurrence.isValid())
            return QString::number(KeyEventID) + u'@' + KeyOccurrence.toString(Qt::ISODate);
        return QString::number(KeyEventID);
    }
    [[nodiscard]] bool sameAs(const Reminder &other) const
    {
        return KeyEventID == other.KeyEventID && KeyOccurrence == other.KeyOccurrence;
    }
};
Q_DECLARE_METATYPE(Reminder)

// The reminder watch. It polls the store for appointments under reminder
// whose moment has come, keeps the active reminders ordered by that moment,
// and reports with reminderAction: 2 the watch stopped, 3 a reminder fires,
// 4 one was snoozed, 5 one was dismissed, 6 all were dismissed.
//
// Snooze and dismissal are written on the appointment through ChangeEvent,
// so they hold across a restart and on every workstation: a dismissed
// appointment loses its reminder flag, a snoozed one keeps the end of the
// snooze in its property bag. For a series this is done on the occurrence,
// which the data provider keeps as an exception of its own. A reminder that
// fell due while the program was closed fires at the next start, unless it
// fell due more than lookBackDays ago.
//
// A sender claims a reminder in the store before it sends it (Claim), and
// gives the claim up once the reminder is dismissed or has failed (Release).
// While another sender holds the claim, the reminder is not due here: no
// list shows it and no batch sends it a second time.
class ReminderEngine final : public QObject
{
    Q_OBJECT

public:
    enum Action { WatchStopped = 2, Fire = 3, Snoozed = 4, Dismissed = 5, AllDismissed = 6 };

    // Name of the bag entry that holds the end of a snooze.
    static inline const QString SnoozeProperty = QStringLiteral("RappelRepousseJusqua");

    explicit ReminderEngine(CalendarDataProvider *provider, QObject *parent = nullptr);

    // On: the first poll runs from the event loop, then one every interval.
    // Off: the active list is emptied and action 2 reported.
    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const { return m_enabled; }
    void setInterval(int milliseconds);
    [[nodiscard]] int interval() const { return m_timer.interval(); }
    void setLookBackDays(int days) { m_lookBackDays = days; }
    [[nodiscard]] int lookBackDays() const { return m_lookBackDays; }

    // Asks the store now (the timer calls it). False when the store could not
    // be read; the list is then left as it was.
    bool Poll();

    [[nodiscard]] const QList<Reminder> &ActiveReminders() const { return m_active; }
    [[nodiscard]] int Count() const { return int(m_active.size()); }

    // Operations on the reminder at a position of the active list.
    bool Snooze(int position, int minutes);
    bool Dismiss(int position);
    void DismissAll();

    // Who sends, in the claims: the machine and the process, unless set.
    [[nodiscard]] const QString &Sender() const { return m_sender; }
    void setSender(const QString &sender) { m_sender = sender; }
    // Claims a reminder for this sender, in one write transaction: the
    // appointment is read again there, and the claim is taken only when it
    // is still under reminder, still due, and not claimed by another sender.
    // On success r (and its entry in the active list) holds the record as
    // read now.
    bool Claim(Reminder &r);
    void Release(const Reminder &r);
    // A claim older than this was left by a sender that stopped midway.
    static constexpr int ClaimLifetimeMinutes = 30;

signals:
    void reminderAction(int action, const Reminder &reminder);

private:
    // Nothing when the store could not be asked.
    [[nodiscard]] std::optional<QList<Reminder>> dueReminders(const QDateTime &now);
    bool writeDismissal(const Reminder &r);
    // The reminder as the store holds it now, if it is still under reminder.
    [[nodiscard]] std::optional<Reminder> reread(const Reminder &r);

    CalendarDataProvider *m_provider;
    QTimer m_timer;
    bool m_enabled = false;
    int m_lookBackDays = 7;
    QList<Reminder> m_active;
    QString m_sender;
};
