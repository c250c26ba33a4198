#include "calendar/reminderengine.h"

#include "calendar/calendardataprovider.h"
#include "calendar/recurrenceexpander.h"
#include "shell/base/horloge.h"

#include <QCoreApplication>
#include <QSysInfo>

#include <algorithm>

namespace {

QDateTime finDeRepos(const CalendarEvent &e)
{
    const QVariant v = e.CustomProperties().GetProperty(ReminderEngine::SnoozeProperty);
    if (!v.isValid())
        return {};
    return QDateTime::fromString(v.toString(), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// The reminder of one appointment, when it is under reminder.
std::optional<Reminder> rappelDe(const CalendarEventPtr &e, int cle, const QDateTime &occurrence)
{
    if (!e->IsReminder() || e->RExceptionDeleted() || !e->StartDateTime().isValid())
        return std::nullopt;
    Reminder r;
    r.Event = e;
    r.MinutesBeforeStart = e->ReminderMinutesBeforeStart();
    r.StartTime = e->StartDateTime();
    const QDateTime repos = finDeRepos(*e);
    r.NextReminderTime = repos.isValid() ? repos : r.StartTime.addSecs(-qint64(r.MinutesBeforeStart) * 60);
    r.KeyEventID = cle;
    r.KeyOccurrence = occurrence;
    return r;
}

bool avant(const Reminder &a, const Reminder &b)
{
    if (a.NextReminderTime != b.NextReminderTime)
        return a.NextReminderTime < b.NextReminderTime;
    if (a.StartTime != b.StartTime)
        return a.StartTime < b.StartTime;
    return a.KeyEventID < b.KeyEventID;
}

} // namespace

ReminderEngine::ReminderEngine(CalendarDataProvider *provider, QObject *parent)
    : QObject(parent)
    , m_provider(provider)
    , m_sender(QSysInfo::machineHostName() + u':' + QString::number(QCoreApplication::applicationPid()))
{
    m_timer.setInterval(30000);
    connect(&m_timer, &QTimer::timeout, this, &ReminderEngine::Poll);
}

void ReminderEngine::setInterval(int milliseconds)
{
    m_timer.setInterval(milliseconds);
}

void ReminderEngine::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    if (enabled) {
        m_timer.start();
        // The window that listens is connected by the time the loop runs.
        QMetaObject::invokeMethod(this, &ReminderEngine::Poll, Qt::QueuedConnection);
    } else {
        m_timer.stop();
        m_active.clear();
        emit reminderAction(WatchStopped, Reminder{});
    }
}

std::optional<QList<Reminder>> ReminderEngine::dueReminders(const QDateTime &now)
{
    QList<Reminder> dus;
    if (!m_provider || !m_provider->IsOpen())
        return std::nullopt;
    const QDateTime depuis = now.addDays(-m_lookBackDays);
    auto retenir = [&](const std::optional<Reminder> &r) {
        if (r && r->NextReminderTime <= now && r->StartTime.addSecs(-qint64(r->MinutesBeforeStart) * 60) >= depuis)
            dus.append(*r);
    };
    bool lu = false;
    // A poll never holds the window for a store held by another
    // workstation: an unread poll is simply run again at the next tick.
    m_provider->setReadWait(500);
    const QList<CalendarEventPtr> lignes = m_provider->GetUpcomingEvents(now, 0, depuis, &lu);
    m_provider->setReadWait(-1);
    if (!lu)
        return std::nullopt;
    // What another sender is sending is not due here.
    const QHash<QString, QString> claims =
        m_provider->store()->DoReadReminderClaims(now.addSecs(-qint64(ClaimLifetimeMinutes) * 60));
    auto retenirLibre = [&](const std::optional<Reminder> &r) {
        if (r) {
            const auto c = claims.constFind(r->key());
            if (c != claims.cend() && *c != m_sender)
                return;
        }
        retenir(r);
    };
    for (const CalendarEventPtr &e : lignes) {
        if (e->RecurrenceState() == CalendarEvent::NotRecurring) {
            retenirLibre(rappelDe(e, e->EventID(), {}));
            continue;
        }
        const CalendarRecurrencePatternPtr pattern = e->RecurrencePattern();
        if (e->RecurrenceState() != CalendarEvent::Master || !pattern)
            continue;
        // Occurrences that began since the look-back and whose reminder can
        // be due by now.
        int avance = e->ReminderMinutesBeforeStart();
        for (const CalendarEventPtr &x : pattern->Exceptions())
            avance = std::max(avance, x->ReminderMinutesBeforeStart());
        const QDate dernier = now.addSecs(qint64(std::max(avance, 0)) * 60).date();
        for (const QDateTime &debut : OccurrenceStarts(pattern, depuis.date(), dernier)) {
            if (pattern->FindException(debut))
                continue;
            const QDateTime fin = debut.addSecs(qint64(pattern->DurationMinutes()) * 60);
            retenirLibre(rappelDe(CalendarEvent::CreateOccurrence(e, debut, fin), e->EventID(), debut));
        }
        for (const CalendarEventPtr &x : pattern->Exceptions())
            retenirLibre(rappelDe(x, e->EventID(), x->RExceptionStartTimeOrig()));
    }
    return dus;
}

bool ReminderEngine::Poll()
{
    if (!m_enabled)
        return false;
    // A store that could not be asked (held too long by another
    // workstation) leaves the list as it is until the next poll.
    const std::optional<QList<Reminder>> lus = dueReminders(Horloge::maintenant());
    if (!lus)
        return false;
    const QList<Reminder> &dus = *lus;

    QList<Reminder> partis;
    for (const Reminder &r : std::as_const(m_active)) {
        if (std::none_of(dus.begin(), dus.end(), [&](const Reminder &d) { return d.sameAs(r); }))
            partis.append(r);
    }
    QList<Reminder> nouveaux;
    QList<Reminder> actifs;
    for (const Reminder &d : dus) {
        if (std::none_of(m_active.begin(), m_active.end(), [&](const Reminder &r) { return r.sameAs(d); }))
            nouveaux.append(d);
        actifs.append(d);
    }
    std::stable_sort(actifs.begin(), actifs.end(), avant);
    std::stable_sort(nouveaux.begin(), nouveaux.end(), avant);
    m_active = actifs;

    // Dismissed or removed meanwhile (another workstation, the editor).
    for (const Reminder &r : std::as_const(partis))
        emit reminderAction(Dismissed, r);
    for (const Reminder &r : std::as_const(nouveaux)) {
        // A listener may have dismissed it in answer to an earlier one.
        if (std::any_of(m_active.begin(), m_active.end(), [&](const Reminder &a) { return a.sameAs(r); }))
            emit reminderAction(Fire, r);
    }
    return true;
}

std::optional<Reminder> ReminderEngine::reread(const Reminder &r)
{
    const CalendarEventPtr e = m_provider->GetEvent(r.KeyEventID);
    if (!e)
        return std::nullopt;
    if (!r.KeyOccurrence.isValid())
        return e->RecurrenceState() == CalendarEvent::NotRecurring ? rappelDe(e, e->EventID(), {}) : std::nullopt;
    const CalendarRecurrencePatternPtr pattern = e->RecurrencePattern();
    if (e->RecurrenceState() != CalendarEvent::Master || !pattern)
        return std::nullopt;
    if (const CalendarEventPtr x = pattern->FindException(r.KeyOccurrence))
        return rappelDe(x, e->EventID(), r.KeyOccurrence);
    // The series may have been changed meanwhile: the occurrence must still
    // be one of it.
    const QDate jour = r.KeyOccurrence.date();
    if (!OccurrenceStarts(pattern, jour, jour).contains(r.KeyOccurrence))
        return std::nullopt;
    const QDateTime fin = r.KeyOccurrence.addSecs(qint64(pattern->DurationMinutes()) * 60);
    return rappelDe(CalendarEvent::CreateOccurrence(e, r.KeyOccurrence, fin), e->EventID(), r.KeyOccurrence);
}

bool ReminderEngine::Claim(Reminder &r)
{
    CalendarStore *store = m_provider ? m_provider->store() : nullptr;
    if (!store || !m_provider->IsOpen() || !store->BeginChange())
        return false;
    const QDateTime now = Horloge::maintenant();
    const std::optional<Reminder> frais = reread(r);
    if (!frais || frais->NextReminderTime > now
        || !store->DoClaimReminder(r.key(), m_sender, now, now.addSecs(-qint64(ClaimLifetimeMinutes) * 60))) {
        store->RollbackChange();
        return false;
    }
    if (!store->CommitChange())
        return false;
    r.Event = frais->Event;
    for (Reminder &a : m_active) {
        if (a.sameAs(r))
            a.Event = r.Event;
    }
    return true;
}

void ReminderEngine::Release(const Reminder &r)
{
    if (m_provider && m_provider->IsOpen() && m_provider->store())
        m_provider->store()->DoReleaseReminder(r.key());
}

bool ReminderEngine::Snooze(int position, int minutes)
{
    if (position < 0 || position >= m_active.size() || !m_provider)
        return false;
    const Reminder r = m_active.takeAt(position);
    const QDateTime fin = Horloge::maintenant().addSecs(qint64(minutes) * 60);
    r.Event->CustomProperties().SetProperty(SnoozeProperty, fin.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    const bool ok = m_provider->ChangeEvent(r.Event);
    emit reminderAction(Snoozed, r);
    return ok;
}

bool ReminderEngine::writeDismissal(const Reminder &r)
{
    r.Event->setIsReminder(false);
    r.Event->CustomProperties().RemoveProperty(SnoozeProperty);
    return m_provider && m_provider->ChangeEvent(r.Event);
}

bool ReminderEngine::Dismiss(int position)
{
    if (position < 0 || position >= m_active.size())
        return false;
    const Reminder r = m_active.takeAt(position);
    const bool ok = writeDismissal(r);
    emit reminderAction(Dismissed, r);
    return ok;
}

void ReminderEngine::DismissAll()
{
    const QList<Reminder> tous = m_active;
    m_active.clear();
    for (const Reminder &r : tous)
        writeDismissal(r);
    emit reminderAction(AllDismissed, Reminder{});
}
