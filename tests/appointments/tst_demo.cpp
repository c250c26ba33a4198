#include "appointments/demo.h"
#include "appointments/miroir.h"
#include "cipher/encryptx.h"
#include "shell/journal.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/base/horloge.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <map>

namespace {

// Wednesday of ISO week 48 (even).
const QDate mercredi(2026, 11, 25);
const QDate lundi(2026, 11, 23);

qint64 compter(QSqlDatabase db, const QString &sql)
{
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toLongLong() : -1;
}

} // namespace

class tst_demo : public QObject
{
    Q_OBJECT

private slots:
    void init() { Horloge::fixer(QDateTime(mercredi, QTime(10, 0))); }
    void cleanup()
    {
        FermerConfig();
        appState() = AppState{};
        Horloge::liberer();
    }

    // The folder opens as the default agenda, and what it shows for the week
    // is what the editor would have made.
    void agendaOuvert()
    {
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        const QString dossier = dir.path() + QStringLiteral("/demo/");
        BilanDemo bilan;
        const auto erreur = CreerDemo(dossier, mercredi, &bilan);
        QVERIFY2(!erreur, qPrintable(erreur.value_or(QString())));
        QCOMPARE(bilan.lundi, lundi);
        QCOMPARE(bilan.patients, 50);
        QVERIFY2(bilan.rendezVous >= 50 && bilan.rendezVous <= 70, qPrintable(QString::number(bilan.rendezVous)));
        QVERIFY(!ConfigOuverte() && !appState().Calendrier); // state given back

        Demarrage demarrage(appState(), dossier);
        ParametresFenetre p;
        QVERIFY(!demarrage.initialiser(QString()));
        QVERIFY(!demarrage.charger(p));
        QVERIFY(!p.premierLancement);
        AppState &etat = appState();
        QCOMPARE(compter(ConfigOuverte()->base().db(), QStringLiteral("SELECT count(*) FROM Regles")), bilan.regles);
        QCOMPARE(LireConfig(QStringLiteral("Praticien2"), QStringLiteral("Nom"), QString()), NomPraticienDemo(2));
        QCOMPARE(p.libelles.at(2).name, QStringLiteral("Praticien 1:Pédiatrie"));
        QVERIFY(p.libelles.at(0).color != 0xFFFFFF && p.libelles.at(0).color != p.libelles.at(8).color);
        // Afternoons change hands between odd and even weeks.
        QCOMPARE(GetRegleForDate(QDateTime(lundi, QTime(15, 0))).PraticienNumero, 2);
        QCOMPARE(GetRegleForDate(QDateTime(lundi.addDays(7), QTime(15, 0))).PraticienNumero, 1);

        auto patients = BaseSqlite::ouvrir(CheminPatientsMdb(dossier), BaseSqlite::Mode::Lecture);
        QVERIFY(patients);
        QCOMPARE(compter(patients->db(), QStringLiteral("SELECT count(DISTINCT Numero) FROM Signaletiques")), 50);
        QCOMPARE(compter(patients->db(), QStringLiteral("SELECT count(*) FROM Events")), bilan.rendezVous);
        std::map<qint64, QString> noms;
        {
            QSqlQuery q(patients->db());
            QVERIFY(q.exec(QStringLiteral("SELECT Numero, Nom, Prenom FROM Signaletiques")));
            while (q.next())
                noms[q.value(0).toLongLong()] = q.value(1).toString() + u' ' + q.value(2).toString();
        }

        const QList<CalendarEventPtr> semaine = etat.Calendrier->RetrieveEvents(lundi, lundi.addDays(6));
        QCOMPARE(semaine.size(), bilan.rendezVous); // the series shows once this week
        int arrives = 0;
        int occurrences = 0;
        int sansPatient = 0;
        for (const CalendarEventPtr &e : semaine) {
            const QString quand = e->StartDateTime().toString(Qt::ISODate);
            QVERIFY2(e->StartDateTime().date().dayOfWeek() <= 5, qPrintable(quand));
            QCOMPARE(e->Body().split(SeparateurRdv).size(), 15);
            LectureBody lu;
            const ChampsRdv champs = DepaquerBody(e->Body(), &lu);
            QVERIFY(!lu.ancienneForme);
            QCOMPARE(e->Subject(), ConstruireSubject(champs));
            QVERIFY2(TelephoneValide(champs[ChampRdv::Telephone]) && TelephoneValide(champs[ChampRdv::Portable])
                         && MelValide(champs[ChampRdv::Mel]),
                     qPrintable(e->Body()));
            if (lu.sansPatient) {
                ++sansPatient;
                QCOMPARE(NumeroPatientBody(e->Body()), std::optional<qint64>(0));
                continue;
            }
            const qint64 numero = NumeroPatientBody(e->Body()).value_or(-1);
            QVERIFY2(noms.count(numero) == 1, qPrintable(quand));
            QCOMPARE(noms[numero], champs[ChampRdv::Nom] + u' ' + champs[ChampRdv::Prenom]);
            const RegleMatch regle = GetRegleForDate(e->StartDateTime().addSecs(1));
            QVERIFY2(!regle.Praticien.isEmpty(), qPrintable(quand));
            QCOMPARE(e->LabelID(), regle.TypeRV + (regle.PraticienNumero == 2 ? 8 : 0));
            if (e->BusyStatus() == 0) {
                ++arrives;
                QVERIFY2(e->StartDateTime() < QDateTime(mercredi, QTime(12, 0)), qPrintable(quand));
            }
            if (e->RecurrenceState() == CalendarEvent::Occurrence)
                ++occurrences;
        }
        QCOMPARE(sansPatient, 1);
        QCOMPARE(occurrences, 1);
        QVERIFY(arrives >= 10);
        QCOMPARE(repondeur.appels().size(), 0);
    }

    // A folder with an agenda is never touched; the command line says so.
    void commandeAdmin()
    {
        QTemporaryDir dir;
        const QString dossier = dir.path() + QStringLiteral("/d");
        QProcess admin;
        admin.start(QStringLiteral(TAVONEL_ADMIN_EXE), {QStringLiteral("demo"), dossier, QStringLiteral("2026-11-25")});
        QVERIFY(admin.waitForFinished(60000));
        QCOMPARE(admin.exitCode(), 0);
        const QString sortie = QString::fromUtf8(admin.readAllStandardOutput());
        QVERIFY2(sortie.contains(QStringLiteral("50 patients")) && sortie.contains(QStringLiteral("23/11/2026")), qPrintable(sortie));

        // The same data open as agenda 1, whose changes go to the journal.
        {
            Demarrage demarrage(appState(), dossier);
            QVERIFY(!demarrage.initialiser(EncoderArgument(QStringLiteral("1"))));
            ParametresFenetre p;
            QVERIFY(!demarrage.charger(p));
            QCOMPARE(appState().AgendaName, NomAgendaDemo());
            BrancherMiroir(*appState().Calendrier);
            const QList<CalendarEventPtr> jour = appState().Calendrier->RetrieveDayEvents(mercredi);
            QVERIFY(!jour.isEmpty());
            QVERIFY(appState().Calendrier->ChangeEvent(jour.first()));
            const QByteArray journal = lireOctets(dossier + QStringLiteral("/Journal/2026/") + NomFichierJournal(mercredi, 0));
            QVERIFY(journal.startsWith(LigneJournal(NomAgendaDemo(), *jour.first(), JournalModification).left(30).toLatin1()));
            demarrage.arreter(false);
            appState() = AppState{};
        }

        const QFileInfo avant(dossier + QStringLiteral("/Events.mdb"));
        admin.start(QStringLiteral(TAVONEL_ADMIN_EXE), {QStringLiteral("demo"), dossier});
        QVERIFY(admin.waitForFinished(60000));
        QCOMPARE(admin.exitCode(), 1);
        QVERIFY(QString::fromUtf8(admin.readAllStandardError()).contains(QStringLiteral("contient déjà un agenda")));
        const QFileInfo apres(dossier + QStringLiteral("/Events.mdb"));
        QCOMPARE(apres.size(), avant.size());
        QCOMPARE(apres.lastModified(), avant.lastModified());

        admin.start(QStringLiteral(TAVONEL_ADMIN_EXE), {QStringLiteral("demo"), dossier + u'2', QStringLiteral("25/11/2026")});
        QVERIFY(admin.waitForFinished(60000));
        QCOMPARE(admin.exitCode(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_demo)
#include "tst_demo.moc"
