#include "calendar/view/impressioncalendrier.h"

#include "calendar/view/calendarview.h"
#include "calendar/view/daylayout.h"
#include "calendar/view/monthlayout.h"
#include "calendar/view/monthpane.h"
#include "calendar/view/viewtypes.h"
#include "calendar/view/weekpane.h"
#include "shell/base/joursferies.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QRegularExpression>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// Measures of the page, in millimetres.
constexpr double kEntete = 9;       // header band
constexpr double kPied = 7;         // footer band
constexpr double kTitre = 10;       // the period printed
constexpr double kEchelle = 14;     // time scale of the day pages
constexpr double kTeteJour = 7;     // date line over a day column
constexpr double kTeteBoite = 5.5;  // date line of a day box
constexpr double kLigne = 4.4;      // one appointment line of a day box
constexpr double kCaseMin = 4;      // the smallest row of a day page's grid
constexpr double kTrait = 0.2;      // width of the grid lines
constexpr double kPoliceRdv = 7.5;  // points of the appointments' text

QFont police(double points, bool gras = false)
{
    QFont f(QStringLiteral("Arial"));
    f.setPointSizeF(points);
    f.setBold(gras);
    return f;
}

int minuteDuJour(const QDate &jour, const QDateTime &moment)
{
    if (moment.date() < jour)
        return 0;
    if (moment.date() > jour)
        return 24 * 60;
    return moment.time().hour() * 60 + moment.time().minute();
}

QDateTime aLaMinute(const QDate &jour, int minute)
{
    return minute >= 24 * 60 ? QDateTime(jour.addDays(1), QTime(0, 0)) : QDateTime(jour, QTime(minute / 60, minute % 60));
}

// Subjects are often laid out in columns with blanks: on paper they read
// better as one line of words.
QString sujet(const CalendarEvent &e) { return e.Subject().simplified(); }

// All-day appointments and those of a day or more go to the band over the
// columns, as on the screen.
bool dansLaBande(const CalendarEvent &e)
{
    return e.IsAllDayEvent() || e.StartDateTime().secsTo(e.EndDateTime()) >= 24 * 3600;
}

// The appointments that touch one of the days, with their layout items.
QList<MonthLayoutItem> elements(const QList<CalendarEventPtr> &evenements, const QList<QDate> &jours,
                                const std::function<bool(const CalendarEvent &)> &retenir = {})
{
    QList<MonthLayoutItem> items;
    if (jours.isEmpty())
        return items;
    for (qsizetype i = 0; i < evenements.size(); ++i) {
        const CalendarEvent &e = *evenements.at(i);
        if (retenir && !retenir(e))
            continue;
        const MonthLayoutItem it{static_cast<int>(i), e.StartDateTime(), e.EndDateTime(), e.IsAllDayEvent()};
        if (MonthLayoutLastDay(it) < jours.first() || MonthLayoutFirstDay(it) > jours.last())
            continue;
        items.append(it);
    }
    return items;
}

// Text in r, wrapped at words; the last line that fits carries the rest of
// the text, cut with an ellipsis.
void texteRenvoye(QPainter &p, const QRectF &r, const QString &texte)
{
    const QFontMetricsF fm(p.font(), p.device());
    const qsizetype place = std::max<qsizetype>(1, static_cast<qsizetype>(r.height() / fm.height()));
    const QStringList paragraphes = texte.split(u'\n', Qt::SkipEmptyParts);
    QStringList lignes;
    for (qsizetype k = 0; k < paragraphes.size() && lignes.size() < place; ++k) {
        const QString &paragraphe = paragraphes.at(k);
        QTextLayout mise(paragraphe, p.font(), p.device());
        mise.beginLayout();
        for (QTextLine l = mise.createLine(); l.isValid() && lignes.size() < place; l = mise.createLine()) {
            l.setLineWidth(r.width());
            const bool derniere = lignes.size() + 1 == place;
            lignes.append(derniere ? (QStringList{paragraphe.mid(l.textStart())} + paragraphes.mid(k + 1)).join(QStringLiteral(" - "))
                                   : paragraphe.mid(l.textStart(), l.textLength()));
        }
        mise.endLayout();
    }
    for (qsizetype i = 0; i < lignes.size(); ++i)
        p.drawText(QPointF(r.left(), r.top() + fm.ascent() + i * fm.height()),
                   fm.elidedText(lignes.at(i).trimmed(), Qt::ElideRight, r.width()));
}

void ligneSimple(QPainter &p, const QRectF &r, const QString &texte, Qt::Alignment cote)
{
    const QFontMetricsF fm(p.font(), p.device());
    p.drawText(r, Qt::AlignVCenter | cote, fm.elidedText(texte, Qt::ElideRight, r.width()));
}

// One day box of the week and month pages.
struct Boite
{
    QDate jour;
    QRectF cadre;
    QRectF tete;
    QRectF corps;
    QString titre;
    bool autreMois = false;
};

// What every part of a page needs.
struct Page
{
    QPainter &p;
    const CalendarView &vue;
    const CalendarTheme &theme;
    double mm; // device units per millimetre

    [[nodiscard]] QPen trait(const QColor &c, double largeur = kTrait) const { return QPen(c, largeur * mm); }

    // The colour of the cell beginning at a day's minute, working hours and
    // rule colours included, as the screen paints it.
    [[nodiscard]] QColor fondCellule(const QDate &jour, int debut, int fin) const
    {
        DayViewCell cell;
        cell.begin = aLaMinute(jour, debut);
        cell.end = aLaMinute(jour, fin);
        const int de = vue.workDayBegin().hour() * 60 + vue.workDayBegin().minute();
        const int a = vue.workDayEnd().hour() * 60 + vue.workDayEnd().minute();
        cell.background = jour.dayOfWeek() <= 5 && debut >= de && debut < a ? theme.workingHours : theme.window;
        if (const CalendarView::CellPainter &peintre = vue.cellPainter())
            peintre(cell);
        return cell.background;
    }

    // An appointment's block in a day column, or its bar in the band.
    void bloc(const CalendarEvent &e, const QRectF &r, const QColor &fond, const QString &texte) const
    {
        const EventBlockStyle s = EventBlockColors(vue.labelColor(e.LabelID()), fond, e.BusyStatus(), e.IsAllDayEvent(), theme);
        p.fillRect(r, s.fill);
        // A waiting patient's bar is twice as wide, so that it shows at a glance.
        const double barre = std::min(r.width(), (s.waiting ? 1.6 : 0.8) * mm);
        p.fillRect(QRectF(r.left(), r.top(), barre, r.height()), s.bar);
        p.setPen(trait(s.border));
        p.setBrush(Qt::NoBrush);
        p.drawRect(r);
        p.setPen(s.text);
        p.setFont(police(kPoliceRdv));
        texteRenvoye(p, r.adjusted(barre + 0.6 * mm, 0.4 * mm, -0.5 * mm, -0.3 * mm),
                     (s.waiting ? WaitingRoomMark() : QString()) + texte);
    }

    void entetePied(const QRectF &zone, const OptionsImpressionCalendrier &o, int page, int pages) const;
    void pageJours(const QRectF &corps, const QList<QDate> &jours, const OptionsImpressionCalendrier &o) const;
    void pageSemaine(const QRectF &corps, const QList<QDate> &jours) const;
    void pageMois(const QRectF &corps, const QList<QDate> &jours) const;
    // The day boxes with their lines, `ligne` millimetres high in a font of
    // `points`.
    void boites(const QList<Boite> &boites, int parRangee, const DayBoxTimes &heures, Qt::Alignment coteDate, double ligne,
                double points) const;
};

void Page::entetePied(const QRectF &zone, const OptionsImpressionCalendrier &o, int page, int pages) const
{
    const double tiers = zone.width() / 3;
    const auto cases = [&](const std::array<QString, 3> &textes, const QRectF &bande, double points, bool centreGras) {
        const Qt::Alignment cotes[3] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
        for (int i = 0; i < 3; ++i) {
            p.setFont(police(i == 1 && centreGras ? points + 2 : points, i == 1 && centreGras));
            const QRectF r(bande.left() + i * tiers + (i == 0 ? 0 : 1 * mm), bande.top(), tiers - 1 * mm, bande.height());
            ligneSimple(p, r, NumeroterCase(textes[i], page, pages), cotes[i]);
        }
    };
    p.setPen(Qt::black);
    const QRectF haut(zone.left(), zone.top(), zone.width(), kEntete * mm);
    cases(o.entete, haut.adjusted(0, 0, 0, -1.5 * mm), 9, true);
    const QRectF bas(zone.left(), zone.bottom() - kPied * mm, zone.width(), kPied * mm);
    cases(o.pied, bas.adjusted(0, 1.5 * mm, 0, 0), 7.5, false);
    p.setPen(trait(QColor(90, 90, 90), 0.3));
    p.drawLine(QLineF(haut.bottomLeft(), haut.bottomRight()).translated(0, -1 * mm));
    p.drawLine(QLineF(bas.topLeft(), bas.topRight()).translated(0, 1 * mm));
}

void Page::pageJours(const QRectF &corps, const QList<QDate> &jours, const OptionsImpressionCalendrier &o) const
{
    const QList<CalendarEventPtr> &evenements = vue.shownEvents();
    const auto n = static_cast<int>(jours.size());
    const PlageImprimee plage = PlageDesPagesJour(o, jours, evenements);
    const double gauche = corps.left() + kEchelle * mm;
    const auto colonne = [&](int d) { return gauche + d * (corps.right() - gauche) / n; };

    // The band: bars keep one lane over the days they cross.
    const QList<MonthLayoutItem> barres = elements(evenements, jours, dansLaBande);
    const QList<MonthLayoutDay> bande = LayoutMonthDays(jours, barres, {99}, n);
    int voies = 0;
    for (const MonthLayoutDay &j : bande)
        for (const MonthLayoutLine &l : j.lines)
            voies = std::max(voies, l.lane + 1);
    const double hautBande = voies > 0 ? voies * kLigne * mm + 0.8 * mm : 0;
    const double hautGrille = corps.top() + kTeteJour * mm + hautBande;
    const double bas = corps.bottom();
    const auto y = [&](int minute) { return hautGrille + (minute - plage.debut) * (bas - hautGrille) / (plage.fin - plage.debut); };

    // The step of the grid: the view's, or coarser when its rows would be
    // too small to read.
    int pas = 60;
    for (const int s : {5, 10, 15, 20, 30, 60}) {
        if (s >= vue.timeScale() && y(plage.debut + s) - y(plage.debut) >= kCaseMin * mm) {
            pas = s;
            break;
        }
    }
    QList<int> limites{plage.debut};
    while (limites.last() < plage.fin)
        limites.append(std::min(plage.fin, (limites.last() / pas + 1) * pas));

    // Cells, then the lines between them.
    for (int d = 0; d < n; ++d) {
        for (qsizetype k = 0; k + 1 < limites.size(); ++k) {
            const QRectF r(colonne(d), y(limites[k]), colonne(d + 1) - colonne(d), y(limites[k + 1]) - y(limites[k]));
            p.fillRect(r, fondCellule(jours[d], limites[k], limites[k + 1]));
        }
    }
    p.fillRect(QRectF(corps.left(), corps.top(), gauche - corps.left(), bas - corps.top()), theme.timeScaleBack);
    for (qsizetype k = 0; k < limites.size(); ++k) {
        const int m = limites[k];
        const bool heure = m % 60 == 0;
        p.setPen(trait(heure ? theme.gridLine.darker(130) : theme.gridSubLine.darker(112)));
        p.drawLine(QLineF(heure ? corps.left() + 1 * mm : gauche - 5 * mm, y(m), corps.right(), y(m)));
        if (k + 1 == limites.size())
            break;
        // The hours in bold; the steps between them smaller.
        const bool etiquette = heure || k == 0;
        p.setFont(police(etiquette ? 9 : 6.5, etiquette));
        p.setPen(etiquette ? theme.timeScaleText : theme.timeScaleText.lighter(150));
        p.drawText(QRectF(corps.left(), y(m) + 0.4 * mm, gauche - corps.left() - 1.2 * mm, 5 * mm), Qt::AlignRight | Qt::AlignTop,
                   QTime(m / 60, m % 60).toString(QStringLiteral("HH:mm")));
    }

    // Headers of the days, the band under them.
    const QFontMetricsF fm(police(9, true), p.device());
    for (int d = 0; d < n; ++d) {
        const QRectF tete(colonne(d), corps.top(), colonne(d + 1) - colonne(d), kTeteJour * mm);
        const QString ferie = NomJourFerie(jours[d]);
        p.fillRect(tete, ferie.isEmpty() ? theme.headerBack : theme.holidayHeaderBack);
        p.fillRect(QRectF(tete.left(), tete.bottom(), tete.width(), hautBande), theme.allDayBand);
        // A public holiday's name follows the date while it fits.
        QString titre;
        for (const QString &suite : {ferie.isEmpty() ? QString() : QStringLiteral(" – ") + ferie, QString()}) {
            for (const char *format : {"ddd, dd MMMM", "ddd dd MMM", "ddd d", "d/MM"}) {
                titre = calendarLocale().toString(jours[d], QLatin1String(format)) + suite;
                if (fm.horizontalAdvance(titre) <= tete.width() - 2 * mm)
                    break;
            }
            if (fm.horizontalAdvance(titre) <= tete.width() - 2 * mm)
                break;
        }
        p.setFont(police(9, true));
        p.setPen(theme.headerText);
        p.drawText(tete, Qt::AlignCenter, titre);
    }
    for (int d = 0; d < bande.size(); ++d) {
        for (const MonthLayoutLine &l : bande[d].lines) {
            if (l.spanInRow == 0)
                continue;
            const CalendarEvent &e = *evenements.at(barres.at(l.item).id);
            const QRectF r(colonne(d) + 0.6 * mm, corps.top() + kTeteJour * mm + 0.4 * mm + l.lane * kLigne * mm,
                           colonne(d + l.spanInRow) - colonne(d) - 1.2 * mm, kLigne * mm - 0.6 * mm);
            bloc(e, r, theme.allDayBand,
                 (l.continuesBefore ? QStringLiteral("« ") : QString()) + sujet(e)
                     + (l.continuesAfter ? QStringLiteral(" »") : QString()));
        }
    }

    // Timed appointments, laid out in each column as on the screen; the
    // shortest are drawn tall enough for one line of text.
    const double hautLigne = QFontMetricsF(police(kPoliceRdv), p.device()).height() + 0.8 * mm;
    const int minimum = static_cast<int>(std::ceil(hautLigne * (plage.fin - plage.debut) / (bas - hautGrille)));
    p.save();
    p.setClipRect(QRectF(gauche, hautGrille, corps.right() - gauche, bas - hautGrille));
    for (int d = 0; d < n; ++d) {
        const QDate jour = jours[d];
        QList<DayLayoutItem> items;
        for (qsizetype i = 0; i < evenements.size(); ++i) {
            const CalendarEvent &e = *evenements.at(i);
            if (dansLaBande(e))
                continue;
            const QDateTime s = e.StartDateTime();
            const QDateTime f = e.EndDateTime();
            const bool ceJour = (s < QDateTime(jour.addDays(1), QTime(0, 0)) && f > QDateTime(jour, QTime(0, 0))) || s.date() == jour;
            const int debut = minuteDuJour(jour, s);
            const int fin = std::max(debut, minuteDuJour(jour, f));
            // Outside the printed hours (one ending as they begin included).
            if (!ceJour || debut >= plage.fin || fin < plage.debut || (fin == plage.debut && fin > debut))
                continue;
            items.append({static_cast<int>(i), std::max(debut, plage.debut), std::min(fin, plage.fin)});
        }
        const double largeur = colonne(d + 1) - colonne(d) - 1.8 * mm;
        for (const DayLayoutPlace &pl : LayoutDayEvents(items, minimum)) {
            const CalendarEvent &e = *evenements.at(pl.id);
            const double x0 = colonne(d) + 0.3 * mm + pl.column * largeur / pl.columns;
            const QRectF r(x0, y(pl.shownStart), largeur / pl.columns - 0.3 * mm, y(pl.shownEnd) - y(pl.shownStart));
            const int debut = minuteDuJour(jour, e.StartDateTime());
            const bool uneLigne = r.height() < 2 * hautLigne;
            QString texte = e.StartDateTime().toString(QStringLiteral("HH:mm ")) + sujet(e);
            if (!e.Location().simplified().isEmpty())
                texte += (uneLigne ? QStringLiteral(" - ") : QStringLiteral("\n")) + e.Location().simplified();
            bloc(e, r, fondCellule(jour, debut / pas * pas, debut / pas * pas + pas), texte);
        }
    }
    p.restore();

    // Column borders over everything.
    p.setPen(trait(theme.gridLine.darker(130)));
    for (int d = 0; d <= n; ++d)
        p.drawLine(QLineF(colonne(d), corps.top(), colonne(d), bas));
    p.drawRect(QRectF(corps.left(), corps.top(), corps.width(), bas - corps.top()));
    p.drawLine(QLineF(corps.left(), hautGrille, corps.right(), hautGrille));
}

void Page::boites(const QList<Boite> &boites, int parRangee, const DayBoxTimes &heures, Qt::Alignment coteDate, double ligne,
                  double points) const
{
    const QList<CalendarEventPtr> &evenements = vue.shownEvents();
    QList<QDate> jours;
    QList<int> places;
    for (const Boite &b : boites) {
        jours.append(b.jour);
        places.append(std::max(0, static_cast<int>((b.corps.height() - 0.5 * mm) / (ligne * mm))));
    }
    const QList<MonthLayoutItem> items = elements(evenements, jours);
    const QList<MonthLayoutDay> mise = LayoutMonthDays(jours, items, places, parRangee);

    for (int i = 0; i < boites.size(); ++i) {
        const Boite &b = boites[i];
        p.fillRect(b.cadre, b.autreMois ? theme.monthOtherMonth : theme.workingHours);
        const QString ferie = NomJourFerie(b.jour);
        p.fillRect(b.tete, ferie.isEmpty() ? theme.headerBack : theme.holidayHeaderBack);
        QColor encre = theme.headerText;
        if (b.autreMois)
            encre = encre.lighter(190);
        p.setPen(encre);
        p.setFont(police(8.5, !b.autreMois));
        const QRectF ligne = b.tete.adjusted(1.2 * mm, 0, -1.2 * mm, 0);
        ligneSimple(p, ligne, b.titre, coteDate);
        const double largeurDate = QFontMetricsF(p.font(), p.device()).horizontalAdvance(b.titre) + 2 * mm;
        QString autre = ferie;
        if (mise[i].overflow > 0)
            autre += (autre.isEmpty() ? QString() : QStringLiteral(" ")) + QStringLiteral("+%1").arg(mise[i].overflow);
        if (!autre.isEmpty()) {
            p.setFont(police(8, mise[i].overflow > 0 && ferie.isEmpty()));
            p.drawText(ligne, Qt::AlignVCenter | (coteDate & Qt::AlignRight ? Qt::AlignLeft : Qt::AlignRight),
                       QFontMetricsF(p.font(), p.device()).elidedText(autre, Qt::ElideMiddle, std::max(0.0, ligne.width() - largeurDate)));
        }
        p.setPen(trait(theme.gridLine.darker(130)));
        p.drawLine(QLineF(b.tete.bottomLeft(), b.tete.bottomRight()));
    }

    const QFont normale = police(points);
    const QFont grasse = police(points, true);
    for (int i = 0; i < mise.size(); ++i) {
        const Boite &b = boites[i];
        for (const MonthLayoutLine &l : mise[i].lines) {
            const CalendarEvent &e = *evenements.at(items.at(l.item).id);
            QRectF r(b.corps.left() + 0.6 * mm, b.corps.top() + 0.3 * mm + l.lane * ligne * mm, b.corps.width() - 1.2 * mm,
                     ligne * mm - 0.6 * mm);
            const EventBlockStyle s =
                EventBlockColors(vue.labelColor(e.LabelID()), theme.workingHours, e.BusyStatus(), e.IsAllDayEvent(), theme);
            const QString heuresTexte = DayBoxPane::timesText(LineTimesForDay(e, b.jour, heures));
            const QString texteSujet = (s.waiting ? WaitingRoomMark() : QString()) + sujet(e);
            if (l.bar) {
                if (l.spanInRow == 0)
                    continue; // drawn whole from its first box of the row
                r.setRight(boites[i + l.spanInRow - 1].corps.right() - 0.6 * mm);
                p.fillRect(r, s.fill);
                p.setPen(trait(s.border));
                p.drawRect(r);
                p.setPen(s.text);
                p.setFont(normale);
                QString texte = (l.continuesBefore ? QStringLiteral("« ") : QString())
                                + (heuresTexte.isEmpty() ? QString() : heuresTexte + u' ') + texteSujet;
                // The last box of the stretch tells whether the bar goes on.
                const MonthLayoutDay &dernier = mise[i + l.spanInRow - 1];
                for (const MonthLayoutLine &fin : dernier.lines)
                    if (fin.item == l.item && fin.continuesAfter)
                        texte += QStringLiteral(" »");
                ligneSimple(p, r.adjusted(1 * mm, 0, -0.5 * mm, 0), texte, Qt::AlignLeft);
                continue;
            }
            // A timed line: a square of its label's colour (the green of the
            // waiting room), the times in bold, the subject.
            const double cote = r.height() - 0.8 * mm;
            const QRectF carre(r.left(), r.top() + 0.4 * mm, cote, cote);
            p.fillRect(carre, s.waiting ? s.bar : s.fill);
            p.setPen(trait(s.border));
            p.drawRect(carre);
            p.setPen(theme.eventText);
            double x = carre.right() + 1 * mm;
            if (!heuresTexte.isEmpty()) {
                p.setFont(grasse);
                p.drawText(QRectF(x, r.top(), r.right() - x, r.height()), Qt::AlignVCenter | Qt::AlignLeft, heuresTexte);
                x += QFontMetricsF(grasse, p.device()).horizontalAdvance(heuresTexte + u' ');
            }
            p.setFont(normale);
            ligneSimple(p, QRectF(x, r.top(), std::max(0.0, r.right() - x), r.height()), texteSujet, Qt::AlignLeft);
        }
    }
    p.setPen(trait(theme.gridLine.darker(130)));
    p.setBrush(Qt::NoBrush);
    for (const Boite &b : boites)
        p.drawRect(b.cadre);
}

void Page::pageSemaine(const QRectF &corps, const QList<QDate> &jours) const
{
    // As on the screen: Monday to Wednesday on the left, Thursday and Friday
    // on the right over Saturday and Sunday, which share one box's height.
    static constexpr int sixiemes[7][2] = {{0, 2}, {2, 4}, {4, 6}, {0, 2}, {2, 4}, {4, 5}, {5, 6}};
    QList<Boite> liste;
    for (int i = 0; i < jours.size() && i < 7; ++i) {
        const int col = i < 3 ? 0 : 1;
        const double x0 = corps.left() + col * corps.width() / 2;
        const double y0 = corps.top() + sixiemes[i][0] * corps.height() / 6;
        const double y1 = corps.top() + sixiemes[i][1] * corps.height() / 6;
        Boite b;
        b.jour = jours[i];
        b.cadre = QRectF(x0, y0, corps.width() / 2, y1 - y0);
        b.tete = QRectF(x0, y0, corps.width() / 2, kTeteBoite * mm);
        b.corps = QRectF(x0, b.tete.bottom(), corps.width() / 2, y1 - b.tete.bottom());
        b.titre = WeekPane::headerText(b.jour);
        liste.append(b);
    }
    boites(liste, 1, vue.options().weekTimes, Qt::AlignRight, kLigne, kPoliceRdv);
}

void Page::pageMois(const QRectF &corps, const QList<QDate> &jours) const
{
    const double bandeJours = 6 * mm;
    const double semaines = 9 * mm;
    const int rangees = std::max(1, static_cast<int>((jours.size() + 6) / 7));
    const double largeur = (corps.width() - semaines) / 7;
    const double hauteur = (corps.height() - bandeJours) / rangees;
    // A whole month shades the days of its neighbours.
    const int mois = vue.options().monthWeeksCount >= 2 || jours.isEmpty() ? 0 : jours.at(jours.size() / 2).month();

    p.fillRect(QRectF(corps.left(), corps.top(), corps.width(), bandeJours), theme.headerBack);
    p.fillRect(QRectF(corps.left(), corps.top() + bandeJours, semaines, corps.height() - bandeJours), theme.headerBack);
    p.setPen(theme.headerText);
    p.setFont(police(9, true));
    for (int c = 0; c < 7; ++c)
        p.drawText(QRectF(corps.left() + semaines + c * largeur, corps.top(), largeur, bandeJours), Qt::AlignCenter,
                   calendarLocale().dayName(c + 1, QLocale::LongFormat));
    QList<Boite> liste;
    for (int i = 0; i < jours.size(); ++i) {
        const double x0 = corps.left() + semaines + (i % 7) * largeur;
        const double y0 = corps.top() + bandeJours + (i / 7) * hauteur;
        Boite b;
        b.jour = jours[i];
        b.cadre = QRectF(x0, y0, largeur, hauteur);
        b.tete = QRectF(x0, y0, largeur, kTeteBoite * mm);
        b.corps = QRectF(x0, b.tete.bottom(), largeur, y0 + hauteur - b.tete.bottom());
        b.titre = MonthPane::dayLabel(b.jour);
        b.autreMois = mois != 0 && b.jour.month() != mois;
        liste.append(b);
        if (i % 7 == 0) {
            p.setPen(theme.headerText);
            p.setFont(police(8.5, true));
            p.drawText(QRectF(corps.left(), y0, semaines, kTeteBoite * mm), Qt::AlignCenter,
                       QStringLiteral("S%1").arg(b.jour.weekNumber()));
        }
    }
    // Smaller lines: a busy day keeps most of its appointments.
    boites(liste, 7, vue.options().monthTimes, Qt::AlignLeft, 3.6, 6.8);
    p.setPen(trait(theme.gridLine.darker(130)));
    p.drawRect(corps);
}

// The period of the page, as its title.
QString titrePeriode(const CalendarView &vue, const QList<QDate> &jours)
{
    const QLocale &l = calendarLocale();
    if (jours.isEmpty())
        return {};
    const QDate premier = jours.first();
    const QDate dernier = jours.last();
    switch (vue.viewType()) {
    case CalendarViewType::Day:
        return l.toString(premier, QStringLiteral("dddd d MMMM yyyy"));
    case CalendarViewType::Month:
        if (vue.options().monthWeeksCount < 2) {
            const QDate milieu = jours.at(jours.size() / 2);
            const QString mois = l.toString(milieu, QStringLiteral("MMMM yyyy"));
            return mois.left(1).toUpper() + mois.mid(1);
        }
        break;
    default:
        break;
    }
    return QStringLiteral("Semaine %1 : du %2 au %3")
        .arg(premier.weekNumber())
        .arg(l.toString(premier, QStringLiteral("dddd d MMMM")), l.toString(dernier, QStringLiteral("dddd d MMMM yyyy")));
}

} // namespace

PlageImprimee PlageDesPagesJour(const OptionsImpressionCalendrier &options, const QList<QDate> &jours,
                                const QList<CalendarEventPtr> &evenements)
{
    const auto minutes = [](const QTime &t) { return t.isValid() ? t.hour() * 60 + t.minute() : 0; };
    PlageImprimee plage{minutes(options.debut), minutes(options.fin)};
    if (plage.fin == 0)
        plage.fin = 24 * 60;
    if (plage.fin <= plage.debut)
        plage.fin = std::min(24 * 60, plage.debut + 60);
    if (options.exactement)
        return plage;
    // Widened, in whole hours, to the timed appointments of the days.
    for (const QDate &jour : jours) {
        for (const CalendarEventPtr &e : evenements) {
            if (dansLaBande(*e) || e->StartDateTime().date() > jour || e->EndDateTime() <= QDateTime(jour, QTime(0, 0)))
                continue;
            const int debut = minuteDuJour(jour, e->StartDateTime());
            const int fin = std::max(debut + 1, minuteDuJour(jour, e->EndDateTime()));
            plage.debut = std::min(plage.debut, debut / 60 * 60);
            plage.fin = std::max(plage.fin, std::min(24 * 60, (fin + 59) / 60 * 60));
        }
    }
    return plage;
}

QString NumeroterCase(QString texte, int page, int pages)
{
    static const QRegularExpression numeros(QStringLiteral("\\b(Page )\\d+( of )\\d+"));
    return texte.replace(numeros, QStringLiteral("\\1%1\\2%2").arg(page).arg(pages));
}

int PagesCalendrier(const CalendarView &vue) { return vue.shownDaysCount() > 0 ? 1 : 0; }

void DessinerPageCalendrier(QPainter &p, const QRectF &zone, const CalendarView &vue, const OptionsImpressionCalendrier &options,
                            int page, int pages)
{
    const Page pg{p, vue, vue.themeColors(), p.device()->logicalDpiX() / 25.4};
    const double mm = pg.mm;
    QList<QDate> jours;
    for (int i = 0; i < vue.shownDaysCount(); ++i)
        jours.append(vue.shownDay(i));

    p.save();
    p.fillRect(zone, Qt::white);
    pg.entetePied(zone, options, page, pages);
    p.setPen(Qt::black);
    p.setFont(police(14, true));
    const QRectF titre(zone.left(), zone.top() + kEntete * mm, zone.width(), kTitre * mm);
    ligneSimple(p, titre.adjusted(0, 0, 0, -2 * mm), titrePeriode(vue, jours), Qt::AlignLeft);
    const QRectF corps(zone.left(), titre.bottom(), zone.width(), zone.height() - kEntete * mm - kTitre * mm - kPied * mm - 1 * mm);
    switch (vue.viewType()) {
    case CalendarViewType::Day:
    case CalendarViewType::WorkWeek:
        if (!jours.isEmpty())
            pg.pageJours(corps, jours, options);
        break;
    case CalendarViewType::Week:
        pg.pageSemaine(corps, jours);
        break;
    case CalendarViewType::Month:
        pg.pageMois(corps, jours);
        break;
    }
    p.restore();
}

bool ImprimerCalendrier(QPagedPaintDevice &sortie, const CalendarView &vue, const OptionsImpressionCalendrier &options)
{
    QPainter p;
    if (!p.begin(&sortie))
        return false;
    p.setRenderHint(QPainter::Antialiasing);
    // The painter starts at the top left corner inside the margins.
    const QRectF zone(QPointF(0, 0), sortie.pageLayout().paintRectPixels(sortie.logicalDpiX()).size());
    const int pages = PagesCalendrier(vue);
    for (int page = 1; page <= pages; ++page) {
        if (page > 1)
            sortie.newPage();
        DessinerPageCalendrier(p, zone, vue, options, page, pages);
    }
    return p.end();
}
