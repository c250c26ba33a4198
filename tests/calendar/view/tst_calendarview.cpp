#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/daypane.h"
#include "shell/base/horloge.h"
#include "support/repondeurscripte.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(CalendarViewType)

// The calendar view over a real Events.mdb: shown days, hit test, drawing of
// overlapping appointments, mouse drag and resize written through the
// provider, keyboard deletion, clipboard, and reading again what another
// station wrote.
class tst_calendarview : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CalendarDataProvider> m_provider;
    std::unique_ptr<CalendarView> m_view;
    std::unique_ptr<Horloge::Fixee> m_horloge;

    // Monday 23 November 2026.
    static QDateTime jour(int d, int h, int m = 0) { return QDateTime(QDate(2026, 11, 23).addDays(d), QTime(h, m)); }

    QString connexion() const
    {
        return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1/Events.mdb';").arg(m_dir->path());
    }

    std::unique_ptr<CalendarDataProvider> autrePoste() const
    {
        auto p = std::make_unique<CalendarDataProvider>();
        if (!p->SetDataProvider(connexion()) || !p->Open())
            return {};
        return p;
    }

    CalendarEventPtr ajouter(const QDateTime &debut, const QDateTime &fin, const QString &sujet, int label = 1)
    {
        CalendarEventPtr e = m_provider->CreateNewEvent(debut, fin);
        e->setSubject(sujet);
        e->setLabelID(label);
        if (!m_provider->AddEvent(e))
            return {};
        return e;
    }

    // A daily series from its first appointment.
    CalendarEventPtr serie(const QDateTime &debut, const QDateTime &fin, const QString &sujet = QStringLiteral("série"))
    {
        CalendarEventPtr m = m_provider->CreateNewEvent(debut, fin);
        m->setSubject(sujet);
        m->CreateRecurrence();
        return m_provider->AddEvent(m) ? m : CalendarEventPtr();
    }

    // The view's record of the appointment starting then.
    CalendarEventPtr afficheA(const QDateTime &debut) const
    {
        for (const CalendarEventPtr &e : m_view->shownEvents())
            if (e->StartDateTime() == debut)
                return e;
        return {};
    }

    // The view's record of an appointment, by subject.
    CalendarEventPtr affiche(const QString &sujet) const
    {
        for (const CalendarEventPtr &e : m_view->shownEvents()) {
            if (e->Subject() == sujet)
                return e;
        }
        return {};
    }

    // What the store holds on a day, as another station reads it.
    QStringList stocke(int d) const
    {
        auto p = autrePoste();
        static const QLocale francais(QLocale::French, QLocale::France);
        QStringList lignes;
        if (!p)
            return {QStringLiteral("store not readable")};
        for (const CalendarEventPtr &e : p->RetrieveDayEvents(QDate(2026, 11, 23).addDays(d))) {
            lignes.append(QStringLiteral("%1 %2-%3 s%4")
                              .arg(e->Subject(), francais.toString(e->StartDateTime(), QStringLiteral("ddd HH:mm")),
                                   francais.toString(e->EndDateTime(), QStringLiteral("HH:mm")))
                              .arg(e->RecurrenceState()));
        }
        return lignes;
    }

    DayPane *volet() const { return m_view->findChild<DayPane *>(); }
    QPoint versVue(const QPoint &p) const { return volet()->mapTo(m_view.get(), p); }
    QRect boite(const QString &sujet) const { return volet()->eventRect(affiche(sujet)); }

    // Press, move in steps, release: a drag as a hand does it.
    void glisser(const QPoint &de, const QPoint &vers, Qt::KeyboardModifiers touches = {})
    {
        QWidget *w = volet();
        QTest::mousePress(w, Qt::LeftButton, touches, de);
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(w, de + (vers - de) * i / 4);
        QTest::mouseRelease(w, Qt::LeftButton, touches, vers);
    }

private Q_SLOTS:
    void init()
    {
        m_horloge = std::make_unique<Horloge::Fixee>(jour(0, 7));
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        m_provider = std::make_unique<CalendarDataProvider>();
        QVERIFY(m_provider->SetDataProvider(connexion()));
        QVERIFY(m_provider->Open() || m_provider->Create());
        m_view = std::make_unique<CalendarView>();
        m_view->setDataProvider(m_provider.get());
        m_view->setLabels({{1, QStringLiteral("Consultation"), 0x80FF80}, {2, QStringLiteral("Visite"), 0xFFC080},
                           {3, QStringLiteral("Urgence"), 0x8080FF}});
        m_view->setWorkingHours(QTime(8, 0), QTime(20, 0));
        m_view->resize(1000, 700);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        m_view->ShowDay(QDate(2026, 11, 24));
    }

    void cleanup()
    {
        m_view.reset();
        m_provider.reset();
        m_dir.reset();
        m_horloge.reset();
    }

    void joursAffiches_data()
    {
        QTest::addColumn<CalendarViewType>("type");
        QTest::addColumn<QDate>("jour");
        QTest::addColumn<int>("nombre");
        QTest::addColumn<QDate>("premier");
        QTest::addColumn<QDate>("dernier");
        QTest::addColumn<bool>("journee");

        QTest::newRow("jour") << CalendarViewType::Day << QDate(2026, 11, 25) << 1 << QDate(2026, 11, 25)
                              << QDate(2026, 11, 25) << false;
        QTest::newRow("semaine de travail d'un mercredi") << CalendarViewType::WorkWeek << QDate(2026, 11, 25) << 5
                                                         << QDate(2026, 11, 23) << QDate(2026, 11, 27) << false;
        QTest::newRow("semaine de travail d'un dimanche") << CalendarViewType::WorkWeek << QDate(2026, 11, 29) << 5
                                                         << QDate(2026, 11, 23) << QDate(2026, 11, 27) << false;
        QTest::newRow("semaine de travail à cheval sur l'année")
            << CalendarViewType::WorkWeek << QDate(2026, 12, 31) << 5 << QDate(2026, 12, 28) << QDate(2027, 1, 1)
            << false;
        QTest::newRow("semaine") << CalendarViewType::Week << QDate(2026, 11, 29) << 7 << QDate(2026, 11, 23)
                                 << QDate(2026, 11, 29) << true;
        QTest::newRow("mois") << CalendarViewType::Month << QDate(2026, 11, 10) << 42 << QDate(2026, 10, 26)
                              << QDate(2026, 12, 6) << true;
    }
    void joursAffiches()
    {
        QFETCH(CalendarViewType, type);
        QFETCH(QDate, jour);
        QFETCH(int, nombre);
        QFETCH(QDate, premier);
        QFETCH(QDate, dernier);
        QFETCH(bool, journee);
        QSignalSpy vues(m_view.get(), &CalendarView::viewChanged);
        m_view->setViewType(type);
        m_view->ShowDay(jour);
        QCOMPARE(vues.count(), 2);
        QCOMPARE(m_view->viewType(), type);
        QCOMPARE(m_view->shownDaysCount(), nombre);
        QCOMPARE(m_view->shownDay(0), premier);
        QCOMPARE(m_view->shownDay(nombre - 1), dernier);
        QCOMPARE(m_view->shownDay(nombre), QDate());
        // The day brought on show is selected: its working begin in time views.
        const CalendarSelection s = m_view->selection();
        QCOMPARE(s.allDay, journee);
        QCOMPARE(s.begin, journee ? QDateTime(jour, QTime(0, 0)) : QDateTime(jour, QTime(8, 0)));
    }

    // A row added by another station shows after Populate, and the appointments
    // read are those of the shown days only.
    void populateLitLeStore()
    {
        QVERIFY(ajouter(jour(1, 9), jour(1, 9, 30), QStringLiteral("ici")));
        QVERIFY(ajouter(jour(7, 9), jour(7, 9, 30), QStringLiteral("semaine suivante")));
        m_view->Populate();
        QCOMPARE(m_view->shownEvents().size(), 1);

        auto autre = autrePoste();
        QVERIFY(autre);
        CalendarEventPtr e = autre->CreateNewEvent(jour(4, 15), jour(4, 16));
        e->setSubject(QStringLiteral("de l'autre poste"));
        QVERIFY(autre->AddEvent(e));
        QVERIFY(!affiche(QStringLiteral("de l'autre poste")));
        m_view->Populate();
        QVERIFY(affiche(QStringLiteral("de l'autre poste")));
        QCOMPARE(m_view->shownEvents().size(), 2);
    }

    void hitTest_data()
    {
        QTest::addColumn<int>("echelle");
        QTest::addColumn<QString>("ou");
        QTest::addColumn<int>("zone");
        QTest::addColumn<QDateTime>("heure");

        QTest::newRow("échelle des heures") << 30 << "echelle 10:00" << int(HitTimeScale) << jour(0, 10);
        QTest::newRow("cellule à 30 minutes") << 30 << "cellule mar 10:30" << int(HitDayCell) << jour(1, 10, 30);
        QTest::newRow("bas d'une cellule à 30 minutes") << 30 << "bas mar 10:30" << int(HitDayCell) << jour(1, 10, 30);
        QTest::newRow("cellule à 5 minutes") << 5 << "cellule mer 10:05" << int(HitDayCell) << jour(2, 10, 5);
        QTest::newRow("bas d'une cellule à 5 minutes") << 5 << "bas mer 10:55" << int(HitDayCell) << jour(2, 10, 55);
        QTest::newRow("rendez-vous") << 30 << "rdv" << int(HitEvent) << jour(3, 11, 0);
        QTest::newRow("haut du rendez-vous") << 15 << "rdv haut" << int(HitEventResizeBegin) << jour(3, 11, 0);
        QTest::newRow("bas du rendez-vous") << 15 << "rdv bas" << int(HitEventResizeEnd) << jour(3, 11, 45);
        QTest::newRow("en-tête") << 30 << "entete ven" << int(HitDayHeader) << jour(4, 0);
        QTest::newRow("bande journée") << 30 << "bande ven" << int(HitAllDayBand) << jour(4, 0);
        QTest::newRow("rendez-vous de la journée") << 30 << "bande mer" << int(HitEvent) << jour(2, 0);
    }
    void hitTest()
    {
        QFETCH(int, echelle);
        QFETCH(QString, ou);
        QFETCH(int, zone);
        QFETCH(QDateTime, heure);
        QVERIFY(ajouter(jour(3, 11), jour(3, 12), QStringLiteral("rdv")));
        CalendarEventPtr conge = m_provider->CreateNewEvent(jour(2, 0), jour(3, 0));
        conge->setSubject(QStringLiteral("congé"));
        conge->setIsAllDayEvent(true);
        QVERIFY(m_provider->AddEvent(conge));
        m_view->setTimeScale(echelle);
        m_view->Populate();
        m_view->setScrollPosition(10 * 60 / echelle * volet()->rowHeight() - 40);

        DayPane *v = volet();
        const QStringList mots = ou.split(u' ');
        const QStringList jours{QStringLiteral("lun"), QStringLiteral("mar"), QStringLiteral("mer"), QStringLiteral("jeu"),
                                QStringLiteral("ven")};
        auto cellule = [&](const QString &j, const QString &hm) {
            const QTime t = QTime::fromString(hm, QStringLiteral("H:mm"));
            return v->cellRect(jour(static_cast<int>(jours.indexOf(j)), t.hour(), t.minute()));
        };
        QPoint p;
        if (mots.at(0) == u"echelle")
            p = QPoint(v->timeScaleRect().center().x(), cellule(QStringLiteral("lun"), mots.at(1)).center().y());
        else if (mots.at(0) == u"cellule")
            p = cellule(mots.at(1), mots.at(2)).center();
        else if (mots.at(0) == u"bas")
            p = cellule(mots.at(1), mots.at(2)).bottomLeft() + QPoint(2, 0);
        else if (mots.at(0) == u"rdv") {
            const QRect r = boite(QStringLiteral("rdv"));
            p = mots.size() == 1 ? r.center() : mots.at(1) == u"haut" ? QPoint(r.center().x(), r.top() + 1)
                                                                       : QPoint(r.center().x(), r.bottom() - 1);
        } else {
            const QRect colonne = cellule(mots.at(1), QStringLiteral("10:00"));
            p = QPoint(colonne.center().x(), mots.at(0) == u"entete" ? 3 : v->allDayBandRect().center().y());
        }
        const CalendarHit h = m_view->hitTest(versVue(p));
        QCOMPARE(h.area, zone);
        QCOMPARE(h.time, heure);
        QCOMPARE(bool(h.event), zone == HitEvent || zone == HitEventResizeBegin || zone == HitEventResizeEnd);
        QCOMPARE(h.allDay, mots.at(0) == u"bande");
        if (h.event)
            QCOMPARE(h.event->Subject(), h.allDay ? QStringLiteral("congé") : QStringLiteral("rdv"));
    }

    // A, B and C of a chain of overlaps: A and B side by side, C under A;
    // the grabbed pixels carry each one's label colour.
    void chevauchementsCoteACote()
    {
        QVERIFY(ajouter(jour(1, 9), jour(1, 10), QStringLiteral("A"), 1));
        QVERIFY(ajouter(jour(1, 9, 30), jour(1, 10, 30), QStringLiteral("B"), 2));
        QVERIFY(ajouter(jour(1, 10), jour(1, 11), QStringLiteral("C"), 3));
        m_view->Populate();
        m_view->setScrollPosition(8 * 2 * volet()->rowHeight());
        const QRect a = boite(QStringLiteral("A"));
        const QRect b = boite(QStringLiteral("B"));
        const QRect c = boite(QStringLiteral("C"));
        const QRect colonne = volet()->cellRect(jour(1, 9));
        QVERIFY(a.right() < b.left());
        QCOMPARE(c.left(), a.left());
        QVERIFY(a.width() > colonne.width() / 3 && a.width() <= colonne.width() / 2);
        QCOMPARE(a.top(), colonne.top());
        QCOMPARE(b.top(), volet()->cellRect(jour(1, 9, 30)).top());
        QVERIFY(c.top() >= a.bottom());

        const QImage image = m_view->grab().toImage();
        auto pixel = [&](const QRect &r) { return image.pixelColor(versVue(QPoint(r.center().x(), r.bottom() - 3))); };
        QCOMPARE(pixel(a), QColor(0x80, 0xFF, 0x80));
        QCOMPARE(pixel(b), QColor(0x80, 0xC0, 0xFF));
        QCOMPARE(pixel(c), QColor(0xFF, 0x80, 0x80));
    }

    // Moving and resizing with the mouse write through the provider; an
    // occurrence moved becomes an exception of its series.
    void glisserDeposer_data()
    {
        QTest::addColumn<QString>("prise");
        QTest::addColumn<QString>("depot");
        QTest::addColumn<QStringList>("mardi");
        QTest::addColumn<QStringList>("mercredi");

        QTest::newRow("déplacer vers un autre jour") << "milieu" << "mer 14:00" << QStringList{}
                                                      << QStringList{"rdv mer. 14:00-14:30 s0"};
        QTest::newRow("déplacer dans le jour") << "milieu" << "mar 11:00" << QStringList{"rdv mar. 11:00-11:30 s0"}
                                                << QStringList{};
        QTest::newRow("allonger par le bas") << "bas" << "mar 11:00" << QStringList{"rdv mar. 09:00-11:00 s0"}
                                              << QStringList{};
        QTest::newRow("avancer le début") << "haut" << "mar 8:00" << QStringList{"rdv mar. 08:00-09:30 s0"}
                                           << QStringList{};
        QTest::newRow("occurrence déplacée") << "serie" << "mar 15:00"
                                              << QStringList{"série mar. 15:00-15:30 s3"}
                                              << QStringList{"série mer. 09:00-09:30 s2"};
        QTest::newRow("copie avec Ctrl") << "ctrl" << "mer 14:00" << QStringList{"rdv mar. 09:00-09:30 s0"}
                                          << QStringList{"rdv mer. 14:00-14:30 s0"};
        // A refusing guard keeps the appointment where it was.
        const QStringList intact{"rdv mar. 09:00-09:30 s0"};
        QTest::newRow("déplacement refusé") << "refus" << "mer 14:00" << intact << QStringList{};
        QTest::newRow("début refusé") << "refus haut" << "mar 8:00" << intact << QStringList{};
        QTest::newRow("fin refusée") << "refus bas" << "mar 11:00" << intact << QStringList{};
        QTest::newRow("copie d'une occurrence") << "ctrl serie" << "mar 15:00"
                                                 << QStringList{"série mar. 09:00-09:30 s2", "série mar. 15:00-15:30 s0"}
                                                 << QStringList{"série mer. 09:00-09:30 s2"};
    }
    void glisserDeposer()
    {
        QFETCH(QString, prise);
        QFETCH(QString, depot);
        QFETCH(QStringList, mardi);
        QFETCH(QStringList, mercredi);
        const bool copie = prise.startsWith(u"ctrl");
        const bool refus = prise.startsWith(u"refus");
        prise = prise.section(u' ', copie || refus ? 1 : 0);
        QString sujet = QStringLiteral("rdv");
        if (prise == u"serie")
            QVERIFY(serie(jour(0, 9), jour(0, 9, 30), sujet = QStringLiteral("série")));
        else
            QVERIFY(ajouter(jour(1, 9), jour(1, 9, 30), sujet));
        m_view->Populate();
        m_view->setScrollPosition(7 * 2 * volet()->rowHeight());
        const CalendarEventPtr cible = afficheA(jour(1, 9));
        QVERIFY(cible);
        const QRect r = volet()->eventRect(cible);
        QVERIFY(!r.isEmpty());
        const QPoint de = prise == u"haut"  ? QPoint(r.center().x(), r.top() + 1)
                          : prise == u"bas" ? QPoint(r.center().x(), r.bottom() - 1)
                                            : r.center();
        const QStringList d = depot.split(u' ');
        const QStringList jours{QStringLiteral("lun"), QStringLiteral("mar"), QStringLiteral("mer")};
        const QTime t = QTime::fromString(d.at(1), QStringLiteral("H:mm"));
        const QRect cellule = volet()->cellRect(jour(static_cast<int>(jours.indexOf(d.at(0))), t.hour(), t.minute()));
        // The hand holds the box where it took it: middle to middle, edge to edge.
        const QPoint vers = prise == u"haut" ? QPoint(cellule.center().x(), cellule.top() + 1)
                            : prise == u"bas" ? QPoint(cellule.center().x(), cellule.top())
                                              : QPoint(cellule.center().x(), cellule.top() + r.height() / 2);

        QSignalSpy edits(m_view.get(), &CalendarView::eventsEdited);
        QList<int> gardes;
        m_view->setOperationGuard([&](int op, const QList<CalendarEventPtr> &events) {
            gardes.append(op);
            return refus && events == QList<CalendarEventPtr>{cible};
        });
        glisser(de, vers, copie ? Qt::ControlModifier : Qt::NoModifier);
        const int operation = copie ? OpDragCopy : prise == u"haut" ? OpResizeBegin : prise == u"bas" ? OpResizeEnd : OpDragMove;
        QCOMPARE(gardes, QList<int>{operation});
        QCOMPARE(edits.count(), refus ? 0 : 1);
        QCOMPARE(stocke(1), mardi);
        QCOMPARE(stocke(2), mercredi);
    }

    // The Delete key asks the confirmation (code 12) and deletes only on yes.
    // (An occurrence deleted by the key: tst_frmmain::suppressionClavier.)
    void toucheSuppr()
    {
        QVERIFY(ajouter(jour(1, 9), jour(1, 9, 30), QStringLiteral("rdv")));
        QVERIFY(serie(jour(0, 14), jour(0, 14, 30)));
        m_view->Populate();
        m_view->setScrollPosition(7 * 2 * volet()->rowHeight());

        QList<bool> reponses{false, true};
        QList<int> demandes;
        m_view->setEditConfirmation([&](int op, const QList<CalendarEventPtr> &events) {
            demandes.append(op);
            return events.size() == 1 && reponses.takeFirst();
        });
        QSignalSpy touches(m_view.get(), &CalendarView::keyPressed);
        QSignalSpy edits(m_view.get(), &CalendarView::eventsEdited);

        QTest::mouseClick(volet(), Qt::LeftButton, {}, boite(QStringLiteral("rdv")).center());
        QCOMPARE(m_view->selectedEvents().size(), 1);
        QTest::keyClick(m_view.get(), Qt::Key_Delete);
        QCOMPARE(demandes, QList<int>{OpDeleteSelected});
        QCOMPARE(edits.count(), 0);
        QCOMPARE(stocke(1).size(), 2);
        QCOMPARE(touches.count(), 1);
        QCOMPARE(touches.at(0).at(0).toInt(), int(Qt::Key_Delete));

        QTest::keyClick(m_view.get(), Qt::Key_Delete);
        QCOMPARE(edits.count(), 1);
        QCOMPARE(stocke(1), QStringList{QStringLiteral("série mar. 14:00-14:30 s2")});
        QVERIFY(!affiche(QStringLiteral("rdv")));

        // Nothing selected: no question.
        QTest::keyClick(m_view.get(), Qt::Key_Delete);
        QCOMPARE(demandes.size(), 2);
    }

    // Populate keeps the scroll position, the selected period and the
    // selected appointment (found again among the new records).
    void populateGardeLaPlace()
    {
        QVERIFY(ajouter(jour(2, 10), jour(2, 11), QStringLiteral("rdv")));
        m_view->Populate();
        m_view->setScrollPosition(9 * 2 * volet()->rowHeight());
        QTest::mouseClick(volet(), Qt::LeftButton, {}, boite(QStringLiteral("rdv")).center());
        const CalendarSelection avant = m_view->selection();
        const CalendarEventPtr choisi = m_view->selectedEvents().value(0);
        QVERIFY(choisi);
        const int defilement = m_view->scrollPosition();
        QVERIFY(defilement > 0);

        m_view->Populate();
        QCOMPARE(m_view->scrollPosition(), defilement);
        QCOMPARE(m_view->selection(), avant);
        QCOMPARE(m_view->selectedEvents().size(), 1);
        QVERIFY(m_view->selectedEvents().first() != choisi);
        QVERIFY(m_view->selectedEvents().first() == affiche(QStringLiteral("rdv")));

        // A cell selected by the mouse, then extended with shift.
        QTest::mouseClick(volet(), Qt::LeftButton, {}, volet()->cellRect(jour(3, 10)).center());
        QTest::mouseClick(volet(), Qt::LeftButton, Qt::ShiftModifier, volet()->cellRect(jour(3, 11)).center());
        const CalendarSelection cellules = m_view->selection();
        QCOMPARE(cellules.begin, jour(3, 10));
        QCOMPARE(cellules.end, jour(3, 11, 30));
        QVERIFY(m_view->selectedEvents().isEmpty());
        m_view->Populate();
        QCOMPARE(m_view->selection(), cellules);
        QCOMPARE(m_view->scrollPosition(), defilement);
    }

    // Copy keeps plain copies, paste writes them at the selected cell with
    // their duration; cut deletes without asking.
    void pressePapiers()
    {
        QVERIFY(serie(jour(0, 9), jour(0, 9, 45)));
        QVERIFY(ajouter(jour(1, 16), jour(1, 16, 20), QStringLiteral("rdv")));
        m_view->Populate();
        QVERIFY(!m_view->CanCopy() && !m_view->CanCut() && !m_view->CanPaste());

        m_view->setScrollPosition(8 * 2 * volet()->rowHeight());
        QTest::mouseClick(volet(), Qt::LeftButton, {}, volet()->eventRect(afficheA(jour(1, 9))).center());
        QVERIFY(m_view->CanCopy() && m_view->CanCut());
        m_view->Copy();
        QTest::mouseClick(volet(), Qt::LeftButton, {}, volet()->cellRect(jour(3, 10, 30)).center());
        QVERIFY(m_view->CanPaste());
        QSignalSpy edits(m_view.get(), &CalendarView::eventsEdited);
        m_view->Paste();
        QCOMPARE(edits.count(), 1);
        QCOMPARE(stocke(3), (QStringList{QStringLiteral("série jeu. 09:00-09:45 s2"), QStringLiteral("série jeu. 10:30-11:15 s0")}));

        int questions = 0;
        m_view->setEditConfirmation([&](int, const QList<CalendarEventPtr> &) {
            ++questions;
            return false;
        });
        m_view->setScrollPosition(15 * 2 * volet()->rowHeight());
        QTest::mouseClick(volet(), Qt::LeftButton, {}, boite(QStringLiteral("rdv")).center());
        m_view->Cut();
        QCOMPARE(questions, 0);
        QCOMPARE(stocke(1), QStringList{QStringLiteral("série mar. 09:00-09:45 s2")});
        QTest::mouseClick(volet(), Qt::LeftButton, {}, volet()->cellRect(jour(4, 17)).center());
        m_view->Paste();
        QCOMPARE(stocke(4), (QStringList{QStringLiteral("série ven. 09:00-09:45 s2"), QStringLiteral("rdv ven. 17:00-17:20 s0")}));
    }

    // Right and double clicks are reported in the view's coordinates; a right
    // click selects the cell under it first.
    void clics()
    {
        QSignalSpy droits(m_view.get(), &CalendarView::rightClicked);
        QSignalSpy doubles(m_view.get(), &CalendarView::doubleClicked);
        m_view->setScrollPosition(8 * 2 * volet()->rowHeight());
        const QPoint p = volet()->cellRect(jour(2, 15)).center();
        QTest::mouseClick(volet(), Qt::RightButton, {}, p);
        QCOMPARE(droits.count(), 1);
        QCOMPARE(droits.at(0).at(0).toPoint(), versVue(p));
        QCOMPARE(m_view->selection().begin, jour(2, 15));
        QCOMPARE(m_view->hitTest(droits.at(0).at(0).toPoint()).time, jour(2, 15));
        QTest::mouseDClick(volet(), Qt::LeftButton, {}, p);
        QCOMPARE(doubles.count(), 1);
        QCOMPARE(doubles.at(0).at(0).toPoint(), versVue(p));
    }

    // F2 opens the subject editor over the selected appointment: Enter
    // writes through the store; Escape or a refusing guard leave it as it
    // was. A failed write keeps the typed text for another Enter.
    void sujetParF2_data()
    {
        QTest::addColumn<bool>("refuse");
        QTest::addColumn<bool>("storeFerme");
        QTest::addColumn<int>("touche");
        QTest::addColumn<QString>("stocke");
        QTest::newRow("entrée") << false << false << int(Qt::Key_Return) << "Bilan";
        QTest::newRow("échap") << false << false << int(Qt::Key_Escape) << "rdv";
        QTest::newRow("garde") << true << false << int(Qt::Key_Return) << "rdv";
        QTest::newRow("écriture refusée, puis reprise") << false << true << int(Qt::Key_Return) << "Bilan";
    }

    void sujetParF2()
    {
        QFETCH(bool, refuse);
        QFETCH(bool, storeFerme);
        QFETCH(int, touche);
        QFETCH(QString, stocke);
        RepondeurScripte repondeur;
        QVERIFY(ajouter(jour(1, 9), jour(1, 9, 30), QStringLiteral("rdv")));
        m_view->Populate();
        m_view->setOperationGuard([&](int op, const QList<CalendarEventPtr> &) { return refuse && op == OpEditSubjectByF2; });
        QTest::mouseClick(volet(), Qt::LeftButton, {}, boite(QStringLiteral("rdv")).center());
        QTest::keyClick(m_view.get(), Qt::Key_F2);
        QLineEdit *editeur = volet()->subjectEditor();
        QCOMPARE(editeur != nullptr, !refuse);
        if (editeur) {
            QCOMPARE(editeur->text(), QStringLiteral("rdv"));
            QTest::keyClicks(editeur, QStringLiteral("Bilan"));
            if (storeFerme) {
                m_provider->Close();
                repondeur.repondre(Prompt::Reponse::Ok);
            }
            QTest::keyClick(editeur, Qt::Key(touche));
            QCOMPARE(volet()->subjectEditor() == editeur, storeFerme);
            QCOMPARE(editeur->text(), QStringLiteral("Bilan"));
            QCOMPARE(repondeur.appels().size(), storeFerme ? 1 : 0);
            if (storeFerme) {
                QCOMPARE(this->stocke(1), QStringList{QStringLiteral("rdv mar. 09:00-09:30 s0")});
                QVERIFY(m_provider->Open());
                QTest::keyClick(editeur, Qt::Key_Return);
                QVERIFY(!volet()->subjectEditor());
            }
        }
        QCOMPARE(this->stocke(1), QStringList{stocke + QStringLiteral(" mar. 09:00-09:30 s0")});
    }

    // The current-time line on Wednesday at 07:00 in the work week, by time
    // mark mode.
    void marqueHeure_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("colonnes");
        QTest::newRow("jamais") << 0 << "-----";
        QTest::newRow("aujourd'hui") << 1 << "--X--";
        QTest::newRow("toujours, imprimée") << 6 << "XXXXX";
    }

    void marqueHeure()
    {
        QFETCH(int, mode);
        const Horloge::Fixee mercredi(jour(2, 7));
        CalendarOptions options = m_view->options();
        options.timeMarkMode = mode;
        m_view->setOptions(options);
        m_view->setScrollPosition(0);
        const QImage image = volet()->grab().toImage();
        QString vu;
        for (int d = 0; d < 5; ++d) {
            const QRect r = volet()->cellRect(jour(d, 7));
            const bool ligne = image.pixelColor(r.center().x(), r.top()) == QColor(224, 96, 16)
                               || image.pixelColor(r.center().x(), r.top() - 1) == QColor(224, 96, 16);
            vu += ligne ? QLatin1Char('X') : QLatin1Char('-');
        }
        QTEST(vu, "colonnes");
    }
};

QTEST_MAIN(tst_calendarview)
#include "tst_calendarview.moc"
