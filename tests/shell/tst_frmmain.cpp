#include "appointments/frmeditevent.h"
#include "appointments/paquetrdv.h"
#include "calendar/reminderengine.h"
#include "calendar/view/datepicker.h"
#include "patients/bouclesrecherche.h"
#include "patients/gestiontype.h"
#include "rules/frmsettings.h"
#include "shell/base/modal.h"
#include "shell/base/profilini.h"
#include "shell/window/impressionagenda.h"
#include "support/postetest.h"

#include <QAction>
#include <QDialog>
#include <QElapsedTimer>
#include <QPrinter>
#include <QProcess>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QScreen>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QHelpEvent>
#include <QToolTip>
#include <QtTest>

#include <memory>
#include <functional>
#include <optional>

namespace {

// Monday 23 November 2026, 10:00.
const QDateTime Maintenant(QDate(2026, 11, 23), QTime(10, 0));

// Receives the documents that the program hands to the desktop.
class OuvreurUrl : public QObject
{
    Q_OBJECT
public:
    explicit OuvreurUrl(QList<QUrl> *urls) : m_urls(urls) {}
public Q_SLOTS:
    void ouvrir(const QUrl &url) { m_urls->append(url); }
private:
    QList<QUrl> *m_urls;
};

// The started program; the occurrence-or-series chooser answers from a queue,
// and context menus are recorded instead of shown.
struct Poste : PosteTest
{
    QList<ChoixOccurrence> choix;
    QStringList questionsChoix;
    // The modal dialogs run by the window: the editor's record, closed at once.
    QList<CalendarEventPtr> editeurs;
    ExecuteurInstalle executeur{[this](QDialog &d) {
        if (auto *e = qobject_cast<frmEditEvent *>(&d))
            editeurs.append(e->evenement());
        return int(QDialog::Rejected);
    }};

    Poste() : PosteTest(Maintenant)
    {
        f->afficherMenu = [](QMenu *, const QPoint &) {};
        f->choisirOccurrenceOuSerie = [this](bool suppression, const QString &sujet) {
            questionsChoix.append((suppression ? QStringLiteral("effacer:") : QStringLiteral("ouvrir:")) + sujet);
            return choix.isEmpty() ? ChoixOccurrence::Annule : choix.takeFirst();
        };
    }

    CalendarDataProvider &store() const { return *appState().Calendrier; }

    CalendarEventPtr ajouter(const QString &sujet, const QDateTime &debut, bool serie = false) const
    {
        CalendarEventPtr e = store().CreateNewEvent(debut, debut.addSecs(30 * 60));
        e->setSubject(sujet);
        ChampsRdv champs;
        champs[ChampRdv::Nom] = sujet;
        champs[ChampRdv::NumeroPatient] = QStringLiteral("12");
        e->setBody(PackerBody(champs));
        e->setBusyStatus(1);
        if (serie)
            e->CreateRecurrence();
        store().AddEvent(e);
        return e;
    }

    // The appointments of a day as the store has them now, "HH:mm subject".
    QStringList jour(const QDate &d) const
    {
        QStringList r;
        for (const CalendarEventPtr &e : store().RetrieveDayEvents(d))
            r.append(e->StartDateTime().toString(QStringLiteral("HH:mm ")) + e->Subject());
        return r;
    }

    CalendarEventPtr premierDuJour(const QDate &d) const
    {
        const QList<CalendarEventPtr> l = store().RetrieveDayEvents(d);
        return l.isEmpty() ? CalendarEventPtr() : l.first();
    }

    QAction *action(const QString &nom) const { return f->findChild<QAction *>(nom); }

    // The window shown at 1200x800 on its work week; then the first point of
    // the view, row after row, whose hit passes the test.
    CalendarView *montrer()
    {
        f->resize(1200, 800);
        f->show();
        [this] { QVERIFY(QTest::qWaitForWindowExposed(f.get())); }();
        f->actualiser();
        return f->CalendarControl;
    }
    std::optional<QPoint> chercher(const std::function<bool(const CalendarHit &)> &critere) const
    {
        for (int y = 5; y < f->CalendarControl->height(); y += 4)
            for (int x = 2; x < f->CalendarControl->width(); x += 7)
                if (critere(f->CalendarControl->hitTest(QPoint(x, y))))
                    return QPoint(x, y);
        return std::nullopt;
    }
    QString etat() const { return f->StatusBar->currentMessage(); }
};

CalendarHit surRendezVous(const CalendarEventPtr &e)
{
    CalendarHit h;
    h.event = e;
    h.area = HitEvent;
    return h;
}

} // namespace

class tst_frmmain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { RetourRecherche = 0; }

    // Another station (a real process) holds Events.mdb: the refresh waits
    // briefly, keeps the week it showed and says why in the status line;
    // once the file is free the next refresh clears the message.
    void rafraichissementPendantUnVerrou()
    {
        Poste p;
        frmMain &f = *p.f;
        p.ajouter(QStringLiteral("DUPONT"), Maintenant);
        f.actualiser();
        QCOMPARE(f.CalendarControl->shownEvents().size(), 1);
        QProcess tenue;
        tenue.start(qEnvironmentVariable("TAVONEL_ADMIN_EXE"),
                    {QStringLiteral("hold-lock"), p.prog.chemin() + QStringLiteral("Events.mdb"), QStringLiteral("3")});
        QVERIFY2(tenue.waitForReadyRead(10000), "hold-lock n'a pas démarré");
        QElapsedTimer duree;
        duree.start();
        f.actualiser();
        QVERIFY2(duree.elapsed() < 2000, qPrintable(QString::number(duree.elapsed())));
        QCOMPARE(f.CalendarControl->shownEvents().size(), 1);
        QCOMPARE(f.StatusBar->currentMessage(), TexteAgendaOccupe());
        QVERIFY(tenue.waitForFinished(10000));
        f.actualiser();
        QCOMPARE(f.StatusBar->currentMessage(), QString());
        QCOMPARE(p.repondeur.appels().size(), 0);
    }

    void fenetreDeDepart()
    {
        Poste p;
        frmMain &f = *p.f;
        QCOMPARE(f.windowTitle(), QStringLiteral("Tavonel : Agenda"));
        QCOMPARE(f.findChild<QLabel *>(QStringLiteral("lblCaption"))->text(), QStringLiteral("Agenda"));
        QCOMPARE(f.findChild<QLabel *>(QStringLiteral("lblDate"))->text(),
                 QStringLiteral("Semaine 48 : lundi 23 novembre 2026 - vendredi 27 novembre 2026"));
        QCOMPARE(f.CalendarControl->viewType(), CalendarViewType::WorkWeek);
        QCOMPARE(f.CalendarControl->workDayBegin(), QTime(8, 0));
        QCOMPARE(f.CalendarControl->theme(), 3);
        QCOMPARE(f.CalendarControl->dataProvider(), appState().Calendrier.get());
        auto *timer1 = f.findChild<QTimer *>(QStringLiteral("Timer1"));
        QCOMPARE(timer1->interval(), 10000);
        QVERIFY(timer1->isActive());
        auto *rmd = f.findChild<QTimer *>(QStringLiteral("timerRMDForm"));
        QCOMPARE(rmd->interval(), 1000);
        QVERIFY(!rmd->isActive());
        QCOMPARE(f.DialoguesOuverts, 0);
        QCOMPARE(p.repondeur.appels().size(), 0);
        // The patient search bar shows, the other one does not.
        f.show();
        QVERIFY(f.findChild<QToolBar *>(QStringLiteral("KelmoToolbar1"))->isVisible());
        QVERIFY(!f.findChild<QToolBar *>(QStringLiteral("Toolbar"))->isVisible());
    }

    // Every item: caption, shortcut, enabled and visible at start.
    void menus()
    {
        struct Item
        {
            const char *nom;
            QString legende;
            const char *raccourci = "";
            bool actif = true;
            bool visible = true;
        };
        const QList<Item> items{
            {"mnuFile", QStringLiteral("&Fichier")},
            {"mnuOpenDataProvider", QStringLiteral("&Ouvrir"), "", true},
            {"mnuPageSetup", QStringLiteral("&Mise en Page")},
            {"mnuPrintPreview", QStringLiteral("Pré&visualisation")},
            {"mnuPrintCalendar", QStringLiteral("Im&pression"), "Ctrl+P"},
            {"mnuExit", QStringLiteral("&Quitter")},
            {"mnuEdit", QStringLiteral("&Edition")},
            {"mnuCopy", QStringLiteral("Copier"), "Ctrl+C", false},
            {"mnuCut", QStringLiteral("Couper"), "Ctrl+X", false},
            {"mnuPaste", QStringLiteral("Coller"), "Ctrl+V", false},
            {"mnuCalendar", QStringLiteral("Outils")},
            {"mnuSettings", QStringLiteral("&Options de l'agenda"), "Ctrl+O"},
            {"mnuAdvancedOptions", QStringLiteral("Options &Avancées"), "Ctrl+A"},
            {"mnuThemes", QStringLiteral("&Thèmes")},
            {"mnuCaptionBarPopup", QStringLiteral("Barre de commande")},
            {"mnuShowTheme2007CaptionBar", QStringLiteral("Afficher/Cacher la barre")},
            {"mnuCaptionBarSwitch", QStringLiteral("Afficher les boutons")},
            {"mnuCaptionBarLayout", QStringLiteral("Barre à une seule colonne")},
            {"mnuRappels", QStringLiteral("Rappels")},
            {"mnuReminders", QStringLiteral("&Rappels de rendez-vous"), "Ctrl+R", false},
            {"mnuSMSConfig", QStringLiteral("Configuration des rappels Mails et/ou SMS")},
            {"mnuAide", QStringLiteral("?")},
            {"mnuHelp", QStringLiteral("Aide")},
            {"mnuAbout", QStringLiteral("&A propos d'Tavonel")},
            {"mnuOpenEvent", QStringLiteral("&Ouvrir")},
            {"mnuDeleteEvent", QStringLiteral("&Supprimer")},
            {"mnuPatientEnSalle", QStringLiteral("&Patient en salle d'attente")},
            {"mnuPatientSorti", QStringLiteral("Patient s&orti de salle d'attente")},
            {"mnuNewEvent", QStringLiteral("&Nouveau Rendez-Vous")},
            {"mnuNewEvent2", QStringLiteral("&Nouveau Rendez-Vous")},
            {"mnuChangeTimeZone", QStringLiteral("Changer de &Zone")},
            // Hidden: in the tree, never shown (a hidden action is disabled too).
            {"mnuMultiSchedulesSimple", {}, "", false, false},
            {"mnuMultiSchedulesExtended", {}, "", false, false},
            {"mnuResourcesManager", {}, "", false, false},
            {"mnuRTL", {}, "", false, false},
            {"mnuEnableMarkup", {}, "", false, false},
            {"mnuCustomIcons", {}, "", false, false},
            {"mnuCustomText", {}, "", false, false},
            {"mnuContextMenu", {}, "", false, false},
        };
        Poste p;
        for (const Item &i : items) {
            const QString nom = QString::fromLatin1(i.nom);
            QAction *a = p.action(nom);
            if (auto *m = p.f->findChild<QMenu *>(nom))
                a = m->menuAction();
            QVERIFY2(a, i.nom);
            QVERIFY2(i.legende.isEmpty() || a->text() == i.legende, i.nom);
            QVERIFY2(a->shortcut() == QKeySequence(QString::fromLatin1(i.raccourci)), i.nom);
            QVERIFY2(a->isEnabled() == i.actif, i.nom);
            QVERIFY2(a->isVisible() == i.visible, i.nom);
        }
    }

    void menusContextuels()
    {
        Poste p;
        auto legendes = [](QMenu *m) {
            QStringList r;
            for (QAction *a : m->actions())
                if (!a->isSeparator())
                    r.append(a->text());
            return r;
        };
        QCOMPARE(legendes(p.f->mnuContextTimeScale),
                 (QStringList{QStringLiteral("&Nouveau Rendez-Vous"), QStringLiteral("Changer de &Zone"), QStringLiteral("6&0 Minutes"),
                              QStringLiteral("&30 Minutes"), QStringLiteral("&15 Minutes"), QStringLiteral("10 &Minutes"),
                              QStringLiteral("&5 Minutes")}));
        QCOMPARE(p.f->mnuContexEditEvent->parent(), p.f->mnuContextMenu);
        QCOMPARE(legendes(p.f->mnuContextNewEvent), QStringList{QStringLiteral("&Nouveau Rendez-Vous")});
        // The five scales set the day view's step.
        for (int i : {4, 2, 0}) {
            p.action(QStringLiteral("mnuTimeScale(%1)").arg(i))->trigger();
            QCOMPARE(p.f->CalendarControl->timeScale(), (QList<int>{60, 30, 15, 10, 5}).at(i));
        }
    }

    // Real clicks of the mouse on the calendar: the view's hit test decides
    // which menu the window asks for, and a double click on an appointment
    // opens it.
    void clicsSouris()
    {
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant);
        CalendarView *vue = p.montrer();
        auto cliquer = [&](const QPoint &pos, bool droit) {
            QWidget *cible = vue->childAt(pos);
            QVERIFY(cible);
            const QPoint local = cible->mapFrom(vue, pos);
            if (droit)
                QTest::mouseClick(cible, Qt::RightButton, {}, local);
            else
                QTest::mouseDClick(cible, Qt::LeftButton, {}, local);
        };

        const auto echelle = p.chercher([](const CalendarHit &h) { return h.area == HitTimeScale; });
        QVERIFY(echelle);
        cliquer(*echelle, true);
        QCOMPARE(p.f->menuContextuelDemande(), p.f->mnuContextTimeScale);

        const auto rdv = p.chercher([](const CalendarHit &h) { return bool(h.event); });
        QVERIFY(rdv);
        cliquer(*rdv, true);
        QCOMPARE(p.f->menuContextuelDemande(), p.f->mnuContexEditEvent);
        QCOMPARE(p.f->evenementCible()->Subject(), QStringLiteral("A"));
        // The pointer resting on it shows its hours and subject, unless the
        // tool tips are off (mode 2).
        QWidget *zone = vue->childAt(*rdv);
        QHelpEvent aide(QEvent::ToolTip, zone->mapFrom(vue, *rdv), vue->mapToGlobal(*rdv));
        p.f->setToolTips_Mode(2);
        QApplication::sendEvent(zone, &aide);
        QVERIFY(QToolTip::text().isEmpty());
        p.f->setToolTips_Mode(0);
        QApplication::sendEvent(zone, &aide);
        QCOMPARE(QToolTip::text(), QStringLiteral("10:00-10:30 A"));
        QToolTip::hideText();
        cliquer(*rdv, false);
        QVERIFY(p.f->dernierEvenementOuvert());
        QCOMPARE(p.f->dernierEvenementOuvert()->Subject(), QStringLiteral("A"));

        const auto cellule = p.chercher([](const CalendarHit &h) { return h.area == HitDayCell && !h.event; });
        QVERIFY(cellule);
        cliquer(*cellule, true);
        QCOMPARE(p.f->menuContextuelDemande(), p.f->mnuContextNewEvent);
    }

    void boutons()
    {
        const QList<QPair<int, QString>> l{
            {1, QStringLiteral("Affichage journalier")}, {2, QStringLiteral("Affichage semaine de travail")},
            {3, QStringLiteral("Affichage hebdomadaire")}, {4, QStringLiteral("Affichage mensuel")}, {6, QStringLiteral("Couper")},
            {7, QStringLiteral("Copier")}, {8, QStringLiteral("Coller")}, {12, QStringLiteral("Ouvrir")},
            {14, QStringLiteral("Mise en Page")}, {15, QStringLiteral("Prévisualiser")}, {16, QStringLiteral("Imprimer")}};
        Poste p;
        for (const auto &[numero, conseil] : l) {
            const QByteArray n = QByteArray::number(numero);
            QAction *kelmo = p.action(QStringLiteral("KelmoToolbar1(%1)").arg(numero));
            QAction *autre = p.action(QStringLiteral("Toolbar(%1)").arg(numero));
            QVERIFY2(kelmo && autre, n);
            QCOMPARE(kelmo->toolTip(), conseil);
            QCOMPARE(autre->toolTip(), numero == 12 ? QStringLiteral("Bases de données") : conseil);
            QVERIFY2(!kelmo->icon().isNull(), n);
            // Cut, copy and paste follow the view from the start.
            QVERIFY2(kelmo->isEnabled() == (numero < 6 || numero > 8), n);
        }
        QVERIFY(p.action(QStringLiteral("Toolbar(12)"))->isEnabled());
        // The buttons of both bars follow the menu items.
        QCOMPARE(p.f->boutonsToolbar.size(), l.size());
        QCOMPARE(p.f->boutonsKelmo.size(), l.size());
        {
            // Buttons 14 to 16: the page setup, the preview, then the print
            // through the preview to the printer (a PDF file here).
            QStringList dialogues;
            ExecuteurInstalle enregistreur([&](QDialog &d) {
                dialogues.append(QString::fromLatin1(d.metaObject()->className()));
                return int(QDialog::Rejected);
            });
            const QString pdf = p.prog.chemin() + QStringLiteral("agenda.pdf");
            p.f->findChild<ImpressionAgenda *>()->imprimante().setOutputFileName(pdf);
            for (int numero : {14, 15, 16})
                p.action(QStringLiteral("KelmoToolbar1(%1)").arg(numero))->trigger();
            QCOMPARE(dialogues, (QStringList{"DialogueMiseEnPage", "QPrintPreviewDialog", "QPrintPreviewDialog"}));
            QVERIFY(QFileInfo(pdf).size() > 0);
        }
        // The shortcuts work from the calendar.
        p.f->show();
        QApplication::setActiveWindow(p.f.get());
        QVERIFY(QTest::qWaitForWindowActive(p.f.get()));
        p.f->CalendarControl->setFocus();
        // Ctrl+O opens the configuration; its display choices take hold on
        // OK (Friday off, Saturday on).
        QStringList ouverts;
        ExecuteurInstalle executeur([&](QDialog &d) {
            ouverts << d.objectName();
            auto &reglages = dynamic_cast<frmSettings &>(d);
            reglages.chkWorkDay[6]->setChecked(false);
            reglages.chkWorkDay[7]->setChecked(true);
            reglages.cmbTimeScale->setCurrentText(QStringLiteral("20 minutes"));
            reglages.cmbWeeksCount->setCurrentText(QStringLiteral("3"));
            reglages.cmdOk_Click();
            return d.result();
        });
        QTest::keyClick(p.f->CalendarControl, Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(ouverts, QStringList{QStringLiteral("frmSettings")});
        QCOMPARE(p.f->CalendarControl->shownDaysCount(), 5);
        QCOMPARE(p.f->CalendarControl->shownDay(4).dayOfWeek(), 6);
        QCOMPARE(p.f->CalendarControl->timeScale(), 20);
        QCOMPARE(p.f->CalendarControl->options().monthWeeksCount, 3);
    }

    // The window fits the screen; the about window counts as a dialog and
    // goes on a click; help opens the guide delivered with the program.
    void aProposAideEtFenetre()
    {
        Poste p;
        QVERIFY(p.f->height() <= std::min(720, p.f->screen()->availableGeometry().height() - 40));
        int ouverts = -1;
        ExecuteurInstalle executeur([&](QDialog &d) {
            d.show();
            ouverts = p.f->DialoguesOuverts;
            QTest::mouseClick(&d, Qt::LeftButton);
            return d.result();
        });
        p.action(QStringLiteral("mnuAbout"))->trigger();
        QCOMPARE(ouverts, 1);
        p.action(QStringLiteral("mnuSMSConfig"))->trigger();
        QCOMPARE(ouverts, 1);
        QCOMPARE(p.f->DialoguesOuverts, 0);
        QList<QUrl> urls;
        OuvreurUrl ouvreur{&urls};
        QDesktopServices::setUrlHandler(QStringLiteral("file"), &ouvreur, "ouvrir");
        p.action(QStringLiteral("mnuHelp"))->trigger();
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        QCOMPARE(urls.size(), 1);
        QVERIFY(QFile(urls.first().toLocalFile()).size() > 5000);
    }

    // The view buttons and the date line, in the order a user would click.
    void vuesEtLigneDate()
    {
        Poste p;
        frmMain &f = *p.f;
        const QLabel *ligne = f.lblDate;
        p.action(QStringLiteral("KelmoToolbar1(1)"))->trigger();
        QCOMPARE(f.CalendarControl->viewType(), CalendarViewType::Day);
        QCOMPARE(ligne->text(), QStringLiteral("Semaine 48 : lundi 23 novembre 2026"));

        // The caption jumps to tomorrow, not to today.
        f.show();
        QTest::mouseClick(f.lblCaption, Qt::LeftButton);
        QCOMPARE(f.CalendarControl->shownDay(0), QDate(2026, 11, 24));
        QCOMPARE(ligne->text(), QStringLiteral("Semaine 48 : mardi 24 novembre 2026"));

        p.action(QStringLiteral("KelmoToolbar1(2)"))->trigger();
        QCOMPARE(f.CalendarControl->viewType(), CalendarViewType::WorkWeek);
        f.CalendarControl->ShowDay(QDate(2026, 12, 30));
        QCOMPARE(ligne->text(), QStringLiteral("Semaine 53 : lundi 28 décembre 2026 - vendredi 1 janvier 2027"));

        p.action(QStringLiteral("KelmoToolbar1(3)"))->trigger();
        QCOMPARE(f.CalendarControl->viewType(), CalendarViewType::Week);
        QVERIFY2(ligne->text().startsWith(QStringLiteral("Semaine 53 : lundi 28 décembre 2026 - ")), qPrintable(ligne->text()));
        p.action(QStringLiteral("KelmoToolbar1(4)"))->trigger();
        QCOMPARE(f.CalendarControl->viewType(), CalendarViewType::Month);
        const QDate premier = f.CalendarControl->shownDay(0);
        QVERIFY2(ligne->text().startsWith(QStringLiteral("Semaine %1 : ").arg(premier.weekNumber())), qPrintable(ligne->text()));

        // The command bar steps a month at a time here, then back to today;
        // its switches hide it and its buttons.
        QTest::mouseClick(f.findChild<QToolButton *>(QStringLiteral("btnPeriodeSuivante")), Qt::LeftButton);
        QCOMPARE(f.CalendarControl->shownDay(10).month(), 1);
        QTest::mouseClick(f.findChild<QToolButton *>(QStringLiteral("btnAujourdhui")), Qt::LeftButton);
        QCOMPARE(f.CalendarControl->shownDay(10).month(), 11);
        f.mnuCaptionBarSwitch->trigger();
        QVERIFY(!f.boutonsBarre->isVisible());
        f.mnuShowTheme2007CaptionBar->trigger();
        QVERIFY(!f.barreCommande->isVisible() && !f.lblDate->isVisible());
    }

    void themes()
    {
        Poste p;
        auto coches = [&] {
            QStringList r;
            for (QAction *a : p.f->mnuThemes->actions())
                if (a->isChecked())
                    r.append(a->text());
            return r;
        };
        QCOMPARE(coches(), QStringList{QStringLiteral("Office 2013")});
        p.f->mnuTheme[0]->trigger();
        QCOMPARE(coches(), (QStringList{QStringLiteral("Office 2000"), QStringLiteral("Office 2013")}));
        QCOMPARE(p.f->CalendarControl->theme(), 0);
        p.f->mnuTheme[1]->trigger();
        QCOMPARE(coches(), QStringList{QStringLiteral("Office XP")});
        QCOMPARE(p.f->CalendarControl->theme(), 1);
    }

    void suppression_data()
    {
        QTest::addColumn<bool>("serie");
        QTest::addColumn<QList<int>>("reponses");     // Oui 6 / Non 7 to the box
        QTest::addColumn<QList<int>>("choix");        // what the chooser answers
        QTest::addColumn<int>("questionsChoix");
        QTest::addColumn<QStringList>("lundi");
        QTest::addColumn<QStringList>("mardi");
        const QStringList vide;
        const QStringList unLundi{QStringLiteral("10:00 A")}, unMardi{QStringLiteral("10:00 A")};
        QTest::newRow("simple, oui") << false << QList<int>{6} << QList<int>{} << 0 << vide << vide;
        QTest::newRow("simple, non") << false << QList<int>{7} << QList<int>{} << 0 << unLundi << vide;
        // The box's default is No: a user who just presses Enter keeps it.
        QTest::newRow("simple, Entrée") << false << QList<int>{} << QList<int>{} << 0 << unLundi << vide;
        QTest::newRow("occurrence") << true << QList<int>{6} << QList<int>{int(ChoixOccurrence::Occurrence)} << 1 << vide << unMardi;
        QTest::newRow("série") << true << QList<int>{6} << QList<int>{int(ChoixOccurrence::Serie)} << 1 << vide << vide;
        QTest::newRow("série, choix annulé") << true << QList<int>{6} << QList<int>{int(ChoixOccurrence::Annule)} << 1 << unLundi
                                               << unMardi;
        QTest::newRow("série, non") << true << QList<int>{7} << QList<int>{} << 0 << unLundi << unMardi;
    }

    void suppression()
    {
        QFETCH(bool, serie);
        QFETCH(QList<int>, reponses);
        QFETCH(QList<int>, choix);
        QFETCH(int, questionsChoix);
        QFETCH(QStringList, lundi);
        QFETCH(QStringList, mardi);
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant, serie);
        for (int r : reponses)
            p.repondeur.repondre(Prompt::Reponse(r));
        for (int c : choix)
            p.choix.append(ChoixOccurrence(c));
        p.f->clicDroit(surRendezVous(p.premierDuJour(Maintenant.date())));
        p.action(QStringLiteral("mnuDeleteEvent"))->trigger();

        QCOMPARE(p.repondeur.appels().size(), 1);
        const auto &q = p.repondeur.appels().first();
        QCOMPARE(q.titre, QStringLiteral("Supprimer un Rendez-Vous"));
        QCOMPARE(q.texte, QStringLiteral("Êtes-vous sûr de vouloir supprimer ce Rendez-Vous ? "));
        QCOMPARE(q.icone, Prompt::Icone::Question);
        QCOMPARE(q.boutons, Prompt::Boutons::OuiNon);
        QCOMPARE(p.repondeur.imprevus(), reponses.isEmpty() ? 1 : 0);
        QCOMPARE(p.questionsChoix.size(), questionsChoix);
        if (questionsChoix)
            QCOMPARE(p.questionsChoix.first(), QStringLiteral("effacer:A"));
        QCOMPARE(p.jour(QDate(2026, 11, 23)), lundi);
        QCOMPARE(p.jour(QDate(2026, 11, 24)), mardi);
    }

    void suppressionClavier_data()
    {
        QTest::addColumn<int>("reponse");
        QTest::addColumn<int>("restants");
        QTest::newRow("oui") << int(Prompt::Reponse::Oui) << 0;
        QTest::newRow("non") << int(Prompt::Reponse::Non) << 1;
    }

    void suppressionClavier()
    {
        QFETCH(int, reponse);
        QFETCH(int, restants);
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant, true);
        p.f->show();
        p.f->CalendarControl->Populate();
        const CalendarEventPtr occurrence = p.f->CalendarControl->shownEvents().first();
        QCOMPARE(occurrence->RecurrenceState(), int(CalendarEvent::Occurrence));
        CalendarSelection s{occurrence->StartDateTime(), occurrence->EndDateTime(), false};
        p.f->CalendarControl->selectFromPane(s, {occurrence});
        p.repondeur.repondre(Prompt::Reponse(reponse));
        p.f->CalendarControl->setFocus();
        QTest::keyClick(p.f->CalendarControl, Qt::Key_Delete);
        QCOMPARE(p.repondeur.textes(), QStringList{QStringLiteral("Êtes vous sûr de vouloir supprimer ce ou ces rendez-vous ? ")});
        QCOMPARE(p.repondeur.appels().first().titre, QStringLiteral("Suppression..."));
        QVERIFY(p.questionsChoix.isEmpty());
        QCOMPARE(p.jour(QDate(2026, 11, 23)).size(), restants);
        QCOMPARE(p.jour(QDate(2026, 11, 24)).size(), 1);
    }

    // Cut, copy and paste of the menu and of both bars follow the view.
    void etatDesCommandes()
    {
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant);
        p.f->actualiser();
        auto etats = [&] {
            QString r;
            for (const char *nom : {"mnuCut", "mnuCopy", "mnuPaste", "KelmoToolbar1(6)", "KelmoToolbar1(7)", "KelmoToolbar1(8)",
                                    "Toolbar(6)", "Toolbar(7)", "Toolbar(8)"})
                r += p.action(QString::fromLatin1(nom))->isEnabled() ? QLatin1Char('1') : QLatin1Char('0');
            return r;
        };
        QCOMPARE(etats(), QStringLiteral("000000000"));
        const CalendarEventPtr e = p.f->CalendarControl->shownEvents().first();
        p.f->CalendarControl->selectFromPane({e->StartDateTime(), e->EndDateTime(), false}, {e});
        QCOMPARE(etats(), QStringLiteral("110110110"));
        p.action(QStringLiteral("KelmoToolbar1(7)"))->trigger();
        QCOMPARE(etats(), QStringLiteral("111111111"));
        p.f->CalendarControl->selectFromPane({QDateTime(QDate(2026, 11, 24), QTime(9, 0)), QDateTime(QDate(2026, 11, 24), QTime(9, 30)), false},
                                             {});
        QCOMPARE(etats(), QStringLiteral("001001001"));
        p.action(QStringLiteral("mnuPaste"))->trigger();
        QCOMPARE(p.jour(QDate(2026, 11, 24)), QStringList{QStringLiteral("09:00 A")});
    }

    void ouverture_data()
    {
        QTest::addColumn<bool>("serie");
        QTest::addColumn<int>("choix");
        QTest::addColumn<int>("etatOuvert"); // -1: nothing opened
        QTest::newRow("simple") << false << int(ChoixOccurrence::Annule) << int(CalendarEvent::NotRecurring);
        QTest::newRow("occurrence") << true << int(ChoixOccurrence::Occurrence) << int(CalendarEvent::Exception);
        QTest::newRow("série") << true << int(ChoixOccurrence::Serie) << int(CalendarEvent::Master);
        QTest::newRow("annulé") << true << int(ChoixOccurrence::Annule) << -1;
    }

    void ouverture()
    {
        QFETCH(bool, serie);
        QFETCH(int, choix);
        QFETCH(int, etatOuvert);
        Poste p;
        const CalendarEventPtr maitre = p.ajouter(QStringLiteral("A"), Maintenant, serie);
        const QDate jour = serie ? QDate(2026, 11, 24) : QDate(2026, 11, 23);
        const CalendarEventPtr cible = p.premierDuJour(jour);
        p.choix.append(ChoixOccurrence(choix));
        p.f->doubleClic(surRendezVous(cible));
        QCOMPARE(p.questionsChoix, serie ? QStringList{QStringLiteral("ouvrir:A")} : QStringList{});
        const CalendarEventPtr ouvert = p.f->dernierEvenementOuvert();
        if (etatOuvert < 0) {
            QVERIFY(!ouvert);
            QVERIFY(p.etat().isEmpty());
            return;
        }
        QVERIFY(ouvert);
        QCOMPARE(ouvert->RecurrenceState(), etatOuvert);
        QCOMPARE(p.editeurs.size(), 1);
        QCOMPARE(p.editeurs.first()->StartDateTime(), ouvert->StartDateTime());
        if (etatOuvert == CalendarEvent::Exception) {
            // A copy: the shared occurrence stays as it was until the editor
            // hands its work back.
            QVERIFY(ouvert != cible);
            QCOMPARE(cible->RecurrenceState(), int(CalendarEvent::Occurrence));
            QCOMPARE(ouvert->RExceptionStartTimeOrig(), QDateTime(QDate(2026, 11, 24), QTime(10, 0)));
        } else if (etatOuvert == CalendarEvent::Master) {
            QCOMPARE(ouvert->EventID(), maitre->EventID());
        }
        QCOMPARE(p.jour(jour).size(), 1);
    }

    void doubleClicSurCaseVide()
    {
        Poste p;
        appState().RegleCourante.PraticienNumero = 2;
        CalendarHit h;
        h.area = HitDayCell;
        p.f->doubleClic(h);
        QCOMPARE(appState().RegleCourante.PraticienNumero, qint16(0));
        QVERIFY(!p.f->dernierEvenementOuvert());
        // The editor opens on a new appointment and, cancelled, leaves the
        // book as it was.
        QCOMPARE(p.editeurs.size(), 1);
        QCOMPARE(p.editeurs.first()->EventID(), 0);
        QCOMPARE(p.jour(Maintenant.date()), QStringList{});
    }

    void presence()
    {
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant);
        p.f->clicDroit(surRendezVous(p.premierDuJour(Maintenant.date())));
        p.action(QStringLiteral("mnuPatientEnSalle"))->trigger();
        QCOMPARE(p.premierDuJour(Maintenant.date())->BusyStatus(), 0);
        p.action(QStringLiteral("mnuPatientSorti"))->trigger();
        QCOMPARE(p.premierDuJour(Maintenant.date())->BusyStatus(), 1);
        QCOMPARE(p.repondeur.appels().size(), 0);
    }

    // A plain appointment made a weekly series from its context menu: the
    // store holds the series once the dialog is confirmed, and nothing when
    // it is cancelled.
    void periodiciteDepuisLeCalendrier_data()
    {
        QTest::addColumn<bool>("confirme");
        QTest::newRow("OK") << true;
        QTest::newRow("Annuler") << false;
    }
    void periodiciteDepuisLeCalendrier()
    {
        QFETCH(bool, confirme);
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant);
        p.f->clicDroit(surRendezVous(p.premierDuJour(Maintenant.date())));
        // The day lists follow the calendar's selection, not the appointment.
        const QDateTime jeudi(QDate(2026, 11, 26), QTime(14, 0));
        p.f->CalendarControl->setSelection({jeudi, jeudi.addSecs(1800), false});
        QString jourDuMois;
        ExecuteurInstalle executeur([confirme, &jourDuMois](QDialog &d) {
            if (auto *liste = d.findChild<QComboBox *>(QStringLiteral("cmbMonthlyDayOfMonth")))
                jourDuMois = liste->currentText();
            auto bouton = [&d](const char *nom) {
                auto *b = d.findChild<QAbstractButton *>(QString::fromLatin1(nom));
                if (b)
                    b->click();
                return b != nullptr;
            };
            if (!bouton("optRecWeekly"))
                return int(QDialog::Rejected);
            auto *lundi = d.findChild<QCheckBox *>(QStringLiteral("chkWeeklyMonday"));
            if (lundi && !lundi->isChecked())
                lundi->click();
            bouton(confirme ? "btnOK" : "btnCancel");
            return d.result();
        });
        p.action(QStringLiteral("mnuRecurrenceEvent"))->trigger();
        QCOMPARE(jourDuMois, QStringLiteral("26"));
        const QStringList attendu = confirme ? QStringList{QStringLiteral("10:00 A")} : QStringList{};
        QCOMPARE(p.jour(QDate(2026, 11, 30)), attendu);
        QCOMPARE(p.jour(QDate(2026, 12, 7)), attendu);
        QCOMPARE(p.jour(QDate(2026, 11, 24)), QStringList{});
        QCOMPARE(p.jour(Maintenant.date()), QStringList{QStringLiteral("10:00 A")});
    }

    void gardes_data()
    {
        QTest::addColumn<bool>("sansGlisser");
        QTest::addColumn<bool>("sansWeekEnd");
        QTest::addColumn<int>("operation");
        QTest::addColumn<bool>("serie");
        QTest::addColumn<QDate>("jourSelection");
        QTest::addColumn<bool>("refuse");
        const QDate lundi(2026, 11, 23), samedi(2026, 11, 28);
        QTest::newRow("redimensionner série") << true << false << int(OpResizeEnd) << true << lundi << true;
        QTest::newRow("créer samedi") << false << true << int(OpCreateInPlace) << false << samedi << true;
        QTest::newRow("créer lundi") << false << true << int(OpCreateInPlace) << false << lundi << false;
        QTest::newRow("créer samedi, permis") << false << false << int(OpCreateInPlace) << false << samedi << false;
    }

    void gardes()
    {
        QFETCH(bool, sansGlisser);
        QFETCH(bool, sansWeekEnd);
        QFETCH(int, operation);
        QFETCH(bool, serie);
        QFETCH(QDate, jourSelection);
        QFETCH(bool, refuse);
        Poste p;
        p.f->setDisableDraggingRecurrenceEvents(sansGlisser);
        p.f->setDisableInPlaceCreateSaSu(sansWeekEnd);
        p.ajouter(QStringLiteral("A"), Maintenant, serie);
        const CalendarEventPtr e = p.premierDuJour(Maintenant.date());
        p.f->CalendarControl->ShowDay(jourSelection);
        p.f->CalendarControl->setSelection({QDateTime(jourSelection, QTime(9, 0)), QDateTime(jourSelection, QTime(9, 30)), false});
        QCOMPARE(p.f->refuserOperation(operation, {e}), refuse);
    }

    // A real drag of Monday's appointment to 11:00, through the view.
    void glisserALaSouris_data()
    {
        QTest::addColumn<bool>("sansGlisser");
        QTest::addColumn<bool>("serie");
        QTest::addColumn<QString>("lundi");
        QTest::newRow("série, glisser interdit") << true << true << QStringLiteral("10:00 A");
        QTest::newRow("simple, glisser interdit") << true << false << QStringLiteral("11:00 A");
        QTest::newRow("série, glisser permis") << false << true << QStringLiteral("11:00 A");
    }

    void glisserALaSouris()
    {
        QFETCH(bool, sansGlisser);
        QFETCH(bool, serie);
        QFETCH(QString, lundi);
        Poste p;
        p.ajouter(QStringLiteral("A"), Maintenant, serie);
        p.f->setDisableDraggingRecurrenceEvents(sansGlisser);
        CalendarView *vue = p.montrer();
        // Monday's box (the leftmost of its row), then Monday 11:00.
        const auto de = p.chercher([](const CalendarHit &h) { return h.event && h.area == HitEvent; });
        const auto vers = p.chercher(
            [](const CalendarHit &h) { return !h.event && h.area == HitDayCell && h.time == Maintenant.addSecs(3600); });
        QVERIFY(de && vers);
        QWidget *volet = vue->childAt(*de);
        QTest::mousePress(volet, Qt::LeftButton, {}, volet->mapFrom(vue, *de));
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(volet, volet->mapFrom(vue, *de + (*vers - *de) * i / 4));
        QTest::mouseRelease(volet, Qt::LeftButton, {}, volet->mapFrom(vue, *vers));
        QCOMPARE(p.jour(Maintenant.date()), QStringList{lundi});
        QCOMPARE(p.jour(QDate(2026, 11, 24)), serie ? QStringList{QStringLiteral("10:00 A")} : QStringList{});
    }

    // Another workstation writes into the same Events.mdb: the next tick of
    // Timer1 shows its appointment.
    void actualisationParTimer1()
    {
        Poste p;
        CalendarDataProvider autre;
        QVERIFY(autre.SetDataProvider(p.demarrage.connexionEvenements()));
        QVERIFY(autre.Open());
        CalendarEventPtr e = autre.CreateNewEvent(Maintenant.addDays(1), Maintenant.addDays(1).addSecs(1800));
        e->setSubject(QStringLiteral("Poste 2"));
        QVERIFY(autre.AddEvent(e));
        auto sujets = [&] {
            QStringList r;
            for (const CalendarEventPtr &x : p.f->CalendarControl->shownEvents())
                r.append(x->Subject());
            return r;
        };
        QCOMPARE(sujets(), QStringList{});
        p.f->resize(1000, 500);
        p.f->show();
        CalendarView *vue = p.f->CalendarControl;
        const CalendarSelection choisie{QDateTime(QDate(2026, 11, 25), QTime(15, 0)), QDateTime(QDate(2026, 11, 25), QTime(15, 30)),
                                        false};
        vue->setSelection(choisie);
        vue->setScrollPosition(120);
        const int defilement = vue->scrollPosition();
        QVERIFY(QMetaObject::invokeMethod(p.f->Timer1, "timeout"));
        QCOMPARE(sujets(), QStringList{QStringLiteral("Poste 2")});
        QVERIFY(p.f->wndDatePicker->busyDays().contains(Maintenant.date().addDays(1)));
        // The reading leaves the user where they were.
        QCOMPARE(vue->selection(), choisie);
        QCOMPARE(vue->scrollPosition(), defilement);
        autre.Close();
    }

    // Another store attached: the calendar shows its appointments at once.
    void autreFournisseur()
    {
        Poste p;
        QTemporaryDir ailleurs;
        const QString connexion = QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1/Events.mdb';").arg(ailleurs.path());
        {
            CalendarDataProvider autre;
            QVERIFY(autre.SetDataProvider(connexion));
            QVERIFY(autre.Open() || autre.Create());
            CalendarEventPtr e = autre.CreateNewEvent(Maintenant, Maintenant.addSecs(1800));
            e->setSubject(QStringLiteral("Ailleurs"));
            QVERIFY(autre.AddEvent(e));
            autre.Close();
        }
        QVERIFY(p.f->OpenProvider(2, connexion));
        QCOMPARE(appState().TypeFournisseur, 2);
        QCOMPARE(p.f->CalendarControl->shownEvents().size(), 1);
        QCOMPARE(p.f->CalendarControl->shownEvents().first()->Subject(), QStringLiteral("Ailleurs"));
    }

    void rechercheAbandonnee()
    {
        Poste p;
        QStringList recherches;
        int fiches = 0;
        ExecuteurInstalle executeur([&](QDialog &d) {
            recherches.append(QString::fromLatin1(d.metaObject()->className()));
            d.reject();
            return int(QDialog::Rejected);
        });
        const OuvreurFiche avant = FixerOuvreurFiche([&](FichePatient, QWidget *) { return ++fiches > 0; });
        p.action(QStringLiteral("KelmoToolbar1(12)"))->trigger();
        FixerOuvreurFiche(avant);
        QCOMPARE(recherches, QStringList{QStringLiteral("Recherche_patient_Agenda")});
        QCOMPARE(fiches, 0);
        QCOMPARE(RetourRecherche, 0);
    }

    void rappels()
    {
        Poste p;
        Reminder r;
        r.Event = CalendarEvent::create(1);
        r.Event->setSubject(QStringLiteral("DUPONT    Jean     "));
        r.StartTime = QDateTime(QDate(2026, 11, 23), QTime(10, 30));
        ReminderEngine &moteur = *appState().MoteurRappels;

        const auto visible = [&p] {
            const auto *w = p.f->findChild<QDialog *>(QStringLiteral("frmReminders"));
            return w && w->isVisible();
        };

        // Under an open dialog the reminder waits for it to close.
        p.f->DialoguesOuverts = 1;
        emit moteur.reminderAction(ReminderEngine::Fire, r);
        QVERIFY(p.f->timerRMDForm->isActive());
        QVERIFY(!visible());
        QVERIFY(QMetaObject::invokeMethod(p.f->timerRMDForm, "timeout"));
        QVERIFY(p.f->timerRMDForm->isActive());
        QVERIFY(!visible());
        p.f->DialoguesOuverts = 0;
        QVERIFY(QMetaObject::invokeMethod(p.f->timerRMDForm, "timeout"));
        QVERIFY(!p.f->timerRMDForm->isActive());
        QVERIFY(visible());

        // Other actions only concern the reminder window's list.
        p.f->findChild<QDialog *>(QStringLiteral("frmReminders"))->close();
        emit moteur.reminderAction(ReminderEngine::Dismissed, r);
        QVERIFY(!visible());
        emit moteur.reminderAction(ReminderEngine::Fire, r);
        QVERIFY(visible());

        // The menu item follows the engine, and opens the window.
        p.f->findChild<QDialog *>(QStringLiteral("frmReminders"))->close();
        QVERIFY(!p.f->mnuReminders->isEnabled());
        moteur.setEnabled(true);
        emit p.f->mnuRappels->aboutToShow();
        QVERIFY(p.f->mnuReminders->isEnabled());
        p.f->mnuReminders->trigger();
        QVERIFY(visible());
        moteur.setEnabled(false);
        emit p.f->mnuCalendar->aboutToShow();
        QVERIFY(!p.f->mnuReminders->isEnabled());
    }

    void fermetureLanceLArret()
    {
        PosteTest p(Maintenant, {}, false);
        p.parametres.rappelsActifs = true;
        frmMain f(p.demarrage, p.parametres);
        QVERIFY(appState().MoteurRappels->isEnabled());
        f.show();
        QVERIFY(f.close());
        QVERIFY(!ConfigOuverte());
        const QString ini = p.prog.chemin() + QStringLiteral("Agenda.ini");
        QCOMPARE(LireIni(QStringLiteral("Agenda"), QStringLiteral("RemindersManEnabled"), QString(), ini), QStringLiteral("Vrai"));
    }
};

QTEST_MAIN(tst_frmmain)
#include "tst_frmmain.moc"
