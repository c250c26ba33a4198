#include "appointments/miroir.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/base/horloge.h"
#include "support/dossiertest.h"
#include "support/repondeurscripte.h"

#include <QFile>
#include <QSqlQuery>
#include <QtTest>

#include <memory>

namespace {

// Monday 9 March 2026 (an odd week).
const QDate lundi(2026, 3, 9);

QString body(const QString &numero, const QString &naissance = QStringLiteral("15/03/1980"))
{
    ChampsRdv c;
    c[ChampRdv::Nom] = QStringLiteral("DUPONT");
    c[ChampRdv::Prenom] = QStringLiteral("Marie");
    c[ChampRdv::DateNaissance] = naissance;
    c[ChampRdv::DatePrise] = QStringLiteral("01/03/2026 08:00:00");
    c[ChampRdv::NumeroPatient] = numero;
    c[ChampRdv::Base] = QStringLiteral("Agenda");
    return PackerBody(c);
}

} // namespace

class tst_miroir : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DossierProgrammeTest> m_prog;
    std::unique_ptr<Demarrage> m_demarrage;
    RepondeurScripte *m_repondeur = nullptr;

    CalendarDataProvider &calendrier() { return *appState().Calendrier; }
    QString journal() const { return m_prog->chemin() + QStringLiteral("journal/"); }

    CalendarEventPtr nouveau(const QDateTime &debut, const QString &texteBody, const QString &location)
    {
        CalendarEventPtr e = calendrier().CreateNewEvent(debut, debut.addSecs(20 * 60));
        e->setBody(texteBody);
        e->setSubject(QStringLiteral("DUPONT Marie"));
        e->setLocation(location);
        e->setCreationTime(QDateTime(QDate(2026, 3, 1), QTime(8, 0)));
        return e;
    }

    // The Events row of an appointment, one line; empty without a row.
    QString ligne(int id) const
    {
        auto base = BaseSqlite::ouvrir(CheminPatientsMdb(m_prog->chemin()), BaseSqlite::Mode::Lecture);
        if (!base)
            return QStringLiteral("base illisible");
        QSqlQuery q(base->db());
        q.prepare(QStringLiteral("SELECT Numero, DateRv, HeureRV, Praticien, DatePrise, Motif, DateModif FROM Events WHERE ID = ?"));
        q.addBindValue(id);
        if (!q.exec())
            return QStringLiteral("lecture impossible");
        QStringList valeurs;
        if (q.next()) {
            for (int i = 0; i < 7; ++i)
                valeurs << q.value(i).toString();
        }
        return valeurs.join(u'|');
    }

    QStringList lignesJournal() const
    {
        QFile f(journal() + QStringLiteral("2026/20260302_0.txt"));
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    }

private slots:
    void init()
    {
        Horloge::fixer(QDateTime(QDate(2026, 3, 2), QTime(8, 0)));
        m_repondeur = new RepondeurScripte;
        m_prog = std::make_unique<DossierProgrammeTest>();
        m_demarrage = std::make_unique<Demarrage>(appState(), m_prog->chemin());
        ParametresFenetre p;
        QVERIFY(!m_demarrage->initialiser(QString()));
        QVERIFY(!m_demarrage->charger(p));
        appState().CheminLog = journal();
        BrancherMiroir(calendrier());

        const Regle matin{.DateDebut = QDate(2026, 1, 1), .DateFin = QDate(2026, 12, 31), .HeureDebut = QTime(8, 0), .HeureFin = QTime(12, 0),
                          .JourNumero = 2, .Jour = {}, .Semaine = 3, .PraticienNumero = 1, .Praticien = "Dr Alpha", .TypeText = {}};
        QVERIFY(AjouterRegle(*ConfigOuverte(), matin) > 0);
    }

    void cleanup()
    {
        appState().Calendrier->Close();
        FermerConfig();
        appState() = AppState{};
        m_demarrage.reset();
        m_prog.reset();
        delete m_repondeur;
        m_repondeur = nullptr;
        BaseSqlite::fixerDelaiOccupe(8000);
        Horloge::liberer();
    }

    void ligneEcrite_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("attendu");
        const QString fin = QStringLiteral("|2026-03-01 08:00:00|%1|2026-03-02 08:00:00");
        QTest::newRow("sans patient: numéro 0") << body(QString(), QStringLiteral("£")) << QString()
                                                << QStringLiteral("0|2026-03-09|09:00:00|Dr Alpha") + fin.arg(QString());
        // The reader keeps a leading separator: field 10 is read as the number.
        QTest::newRow("séparateur en tête") << QStringLiteral("§") + body(QStringLiteral("12")) << "Vaccin"
                                            << QStringLiteral("1|2026-03-09|09:00:00|Dr Alpha") + fin.arg(QStringLiteral("Vaccin"));
        QTest::newRow("motif coupé à la colonne") << body(QStringLiteral("3")) << QString(70, u'm')
                                                  << QStringLiteral("3|2026-03-09|09:00:00|Dr Alpha") + fin.arg(QString(64, u'm'));
    }

    void ligneEcrite()
    {
        QFETCH(QString, body);
        QFETCH(QString, location);
        QFETCH(QString, attendu);
        CalendarEventPtr e = nouveau(QDateTime(lundi, QTime(9, 0)), body, location);
        QVERIFY(calendrier().AddEvent(e));
        QCOMPARE(ligne(e->EventID()), attendu);
        QCOMPARE(appState().RegleCourante.Praticien, QStringLiteral("Dr Alpha"));
        QCOMPARE(m_repondeur->appels().size(), 0);
    }

    // Added, moved to a day without a rule, its row lost and changed again,
    // deleted: one row follows the appointment, and the journal has a line
    // for each step.
    void cycleDeVie()
    {
        CalendarEventPtr e = nouveau(QDateTime(lundi, QTime(12, 0)), body(QStringLiteral("12")), QStringLiteral("Bilan => Dr Roux"));
        QVERIFY(calendrier().AddEvent(e));
        const int id = e->EventID();
        QVERIFY(id > 0);
        QCOMPARE(ligne(id), QStringLiteral("12|2026-03-09|12:00:00|Dr Alpha|2026-03-01 08:00:00|Bilan => Dr Roux|2026-03-02 08:00:00"));

        Horloge::fixer(QDateTime(QDate(2026, 3, 2), QTime(9, 30)));
        e->setStartDateTime(QDateTime(lundi.addDays(1), QTime(15, 0)));
        e->setEndDateTime(QDateTime(lundi.addDays(1), QTime(15, 20)));
        QVERIFY(calendrier().ChangeEvent(e));
        QCOMPARE(ligne(id), QStringLiteral("12|2026-03-10|15:00:00||2026-03-01 08:00:00|Bilan => Dr Roux|2026-03-02 09:30:00"));
        QCOMPARE(appState().RegleCourante.Praticien, QString());

        {
            auto base = BaseSqlite::ouvrir(CheminPatientsMdb(m_prog->chemin()), BaseSqlite::Mode::Existante);
            QVERIFY(base && base->executer(QStringLiteral("DELETE FROM Events")));
        }
        QVERIFY(calendrier().ChangeEvent(e));
        QCOMPARE(ligne(id), QStringLiteral("12|2026-03-10|15:00:00||2026-03-01 08:00:00|Bilan => Dr Roux|2026-03-02 09:30:00"));

        QVERIFY(calendrier().DeleteEvent(e));
        QCOMPARE(ligne(id), QString());
        QCOMPARE(m_repondeur->appels().size(), 0);

        const QStringList lignes = lignesJournal();
        QCOMPARE(lignes.size(), 4);
        const QStringList actions{QStringLiteral("| Nouveau      |"), QStringLiteral("| Modification |"),
                                  QStringLiteral("| Modification |"), QStringLiteral("| Effacement   |")};
        for (int i = 0; i < 4; ++i)
            QVERIFY2(lignes.at(i).contains(actions.at(i)), qPrintable(lignes.at(i)));
    }

    void echec_data()
    {
        QTest::addColumn<QString>("cas");
        QTest::newRow("base verrouillée") << "verrou";
        QTest::newRow("base absente") << "absente";
        QTest::newRow("ancien rendez-vous sans séparateurs") << "ancien";
    }

    // The copy fails: the appointment stays in the calendar, the user is
    // told in French, and the journal still has its line.
    void echec()
    {
        QFETCH(QString, cas);
        const QString patients = CheminPatientsMdb(m_prog->chemin());
        std::unique_ptr<BaseSqlite> verrou;
        if (cas == QLatin1String("verrou")) {
            BaseSqlite::fixerDelaiOccupe(200);
            verrou = BaseSqlite::ouvrir(patients, BaseSqlite::Mode::Existante);
            QVERIFY(verrou && verrou->executer(QStringLiteral("BEGIN EXCLUSIVE")));
        } else if (cas == QLatin1String("absente")) {
            QVERIFY(QFile::remove(patients));
        }
        CalendarEventPtr e = nouveau(QDateTime(lundi, QTime(10, 0)),
                                     cas == QLatin1String("ancien") ? QStringLiteral("Rappeler le laboratoire") : body(QStringLiteral("5")),
                                     QStringLiteral("Bilan"));
        QVERIFY(calendrier().AddEvent(e));
        QVERIFY(calendrier().GetEvent(e->EventID()));

        QCOMPARE(m_repondeur->appels().size(), 1);
        const RepondeurScripte::Appel &a = m_repondeur->appels().first();
        QCOMPARE(a.titre, QStringLiteral("Erreur"));
        QVERIFY2(a.texte.startsWith(TexteEchecMiroir(QString())), qPrintable(a.texte));
        QVERIFY2(a.texte.size() > TexteEchecMiroir(QString()).size(), "la raison manque");
        QCOMPARE(lignesJournal().size(), 1);

        if (verrou) {
            QVERIFY(verrou->executer(QStringLiteral("ROLLBACK")));
            verrou.reset();
        }
        if (cas != QLatin1String("absente"))
            QCOMPARE(ligne(e->EventID()), QString());
        // A copy refused by a lock is written at the next refresh; one
        // without a patient number is not kept.
        QCOMPARE(RejouerMiroir(appState().CheminBaseAgenda), cas == QLatin1String("absente") ? 1 : 0);
        if (cas != QLatin1String("absente"))
            QCOMPARE(ligne(e->EventID()).isEmpty(), cas == QLatin1String("ancien"));
    }

    // A changed occurrence has its own copy, which goes with its series.
    void serieSupprimee()
    {
        CalendarEventPtr serie = nouveau(QDateTime(lundi, QTime(9, 0)), body(QStringLiteral("5")), QStringLiteral("Pansement"));
        CalendarRecurrencePatternPtr motif = serie->CreateRecurrence();
        motif->Options().setRecurrenceType(CalendarRecurrenceOptions::Weekly);
        motif->Options().setIntervalWeeks(1);
        motif->Options().setDayOfWeekMask(CalendarRecurrenceOptions::Monday);
        motif->setEndMethod(CalendarRecurrencePattern::EndAfterOccurrencesCount);
        motif->setEndAfterOccurrences(3);
        serie->UpdateRecurrence(motif);
        QVERIFY(calendrier().AddEvent(serie));
        const QList<CalendarEventPtr> jour = calendrier().RetrieveDayEvents(lundi.addDays(7));
        QCOMPARE(jour.size(), 1);
        jour.first()->setLocation(QStringLiteral("Pansement décalé"));
        QVERIFY(calendrier().ChangeEvent(jour.first()));
        const int exception = jour.first()->EventID();
        QVERIFY(exception != serie->EventID() && !ligne(exception).isEmpty());
        QVERIFY(calendrier().DeleteEvent(calendrier().GetEvent(serie->EventID())));
        QCOMPARE(ligne(exception), QString());
        QCOMPARE(ligne(serie->EventID()), QString());
        QCOMPARE(m_repondeur->appels().size(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_miroir)
#include "tst_miroir.moc"
