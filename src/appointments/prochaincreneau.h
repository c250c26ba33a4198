#pragma once

#include "rules/regles.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include <functional>
#include <optional>

class CalendarDataProvider;
class CalendarEvent;
class ConfigIni;

// The next free slot of a practitioner and an appointment type: the first
// start, on the editor's five-minute grid, from which the whole length lies
// under rules of that practitioner and type, outside the pause (every day
// but Sunday, as the day view greys it), clear of every appointment of the
// book and of the slots that other stations hold open in their editor.
// "Absent" (type 7) is never a slot, nor is a public holiday: the schedule
// rules know only weekdays, and a practice opens on a holiday by booking
// there by hand.

inline constexpr int HorizonCreneauJours = 92; // about three months ahead

struct DemandeCreneau
{
    qint16 praticien = 0; // 1 or 2
    qint16 typeRV = 0;    // 0 to 6
    QDateTime depuis;     // the earliest start
    int dureeMinutes = 15;
    QTime pauseDebut;     // invalid: no pause
    QTime pauseFin;
    int horizonJours = HorizonCreneauJours;
    bool sauterFeries = true; // public holidays are no working days
};

struct Occupation
{
    QDateTime debut;
    QDateTime fin; // exclusive
};

struct SourcesCreneau
{
    QList<Regle> regles; // every rule of the table (others are sorted out)
    // The appointments that touch the days first..last; no value when the
    // book could not be read.
    std::function<std::optional<QList<Occupation>>(const QDate &premier, const QDate &dernier)> occupations;
    QSet<QDateTime> reservees; // starts held by other stations
};

struct ResultatCreneau
{
    QDateTime debut; // invalid when none was found
    QDateTime fin;
    QString message; // in French, when none was found
    [[nodiscard]] bool trouve() const { return debut.isValid(); }
};

[[nodiscard]] ResultatCreneau ChercherCreneauLibre(const DemandeCreneau &demande, const SourcesCreneau &sources);

// The same on the practice's stores: the rules of Config.mdb, the
// reservations of its table Ini (this station's own and those abandoned by
// a stopped station do not count), the book of the provider. The record
// being moved (when given) does not stand in its own way.
[[nodiscard]] ResultatCreneau ProchainCreneauLibre(ConfigIni &config, CalendarDataProvider &provider,
                                                   const DemandeCreneau &demande, const CalendarEvent *deplace = nullptr);
