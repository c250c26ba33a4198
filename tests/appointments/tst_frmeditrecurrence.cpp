#include "appointments/frmeditrecurrence.h"
#include "calendar/recurrenceexpander.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "support/repondeurscripte.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QtTest>

#include <functional>

namespace {

const QDate mardi(2026, 3, 3);

template<typename T>
T *controle(QWidget *d, const char *nom)
{
    auto *c = d->findChild<T *>(QString::fromLatin1(nom));
    if (!c)
        qWarning("no control %s", nom);
    return c;
}

// Radio buttons and boxes are clicked on their indicator, buttons in the middle.
void cliquer(QWidget *d, const char *nom)
{
    auto *b = controle<QAbstractButton>(d, nom);
    QVERIFY(b);
    const QPoint point = qobject_cast<QPushButton *>(b) ? b->rect().center() : QPoint(6, b->height() / 2);
    QTest::mouseClick(b, Qt::LeftButton, {}, point);
}

void taper(QLineEdit *champ, const QString &texte)
{
    champ->selectAll();
    QTest::keyClick(champ, Qt::Key_Delete);
    QTest::keyClicks(champ, texte);
}

CalendarEventPtr rendezVous()
{
    auto e = CalendarEvent::create(40);
    e->setSubject(QStringLiteral("Durand Élodie"));
    e->setStartDateTime(QDateTime(mardi, QTime(9, 0)));
    e->setEndDateTime(QDateTime(mardi, QTime(9, 45)));
    return e;
}

// A daily series from Monday 2 March 2026 at 09:00, with `exceptions` moved
// occurrences.
CalendarEventPtr serie(int exceptions)
{
    auto maitre = CalendarEvent::create(12);
    maitre->setSubject(QStringLiteral("Martin Paul"));
    maitre->setStartDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    maitre->setEndDateTime(QDateTime(QDate(2026, 3, 2), QTime(9, 30)));
    const CalendarRecurrencePatternPtr p = maitre->CreateRecurrence();
    p->setRecurrencePatternID(5);
    for (int i = 0; i < exceptions; ++i) {
        const QDateTime debut(QDate(2026, 3, 4 + i), QTime(9, 0));
        auto e = CalendarEvent::CreateOccurrence(maitre, debut, debut.addSecs(1800));
        e->MarkAsRecurrenceException();
        e->setStartDateTime(debut.addSecs(3600));
        p->SetException(e);
    }
    return maitre;
}

QStringList debuts(const QList<CalendarEventPtr> &evenements)
{
    QStringList resultat;
    for (const CalendarEventPtr &e : evenements)
        resultat << e->StartDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm-")) + e->EndDateTime().toString(QStringLiteral("HH:mm"));
    return resultat;
}

// Opens the dialog through its public entry, the way the editor does, and
// lets `scenario` drive it while it is shown.
int editer(CalendarEventPtr &event, const std::function<void(frmEditRecurrence &)> &scenario)
{
    ExecuteurInstalle executeur([&](QDialog &dialogue) {
        auto &d = static_cast<frmEditRecurrence &>(dialogue);
        d.show();
        scenario(d);
        return d.isVisible() ? -1 : d.result();
    });
    return frmEditRecurrence::Editer(nullptr, event);
}

} // namespace

class tst_frmeditrecurrence : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Horloge::fixer(QDateTime(QDate(2026, 2, 20), QTime(11, 0))); }
    void cleanupTestCase() { Horloge::liberer(); }

    void presentation()
    {
        frmEditRecurrence d(rendezVous());
        d.show();
        QCOMPARE(d.windowTitle(), QStringLiteral("Configurer la Recurrence"));
        const QList<std::pair<const char *, QString>> cadres = {
            {"frameApointmentTime", "Rendez-vous : "},
            {"frameRecurrencePatterm", "Recurrence : "},
            {"frameRangeOfRecurrence", "Etendue de la recurrence : "},
        };
        for (const auto &[nom, titre] : cadres) {
            auto *g = controle<QGroupBox>(&d, nom);
            QVERIFY2(g, nom);
            QCOMPARE(g->title(), titre);
        }
        const QList<std::pair<const char *, QString>> boutons = {
            {"optRecDaily", "Journalière"},
            {"optRecWeekly", "Hebdomadaire"},
            {"optRecMonthly", "Mensuelle"},
            {"optRecYearly", "Annuelle"},
            {"optDailyEveryNdays", "Tous les"},
            {"optDailyEveryWorkDay", "Tous les jours de travail"},
            {"chkWeeklyMonday", "Lundi"},
            {"chkWeeklyTusday", "Mardi"},
            {"chkWeeklySunday", "Dimanche"},
            {"optPatternNoEnd", "Pas de date de fin"},
            {"optPatternEndAfter", "Fin après :"},
            {"optPatternEndByDate", "Fin le :"},
            {"btnOK", "OK"},
            {"btnCancel", "Annuler"},
            {"btnRemoveRecurrence", "Annuler la récurrence"},
        };
        for (const auto &[nom, texte] : boutons) {
            auto *b = controle<QAbstractButton>(&d, nom);
            QVERIFY2(b, nom);
            QCOMPARE(b->text(), texte);
        }
        QStringList libelles;
        for (const QLabel *l : d.findChildren<QLabel *>())
            libelles << l->text();
        for (const char *t : {"Début :", "Fin : ", "Durée : ", "Jour(s)", "Toutes les ", "Semaine(s) le :", "de chaque", "Mois",
                              "Début : ", "ocurrences"})
            QVERIFY2(libelles.contains(QString::fromUtf8(t)), t);

        // A new series: the appointment's own time and length, daily, no end.
        QCOMPARE(d.cmbEventStartTime->currentText(), QStringLiteral("09:00"));
        QCOMPARE(d.cmbEventDuration->currentText(), QStringLiteral("45 minutes"));
        QCOMPARE(d.txtEventEndTime->text(), QStringLiteral("09:45"));
        QCOMPARE(d.cmbEventStartTime->count(), 49);
        QCOMPARE(d.cmbEventDuration->itemText(9), QStringLiteral("2880 minutes (2 Jours)"));
        QVERIFY(d.optRecDaily->isChecked());
        QCOMPARE(d.pages->currentWidget(), d.pageDaily);
        QVERIFY(d.optPatternNoEnd->isChecked());
        QCOMPARE(d.ddPatternStartDate->date(), mardi);
        QCOMPARE(d.txtPatternEndAfter->text(), QStringLiteral("10"));
        QCOMPARE(d.ddPatternEndDate->date(), QDate(2026, 2, 25));
        QCOMPARE(d.cmbMonthlyDayOfMonth->currentText(), QStringLiteral("3"));
        QCOMPARE(d.cmbYearlyTheDay->currentText(), QStringLiteral("Mardi"));
        QVERIFY(!d.btnRemoveRecurrence->isEnabled());
        QVERIFY(d.NouvelleRecurrence());

        // Each kind shows its own page.
        const QList<std::pair<const char *, QWidget *>> pages = {
            {"optRecWeekly", d.pageWeekly}, {"optRecMonthly", d.pageMonthly}, {"optRecYearly", d.pageYearly}, {"optRecDaily", d.pageDaily}};
        const QString captures = qEnvironmentVariable("TAVONEL_CAPTURES");
        for (const auto &[option, page] : pages) {
            cliquer(&d, option);
            QCOMPARE(d.pages->currentWidget(), page);
            if (!captures.isEmpty())
                d.grab().save(captures + QStringLiteral("/frmEditRecurrence-%1.png").arg(page->objectName()));
        }
    }

    // Weekly on Tuesday and Thursday every 2 weeks until a date, made on a
    // plain appointment, then worked out into its days.
    void hebdomadaireJusquAUneDate()
    {
        RepondeurScripte repondeur;
        const CalendarEventPtr original = rendezVous();
        CalendarEventPtr event = original;
        const int resultat = editer(event, [](frmEditRecurrence &d) {
            cliquer(&d, "optRecWeekly");
            QCOMPARE(d.pages->currentWidget(), d.pageWeekly);
            taper(d.txtWeeklyNWeeks, QStringLiteral("2"));
            cliquer(&d, "chkWeeklyTusday");
            cliquer(&d, "chkWeeklyThursday");
            d.cmbEventDuration->setCurrentIndex(4);
            QCOMPARE(d.txtEventEndTime->text(), QStringLiteral("10:00"));
            cliquer(&d, "optPatternEndByDate");
            d.ddPatternEndDate->setDate(QDate(2026, 3, 31));
            cliquer(&d, "btnOK");
        });
        QCOMPARE(resultat, int(frmEditRecurrence::Valide));
        QVERIFY(repondeur.appels().isEmpty());
        QVERIFY(event != original);
        QCOMPARE(original->RecurrenceState(), int(CalendarEvent::NotRecurring));
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::Master));
        const CalendarRecurrencePatternPtr p = event->RecurrencePattern();
        QVERIFY(p);
        QCOMPARE(p->Options().RecurrenceType(), int(CalendarRecurrenceOptions::Weekly));
        QCOMPARE(p->Options().IntervalWeeks(), 2);
        QCOMPARE(p->Options().DayOfWeekMask(), CalendarRecurrenceOptions::Tuesday | CalendarRecurrenceOptions::Thursday);
        QCOMPARE(p->EndMethod(), int(CalendarRecurrencePattern::EndByDate));
        QCOMPARE(debuts(ExpandOccurrences(event, QDate(2026, 3, 1), QDate(2026, 4, 30))),
                 (QStringList{"2026-03-03 09:00-10:00", "2026-03-05 09:00-10:00", "2026-03-17 09:00-10:00",
                              "2026-03-19 09:00-10:00", "2026-03-31 09:00-10:00"}));
    }

    // Any OK on a series with exceptions asks first, changed or not.
    void exceptionsPerdues()
    {
        RepondeurScripte repondeur;
        repondeur.repondre(Prompt::Reponse::Annuler);
        repondeur.repondre(Prompt::Reponse::Annuler);
        repondeur.repondre(Prompt::Reponse::Ok);
        CalendarEventPtr event = serie(2)->CloneEvent();
        const CalendarRecurrencePatternPtr p = event->RecurrencePattern();
        const int resultat = editer(event, [&](frmEditRecurrence &d) {
            QVERIFY(d.btnRemoveRecurrence->isEnabled());
            cliquer(&d, "btnOK");
            QVERIFY(d.isVisible());
            QCOMPARE(p->ExceptionsCount(), 2);
            // Declined after a change: the series already holds the change.
            cliquer(&d, "optRecWeekly");
            cliquer(&d, "btnOK");
            QVERIFY(d.isVisible());
            QCOMPARE(p->Options().RecurrenceType(), int(CalendarRecurrenceOptions::Weekly));
            QCOMPARE(p->ExceptionsCount(), 2);
            cliquer(&d, "btnOK");
        });
        QCOMPARE(resultat, int(frmEditRecurrence::Valide));
        QCOMPARE(event->RecurrencePattern(), p);
        QCOMPARE(p->ExceptionsCount(), 0);
        const QString question =
            QStringLiteral("Toutes les exceptions associées à cette récurrence seront perdues. Êtes vous d'accord ? ");
        QCOMPARE(repondeur.textes(), (QStringList{question, question, question}));
        QCOMPARE(repondeur.appels().constLast().titre, QStringLiteral("Tavonel"));
        QCOMPARE(repondeur.appels().constLast().boutons, Prompt::Boutons::OkAnnuler);
        QCOMPARE(repondeur.imprevus(), 0);
    }

    void retirerLaRecurrence()
    {
        CalendarEventPtr event = serie(1)->CloneEvent();
        const int resultat = editer(event, [](frmEditRecurrence &d) { cliquer(&d, "btnRemoveRecurrence"); });
        QCOMPARE(resultat, int(frmEditRecurrence::RecurrenceRetiree));
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::NotRecurring));
        QVERIFY(!event->RecurrencePattern());
        QCOMPARE(event->StartDateTime(), QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    }

    // Opened on an occurrence or an exception, the dialog edits a copy of
    // the series; after a cancel the caller holds that master, and the shared
    // series is as it was.
    void occurrencePuisAnnuler_data()
    {
        QTest::addColumn<bool>("exception");
        QTest::newRow("occurrence") << false;
        QTest::newRow("exception") << true;
    }
    void occurrencePuisAnnuler()
    {
        QFETCH(bool, exception);
        const CalendarEventPtr maitre = serie(1);
        CalendarEventPtr event = exception ? maitre->RecurrencePattern()->Exceptions().constFirst()
                                           : CalendarEvent::CreateOccurrence(maitre, QDateTime(QDate(2026, 3, 5), QTime(9, 0)),
                                                                             QDateTime(QDate(2026, 3, 5), QTime(9, 30)));
        QCOMPARE(event->RecurrenceState(), exception ? 3 : 2);
        const int resultat = editer(event, [](frmEditRecurrence &d) {
            QVERIFY(d.Occurrence());
            QVERIFY(d.btnRemoveRecurrence->isEnabled());
            QCOMPARE(d.ddPatternStartDate->date(), QDate(2026, 3, 2));
            d.cmbEventStartTime->setCurrentIndex(28);
            QCOMPARE(d.txtEventEndTime->text(), QStringLiteral("14:30"));
            cliquer(&d, "btnCancel");
        });
        QCOMPARE(resultat, int(frmEditRecurrence::Annule));
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::Master));
        QCOMPARE(event->EventID(), 12);
        QVERIFY(event != maitre);
        QVERIFY(event->RecurrencePattern() != maitre->RecurrencePattern());
        QCOMPARE(event->RecurrencePattern()->ExceptionsCount(), 1);
        QCOMPARE(maitre->RecurrencePattern()->StartTime(), QTime(9, 0));
    }

    // The series is made when the dialog opens: a cancel on a plain
    // appointment still hands back a master of a daily series (the record
    // handed in is left alone), which the editor then shows.
    void rendezVousSimplePuisAnnuler()
    {
        const CalendarEventPtr original = rendezVous();
        CalendarEventPtr event = original;
        const int resultat = editer(event, [](frmEditRecurrence &d) { QTest::keyClick(&d, Qt::Key_Escape); });
        QCOMPARE(resultat, int(frmEditRecurrence::Annule));
        QVERIFY(event != original);
        QCOMPARE(original->RecurrenceState(), int(CalendarEvent::NotRecurring));
        QCOMPARE(event->RecurrenceState(), int(CalendarEvent::Master));
        QCOMPARE(event->RecurrencePattern()->Options().RecurrenceType(), int(CalendarRecurrenceOptions::Daily));
        QCOMPARE(event->RecurrencePattern()->DurationMinutes(), 45);
    }

    void serieIntrouvable()
    {
        RepondeurScripte repondeur;
        CalendarEventPtr exception;
        CalendarRecurrencePatternPtr p;
        {
            const CalendarEventPtr maitre = serie(1);
            p = maitre->RecurrencePattern();
            exception = p->Exceptions().constFirst();
        }
        CalendarEventPtr event = exception;
        bool ouvert = false;
        const int resultat = editer(event, [&](frmEditRecurrence &) { ouvert = true; });
        QCOMPARE(resultat, int(frmEditRecurrence::Annule));
        QVERIFY(!ouvert);
        QCOMPARE(event, exception);
        QCOMPARE(repondeur.appels().size(), 1);
        QCOMPARE(repondeur.appels().constFirst().titre, QStringLiteral("Erreur"));
    }

    void saisieDesHeures()
    {
        RepondeurScripte repondeur;
        CalendarEventPtr event = rendezVous();
        const int resultat = editer(event, [&](frmEditRecurrence &d) {
            QLineEdit *debut = d.cmbEventStartTime->lineEdit();
            taper(debut, QStringLiteral("14"));
            QCOMPARE(d.txtEventEndTime->text(), QStringLiteral("09:45"));
            QTest::keyClicks(debut, QStringLiteral(":30"));
            QCOMPARE(d.txtEventEndTime->text(), QStringLiteral("15:15"));
            QCOMPARE(d.Pattern()->StartTime(), QTime(14, 30));

            // A start that is no time keeps the dialog open with a message.
            taper(debut, QStringLiteral("1430"));
            cliquer(&d, "btnOK");
            QVERIFY(d.isVisible());
            QCOMPARE(repondeur.appels().size(), 1);
            QCOMPARE(repondeur.appels().constFirst().titre, QStringLiteral("Erreur"));

            taper(debut, QStringLiteral("16:00"));
            cliquer(&d, "btnOK");
        });
        QCOMPARE(resultat, int(frmEditRecurrence::Valide));
        QCOMPARE(event->RecurrencePattern()->StartTime(), QTime(16, 0));
    }
};

QTEST_MAIN(tst_frmeditrecurrence)
#include "tst_frmeditrecurrence.moc"
