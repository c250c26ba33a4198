// Times the print of a work week to PDF on a book of ten years (100,000
// appointments), beside its anchor: the store read of the same week, which
// every print follows. Prints the figures; not a test.
//
//   bench_impression [runs]
//   bench_impression --demo DOSSIER PREFIXE [YYYY-MM-DD]
//
// BENCH_DOSSIER keeps the book in a folder of one's choice (filled once,
// reused by the next runs). --demo prints the four kinds of pages of a
// demonstration agenda (tavonel-admin demo DOSSIER) around a day through the
// print command to PREFIXE-jour.pdf, -semaine-de-travail.pdf, -semaine.pdf
// and -mois.pdf, each with the view on screen beside it as a PNG.
#include "calendar/calendardataprovider.h"
#include "calendar/openprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/colorationregles.h"
#include "calendar/view/impressioncalendrier.h"
#include "cipher/encryptx.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/demarrage.h"
#include "shell/window/impressionagenda.h"
#include "shell/base/processus.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QPdfWriter>
#include <QPrinter>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

const QDate kDebut(2020, 1, 1);
const QDate kFin(2029, 12, 31);
const QDate kLundi(2025, 6, 16); // a work week in the middle of the book

double ms(qint64 ns) { return double(ns) / 1e6; }

// 100,000 appointments of 15 to 45 minutes on the weekdays of ten years,
// from 8:00 on, with the eighteen labels and a few patients in the waiting room.
void remplir(CalendarDataProvider &p)
{
    QRandomGenerator alea(20260301);
    p.store()->BeginChange();
    const qint64 jours = kDebut.daysTo(kFin) + 1;
    for (int faits = 0; faits < 100000;) {
        const QDate jour = kDebut.addDays(alea.bounded(jours));
        if (jour.dayOfWeek() > 5)
            continue;
        const QDateTime debut(jour, QTime(8, 0).addSecs(60 * 15 * alea.bounded(44)));
        CalendarEventPtr e = p.CreateNewEvent(debut, debut.addSecs(60 * 15 * (1 + alea.bounded(3))));
        e->setSubject(QStringLiteral("PATIENT %1 Prénom").arg(faits));
        e->setLocation(QStringLiteral("Consultation"));
        e->setLabelID(alea.bounded(18));
        e->setBusyStatus(alea.bounded(10) == 0 ? 0 : 1);
        p.AddEvent(e);
        ++faits;
    }
    p.store()->CommitChange();
}

// The demonstration agenda started as the program starts agenda 1, its
// kinds of pages printed through the print command (the preview closed at
// once), each beside a PNG of the view as a 1366x768 screen shows it.
int demo(const QString &dossier, const QString &prefixe, const QDate &jour)
{
    qputenv("TAVONEL_PROGRAM_DIR", dossier.toLocal8Bit());
    Horloge::Fixee horloge(QDateTime(jour, QTime(18, 30)));
    Demarrage demarrage(appState(), dossier);
    ParametresFenetre parametres;
    if (demarrage.initialiser(EncoderArgument(QStringLiteral("1"))) || demarrage.charger(parametres)) {
        std::fprintf(stderr, "l'agenda de %s ne démarre pas\n", qPrintable(dossier));
        return 1;
    }
    QWidget fenetre;
    auto *vue = new CalendarView(&fenetre);
    vue->setDataProvider(appState().Calendrier.get());
    vue->setLabels(parametres.libelles);
    vue->setWorkingHours(parametres.debutJournee, parametres.finJournee);
    vue->setCellPainter(&ColorerCelluleSelonRegles);
    ImpressionAgenda impression(*vue, parametres, nullptr);
    ExecuteurInstalle sansFenetre([](QDialog &) { return 0; });
    fenetre.resize(1366, 768);
    vue->resize(fenetre.size());
    const std::pair<CalendarViewType, const char *> pages[] = {{CalendarViewType::Day, "jour"},
        {CalendarViewType::WorkWeek, "semaine-de-travail"}, {CalendarViewType::Week, "semaine"}, {CalendarViewType::Month, "mois"}};
    for (const auto &[type, nom] : pages) {
        impression.imprimante().setOutputFileName(prefixe + u'-' + QLatin1String(nom) + QStringLiteral(".pdf"));
        impression.imprimante().setPageOrientation(type == CalendarViewType::Week ? QPageLayout::Portrait : QPageLayout::Landscape);
        vue->setViewType(type);
        vue->ShowDay(Horloge::aujourdhui());
        vue->Populate();
        impression.imprimer();
        vue->grab().save(prefixe + u'-' + QLatin1String(nom) + QStringLiteral(".png"));
        std::printf("%s : %lld rendez-vous -> %s\n", nom, static_cast<long long>(vue->shownEvents().size()),
                    qPrintable(impression.imprimante().outputFileName()));
    }
    // The stores close before Qt's SQL drivers go away.
    FermerConfig();
    appState() = AppState{};
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    PreparerProcessus();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if ((args.size() == 4 || args.size() == 5) && args.at(1) == u"--demo")
        return demo(args.at(2), args.at(3), args.size() == 5 ? QDate::fromString(args.at(4), Qt::ISODate) : QDate(2026, 11, 25));
    const int essais = args.size() > 1 ? std::max(1, args.at(1).toInt()) : 20;

    QTemporaryDir temporaire;
    const QString fixe = qEnvironmentVariable("BENCH_DOSSIER");
    const QString dossier = fixe.isEmpty() ? temporaire.path() : fixe;
    const bool dejaRempli = !fixe.isEmpty() && QFile::exists(fixe + QStringLiteral("/Events.mdb"));
    CalendarDataProvider provider;
    if (!OpenProvider(provider, CalendarDataProvider::Access,
                      QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dossier + QStringLiteral("/Events.mdb';"))) {
        std::fprintf(stderr, "Events.mdb ne s'ouvre pas\n");
        return 1;
    }
    QElapsedTimer t;
    t.start();
    if (!dejaRempli)
        remplir(provider);
    std::printf("livre de 100 000 rendez-vous %s\n",
                dejaRempli ? "repris d'un essai précédent" : qPrintable(QStringLiteral("rempli en %1 s").arg(ms(t.nsecsElapsed()) / 1000, 0, 'f', 1)));

    Horloge::Fixee horloge(QDateTime(kLundi.addDays(2), QTime(10, 0)));
    CalendarLabelList labels;
    const quint32 couleurs[] = {0xB0E0B0, 0x90C8F0, 0xF0C890, 0xC0A0F0, 0xA0F0F0, 0xF0A0C0, 0xD0D0D0, 0xFFFFFF};
    for (int id = 0; id < 18; ++id)
        labels.append({id, QStringLiteral("Type %1").arg(id), couleurs[id % 8]});
    CalendarView vue;
    vue.setDataProvider(&provider);
    vue.setLabels(labels);
    vue.setViewType(CalendarViewType::WorkWeek);
    vue.ShowDay(kLundi);
    OptionsImpressionCalendrier options;
    ImpressionAgenda::fixerCases(options, QStringLiteral("Agenda"), Horloge::maintenant());

    // Side by side in each round: the week read, then its print.
    std::vector<qint64> lectures;
    std::vector<qint64> impressions;
    qint64 octets = 0;
    for (int i = 0; i <= essais; ++i) {
        t.restart();
        vue.Populate();
        const qint64 lecture = t.nsecsElapsed();
        QBuffer tampon;
        tampon.open(QIODevice::WriteOnly);
        QPdfWriter pdf(&tampon);
        pdf.setPageSize(QPageSize(QPageSize::A4));
        pdf.setPageOrientation(QPageLayout::Landscape);
        pdf.setResolution(1200);
        t.restart();
        if (!ImprimerCalendrier(pdf, vue, options)) {
            std::fprintf(stderr, "impression refusée\n");
            return 1;
        }
        const qint64 impression = t.nsecsElapsed();
        octets = tampon.size();
        if (i == 0)
            continue; // warm-up: fonts and statement caches
        lectures.push_back(lecture);
        impressions.push_back(impression);
    }
    std::sort(lectures.begin(), lectures.end());
    std::sort(impressions.begin(), impressions.end());
    const double lecture = ms(lectures[lectures.size() / 2]);
    const double impression = ms(impressions[impressions.size() / 2]);
    std::printf("semaine de travail du %s : %lld rendez-vous, page PDF de %lld Ko\n", qPrintable(kLundi.toString(QStringLiteral("dd/MM/yyyy"))),
                static_cast<long long>(vue.shownEvents().size()), static_cast<long long>(octets / 1024));
    std::printf("lecture du store (ancre, %d essais) : médiane %.2f ms, pire %.2f ms\n", essais, lecture, ms(lectures.back()));
    std::printf("impression PDF (%d essais)          : médiane %.2f ms, pire %.2f ms, soit %.1f fois la lecture\n", essais,
                impression, ms(impressions.back()), impression / std::max(0.001, lecture));
    std::printf("objectif < 1 s : %s\n", lecture + impression < 1000.0 ? "atteint" : "MANQUÉ");
    return 0;
}
