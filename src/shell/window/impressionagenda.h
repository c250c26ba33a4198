#pragma once

#include "calendar/view/impressioncalendrier.h"

#include <QMarginsF>
#include <QObject>

#include <memory>

class CalendarView;
class QDateTime;
class QPrinter;
class QWidget;
struct ParametresFenetre;

// The print commands of the main window over its calendar: the page setup,
// the preview and the print. The hours of the day pages come from the
// start-up and go back to the agenda's section of Agenda.ini with each page
// setup; paper and margins last for the session.
class ImpressionAgenda final : public QObject
{
    Q_OBJECT

public:
    // The dialogs open over `fenetre`, which also owns this object.
    ImpressionAgenda(CalendarView &vue, const ParametresFenetre &parametres, QWidget *fenetre);
    ~ImpressionAgenda() override;

    // mnuPageSetup: the page setup dialog, then the three PrintOptions keys
    // written, whichever way the dialog was closed.
    void miseEnPage();
    // mnuPrintPreview: the preview, titled "Tavonel".
    void previsualiser();
    // mnuPrintCalendar: the preview (with the title an earlier preview left
    // it), then the pages straight to the printer, without a printer dialog.
    void imprimer();

    [[nodiscard]] const OptionsImpressionCalendrier &options() const { return m_options; }
    // The printer of the commands, the system's default one, made on first
    // use. Tests send it to a PDF file.
    [[nodiscard]] QPrinter &imprimante();

    // The footer's first slot, with its leading blank.
    [[nodiscard]] static QString ligneEditeur();
    // Fills the six slots as a command run at `moment` sets them.
    static void fixerCases(OptionsImpressionCalendrier &options, const QString &agenda, const QDateTime &moment);

private:
    void apercu();

    CalendarView &m_vue;
    QWidget *m_fenetre;
    OptionsImpressionCalendrier m_options;
    QMarginsF m_marges; // millimetres
    std::unique_ptr<QPrinter> m_imprimante;
    QString m_titreApercu; // empty until a preview gives one
};
