#pragma once

#include "calendar/calendarevent.h"

#include <QDate>
#include <QList>
#include <QRectF>
#include <QString>
#include <QTime>

#include <array>

class CalendarView;
class QPagedPaintDevice;
class QPainter;

// The calendar on paper: one page of the days a CalendarView shows, in its
// view type (day and work week as time columns, the week as seven day
// boxes, the month as a grid of weeks), with its appointments, label
// colours and cell colours. The appointments are placed by the same layout
// functions as on the screen (daylayout.h, monthlayout.h).

struct OptionsImpressionCalendrier
{
    // Hours of the day pages. Printed exactly, or else widened to the whole
    // hours that hold every timed appointment of the printed days.
    QTime debut{8, 0};
    QTime fin{20, 0};
    bool exactement = true;
    // Header and footer slots: left, centre, right.
    std::array<QString, 3> entete;
    std::array<QString, 3> pied;
};

// The hours printed on day pages, in minutes from 00:00 (fin is past the
// last printed minute, at most 1440). A "to" of 00:00 means midnight at the
// end of the day; a range that ends before it begins keeps one hour.
struct PlageImprimee
{
    int debut = 0;
    int fin = 0;
    friend bool operator==(const PlageImprimee &, const PlageImprimee &) = default;
};
[[nodiscard]] PlageImprimee PlageDesPagesJour(const OptionsImpressionCalendrier &options, const QList<QDate> &jours,
                                              const QList<CalendarEventPtr> &evenements);

// A slot's text with the page numbers written in: every "Page n of m" takes
// the page's own number and the count of pages ("Page 1 of 1 " is how the
// slot is handed over).
[[nodiscard]] QString NumeroterCase(QString texte, int page, int pages);

// The pages the view's days take; every view type prints on one.
[[nodiscard]] int PagesCalendrier(const CalendarView &vue);

// Draws page `page` (from 1) of `pages` in `zone`, in the painter's device
// units; fonts are given in points, so any device of any resolution serves.
void DessinerPageCalendrier(QPainter &p, const QRectF &zone, const CalendarView &vue,
                            const OptionsImpressionCalendrier &options, int page, int pages);

// Every page on a printer or a PDF writer, inside its margins. False when
// the device refused the painter (no output file, printer gone).
bool ImprimerCalendrier(QPagedPaintDevice &sortie, const CalendarView &vue, const OptionsImpressionCalendrier &options);
