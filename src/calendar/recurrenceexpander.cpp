#include "calendar/recurrenceexpander.h"

#include <libical/ical.h>

#include <QHash>
#include <QSharedPointer>
#include <QStringList>

#include <algorithm>
#include <atomic>
#include <memory>

// Written against libical 3: its iterator takes the rule by value; later
// versions take a pointer. This file is the only place that calls it.
static_assert(ICAL_MAJOR_VERSION == 3, "the recurrence iterator wrapper is written for libical 3");

namespace {

// Upper bound of the steps of one iterator, far beyond any real series (a
// daily series over five centuries); guards against a rule that never ends.
constexpr int pasMaximum = 200000;

QString joursDuMasque(int masque)
{
    static const char *const codes[7] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    QStringList jours;
    for (int i = 0; i < 7; ++i) {
        if (masque & (1 << i))
            jours.append(QLatin1String(codes[i]));
    }
    return jours.join(u',');
}

int bitDuJour(QDate jour)
{
    return 1 << (jour.dayOfWeek() % 7); // Qt: Monday 1 .. Sunday 7; mask: Sunday 1
}

int intervalle(int n)
{
    return std::clamp(n, 1, 32767);
}

// Position within the month: 1st..4th, "dernier" (5 and beyond) is the last.
int position(int quel)
{
    if (quel >= CalendarRecurrenceOptions::LastWhichDay)
        return -1;
    return std::max(quel, 1);
}

int masqueOuTous(int masque)
{
    masque &= CalendarRecurrenceOptions::AllDays;
    return masque == 0 ? int(CalendarRecurrenceOptions::AllDays) : masque;
}

// Day D of the month, clamped to the month's last day when the month is
// shorter: among 28..D the last one that exists.
QString jourDuMois(int jour)
{
    jour = std::clamp(jour, 1, 31);
    if (jour <= 28)
        return QStringLiteral("BYMONTHDAY=%1").arg(jour);
    QStringList jours;
    for (int j = 28; j <= jour; ++j)
        jours.append(QString::number(j));
    return QStringLiteral("BYMONTHDAY=%1;BYSETPOS=-1").arg(jours.join(u','));
}

int moisValide(int mois)
{
    return std::clamp(mois, 1, 12);
}

QString regle(const CalendarRecurrencePattern &p)
{
    const CalendarRecurrenceOptions &o = p.Options();
    switch (o.RecurrenceType()) {
    case CalendarRecurrenceOptions::Daily:
        if (o.EveryWeekDay())
            return QStringLiteral("FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR");
        return QStringLiteral("FREQ=DAILY;INTERVAL=%1").arg(intervalle(o.IntervalDays()));
    case CalendarRecurrenceOptions::Weekly: {
        int masque = o.DayOfWeekMask() & CalendarRecurrenceOptions::AllDays;
        if (masque == 0 && p.StartDate().isValid())
            masque = bitDuJour(p.StartDate());
        return QStringLiteral("FREQ=WEEKLY;INTERVAL=%1;WKST=MO;BYDAY=%2")
            .arg(intervalle(o.IntervalWeeks()))
            .arg(joursDuMasque(masque));
    }
    case CalendarRecurrenceOptions::Monthly:
        return QStringLiteral("FREQ=MONTHLY;INTERVAL=%1;%2")
            .arg(intervalle(o.IntervalMonths()))
            .arg(jourDuMois(o.DayOfMonth()));
    case CalendarRecurrenceOptions::MonthNth:
        return QStringLiteral("FREQ=MONTHLY;INTERVAL=%1;BYDAY=%2;BYSETPOS=%3")
            .arg(intervalle(o.IntervalMonthsNth()))
            .arg(joursDuMasque(masqueOuTous(o.WhichDayMask())))
            .arg(position(o.WhichDay()));
    case CalendarRecurrenceOptions::Yearly: {
        const int mois = moisValide(o.MonthOfYear());
        // The longest this month ever is (February 29): a 31 April is the 30th.
        const int jourMax = QDate(2000, mois, 1).daysInMonth();
        return QStringLiteral("FREQ=YEARLY;BYMONTH=%1;%2")
            .arg(mois)
            .arg(jourDuMois(std::min(o.DayOfMonthYearly(), jourMax)));
    }
    case CalendarRecurrenceOptions::YearNth:
        return QStringLiteral("FREQ=YEARLY;BYMONTH=%1;BYDAY=%2;BYSETPOS=%3")
            .arg(moisValide(o.MonthOfYearNth()))
            .arg(joursDuMasque(masqueOuTous(o.WhichDayMaskYearly())))
            .arg(position(o.WhichDayYearly()));
    default:
        return {};
    }
}

icaltimetype versIcal(QDate jour)
{
    icaltimetype t = icaltime_null_time();
    t.year = jour.year();
    t.month = jour.month();
    t.day = jour.day();
    t.is_date = 0;
    return t;
}

std::atomic<bool> arithmetiqueActive = true;

// The days of the rules that regle() writes, worked out by plain date
// arithmetic: a step costs next to nothing, where libical's iterator goes
// through a full calendar computation for each one (and a week read meets
// dozens of series, walked from their first day when they are counted). They
// give the days libical gives for the same rule text, weeks beginning on
// Monday; a text of any other shape is left to libical.
class RegleSimple final
{
public:
    static std::optional<RegleSimple> depuisTexte(const QString &texte, QDate premier)
    {
        QHash<QString, QString> parties;
        for (const QString &partie : texte.split(u';')) {
            const qsizetype egal = partie.indexOf(u'=');
            if (egal <= 0 || parties.contains(partie.left(egal)))
                return std::nullopt;
            parties.insert(partie.left(egal), partie.mid(egal + 1));
        }
        RegleSimple r;
        r.m_premier = premier;
        r.m_plancher = premier;
        auto nombre = [&](const QString &cle, int defaut, int &valeur) {
            if (!parties.contains(cle)) {
                valeur = defaut;
                return true;
            }
            bool ok = false;
            valeur = parties.take(cle).toInt(&ok);
            return ok;
        };
        auto masque = [&](int &valeur) {
            static const char *const codes[7] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
            valeur = 0;
            for (const QString &jour : parties.take(QStringLiteral("BYDAY")).split(u',')) {
                const auto it = std::find_if(std::begin(codes), std::end(codes), [&](const char *c) { return jour == QLatin1String(c); });
                if (it == std::end(codes))
                    return false;
                valeur |= 1 << (it - std::begin(codes));
            }
            return valeur != 0;
        };
        const QString frequence = parties.take(QStringLiteral("FREQ"));
        if (!nombre(QStringLiteral("INTERVAL"), 1, r.m_intervalle) || r.m_intervalle < 1)
            return std::nullopt;
        if (frequence == QLatin1String("DAILY")) {
            r.m_genre = Genre::Jours;
            if (parties.contains(QStringLiteral("BYDAY"))) {
                // Every weekday: the weeks of one week each.
                if (!masque(r.m_masque) || r.m_intervalle != 1)
                    return std::nullopt;
                r.m_genre = Genre::Semaines;
            }
        } else if (frequence == QLatin1String("WEEKLY")) {
            if (parties.take(QStringLiteral("WKST")) != QLatin1String("MO") || !masque(r.m_masque))
                return std::nullopt;
            r.m_genre = Genre::Semaines;
        } else if (frequence == QLatin1String("MONTHLY") || frequence == QLatin1String("YEARLY")) {
            r.m_genre = Genre::Mois;
            r.m_mois = premier.month();
            if (frequence == QLatin1String("YEARLY")) {
                if (r.m_intervalle != 1 || !nombre(QStringLiteral("BYMONTH"), 0, r.m_mois) || r.m_mois < 1 || r.m_mois > 12)
                    return std::nullopt;
                r.m_intervalle = 12;
            }
            if (!nombre(QStringLiteral("BYSETPOS"), 0, r.m_position) || r.m_position < -1 || r.m_position > 4)
                return std::nullopt;
            if (parties.contains(QStringLiteral("BYMONTHDAY"))) {
                for (const QString &j : parties.take(QStringLiteral("BYMONTHDAY")).split(u',')) {
                    bool ok = false;
                    const int jour = j.toInt(&ok);
                    if (!ok || jour < 1 || jour > 31 || (!r.m_joursDuMois.isEmpty() && jour <= r.m_joursDuMois.last()))
                        return std::nullopt;
                    r.m_joursDuMois.append(jour);
                }
                // One day, or the last existing one of a list.
                if (r.m_position != (r.m_joursDuMois.size() == 1 && r.m_joursDuMois.first() <= 28 ? 0 : -1))
                    return std::nullopt;
            } else if (!masque(r.m_masque) || r.m_position == 0) {
                return std::nullopt;
            }
            // Months counted from the month the series starts in (for a
            // yearly rule, its month of the first day's year).
            r.m_moisCourant = QDate(premier.year(), r.m_mois, 1);
        } else {
            return std::nullopt;
        }
        if (!parties.isEmpty())
            return std::nullopt;
        r.m_lundi = premier.addDays(1 - premier.dayOfWeek());
        r.m_prochain = premier;
        return r;
    }

    void allerA(QDate jour)
    {
        if (jour <= m_premier)
            return;
        switch (m_genre) {
        case Genre::Jours: {
            const qint64 pas = (m_premier.daysTo(jour) + m_intervalle - 1) / m_intervalle;
            m_prochain = m_premier.addDays(pas * m_intervalle);
            break;
        }
        case Genre::Semaines:
            m_prochain = jour;
            break;
        case Genre::Mois: {
            const QDate debut(m_premier.year(), m_mois, 1);
            const int ecart = (jour.year() - debut.year()) * 12 + jour.month() - debut.month();
            if (ecart > 0)
                m_moisCourant = debut.addMonths(ecart / m_intervalle * m_intervalle);
            m_plancher = jour;
            break;
        }
        }
    }

    [[nodiscard]] QDate suivant()
    {
        switch (m_genre) {
        case Genre::Jours: {
            const QDate jour = m_prochain;
            m_prochain = m_prochain.addDays(m_intervalle);
            return jour;
        }
        case Genre::Semaines:
            for (;;) {
                const qint64 semaine = m_lundi.daysTo(m_prochain) / 7;
                if (semaine % m_intervalle != 0) {
                    // On to the Monday of the next week of the series.
                    m_prochain = m_lundi.addDays(7 * (semaine + m_intervalle - semaine % m_intervalle));
                    continue;
                }
                const QDate jour = m_prochain;
                m_prochain = m_prochain.addDays(1);
                if (m_masque & bitDuJour(jour))
                    return jour;
            }
        case Genre::Mois:
            for (;;) {
                const QDate jour = dansLeMois(m_moisCourant);
                m_moisCourant = m_moisCourant.addMonths(m_intervalle);
                if (jour.isValid() && jour >= m_plancher)
                    return jour;
                if (m_moisCourant.year() > 9999 || !m_moisCourant.isValid())
                    return {};
            }
        }
        return {};
    }

private:
    enum class Genre { Jours, Semaines, Mois };

    // The day of the month (given by its first day) the rule picks.
    [[nodiscard]] QDate dansLeMois(QDate mois) const
    {
        const int longueur = mois.daysInMonth();
        if (!m_joursDuMois.isEmpty()) {
            int choisi = 0;
            for (const int j : m_joursDuMois) {
                if (j <= longueur)
                    choisi = j;
            }
            return choisi ? QDate(mois.year(), mois.month(), choisi) : QDate();
        }
        int trouves = 0;
        QDate dernier;
        for (int j = 1; j <= longueur; ++j) {
            const QDate jour(mois.year(), mois.month(), j);
            if (!(m_masque & bitDuJour(jour)))
                continue;
            dernier = jour;
            if (++trouves == m_position)
                return jour;
        }
        return m_position == -1 ? dernier : QDate();
    }

    Genre m_genre = Genre::Jours;
    QDate m_premier;
    QDate m_plancher;    // nothing before this day is given
    QDate m_lundi;       // Monday of the first day's week
    QDate m_prochain;    // next day to look at (days and weeks)
    QDate m_moisCourant; // first day of the next month to look at
    int m_intervalle = 1;
    int m_masque = 0;
    int m_mois = 1;
    int m_position = 0;
    QList<int> m_joursDuMois;
};

// The one owner of a libical iterator. Dates only: the time of day of the
// series is put on afterwards, as a wall-clock time.
class IterateurIcal final
{
public:
    IterateurIcal(const QString &texte, QDate debut)
    {
        if (texte.isEmpty() || !debut.isValid())
            return;
        if (arithmetiqueActive) {
            m_simple = RegleSimple::depuisTexte(texte, debut);
            if (m_simple)
                return;
        }
        const QByteArray octets = texte.toLatin1();
        icalrecurrencetype r = icalrecurrencetype_from_string(octets.constData());
        if (r.freq == ICAL_NO_RECURRENCE)
            return;
        m_it = icalrecur_iterator_new(r, versIcal(debut));
    }
    ~IterateurIcal()
    {
        if (m_it)
            icalrecur_iterator_free(m_it);
    }
    IterateurIcal(const IterateurIcal &) = delete;
    IterateurIcal &operator=(const IterateurIcal &) = delete;

    // Jumps ahead to the first occurrence on or after the day. The rule never
    // carries COUNT (we count ourselves), which libical requires for this.
    bool allerA(QDate jour)
    {
        if (m_simple) {
            m_simple->allerA(jour);
            return true;
        }
        return m_it && icalrecur_iterator_set_start(m_it, versIcal(jour)) != 0;
    }

    [[nodiscard]] QDate suivant()
    {
        if ((!m_it && !m_simple) || ++m_pas > pasMaximum)
            return {};
        if (m_simple)
            return m_simple->suivant();
        const icaltimetype t = icalrecur_iterator_next(m_it);
        if (icaltime_is_null_time(t))
            return {};
        return QDate(t.year, t.month, t.day);
    }

private:
    icalrecur_iterator *m_it = nullptr;
    std::optional<RegleSimple> m_simple;
    int m_pas = 0;
};

// Days of a series, kept. Asking libical (for a rule of another shape than
// ours) costs a calendar set-up for every iterator and up to a millisecond a
// step (it computes through ICU); and the calendar asks again for the same days
// every ten seconds. So each series keeps the days worked out so far over one
// unbroken span, and the iterator that continues it: a later question inside
// the span is a look-up, one beyond it goes on from where the iterator stands,
// and one before it works out only the missing part. The days depend on the
// rule text and the first day only; the end of the series is applied apart.
// One cache per thread: the calendar layer runs on the one window thread, and
// nothing is shared should another thread ask.
struct JoursDUneSerie
{
    QString texte;
    QDate premier;
    QList<QDate> jours;  // every day of the series from `de` to `a`, in order
    QDate de;            // invalid while nothing is known
    QDate a;             // last day handed by the iterator (or de - 1)
    bool fini = false;   // the iterator has no more days
    std::unique_ptr<IterateurIcal> suite; // continues after `a`
};

class CacheDesJours final
{
public:
    QSharedPointer<JoursDUneSerie> serie(const QString &texte, QDate premier)
    {
        const QString cle = texte + u'@' + QString::number(premier.toJulianDay());
        QSharedPointer<JoursDUneSerie> &s = m_series[cle];
        if (!s) {
            s = QSharedPointer<JoursDUneSerie>::create();
            s->texte = texte;
            s->premier = premier;
        }
        return s;
    }

    // Makes sure the span of the series holds `debut`; answers the index of
    // the first known day on or after it (possibly the end of the list).
    qsizetype couvrir(JoursDUneSerie &s, QDate debut)
    {
        debut = std::max(debut, s.premier);
        if (!s.de.isValid()) {
            s.suite = std::make_unique<IterateurIcal>(s.texte, s.premier);
            if (debut > s.premier)
                s.suite->allerA(debut);
            s.de = debut;
            s.a = debut.addDays(-1);
        } else if (debut < s.de) {
            IterateurIcal it(s.texte, s.premier);
            if (debut > s.premier)
                it.allerA(debut);
            QList<QDate> avant;
            for (QDate jour = it.suivant(); jour.isValid() && jour < s.de; jour = it.suivant())
                avant.append(jour);
            compter(avant.size());
            s.jours = avant + s.jours;
            s.de = debut;
        }
        return std::lower_bound(s.jours.cbegin(), s.jours.cend(), debut) - s.jours.cbegin();
    }

    // One more day at the end of the span; false when the series has no more.
    bool avancer(JoursDUneSerie &s)
    {
        if (s.fini || !s.suite)
            return false;
        const QDate jour = s.suite->suivant();
        if (!jour.isValid()) {
            s.fini = true;
            return false;
        }
        s.jours.append(jour);
        s.a = jour;
        compter(1);
        return true;
    }

    bool actif = true;

private:
    // A bound on memory: past it, everything is forgotten and worked out
    // again (a series being walked keeps its own part alive meanwhile).
    void compter(qsizetype ajout)
    {
        m_taille += ajout;
        if (m_taille > 500000) {
            m_series.clear();
            m_taille = 0;
        }
    }

    QHash<QString, QSharedPointer<JoursDUneSerie>> m_series;
    qsizetype m_taille = 0;
};

CacheDesJours &cache()
{
    thread_local CacheDesJours instance;
    return instance;
}

// Days later than this are not looked for, whatever the series says.
constexpr int anneeLimite = 2999;

// Calls visite(day) for every day of the series from `depuis` on, in order,
// until it answers false or the series ends. The end of the series is ours:
// the last day for EndByDate, the count for EndAfterOccurrences (counted from
// the first day of the series).
template<typename Visite>
void parcourir(const CalendarRecurrencePattern &p, QDate depuis, Visite visite)
{
    const QDate premier = p.StartDate();
    if (!premier.isValid())
        return;
    const QString texte = regle(p);
    if (texte.isEmpty())
        return;
    const int methode = p.EndMethod();
    const int total = p.EndAfterOccurrences();
    const bool compte = methode == CalendarRecurrencePattern::EndAfterOccurrencesCount;
    QDate dernier;
    if (methode == CalendarRecurrencePattern::EndByDate) {
        dernier = p.EndDate();
        if (!dernier.isValid() || dernier < premier)
            return;
    } else if (compte && total <= 0) {
        return;
    }
    const QDate debut = depuis.isValid() && depuis > premier ? depuis : premier;

    if (!cache().actif) {
        // Straight walk from the first day: the reference the kept days are
        // checked against.
        IterateurIcal it(texte, premier);
        int n = 0;
        for (QDate jour = it.suivant(); jour.isValid(); jour = it.suivant()) {
            if (dernier.isValid() && jour > dernier)
                return;
            ++n;
            if (jour >= debut && !visite(jour))
                return;
            if (compte && n >= total)
                return;
        }
        return;
    }

    // A counted series is known from its first day, so that a day's place in
    // the list is its number in the series.
    const QSharedPointer<JoursDUneSerie> s = cache().serie(texte, premier);
    qsizetype i = cache().couvrir(*s, compte ? premier : debut);
    for (;; ++i) {
        while (i >= s->jours.size()) {
            if (!cache().avancer(*s))
                return;
        }
        const QDate jour = s->jours.at(i);
        if (jour.year() > anneeLimite || (dernier.isValid() && jour > dernier))
            return;
        if (jour >= debut && !visite(jour))
            return;
        if (compte && i + 1 >= total)
            return;
    }
}

} // namespace

void SetOccurrenceCacheEnabled(bool enabled)
{
    cache().actif = enabled;
}

void SetRuleArithmeticEnabled(bool enabled)
{
    arithmetiqueActive = enabled;
}

namespace {

// Times of the series compared as wall-clock times, local or UTC alike.
QDateTime naif(const QDateTime &t)
{
    return QDateTime(t.date(), t.time(), Qt::UTC);
}

// The local time of a day and hour. An hour that the clocks skip when summer
// time begins (02:30 on the last Sunday of March in Paris) does not exist; by
// our choice the occurrence still shows, where the clock then stands, one gap
// later (03:30), rather than vanish from the book.
QDateTime heureLocale(QDate jour, QTime heure)
{
    QDateTime t(jour, heure);
    if (t.isValid())
        return t;
    const int decalageAvant = QDateTime(jour.addDays(-1), QTime(12, 0)).offsetFromUtc();
    return QDateTime(jour, heure, Qt::UTC).addSecs(-decalageAvant).toLocalTime();
}

QDateTime local(const QDateTime &naive)
{
    return heureLocale(naive.date(), naive.time());
}

QDateTime finOccurrence(const QDateTime &debut, int minutes)
{
    return local(naif(debut).addSecs(qint64(std::max(minutes, 0)) * 60));
}

// An appointment touches the range when it begins before the range ends and
// ends after it begins; one of no length touches the day on which it sits.
bool touche(const QDateTime &debut, const QDateTime &fin, const QDateTime &bas, const QDateTime &haut)
{
    const QDateTime d = naif(debut);
    const QDateTime f = naif(fin);
    if (d >= haut)
        return false;
    return f > bas || (d >= bas && f <= d);
}

} // namespace

QString RecurrenceRuleText(const CalendarRecurrencePattern &pattern)
{
    return regle(pattern);
}

QList<QDateTime> OccurrenceStarts(const CalendarRecurrencePatternPtr &pattern, QDate firstDay, QDate lastDay)
{
    QList<QDateTime> debuts;
    if (!pattern || !firstDay.isValid() || !lastDay.isValid() || lastDay < firstDay)
        return debuts;
    const QTime heure = pattern->StartTime().isValid() ? pattern->StartTime() : QTime(0, 0);
    parcourir(*pattern, firstDay, [&](QDate jour) {
        if (jour > lastDay)
            return false;
        debuts.append(heureLocale(jour, heure));
        return true;
    });
    return debuts;
}

QList<CalendarEventPtr> ExpandOccurrences(const CalendarEventPtr &master, QDate firstDay, QDate lastDay)
{
    QList<CalendarEventPtr> resultat;
    if (!master || !firstDay.isValid() || !lastDay.isValid() || lastDay < firstDay)
        return resultat;
    const CalendarRecurrencePatternPtr pattern = master->RecurrencePattern();
    if (!pattern)
        return resultat;

    const QDateTime bas(firstDay, QTime(0, 0), Qt::UTC);
    const QDateTime haut(lastDay.addDays(1), QTime(0, 0), Qt::UTC);
    const int duree = std::max(pattern->DurationMinutes(), 0);
    // An occurrence that began on an earlier day may still run into the range.
    const QDate depuis = firstDay.addDays(-(duree / 1440 + 1));

    for (const QDateTime &debut : OccurrenceStarts(pattern, depuis, lastDay)) {
        const QDateTime fin = finOccurrence(debut, duree);
        if (!touche(debut, fin, bas, haut))
            continue;
        if (pattern->FindException(debut))
            continue; // replaced or masked
        resultat.append(CalendarEvent::CreateOccurrence(master, debut, fin));
    }
    for (const CalendarEventPtr &exception : pattern->Exceptions()) {
        if (exception->RExceptionDeleted())
            continue;
        if (touche(exception->StartDateTime(), exception->EndDateTime(), bas, haut))
            resultat.append(exception);
    }
    std::stable_sort(resultat.begin(), resultat.end(), [](const CalendarEventPtr &a, const CalendarEventPtr &b) {
        return naif(a->StartDateTime()) < naif(b->StartDateTime());
    });
    return resultat;
}

std::optional<QDateTime> NextOccurrenceStart(const CalendarRecurrencePatternPtr &pattern, const QDateTime &from)
{
    if (!pattern || !from.isValid())
        return std::nullopt;
    const QTime heure = pattern->StartTime().isValid() ? pattern->StartTime() : QTime(0, 0);
    const QDateTime seuil = naif(from);
    std::optional<QDateTime> trouve;
    parcourir(*pattern, from.date(), [&](QDate jour) {
        const QDateTime debut = heureLocale(jour, heure);
        if (naif(debut) < seuil)
            return true;
        trouve = debut;
        return false;
    });
    return trouve;
}

SeriesSpan SeriesSpanOf(const CalendarRecurrencePatternPtr &pattern)
{
    SeriesSpan etendue;
    if (!pattern)
        return etendue;
    const QTime heure = pattern->StartTime().isValid() ? pattern->StartTime() : QTime(0, 0);
    const bool sansFin = pattern->EndMethod() != CalendarRecurrencePattern::EndByDate
        && pattern->EndMethod() != CalendarRecurrencePattern::EndAfterOccurrencesCount;
    QDate premier;
    QDate dernier;
    parcourir(*pattern, QDate(), [&](QDate jour) {
        if (!premier.isValid())
            premier = jour;
        dernier = jour;
        return !sansFin;
    });
    if (!premier.isValid())
        return etendue;
    etendue.firstStart = heureLocale(premier, heure);
    if (!sansFin)
        etendue.lastEnd = finOccurrence(heureLocale(dernier, heure), pattern->DurationMinutes());
    return etendue;
}
