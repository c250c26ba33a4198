#pragma once

#include "calendar/calendarrecurrencepattern.h"

#include <QDialog>

#include <array>

class QLabel;
class QLineEdit;
class QPushButton;

// Editor of the property bag of an appointment: five rows of a name and a
// value. OK replaces the whole bag by the rows that have a name, so a bag of
// more than five entries keeps only the five shown.
class frmCustomEventProperties final : public QDialog
{
    Q_OBJECT

public:
    static constexpr int NombreLignes = 5;

    explicit frmCustomEventProperties(QWidget *parent = nullptr);

    // Keeps the record (an empty one is ignored) and shows the first five
    // entries of its bag in the bag's order.
    void SetEvent(const CalendarEventPtr &event);

    QLabel *lblPropName = nullptr;
    QLabel *lblPropValue = nullptr;
    std::array<QLineEdit *, NombreLignes> editPropName{};
    std::array<QLineEdit *, NombreLignes> editPropValue{};
    QPushButton *cmdOk = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void valider();

    CalendarEventPtr m_pEvent;
};

// Shows the dialog modally on the record; true when it was confirmed.
bool EditerProprietesPersonnalisees(const CalendarEventPtr &event, QWidget *parent = nullptr);
