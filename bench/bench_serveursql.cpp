// Times the work-week read of the calendar on a database server, beside the
// embedded store, on the same book of ten years: 100,000 appointments and 500
// series. A MariaDB server is started for the run (scripts/mariadb-test.sh).
// Prints the figures; not a test.
//
//   bench_serveursql [weeks]
#include "calendar/calendardataprovider.h"
#include "calendar/choixstore.h"
#include "calendar/mariadbcalendarstore.h"
#include "calendar/openprovider.h"
#include "calendar/recurrenceexpander.h"
#include "shell/base/horloge.h"
#include "support/serveurmariadb.h"
#include "shell/base/processus.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace {

const QDate kDebut(2020, 1, 1);
const QDate kFin(2029, 12, 31);
const QDateTime kMaintenant(QDate(2025, 6, 16), QTime(10, 0));

double ms(qint64 ns)
{
    return double(ns) / 1e6;
}

// The same book for every store (same seed).
void remplir(CalendarDataProvider &p, int rendezVous, int series)
{
    QRandomGenerator alea(20260301);
    p.store()->BeginChange();
    const qint64 jours = kDebut.daysTo(kFin) + 1;
    for (int faits = 0; faits < rendezVous;) {
        const QDate jour = kDebut.addDays(alea.bounded(jours));
        if (jour.dayOfWeek() > 5)
            continue;
        const QDateTime debut(jour, QTime(8, 0).addSecs(60 * 15 * alea.bounded(44)));
        CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(60 * 15 * (1 + alea.bounded(3))));
        e->setSubject(QStringLiteral("PATIENT %1 Prénom").arg(faits));
        e->setLocation(QStringLiteral("Consultation"));
        e->setBody(QStringLiteral("DUPONT§Jean§01/02/1960§0601020304§§§§§§§§§§§"));
        e->setLabelID(alea.bounded(18));
        e->setIsReminder(debut > kMaintenant && alea.bounded(3) == 0);
        e->setReminderMinutesBeforeStart(1440);
        p.AddEvent(e);
        ++faits;
    }
    for (int s = 0; s < series; ++s) {
        const QDate jour = kDebut.addDays(alea.bounded(jours - 400));
        const QDateTime debut(jour, QTime(7, 0).addSecs(60 * 30 * alea.bounded(24)));
        CalendarEventPtr m = p.CreateNewEvent(debut, debut.addSecs(60 * 30));
        m->setSubject(QStringLiteral("SÉRIE %1").arg(s));
        CalendarRecurrencePatternPtr motif = m->CreateRecurrence();
        CalendarRecurrenceOptions &o = motif->Options();
        switch (s % 4) {
        case 0: o.setRecurrenceType(1); o.setIntervalDays(1 + alea.bounded(3)); break;
        case 1: o.setRecurrenceType(1); o.setEveryWeekDay(true); break;
        case 2: o.setRecurrenceType(2); o.setIntervalWeeks(1); o.setDayOfWeekMask(2 | 16); break;
        default: o.setRecurrenceType(3); o.setIntervalMonths(1); o.setDayOfMonth(jour.day()); break;
        }
        if (alea.bounded(10) < 7) {
            motif->setEndMethod(1);
            motif->setEndAfterOccurrences(5 + alea.bounded(26));
        } else {
            motif->setEndMethod(2);
        }
        p.AddEvent(m);
        if (s % 5 == 0) {
            const QList<CalendarEventPtr> occ = ExpandOccurrences(m, jour, jour.addDays(60));
            if (occ.size() > 1) {
                occ.at(1)->setStartDateTime(occ.at(1)->StartDateTime().addSecs(3600));
                occ.at(1)->setEndDateTime(occ.at(1)->EndDateTime().addSecs(3600));
                p.ChangeEvent(occ.at(1));
            }
        }
    }
    p.store()->CommitChange();
}

std::unique_ptr<CalendarDataProvider> ouvrir(int genre, const QString &connexion)
{
    auto p = std::make_unique<CalendarDataProvider>();
    if (!OpenProvider(*p, genre, connexion) || !p->IsOpen())
        return nullptr;
    return p;
}

struct Mesure
{
    double parSemaine = 0;
    qsizetype affiches = 0;
};

// The stores read each week in turn, so that they meet the same load of the
// machine (the server runs beside the program).
QList<Mesure> lire(const QList<CalendarDataProvider *> &stores, const QList<QDate> &lundis, int tours)
{
    QList<Mesure> m(stores.size());
    QList<qint64> total(stores.size(), 0);
    QElapsedTimer t;
    for (int tour = 0; tour < tours; ++tour) {
        for (const QDate &lundi : lundis) {
            for (qsizetype i = 0; i < stores.size(); ++i) {
                t.start();
                m[i].affiches += stores.at(i)->RetrieveEvents(lundi, lundi.addDays(4)).size();
                total[i] += t.nsecsElapsed();
            }
        }
    }
    for (qsizetype i = 0; i < stores.size(); ++i) {
        m[i].parSemaine = ms(total.at(i)) / double(tours * lundis.size());
        m[i].affiches /= tours;
    }
    return m;
}

} // namespace

int main(int argc, char *argv[])
{
    PreparerProcessus();
    QCoreApplication app(argc, argv);
    const int semaines = argc > 1 ? std::max(1, atoi(argv[1])) : 20;
    Horloge::fixer(kMaintenant);
    ServeurMariaDb serveur;
    if (!serveur.demarre()) {
        std::fprintf(stderr, "%s\n", qPrintable(serveur.erreur()));
        return 1;
    }
    QTemporaryDir dossier;
    const QString mdb = QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dossier.path() + QStringLiteral("/Events.mdb';");
    // Over TCP on 127.0.0.1, as the stations of a practice reach their server.
    const QString mariadb = MarqueMariaDb + serveur.parametresMariaDb();

    QElapsedTimer t;
    auto embarque = ouvrir(CalendarDataProvider::Access, mdb);
    auto maria = ouvrir(CalendarDataProvider::MariaDB, mariadb);
    if (!embarque || !maria) {
        std::fprintf(stderr, "un magasin ne s'ouvre pas\n");
        return 1;
    }
    t.start();
    remplir(*embarque, 100000, 500);
    const double tEmbarque = ms(t.nsecsElapsed());
    t.restart();
    remplir(*maria, 100000, 500);
    const double tMaria = ms(t.nsecsElapsed());
    // The MySQL store's own statements cannot write a series (its event update
    // is refused by the server): its tables get the same rows, copied.
    const QString colonnesE = QStringLiteral(
        "EventID, Subject, Location, Body, IsMeeting, IsPrivate, LabelID, BusyStatus, ImportanceLevel, StartDateTime, EndDateTime,"
        " IsAllDayEvent, IsReminder, ReminderMinutesBeforeStart, RemainderSoundFile, RecurrenceState, RecurrencePatternID,"
        " RExceptionStartTimeOrig, RExceptionEndTimeOrig, ISRecurrenceExceptionDeleted, CustomPropertiesXMLData, CustomIconsIDs, ScheduleID");
    const QString colonnesP = QStringLiteral(
        "RecurrencePatternID, MasterEventID, EventStartTime, EventDuration, PatternStartDate, PatternEndMethod, PatternEndDate,"
        " PatternEndAfterOccurrences, OptionsData1, OptionsData2, OptionsData3, OptionsData4, CustomPropertiesXMLData");
    if (!serveur.executer(QStringLiteral("Calendar"),
                          QStringLiteral("INSERT INTO CalendarEvents (%1) SELECT %1 FROM Calendar6.CalendarEvents;"
                                         " INSERT INTO CalendarRecurrencePatterns (%2) SELECT %2 FROM Calendar6.CalendarRecurrencePatterns")
                              .arg(colonnesE, colonnesP))) {
        std::fprintf(stderr, "%s\n", qPrintable(serveur.erreur()));
        return 1;
    }
    auto mysql = ouvrir(CalendarDataProvider::MySQL, QStringLiteral("Provider=Custom;DSN=Calendar_MySQL"));
    if (!mysql) {
        std::fprintf(stderr, "Calendar_MySQL ne s'ouvre pas\n");
        return 1;
    }
    std::printf("book: 100000 appointments, 500 series; filled in %.0f ms (Events.mdb), %.0f ms (MariaDB store)\n", tEmbarque, tMaria);

    QList<QDate> lundis;
    for (int i = 0; i < semaines; ++i)
        lundis << QDate(2020, 1, 6).addDays(7 * ((i * 37) % 515));
    // One warming read each, then the measures side by side, week by week.
    lire({embarque.get(), maria.get()}, lundis, 1);
    const QList<Mesure> cote = lire({embarque.get(), maria.get()}, lundis, 5);
    const Mesure &e = cote.at(0);
    const Mesure &m = cote.at(1);
    const Mesure k5 = lire({mysql.get()}, lundis, 1).at(0);
    // The bare week statement of the MariaDB store, prepared once as the
    // store keeps it, every column fetched, nothing mapped: what the server
    // and the driver cost.
    double nu = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), QStringLiteral("nu"));
        db.setHostName(QStringLiteral("127.0.0.1"));
        db.setPort(serveur.port());
        db.setDatabaseName(QStringLiteral("Calendar6"));
        db.setUserName(QStringLiteral("agenda"));
        db.setPassword(QStringLiteral("agenda"));
        db.open();
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.prepare(MariaDbCalendarStore::rangeStatement());
        QElapsedTimer c;
        for (int tour = 0; tour < 4; ++tour) {
            for (const QDate &lundi : lundis) {
                const QDateTime debut(lundi, QTime(0, 0));
                const QDateTime fin(lundi.addDays(5), QTime(0, 0));
                c.start();
                int i = 0;
                for (const QDateTime &v : {debut.addDays(-1), fin, debut, debut, fin})
                    q.bindValue(i++, v.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
                q.exec();
                const int colonnes = q.record().count();
                while (q.next()) {
                    for (int k = 0; k < colonnes; ++k)
                        (void)q.value(k);
                }
                q.finish();
                if (tour > 0)
                    nu += ms(c.nsecsElapsed());
            }
        }
        nu /= 3.0 * double(lundis.size());
    }
    std::printf("work week read, mean of %d weeks (server over TCP on 127.0.0.1):\n", semaines);
    std::printf("  bare MariaDB week statement   %8.2f ms\n", nu);
    std::printf("  embedded store (Events.mdb)   %8.2f ms  (%lld shown per week)\n", e.parSemaine, qint64(e.affiches / semaines));
    std::printf("  MariaDB store (kind 6)        %8.2f ms  (%lld shown)  = %.2f x embedded (target <= 3)\n", m.parSemaine,
                qint64(m.affiches / semaines), m.parSemaine / e.parSemaine);
    std::printf("  MySQL over ODBC (kind 5)      %8.2f ms  (%lld shown)  = %.2f x embedded\n", k5.parSemaine,
                qint64(k5.affiches / semaines), k5.parSemaine / e.parSemaine);
    return 0;
}
