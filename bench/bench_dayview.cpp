// Times one full repaint of the work-week day view at the 5-minute scale, as
// the secretary sees it: 1280x900 pixels, 300 appointments on show, and a
// Config.mdb of 200 schedule rules for two practitioners that colour every
// cell through the rule lookup. Prints the figures; not a test.
//
//   bench_dayview [runs] [--image file.png] [--theme 0-3] [--scale minutes]
#include "calendar/calendardataprovider.h"
#include "calendar/openprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/colorationregles.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/processus.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

// Monday of the week on show.
const QDate kLundi(2026, 11, 23);

double ms(qint64 ns) { return double(ns) / 1e6; }

// 200 rules: four half-years (2025 to 2026), two practitioners, Monday to
// Friday, five blocks of the day each. The afternoon blocks alternate by week
// parity for practitioner 2, as a practice sharing its rooms would set them.
bool ecrireRegles(ConfigIni &config)
{
    struct Bloc
    {
        QTime debut;
        QTime fin;
        int type;
    };
    const Bloc blocs[] = {
        {QTime(8, 0), QTime(9, 59, 59), 0},   {QTime(10, 0), QTime(11, 59, 59), 1}, {QTime(14, 0), QTime(15, 59, 59), 2},
        {QTime(16, 0), QTime(17, 59, 59), 3}, {QTime(18, 0), QTime(19, 29, 59), 4},
    };
    const quint32 couleurs[] = {0xC0FFC0, 0xFFE0C0, 0xC0E0FF, 0xE0C0FF, 0xC0FFFF};
    int n = 0;
    for (int semestre = 0; semestre < 4; ++semestre) {
        const QDate debut = QDate(2025, 1, 1).addMonths(6 * semestre);
        for (int praticien = 1; praticien <= 2; ++praticien) {
            for (int jour = 2; jour <= 6; ++jour) {
                for (const Bloc &b : blocs) {
                    Regle r;
                    r.DateDebut = debut;
                    r.DateFin = debut.addMonths(6).addDays(-1);
                    r.HeureDebut = b.debut;
                    r.HeureFin = b.fin;
                    r.JourNumero = static_cast<qint16>(jour);
                    r.Jour = NomJourRegle(jour);
                    r.Semaine = static_cast<qint16>(praticien == 2 && b.type >= 2 ? 1 + (jour % 2) : 3);
                    r.PraticienNumero = static_cast<qint16>(praticien);
                    r.Praticien = praticien == 1 ? QStringLiteral("Dr Lefèvre") : QStringLiteral("Dr Garnier");
                    r.TypeRV = static_cast<qint16>(b.type);
                    r.TypeText = QStringLiteral("Type %1").arg(b.type + 1);
                    r.TypeColor = static_cast<qint32>(couleurs[b.type]);
                    if (AjouterRegle(config, r) == 0)
                        return false;
                    ++n;
                }
            }
        }
    }
    return n == 200;
}

// 60 appointments a day from 8:00 to 19:30, 10 to 30 minutes long, for the
// two practitioners (so they overlap in pairs), with patient texts.
bool ecrireRendezVous(CalendarDataProvider &p)
{
    QRandomGenerator alea(20261123);
    const QStringList noms{QStringLiteral("DUPONT Marie"),    QStringLiteral("MARTIN Jean"),   QStringLiteral("BERNARD Luc"),
                           QStringLiteral("PETIT Chloé"),     QStringLiteral("ROBERT Hélène"), QStringLiteral("RICHARD Paul"),
                           QStringLiteral("DURAND Élodie"),   QStringLiteral("MOREAU Thomas")};
    for (int d = 0; d < 5; ++d) {
        for (int i = 0; i < 60; ++i) {
            const int praticien = i % 2;
            const int debut = 8 * 60 + (i / 2) * 23 + int(alea.bounded(3)) * 5;
            const int duree = 10 + 5 * int(alea.bounded(5));
            const QDateTime s(kLundi.addDays(d), QTime(debut / 60, debut % 60));
            CalendarEventPtr e = p.CreateNewEvent(s, s.addSecs(60 * duree));
            e->setSubject(noms.at(int(alea.bounded(noms.size()))) + QStringLiteral(" (06 12 34 56 78)"));
            e->setLocation(QStringLiteral("Consultation"));
            e->setLabelID(praticien * 8 + int(alea.bounded(7)));
            if (!p.AddEvent(e))
                return false;
        }
    }
    CalendarEventPtr conge = p.CreateNewEvent(QDateTime(kLundi.addDays(3), QTime(0, 0)), QDateTime(kLundi.addDays(5), QTime(0, 0)));
    conge->setSubject(QStringLiteral("Dr Garnier : congrès"));
    conge->setIsAllDayEvent(true);
    conge->setLabelID(15);
    return p.AddEvent(conge);
}

} // namespace

int main(int argc, char **argv)
{
    PreparerProcessus();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int runs = 20;
    QString image;
    int theme = 3;
    int echelle = 5;
    const QStringList args = app.arguments();
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args.at(i) == u"--image" && i + 1 < args.size())
            image = args.at(++i);
        else if (args.at(i) == u"--theme" && i + 1 < args.size())
            theme = args.at(++i).toInt();
        else if (args.at(i) == u"--scale" && i + 1 < args.size())
            echelle = args.at(++i).toInt();
        else
            runs = std::max(1, args.at(i).toInt());
    }

    QTemporaryDir dir;
    const QString dossier = dir.path() + u'/';
    if (!CreerBaseConfig(dossier) || !OuvrirConfig(dossier + QStringLiteral("Config.mdb"))) {
        std::fprintf(stderr, "Config.mdb impossible\n");
        return 1;
    }
    if (!ecrireRegles(*ConfigOuverte())) {
        std::fprintf(stderr, "règles non écrites\n");
        return 1;
    }
    CalendarDataProvider provider;
    if (!OpenProvider(provider, CalendarDataProvider::Access,
                      QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dossier + QStringLiteral("Events.mdb';"))
        || !ecrireRendezVous(provider)) {
        std::fprintf(stderr, "Events.mdb impossible\n");
        return 1;
    }

    Horloge::Fixee horloge(QDateTime(kLundi.addDays(1), QTime(7, 30)));
    CalendarLabelList labels;
    const quint32 couleurs[] = {0xB0E0B0, 0x90C8F0, 0xF0C890, 0xC0A0F0, 0xA0F0F0, 0xF0A0C0, 0xD0D0D0, 0xFFFFFF};
    for (int id = 0; id < 18; ++id)
        labels.append({id, QStringLiteral("Type %1").arg(id), couleurs[id % 8]});
    CalendarView view;
    view.setDataProvider(&provider);
    view.setLabels(labels);
    view.setTheme(theme);
    view.setWorkingHours(QTime(8, 0), QTime(20, 0));
    view.setTimeScale(echelle);
    view.resize(1280, 900);
    view.show();
    QApplication::processEvents();
    view.ShowDay(kLundi); // the working day's begin at the top

    long cellules = 0;
    long recherches = 0;
    view.setCellPainter([&](DayViewCell &cell) {
        ++cellules;
        if (!cell.selected)
            ++recherches;
        ColorerCelluleSelonRegles(cell);
    });

    QElapsedTimer t;
    t.start();
    view.Populate();
    const qint64 lecture = t.nsecsElapsed();

    QImage cible(view.size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<qint64> temps;
    long cellulesParRendu = 0;
    long recherchesParRendu = 0;
    for (int i = 0; i < runs + 1; ++i) {
        cellules = recherches = 0;
        QPainter p(&cible);
        t.restart();
        view.render(&p);
        const qint64 ns = t.nsecsElapsed();
        p.end();
        if (i == 0)
            continue; // warm-up: fonts and statement caches
        temps.push_back(ns);
        cellulesParRendu = cellules;
        recherchesParRendu = recherches;
    }
    // The same without the painter: what the rule lookups cost.
    const CalendarView::CellPainter peintre = view.cellPainter();
    view.setCellPainter({});
    std::vector<qint64> sansRegles;
    for (int i = 0; i < runs; ++i) {
        QPainter p(&cible);
        t.restart();
        view.render(&p);
        sansRegles.push_back(t.nsecsElapsed());
    }
    std::sort(sansRegles.begin(), sansRegles.end());
    view.setCellPainter(peintre);
    std::sort(temps.begin(), temps.end());
    const double mediane = ms(temps[temps.size() / 2]);
    const double pire = ms(temps.back());
    std::printf("vue semaine de travail 1280x900, échelle %d min, %lld rendez-vous affichés, 200 règles\n",
                view.timeScale(), static_cast<long long>(view.shownEvents().size()));
    std::printf("lecture du store (Populate) : %.2f ms\n", ms(lecture));
    std::printf("cellules peintes par rendu  : %ld\n", cellulesParRendu);
    std::printf("recherches de règle         : %ld\n", recherchesParRendu);
    const double sans = ms(sansRegles[sansRegles.size() / 2]);
    std::printf("rendu complet (%d essais)   : médiane %.2f ms, pire %.2f ms\n", runs, mediane, pire);
    std::printf("rendu sans coloration       : médiane %.2f ms, soit %.1f µs par recherche de règle\n", sans,
                recherchesParRendu ? (mediane - sans) * 1000.0 / double(recherchesParRendu) : 0.0);
    std::printf("objectif < 50 ms : %s\n", mediane < 50.0 ? "atteint" : "MANQUÉ");
    if (!image.isEmpty()) {
        QPainter p(&cible);
        view.render(&p);
        p.end();
        cible.save(image);
    }
    FermerConfig();
    return 0;
}
