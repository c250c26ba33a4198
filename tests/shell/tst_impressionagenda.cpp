#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/colorationregles.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "shell/window/impressionagenda.h"
#include "shell/window/miseenpage.h"
#include "support/postetest.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTimeEdit>
#include <QtTest>

namespace {

// Wednesday 25 November 2026, in the work week of Monday 23.
const QDateTime Maintenant(QDate(2026, 11, 25), QTime(10, 15, 7));
const QDate Lundi(2026, 11, 23);

// What a poppler tool writes about a file; a tool that cannot run fails the check that reads it.
QString poppler(const QString &outil, const QStringList &arguments)
{
    QProcess p;
    p.start(outil, arguments);
    if (!p.waitForFinished(30000) || p.exitCode() != 0)
        return QStringLiteral("<%1 en échec>").arg(outil);
    return QString::fromUtf8(p.readAllStandardOutput()).simplified();
}

// A started agenda (Demarrage reads Agenda.ini as the program does) with its calendar and the
// print commands; the printer writes agenda.pdf, and every preview is recorded with its title,
// its pages, and whether the PDF had already been written then.
struct Poste : PosteTest
{
    QWidget fenetre;
    CalendarView *vue = nullptr;
    ImpressionAgenda *impression = nullptr;
    QStringList apercus;
    std::function<int(DialogueMiseEnPage &)> miseEnPage;
    ExecuteurInstalle executeur{[this](QDialog &d) {
        if (auto *m = qobject_cast<DialogueMiseEnPage *>(&d))
            return miseEnPage(*m);
        auto *apercu = d.findChild<QPrintPreviewWidget *>();
        apercu->updatePreview();
        apercus.append(QStringLiteral("%1:%2%3").arg(d.windowTitle()).arg(apercu->pageCount()).arg(QFile::exists(pdf()) ? "+pdf" : ""));
        return int(QDialog::Rejected);
    }};

    explicit Poste(const QString &agendaIni = {}) : PosteTest(Maintenant, agendaIni, false)
    {
        vue = new CalendarView(&fenetre);
        vue->setDataProvider(appState().Calendrier.get());
        vue->setLabels(parametres.libelles);
        vue->setCellPainter(&ColorerCelluleSelonRegles);
        impression = new ImpressionAgenda(*vue, parametres, &fenetre);
        impression->imprimante().setOutputFileName(pdf());
        impression->imprimante().setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(5, 5, 5, 5), QPageLayout::Millimeter));
    }
    QString pdf() const { return prog.chemin() + QStringLiteral("agenda.pdf"); }
    void ajouter(const QString &sujet, int jour, QTime debut, int minutes, int presence = 1, bool journee = false) const
    {
        const QDateTime d(Lundi.addDays(jour), journee ? QTime(0, 0) : debut);
        CalendarEventPtr e = appState().Calendrier->CreateNewEvent(d, d.addSecs(journee ? 86400 : 60 * minutes));
        e->setSubject(sujet);
        e->setLabelID(2);
        e->setBusyStatus(presence);
        e->setIsAllDayEvent(journee);
        QVERIFY(appState().Calendrier->AddEvent(e));
    }
};

} // namespace

class tst_impressionagenda : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::French, QLocale::France)); }

    void imprimer_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("ini");
        QTest::addColumn<bool>("paysage");
        QTest::addColumn<QStringList>("presents");
        QTest::addColumn<QStringList>("absents");
        const QString elargi = QStringLiteral("[Agenda]\nPrintOptions.PrintFromToExactly=0\n");
        QTest::newRow("semaine de travail, premier lancement: 08:00-20:00 exactement")
            << 1 << QString() << false
            << QStringList{"lun., 23 novembre", "ven., 27 novembre", "08:00", "19:00", "✔ 09:00 DUPONT Marie", "Congrès"}
            << QStringList{"07:00", "MATINAL", "TARDIF", "20:00", "sam., 28"};
        QTest::newRow("semaine de travail élargie aux rendez-vous")
            << 1 << elargi << false << QStringList{"07:00 MATINAL", "20:30 TARDIF", "07:00 07:30", "20:00 20:30"}
            << QStringList{"06:", "21:00"};
        QTest::newRow("semaine") << 2 << QString() << false
                                 << QStringList{"lun., 23 novembre", "dim., 29 novembre", "09:00 ✔ DUPONT Marie", "07:00 MATINAL", "Congrès"}
                                 << QStringList{"08:00"};
        QTest::newRow("mois en paysage") << 3 << elargi << true
                                         << QStringList{"Novembre 2026", "lundi", "dimanche", "S48", "déc. 1", "09:00 ✔ DUPONT Marie"}
                                         << QStringList{"lun., 23"};
    }
    void imprimer()
    {
        QFETCH(int, type);
        QFETCH(QString, ini);
        QFETCH(bool, paysage);
        QFETCH(QStringList, presents);
        QFETCH(QStringList, absents);
        Poste p(ini);
        p.ajouter(QStringLiteral("DUPONT Marie"), 0, QTime(9, 0), 30, 0);
        p.ajouter(QStringLiteral("MATINAL"), 1, QTime(7, 0), 30);
        p.ajouter(QStringLiteral("TARDIF"), 3, QTime(20, 30), 30);
        p.ajouter(QStringLiteral("Congrès"), 2, {}, 0, 1, true);
        p.impression->imprimante().setPageOrientation(paysage ? QPageLayout::Landscape : QPageLayout::Portrait);
        p.vue->setViewType(static_cast<CalendarViewType>(type));
        p.vue->ShowDay(Maintenant.date());
        p.vue->Populate();
        p.impression->imprimer();

        const QString info = poppler(QStringLiteral("pdfinfo"), {p.pdf()});
        QVERIFY2(info.contains(QStringLiteral("Pages: 1 ")), qPrintable(info));
        QVERIFY2(info.contains(paysage ? QStringLiteral("842 x 595 pts (A4)") : QStringLiteral("595 x 842 pts (A4)")),
                 qPrintable(info));
        const QString texte = poppler(QStringLiteral("pdftotext"), {p.pdf(), QStringLiteral("-")});
        presents << "Tavonel" << "Agenda" << "Page 1 of 1" << "Tavonel - agenda du cabinet médical"
                 << "Imprimé le : 25/11/2026" << "à : 10:15:07";
        for (const QString &mot : std::as_const(presents))
            QVERIFY2(texte.contains(mot), qPrintable(mot + QStringLiteral(" manque dans : ") + texte));
        for (const QString &mot : std::as_const(absents))
            QVERIFY2(!texte.contains(mot), qPrintable(mot + QStringLiteral(" est de trop dans : ") + texte));
    }

    // Print runs the preview first, then prints; the title "Tavonel" is given by the preview
    // only; every command takes its own date and time.
    void apercuPuisImpression()
    {
        Poste p;
        p.vue->ShowDay(Maintenant.date());
        p.impression->imprimer();
        QVERIFY(QFile::remove(p.pdf()));
        Horloge::fixer(Maintenant.addSecs(125));
        p.impression->previsualiser();
        QCOMPARE(p.impression->options().pied[2], QStringLiteral("à : 10:17:12"));
        QVERIFY(!QFile::exists(p.pdf()));
        p.impression->imprimer();
        QVERIFY(QFile::exists(p.pdf()));
        QCOMPARE(p.apercus, (QStringList{"Print Preview: Tavonel:1", "Tavonel:1", "Tavonel:1"}));
        QCOMPARE(p.repondeur.appels().size(), 0);
    }

    void miseEnPage_data()
    {
        QTest::addColumn<QString>("bouton");
        QTest::addColumn<QStringList>("cles");
        QTest::newRow("Annuler: les valeurs de départ") << "cmdCancel" << QStringList{"08:00:00", "20:00:00", "-1"};
        QTest::newRow("OK: les valeurs saisies") << "cmdOK" << QStringList{"07:30:00", "18:00:00", "0"};
    }
    void miseEnPage()
    {
        QFETCH(QString, bouton);
        QFETCH(QStringList, cles);
        Poste p;
        p.miseEnPage = [&](DialogueMiseEnPage &d) {
            d.show();
            d.txtPrintFrom->setTime(QTime(7, 30));
            d.txtPrintTo->setTime(QTime(18, 0));
            d.txtMarge[2]->setValue(12);
            for (QAbstractButton *b : std::initializer_list<QAbstractButton *>{d.chkPrintFromToExactly, d.optPaysage})
                QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(6, b->height() / 2));
            QTest::mouseClick(d.findChild<QPushButton *>(bouton), Qt::LeftButton);
            return d.result();
        };
        p.impression->miseEnPage();
        const bool ok = bouton == u"cmdOK";
        QCOMPARE(p.impression->imprimante().pageLayout().orientation(), ok ? QPageLayout::Landscape : QPageLayout::Portrait);
        QCOMPARE(p.impression->imprimante().pageLayout().margins(QPageLayout::Millimeter).left(), ok ? 12.0 : 5.0);
        QStringList lues;
        for (const char *cle : {"PrintFrom", "PrintTo", "PrintFromToExactly"})
            lues << LireIni(QStringLiteral("Agenda"), QStringLiteral("PrintOptions.") + cle, QStringLiteral("?"), p.prog.chemin() + "Agenda.ini");
        QCOMPARE(lues, cles);
        // The next start reads them back.
        AppState etat;
        Demarrage suivant(etat, p.prog.chemin());
        ParametresFenetre relus;
        QVERIFY(!suivant.initialiser(QString()) && !suivant.charger(relus));
        QCOMPARE((QStringList{relus.printFrom, relus.printTo, QString::number(relus.printFromToExactly)}), cles);
    }
};

QTEST_MAIN(tst_impressionagenda)
#include "tst_impressionagenda.moc"
