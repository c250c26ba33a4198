#include "calendar/reminderengine.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/daypane.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "shell/window/frmadvancedoptions.h"
#include "shell/window/frmtimezone.h"
#include "support/postetest.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

const QString Ini = QStringLiteral("[Agenda]\nRemindersManEnabled=Vrai\nMAILS=Oui\nSMS=Non\nPrinterRDV=Partie\n"
                                   "PrinterFormat=Rouleau 80 mm\nPrinterEntete=Cabinet|Dr Martin\nMarginL=4\n");

// A started program whose modal dialogs are shown and driven by the test.
struct Poste : PosteTest
{
    std::function<void(QDialog &)> piloter;
    ExecuteurInstalle executeur{[this](QDialog &d) {
        d.show();
        piloter(d);
        return d.result();
    }};

    Poste() : PosteTest(QDateTime(QDate(2026, 11, 23), QTime(10, 0)), Ini) {}

    QString ini(const QString &cle) const
    {
        return LireIni(QStringLiteral("Agenda"), cle, QStringLiteral("?"), prog.chemin() + QStringLiteral("Agenda.ini"));
    }
};

void cocher(QAbstractButton *b)
{
    QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(6, b->height() / 2));
}

void saisir(QLineEdit *e, const QString &texte)
{
    e->clear();
    QTest::keyClicks(e, texte);
}

} // namespace

class tst_optionsdialogues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The printer of PrinterRDV, on the system or gone from it.
    void optionsAvancees_data()
    {
        QTest::addColumn<QStringList>("imprimantes");
        QTest::addColumn<QString>("imprimante");
        QTest::newRow("présente") << QStringList{"Accueil", "Partie"} << "Partie";
        QTest::newRow("partie du système") << QStringList{"Accueil"} << "";
    }

    void optionsAvancees()
    {
        QFETCH(QStringList, imprimantes);
        QFETCH(QString, imprimante);
        frmAdvancedOptions::imprimantes = [imprimantes] { return imprimantes; };
        Poste p;
        CalendarView &calendrier = *p.f->CalendarControl;
        // A state no dialog makes: OK puts the in-place options back.
        CalendarOptions depart = calendrier.options();
        depart.editSubjectByF2 = false;
        depart.editSubjectByTab = true;
        calendrier.setOptions(depart);
        bool pilote = false;
        p.piloter = [&](QDialog &d) {
            auto &o = static_cast<frmAdvancedOptions &>(d);
            QCOMPARE(p.f->DialoguesOuverts, 1);
            // Load: reminders on, the channels from their keys, the ticket keys;
            // the printer that left the system is not selected.
            QVERIFY(o.chkEnableReminders->isChecked() && o.Check1->isChecked() && o.Check2->isEnabled() && !o.Check2->isChecked());
            QCOMPARE(o.Nom_Imprimante->currentText(), imprimante);
            QCOMPARE(o.Fmt_Imp->currentText(), QStringLiteral("Rouleau 80 mm"));
            QCOMPARE(o.Text1->text() + o.txtMarginL->text() + o.txtMarginR->text(), QStringLiteral("Cabinet|Dr Martin47"));
            QVERIFY(!o.chkEditSubject_ByF2->isChecked() && o.chkEditSubject_ByTab->isChecked());
            QVERIFY(o.optTimeMarkForToday->isChecked() && o.chkTimeMarkPrint->isEnabled());
            QVERIFY(o.chkScrollingV_WeekView->isChecked() && !o.chkDisableDragging_ForRecurrenceEvents->isChecked());

            cocher(o.chkEditSubject_ByMouseClick);
            cocher(o.chkTimeMarkPrint);
            cocher(o.optTimeMarkNone);
            QVERIFY(!o.chkTimeMarkPrint->isEnabled());
            for (QCheckBox *c : {o.chkShowMinutes, o.chkUseOutlookFontGlyphs, o.chkScrollingV_WeekView,
                                 o.chkDisableDragging_ForRecurrenceEvents, o.chkEnableReminders})
                cocher(c);
            QVERIFY(!o.Check1->isChecked() && !o.Check1->isEnabled() && !o.Check2->isEnabled());
            QTest::keyClick(o.Fmt_Imp, Qt::Key_Down);
            saisir(o.txtMarginR, QStringLiteral("9"));

            // Agenda.ini cannot be written: the user is told, nothing changes.
            const QString chemin = p.prog.chemin() + QStringLiteral("Agenda.ini");
            QVERIFY(QFile::remove(chemin) && QDir().mkdir(chemin));
            p.repondeur.repondre(Prompt::Reponse::Ok);
            QTest::mouseClick(o.cmdOK, Qt::LeftButton);
            QVERIFY(o.isVisible());
            QVERIFY(p.repondeur.textes().join(QString()).contains(QStringLiteral("n'ont pas pu être enregistrées")));
            QVERIFY(calendrier.options().timeMarkMode == 1 && appState().MoteurRappels->isEnabled());

            QVERIFY(QDir().rmdir(chemin));
            p.prog.ecrire(QStringLiteral("Agenda.ini"), Ini);
            QTest::mouseClick(o.cmdOK, Qt::LeftButton);
            pilote = true;
        };
        p.f->mnuAdvancedOptions->trigger();
        QVERIFY(pilote);
        QCOMPARE(p.f->DialoguesOuverts, 0);

        QStringList cles;
        for (const char *cle : {"RemindersManEnabled", "MAILS", "SMS", "PrinterRDV", "PrinterFormat", "PrinterEntete", "MarginL", "MarginR"})
            cles << p.ini(QLatin1String(cle));
        QCOMPARE(cles, QStringList({"0", "Non", "Non", imprimante, "Rouleau 58 mm", "Cabinet|Dr Martin", "4", "9"}));

        const CalendarOptions &o = calendrier.options();
        QVERIFY(o.editSubjectByF2 && !o.editSubjectByMouseClick && !o.editSubjectByTab);
        QCOMPARE(o.timeMarkMode, 0);
        QVERIFY(!o.showMinutes && o.useOutlookFontGlyphs);
        QVERIFY(p.f->disableDraggingRecurrenceEvents() && !p.f->scrollingVWeekView() && p.f->scrollingVDayView());
        QVERIFY(!p.f->rappelsActifs());
        QVERIFY(!appState().RappelsMails && !appState().RappelsSMS);
    }

    void fuseauHoraire()
    {
        Poste p;
        CalendarView &calendrier = *p.f->CalendarControl;
        calendrier.setViewType(CalendarViewType::Day);
        const int largeurEchelle = calendrier.findChild<DayPane *>()->timeScaleRect().width();
        p.piloter = [&](QDialog &d) {
            auto &z = static_cast<frmTimeZone &>(d);
            QCOMPARE(p.f->DialoguesOuverts, 1);
            QCOMPARE(z.cmbTimeZone->currentText(), QStringLiteral("(UTC+01:00) Europe/Paris"));
            QVERIFY(!z.cmbTimeZone->isEnabled() && !z.chkAutoAdjustDaylight1->isEnabled());
            QVERIFY(z.chkAutoAdjustDaylight1->isVisible() && z.chkAutoAdjustDaylight1->isChecked());
            QCOMPARE(z.cmbTimeZone2->currentText(), QStringLiteral("(UTC+01:00) Europe/Paris"));
            QVERIFY(!z.chkShowAdditionalTimeZone->isChecked() && !z.cmbTimeZone2->isEnabled() && !z.txtLabel2->isEnabled());

            saisir(z.txtLabel, QStringLiteral("Paris"));
            cocher(z.chkShowAdditionalTimeZone);
            QVERIFY(z.cmbTimeZone2->isEnabled() && z.txtLabel2->isEnabled());
            saisir(z.txtLabel2, QStringLiteral("New York"));
            z.cmbTimeZone2->setCurrentIndex(z.cmbTimeZone2->findText(QStringLiteral("(UTC+09:00) Asia/Tokyo")));
            QVERIFY(!z.chkAutoAdjustDaylight2->isEnabled() && !z.chkAutoAdjustDaylight2->isChecked());
            z.cmbTimeZone2->setCurrentIndex(z.cmbTimeZone2->findText(QStringLiteral("(UTC-05:00) America/New_York")));
            QVERIFY(z.chkAutoAdjustDaylight2->isEnabled() && z.chkAutoAdjustDaylight2->isChecked());
            cocher(z.chkAutoAdjustDaylight2);
            QTest::mouseClick(z.cmdOK, Qt::LeftButton);
        };
        p.f->mnuChangeTimeZone->trigger();
        QCOMPARE(p.f->DialoguesOuverts, 0);
        const CalendarOptions &o = calendrier.options();
        QCOMPARE(o.timeScaleCaption + QLatin1Char('/') + o.additionalTimeScaleCaption, QStringLiteral("Paris/New York"));
        QVERIFY(o.showAdditionalTimeZone && o.additionalTimeZone.id == "America/New_York");
        QVERIFY(o.additionalTimeZone.biais == -300 && !AjustementActif(o.additionalTimeZone));
        // The day view now draws the second scale beside the first.
        QCOMPARE(calendrier.findChild<DayPane *>()->timeScaleRect().width(), 2 * largeurEchelle);

        // Opened again: the zone and its adjustment as chosen; Cancel keeps all.
        const CalendarOptions avant = o;
        p.piloter = [&](QDialog &d) {
            auto &z = static_cast<frmTimeZone &>(d);
            QCOMPARE(z.cmbTimeZone2->currentText(), QStringLiteral("(UTC-05:00) America/New_York"));
            QVERIFY(z.chkAutoAdjustDaylight2->isEnabled() && !z.chkAutoAdjustDaylight2->isChecked());
            cocher(z.chkShowAdditionalTimeZone);
            QTest::mouseClick(z.cmdCancel, Qt::LeftButton);
        };
        p.f->mnuChangeTimeZone->trigger();
        QVERIFY(calendrier.options() == avant);
    }
};

QTEST_MAIN(tst_optionsdialogues)
#include "tst_optionsdialogues.moc"
